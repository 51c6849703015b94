# Sourced by scripts that run programs in simulated machines: those of ./dev, and quenra-machine of the
# download. Creates a machine, switches it on and off, and runs programs in it.
#
# The script defines before: binaries, the folder of quenra-sim and the driver's files, and
# binaries_remedy, the advice to a user who has none; machine_lifetime, the option of wineserver for the
# time after the last program; the functions `step`, which shows a step to the user, and `fail`, which
# shows a message and exits. It then calls select_machine, before any other function, and may define
# configure_machine again.
# shellcheck shell=bash
# shellcheck disable=SC2154 # defined by the script

# select_machine DISK LOG LOCK: the machine of the following calls. DISK is the folder of Wine's prefix, an
# absolute path; the files LOG and LOCK are outside it.
select_machine() {
  machine=$1 machine_log=$2 machine_lock=$3
  # Keeps Wine from the prefix in the home folder.
  export WINEPREFIX=$machine
}

# Called when the machine has been switched on, or its driver replaced: it is the default machine then.
configure_machine() { :; }

# Wine prints no diagnostics and opens no dialogs.
export WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml,winemenubuilder.exe="
# Wine decodes the arguments of a program in the encoding of the locale.
export LC_ALL=C.UTF-8
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

driver_hash() {
  cat "$binaries"/{quenrasim.sys,quenrasim.inf,quenrasimmemory.dll,quenrasimmanagement.dll,quenrasimpnputil.exe} |
    sha256sum
}

driver_is_current() { [[ -f $machine/.driver && $(<"$machine/.driver") == "$(driver_hash)" ]]; }

install_driver() {
  step "Installing the simulated controller"
  quietly wine "$binaries/quenra-sim.exe" install && driver_hash >"$machine/.driver"
}

# Signal 0 succeeds only if a server runs.
is_on() { quietly wineserver -k0; }

start_driver() {
  driver_is_current || install_driver || return
  # The prefix keeps changes from before the machine was switched off.
  quietly wine "$binaries/quenra-sim.exe" wait --timeout 10 &&
    quietly wine "$binaries/quenra-sim.exe" reset && return
  # The driver was uninstalled.
  install_driver
}

switch_on() {
  make_prefix || return
  if is_on; then
    driver_is_current || { install_driver && configure_machine; }
    return
  fi
  quietly wineserver "$machine_lifetime"
  start_driver && configure_machine
}

# Programs may start concurrently; the lock lets one of them switch the machine on.
machine_on() {
  [[ -f $binaries/quenra-sim.exe ]] ||
    fail "'$binaries' does not contain quenra-sim.exe: $binaries_remedy"
  (
    flock 9
    : >"$machine_log"
    switch_on
  ) 9>"$machine_lock" || {
    cat "$machine_log" >&2
    fail "the simulated machine could not be switched on"
  }
}

# Passes the program's output to the terminal through a pipe. Forwards a signal as Ctrl-C and still
# shows the output that follows.
show_on_terminal() {
  local status=0 signalled=yes screen child
  exec {terminal}>&1 > >(trap '' INT TERM && exec cat)
  screen=$!
  (exec "${steady[@]}" wine "$@") &
  child=$!
  trap 'signalled=yes; kill -INT "$child" 2>/dev/null || true' INT TERM
  while [[ $signalled ]]; do
    signalled=
    wait "$child" && status=0 || status=$?
  done
  exec >&"$terminal"
  wait "$screen" || true
  return "$status"
}

# Switches the machine on and runs a program with arguments in the current folder; does not return.
# Programs of the folder of quenra-sim need neither path nor suffix.
run_in_machine() {
  trap 'machine_off; exit 130' INT
  machine_on
  local program=$1
  shift
  [[ $program != */* && -f $binaries/${program%.exe}.exe ]] && program=$binaries/${program%.exe}.exe
  # Do not pass the terminal to the program: Wine would take control of it and draw on it.
  [[ ! -t 0 ]] || exec </dev/null
  if [[ ! -t 1 ]]; then
    # The program replaces this process and receives its signals.
    exec "${steady[@]}" wine "$program" "$@"
  fi
  local status=0
  show_on_terminal "$program" "$@" || status=$?
  exit "$status"
}
