#!/usr/bin/env bash
# Times Twinly as a user meets it, from start until its CPU time stops growing, on large inputs:
# a 1M-line pair, one 200 MB file and one 20 MB file that is a single line. Prints one markdown
# table on stdout (progress goes to stderr).
#
#   bench/window-rows.sh [ROW...]       rows: pair1m plain200m oneline20m (default: all three)
#
# TWINLY_BUILD: build folder (default: build); TWINLY: the program (default: its shell/twinly);
# TWINLY_BENCH_DATA: where the files are written (default: bench/data); RUNS: runs per row
# (default: 3); TWINLY_BENCH_DISPLAY: the X display, started with Xvfb when it is not running
# (default: :93).
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(dirname "$here")
build=${TWINLY_BUILD:-$root/build}
data=${TWINLY_BENCH_DATA:-$here/data}
runs=${RUNS:-3}
display=${TWINLY_BENCH_DISPLAY:-:93}
twinly=${TWINLY:-$build/shell/twinly}
quiet=$root/../shared/tools/time-to-quiet

die() {
    echo "window-rows.sh: $*" >&2
    exit 2
}

[[ -x $twinly ]] || die "$twinly is not built"
[[ -x $quiet ]] || die "$quiet is missing"
command -v Xvfb >/dev/null || die "Xvfb is not installed"
(($# > 0)) && rows=("$@") || rows=(pair1m plain200m oneline20m)

mkdir -p "$data"
pair=$data/src1m-0.1pct
if [[ ! -f $pair.left || ! -f $pair.right ]]; then
    cmake --build "$build" --target twinly-benchgen >&2
    "$build/bench/twinly-benchgen" src1m-0.1pct "$data" >&2
fi
# Both single files come from the seeded 1M-line text, so they are the same on every machine.
plain=$data/plain200m.txt
if [[ ! -f $plain ]]; then
    # head ends the pipe early on purpose.
    for _ in {1..10}; do cat "$pair.left"; done | head -c $((200 << 20)) >"$plain" || true
fi
oneline=$data/oneline20m.txt
if [[ ! -f $oneline ]]; then
    tr '\n' ' ' <"$pair.left" | head -c $((20 << 20)) >"$oneline" || true
fi

xvfb_pid=
if ! DISPLAY=$display xdpyinfo >/dev/null 2>&1; then
    Xvfb "$display" -screen 0 1280x900x24 >/dev/null 2>&1 &
    xvfb_pid=$!
    sleep 1
fi
runtime=$(mktemp -d)
trap '[[ -n $xvfb_pid ]] && kill "$xvfb_pid"; rm -rf "$runtime"' EXIT

# Median of the numbers on stdin.
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

echo "| row | runs | until quiet (s), median | min-max | peak (MiB), median | min-max |"
echo "|---|---:|---:|---:|---:|---:|"
for row in "${rows[@]}"; do
    case $row in
    pair1m) files=("$pair.left" "$pair.right") ;;
    plain200m) files=("$plain") ;;
    oneline20m) files=("$oneline") ;;
    *) die "unknown row $row" ;;
    esac
    times=()
    peaks=()
    for ((i = 0; i < runs; ++i)); do
        # A runtime folder of its own, so that no other Twinly takes the files over its socket.
        dir=$runtime/$row-$i
        mkdir -m 700 "$dir"
        line=$(DISPLAY=$display XDG_RUNTIME_DIR=$dir "$quiet" --wait 180 "$twinly" "${files[@]}") \
            || line="180 s 0 MiB"
        echo "window-rows.sh: $row: $line" >&2
        times+=("$(awk '{ print $1 }' <<<"$line")")
        peaks+=("$(awk '{ print $3 }' <<<"$line")")
    done
    t=$(printf '%s\n' "${times[@]}" | median)
    p=$(printf '%s\n' "${peaks[@]}" | median)
    trange=$(printf '%s\n' "${times[@]}" | sort -n | sed -n '1p;$p' | paste -sd-)
    prange=$(printf '%s\n' "${peaks[@]}" | sort -n | sed -n '1p;$p' | paste -sd-)
    echo "| $row | $runs | $t | $trange | $p | $prange |"
done
