#!/usr/bin/env bash
# ./dev clean: switches the simulated machine off and removes the build folder.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

machine_off
rm -rf "$build"
