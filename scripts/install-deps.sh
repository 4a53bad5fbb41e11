#!/usr/bin/env bash
# Installs the Debian packages the project builds and tests with.
# Idempotent: only packages that are missing are handed to apt-get.
set -euo pipefail

packages=(
    build-essential
    cmake
    ccache
    pkg-config
    libgtest-dev
    libgmock-dev
    libbenchmark-dev
    qt6-base-dev
    qt6-svg-dev
    qt6-image-formats-plugins
    qt6-translations-l10n
    zlib1g-dev
    libwmf-dev
    libemf2svg-dev
    imagemagick
    graphicsmagick
    libvips-tools
    hyperfine
    python3
    netpbm
    clang
    libclang-rt-dev
    fonts-noto-cjk
    xvfb
    libxcb1-dev
    poppler-utils
    xauth
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
