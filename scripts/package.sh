#!/usr/bin/env bash
# ./dev package [--sign CERTIFICATE KEY [--timestamp URL]] [--test]: makes the packages in build/package.
# With --sign it signs library, programs and installer. With --test it also runs the tests of the packages.
# shellcheck source=scripts/lib/machine.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/machine.sh"
# shellcheck source=scripts/lib/signing.sh
source "$root/scripts/lib/signing.sh"

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

sign() { [[ ! $certificate ]] || sign_files "$certificate" "$key" "$timestamp" "$@"; }
sign_programs() { sign "$stage/$1"/bin/*.dll "$stage/$1"/bin/*.exe; }

# The headers have another place beside the pages than in the source.
relink_pages() { sed -i 's#](\.\./include/#](../../../../include/#g' "$1"/share/doc/quenra/docs/*.md; }

# ---- One function for each artefact ----

make_zip() {
  local name=$product-win64
  stage_components "$name" library commandline development documentation
  sign_programs "$name"
  stage_completions "$stage/$name"
  relink_pages "$stage/$name"
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
  python3 -B "$packaging/nupkg.py" "$version" "$folder/bin/quenra.dll" \
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
  chmod 644 "$output/$product-py3-none-win_amd64.whl" # hatchling leaves it readable by the owner only
}

# Contains the files of make_zip.
make_installer() {
  local name=$product-win64
  python3 -B "$packaging/installer/make_installer.py" "$stage/$name" "$version" "$output/$name.msi"
  sign "$output/$name.msi"
}

make_simulator() {
  local name=quenra-simulator-$version
  stage_components "$name" library commandline simulator
  sign_programs "$name"
  bill_of_materials licenses "$binary_folder" "$stage/$name"
  make_archive "$name"
  bill_of_materials document "$binary_folder" "$stage/$name" "$output/$name.zip" "$version" \
    "$output/$name.spdx.json"
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
  make_installer
  make_simulator
  make_checksums
}

# Makes the packages with --sign as a user does, and verifies the files in the archive and the installer.
test_signed_packages() {
  local folder=$build/package-signed file
  rm -rf "$folder"
  mkdir -p "$folder"
  openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=Test of quenra" \
    -addext extendedKeyUsage=codeSigning -keyout "$folder/key.pem" -out "$folder/certificate.pem" \
    2>"$build/signing.log" || fail "making a certificate failed: build/signing.log"
  "$root/scripts/package.sh" --sign "$folder/certificate.pem" "$folder/key.pem" >/dev/null
  unzip -q "$build/package/$product-win64.zip" -d "$folder"
  for file in "$folder/$product-win64"/bin/quenra.{dll,exe} "$build/package/$product-win64.msi"; do
    osslsigncode verify -CAfile "$folder/certificate.pem" -in "$file" >"$build/signing.log" 2>&1 ||
      fail "'$file' of ./dev package --sign is not signed: build/signing.log"
  done
}

test_packages() {
  step "Making the packages again, to compare the bytes"
  make_packages "$build/package-again"
  cmp "$build/package/SHA256SUMS" "$build/package-again/SHA256SUMS" ||
    fail "a second run made other bytes: compare build/package and build/package-again"
  step "Testing the packages"
  QUENRA_PACKAGES=$build/package QUENRA_VERSION=$version QUENRA_BUILD=$binary_folder \
    QUENRA_RUNNER="'$root/dev' wine --" \
    python3 -B -m unittest discover -s "$root/tests/packages" -p '*_test.py'
}

usage_error() { fail "$*: ./dev package [--sign CERTIFICATE KEY [--timestamp URL]] [--test]"; }

tests=no certificate='' key='' timestamp=''
while (($#)); do
  case $1 in
    --test) tests=yes ;;
    --sign)
      (($# >= 3)) || usage_error "--sign requires a certificate and its key"
      certificate=$(in_caller_folder "$2") key=$(in_caller_folder "$3")
      shift 2
      ;;
    --timestamp)
      [[ ${2:-} =~ ^https?://[^[:space:]]+$ ]] || usage_error "--timestamp requires the URL of an authority"
      timestamp=$2
      shift
      ;;
    *) usage_error "there is no option '$1'" ;;
  esac
  shift
done
[[ ! $timestamp || $certificate ]] || usage_error "--timestamp requires --sign"
[[ $tests == no || ! $certificate ]] ||
  usage_error "--test requires packages without signatures, which contain the time of signing"
if [[ $certificate ]]; then
  install_packages openssl osslsigncode
  check_signing "$certificate" "$key"
fi

end_machine_on_exit
install_packages "${windows_packages[@]}" "${machine_packages[@]}" llvm mono-mcs mono-runtime \
  python3-hatchling msitools wixl
build_preset windows quenra_dll quenra_exe quenra-sim shipped
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$binary_folder/CMakeCache.txt")
readonly product=quenra-$version
if [[ $tests == yes ]]; then
  install_packages clang lld openssl osslsigncode pkgconf python3-license-expression python3-pip \
    unzip
  test_signed_packages
fi
step "Packaging $product"
make_packages "$build/package"
[[ $tests == no ]] || test_packages
cat "$build/package/SHA256SUMS"
