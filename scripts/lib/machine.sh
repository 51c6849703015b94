# Sourced by the scripts of ./dev: the simulated machine of the build folder.
# shellcheck shell=bash disable=SC2034 # variables of simulator/machine.sh
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

readonly binaries=$build/windows/bin binaries_remedy="run ./dev build"
readonly machine=$build/machine # Wine's prefix: the disk of the simulated machine
readonly machine_log=$build/machine.log machine_lock=$build/.machine.lock machine_lifetime=-p600
# shellcheck source=simulator/machine.sh
source "$root/simulator/machine.sh"

end_machine_on_exit() {
  trap 'machine_off' EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM
}
