#!/usr/bin/env bash
# Installs Orvane's Debian package on a freshly bootstrapped Debian 12 (a chroot with its own
# process namespace) and uses it there as a person would under Xvfb and Openbox: start it from its
# desktop entry, switch windows with Alt+Tab, use its tray menu through a StatusNotifierItem host
# (a stand-in for a panel, on a private D-Bus), start it again to get Settings, turn on "Launch
# Orvane at login", log out and in, and see it started. Needs root; takes 5 to 10 minutes.
# Exit status 0 when every check passed.
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ $(id -u) != 0 ]]; then
    echo "check-package: needs root (debootstrap, chroot)" >&2
    exit 2
fi
apt-get update -q >/dev/null
DEBIAN_FRONTEND=noninteractive apt-get install -y -q debootstrap >/dev/null

cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build/release >/dev/null
(cd build/release && cpack >/dev/null)
package=$(ls build/release/orvane_*_amd64.deb)

work=$PWD/build/package-check
root=$work/root
# The bootstrap is kept; every run starts from a copy of it.
if [[ ! -f $work/base/etc/debian_version ]]; then
    rm -rf "$work/base"
    debootstrap --variant=minbase bookworm "$work/base" http://deb.debian.org/debian >/dev/null
fi
cleanup() {
    umount -R "$root/dev" "$root/sys" 2>/dev/null || true
}
trap cleanup EXIT
rm -rf "$root"
cp -a "$work/base" "$root"
cp /etc/resolv.conf "$root/etc/resolv.conf"
cp "$package" "$root/tmp/orvane.deb"
mkdir -p "$root/dev" "$root/sys"
mount --rbind /dev "$root/dev"
mount --rbind /sys "$root/sys"

cat >"$root/tmp/check.sh" <<'CHECK'
set -u
mount -t proc proc /proc
failures=0
check() { # what, then a command that must succeed
    local what=$1; shift
    if "$@"; then echo "ok: $what"; else echo "FAILED: $what"; failures=$((failures + 1)); fi
}
apt-get update -q >/dev/null
export DEBIAN_FRONTEND=noninteractive
check "the package installs" bash -c 'apt-get install -y -q /tmp/orvane.deb >/tmp/install.log 2>&1'
# Tools of the check itself, not of the package.
apt-get install -y -q xvfb openbox xterm xdotool x11-utils libglib2.0-bin python3-xdg \
    dbus python3-gi >/dev/null 2>&1

# What a panel does for StatusNotifierItems: owns the watcher's name and notes who registers.
cat >/tmp/watcher.py <<'WATCHER'
from gi.repository import Gio, GLib
node = Gio.DBusNodeInfo.new_for_xml("""<node><interface name="org.kde.StatusNotifierWatcher">
<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
<property name="RegisteredStatusNotifierItems" type="as" access="read"/>
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="ProtocolVersion" type="i" access="read"/>
</interface></node>""")
items = []
def call(connection, sender, path, interface, method, parameters, invocation):
    items.append(sender)
    print(sender, flush=True)
    invocation.return_value(None)
def read(connection, sender, path, interface, name):
    return {"RegisteredStatusNotifierItems": GLib.Variant("as", items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True)}.get(
        name, GLib.Variant("i", 0))
Gio.bus_own_name(Gio.BusType.SESSION, "org.kde.StatusNotifierWatcher", 0,
                 lambda connection, name: connection.register_object(
                     "/StatusNotifierWatcher", node.interfaces[0], call, read, None),
                 None, None)
GLib.MainLoop().run()
WATCHER
# Clicks the tray menu's entry labelled $1, as the panel would after opening the menu.
cat >/tmp/click.py <<'CLICK'
import re, subprocess, sys
item = open("/tmp/items").readline().strip()
def gdbus(method, *arguments):
    return subprocess.run(["gdbus", "call", "--session", "--dest", item, "--object-path",
                           "/MenuBar", "--method", "com.canonical.dbusmenu." + method, "--",
                           *arguments], capture_output=True, text=True).stdout
