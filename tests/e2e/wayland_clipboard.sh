#!/usr/bin/env bash
# End to end in a headless Wayland session. Horalo's item is served to a stand-in watcher on a
# private session bus; entries are chosen through its dbusmenu ("clicked" events), and the
# clipboard is read by a native Wayland program (wl-paste) or, on a compositor without
# data-control, by an X11 one through Xwayland.
#   wayland_clipboard.sh HORALO STALLED_READER MODE OUTPUT_DIR
# MODE: sway-xwayland, sway (no X server at all), or weston (no data-control; Xwayland).
# Compositors refuse to run as root, so as root the session runs as an unprivileged user of its
# own, created when missing. Exits 77 (a skip) only when the compositor cannot run here at all.
set -euo pipefail
mode="$3"
test_user=horalo-e2e
skip() {
  echo "SKIP: $*"
  exit 77
}

if [[ -z "${HORALO_WL_WORK:-}" ]]; then
  horalo="$1"
  reader="$2"
  out="$4"
  compositor=sway
  [[ "$mode" == weston ]] && compositor=weston
  for tool in "$compositor" Xwayland Xvfb wl-paste xclip xdpyinfo dbus-run-session gdbus /usr/bin/python3; do
    command -v "$tool" >/dev/null || { echo "missing $tool: run scripts/install-deps.sh --with-test-tools"; exit 1; }
  done
  /usr/bin/python3 -c "import dbus, gi" || { echo "missing python3-dbus or python3-gi: run scripts/install-deps.sh --with-test-tools"; exit 1; }
  mkdir -p "$out"
  work="$(mktemp -d)"
  trap 'rm -rf "$work"' EXIT
  # Everything the session runs is copied where its user can reach it: a build tree under
  # root's home is not.
  mkdir -p "$work/bin" "$work/home" "$work/run"
  cp "$horalo" "$work/bin/horalo"
  # `horalo` alone becomes the desktop program found beside it.
  cp "$(dirname "$horalo")/horalo-desktop" "$work/bin/horalo-desktop"
  cp "$reader" "$work/bin/stalled_paste_reader"
  cp "$0" "$(dirname "$0")/sni_standin.py" "$work/bin/"
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
  "${run_as[@]}" env -i PATH="$PATH" LANG="${LANG:-C.UTF-8}" TZ="${TZ:-UTC}" \
    ASAN_OPTIONS="${ASAN_OPTIONS:-}" UBSAN_OPTIONS="${UBSAN_OPTIONS:-}" \
    HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_CACHE_HOME="$work/home/.cache" \
    XDG_DATA_HOME="$work/home/.local/share" XDG_RUNTIME_DIR="$work/run" NO_AT_BRIDGE=1 \
    HORALO_WL_WORK="$work" dbus-run-session -- bash "$work/bin/$(basename "$0")" "$@" || status=$?
  cp "$work"/home/*.log "$out/" 2>/dev/null || true
  exit "$status"
fi

# --- inside the session, as the unprivileged user, on a private bus ---
work="$HORALO_WL_WORK"
bin="$work/bin"
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
standin() { /usr/bin/python3 "$bin/sni_standin.py" "$@"; }

# The compositor, headless, with or without Xwayland.
export XDG_SESSION_TYPE=wayland
wayland_socket() { find "$XDG_RUNTIME_DIR" -maxdepth 1 -type s -name 'wayland-*' -printf '%f\n' | head -n1; }
has_socket() { [[ -n "$(wayland_socket)" ]]; }
x_display=""
if [[ "$mode" == weston ]]; then
  # Weston's headless backend has no seat, and its Xwayland bridge crashes when an X11 client
  # takes the clipboard there; nested in an X server of our own it has one, as on a desktop.
  Xvfb -displayfd 3 -screen 0 1024x600x24 -nolisten tcp 3>"$logs/host-display" >"$logs/xvfb.log" 2>&1 &
  wait_for 50 test -s "$logs/host-display" || fail "Xvfb did not start"
  DISPLAY=":$(cat "$logs/host-display")" weston --backend=x11-backend.so --use-pixman --xwayland \
    --socket=wayland-horalo --idle-time=0 >"$logs/compositor.log" 2>&1 &
  compositor_pid=$!
  wait_for 100 test -S "$XDG_RUNTIME_DIR/wayland-horalo" ||
    { kill -0 "$compositor_pid" 2>/dev/null || skip "weston does not run here: $(tail -n 3 "$logs/compositor.log" | tr '\n' ' ')"; fail "weston made no socket"; }
  # Weston names the display of its Xwayland in its log.
  wait_for 100 grep -q "xserver listening on display" "$logs/compositor.log" ||
    skip "weston runs here without Xwayland: $(tail -n 3 "$logs/compositor.log" | tr '\n' ' ')"
  x_display=$(grep -o "xserver listening on display :[0-9]*" "$logs/compositor.log" | head -n1 | grep -o ':[0-9]*$')
else
  xwayland=disable
  [[ "$mode" == sway-xwayland ]] && xwayland=force
  printf 'xwayland %s\n' "$xwayland" >"$work/home/sway.conf"
  WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman sway -c "$work/home/sway.conf" \
    >"$logs/compositor.log" 2>&1 &
  compositor_pid=$!
  wait_for 100 has_socket ||
    { kill -0 "$compositor_pid" 2>/dev/null || skip "sway does not run here: $(tail -n 3 "$logs/compositor.log" | tr '\n' ' ')"; fail "sway made no socket"; }
  if [[ "$xwayland" == force ]]; then
    export SWAYSOCK
    SWAYSOCK=$(find "$XDG_RUNTIME_DIR" -maxdepth 1 -type s -name 'sway-ipc.*.sock' | head -n1)
    # What sway gives the programs it starts is the session's X display.
    wait_for 50 swaymsg exec "printenv DISPLAY > $work/home/display" >/dev/null
    wait_for 50 test -s "$work/home/display" || fail "sway started no Xwayland"
    x_display=$(cat "$work/home/display")
  fi
fi
export WAYLAND_DISPLAY
WAYLAND_DISPLAY=$(wayland_socket)
unset DISPLAY
[[ -n "$x_display" ]] && export DISPLAY="$x_display"
echo "session: $mode, WAYLAND_DISPLAY=$WAYLAND_DISPLAY, DISPLAY=${DISPLAY:-(none)}"
if [[ -n "$x_display" ]]; then
  wait_for 100 xdpyinfo >/dev/null 2>&1 || fail "the X display $x_display does not answer"
fi

# Names in the menu, a title that changes every second, and a custom format beyond ASCII.
custom='«%A» 日本'
"$bin/horalo" defaults write UseSymbolicNames -bool yes
"$bin/horalo" defaults write menuTitleFormatter -string "%H:%M:%S"
"$bin/horalo" defaults write "Custom Dates" -array "$custom"

standin watch "$work/home/items" >"$logs/watcher.log" 2>&1 &
has_watcher() {
  gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
    --method org.freedesktop.DBus.NameHasOwner org.kde.StatusNotifierWatcher 2>/dev/null | grep -q true
}
wait_for 50 has_watcher || fail "the stand-in watcher did not start"

"$bin/horalo" >"$logs/horalo.log" 2>&1 &
horalo_pid=$!
wait_for 100 test -s "$work/home/items" || fail "Horalo registered no item (alive: $(kill -0 $horalo_pid 2>/dev/null && echo yes || echo no))"
item=$(head -n1 "$work/home/items")
title_ok() { [[ "$(standin label "$item" 2>/dev/null)" =~ ^[0-9]{2}:[0-9]{2}:[0-9]{2}$ ]]; }
wait_for 30 title_ok || fail "no ticking title: '$(standin label "$item" 2>&1)'"
echo "Horalo runs (pid $horalo_pid), item $item, title $(standin label "$item")"

read_clipboard() { # the clipboard as the session's programs see it
  if [[ "$mode" == weston ]]; then
    xclip -o -selection clipboard -target UTF8_STRING
  else
    wl-paste -n "$@"
  fi
}

# "Numerical Date No Hyphens": exactly eight digits, today's date.
before=$(date +%Y%m%d)
standin click "$item" "Numerical Date No Hyphens" || fail "could not choose the entry"
read_clipboard >"$logs/copied1" 2>"$logs/paste1.log" || true
after=$(date +%Y%m%d)
copied1=$(cat "$logs/copied1")
echo "copied: '$copied1' ($(wc -c <"$logs/copied1") bytes)"
[[ "$copied1" =~ ^[0-9]{8}$ && $(wc -c <"$logs/copied1") -eq 8 ]] || fail "not eight digits: '$copied1'"
[[ "$copied1" == "$before" || "$copied1" == "$after" ]] || fail "'$copied1' is not today ($before)"

if [[ "$mode" != weston ]]; then
  # Offered under every plain-text type, each with the same bytes.
  wl-paste -l >"$logs/types"
  for type in "text/plain;charset=utf-8" text/plain UTF8_STRING TEXT STRING; do
    grep -qxF "$type" "$logs/types" || fail "type $type not offered: $(tr '\n' ' ' <"$logs/types")"
    wl-paste -n -t "$type" | cmp -s - "$logs/copied1" || fail "type $type gives other bytes"
  done
  [[ $(wc -l <"$logs/types") -eq 5 ]] || fail "other types offered: $(tr '\n' ' ' <"$logs/types")"
fi

# The custom format: the very bytes Horalo renders, and it replaces the first copy.
standin click "$item" "$custom" || fail "could not choose the custom entry"
read_clipboard >"$logs/copied2" 2>"$logs/paste2.log" || true
"$bin/horalo" render --format "$custom" | head -c -1 >"$logs/expected2"
echo "copied: '$(cat "$logs/copied2")', expected '$(cat "$logs/expected2")'"
grep -q "日本" "$logs/copied2" || fail "the non-ASCII text did not survive"
cmp "$logs/copied2" "$logs/expected2" || fail "the custom copy's bytes differ"
cmp -s "$logs/copied1" "$logs/copied2" && fail "the second copy did not replace the first"

if [[ "$mode" != weston ]]; then
  # A paste whose reader never reads: Horalo's title keeps ticking, and others still paste.
  "$bin/stalled_paste_reader" 8 >"$logs/stalled" 2>"$logs/stalled.log" &
  wait_for 50 grep -q stalled "$logs/stalled" || fail "the stalled reader did not get its request out"
  title1=$(standin label "$item")
  sleep 2.2
  title2=$(standin label "$item")
  echo "title while a paste stalls: '$title1' then '$title2'"
  [[ "$title1" != "$title2" ]] || fail "the title stopped while a paste stalled"
  read_clipboard >"$logs/copied3" || true
  cmp "$logs/copied3" "$logs/expected2" || fail "no paste answered while another stalled"
fi

kill -0 "$horalo_pid" || fail "Horalo exited"
grep -qi "could not connect\|abort" "$logs/horalo.log" && fail "Horalo complained: $(cat "$logs/horalo.log")"
echo "PASS ($mode)"
