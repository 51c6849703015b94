#!/usr/bin/env bash
# ./dev demo: builds quenra and the simulated machine, and shows quenra at work.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

demo_command() {
  printf '\n$ %s\n' "$*"
  local program=$1
  shift
  run_windows "$binaries/$program.exe" "$@" | cat
}

chapter() { printf '\n\n#### %s\n' "$*"; }

# Waits for a connected route and prints its ticket; fails after a timeout.
connected_ticket() {
  local attempts=30 routes ticket
  while ((attempts-- > 0)); do
    routes=$(run_windows "$binaries/quenra-sim.exe" routes)
    if [[ $routes == "ticket "*" programmed" ]]; then
      read -r _ ticket _ <<<"$routes"
      printf '%s' "$ticket"
      return
    fi
    sleep 0.2
  done
  return 1
}

show_attributes() {
  chapter "Reading attributes of the controller"
  demo_command quenra info
  demo_command quenra get product-name
  demo_command quenra get memory-size --instance 1
  demo_command quenra get firmware-version --controller
  demo_command quenra get interfaces-present --json
  demo_command quenra explain -26934
}

# Connects a route in one program and demotes it from another.
show_route() {
  chapter "Planning and connecting a trigger route that another program demotes"
  demo_command quenra terminals
  demo_command quenra route plan --from TRIG_SMB --to PXI_Trig0
  # The demotion makes this command fail as expected.
  demo_command quenra route connect --from TRIG_SMB --to PXI_Trig0 --for 5 2>&1 || true &
  local connection=$! ticket
  ticket=$(connected_ticket) || fail "the route was not connected"
  demo_command quenra-sim routes
  demo_command quenra-sim demote "$ticket"
  wait "$connection"
  demo_command quenra-sim routes
  printf '(no routes)\n'
}

show_update() {
  chapter "Updating the firmware of the Marten from 1.4.0f7 to 1.4.2f7"
  local image='C:\marten.fwi'
  head -c 65536 /dev/urandom >"$machine/drive_c/firmware.bin"
  demo_command quenra firmware build 'C:\firmware.bin' --output "$image" \
    --device MARTEN --firmware-version 1.4.2f7 --force
  demo_command quenra firmware inspect "$image"
  demo_command quenra get firmware-version --marten
  demo_command quenra update --plan "$image" --only-newer
  demo_command quenra update "$image" --only-newer
  demo_command quenra-sim firmware
  printf '\nA Marten runs the new firmware after a restart. The simulated Marten reports it on request:\n'
  demo_command quenra-sim attribute set marten 0x10000400 --text 1.4.2f7
  demo_command quenra get firmware-version --marten
}

end_machine_on_exit
install_packages "${windows_packages[@]}" "${machine_packages[@]}"
build_preset windows quenra_exe quenra-sim
machine_on
show_attributes
show_route
show_update
printf '\nTry your own: ./dev wine -- quenra help\n'
