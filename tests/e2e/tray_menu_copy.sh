#!/usr/bin/env bash
# End to end on a real X server with a real XEmbed tray: Horalo's icon is clicked, its menu is
# screenshotted, "Numerical Date No Hyphens" is chosen with the keyboard, and another process
# reads the clipboard while Horalo still serves it.
#   tray_menu_copy.sh HORALO_BINARY OUTPUT_DIR
set -euo pipefail
horalo="$1"
out="$2"
mkdir -p "$out"
work="$(mktemp -d)"
trap 'kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$work"' EXIT

for tool in Xvfb trayer xdotool xclip import dbus-run-session; do
  command -v "$tool" >/dev/null || { echo "missing $tool: run scripts/install-deps.sh --with-test-tools"; exit 1; }
done

# A display of our own, and a fresh user: empty settings, no desktop leaking in.
display=":$((90 + RANDOM % 400))"
Xvfb "$display" -screen 0 1024x600x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
export DISPLAY="$display"
for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_RUNTIME_DIR="$work/run"
mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
unset QT_QPA_PLATFORM WAYLAND_DISPLAY
export DBUS_SESSION_BUS_ADDRESS="disabled:"

trayer --edge top --align right --widthtype request --height 32 --SetDockType true \
  --transparent false --tint 0xdddddd >"$work/trayer.log" 2>&1 &
sleep 1
"$horalo" >"$work/horalo.log" 2>&1 &
horalo_pid=$!

# Wait until the icon is embedded: the tray grows from nothing to one icon wide.
icon=""
for _ in $(seq 100); do
  icon=$(xdotool search --onlyvisible --classname horalo 2>/dev/null | head -n 1 || true)
  [[ -n "$icon" ]] && break
  sleep 0.1
done
if [[ -z "$icon" ]]; then
  echo "Horalo's tray icon never appeared"; cat "$work/horalo.log"; exit 1
fi
sleep 1.5 # the title's first refresh comes a second after start

eval "$(xdotool getwindowgeometry --shell "$icon")"
xdotool mousemove $((X + WIDTH / 2)) $((Y + HEIGHT / 2)) click 1
sleep 1
import -window root "$out/tray-menu.png"

expected_before=$(date +%Y%m%d)
# Down: Date-Time Chooser, GMT Date Time, Numerical Date Time, Numerical Date, No Hyphens.
xdotool key Down Down Down Down Down Return
sleep 0.5
copied=$(xclip -o -selection clipboard -target UTF8_STRING 2>/dev/null || true)
expected_after=$(date +%Y%m%d)

kill -0 "$horalo_pid" || { echo "Horalo exited"; cat "$work/horalo.log"; exit 1; }
echo "clipboard: '$copied' (expected $expected_before)"
if [[ "$copied" != "$expected_before" && "$copied" != "$expected_after" ]]; then
  cat "$work/horalo.log"
  exit 1
fi
[[ "$copied" =~ ^[0-9]{8}$ ]]
echo "screenshot: $out/tray-menu.png"
