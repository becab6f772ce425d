#!/usr/bin/env bash
# Horalo as a whole process, side by side with the bare Qt tray program (bench/BareTray.cpp),
# both running at once under the same host: Xvfb, a session bus of their own and a stand-in
# StatusNotifierWatcher, so both export their item and menu over D-Bus as under a real panel.
# Whatever load the machine carries falls on both alike; every figure is a median of rounds and
# comes with its baseline from the same rounds.
#
#   bench/whole_process.sh [BUILD_DIR] [--rounds N] [--window SECONDS]
#
# BUILD_DIR defaults to ./build (a RelWithDebInfo or Release tree with the benchmarks built:
# horalo, horalo-desktop, horalo_bare_tray, horalo_bench_dbusmenu, horalo_bench_watcher).
# Takes a few minutes of a quiet machine; CI does not run it. HORALO_BENCH_KEEP=1 keeps the
# scratch directory and its logs.
#
# Figures:
#   idle CPU    CPU time per second of wall time, from /proc/PID/task/*/schedstat (nanoseconds),
#               with Horalo's title ticking every second ("%H:%M:%S") and the bare program
#               setting its tool tip every second
#   memory      resident memory (VmRSS) after start, and again after the idle rounds
#   chooser     wake-ups per second (voluntary context switches of every thread) with the
#               chooser open as a live clock, against the bare program in the same window
#   menu        AboutToShow then GetLayout over D-Bus, at 0, 50, 500 and 5,000 custom formats,
#               against the bare program's menu exported by Qt itself
#   command     `horalo title` against `date`, wall time from spawn to exit
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"

build="$root/build"
rounds=5
window=20
while (($#)); do
  case "$1" in
    --rounds) rounds="$2"; shift 2 ;;
    --window) window="$2"; shift 2 ;;
    -h|--help) awk 'NR > 1 && /^#/ { sub(/^# ?/, ""); print; next } NR > 1 { exit }' "$0"; exit 0 ;;
    *) build="$(cd "$1" && pwd)"; shift ;;
  esac
done

horalo="$build/src/app/horalo"
bare="$build/bench/horalo_bare_tray"
client="$build/bench/horalo_bench_dbusmenu"
watcher="$build/bench/horalo_bench_watcher"

if [[ -z "${HORALO_BENCH_WORK:-}" ]]; then
  for file in "$horalo" "$bare" "$client" "$watcher"; do
    [[ -x "$file" ]] || { echo "missing $file: build the benchmarks first (bash scripts/build.sh)"; exit 1; }
  done
  for tool in Xvfb dbus-run-session gdbus; do
    command -v "$tool" >/dev/null || { echo "missing $tool: run scripts/install-deps.sh --with-test-tools"; exit 1; }
  done
  work="$(mktemp -d)"
  export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_CACHE_HOME="$work/home/.cache"
  export XDG_DATA_HOME="$work/home/.local/share" XDG_RUNTIME_DIR="$work/run"
  mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
  unset QT_QPA_PLATFORM WAYLAND_DISPLAY SESSION_MANAGER DISPLAY
  export LANG=en_US.UTF-8 NO_AT_BRIDGE=1
  status=0
  HORALO_BENCH_WORK="$work" dbus-run-session -- bash "$0" "$build" --rounds "$rounds" --window "$window" || status=$?
  [[ -n "${HORALO_BENCH_KEEP:-}" ]] && echo "kept $work" || rm -rf "$work"
  exit "$status"
fi

