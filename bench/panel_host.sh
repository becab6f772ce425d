# Sourced by the whole-process benchmark and its tools check: the host both programs run under.
# Expects $work (a scratch directory), $pids (an array the caller kills at exit) and fail().

# An X server on a display it picks itself (others run servers on this machine too); exports
# DISPLAY.
start_xvfb() {
  Xvfb -displayfd 3 -screen 0 1024x600x24 -nolisten tcp 3>"$work/display" >"$work/xvfb.log" 2>&1 &
  pids+=($!)
  for _ in $(seq 100); do [[ -s "$work/display" ]] && break; sleep 0.1; done
  [[ -s "$work/display" ]] || fail "Xvfb did not start"
  export DISPLAY=":$(head -n1 "$work/display")"
}

# The stand-in StatusNotifierWatcher (WATCHER_BINARY), recording items in $work/items; returns
# once it owns the watcher's name, for Qt decides at start-up whether to export over D-Bus.
start_watcher() {
  "$1" "$work/items" >"$work/watcher.log" 2>&1 &
  pids+=($!)
  for _ in $(seq 100); do
    gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
      --method org.freedesktop.DBus.NameHasOwner org.kde.StatusNotifierWatcher 2>/dev/null |
      grep -q true && return 0
    sleep 0.1
  done
  fail "the stand-in watcher did not take its name"
}
