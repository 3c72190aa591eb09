# shellcheck shell=sh
# What the project's commands share: Debian packages, builds and the private Wine prefix. Sourced, not run.
# Every step is silent when there is nothing to do, and says in one line what went wrong.

root=$(cd "$(dirname "$0")" && pwd)
root=${root%/scripts}
root=${root%/packaging}
log=$root/build/setup.log
export VANTREL_WINEPREFIX="$root/build/wine"
export TMPDIR="$root/build/tmp" # /tmp may be small
mkdir -p "$TMPDIR"

say() { printf '%s\n' "$*" >&2; }

fail() {
    say "error: $*"
    exit 1
}

# Runs a long step; its output goes to the log.
quietly() {
    what=$1
    shift
    if ! "$@" >"$log" 2>&1; then
        tail -n 25 "$log" >&2
        fail "$what failed; the full output is in ${log#"$root"/}"
    fi
}

install_packages() {
    $sudo apt-get update && $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "$@"
}

# need PACKAGE...: installs the missing ones.
need() {
    missing=
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing="$missing $package"
    done
    [ -z "$missing" ] && return
    sudo=
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null || fail "neither root nor sudo is available to install Debian packages:$missing"
        sudo="sudo"
    fi
    say "Installing Debian packages:$missing"
    # shellcheck disable=SC2086 # one argument a package
    quietly "installing$missing" install_packages $missing
}

need_cross_compiler() {
    need cmake ninja-build g++-mingw-w64-x86-64-posix googletest
}

# build PRESET [TARGET...]: configures if that was never done with these presets, then builds.
build() {
    preset=$1
    shift
    if [ -z "$(find "$root/build/$preset/build.ninja" -newer "$root/CMakePresets.json" 2>/dev/null)" ]; then
        say "Building $preset for the first time"
        quietly "configuring $preset" env -C "$root" cmake --preset "$preset"
    fi
    quietly "building $preset" env -C "$root" ninja -C "build/$preset" "$@"
}

wine() { "$root/scripts/wine" "$@"; }

# Without the preloader, Debian 12's Wine can't start when its heap lies where Windows keeps a shared page (0x7ffe0000):
# the kernel puts it there once in some 8,000 starts.
need_wine_packages() {
    need wine wine64 wine64-preloader fonts-dejavu-core
}

need_wine() {
    need_wine_packages
    if [ ! -e "$VANTREL_WINEPREFIX/ready" ]; then
        say "Preparing a private Wine prefix"
        rm -rf "$VANTREL_WINEPREFIX"
        quietly "preparing the Wine prefix" wine wineboot --init
        touch "$VANTREL_WINEPREFIX/ready"
    fi
}
