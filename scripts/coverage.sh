#!/usr/bin/env bash
# ./dev coverage: runs the native tests with coverage counters and reports lines and branches, or with
# --conditions the conditions of the five cores.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

readonly min_lines=100 min_branches=96 # percent
readonly library='(source/user|zoapal/protons|codegen/apalcodegen|zosmbios|zoarkra|routingadaptorinterface)/'
# The code for AVX-512 runs only on processors that have it.
readonly excluded='source/user/firmware/decoding/avx512kernels.cpp'
# The programs that test the cores; scripts/coverage/conditions.py lists their sources.
readonly core_tests=(
  apalcodegen_test contract_test firmware_allocation_test firmware_test memorymodules_scanning_test
  pendingrequest_test protons_memory_test protons_windows_test routingadaptorinterface_test startup_test
  status_memory_test status_test user_test zosmbios_loader_test zosmbios_test
)

lines_and_branches() {
  install_packages "${native_packages[@]}" gcovr
  build_preset coverage
  step "Testing coverage"
  find "$build/coverage" -name '*.gcda' -delete
  ctest --preset coverage >"$build/coverage/test.log" || {
    tail -n 40 "$build/coverage/test.log" >&2
    fail "tests failed: build/coverage/test.log"
  }
  # Branches of exceptions are the compiler's, not the source's.
  gcovr --root "$root" --filter "$library" --exclude "$excluded" -j "$jobs" \
    --exclude-throw-branches --exclude-unreachable-branches \
    --txt --html-details "$build/coverage/report.html" \
    --fail-under-line "$min_lines" --fail-under-branch "$min_branches" --print-summary \
    "$build/coverage"
}

# Prints the ending that names a GCC of version 14 or newer: nothing for g++, -14 for g++-14.
condition_compiler() {
  local ending version
  for ending in '' -14; do
    if version=$("g++$ending" -dumpversion 2>/dev/null) && ((${version%%.*} >= 14)); then
      printf '%s\n' "$ending"
      return
    fi
  done
  fail "coverage --conditions needs GCC 14 or newer, and g++ is version $(g++ -dumpversion);" \
    "Debian 13 has it: apt-get install g++-14"
}

conditions() {
  install_packages g++
  local ending
  ending=$(condition_compiler)
  install_packages "${native_packages[@]}"
  export CC=gcc$ending CXX=g++$ending
  build_preset conditions "${core_tests[@]}"
  step "Testing conditions"
  find "$build/conditions" -name '*.gcda' -delete
  printf '%s\n' "${core_tests[@]}" |
    xargs -P "$jobs" -I NAME timeout 600 "$build/conditions/bin/NAME" --gtest_brief=1 \
      >"$build/conditions/test.log" 2>&1 || {
    grep -vE 'Skipped|no AVX-512|Running main|^$' "$build/conditions/test.log" | tail -n 40 >&2
    fail "tests failed: build/conditions/test.log"
  }
  python3 -B scripts/coverage/conditions.py "gcov$ending" "$root" "$build/conditions"
}

case ${1:-} in
  '') lines_and_branches ;;
  --conditions) conditions ;;
  *) fail "coverage has no option '$1'; use --conditions, or none" ;;
esac
