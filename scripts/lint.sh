#!/usr/bin/env bash
# ./dev lint: checks the formatting, runs shellcheck, and runs clang-tidy on the native build.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

# bench/otherlibraries.cpp includes the headers of OpenSSL.
install_packages "${native_packages[@]}" clang-format clang-tidy libssl-dev shellcheck
step "clang-format"
git ls-files --cached --others --exclude-standard -- '*.h' '*.hpp' '*.c' '*.cpp' |
  xargs clang-format --dry-run --Werror
step "shellcheck"
git ls-files --cached --others --exclude-standard -- dev .ci/run packaging/simulator/quenra-machine '*.sh' |
  xargs shellcheck -x
configure_preset native
step "clang-tidy"
# The project's C++ sources: the database also lists C sources, generated sources and GoogleTest.
run-clang-tidy -quiet -j "$jobs" -p "$build/native" "^$root/(?!build/).*\.cpp$" >"$build/clang-tidy.log" 2>&1 || {
  grep -E '(error|warning):' "$build/clang-tidy.log" | sort -u >&2
  fail "clang-tidy has findings: build/clang-tidy.log"
}
