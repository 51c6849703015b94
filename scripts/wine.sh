#!/usr/bin/env bash
# ./dev wine [--preset PRESET] -- PROGRAM [ARGUMENT…]: runs a Windows program in the simulated machine.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

if [[ ${1:-} == --preset ]]; then
  (($# > 1)) || fail "name a preset: ./dev wine --preset windows-clang -- quenra info"
  use_programs_of "$2"
  shift 2
fi
[[ ${1:-} == -- ]] && shift
(($#)) || fail "name a program: ./dev wine -- quenra info"
cd "$caller"
run_in_machine "$@"
