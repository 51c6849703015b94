#!/usr/bin/env bash
# ./dev lint [library]: checks the formatting, runs shellcheck, and runs clang-tidy on all C++ sources or
# on those of the library only.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

# Other versions format differently and have other checks.
readonly tool_version=14

# Prints a message if a tool of another version is installed, whose result would mean nothing.
has_version() {
  [[ $("$1" --version) == *"version $tool_version."* ]] && return
  step "Skipping $1: the rules are those of version $tool_version, of Debian 12"
  return 1
}

# The database of the build lists C sources, generated sources and GoogleTest as well.
examine() {
  local log=$build/clang-tidy.log
  run-clang-tidy -quiet -j "$jobs" -p "$build/native" "$1" >"$log" 2>&1 && return
  grep -E '(error|warning):' "$log" | sort -u >&2
  fail "clang-tidy has findings: build/clang-tidy.log"
}

case $* in
  '') sources="$root/(?!build/).*" ;;
  library) sources="$root/(codegen|routingadaptorinterface|source|zoapal|zoarkra|zosmbios)/.*" ;;
  *) fail "usage: ./dev lint [library]" ;;
esac
# bench/otherlibraries.cpp includes the headers of OpenSSL.
install_packages "${native_packages[@]}" clang-format clang-tidy git libssl-dev shellcheck
if has_version clang-format; then
  step "clang-format"
  git ls-files --cached --others --exclude-standard -- '*.h' '*.hpp' '*.c' '*.cpp' |
    xargs clang-format --dry-run --Werror
fi
step "shellcheck"
git ls-files --cached --others --exclude-standard -- dev .ci/run packaging/simulator/quenra-machine '*.sh' |
  xargs shellcheck -x
if has_version clang-tidy; then
  configure_preset native
  step "clang-tidy"
  examine "^$sources\.cpp$"
fi
