#!/usr/bin/env bash
# ./dev clean: switches the simulated machines off and removes the build folder.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

machine_off
"$root/scripts/fleet.sh" off
rm -rf "$build"
