# shellcheck shell=bash
# Sourced by the scripts that measure: builds a program's Release form, and runs it without a display.
. scripts/packages.sh

# shellcheck disable=SC2034 # for those that source this
build=build/release

# build_release TARGET [CMAKE_OPTION...]: what it says goes to standard error.
build_release() {
    require_packages "${build_packages[@]}"
    {
        cmake --preset release "${@:2}"
        cmake --build --preset release --target "$1"
    } >&2
    export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 TZ=UTC
}
