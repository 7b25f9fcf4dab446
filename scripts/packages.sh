# Sourced by the scripts beside it: installs the Debian packages that are missing.

build_packages=(g++ cmake ninja-build git ca-certificates pkg-config zlib1g-dev libboost-dev libedit-dev)
test_packages=(libgtest-dev libgmock-dev python3 binutils locales)
check_packages=(clang libclang-rt-14-dev)
bench_packages=(libbenchmark-dev libmimalloc-dev libmuparser-dev libabsl-dev libspdlog-dev libocct-foundation-dev
                libeigen3-dev libopenblas-dev liblapack-dev)

# need_packages PACKAGE...: make sure that these are installed, or end with a message
need_packages()
{
    local missing=() package
    for package; do
        dpkg-query -W -f='${Status}\n' "$package" 2>/dev/null | grep -q '^install ok installed$' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null || ! sudo -n true 2>/dev/null && [ ! -t 0 ]; then
            echo "These Debian packages are missing and installing them needs root:" >&2
            echo "    apt-get install ${missing[*]}" >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    if ! { "${as_root[@]}" apt-get update -qq &&
           "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
               apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >/tmp/vxtools-packages.$$ 2>&1; then
        cat "/tmp/vxtools-packages.$$" >&2
        rm -f "/tmp/vxtools-packages.$$"
        echo "Installing the packages above failed: ${missing[*]}" >&2
        exit 1
    fi
    rm -f "/tmp/vxtools-packages.$$"
}
