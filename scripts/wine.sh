#!/usr/bin/env bash
# ./dev wine -- PROGRAM [ARGUMENT…]: runs a Windows program in the simulated machine.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

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

[[ ${1:-} == -- ]] && shift
(($#)) || fail "name a program: ./dev wine -- quenra info"
trap 'machine_off; exit 130' INT
machine_on
program=$1
shift
[[ $program != */* && -f $binaries/${program%.exe}.exe ]] && program=$binaries/${program%.exe}.exe
cd "$caller"
# Do not pass the terminal to the program: Wine would take control of it and draw on it.
[[ ! -t 0 ]] || exec </dev/null
if [[ ! -t 1 ]]; then
  # The program replaces this process and receives its signals.
  exec "${steady[@]}" wine "$program" "$@"
fi
show_on_terminal "$program" "$@"
