#!/usr/bin/env bash
# ./dev format: formats all C and C++ sources.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

install_packages clang-format git
git ls-files --cached --others --exclude-standard -- '*.h' '*.hpp' '*.c' '*.cpp' | xargs clang-format -i
