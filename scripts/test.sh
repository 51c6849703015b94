#!/usr/bin/env bash
# ./dev test [PRESET…]: sets up, builds, and runs every test, natively and in the simulated machine.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

# Prints the number of faults that the fault sweep has injected.
report_faults() {
  local counts=("$build"/native/tests/faultsweep/faults/*)
  [[ -f ${counts[0]} ]] || return 0
  printf 'Faults injected, one at a time: %d in %d tests\n' \
    "$(awk '{ sum += $1 } END { print sum }' "${counts[@]}")" "${#counts[@]}"
}

presets=("$@")
(($#)) || presets=(native native-library thread windows)
for preset in "${presets[@]}"; do
  is_preset "$preset"
done
end_machine_on_exit
install_packages "${native_packages[@]}" "${machine_packages[@]}" "${docs_packages[@]}" groff-base \
  mono-mcs mono-runtime mypy python3-jsonschema python3-pytest
for preset in "${presets[@]}"; do
  install_packages_of "$preset"
  build_preset "$preset"
done
rm -rf "$build/native/tests/faultsweep/faults"
failed=()
for preset in "${presets[@]}"; do
  if [[ $preset == windows* ]]; then
    use_programs_of "$preset"
    machine_on
  fi
  step "Testing $preset"
  ctest --preset "$preset" || failed+=("$preset")
done
report_faults
((${#failed[@]} == 0)) || fail "tests failed: ${failed[*]}. To repeat the failed ones of a preset:" \
  "ctest --preset ${failed[0]} --rerun-failed"
