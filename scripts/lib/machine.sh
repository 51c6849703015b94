# Sourced by the scripts of ./dev: the simulated machine of the build folder.
# shellcheck shell=bash disable=SC2034 # variables of simulator/machine.sh
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

# Selects the preset whose programs run. There is one machine: switching to the programs of another
# preset installs their driver.
use_programs_of() {
  [[ $1 == windows || $1 == windows-clang ]] ||
    fail "preset '$1' has no Windows programs; use windows or windows-clang"
  binaries=$build/$1/bin
  binaries_remedy="run ./dev build $1"
}
use_programs_of windows
readonly machine_lifetime=-p600
# shellcheck source=simulator/machine.sh
source "$root/simulator/machine.sh"
# Wine's prefix: the disk of the simulated machine.
select_machine "$build/machine" "$build/machine.log" "$build/.machine.lock"

end_machine_on_exit() {
  trap 'machine_off' EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM
}
