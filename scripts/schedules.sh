#!/usr/bin/env bash
# ./dev schedules [SECONDS] [SCENARIO…]: explores the schedules of all scenarios, or of some, for SECONDS
# each: those with more preemptions than in a test run, then random ones.
# ./dev schedules --OPTION…: runs the program with its own options; --help lists them.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

readonly preemptions=3 changes=4
readonly program=$build/native/bin/schedules

if [[ ${1:-} == --* ]]; then
  install_packages "${native_packages[@]}"
  build_preset native schedules
  exec "$program" "$@"
fi
seconds=60
if (($#)); then
  [[ $1 =~ ^[1-9][0-9]*$ ]] || fail "'$1' is not a number of seconds: ./dev schedules 60 [SCENARIO…]"
  seconds=$1
  shift
fi
install_packages "${native_packages[@]}"
build_preset native schedules
mapfile -t scenarios < <("$program" --list | cut -d ' ' -f 1)
for scenario in "$@"; do
  [[ " ${scenarios[*]} " == *" $scenario "* ]] || fail "there is no scenario '$scenario'; use ${scenarios[*]}"
done
(($# == 0)) || scenarios=("$@")

# A quarter of the time for each kind of exploration and each time of the final status.
quarter=$(((seconds + 3) / 4))
for status in completion dequeue; do
  export FAKE_WINDOWS_FINAL_STATUS=$status
  step "The final status is stored at $status: schedules with at most $preemptions preemptions"
  "$program" --preemptions "$preemptions" --seconds "$quarter" "${scenarios[@]}"
  step "The final status is stored at $status: random schedules"
  "$program" --random "$RANDOM" --changes "$changes" --seconds "$quarter" "${scenarios[@]}"
done
