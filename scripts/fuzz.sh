#!/usr/bin/env bash
# ./dev fuzz [SECONDS] [TARGET] [keep]: builds the fuzz targets and runs all of them, or one.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

readonly folder=$build/native/tests/fuzz
readonly corpora=tests/fuzz/corpus

# Runs one target, starting from the kept corpus and the inputs discovered before.
fuzz_target() {
  local target=$1 seconds=$2
  local discovered=$folder/discovered/$target log=$folder/$target.log
  mkdir -p "$discovered"
  "$build/native/bin/${target}_fuzz" "-max_total_time=$seconds" -max_len=4096 -timeout=20 \
    -print_final_stats=1 "-artifact_prefix=$folder/" \
    "$discovered" "$root/$corpora/$target" >"$log" 2>&1 || {
    tail -n 40 "$log" >&2
    fail "the target $target failed; the input is in $folder"
  }
  printf '%-18s %10d inputs\n' "$target" \
    "$(awk '/number_of_executed_units/ { print $2 }' "$log")"
}

# Keeps a minimal set of inputs with the coverage of all inputs.
keep_corpus() {
  local target=$1
  "$build/native/bin/${target}_fuzz" -merge=1 -use_counters=0 \
    "$root/$corpora/$target" "$folder/discovered/$target" >/dev/null 2>&1 ||
    fail "the inputs of $target could not be merged"
}

seconds=${1:-60}
[[ $seconds =~ ^[0-9]+$ ]] || fail "'$seconds' is not a number of seconds: ./dev fuzz 60 [TARGET] [keep]"
targets=("$corpora"/*/)
targets=("${targets[@]#"$corpora"/}")
targets=("${targets[@]%/}")
if [[ ${2:-keep} != keep ]]; then
  [[ " ${targets[*]} " == *" $2 "* ]] || fail "there is no target '$2'; use ${targets[*]}"
  targets=("$2")
fi
install_packages "${native_packages[@]}"
build_preset native "${targets[@]/%/_fuzz}"
for target in "${targets[@]}"; do
  fuzz_target "$target" "$seconds"
  [[ ${*: -1} != keep ]] || keep_corpus "$target"
done
