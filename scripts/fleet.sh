#!/usr/bin/env bash
# ./dev fleet N | run RACK -- PROGRAM… | restart RACK | off: simulated racks, which share the files of Wine.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

readonly fleet=$build/fleet base=$build/fleet/base inventory=$build/fleet/inventory.yml
readonly largest_fleet=64

usage() {
  cat <<'TEXT'
Usage: ./dev fleet N                                 start simulated racks, rack-1 to rack-N
       ./dev fleet run RACK -- PROGRAM [ARGUMENT…]   run a Windows program on a rack
       ./dev fleet restart RACK [--marten VERSION] [--bios VERSION]
                                                     restart a rack: it starts the firmware that it
                                                     received, or reports these versions
       ./dev fleet off                               end all racks and delete their disks

A payload of firmware for these racks begins with its version: ./dev fleet restart reads it there.
TEXT
}

wrong_usage() {
  usage >&2
  fail "$@"
}

# ---- One rack ----

# The machine of the following calls is that of a rack.
select_rack() {
  rack=$1
  rack_folder=$fleet/$rack
  select_machine "$rack_folder/disk" "$rack_folder/log" "$rack_folder/lock"
}

require_rack() {
  [[ $1 =~ ^rack-[1-9][0-9]*$ ]] || wrong_usage "'$1' is not the name of a rack, such as rack-1"
  [[ -d $fleet/$1/disk ]] || fail "there is no $1. ./dev fleet N starts rack-1 to rack-N"
}

on_rack() { quietly wine "$binaries/quenra-sim.exe" "$@"; }

# The versions that a rack reports: BIOS and Marten, one in a line.
firmware_of_rack() { printf '%s/firmware' "$rack_folder"; }

first_firmware() {
  local number=$1
  local bios=(2.1.0f3 2.0.1f2 2.1.0f1) marten=(1.4.0f7 1.3.2f4 1.4.0f7 1.4.1f0)
  printf '%s\n' "${bios[number % 3]}" "${marten[number % 4]}"
}

