#!/usr/bin/env bash
# Installs the Debian package the way a user does, `apt install ./horalo_….deb`, on a clean
# Debian 12: a minimal root made by debootstrap (a plain chroot, no container), then runs the
# installed program there: its commands, and the desktop program on an X server of our own.
# Lintian checks the package first.
# Usage: deb_install.sh DEB [ROOT]   (ROOT: a clean bookworm root to copy instead of making one)
set -euo pipefail
deb=$(realpath "$1")
cached_root=${2:-}
[[ $(id -u) == 0 ]] || { echo "deb_install: needs root (debootstrap, chroot)" >&2; exit 1; }

work=$(mktemp -d /var/tmp/horalo-deb-XXXXXX)
root=$work/root
xvfb_pid=
cleanup() {
  [[ -n $xvfb_pid ]] && kill "$xvfb_pid" 2>/dev/null
  for m in "$root/proc" "$root/dev/pts" "$root/dev"; do
    mountpoint -q "$m" && umount -l "$m"
  done
  rm -rf --one-file-system "$work"
}
trap cleanup EXIT

echo "== lintian"
# Errors fail; warnings are shown.
lintian --fail-on error --tag-display-limit 0 "$deb"

echo "== a clean Debian 12"
start=$(date +%s)
if [[ -n $cached_root ]]; then
  cp -a "$cached_root" "$root"
else
  debootstrap --variant=minbase bookworm "$root" "${DEBIAN_MIRROR:-http://deb.debian.org/debian}" >"$work/debootstrap.log" 2>&1 ||
    { tail -20 "$work/debootstrap.log"; exit 1; }
fi
echo "root ready in $(($(date +%s) - start)) s"
mount -t proc proc "$root/proc"
mount --bind /dev "$root/dev"
cp /etc/resolv.conf "$root/etc/resolv.conf"
cp "$deb" "$root/tmp/"
in_root() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 "$@"; }

echo "== apt install ./$(basename "$deb")"
start=$(date +%s)
in_root apt-get update -qq
in_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "/tmp/$(basename "$deb")" >"$work/apt.log" 2>&1 ||
  { tail -30 "$work/apt.log"; exit 1; }
echo "installed with its dependencies in $(($(date +%s) - start)) s"

echo "== the installed program"
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }
in_root dpkg -L horalo >"$work/files"
for f in /usr/bin/horalo /usr/share/applications/org.horalo.Horalo.desktop \
  /usr/share/metainfo/org.horalo.Horalo.metainfo.xml /usr/share/man/man1/horalo.1.gz \
  /usr/share/bash-completion/completions/horalo /usr/share/zsh/vendor-completions/_horalo \
  /usr/share/fish/vendor_completions.d/horalo.fish /usr/share/icons/hicolor/scalable/apps/horalo.svg \
  /usr/share/dbus-1/interfaces/org.horalo.Horalo.xml /usr/share/doc/horalo/copyright; do
  grep -qx "$f" "$work/files" || fail "the package lacks $f"
done
year=$(in_root env TZ=UTC horalo render --now @0 --format %Y) || fail "horalo render"
[[ $year == 1970 ]] || fail "horalo render printed '$year'"
if version=$(in_root horalo --version 2>&1); then
  echo "horalo --version: $version"
  [[ $version == "horalo "* ]] || fail "horalo --version printed '$version'"
else
  echo "horalo --version is not a command of this build: $version"
fi
in_root bash -c 'source /usr/share/bash-completion/completions/horalo
  COMP_WORDS=(horalo copy "Numerical Date N"); COMP_CWORD=2; _horalo; printf "%s\n" "${COMPREPLY[@]}"' |
  grep -qx "Numerical Date No Hyphens" || fail "bash completion in the installed system"

# The desktop program: it must find its Qt plugins (xcb, TIFF, SVG) in a system that has only
# what the package pulled in. Our own X server; the chroot reaches it through its abstract socket.
Xvfb -displayfd 3 -screen 0 1024x600x24 -nolisten tcp 3>"$work/display" >"$work/xvfb.log" 2>&1 &
xvfb_pid=$!
display=
for _ in $(seq 100); do
  display=$(cat "$work/display")
  [[ -n $display ]] && break
  sleep 0.1
done
[[ -n $display ]] || fail "Xvfb did not start: $(cat "$work/xvfb.log")"
if [[ -n $display ]]; then
  mkdir -p "$root/run/user/0" && chmod 700 "$root/run/user/0"
  in_root env DISPLAY=":$display" XDG_RUNTIME_DIR=/run/user/0 DBUS_SESSION_BUS_ADDRESS=disabled: \
    QT_DEBUG_PLUGINS=0 horalo >"$work/desktop.log" 2>&1 &
  desktop_pid=$!
  # It says it has no status area only after a grace period in which a panel may still appear.
  for _ in $(seq 1 100); do
    grep -q "no status area" "$work/desktop.log" && break
    kill -0 "$desktop_pid" 2>/dev/null || break
    sleep 0.1
  done
  if kill -0 "$desktop_pid" 2>/dev/null; then
    echo "the desktop program runs on :$display"
    kill "$desktop_pid"; wait "$desktop_pid" 2>/dev/null || true
  else
    wait "$desktop_pid" 2>/dev/null || true
    fail "the desktop program exited: $(cat "$work/desktop.log")"
  fi
  grep -Ei "could not (load|find)|cannot load" "$work/desktop.log" && fail "plugin trouble"
  # Started through to its status item: with no tray or panel on this X server, it says so.
  grep -q "no status area" "$work/desktop.log" || fail "no word about the status area: $(cat "$work/desktop.log")"
fi

((failures == 0)) || { echo "$failures failure(s)" >&2; exit 1; }
echo "deb install test passed"
