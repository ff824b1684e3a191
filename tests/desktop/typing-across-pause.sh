#!/bin/sh
# Types into a pane, waits past the pause after which Twinly compares and redraws, and types
# again, on an X server of its own. The right file holds what the left should then hold, so the
# band of their one difference goes only if every key reached the left pane.
# Usage: typing-across-pause.sh TWINLY. Exit 77 (skipped) without Xvfb, xdotool or ImageMagick.
set -u
for tool in Xvfb xdotool import convert; do
    command -v "$tool" >/dev/null 2>&1 || { echo "skipped: no $tool"; exit 77; }
done
work=$(mktemp -d)
trap 'kill $app $server 2>/dev/null; rm -rf "$work"' EXIT
app= server=
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
server=$!
for _ in $(seq 50); do [ -s "$work/display" ] && break; sleep 0.1; done
export DISPLAY=":$(cat "$work/display")" XDG_RUNTIME_DIR="$work/run" LANGUAGE=en LANG=C.UTF-8
mkdir -m 700 "$XDG_RUNTIME_DIR"
printf 'one\ntwo\nthree\n' >"$work/left.txt"
printf 'one\ntwoXY\nthree\n' >"$work/right.txt"
"$1" "$work/left.txt" "$work/right.txt" >"$work/log" 2>&1 &
app=$!
window=$(timeout 30 xdotool search --sync --onlyvisible --name 'Text Differences' | head -n 1)
[ -n "$window" ] || { echo "no window"; cat "$work/log"; exit 1; }

# Pixels in a band's colours, plain or current; the legend's sample adds a constant.
band_pixels() {
    import -window "$window" "$work/shot.png" 2>/dev/null || { echo 0; return; }
    n=0
    for c in '#FFCC00' '#FFAA00'; do
        n=$((n + $(convert "$work/shot.png" -fill black +opaque "$c" -fill white -opaque "$c" \
            -format '%[fx:round(mean*w*h)]' info:)))
    done
    echo "$n"
}
# Waits up to 20 s for the count to pass `test COUNT $1 $2`, and prints it.
wait_for() {
    end=$(($(date +%s) + 20))
    until n=$(band_pixels); [ "$n" "$1" "$2" ] || [ "$(date +%s)" -ge "$end" ]; do sleep 0.3; done
    echo "$n"
}

# The first band in the indicator's columns, once the comparison has drawn it (current or not).
band=
for _ in $(seq 60); do
    before=$(band_pixels)
    band=$(convert "$work/shot.png" -crop 40x2000+314+0 +repage txt:- 2>/dev/null \
        | grep -m 1 -i -E '#FFCC00|#FFAA00' | cut -d: -f1)
    [ -n "$band" ] && break
    sleep 0.3
done
[ -n "$band" ] || { echo "no band found"; exit 1; }
# A click on it makes its difference current, so that the redraws show it.
xdotool windowfocus --sync "$window" 2>/dev/null
xdotool mousemove --window "$window" "$((314 + ${band%,*}))" "$((${band#*,} + 4))" click 1
sleep 0.5
# Into the left pane, to the end of its second line.
xdotool mousemove --window "$window" 150 200 click 1
sleep 0.5
xdotool key --delay 80 ctrl+Home Down End
xdotool type --delay 80 X
# Past the pause, the comparison and its redraw, with time to spare on a loaded machine.
sleep 3
xdotool type --delay 80 Y
after=$(wait_for -lt "$((before - 200))")
if [ "$after" -lt "$((before - 200))" ]; then
    echo "1 passed, 0 failed: the band went ($before band pixels before, $after after)"
    exit 0
fi
echo "0 passed, 1 failed: the band stayed ($before band pixels before, $after after)"
exit 1
