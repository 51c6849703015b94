#!/usr/bin/env bash
# ./dev package [--test]: makes the packages in build/package. With --test it also runs their tests.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

readonly output=$build/package
readonly packaging=$root/packaging
readonly stage=$output/stage # the installed files: stage/ZIP/bin, …
readonly binary_folder=$build/windows

# stage_components NAME COMPONENT…: installs components to stage/NAME.
stage_components() {
  local name=$1 component
  for component in "${@:2}"; do
    cmake --install "$binary_folder" --prefix "$stage/$name" --component "$component" >/dev/null
  done
}

# make_archive NAME: archives stage/NAME as NAME.zip.
make_archive() { python3 -B "$packaging/archive.py" "$stage/$1" "$output/$1.zip"; }

# ---- One function for each artefact ----

make_zip() {
  local name=$product-win64
  stage_components "$name" library commandline development documentation
  make_archive "$name"
}

make_symbols() {
  local name=$product-win64-symbols
  stage_components "$name" symbols
  make_archive "$name"
}

make_checksums() {
  local files
  mapfile -t files < <(find "$output" -maxdepth 1 -type f -printf '%P\n' | sort)
  (cd "$output" && sha256sum "${files[@]}" >SHA256SUMS)
}

make_packages() {
  rm -rf "$output"
  mkdir -p "$output"
  make_zip
  make_symbols
  make_checksums
}

tests=no
for argument in "$@"; do
  case $argument in
    --test) tests=yes ;;
    *) fail "there is no option '$argument': ./dev package [--test]" ;;
  esac
done

install_packages "${windows_packages[@]}" "${machine_packages[@]}" llvm
build_preset windows quenra_dll quenra_exe quenra-sim shipped
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$binary_folder/CMakeCache.txt")
readonly product=quenra-$version
step "Packaging $product"
make_packages
[[ $tests == no ]] || fail "the tests of the packages do not exist yet"
cat "$output/SHA256SUMS"
