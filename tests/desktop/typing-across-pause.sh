#!/bin/sh
# Types into a pane, waits past the pause after which Twinly compares and redraws, and types
# again, on a real X server. The right pane holds what the left should then hold, so the band of
# their one difference goes only if every key reached the left pane.
# Usage: typing-across-pause.sh TWINLY. Exit 77 (skipped) without Xvfb, xdotool or ImageMagick.
set -u
twinly=$1
for tool in Xvfb xdotool import convert; do
    command -v "$tool" >/dev/null 2>&1 || { echo "skipped: $tool is missing"; exit 77; }
done

work=$(mktemp -d)
server=
app=
finish() {
    [ -n "$app" ] && kill "$app" 2>/dev/null
    [ -n "$server" ] && kill "$server" 2>/dev/null
    rm -rf "$work"
}
trap finish EXIT

# A display of its own, free whichever others run beside it.
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
server=$!
for _ in $(seq 50); do [ -s "$work/display" ] && break; sleep 0.1; done
[ -s "$work/display" ] || { echo "Xvfb did not start"; exit 1; }
export DISPLAY=":$(cat "$work/display")"
export XDG_RUNTIME_DIR="$work/runtime" LANGUAGE=en LANG=C.UTF-8
mkdir -m 700 "$XDG_RUNTIME_DIR"

printf 'one\ntwo\nthree\n' >"$work/left.txt"
printf 'one\ntwoXY\nthree\n' >"$work/right.txt"
"$twinly" "$work/left.txt" "$work/right.txt" >"$work/log" 2>&1 &
app=$!
window=$(timeout 30 xdotool search --sync --onlyvisible --name 'Text Differences' | head -n 1)
[ -n "$window" ] || { echo "no window"; cat "$work/log"; exit 1; }

# Pixels in the colours of a band, plain or current (the legend's sample adds a constant).
band_pixels() {
    import -window "$window" "$work/shot.png" 2>/dev/null || { echo 0; return; }
    total=0
    for colour in '#FFCC00' '#FFAA00'; do
        n=$(convert "$work/shot.png" -fill black +opaque "$colour" -fill white -opaque "$colour" \
            -format '%[fx:round(mean*w*h)]' info:)
        total=$((total + n))
    done
    echo "$total"
}

# Waits until the pixel count satisfies the test in $1 against $2, for at most $3 seconds.
wait_for() {
    end=$(($(date +%s) + $3))
    while :; do
        now=$(band_pixels)
        [ "$now" "$1" "$2" ] && { echo "$now"; return 0; }
        [ "$(date +%s)" -ge "$end" ] && { echo "$now"; return 1; }
        sleep 0.3
    done
}

# The first comparison has drawn its band.
sleep 1
before=$(band_pixels)
sleep 1
before=$(wait_for -ge "$before" 20) || { echo "no steady picture"; exit 1; }

xdotool windowfocus --sync "$window" 2>/dev/null
# A click on the band makes its difference current, which the redraws then show.
band=$(convert "$work/shot.png" -crop 40x2000+314+0 +repage txt:- 2>/dev/null | grep -m 1 -i '#FFCC00' | cut -d: -f1)
[ -n "$band" ] || { echo "no band found"; exit 1; }
xdotool mousemove --window "$window" "$((314 + ${band%,*}))" "$((${band#*,} + 4))" click 1
sleep 0.5
# Into the left pane, then to the end of its second line.
xdotool mousemove --window "$window" 150 200 click 1
sleep 0.5
xdotool key --delay 80 ctrl+Home Down End
xdotool type --delay 80 X
# Past the pause, the comparison and its redraw, with time to spare on a loaded machine.
sleep 3
xdotool type --delay 80 Y
after=$(wait_for -lt "$((before - 200))" 20)
if [ "$after" -lt "$((before - 200))" ]; then
    echo "1 passed, 0 failed: the band went ($before band pixels before, $after after)"
    exit 0
fi
echo "0 passed, 1 failed: the band stayed ($before band pixels before, $after after)"
exit 1
