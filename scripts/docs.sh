#!/usr/bin/env bash
# ./dev docs [--test]: builds the documentation site, and tests it and the examples on its pages.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

build_site() {
  install_packages "${docs_packages[@]}"
  step "Building the documentation"
  python3 -B docs/site/build.py "$build/site"
  printf 'Open %s\n' "$build/site/index.html"
}

test_site() {
  end_machine_on_exit
  install_packages "${windows_packages[@]}" "${machine_packages[@]}"
  build_preset windows quenra_dll quenra_exe quenra-sim
  machine_on
  step "Testing the documentation"
  ctest --preset windows --label-regex '^documents$'
  python3 -B tests/documents/examples.py
}

case ${1:-} in
  '') build_site ;;
  --test)
    build_site
    test_site
    ;;
  *) fail "unknown option '$1'; usage: ./dev docs [--test]" ;;
esac
