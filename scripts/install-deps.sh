#!/usr/bin/env bash
# Installs the Debian packages that Zentable builds against, and nothing else.
# Safe to run twice: a package already installed is left alone, and apt is not
# touched at all when nothing is missing.
set -euo pipefail

packages=(
  build-essential cmake pkg-config
  libboost-dev libfftw3-dev libquantlib0-dev
  libsvm-dev libsvm-tools gnuplot-nox
  libgtest-dev libbenchmark-dev
  clang-14 libclang-rt-14-dev libomp-14-dev
)

# Node.js and its npm may come from outside Debian; Debian's npm conflicts with
# such an install, so apt is asked for npm only when none is on PATH.
if ! command -v npm >/dev/null 2>&1; then
  packages+=(npm)
fi

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  echo "install-deps: all packages present"
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
# gnuplot-nox is named so that libsvm-tools does not pull a desktop gnuplot.
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
