# Sourced by the scripts of ./dev: switches the simulated machine on and off and runs programs in it.
# shellcheck shell=bash
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/build.sh"

readonly binaries=$build/windows/bin
readonly machine=$build/machine # Wine's prefix: the disk of the simulated machine
readonly machine_log=$build/machine.log

# Wine prints no diagnostics, opens no dialogs, and does not touch the prefix in the home folder.
export WINEPREFIX=$machine WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
unset DISPLAY WAYLAND_DISPLAY

# Linux places the heap of Wine's loader at random within a gibibyte. In one of some thousand starts
# it covers an address that Wine needs, and the program exits with 1 without a message. Disabling
# address randomisation avoids that; where the system forbids it, the risk remains.
steady=()
! setarch -R true 2>/dev/null || steady=(setarch -R)
wine() { command "${steady[@]}" wine "$@"; }
wineserver() { command "${steady[@]}" wineserver "$@"; }

run_windows() { wine "$@" </dev/null; }

machine_runs() {
  local process
  for process in /proc/[0-9]*; do
    [[ $(readlink "$process/exe" 2>/dev/null) == *wine* ]] &&
      grep -qzxF "WINEPREFIX=$machine" "$process/environ" 2>/dev/null && return
  done
  return 1
}

# Waits for the remaining processes: the server exits before them.
machine_off() {
  [[ -d $machine ]] || return 0
  wineserver -k 2>/dev/null || true
  local attempts=100
  while ((attempts-- > 0)) && machine_runs; do
    sleep 0.1
  done
}

# Runs a Wine program to maintain the machine. Its background processes inherit the log as output,
# but neither the caller's pipes, which would stay open, nor the lock.
quietly() { "$@" </dev/null >>"$machine_log" 2>&1 9>&-; }

make_prefix() {
  [[ -f $machine/.made ]] && return
  step "Making the simulated machine (about 10 s)"
  rm -rf "$machine"
  mkdir -p "$machine"
  # Wait for the first boot to complete: installing a driver earlier fails.
  quietly wineboot -i && quietly wineserver -w && touch "$machine/.made"
}

install_driver() {
  local images=("$binaries"/quenrasim.sys "$binaries"/quenrasim.inf "$binaries"/quenrasimmemory.dll
    "$binaries"/quenrasimmanagement.dll "$binaries"/quenrasimpnputil.exe)
  local installed=$machine/.driver
  local current
  current=$(cat "${images[@]}" | sha256sum)
  [[ -f $installed && $(<"$installed") == "$current" ]] && return
  step "Installing the simulated controller"
  quietly wine "$binaries/quenra-sim.exe" install && printf '%s' "$current" >"$installed"
}

# Signal 0 succeeds only if a server runs.
is_on() { quietly wineserver -k0; }

switch_on() {
  make_prefix || return
  if is_on; then
    install_driver
    return
  fi
  quietly wineserver -p600
  install_driver || return
  # The prefix keeps changes from before the machine was switched off.
  quietly wine "$binaries/quenra-sim.exe" wait --timeout 10 &&
    quietly wine "$binaries/quenra-sim.exe" reset && return
  # The driver was uninstalled.
  rm -f "$machine/.driver"
  install_driver
}

# Programs may start concurrently; the lock lets one of them switch the machine on.
machine_on() {
  [[ -f $binaries/quenra-sim.exe ]] || fail "nothing is built yet: run ./dev build"
  (
    flock 9
    : >"$machine_log"
    switch_on
  ) 9>"$build/.machine.lock" || {
    cat "$machine_log" >&2
    fail "the simulated machine could not be switched on"
  }
}

end_machine_on_exit() {
  trap 'machine_off' EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM
}
