# Shared by the scripts beside this file; sourced, not run. Sets $root and offers install_missing, build and stage.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

# What a build needs, and a command to run it: the packages of a bare Debian 12.
build_packages=(g++ cmake ninja-build qt6-base-dev qt6-svg-dev libtinyxml2-dev libzstd-dev nlohmann-json3-dev
    khronos-api libegl-dev libglvnd-core-dev)
run_packages=(libqt6svg6 fonts-dejavu-core)
test_packages=(libgtest-dev libgles-dev libegl1 libgles2 libegl-mesa0 libgl1-mesa-dri)
windows_packages=(g++-mingw-w64-x86-64-posix wine wine64 googletest)
fuzz_packages=(clang libclang-rt-14-dev)
display_packages=(xvfb x11-utils imagemagick)

# install_missing PACKAGE...: installs those that are not there, and says which.
install_missing() {
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These Debian packages are missing: ${missing[*]}" >&2
            echo "Install them as root (apt-get install ${missing[*]}), then start this script again." >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    echo "Installing missing Debian packages: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" \
        >/dev/null
}

# show_progress LOG: passes what a build says on to the log, and shows how far it is: in one line that changes on a
# terminal, else every ten seconds.
show_progress() {
    local line shown=-10
    while IFS= read -r line; do
        printf '%s\n' "$line" >>"$1"
        [[ $line =~ ^\[([0-9]+/[0-9]+)\] ]] || continue
        if [ -t 1 ]; then
            printf '\rBuilding: step %s\033[K' "${BASH_REMATCH[1]}"
        elif [ $((SECONDS - shown)) -ge 10 ]; then
            shown=$SECONDS
            echo "Building: step ${BASH_REMATCH[1]}"
        fi
    done
    [ ! -t 1 ] || echo
}

# build TARGET...: configures where that has not been done, and builds the targets in release mode.
build() {
    local log
    log=$(mktemp)
    if [ ! -f build/release/build.ninja ]; then
        echo "Configuring"
        cmake --preset release >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    fi
    if ! cmake --build --preset release --target "$@" -- -n 2>/dev/null | grep -q 'no work to do'; then
        echo "Building"
        cmake --build --preset release --target "$@" 2>&1 | show_progress "$log" || { cat "$log" >&2; exit 1; }
    fi
    rm -f "$log"
}

# stage: installs the program, which has been built, into build/stage. Files that have not changed stay as they are.
stage() {
    local log
    log=$(mktemp)
    cmake --install build/release --prefix build/stage --component corvale >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    rm -f "$log"
}
