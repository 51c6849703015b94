# Sourced by the scripts of ./dev: the project's folders, its Debian packages, and the CMake presets.
# shellcheck shell=bash
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
readonly root build=$root/build
readonly jobs=${QUENRA_JOBS:-$(nproc)}
# shellcheck disable=SC2034 # used by the scripts that source this file
readonly caller=$PWD # base of relative paths
cd "$root"

# Prefer the tools of the Debian packages to other tools of the same names.
export PATH=/usr/sbin:/usr/bin:/sbin:/bin:$PATH
# Compilers would add the folders of these variables, and a program database would contain them.
unset CPATH C_INCLUDE_PATH CPLUS_INCLUDE_PATH LIBRARY_PATH
# Wine decodes the arguments of a program in the encoding of the locale.
export LC_ALL=C.UTF-8

readonly windows_packages=(
  cmake g++-mingw-w64-x86-64-posix libboost-dev libcli11-dev libgmock-dev libgtest-dev ninja-build
  python3 rapidjson-dev
)
# One version on every system: cmake/mingw-w64-clang.cmake names it.
readonly windows_clang_packages=("${windows_packages[@]}" clang-19 lld-19 llvm-19)
readonly native_packages=("${windows_packages[@]}" clang g++ libclang-rt-dev libwine-dev patch)
# shellcheck disable=SC2034
readonly machine_packages=(wine wine64)
# shellcheck disable=SC2034
readonly docs_packages=(furo python3 python3-myst-parser python3-sphinx)

step() { printf '== %s\n' "$*" >&2; }
fail() {
  printf 'dev: %s\n' "$*" >&2
  exit 1
}

missing_packages() {
  local package
  for package in "$@"; do
    [[ $(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
      printf '%s\n' "$package"
  done
}

install_packages() {
  local missing
  mapfile -t missing < <(missing_packages "$@")
  ((${#missing[@]})) || return 0
  command -v apt-get >/dev/null || fail "these Debian packages are needed: ${missing[*]}"
  local as_root=()
  if ((EUID != 0)); then
    command -v sudo >/dev/null ||
      fail "run this as root, or install these packages first: ${missing[*]}"
    as_root=(sudo)
  fi
  step "Installing ${#missing[@]} packages: ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null 2>&1 ||
    fail "installing packages failed; try: apt-get install ${missing[*]}"
}

# Fails for a name that is not a preset for which ./dev builds and tests.
is_preset() {
  case $1 in
    windows | windows-clang | native | native-library | thread) ;;
    *) fail "there is no preset '$1'; use windows, windows-clang, native, native-library or thread" ;;
  esac
}

install_packages_of() {
  case $1 in
    windows) install_packages "${windows_packages[@]}" ;;
    windows-clang) install_packages "${windows_clang_packages[@]}" ;;
    *) install_packages "${native_packages[@]}" ;;
  esac
}

# Configures a preset, unless it is configured with the same treatment of warnings. With
# QUENRA_WARNINGS_AS_ERRORS=ON the preset of the same name with the prefix `ci-` is used.
configure_preset() {
  local preset=$1
  local folder=$build/$preset used=$preset warnings=${QUENRA_WARNINGS_AS_ERRORS:-}
  [[ $warnings != ON ]] || used=ci-$preset
  if [[ -f $folder/build.ninja ]] && { [[ -z $warnings ]] ||
    grep -qxF "CMAKE_COMPILE_WARNING_AS_ERROR:BOOL=$warnings" "$folder/CMakeCache.txt"; }; then
    return
  fi
  mkdir -p "$build"
  step "Configuring $preset"
  cmake --preset "$used" >"$build/$preset.configure.log" 2>&1 || {
    cat "$build/$preset.configure.log" >&2
    fail "configuring $preset failed"
  }
}

# build_preset PRESET [TARGET…]
build_preset() {
  local preset=$1 targets=("${@:2}")
  ((${#targets[@]} == 0)) || targets=(--target "${targets[@]}")
  configure_preset "$preset"
  step "Building $preset"
  cmake --build --preset "$preset" -j "$jobs" "${targets[@]}" -- --quiet
}
