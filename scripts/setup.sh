#!/usr/bin/env bash
# Makes a Debian 12 machine ready to build and test: packages, and Wine's prefix under build/wine.
# With everything in place it takes well under a second and needs neither root nor network.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# Each package with the start of its version. The upstream version is pinned. Debian's suffix is not: the archive keeps only
# the newest one, and an exact pin would fail after the next security fix.
packages=(
    ca-certificates=                    # trust for apt; the newest is wanted
    git=1:2.39.                         # the files to check, the time of the commit in the archive
    cmake=3.25.1                        # build
    ninja-build=1.11.1
    g++=4:12.2.0                        # presets threads and bench
    libc6-dev=2.36
    zlib1g-dev=1:1.2.13
    libssl-dev=3.0.                     # bench.sh: the MD5 to measure up to
    g++-mingw-w64-x86-64-posix=12.2.0   # presets release and debug
    gcc-mingw-w64-x86-64-posix=12.2.0
    binutils-mingw-w64-x86-64=2.40
    mingw-w64-x86-64-dev=10.0.0
    libz-mingw-w64-dev=1.2.13
    rapidjson-dev=1.1.0
    googletest=1.12.1
    clang-format=1:14.0                 # check of the layout
    clang-tidy=1:14.0                   # scripts/tidy.sh, before a commit
    clang-14=1:14.0.6                   # preset native
    libclang-rt-14-dev=1:14.0.6         # its fuzzer and sanitizers
    wine=8.0                            # runs what the cross build makes
    wine64=8.0
    libgnutls30=3.7.9                   # Wine's TLS; libwine only recommends it
    libxcomposite1=1:0.4.5              # Wine on a display; only recommended too
    libxcursor1=1:1.2.1
    libxfixes3=1:6.0.0
    libxi6=2:1.8
    libxinerama1=2:1.1.4
    libxrandr2=2:1.5.2
    libxrender1=1:0.9.10
    xvfb=2:21.1.7                       # end-to-end tests of the dialogs: display, keys, pictures
    xdotool=1:3.20160805
    imagemagick=8:6.9.11
    fonts-wine=8.0
    python3=3.11.                       # end-to-end tests and the local store
    python3-pytest=7.2.1
    python3-pytest-xdist=3.1.0
    python3-swift=2.30.1
    python3-boto3=1.26.27               # Tools/UploadSigner
    openssl=3.0.                        # the store's test certificates
    curl=7.88.1                         # bench.sh: the script to measure up to
    mount=2.38.                         # the test of the default endpoint, in a file system of its own
)

installed_versions() { # names... -> lines "name version"
    dpkg-query -W -f '${db:Status-Status} ${Package} ${Version}\n' "$@" 2>/dev/null | sed -n 's/^installed //p' || true
}

missing_packages() { # prints what apt-get has to install, "name=version*" each
    local names=("${packages[@]%%=*}") name wanted have
    declare -A found=()
    while read -r name have; do found[$name]=$have; done < <(installed_versions "${names[@]}")
    for entry in "${packages[@]}"; do
        name=${entry%%=*} wanted=${entry#*=}
        [[ ${found[$name]:-} == "$wanted"* ]] || echo "$name=$wanted*"
    done
}

install_packages() {
    local missing
    mapfile -t missing < <(missing_packages)
    ((${#missing[@]})) || return 0
    echo "setup: installing ${missing[*]}"
    if [ "$(id -u)" != 0 ]; then
        echo "setup: packages are missing and only root can install them" >&2
        return 1
    fi
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -q
    apt-get install -q -y --no-install-recommends "${missing[@]}"
    mapfile -t missing < <(missing_packages)
    if ((${#missing[@]})); then
        echo "setup: still missing: ${missing[*]}" >&2
        return 1
    fi
}

# The prefix gets its name only when it is complete, so that an interrupted run leaves no half of one.
make_wine_prefix() {
    local prefix=$root/build/wine fresh=$root/build/wine.new
    [ -e "$prefix/system.reg" ] && [ -d "$prefix/drive_c/windows/system32" ] && return 0
    echo "setup: making Wine's prefix (some seconds)"
    rm -rf "$prefix" "$fresh"
    mkdir -p "$fresh"
    local log=$root/build/wineboot.log
    if ! WINEPREFIX=$fresh "$root/scripts/run-wine.sh" wineboot.exe --init >"$log" 2>&1 ||
        ! WINEPREFIX=$fresh wineserver -w; then
        cat "$log" >&2
        return 1
    fi
    mv "$fresh" "$prefix"
}

install_packages
make_wine_prefix