# Racks differ by their number. Called by switch_on, with the lock of the rack.
configure_machine() {
  [[ ${rack:-} ]] || return 0
  local number=${rack#rack-} versions memory=(16384 8192 4096)
  local size=${memory[number % 3]}
  mapfile -t versions <"$(firmware_of_rack)"
  on_rack scenario --structure-text "1/7=VQ03$(printf '%06d' "$((number * 4099))")" \
    --structure-text "0/5=${versions[0]}" \
    --structure-byte "17/12=$((size % 256))" --structure-byte "17/13=$((size / 256))" &&
    on_rack attribute set marten 0x10000400 --text "${versions[1]}"
}

# Wine writes to the files of a disk that are not copies of its own: the registry, inf files, the driver.
# Each rack has these as files of its own. Of the others, which no program opens for writing, all
# racks and the base have one copy.
make_disk() {
  local own=("(" ! -path '*/drive_c/*' -o ! "(" -name '*.dll' -o -name '*.exe' -o -name '*.nls' -o
    -name '*.msstyles' -o -name '*.drv' -o -name '*.ocx' -o -name '*.acm' -o -name '*.cpl' -o
    -name '*.tlb' -o -name '*.sys' ")" -o -name 'quenrasim*' -o -path '*/Sysnative/*' ")")
  rm -rf "$machine" "$machine.new"
  mkdir -p "$rack_folder"
  cp -al "$base/disk" "$machine.new"
  (cd "$base/disk" && find . -type f "${own[@]}" -print0) |
    (cd "$base/disk" && xargs -0 cp -a --parents --remove-destination -t "$machine.new")
  mv "$machine.new" "$machine"
}

start_rack() {
  local number=$1
  select_rack "rack-$number"
  [[ -d $machine ]] || make_disk
  [[ -f $(firmware_of_rack) ]] || first_firmware "$number" >"$(firmware_of_rack)"
  machine_on
}

end_rack() {
  select_rack "$1"
  machine_off
  rm -rf "$rack_folder"
}

# ---- The fleet ----

racks() {
  local folder
  for folder in "$fleet"/rack-*/; do
    [[ ! -d $folder ]] || basename "$folder"
  done | sort -V
}

# The disk from which those of the racks are made: of this Wine, with this driver. Not left running.
make_base() {
  local key
  key="$(wine --version) $(driver_hash)"
  [[ -f $base/key && $(<"$base/key") == "$key" ]] && return
  rm -rf "$base"
  mkdir -p "$base"
  (
    select_machine "$base/disk" "$base/log" "$base/lock"
    trap 'machine_off; rm -rf "$base"; exit 130' INT TERM
    machine_on
    machine_off
  )
  printf '%s' "$key" >"$base/key"
}

write_inventory() {
  local command="'${root//\'/\'\\\'\'}/dev' fleet"
  {
    printf '# Simulated racks, written by ./dev fleet.\nracks:\n  vars:\n'
    printf '    ansible_connection: local\n    quenra_command: >-\n      %s run {{ inventory_hostname }} -- quenra\n' "$command"
    printf '    quenra_update_restart_command: >-\n      %s restart {{ inventory_hostname }}\n' "$command"
    printf '    quenra_update_restart_delay: 0\n  hosts:\n'
    racks | sed 's/.*/    &:/'
  } >"$inventory"
}

end_fleet() {
  local rack_to_end
  for rack_to_end in $(racks); do
    (end_rack "$rack_to_end") &
  done
  wait
  # With what the roles of Ansible write beside the inventory.
  rm -rf "$inventory" "$fleet/racks.json" "$fleet/quenra-records"
}

start_fleet() {
  local number rack_to_end started=() failed=
  # Racks that start cannot be interrupted: Wine would leave processes.
  trap 'trap "" INT TERM; step "Ending the racks"; wait; end_fleet; exit 130' INT TERM
  install_packages "${windows_packages[@]}" "${machine_packages[@]}"
  build_preset windows quenra_dll quenra_exe quenra-sim >&2
  make_base
  for rack_to_end in $(racks); do
    ((${rack_to_end#rack-} <= $1)) || (end_rack "$rack_to_end")
  done
  step "Starting $1 racks"
  for ((number = 1; number <= $1; number++)); do
    (start_rack "$number") &
    started+=("$!")
    # Two at a time for each processor; more would only wait for each other.
    ((${#started[@]} < 2 * jobs)) || wait "${started[-2 * jobs]}" || failed=1
  done
  for number in "${started[@]}"; do
    wait "$number" || failed=1
  done
  [[ ! $failed ]] || {
    end_fleet
    fail "a rack did not start"
  }
  write_inventory
}

report_fleet() {
  cat <<TEXT
$1 racks are on: rack-1 to rack-$1
  A program on a rack       ./dev fleet run rack-1 -- quenra info
  Another state of a rack   ./dev fleet run rack-1 -- quenra-sim encryption on
  Inventory for Ansible     $inventory
  End all racks             ./dev fleet off
docs/many-racks.md shows what to do with them.
TEXT
}

# ---- Commands ----

run_on_rack() {
  (($# > 1)) || wrong_usage "name a rack and a program: ./dev fleet run rack-1 -- quenra info"
  require_rack "$1"
  select_rack "$1"
  shift
  [[ $1 == -- ]] && shift
  (($#)) || wrong_usage "name a program: ./dev fleet run $rack -- quenra info"
  cd "$caller"
  run_in_machine "$@"
}

# Prints the version at the beginning of the latest payload that the interface received.
version_received() {
  run_windows "$binaries/quenra-sim.exe" firmware --json | python3 -c '
import json, re, sys
starts = [bytes.fromhex(payload["start"]) for payload in json.load(sys.stdin)["payloads"]
          if payload["interface"] == sys.argv[1]]
match = starts and re.match(rb"\d+\.\d+\.\d+[dabf]\d+(?!\w)", starts[-1])
if starts and not match:
    sys.exit(1)
print(match[0].decode() if match else "")' "$1"
}

restart_rack() {
  (($#)) || wrong_usage "name a rack: ./dev fleet restart rack-1"
  require_rack "$1"
  select_rack "$1"
  shift
  local new_bios='' new_marten='' texts versions received
  while (($#)); do
    [[ ${2:-} =~ ^[0-9]+\.[0-9]+\.[0-9]+[dabf][0-9]+$ ]] ||
      wrong_usage "'$1' requires a version such as 1.4.2f7"
    case $1 in
      --bios) new_bios=$2 ;;
      --marten) new_marten=$2 ;;
      *) wrong_usage "unknown option '$1'" ;;
    esac
    shift 2
  done
  machine_on
  mapfile -t versions <"$(firmware_of_rack)"
  texts=$(version_received controller && version_received marten) ||
    [[ $new_bios && $new_marten ]] ||
    fail "a payload that $rack received does not begin with its version. Name the versions:" \
      "./dev fleet restart $rack --bios 2.2.0f1 --marten 1.4.2f7"
  mapfile -t received <<<"$texts"
  versions=("${new_bios:-${received[0]:-${versions[0]}}}"
    "${new_marten:-${received[1]:-${versions[1]}}}")
  printf '%s\n' "${versions[@]}" >"$(firmware_of_rack)"
  (
    flock 9
    configure_machine
  ) 9>"$machine_lock" || fail "$rack cannot be restarted: see $machine_log"
  printf '%s: BIOS %s, Marten %s\n' "$rack" "${versions[@]}"
}

case ${1:-} in
  run) run_on_rack "${@:2}" ;;
  restart) restart_rack "${@:2}" ;;
  off)
    (($# == 1)) || wrong_usage "off accepts no argument '$2'"
    end_fleet
    ;;
  '' | -h | --help | help) usage ;;
  *)
    if [[ ! $1 =~ ^[1-9][0-9]?$ ]] || (($1 > largest_fleet)); then
      wrong_usage "'$1' is not a number of racks from 1 to $largest_fleet"
    fi
    (($# == 1)) || wrong_usage "unexpected argument '$2'"
    start_fleet "$1"
    report_fleet "$1"
    ;;
esac
