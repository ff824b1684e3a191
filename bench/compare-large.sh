#!/usr/bin/env bash
# Times twinly-seqdiff against `diff --minimal` and `git diff --no-index --minimal` on the large
# pairs (twinly-benchgen large), one run each: diff takes minutes on some of them. Prints one
# markdown table on stdout; progress goes to stderr.
#
#   bench/compare-large.sh [PAIR...]     default: every pair, large or not
#
# TWINLY_BUILD: build folder (default: build); TWINLY_SEQDIFF: the binary to time (default:
# TWINLY_BUILD/tools/twinly-seqdiff); TWINLY_BENCH_DATA: where the pairs are written (default:
# bench/data); LIMIT: seconds after which a run is cut and shown as ">LIMIT" (default 60);
# its peak memory is then the peak so far; OTHERS=0 times our binary only.
#
# Exit 0 when our output had the deleted and added line counts of diff --minimal wherever diff
# finished, 1 otherwise, 2 when something needed is missing.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(dirname "$here")
build=${TWINLY_BUILD:-$root/build}
tool=${TWINLY_SEQDIFF:-$build/tools/twinly-seqdiff}
data=${TWINLY_BENCH_DATA:-$here/data}
limit=${LIMIT:-60}
others=${OTHERS:-1}

die() {
    echo "compare-large.sh: $*" >&2
    exit 2
}

[[ -x $tool ]] || die "$tool is not built"
[[ -x /usr/bin/time ]] || die "/usr/bin/time (GNU time) is not installed"
gen=$build/bench/twinly-benchgen
if (($# > 0)); then
    pairs=("$@")
else
    [[ -x $gen ]] || die "$gen is not built"
    mapfile -t pairs < <("$gen" --list | awk -F'\t' '{ print $1 }')
fi

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

# "seconds KB" of one run, the seconds being CPU time (user + system): on a shared machine the
# elapsed time of a long run says more about the other work than about the run. A run cut
# after LIMIT seconds (elapsed) gives ">LIMIT" and its peak so far.
measure() {
    /usr/bin/time -f '%U %S %M' -o "$tmp/time" "$@" >"$tmp/out" 2>"$tmp/err" &
    local timer=$! ticks=0 cut=0 status=0 child
    while kill -0 "$timer" 2>/dev/null; do
        sleep 0.1
        if ((++ticks >= limit * 10)); then
            child=$(pgrep -P "$timer" || true)
            [[ -z $child ]] || kill "$child"
            cut=1
            break
        fi
    done
    wait "$timer" || status=$?
    if ((cut)); then
        echo ">$limit $(tail -n 1 "$tmp/time" | awk '{ print $3 }')"
    elif ((status > 1)); then
        die "$* failed (exit $status): $(head -n 3 "$tmp/err")"
    else
        tail -n 1 "$tmp/time" | awk '{ printf "%.2f %s\n", $1 + $2, $3 }'
    fi
}
mb() { awk -v k="$1" 'BEGIN { if (k == "-") print "-"; else printf "%.1f", k / 1024 }'; }
# A run cut short shows its peak so far with a ">": memory that was still growing.
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (b + 0 > 0 && a !~ />/ && b !~ />/) printf "%.2f", a / b; else print "-" }'; }

failed=0
echo "| pair | ours (CPU s) | diff (CPU s) | git diff (CPU s) | time ours/diff | ours RSS (MB) | diff RSS (MB) | git diff RSS (MB) | RSS ours/diff |"
echo "|---|---:|---:|---:|---:|---:|---:|---:|---:|"
for pair in "${pairs[@]}"; do
    left=$data/$pair.left
    right=$data/$pair.right
    if [[ ! -f $left || ! -f $right ]]; then
        [[ -x $gen ]] || die "$gen is not built"
        "$gen" "$pair" "$data" >&2 || die "cannot write $pair"
    fi
    echo "compare-large.sh: $pair" >&2
    read -r t_ours r_ours < <(measure "$tool" "$left" "$right")
    counts=$(awk '{ if ($2 >= 0) m += $2 - $1 + 1; if ($4 >= 0) p += $4 - $3 + 1 }
        END { print m + 0, p + 0 }' "$tmp/out")
    t_diff=- r_diff=- t_git=- r_git=-
    if ((others)); then
        read -r t_diff r_diff < <(measure diff --minimal "$left" "$right")
        if [[ $t_diff != ">"* ]]; then
            expected=$(awk '/^</ { m++ } /^>/ { p++ } END { print m + 0, p + 0 }' "$tmp/out")
            if [[ $counts != "$expected" ]]; then
                echo "compare-large.sh: $pair: deleted/added $counts, diff --minimal $expected" >&2
                failed=1
            fi
        fi
        read -r t_git r_git < <(measure git -c core.pager=cat diff --no-index --no-ext-diff \
            --no-color --minimal "$left" "$right")
    fi
    echo "| $pair | $t_ours | $t_diff | $t_git | $(ratio "$t_ours" "$t_diff") | $(mb "$r_ours") | $(mb "$r_diff") | $(mb "$r_git") | $(ratio "$r_ours" "$r_diff") |"
done
echo
echo "One run each (GNU time: CPU seconds, peak RSS), runs cut after $limit s elapsed;" \
    "$(date +%F), $(nproc) cores, $(uname -sr)."
exit "$failed"
