#!/usr/bin/env bash
# ./dev test: sets up, builds, and runs every test, natively and in the simulated machine.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

# Prints the number of faults that the fault sweep has injected.
report_faults() {
  local counts=("$build"/native/tests/faultsweep/faults/*)
  [[ -f ${counts[0]} ]] || return 0
  printf 'Faults injected, one at a time: %d in %d tests\n' \
    "$(awk '{ sum += $1 } END { print sum }' "${counts[@]}")" "${#counts[@]}"
}

end_machine_on_exit
install_packages "${native_packages[@]}" "${machine_packages[@]}" "${docs_packages[@]}" groff-base \
  mono-mcs mono-runtime mypy python3-jsonschema python3-pytest
for preset in native thread windows; do
  build_preset "$preset"
done
build_preset native-library quenra_native
machine_on
rm -rf "$build/native/tests/faultsweep/faults"
failed=()
for preset in native native-library thread windows; do
  step "Testing $preset"
  ctest --preset "$preset" || failed+=("$preset")
done
report_faults
((${#failed[@]} == 0)) || fail "tests failed: ${failed[*]}. To repeat the failed ones of a preset:" \
  "ctest --preset ${failed[0]} --rerun-failed"
