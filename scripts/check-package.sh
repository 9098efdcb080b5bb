#!/usr/bin/env bash
# Installs Orvane's Debian package on a freshly bootstrapped Debian 12 (a chroot with its own
# process namespace) and uses it there as a person would under Xvfb and Openbox: start it from its
# desktop entry, switch windows with Alt+Tab, start it again to get Settings, turn on "Launch
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
    >/dev/null 2>&1

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
    pkill -x orvane; pkill -f openbox; pkill xterm; pkill Xvfb
    sleep 1.5
}
active() { xdotool getactivewindow getwindowname 2>/dev/null; }

log_in openbox
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

orvane 2>/dev/null
sleep 1.5
settings=$(xdotool search --name "Orvane Settings" | head -1)
check "a second start shows Settings" test -n "$settings"
eval "$(xwininfo -id "$settings" | awk '/Absolute upper-left X/{print "x="$4} /Absolute upper-left Y/{print "y="$4}')"
# "Launch Orvane at login", the first control of the General pane.
xdotool mousemove $((x + 38)) $((y + 88)) click 1
sleep 0.8
check "the login toggle writes the autostart entry" \
    grep -q '^Exec="/usr/bin/orvane"' "$XDG_CONFIG_HOME/autostart/orvane.desktop"

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
