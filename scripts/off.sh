#!/usr/bin/env bash
# ./dev off: switches the simulated machine off.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

machine_off
