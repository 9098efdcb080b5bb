#!/usr/bin/env bash
# The demo desktop: Xvfb, Openbox without key bindings, three xterms and Orvane. Plays Alt-Tab,
# then Alt-Tab-Tab with a look at the overlay, and prints which window came forward each time.
# With --sway, the same on a headless sway with three foot windows, keys typed through wtype.
#   bash scripts/demo.sh [--sway] PATH-TO-ORVANE
set -euo pipefail
root="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
sway=false
if [ "${1:-}" = "--sway" ]; then
    sway=true
    shift
fi
program="$1"
out="$root/build/demo"
mkdir -p "$out"
rm -f "$out"/*.png "$out"/*.log

# Orvane in the background, once it says it has launched (ten seconds at most).
start_orvane() {
    "$program" >"$out/orvane.log" 2>&1 &
    pids+=($!)
    for attempt in $(seq 100); do
        grep -q "launch complete" "$out/orvane.log" && break
        sleep 0.1
    done
}

if $sway; then
    # sway refuses root: as root it runs as an unprivileged user of its own.
    folder="$(mktemp -d /tmp/orvane-demo-sway-XXXXXX)"
    run=()
    if [ "$(id -u)" -eq 0 ]; then
        id orvane-sway >/dev/null 2>&1 ||
            useradd --system --no-create-home --shell /usr/sbin/nologin orvane-sway
        chown orvane-sway "$folder"
        run=(runuser -u orvane-sway --)
    fi
    printf 'output HEADLESS-1 resolution 1280x800\ndefault_border none\n' >"$folder/config"
    chmod a+r "$folder/config"
    "${run[@]}" env -u WAYLAND_DISPLAY -u DISPLAY XDG_RUNTIME_DIR="$folder" WLR_BACKENDS=headless \
        WLR_RENDERER=pixman WLR_LIBINPUT_NO_DEVICES=1 sway -c "$folder/config" >"$out/sway.log" 2>&1 &
    compositor=$!
    for attempt in $(seq 50); do
        ls "$folder"/sway-ipc.* >/dev/null 2>&1 && [ -S "$folder/wayland-1" ] && break
        sleep 0.1
    done
    export WAYLAND_DISPLAY="$folder/wayland-1" SWAYSOCK="$(ls "$folder"/sway-ipc.*)"
    export XDG_CONFIG_HOME="$out/config" XDG_RUNTIME_DIR="$out/runtime"
    mkdir -p -m 700 "$XDG_RUNTIME_DIR"
    pids=()
    cleanup() {
        for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
        kill "$compositor" 2>/dev/null || true
        rm -rf "$folder"
    }
    trap cleanup EXIT
    for title in Mail Notes Terminal; do
        foot --title "$title" --app-id "demo.$title" sh -c "echo $title; sleep 3600" \
            >/dev/null 2>&1 &
        pids+=($!)
        sleep 0.6
    done
    focused() {
        swaymsg -t get_tree -r | python3 -c '
import json, sys
def walk(node):
    if node.get("focused") and node.get("type") == "con":
        print(node.get("name"))
    for child in node.get("nodes", []) + node.get("floating_nodes", []):
        walk(child)
walk(json.load(sys.stdin))'
    }
    start_orvane
    echo "Demo on a headless sway: the windows Mail, Notes and Terminal."
    echo "Orvane's log: $out/orvane.log"
    echo
    echo "Focused window: $(focused)"
    echo "Alt down, Tab, Alt up"
    wtype -M alt -k Tab -s 700 -m alt &
    sleep 0.4
    grim "$out/alt-tab.png"
    wait $!
    sleep 0.4
    echo "  -> focused window: $(focused)"
    echo "Alt down, Tab, Tab, Alt up"
    wtype -M alt -k Tab -s 100 -k Tab -s 700 -m alt &
    sleep 0.5
    grim "$out/alt-tab-tab.png"
    wait $!
    sleep 0.4
    echo "  -> focused window: $(focused)"
    echo "Alt down, Tab, Escape, Alt up (nothing changes)"
    wtype -M alt -k Tab -s 200 -k Escape -s 100 -m alt
    sleep 0.4
    echo "  -> focused window: $(focused)"
    echo
    echo "Screenshots of the overlay: $out/alt-tab.png, $out/alt-tab-tab.png"
    exit 0
fi

exec 3< <(Xvfb -displayfd 1 -screen 0 1280x800x24 -nolisten tcp 2>"$out/xvfb.log")
read -r number <&3
export DISPLAY=":$number"
export XDG_CONFIG_HOME="$out/config"
# Its own instance socket: an Orvane running on the real desktop is not this one.
export XDG_RUNTIME_DIR="$out/runtime"
mkdir -p -m 700 "$XDG_RUNTIME_DIR"
pids=()
cleanup() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    pkill -f "Xvfb -displayfd 1" 2>/dev/null || true
}
trap cleanup EXIT

openbox --config-file "$root/tests/desktop/openbox-rc.xml" >"$out/openbox.log" 2>&1 &
pids+=($!)
# Openbox sets the work area late in its start-up, just before it manages windows.
for attempt in $(seq 50); do
    xprop -root _NET_WORKAREA 2>/dev/null | grep -q CARDINAL && break
    sleep 0.1
done
for title in Mail Notes Terminal; do
    xterm -fa Monospace -fs 10 -T "$title" -geometry 70x16 -e "echo $title; sleep 3600" &
    pids+=($!)
    sleep 0.6
done

active() {
    local id
    id=$(xprop -root _NET_ACTIVE_WINDOW | awk '{print $NF}')
    xprop -id "$id" WM_NAME 2>/dev/null | sed 's/.*= //'
}

start_orvane
echo "Demo desktop on $DISPLAY: Openbox with the windows Mail, Notes and Terminal."
echo "Orvane's log: $out/orvane.log"
echo
echo "Active window: $(active)"

echo "Alt down, Tab, Alt up"
xdotool keydown alt key Tab
sleep 0.4
import -window root "$out/alt-tab.png"
xdotool keyup alt
sleep 0.4
echo "  -> active window: $(active)"

echo "Alt down, Tab, Tab, Alt up"
xdotool keydown alt key Tab key Tab
sleep 0.4
import -window root "$out/alt-tab-tab.png"
xdotool keyup alt
sleep 0.4
echo "  -> active window: $(active)"

echo "Alt down, Tab, Escape, Alt up (nothing changes)"
xdotool keydown alt key Tab key Escape keyup alt
sleep 0.4
echo "  -> active window: $(active)"
echo
echo "Screenshots of the overlay: $out/alt-tab.png, $out/alt-tab-tab.png"
