#!/usr/bin/env bash
# ./dev generate: writes the files that follow from api/attributes.toml and api/statuses.toml; with --abi
# the record of the binary interface of this version, as compilers for Linux and for Windows see it.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

if [[ ${1:-} == --abi ]]; then
  install_packages gcc g++-mingw-w64-x86-64-posix python3
  python3 -B api/abi.py record gcc x86_64-w64-mingw32-gcc-posix
else
  install_packages python3
  python3 -B api/generate.py "$@"
fi
