#!/usr/bin/env bash
# The command line must start like a command line: the commands that print load neither QtGui,
# QtWidgets nor any Qt plugin, while `horalo` with no command becomes the desktop program.
#   launch_test.sh HORALO_BINARY BUILD_DIR
set -euo pipefail
horalo="$1"
build_dir="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_RUNTIME_DIR="$work/run"
mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# Runs horalo with the dynamic linker reporting every object it loads, needed or opened later.
# Leaves stdout, stderr, the status and the loader's log in $work.
run_traced() {
  local status=0
  LD_DEBUG=files LD_DEBUG_OUTPUT="$work/ld" "$@" >"$work/out" 2>"$work/err" || status=$?
  cat "$work"/ld.* >"$work/loaded" 2>/dev/null || : >"$work/loaded"
  rm -f "$work"/ld.*
  echo "$status" >"$work/status"
}

loads() { grep -E "file=[^ ]*$1" "$work/loaded" >/dev/null; }

expect_light() {
  local what="$1"
  for heavy in libQt6Gui libQt6Widgets libQt6XcbQpa 'plugins/' horalo-desktop; do
    loads "$heavy" && fail "$what loads $heavy"
  done
  return 0
}

# Every printing command, on a settings file that exists (the write broadcasts to no bus here).
run_traced "$horalo" defaults write "Custom Dates" -array "%Y"
[[ "$(cat "$work/status")" == 0 ]] || fail "defaults write: $(cat "$work/err")"
expect_light "horalo defaults write"
at=(--at 2006-03-10T14:31:47-05:00)
commands=(
  "render|${at[*]}|Numerical Date" "render|${at[*]}|--format|%Y" "since|2006-03-10T14:31:47-05:00"
  "menu|${at[*]}" "title|${at[*]}" "copy|${at[*]}|--format|%Y" "defaults|read")
for command in "${commands[@]}"; do
  IFS='|' read -r -a words <<<"$command"
  # "--at TIME" travels as one field above; split it back into two arguments.
  args=()
  for word in "${words[@]}"; do
    if [[ "$word" == "${at[*]}" ]]; then args+=("${at[@]}"); else args+=("$word"); fi
  done
  run_traced "$horalo" "${args[@]}"
  [[ "$(cat "$work/status")" == 0 ]] || fail "horalo $command exits $(cat "$work/status"): $(cat "$work/err")"
  [[ -s "$work/out" ]] || fail "horalo $command printed nothing"
  loads libQt6Core || fail "horalo $command: the loader trace does not show QtCore"
  expect_light "horalo $command"
done
grep -qF "%Y" "$work/out" || fail "defaults read does not show the custom format: $(cat "$work/out")"

# A word that is not a command is refused by the command line itself, just as light.
run_traced "$horalo" no-such-command
[[ "$(cat "$work/status")" == 2 ]] || fail "an unknown command exits $(cat "$work/status"), not 2"
grep -q "unknown command 'no-such-command'" "$work/err" || fail "unknown command: $(cat "$work/err")"
expect_light "horalo no-such-command"

# `horalo` alone: the desktop program runs, and says that there is no desktop session here.
expect_desktop() {
  local what="$1"
  run_traced "${@:2}"
  [[ "$(cat "$work/status")" == 1 ]] || fail "$what exits $(cat "$work/status"), not 1: $(cat "$work/err")"
  grep -q "no desktop session" "$work/err" || fail "$what did not reach the desktop program: $(cat "$work/err")"
  loads libQt6Widgets || fail "$what: the desktop program does not load QtWidgets"
}
expect_desktop "horalo" "$horalo"

# The same from an installation, where the desktop program lives in libexec.
cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null
[[ ! -e "$work/prefix/bin/horalo-desktop" ]] || fail "the desktop program is installed in bin"
expect_desktop "installed horalo" "$work/prefix/bin/horalo"
run_traced "$work/prefix/bin/horalo" render "${at[@]}" "Numerical Date"
[[ "$(cat "$work/out")" == 2006-03-10 ]] || fail "installed horalo render printed '$(cat "$work/out")'"
expect_light "installed horalo render"

# Without the desktop program beside it, horalo says so instead of failing silently.
mkdir -p "$work/alone/bin" && cp "$work/prefix/bin/horalo" "$work/alone/bin/"
run_traced "$work/alone/bin/horalo"
[[ "$(cat "$work/status")" == 127 ]] || fail "a missing desktop program exits $(cat "$work/status")"
grep -q "horalo-desktop" "$work/err" || fail "a missing desktop program is not named: $(cat "$work/err")"

[[ $failures == 0 ]] && echo "all launch checks passed"
exit $((failures > 0))
