#!/usr/bin/env bash
# Installs, with apt-get, whatever the build, the tests and the tools need and
# this machine lacks. Idempotent and non-interactive; run as root (or with sudo
# available). Does nothing when every package is present.
set -euo pipefail

packages=(
  build-essential g++ cmake ninja-build pkg-config ccache git
  dpkg-dev file binutils
  libsqlite3-dev libzstd-dev
  libboost-dev libboost-filesystem-dev libboost-system-dev libboost-thread-dev
  libboost-regex-dev libboost-date-time-dev libboost-stacktrace-dev
  libvigraimpex-dev libutfcpp-dev liblapack-dev
  liblzf-dev libgtest-dev libbenchmark-dev
  pybind11-dev python3-dev python3-numpy python3-pandas python3-pytest python3-tqdm
  python3-dask python3-distributed python3-matplotlib
  python3-lxml python3-pymzml topp
)
# The Clang builds (make clang, make fuzz, make tsan) need clang, LLVM's OpenMP
# runtime with its Archer tool for ThreadSanitizer, and the sanitizer runtimes.
if [ "${KORA_BOOTSTRAP_CLANG:-0}" = 1 ]; then
  packages+=(clang libomp-dev libclang-rt-dev)
fi
# make valgrind needs Valgrind.
if [ "${KORA_BOOTSTRAP_VALGRIND:-0}" = 1 ]; then
  packages+=(valgrind)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "bootstrap: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