work="$HORALO_BENCH_WORK"
pids=()
cleanup() {
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
}
trap cleanup EXIT
fail() {
  echo "FAIL: $*" >&2
  for log in "$work"/*.log; do echo "--- $log" >&2; tail -n 20 "$log" >&2; done
  exit 1
}
source "$root/bench/panel_host.sh"

start_xvfb
start_watcher "$watcher"

# A title that changes every second, like the bare program's tool tip; the chooser a live clock.
"$horalo" defaults write menuTitleFormatter -string "%H:%M:%S"
"$horalo" defaults write DynamicDateTimeChooser -bool yes

"$bare" >"$work/bare.log" 2>&1 &
bare_pid=$!
pids+=("$bare_pid")
"$horalo" >"$work/horalo.log" 2>&1 &
horalo_pid=$!
pids+=("$horalo_pid")
registered() { "$client" "$1" 0 >/dev/null 2>&1; }
for _ in $(seq 100); do registered "$bare_pid" && registered "$horalo_pid" && break; sleep 0.1; done
registered "$bare_pid" || fail "the bare tray program registered no status item"
registered "$horalo_pid" || fail "Horalo registered no status item"
sleep 3 # both finish starting

median() { sort -g | awk '{ v[NR] = $1 } END { if (NR % 2) print v[(NR + 1) / 2]; else print (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (b > 0) printf "%.2f", a / b; else print "n/a" }'; }
rss_kb() { awk '/^VmRSS:/ { print $2 }' "/proc/$1/status"; }
# Resident memory split: anonymous (the heap, our own) and file-backed (code and data files,
# shared with every other process mapping them).
rss_split() { awk '/^RssAnon:/ { a = $2 } /^RssFile:/ { f = $2 } END { printf "%d+%d", a / 1024, f / 1024 }' "/proc/$1/status"; }
cpu_ns() { cat /proc/"$1"/task/*/schedstat | awk '{ s += $1 } END { printf "%.0f\n", s }'; }
wakeups() { cat /proc/"$1"/task/*/status | awk '/^voluntary_ctxt_switches:/ { s += $2 } END { print s }'; }
alive() { kill -0 "$horalo_pid" 2>/dev/null || fail "Horalo exited"; kill -0 "$bare_pid" 2>/dev/null || fail "the bare program exited"; }

echo "Horalo (pid $horalo_pid) and the bare tray program (pid $bare_pid) on $DISPLAY; $rounds rounds"
echo

# Resident memory after start.
rss_horalo_start=$(rss_kb "$horalo_pid")
rss_bare_start=$(rss_kb "$bare_pid")
split_horalo_start=$(rss_split "$horalo_pid")
split_bare_start=$(rss_split "$bare_pid")

# Idle CPU: both measured over the same windows.
: >"$work/idle"
for r in $(seq "$rounds"); do
  alive
  h0=$(cpu_ns "$horalo_pid"); b0=$(cpu_ns "$bare_pid"); t0=$(date +%s%N)
  sleep "$window"
  h1=$(cpu_ns "$horalo_pid"); b1=$(cpu_ns "$bare_pid"); t1=$(date +%s%N)
  awk -v h=$((h1 - h0)) -v b=$((b1 - b0)) -v t=$((t1 - t0)) \
    'BEGIN { printf "%.4f %.4f %.3f\n", h / t * 1000, b / t * 1000, h / b }' >>"$work/idle"
  echo "idle round $r: Horalo, bare (ms CPU per s), ratio: $(tail -n1 "$work/idle")"
done
idle_horalo=$(awk '{ print $1 }' "$work/idle" | median)
idle_bare=$(awk '{ print $2 }' "$work/idle" | median)
idle_ratio=$(awk '{ print $3 }' "$work/idle" | median)

rss_horalo_idle=$(rss_kb "$horalo_pid")
rss_bare_idle=$(rss_kb "$bare_pid")

# Menu openings over D-Bus. A second bare program holds 5,000 entries more: Qt's own cost per
# entry, against which Horalo's cost per custom format is set.
"$bare" 5000 >"$work/bare-large.log" 2>&1 &
large_pid=$!
pids+=("$large_pid")
for _ in $(seq 100); do registered "$large_pid" && break; sleep 0.1; done
registered "$large_pid" || fail "the large bare tray program registered no status item"
openings_for() { case "$1" in 0|50) echo 200 ;; 500) echo 50 ;; *) echo 10 ;; esac; }
: >"$work/menu-summary"
for formats in 0 50 500 5000; do
  args=()
  for ((i = 0; i < formats; i++)); do args+=("%a %d %b, %Y %I:%M:%S %p (%z) #$i"); done
  if ((formats)); then
    "$horalo" defaults write "Custom Dates" -array "${args[@]}"
  else
    "$horalo" defaults delete "Custom Dates" 2>/dev/null || true
  fi
  sleep 2.5 # the store trusts a file unchanged once its last change is two seconds old
  : >"$work/menu-$formats"
  n=$(openings_for "$formats")
  for r in $(seq "$rounds"); do
    alive
    h=$("$client" "$horalo_pid" "$n") || fail "no menu from Horalo"
    b=$("$client" "$bare_pid" "$n") || fail "no menu from the bare program"
    echo "$h $b" >>"$work/menu-$formats"
    echo "menu, $formats formats, round $r: Horalo (median p10 p90 µs, entries) $h; bare $b"
  done
  hm=$(awk '{ print $1 }' "$work/menu-$formats" | median)
  bm=$(awk '{ print $5 }' "$work/menu-$formats" | median)
  entries=$(tail -n1 "$work/menu-$formats" | awk '{ print $4 }')
  echo "$formats $hm $bm $entries" >>"$work/menu-summary"
done

"$horalo" defaults delete "Custom Dates"
sleep 2.5
: >"$work/menu-large"
for r in $(seq "$rounds"); do
  "$client" "$large_pid" 10 >>"$work/menu-large" || fail "no menu from the large bare program"
done
large_ms=$(awk '{ print $1 }' "$work/menu-large" | median)
large_entries=$(tail -n1 "$work/menu-large" | awk '{ print $4 }')
kill "$large_pid"

# The chooser as a live clock: Horalo's wake-ups against the bare program's in the same windows.
gdbus call --session --dest org.horalo.Horalo --object-path /org/horalo/Horalo \
  --method org.horalo.Horalo.ShowChooser >/dev/null || fail "ShowChooser failed"
sleep 2
: >"$work/chooser"
chooser_window=$((window / 2 > 5 ? window / 2 : 5))
for r in $(seq "$rounds"); do
  alive
  h0=$(wakeups "$horalo_pid"); b0=$(wakeups "$bare_pid"); c0=$(cpu_ns "$horalo_pid"); t0=$(date +%s%N)
  sleep "$chooser_window"
  h1=$(wakeups "$horalo_pid"); b1=$(wakeups "$bare_pid"); c1=$(cpu_ns "$horalo_pid"); t1=$(date +%s%N)
  awk -v h=$((h1 - h0)) -v b=$((b1 - b0)) -v c=$((c1 - c0)) -v t=$((t1 - t0)) \
    'BEGIN { printf "%.1f %.1f %.4f\n", h / t * 1e9, b / t * 1e9, c / t * 1000 }' >>"$work/chooser"
  echo "chooser round $r: Horalo, bare (wake-ups per s), Horalo ms CPU per s: $(tail -n1 "$work/chooser")"
done
chooser_horalo=$(awk '{ print $1 }' "$work/chooser" | median)
chooser_bare=$(awk '{ print $2 }' "$work/chooser" | median)
chooser_cpu=$(awk '{ print $3 }' "$work/chooser" | median)

# `horalo title` against `date`, alternating, wall time from spawn to exit, with the settings at
# their defaults but for the title format.
"$horalo" defaults delete "Custom Dates" 2>/dev/null || true
title_runs=$((rounds * 40))
read -r title_ms date_ms title_ratio < <(/usr/bin/python3 - "$horalo" "$title_runs" <<'PY'
import os, statistics, subprocess, sys, time
horalo, runs = sys.argv[1], int(sys.argv[2])
def run(argv):
    start = time.perf_counter()
    subprocess.run(argv, stdout=subprocess.DEVNULL, check=True)
    return (time.perf_counter() - start) * 1000
ours, theirs, ratios = [], [], []
for _ in range(runs):
    a = run([horalo, "title"])
    b = run(["date"])
    ours.append(a); theirs.append(b); ratios.append(a / b)
print("%.2f %.2f %.2f" % (statistics.median(ours), statistics.median(theirs), statistics.median(ratios)))
PY
)

alive
echo
echo "Summary (medians of $rounds rounds; each ratio against the bare Qt tray program unless said)"
echo "| What | Horalo | Baseline | Ratio |"
echo "|---|---|---|---|"
echo "| Idle CPU, title ticking every second | $idle_horalo ms/s | $idle_bare ms/s | $idle_ratio |"
echo "| Resident memory after start (anonymous+file MiB) | $((rss_horalo_start / 1024)) MiB ($split_horalo_start) | $((rss_bare_start / 1024)) MiB ($split_bare_start) | $(ratio "$rss_horalo_start" "$rss_bare_start") |"
echo "| Resident memory after $((rounds * window)) s idle | $((rss_horalo_idle / 1024)) MiB | $((rss_bare_idle / 1024)) MiB | $(ratio "$rss_horalo_idle" "$rss_bare_idle") (Horalo's own growth: $(ratio "$rss_horalo_idle" "$rss_horalo_start")) |"
echo "| Wake-ups per second, chooser open as a live clock | $chooser_horalo | $chooser_bare (idle) | $(ratio "$chooser_horalo" "$chooser_bare") (CPU $chooser_cpu ms/s) |"
while read -r formats hm bm entries; do
  echo "| Menu opening over D-Bus, $formats custom formats ($entries entries) | $(ratio "$hm" 1000) ms | $(ratio "$bm" 1000) ms (16 entries) | $(ratio "$hm" "$bm") |"
done <"$work/menu-summary"
read -r _ m0 b0 _ < <(head -n1 "$work/menu-summary")
read -r _ m500 _ _ < <(sed -n 3p "$work/menu-summary")
read -r _ m5000 _ _ < <(sed -n 4p "$work/menu-summary")
per_format=$(awk -v a="$m5000" -v b="$m0" 'BEGIN { printf "%.1f", (a - b) / 5000 }')
per_entry=$(awk -v a="$large_ms" -v b="$b0" 'BEGIN { printf "%.1f", (a - b) / 5000 }')
echo "| Cost per custom format over D-Bus (0 to 500; 0 to 5,000) | $(awk -v a="$m500" -v b="$m0" 'BEGIN { printf "%.1f", (a - b) / 500 }') µs; $per_format µs | Qt, per entry ($large_entries entries: $(ratio "$large_ms" 1000) ms): $per_entry µs | $(ratio "$per_format" "$per_entry") |"
echo "| \`horalo title\` ($title_runs runs) | $title_ms ms | \`date\` $date_ms ms | $title_ratio |"
