#!/usr/bin/env bash
# ./dev package [--test]: makes the packages in build/package. With --test it also runs their tests.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"

readonly packaging=$root/packaging
readonly binary_folder=$build/windows

# stage_components NAME COMPONENT…: installs components to stage/NAME.
stage_components() {
  local name=$1 component
  for component in "${@:2}"; do
    cmake --install "$binary_folder" --prefix "$stage/$name" --component "$component" >/dev/null
  done
}

bill_of_materials() { python3 -B "$packaging/billofmaterials.py" "$@"; }

# make_archive NAME: archives stage/NAME as NAME.zip.
make_archive() { python3 -B "$packaging/archive.py" "$stage/$1" "$output/$1.zip"; }

# The scripts are those that the packaged program prints.
stage_completions() {
  local folder=$1 bash_folder=$1/share/bash-completion/completions
  mkdir -p "$bash_folder" "$folder/share/quenra"
  machine_on
  run_windows "$folder/bin/quenra.exe" completion bash >"$bash_folder/quenra"
  run_windows "$folder/bin/quenra.exe" completion powershell >"$folder/share/quenra/completion.ps1"
}

# ---- One function for each artefact ----

make_zip() {
  local name=$product-win64
  stage_components "$name" library commandline development documentation
  stage_completions "$stage/$name"
  bill_of_materials licenses "$binary_folder" "$stage/$name"
  make_archive "$name"
  bill_of_materials document "$binary_folder" "$stage/$name" "$output/$name.zip" "$version" \
    "$output/$name.spdx.json"
}

make_symbols() {
  local name=$product-win64-symbols
  stage_components "$name" symbols
  make_archive "$name"
}

make_nupkg() {
  local folder=$stage/$product-win64
  python3 -B "$root/bindings/csharp/nupkg.py" "$version" "$folder/bin/quenra.dll" \
    "$folder/share/doc/quenra/licenses" "$output/Quenra.$version.nupkg"
}

make_wheel() {
  local folder=$stage/$product-win64 source=$stage/python
  mkdir -p "$source/quenra/licenses"
  cp "$root"/bindings/python/{README.md,pyproject.toml,windowswheel.py} "$source"
  cp "$root"/bindings/python/quenra/{*.py,py.typed} "$folder/bin/quenra.dll" "$source/quenra"
  cp -R "$folder/share/doc/quenra/licenses/." "$source/quenra/licenses"
  (cd "$source" && QUENRA_VERSION=$version SOURCE_DATE_EPOCH=315532800 \
    python3 -B -m hatchling build --target wheel --directory "$output" >"$source.log" 2>&1) || {
    cat "$source.log" >&2
    fail "building the wheel failed"
  }
}

make_checksums() {
  local files
  mapfile -t files < <(find "$output" -maxdepth 1 -type f -printf '%P\n' | sort)
  (cd "$output" && sha256sum "${files[@]}" >SHA256SUMS)
}

# make_packages FOLDER: makes every package in a new folder. FOLDER/stage has the installed files.
make_packages() {
  output=$1
  stage=$output/stage
  rm -rf "$output"
  mkdir -p "$output"
  make_zip
  make_symbols
  make_nupkg
  make_wheel
  make_checksums
}

test_packages() {
  install_packages clang lld pkgconf python3-license-expression python3-pip
  step "Making the packages again, to compare the bytes"
  make_packages "$build/package-again"
  cmp "$build/package/SHA256SUMS" "$build/package-again/SHA256SUMS" ||
    fail "a second run made other bytes: compare build/package and build/package-again"
  step "Testing the packages"
  QUENRA_PACKAGES=$build/package QUENRA_VERSION=$version QUENRA_BUILD=$binary_folder \
    QUENRA_RUNNER="'$root/dev' wine --" \
    python3 -B -m unittest discover -s "$root/tests/packages" -p '*_test.py'
}

tests=no
for argument in "$@"; do
  case $argument in
    --test) tests=yes ;;
    *) fail "there is no option '$argument': ./dev package [--test]" ;;
  esac
done

end_machine_on_exit
install_packages "${windows_packages[@]}" "${machine_packages[@]}" llvm mono-mcs mono-runtime \
  python3-hatchling
build_preset windows quenra_dll quenra_exe quenra-sim shipped
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$binary_folder/CMakeCache.txt")
readonly product=quenra-$version
step "Packaging $product"
make_packages "$build/package"
[[ $tests == no ]] || test_packages
cat "$build/package/SHA256SUMS"
