#!/usr/bin/env bash
# ./dev coverage: runs the native tests with coverage counters and reports lines and branches.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

readonly min_lines=100 min_branches=96 # percent
readonly library='(source/user|zoapal/protons|codegen/apalcodegen|zosmbios|zoarkra|routingadaptorinterface)/'
# The code for AVX-512 runs only on processors that have it.
readonly excluded='source/user/firmware/decoding/avx512kernels.cpp'

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
