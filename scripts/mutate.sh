#!/usr/bin/env bash
# ./dev mutate: changes one token at a time and reports the changes that no test detects.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

install_packages "${native_packages[@]}" git
nice python3 scripts/mutation/mutate.py "$@"
