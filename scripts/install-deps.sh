#!/usr/bin/env bash
# Installs what Horalo needs to build, test and run on Debian 12 / Ubuntu 22.04+.
# Only packages that are missing are installed; apt runs through sudo when we are not root.
set -euo pipefail

build_pkgs=(
  build-essential cmake ninja-build pkg-config
  qt6-base-dev libqt6svg6 qt6-image-formats-plugins
  libicu-dev
  # The Wayland clipboard writer (libwayland-client, wayland-scanner) and Qt's wayland platform
  # for sessions without an X server.
  libwayland-dev libwayland-bin qt6-wayland
  libgtest-dev libgmock-dev libbenchmark-dev
  clang-format
  # scripts/package.sh: CPack's Debian generator finds library dependencies with these.
  dpkg-dev file
)
# What the tests need to drive a real desktop: a virtual X server, a tray host,
# a session bus and tools that click, read the clipboard and take screenshots.
test_pkgs=(
  xvfb xauth xdotool xclip x11-utils imagemagick dbus dbus-x11 trayer
  fonts-dejavu-core locales tzdata
  # A StatusNotifierItem host that draws the item's text label beside its icon.
  xfce4-panel xfce4-indicator-plugin ayatana-indicator-application
  # Headless Wayland sessions: a wlroots compositor with and without Xwayland, one without
  # data-control, and a native Wayland clipboard reader.
  sway xwayland weston wl-clipboard
  # A status bar that draws no tray label, fed by `horalo title --follow`, and its screenshots.
  waybar grim
  # The stand-in panel side (a StatusNotifierWatcher, dbusmenu clicks) of those sessions.
  python3-dbus python3-gi
  # The installed files checked as desktops and shells read them, and the package installed
  # into a fresh Debian root.
  desktop-file-utils appstream man-db groff-base zsh fish lintian debootstrap
  # scripts/fuzz.sh: the libFuzzer harnesses are built with clang and its runtime.
  clang-14 libclang-rt-14-dev
)

want=("${build_pkgs[@]}")
if [[ "${1:-}" == "--with-test-tools" ]]; then
  want+=("${test_pkgs[@]}")
fi

missing=()
for p in "${want[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done

if ((${#missing[@]})); then
  SUDO=""
  if [[ $(id -u) -ne 0 ]]; then SUDO="sudo"; fi
  echo "horalo: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
