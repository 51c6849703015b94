#!/usr/bin/env bash
# ./dev reproduce [windows-clang]: builds the delivered files from two copies of the source, in folders
# of different names, installs them with their symbols, and compares the bytes.
# shellcheck source=scripts/lib/build.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib/build.sh"

readonly folder=$build/reproduction
readonly preset=${1:-windows}
delivered=(quenra.dll quenra.exe quenra-sim.exe)
case $preset in
  windows) ;;
  windows-clang) delivered+=("${delivered[@]/%/.pdb}") ;;
  *) fail "there is no preset '$preset' to reproduce; use windows or windows-clang" ;;
esac
# With a compiler cache the check would compare a build with itself.
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER

build_copy() {
  local copy=$1
  rm -rf "$copy"
  mkdir -p "$copy"
  git ls-files -z --cached --others --exclude-standard |
    tar --null --files-from=- --ignore-failed-read -cf - | tar -xf - -C "$copy"
  (
    cd "$copy"
    cmake --preset "$preset" >/dev/null 2>&1
    cmake --build --preset "$preset" -j "$jobs" \
      --target quenra_dll quenra_exe quenra-sim shipped -- --quiet
    for component in library commandline development documentation symbols; do
      cmake --install "build/$preset" --prefix installed --component "$component" >/dev/null
    done
  )
}

install_packages_of "$preset"
install_packages git llvm
build_copy "$folder/first"
build_copy "$folder/another-place"
failed=0
for name in "${delivered[@]}"; do
  if cmp "$folder"/{first,another-place}/build/"$preset"/bin/"$name"; then
    sha256sum "$folder/first/build/$preset/bin/$name" | sed "s| .*/|  |"
  else
    failed=1
  fi
done
diff -r "$folder"/{first,another-place}/installed || failed=1
exit "$failed"
