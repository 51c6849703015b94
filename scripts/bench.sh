#!/usr/bin/env bash
# ./dev bench: measures natively and under Wine, and writes docs/performance.md.
# ./dev bench --check [--record]: compares instruction counts with bench/instructions.json.
# ./dev bench native | windows | windows-clang [PROGRAM [MEBIBYTES]]: measures in one of them only.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

readonly programs=(attributes_bench driver_bench firmware_bench)
readonly results=build/bench/results # of the programs under Wine as well, whose folder is the same

# measure_natively PROGRAM [ARGUMENT…]
measure_natively() {
  step "Measuring natively: $1"
  "$build/bench/bin/$1" "${@:2}"
}

# measure_under_wine PROGRAM [ARGUMENT…]
measure_under_wine() {
  step "Measuring under Wine: $1"
  local program=$binaries/$1.exe
  [[ $1 != system_bench ]] || program=$binaries/stripped/$1.exe
  run_windows "$program" "${@:2}" | cat
}

build_native_programs() {
  install_packages "${native_packages[@]}" libssl-dev
  build_preset bench "${programs[@]}"
}

# build_windows_programs PRESET
build_windows_programs() {
  install_packages_of "$1"
  install_packages "${machine_packages[@]}"
  use_programs_of "$1"
  build_preset "$1" "${programs[@]}" system_bench quenra_exe quenra-sim
  end_machine_on_exit
  machine_on
}

measure_all() {
  install_packages gnuplot-nox python3
  build_native_programs
  build_windows_programs windows
  rm -rf "$results"
  mkdir -p "$results"
  local program
  for program in "${programs[@]}"; do
    measure_natively "$program" --json "$results/native-$program.json"
  done
  for program in "${programs[@]}" system_bench; do
    measure_under_wine "$program" --json "$results/windows-$program.json"
  done
  python3 bench/performancepage.py "$results" docs/performance.md
}

selected=("${programs[@]}")
[[ -z ${2:-} ]] || selected=("$2")
case ${1:-} in
  '') measure_all ;;
  --check)
    install_packages "${native_packages[@]}" valgrind
    build_preset bench scenarios
    python3 -B bench/check_instructions.py "${@:2}" "$build/bench/bin/scenarios" \
      bench/instructions.json
    ;;
  native)
    build_native_programs
    for program in "${selected[@]}"; do
      measure_natively "$program" "${@:3}"
    done
    ;;
  windows | windows-clang)
    build_windows_programs "$1"
    for program in "${selected[@]}"; do
      measure_under_wine "$program" "${@:3}"
    done
    ;;
  *) fail "usage: ./dev bench" \
    "[--check [--record] | native | windows | windows-clang [PROGRAM [MEBIBYTES]]]" ;;
esac
