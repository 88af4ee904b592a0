# shellcheck shell=bash
# Sourced by the scripts beside it: makes sure that Debian packages are there.

# require_packages PACKAGE...: installs what is missing, or says what to install and stops.
require_packages() {
    command -v dpkg-query >/dev/null || return 0 # not a Debian; the build will tell what it misses

    local missing=() package
    for package in "$@"; do
        dpkg-query --show --showformat='${db:Status-Abbrev}' "$package" 2>/dev/null \
            | grep -q '^.i' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null || ! sudo -n true 2>/dev/null; then
            echo "These Debian packages are needed: ${missing[*]}" >&2
            echo "Install them as root (apt-get install ${missing[*]}) and run this again," >&2
            echo "or run it as root or with sudo." >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]} ..."
    # Package scripts must not read what is meant for the caller, nor ask.
    "${as_root[@]}" apt-get update -qq </dev/null
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null >/dev/null
}

# What every build needs; libqt5svg5 brings Qt's reader for the plug-in's icon.
# shellcheck disable=SC2034 # for those that source this
build_packages=(
    cmake ninja-build g++ qtbase5-dev libqt5svg5-dev libqt5svg5 fonts-dejavu-core
)
