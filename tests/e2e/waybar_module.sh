#!/usr/bin/env bash
# End to end with Waybar in headless sway (with Xwayland, where Horalo's windows live): a custom
# module made of the README's own snippet shows Horalo's title, ticking, in the style of its
# class, and a click on the module opens Horalo's menu.
#   waybar_module.sh HORALO VIRTUAL_POINTER_CLICK README OUTPUT_DIR
# Compositors refuse to run as root, so as root the session runs as an unprivileged user of its
# own, created when missing. Exits 77 (a skip) only when sway cannot run here at all.
set -euo pipefail
test_user=horalo-e2e
skip() {
  echo "SKIP: $*"
  exit 77
}

if [[ -z "${HORALO_WB_WORK:-}" ]]; then
  horalo="$1" click="$2" readme="$3" out="$4"
  for tool in sway Xwayland waybar grim convert xdotool xwininfo dbus-run-session gdbus; do
    command -v "$tool" >/dev/null || { echo "missing $tool: run scripts/install-deps.sh --with-test-tools"; exit 1; }
  done
  mkdir -p "$out"
  work="$(mktemp -d)"
  trap 'rm -rf "$work"' EXIT
  mkdir -p "$work/bin" "$work/home/.config/waybar" "$work/run"
  cp "$horalo" "$(dirname "$horalo")/horalo-desktop" "$click" "$0" "$work/bin/"
  # The module exactly as the README shows it, in a bar of its own.
  snippet=$(awk '/^Waybar \(/ { found = 1 } found && /^```json/ { inside = 1; next }
                 inside && /^```/ { exit } inside { print }' "$readme")
  [[ $snippet == *'"custom/horalo"'* ]] || { echo "FAIL: no Waybar snippet in $readme"; exit 1; }
  printf '{\n"layer": "top", "position": "top", "height": 30,\n"modules-right": ["custom/horalo"],\n%s\n}\n' \
    "$snippet" >"$work/home/.config/waybar/config"
  # Plain colours, so that the module's text and its class can be told from the bar's pixels.
  cat >"$work/home/.config/waybar/style.css" <<'CSS'
* { font-family: sans-serif; font-size: 16px; font-weight: bold; }
window#waybar { background: #000000; color: #ffffff; }
#custom-horalo { padding: 0 8px; }
#custom-horalo.picked { color: #ff0000; }
CSS
  chmod 755 "$work" "$work/bin" && chmod 700 "$work/run"
  run_as=()
  if [[ $(id -u) -eq 0 ]]; then
    if ! id "$test_user" >/dev/null 2>&1; then
      useradd --system --no-create-home --shell /usr/sbin/nologin "$test_user" ||
        skip "cannot create the unprivileged user $test_user"
    fi
    chown -R "$test_user:" "$work/home" "$work/run"
    run_as=(runuser -u "$test_user" --)
  fi
  status=0
  "${run_as[@]}" env -i PATH="$work/bin:$PATH" LANG="${LANG:-C.UTF-8}" TZ="${TZ:-UTC}" \
    ASAN_OPTIONS="${ASAN_OPTIONS:-}" UBSAN_OPTIONS="${UBSAN_OPTIONS:-}" \
    HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_CACHE_HOME="$work/home/.cache" \
    XDG_DATA_HOME="$work/home/.local/share" XDG_RUNTIME_DIR="$work/run" NO_AT_BRIDGE=1 \
    HORALO_WB_WORK="$work" dbus-run-session -- bash "$work/bin/$(basename "$0")" "$@" || status=$?
  cp "$work"/home/*.log "$work"/home/*.png "$out/" 2>/dev/null || true
  exit "$status"
fi

# --- inside the session, as the unprivileged user, on a private bus ---
work="$HORALO_WB_WORK"
logs="$work/home"
trap 'kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true' EXIT
fail() {
  echo "FAIL: $*"
  for log in "$logs"/*.log; do echo "--- $log"; tail -n 20 "$log"; done
  exit 1
}
wait_for() { # wait_for TENTHS COMMAND...: polls until the command succeeds
  local tenths="$1"
  shift
  for _ in $(seq "$tenths"); do "$@" && return 0; sleep 0.1; done
  "$@"
}

export XDG_SESSION_TYPE=wayland
width=1024 height=600
printf 'xwayland force\noutput HEADLESS-1 resolution %dx%d\n' "$width" "$height" >"$logs/sway.conf"
WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman sway -c "$logs/sway.conf" \
  >"$logs/compositor.log" 2>&1 &
compositor_pid=$!
wayland_socket() { find "$XDG_RUNTIME_DIR" -maxdepth 1 -type s -name 'wayland-*' -printf '%f\n' | head -n1; }
has_socket() { [[ -n "$(wayland_socket)" ]]; }
wait_for 100 has_socket ||
  { kill -0 "$compositor_pid" 2>/dev/null || skip "sway does not run here: $(tail -n 3 "$logs/compositor.log" | tr '\n' ' ')"; fail "sway made no socket"; }
export WAYLAND_DISPLAY SWAYSOCK DISPLAY
WAYLAND_DISPLAY=$(wayland_socket)
SWAYSOCK=$(find "$XDG_RUNTIME_DIR" -maxdepth 1 -type s -name 'sway-ipc.*.sock' | head -n1)
wait_for 50 swaymsg exec "printenv DISPLAY > $logs/display" >/dev/null
wait_for 50 test -s "$logs/display" || fail "sway started no Xwayland"
DISPLAY=$(cat "$logs/display")
wait_for 100 xdpyinfo >/dev/null 2>&1 || fail "the X display $DISPLAY does not answer"

horalo defaults write menuTitleFormatter -string "%H:%M:%S"
horalo >"$logs/horalo.log" 2>&1 &
horalo_pid=$!
running() {
  gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
    --method org.freedesktop.DBus.NameHasOwner org.horalo.Horalo 2>/dev/null | grep -q true
}
wait_for 100 running || fail "Horalo did not start"
swaymsg exec "waybar > $logs/waybar.log 2>&1" >/dev/null

# The module sits at the bar's right end: the last 160 pixels of the top 30 rows.
module_geometry="160x30+$((width - 160))+0"
shot() { grim -g "$((width - 160)),0 160x30" "$logs/$1.png"; }
# Pixels of a colour in a shot, counting near-exact ones (anti-aliasing blurs the rest).
pixels() { convert "$logs/$1.png" -fuzz 10% -fill black +opaque "$2" -fill white -opaque "$2" \
  -format '%[fx:int(mean*w*h+0.5)]' info:; }
has_text() { shot "$1" && (($(pixels "$1" "#ffffff") > 20)); }
wait_for 100 has_text module1 || fail "the module shows no text"
sleep 1.2
shot module2
cmp -s "$logs/module1.png" "$logs/module2.png" && fail "the module's text did not change in 1.2 s"
echo "the module shows a ticking title ($module_geometry)"

# A click on the module runs its on-click: Horalo's menu opens.
menu_shown() { xdotool search --onlyvisible --class horalo >/dev/null 2>&1; }
menu_shown && fail "a menu is shown before any click"
virtual_pointer_click $((width - 40)) 15 "$width" "$height" || fail "could not click"
wait_for 50 menu_shown || fail "no menu after a click on the module"
menu=$(xdotool search --onlyvisible --class horalo | head -n1)
LC_ALL=C xwininfo -id "$menu" | grep -E 'Width|Height' | tr -s ' ' | tr '\n' ' '
echo
grim "$logs/menu.png"
xdotool key Escape 2>/dev/null || true
wait_for 30 eval '! menu_shown' || true

# A moment picked in the chooser: the module takes the class "picked".
gdbus call --session --dest org.horalo.Horalo --object-path /org/horalo/Horalo \
  --method org.horalo.Horalo.ShowChooser >/dev/null || fail "ShowChooser failed"
picked() { shot module3 && (($(pixels module3 "#ff0000") > 20)); }
wait_for 50 picked || fail "the module did not take the class 'picked'"
echo "a picked moment shows in the module's class"
kill -0 "$horalo_pid" || fail "Horalo exited"
echo "PASS"
