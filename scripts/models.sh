#!/usr/bin/env bash
# ./dev models: checks the models in docs/models with Spin: every state that the processes can reach, with
# each way in which Windows stores a final status. Then plants the faults of each model, which must be found.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

readonly folder=$build/models
readonly model=$root/docs/models/notification.pml
readonly result=$folder/result.txt

# check KIND [OPTION…]: explores all states of the model for assertions and deadlocks (KIND safety), or all
# fair cycles (KIND liveness). The result is in $result.
check() {
  local compile=(-DSAFETY -DNOCLAIM) run=()
  if [[ $1 == liveness ]]; then
    compile=(-DNFAIR=4)
    run=(-a -f -N everyEndIsReached)
  fi
  (
    cd "$folder"
    rm -f pan pan.* ./*.trail
    spin "${@:2}" -a "$model" >spin.log 2>&1 || fail "Spin does not accept the model: build/models/spin.log"
    gcc -O2 -DVECTORSZ=2048 "${compile[@]}" -o pan pan.c 2>spin.log ||
      fail "compiling the model failed: build/models/spin.log"
    ./pan -m1000000 "${run[@]}" >"$result" 2>&1
  )
  grep -q 'State-vector' "$result" || fail "the check did not end: build/models/result.txt"
}

errors() { grep -o 'errors: [0-9]*' "$result" | grep -o '[0-9]*'; }
states() { grep -o '[0-9e+.]* states, stored' "$result" | grep -o '^[0-9e+.]*'; }

install_packages gcc libc6-dev spin
mkdir -p "$folder"
for status in -DSTATUS_AT_COMPLETION -DSTATUS_AT_DEQUEUE; do
  for kind in safety liveness; do
    check "$kind" "$status"
    if [[ $(errors) != 0 ]]; then
      cat "$result"
      (cd "$folder" && spin "$status" -t -p -g "$model")
      fail "the model has a fault: the steps that lead to it are above"
    fi
    printf '%-26s %-9s %8s states, no fault\n' "${status#-D}" "$kind" "$(states)"
  done
done
mapfile -t faults < <(sed -nE 's/^#define FAULT_([A-Z_]+) ([0-9]+) +\/\* (.*) \*\/$/\1\t\2\t\3/p' "$model")
((${#faults[@]})) || fail "the model names no faults"
for fault in "${faults[@]}"; do
  IFS=$'\t' read -r name number text <<<"$fault"
  check safety "-DFAULT=$number"
  [[ $(errors) != 0 ]] || fail "the check does not find the fault $name: $text"
  printf '%-26s found after %s states: %s\n' "$name" "$(states)" "$text"
  if [[ $name == NO_WAKE_UP ]]; then
    check liveness "-DFAULT=$number"
    [[ $(errors) != 0 ]] || fail "the check of liveness does not find the fault $name: $text"
  fi
done
