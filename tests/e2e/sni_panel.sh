#!/usr/bin/env bash
# End to end against a real StatusNotifierItem host that draws labels: an XFCE panel with the
# indicator plugin and the Ayatana application indicator service, under Xvfb, on a session bus
# of its own. Horalo's icon must show with its title beside it, the title must tick every second,
# a click must open the menu (rebuilt over dbusmenu), a chosen entry must reach the clipboard, and
# after the indicator service restarts Horalo must be back, once.
#   sni_panel.sh HORALO_BINARY OUTPUT_DIR
set -euo pipefail
horalo="$1"
out="$2"
service=/usr/libexec/ayatana-indicator-application/ayatana-indicator-application-service

if [[ -z "${HORALO_SNI_WORK:-}" ]]; then
  for tool in Xvfb xfce4-panel xdotool xclip import compare convert dbus-run-session dbus-monitor gdbus; do
    command -v "$tool" >/dev/null || { echo "missing $tool: run scripts/install-deps.sh --with-test-tools"; exit 1; }
  done
  [[ -x "$service" ]] || { echo "missing $service: run scripts/install-deps.sh --with-test-tools"; exit 1; }
  mkdir -p "$out"
  work="$(mktemp -d)"
  # A fresh user, set before the bus starts: the services the bus starts on demand (the panel's
  # settings daemon) inherit the bus's environment, not ours.
  export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" XDG_CACHE_HOME="$work/home/.cache"
  export XDG_DATA_HOME="$work/home/.local/share" XDG_RUNTIME_DIR="$work/run"
  mkdir -p "$HOME" "$XDG_RUNTIME_DIR" && chmod 700 "$XDG_RUNTIME_DIR"
  unset QT_QPA_PLATFORM WAYLAND_DISPLAY SESSION_MANAGER
  export NO_AT_BRIDGE=1 # no accessibility bus for the panel to start
  status=0
  HORALO_SNI_WORK="$work" dbus-run-session -- bash "$0" "$@" || status=$?
  rm -rf "$work"
  exit "$status"
fi

