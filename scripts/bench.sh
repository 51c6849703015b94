#!/usr/bin/env bash
# ./dev bench [windows | windows-clang] [MEBIBYTES]: measures firmware decoding, natively or under Wine.
# ./dev bench --check [--record]: compares instruction counts with bench/instructions.json.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

if [[ ${1:-} == --check ]]; then
  install_packages "${native_packages[@]}" valgrind
  build_preset bench scenarios
  exec python3 -B bench/check_instructions.py "${@:2}" "$build/bench/bin/scenarios" \
    bench/instructions.json
fi

if [[ ${1:-} == windows || ${1:-} == windows-clang ]]; then
  preset=$1
  shift
  end_machine_on_exit
  install_packages_of "$preset"
  install_packages "${machine_packages[@]}" libssl-dev
  use_programs_of "$preset"
  build_preset "$preset" firmware_bench
  make_prefix
  run_windows "$binaries/firmware_bench.exe" "$@" | cat
else
  install_packages "${native_packages[@]}" libssl-dev
  build_preset bench firmware_bench
  "$build/bench/bin/firmware_bench" "$@"
fi
