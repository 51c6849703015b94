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
# Runs the tests of presets, one preset after another, and appends the names of those that failed to
# the file $failures.
test_presets() {
  local preset
  for preset in "$@"; do
    if [[ $preset == windows* ]]; then
      use_programs_of "$preset"
      machine_on
    fi
    step "Testing $preset"
    ctest --preset "$preset" || printf '%s\n' "$preset" >>"$failures"
  done
}

# The tests in the simulated machine take turns, and wait for Wine most of the time: the native ones run
# meanwhile. A process group of its own makes Ctrl-C and an error end both.
test_beside() {
  local -n on_machine=$1 natively=$2
  local log=$build/test-${on_machine[0]}.log tests
  step "Testing ${on_machine[*]} meanwhile; the results follow at the end"
  set -m
  test_presets "${on_machine[@]}" </dev/null >"$log" 2>&1 &
  tests=$!
  set +m
  # shellcheck disable=SC2064 # the number of this process
  trap "kill -TERM -- -$tests 2>/dev/null || true; machine_off" EXIT
  test_presets "${natively[@]}"
  [[ ! -t 1 ]] || step "Waiting for the tests of ${on_machine[*]}: $log"
  local status=0
  wait "$tests" || status=$?
  end_machine_on_exit
  cat "$log"
  ((status == 0)) || fail "the tests of ${on_machine[*]} could not be run"
}

presets=("$@")
(($#)) || presets=(native native-library thread windows)
machine_presets=()
native_presets=()
for preset in "${presets[@]}"; do
  is_preset "$preset"
  if [[ $preset == windows* ]]; then
    machine_presets+=("$preset")
  else
    native_presets+=("$preset")
  fi
done
end_machine_on_exit
install_packages "${native_packages[@]}" "${machine_packages[@]}" "${docs_packages[@]}" groff-base \
  mono-mcs mono-runtime mypy python3-jsonschema python3-pytest
for preset in "${presets[@]}"; do
  install_packages_of "$preset"
  build_preset "$preset"
done
rm -rf "$build/native/tests/faultsweep/faults"
readonly failures=$build/failed-presets
: >"$failures"
if ((${#machine_presets[@]} && ${#native_presets[@]})); then
  test_beside machine_presets native_presets
else
  test_presets "${presets[@]}"
fi
report_faults
mapfile -t failed <"$failures"
((${#failed[@]} == 0)) || fail "tests failed: ${failed[*]}. To repeat the failed ones of a preset:" \
  "ctest --preset ${failed[0]} --rerun-failed"
