# shellcheck shell=bash disable=SC2034,SC2164
# SPDX-License-Identifier: MIT
# What the commands at the root and in this folder share: where things are, what they need from
# Debian, and how they talk. Sourced, never run; the caller has set -euo pipefail.

VELLUM_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
VELLUM_TOOL=$VELLUM_ROOT/build/release/src/tools/vellum
VELLUM_FONT_FOLDERS=(/usr/share/fonts /usr/local/share/fonts /usr/share/texmf/fonts)

# What the release preset needs: it also looks for the test and benchmark libraries.
VELLUM_BUILD_PACKAGES=(
    g++ cmake ninja-build pkg-config
    libharfbuzz-dev libfreetype-dev libglib2.0-dev libexpat1-dev libicu-dev libfontconfig-dev libsqlite3-dev
    libcli11-dev nlohmann-json3-dev libarchive-dev
    libgtest-dev libgmock-dev libbenchmark-dev
)

# What every check needs besides. The fonts are what the tests read: many scripts, a collection with
# CFF outlines, Type 1, bitmap fonts, and (the last one) variable fonts with named instances.
VELLUM_CHECK_PACKAGES=(
    git binutils locales python3 python3-fonttools python3-icu
    clang-14 libclang-rt-14-dev clang-format-14 libmsgpack-dev
    fonts-noto-core fonts-noto-cjk fonts-dejavu fonts-urw-base35 lmodern xfonts-base
    fonts-inter-variable
)

say() { printf '%s\n' "$*"; }
fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

missing_packages() {
    local package
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || say "$package"
    done
}

# Runs a command as root: as it is, or through a sudo that needs no answer nobody is there to give.
as_root() {
    if ((EUID == 0)); then
        "$@"
    elif [[ -t 0 ]]; then
        sudo "$@"
    else
        sudo -n "$@"
    fi
}

can_be_root() {
    ((EUID == 0)) && return
    command -v sudo >/dev/null || return
    [[ -t 0 ]] || sudo -n true 2>/dev/null
}

# Installs those of the named packages that are not there; returns only when all of them are.
ensure_packages() {
    local missing log=$VELLUM_ROOT/build/packages.log
    local -x DEBIAN_FRONTEND=noninteractive
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        fail "packages are looked for with dpkg-query and apt-get, and one of them is not here.
This runs on Debian 12. Elsewhere install what these names stand for, then build by hand
(cmake --preset release && cmake --build --preset release):
  $*"
    fi
    mapfile -t missing < <(missing_packages "$@")
    ((${#missing[@]})) || return 0

    local command="apt-get update && apt-get install -y --no-install-recommends ${missing[*]}"
    can_be_root || fail "these packages are missing, and installing them takes root, which is not to be had here
(no root, and no sudo that works). Have this run as root, then start again:
  $command"
    say "Installing from Debian's packages: ${missing[*]}"
    mkdir -p "${log%/*}"
    : >"$log"
    # An old package list may still do; what counts is whether the packages get installed.
    as_root apt-get -o DPkg::Lock::Timeout=120 update </dev/null >>"$log" 2>&1 || true
    if ! as_root env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=120 \
        install -y --no-install-recommends "${missing[@]}" </dev/null >>"$log" 2>&1; then
        tail -n 15 "$log" >&2
        fail "apt-get could not install the missing packages; the end of what it said stands above, all
of it in $log. Once this works, start again:
  $command"
    fi
    mapfile -t missing < <(missing_packages "$@")
    ((${#missing[@]} == 0)) || fail "still not there after apt-get ended well: ${missing[*]} (see $log)"
}

# The project's files, zero-terminated, in one order: what git knows or would add; where there is no
# git, everything but what is built.
project_files() (
    cd "$VELLUM_ROOT"
    if [[ $(git rev-parse --show-toplevel 2>/dev/null) == "$VELLUM_ROOT" ]]; then
        git ls-files -z --cached --others --exclude-standard
    else
        find . \( -path ./build -o -name .git -o -name __pycache__ \) -prune -o -type f -printf '%P\0'
    fi | sort -zu | while IFS= read -r -d '' file; do [[ ! -f $file ]] || printf '%s\0' "$file"; done
)

# The C and C++ files of the project, zero-terminated.
source_files() {
    project_files | grep -zE '\.(c|h|cpp|hpp)$' || true
}

font_folders() {
    local folder
    for folder in "${VELLUM_FONT_FOLDERS[@]}"; do
        [[ ! -d $folder ]] || say "$folder"
    done
}
