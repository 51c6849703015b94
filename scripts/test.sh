#!/usr/bin/env bash
# ./dev test [PRESET…]: sets up, builds, and runs every test, natively and in the simulated machine.
# ./dev test --integration [NAME…]: does so for the tests that need other large programs.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

# Empty on a system with an npm of its own, with which the package of Debian would conflict.
npm_package=$(command -v npm >/dev/null || printf npm)

# Integration tests, each with the Debian packages that only this test needs. tests/integration/README.md
# describes how to add one.
declare -rA integration_packages=(
  [fleet]="wine"
  [manyracks]="ansible-core"
  [rollout]="ansible-core ansible-lint openssh-client"
  [machines]="python3-jsonschema"
  [layout]="chromium ${docs_packages[*]}"
  [metrics]="python3-prometheus-client"
  [report]="chromium fonts-dejavu-core $npm_package"
)
# Debian packages that a test unpacks into build/integration/NAME, because installing them would start services. A
# system has those that it knows: Debian 12 has promtool in prometheus.
declare -rA integration_unpacked=(
  [metrics]="prometheus prometheus-node-exporter promtool"
)
# Targets of the preset windows that the integration tests run.
readonly integration_targets=(quenra_dll quenra_exe quenra-sim)

# unpack_packages FOLDER PACKAGE…
unpack_packages() {
  local folder=$1 package known=()
  [[ ! -f $folder/.unpacked ]] || return 0
  step "Unpacking ${*:2}"
  rm -rf "$folder"
  mkdir -p "$folder/archives"
  for package in "${@:2}"; do
    [[ -z $(apt-cache madison "$package") ]] || known+=("$package")
  done
  (cd "$folder/archives" && apt-get download -qq "${known[@]}" >/dev/null 2>&1) ||
    fail "downloading ${known[*]:-${*:2}} failed; try: apt-get update && apt-get download ${known[*]:-${*:2}}"
  for package in "$folder"/archives/*.deb; do
    dpkg-deb --extract "$package" "$folder"
  done
  rm -r "$folder/archives"
  touch "$folder/.unpacked"
}

run_integration_tests() {
  local names=("$@") name packages
  (($#)) || names=("${!integration_packages[@]}")
  for name in "${names[@]}"; do
    [[ ${integration_packages[$name]:-} ]] ||
      fail "there is no integration test '$name'; use ${!integration_packages[*]}"
  done
  end_machine_on_exit
  install_packages "${windows_packages[@]}" "${machine_packages[@]}"
  for name in "${names[@]}"; do
    read -ra packages <<<"${integration_packages[$name]}"
    install_packages "${packages[@]}"
    read -ra packages <<<"${integration_unpacked[$name]:-}"
    ((${#packages[@]} == 0)) || unpack_packages "$build/integration/$name" "${packages[@]}"
  done
  build_preset windows "${integration_targets[@]}"
  machine_on
  step "Testing together with other programs: ${names[*]}"
  ctest --preset integration --tests-regex "^integration_($(IFS='|' && printf '%s' "${names[*]}"))$" ||
    fail "integration tests failed. To repeat one of them: ./dev test --integration ${names[0]}"
}

# Prints the number of faults that the fault sweep has injected.
report_faults() {
  local counts=("$build"/native/tests/faultsweep/faults/*)
  [[ -f ${counts[0]} ]] || return 0
  printf 'Faults injected, one at a time: %d in %d tests\n' \
    "$(awk '{ sum += $1 } END { print sum }' "${counts[@]}")" "${#counts[@]}"
}

if [[ ${1:-} == --integration ]]; then
  shift
  run_integration_tests "$@"
  exit
fi
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
