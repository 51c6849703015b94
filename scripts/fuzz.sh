#!/usr/bin/env bash
# ./dev fuzz [SECONDS] [TARGET…] [--jobs N] [keep]: builds the fuzz targets and runs all of them, or
# the given ones, N at a time.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

readonly results=$build/native/tests/fuzz
readonly corpora=$root/tests/fuzz/corpus
readonly usage='./dev fuzz [SECONDS] [TARGET…] [--jobs N] [keep]'

# The files of a corpus that ./dev fuzz added. All others were written for a purpose.
readonly found_name='found-??????????'

print_row() { printf '%-18s %12s %10s %6s\n' "$@"; }

# Prints the number of inputs, inputs per second, and the edges of the sources under test that ran.
print_result() {
  local target=$1 log=$2
  print_row "$target" \
    "$(awk '/^stat::number_of_executed_units/ { print $2 }' "$log")" \
    "$(awk '/^stat::average_exec_per_sec/ { print $2 }' "$log")" \
    "$(awk '{ for (i = 1; i < NF; ++i) if ($i == "cov:") edges = $(i + 1) } END { print edges }' "$log")"
}

# Searches for new inputs, starting from the kept corpus and the inputs discovered before.
search() {
  local target=$1 log=$2
  mkdir -p "$results/discovered/$target"
  "$build/native/bin/${target}_fuzz" "-max_total_time=$seconds" -max_len=4096 -timeout=20 \
    -print_final_stats=1 "-artifact_prefix=$results/$target-" \
    "$results/discovered/$target" "$corpora/$target" >"$log" 2>&1
}

# Replaces the found inputs of a corpus by a minimal set that runs the edges of all inputs, besides
# the inputs that were written for a purpose.
keep_corpus() {
  local target=$1 log=$2
  local minimal=$scratch/$target input
  mkdir "$minimal"
  find "$corpora/$target" -type f ! -name "$found_name" -exec cp -t "$minimal" {} +
  "$build/native/bin/${target}_fuzz" -merge=1 -use_counters=0 "$minimal" \
    "$corpora/$target" "$results/discovered/$target" >"$log" 2>&1 || return
  trap '' TERM # replaces the corpus completely
  find "$corpora/$target" -type f -name "$found_name" -delete
  for input in "$minimal"/*; do
    input=${input##*/}
    [[ ! $input =~ ^[0-9a-f]{40}$ ]] || cp "$minimal/$input" "$corpora/$target/found-${input:0:10}"
  done
}

# Runs in a process group of its own. A signal ends the search, whose result is still printed.
run_target() {
  local target=$1 log=$results/$1.log status=0 interrupted=''
  trap 'interrupted=1' TERM
  search "$target" "$log" || status=$?
  print_result "$target" "$log"
  [[ -z $interrupted ]] || exit 130
  if ((status == 0)) && [[ $keep ]]; then
    keep_corpus "$target" "$log" || status=$?
  fi
  [[ -z $interrupted ]] || exit 130
  ((status == 0)) || tail -n 40 "$log" >&2
  exit "$status"
}

# ---- Processes ----

declare -A running=() # the target of each process group
failed=()

start_target() {
  set -m # a process group for the job
  run_target "$1" </dev/null &
  set +m
  running[$!]=$1
}

await_one() {
  local group='' status=0
  wait -n -p group "${!running[@]}" || status=$?
  ((status == 0)) || failed+=("${running[$group]}")
  unset "running[$group]"
}

end_on_signal() {
  local group
  trap '' HUP INT TERM
  for group in "${!running[@]}"; do
    kill -TERM -- "-$group" 2>/dev/null || true
  done
  for group in "${!running[@]}"; do
    while kill -0 -- "-$group" 2>/dev/null; do
      wait "$group" || true
      sleep 0.05
    done
  done
  exit "$1"
}

# ---- Arguments ----

seconds=60 jobs_at_a_time=1 keep='' targets=() known=("$corpora"/*/)
known=("${known[@]#"$corpora"/}")
known=("${known[@]%/}")
[[ ! ${1:-} =~ ^[0-9]+$ ]] || { seconds=$1 && shift; }
while (($#)); do
  case $1 in
    keep) keep=1 ;;
    all) targets=("${known[@]}") ;;
    --jobs)
      [[ ${2:-} =~ ^[1-9][0-9]*$ ]] || fail "--jobs needs a number of targets, not '${2:-}': $usage"
      jobs_at_a_time=$2
      shift
      ;;
    *)
      [[ " ${known[*]} " == *" $1 "* ]] || fail "there is no target '$1'; use ${known[*]}: $usage"
      [[ " ${targets[*]} " == *" $1 "* ]] || targets+=("$1")
      ;;
  esac
  shift
done
((${#targets[@]})) || targets=("${known[@]}")

install_packages "${native_packages[@]}"
build_preset native "${targets[@]/%/_fuzz}"

# A short quarantine and short stacks save a fifth of the time. Run a finding by itself for both.
export ASAN_OPTIONS=quarantine_size_mb=16:malloc_context_size=5
place=/dev/shm # a disk is slow
[[ -d $place ]] || place=${TMPDIR:-/tmp}
scratch=$(mktemp -d "$place/quenra.fuzz.XXXXXX")
export TMPDIR=$scratch
trap 'rm -rf "$scratch"' EXIT
trap 'end_on_signal 129' HUP
trap 'end_on_signal 130' INT
trap 'end_on_signal 143' TERM

print_row target inputs inputs/s edges
for target in "${targets[@]}"; do
  ((${#running[@]} < jobs_at_a_time)) || await_one
  start_target "$target"
done
while ((${#running[@]})); do
  await_one
done
((${#failed[@]} == 0)) || fail "failed: ${failed[*]}; the inputs are in $results"
