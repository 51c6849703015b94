#!/usr/bin/env bash
# ./dev wine -- PROGRAM [ARGUMENT…]: runs a Windows program in the simulated machine.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

[[ ${1:-} == -- ]] && shift
(($#)) || fail "name a program: ./dev wine -- quenra info"
cd "$caller"
run_in_machine "$@"