work="$HORALO_SNI_WORK"
trap 'kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true' EXIT
fail() {
  echo "FAIL: $*"
  for log in "$work"/*.log; do echo "--- $log"; tail -n 20 "$log"; done
  exit 1
}

display=":$((90 + RANDOM % 400))"
Xvfb "$display" -screen 0 1024x600x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
export DISPLAY="$display"
for _ in $(seq 50); do xdpyinfo >/dev/null 2>&1 && break; sleep 0.1; done

# One panel along the top edge, 32 pixels high, holding only the indicator plugin.
conf="$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml"
mkdir -p "$conf"
cat >"$conf/xfce4-panel.xml" <<'XML'
<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="indicator"/>
  </property>
</channel>
XML

"$service" >"$work/service.log" 2>&1 &
service_pid=$!
xfce4-panel --disable-wm-check >"$work/panel.log" 2>&1 &
has_watcher() {
  gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
    --method org.freedesktop.DBus.NameHasOwner org.kde.StatusNotifierWatcher 2>/dev/null | grep -q true
}
for _ in $(seq 100); do has_watcher && break; sleep 0.1; done
has_watcher || fail "no StatusNotifierWatcher on the bus"
sleep 1 # the panel draws its plugin

# A title that changes every second, set the way a user would, in this fresh home.
"$horalo" defaults write menuTitleFormatter -string "%H:%M:%S"
dbus-monitor --session "type='method_call',path='/MenuBar'" >"$work/monitor.log" 2>&1 &
"$horalo" >"$work/horalo.log" 2>&1 &
horalo_pid=$!

# What the host holds for each item: (icon, position, name, menu, theme path, label, guide, ...).
host_entry() {
  gdbus call --session --dest org.ayatana.indicator.application \
    --object-path /org/ayatana/indicator/application/service \
    --method org.ayatana.indicator.application.service.GetApplications 2>/dev/null |
    grep -o "('[^']*', [0-9]*, 'org.kde.StatusNotifierItem-${horalo_pid}-[0-9]*', objectpath '/MenuBar', '[^']*', '[^']*'" || true
}
host_label() { host_entry | sed -E "s/.*, '([^']*)'$/\1/"; }
label=""
for _ in $(seq 50); do
  label=$(host_label)
  [[ "$label" =~ ^[0-9]{2}:[0-9]{2}:[0-9]{2}$ ]] && break
  sleep 0.1
done
[[ "$label" =~ ^[0-9]{2}:[0-9]{2}:[0-9]{2}$ ]] || fail "the panel's host has no time label for Horalo: '$(host_entry)'"
icon=$(host_entry | sed -E "s/^\('([^']*)'.*/\1/")
echo "host: icon '$icon', label '$label'"
[[ "$icon" == horalo || ( "$icon" == /* && -s "$icon" ) ]] || fail "icon '$icon' is neither the theme icon nor a file"

# The item at the panel's left: its icon, then the label.
shot_region() { convert "$1" -crop "$2" +repage "$3"; }
sleep 0.3
import -window root "$out/sni-panel-1.png"
label1=$(host_label)
sleep 1.5
import -window root "$out/sni-panel-2.png"
label2=$(host_label)
echo "labels: '$label1' then '$label2'"
[[ "$label1" != "$label2" ]] || fail "the label did not change in 1.5 s"
shot_region "$out/sni-panel-1.png" 26x32+0+0 "$work/icon1.png"
shot_region "$out/sni-panel-2.png" 26x32+0+0 "$work/icon2.png"
shot_region "$out/sni-panel-1.png" 150x32+26+0 "$work/text1.png"
shot_region "$out/sni-panel-2.png" 150x32+26+0 "$work/text2.png"
icon_spread=$(convert "$work/icon1.png" -colorspace Gray -format "%[fx:standard_deviation]" info:)
text_spread=$(convert "$work/text1.png" -colorspace Gray -format "%[fx:standard_deviation]" info:)
icon_changed=$(compare -metric AE "$work/icon1.png" "$work/icon2.png" null: 2>&1 || true)
text_changed=$(compare -metric AE "$work/text1.png" "$work/text2.png" null: 2>&1 || true)
echo "icon region: spread $icon_spread, $icon_changed pixels changed; label region: spread $text_spread, $text_changed pixels changed"
awk -v s="$icon_spread" 'BEGIN { exit !(s > 0.05) }' || fail "no icon drawn at the panel's left"
awk -v s="$text_spread" 'BEGIN { exit !(s > 0.05) }' || fail "no text drawn beside the icon"
[[ "$icon_changed" == 0 ]] || fail "the icon changed while only the title should"
[[ "$text_changed" =~ ^[0-9]+$ && "$text_changed" -gt 0 ]] || fail "the drawn label did not change"

# A click opens the menu: the host asks Horalo to rebuild it and fetches the new layout, and a
# menu appears below the panel.
shot_region "$out/sni-panel-2.png" 400x250+0+40 "$work/below-before.png"
xdotool mousemove 13 16 click 1
menu_pixels=0
for _ in $(seq 10); do
  sleep 0.5
  import -window root "$out/sni-menu.png"
  shot_region "$out/sni-menu.png" 400x250+0+40 "$work/below-after.png"
  menu_pixels=$(compare -metric AE "$work/below-before.png" "$work/below-after.png" null: 2>&1 || true)
  [[ "$menu_pixels" =~ ^[0-9]+$ && "$menu_pixels" -gt 5000 ]] && break
done
echo "menu: $menu_pixels pixels changed below the panel"
[[ "$menu_pixels" =~ ^[0-9]+$ && "$menu_pixels" -gt 5000 ]] || fail "no menu appeared"
grep -Eq "member=AboutToShow(Group)?$" "$work/monitor.log" || fail "the host never asked for a rebuild"
grep -q "member=GetLayout$" "$work/monitor.log" || fail "the host never fetched the layout"

# Choose "Numerical Date No Hyphens" with the keyboard (the pointer off the menu so nothing is
# preselected): Date-Time Chooser, GMT Date Time, Numerical Date Time, Numerical Date, then it.
xdotool mousemove 900 500
sleep 0.3
expected_before=$(date +%Y%m%d)
xdotool key Down Down Down Down Down Return
copied=""
for _ in $(seq 30); do
  sleep 0.1
  copied=$(xclip -o -selection clipboard -target UTF8_STRING 2>/dev/null || true)
  [[ -n "$copied" ]] && break
done
expected_after=$(date +%Y%m%d)
kill -0 "$horalo_pid" || fail "Horalo exited"
echo "clipboard: '$copied' (expected $expected_before)"
[[ "$copied" == "$expected_before" || "$copied" == "$expected_after" ]] || fail "wrong clipboard"
grep -Eq "member=Event(Group)?$" "$work/monitor.log" || fail "the click never reached Horalo"

# The indicator service restarts (as with a panel restart): Horalo registers again and its
# label is back beside its icon.
kill "$service_pid"
wait "$service_pid" 2>/dev/null || true
for _ in $(seq 50); do has_watcher || break; sleep 0.1; done
"$service" >"$work/service-again.log" 2>&1 &
label=""
for _ in $(seq 50); do
  label=$(host_label)
  [[ "$label" =~ ^[0-9]{2}:[0-9]{2}:[0-9]{2}$ ]] && break
  sleep 0.1
done
[[ "$label" =~ ^[0-9]{2}:[0-9]{2}:[0-9]{2}$ ]] || fail "Horalo did not come back after the service restarted"
entries=$(host_entry | wc -l)
[[ "$entries" == 1 ]] || fail "the host lists Horalo $entries times"
sleep 1
import -window root "$out/sni-panel-restarted.png"
shot_region "$out/sni-panel-restarted.png" 150x32+26+0 "$work/text3.png"
text_spread=$(convert "$work/text3.png" -colorspace Gray -format "%[fx:standard_deviation]" info:)
awk -v s="$text_spread" 'BEGIN { exit !(s > 0.05) }' || fail "no label drawn after the restart"
echo "after the restart: label '$label'"
echo "screenshots: $out/sni-panel-1.png $out/sni-panel-2.png $out/sni-menu.png $out/sni-panel-restarted.png"