gdbus("AboutToShow", "0")
layout = re.sub(r"'icon-data': <\[[^\]]*\]>, ", "", gdbus("GetLayout", "0", "-1", "['label']"))
for entry in re.finditer(r"\((\d+), \{[^}]*'label': <'([^']*)'>", layout):
    if entry.group(2) == sys.argv[1]:
        gdbus("Event", entry.group(1), "'clicked'", "<0>", "0")
        sys.exit(0)
sys.exit(1)
CLICK

status=0
env -u DISPLAY orvane 2>/tmp/nodisplay.log || status=$?
check "without a display it says so and exits 1" \
    bash -c "[[ $status == 1 ]] && grep -q 'no X11 display' /tmp/nodisplay.log"

export HOME=/tmp/home XDG_RUNTIME_DIR=/tmp/run XDG_CONFIG_HOME=/tmp/home/.config
mkdir -p "$XDG_CONFIG_HOME/openbox" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
# Openbox without key bindings, so that Alt+Tab is free.
echo '<openbox_config xmlns="http://openbox.org/3.4/rc"><keyboard/></openbox_config>' \
    >"$XDG_CONFIG_HOME/openbox/rc.xml"
log_in() {
    # A display no other X server of the machine holds: the abstract sockets are shared.
    Xvfb -displayfd 3 -screen 0 1280x800x24 3>/tmp/display >/dev/null 2>&1 &
    sleep 1
    DISPLAY=:$(cat /tmp/display)
    export DISPLAY
    "$@" >/dev/null 2>&1 &
    sleep 1.5
}
log_out() {
    pkill -x orvane; pkill -f openbox; pkill xterm; pkill -f watcher.py; pkill dbus-daemon
    pkill Xvfb
    sleep 1.5
}
active() { xdotool getactivewindow getwindowname 2>/dev/null; }

log_in openbox
DBUS_SESSION_BUS_ADDRESS=$(dbus-daemon --session --fork --print-address)
export DBUS_SESSION_BUS_ADDRESS
python3 /tmp/watcher.py >/tmp/items 2>/tmp/watcher.log &
sleep 1
xterm -T first -e sleep 600 &
sleep 0.8
xterm -T second -e sleep 600 &
sleep 1.2
gio launch /usr/share/applications/orvane.desktop >/tmp/orvane.log 2>&1
sleep 3
check "its desktop entry starts it" bash -c 'pgrep -x orvane >/dev/null'
check "the last window used is active" test "$(active)" = second
xdotool keydown alt key Tab
sleep 0.3
xdotool keyup alt
sleep 0.6
check "Alt+Tab brings the window used before" test "$(active)" = first

check "its tray icon is a StatusNotifierItem" test -s /tmp/items
python3 /tmp/click.py "Settings…"
sleep 1.5
settings=$(xdotool search --name "Orvane Settings" | head -1)
check "the tray menu's Settings… opens Settings" test -n "$settings"
check "a second start hands over and leaves" \
    bash -c 'orvane 2>&1 | grep -q "already running"'
x=0 y=0
eval "$(xwininfo -id "${settings:-0}" 2>/dev/null | awk '/Absolute upper-left X/{print "x="$4} /Absolute upper-left Y/{print "y="$4}')"
# "Launch Orvane at login", the first control of the General pane.
xdotool mousemove $((x + 38)) $((y + 88)) click 1
sleep 0.8
check "the login toggle writes the autostart entry" \
    grep -q '^Exec="/usr/bin/orvane"' "$XDG_CONFIG_HOME/autostart/orvane.desktop"
python3 /tmp/click.py "Quit Orvane"
sleep 1.5
check "the tray menu's Quit Orvane ends it, Settings open or not" \
    bash -c '! pgrep -x orvane'

log_out
check "logged out, nothing of Orvane runs" bash -c '! pgrep -x orvane'
# openbox-session starts the XDG autostart entries, as a desktop session does.
log_in openbox-session
sleep 3
check "logging in again starts it" bash -c 'pgrep -x orvane >/dev/null'
log_out
echo "$failures failed"
umount /proc
exit $((failures > 0))
CHECK

unshare --pid --fork chroot "$root" bash /tmp/check.sh
