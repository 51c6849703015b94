#!/usr/bin/env bash
# ./dev soak [MINUTES]: puts load on the library in the simulated machine.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

# Runs a load program in the background, so that the shell handles Ctrl-C immediately.
run_load() {
  { run_windows "$binaries/quenra_load.exe" "$@" | cat; } &
  wait "$!"
}

minutes=${1:-5}
[[ $minutes =~ ^[1-9][0-9]{0,3}$ ]] || fail "'$minutes' is not a number of minutes: ./dev soak 5"
end_machine_on_exit
install_packages "${windows_packages[@]}" "${machine_packages[@]}"
build_preset windows quenra_load quenra-sim
machine_on
failed=0
step "Ten thousand routes in two processes that are killed at times"
run_load routes --lives 10000 --kill-every 1 --seed "$RANDOM" || failed=1
step "Everything at once for $minutes minutes"
run_load mixed --seconds "$((minutes * 60))" --seed "$RANDOM" || failed=1
exit "$failed"
