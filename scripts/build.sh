#!/usr/bin/env bash
# ./dev build [PRESET…]: sets up and builds presets, windows by default.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

for preset in "${@:-windows}"; do
  is_preset "$preset"
done
for preset in "${@:-windows}"; do
  install_packages_of "$preset"
  build_preset "$preset"
done
