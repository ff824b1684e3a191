#!/usr/bin/env bash
# Times twinly-seqdiff against `diff --minimal` and `git diff --no-index --minimal` on the pairs
# written by make-data.sh, and prints one markdown table on stdout (progress goes to stderr).
#
#   bench/compare.sh [PAIR...]          default: every pair in bench/data/pairs.txt
#
# TWINLY_BUILD: build folder holding tools/twinly-seqdiff (default: build)
# TWINLY_BENCH_DATA: folder of the pairs (default: bench/data)
# RUNS: timed runs per command, at least 5 (default: 5)
#
# Exit 0 when every check of our output passed, 1 when one failed (the table is still printed),
# 2 when something needed is missing.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(dirname "$here")
build=${TWINLY_BUILD:-$root/build}
data=${TWINLY_BENCH_DATA:-$here/data}
runs=${RUNS:-5}
tool=$build/tools/twinly-seqdiff

die() {
    echo "compare.sh: $*" >&2
    exit 2
}

[[ -x $tool ]] || die "$tool is not built; from $root run:
    cmake -S . -B build -G Ninja -DTWINLY_WERROR=ON && cmake --build build"
for command in hyperfine diff git awk cmp; do
    command -v "$command" >/dev/null || die "$command is not installed"
done
[[ -x /usr/bin/time ]] || die "/usr/bin/time (GNU time) is not installed"
if [[ ! $runs =~ ^[0-9]+$ ]] || ((runs < 5)); then
    die "RUNS must be a whole number of at least 5"
fi

if (($# > 0)); then
    pairs=("$@")
else
    [[ -f $data/pairs.txt ]] || die "no pairs in $data: run bench/make-data.sh first"
    mapfile -t pairs < <(cut -d: -f1 "$data/pairs.txt")
fi
((${#pairs[@]} > 0)) || die "no pairs to compare"
for pair in "${pairs[@]}"; do
    [[ -f $data/$pair.left && -f $data/$pair.right ]] \
        || die "$data/$pair.left or .right is missing: run bench/make-data.sh first"
done

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

# The three commands, each followed by LEFT RIGHT; diff and git diff exit 1 when files differ.
ours=("$tool")
gnudiff=(diff --minimal)
gitdiff=(git -c core.pager=cat diff --no-index --no-ext-diff --no-color --minimal)
# One command line for hyperfine, which runs it without a shell but splits it like one.
quoted() { printf '%q ' "$@"; }

# Peak resident set of one run, in KB.
peak_rss() {
    local status=0
    /usr/bin/time -f %M -o "$tmp/time" "$@" >/dev/null 2>"$tmp/time.err" || status=$?
    ((status <= 1)) || die "$* failed (exit $status): $(head -n 3 "$tmp/time.err")"
    tail -n 1 "$tmp/time"
}

# Lines deleted and added by our records ("delStart delEnd addStart addEnd", inclusive, end -1
# when empty); fails on any other line.
our_counts() {
    awk '!/^-?[0-9]+ -?[0-9]+ -?[0-9]+ -?[0-9]+$/ { bad = 1; exit }
        { if ($2 >= 0) m += $2 - $1 + 1; if ($4 >= 0) p += $4 - $3 + 1 }
        END { if (bad) exit 1; print m + 0, p + 0 }' "$1"
}

# hyperfine's CSV: command,mean,stddev,median,... in seconds.
median() { awk -F, -v c="$2" '$1 == c { print $4 }' "$1"; }
ms() { awk -v s="$1" 'BEGIN { printf "%.1f", s * 1000 }'; }
mb() { awk -v k="$1" 'BEGIN { printf "%.1f", k / 1024 }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { if (b > 0) printf "%.2f", a / b; else print "-" }'; }

failed=0
rows=()
for pair in "${pairs[@]}"; do
    left=$data/$pair.left
    right=$data/$pair.right
    echo "compare.sh: $pair" >&2

    # Sanity first: exit 0, well-formed records, something for differing files, and the same
    # number of deleted and added lines as diff --minimal. Every longest common subsequence has
    # the same length, so the counts must agree even where the records do not. (The pairs are
    # LF-only and end with LF, so both tools see the same lines.)
    status=0
    "${ours[@]}" "$left" "$right" >"$tmp/ours.out" 2>"$tmp/ours.err" || status=$?
    note=
    if ((status != 0)); then
        note="exit $status: $(head -n 1 "$tmp/ours.err")"
    elif ! counts=$(our_counts "$tmp/ours.out"); then
        note="malformed output: $(grep -vm1 -E '^-?[0-9]+ -?[0-9]+ -?[0-9]+ -?[0-9]+$' "$tmp/ours.out")"
    else
        { "${gnudiff[@]}" "$left" "$right" || [[ $? -eq 1 ]]; } >"$tmp/diff.out"
        expected=$(awk '/^</ { m++ } /^>/ { p++ } END { print m + 0, p + 0 }' "$tmp/diff.out")
        if cmp -s "$left" "$right"; then
            [[ ! -s $tmp/ours.out ]] || note="records for equal files"
        elif [[ ! -s $tmp/ours.out ]]; then
            note="no records for differing files"
        elif [[ $counts != "$expected" ]]; then
            note="deleted/added lines $counts, diff --minimal $expected"
        fi
    fi
    if [[ -n $note ]]; then
        echo "compare.sh: $pair: twinly-seqdiff output is wrong: $note" >&2
        failed=1
    fi

    csv=$tmp/$pair.csv
    hyperfine --runs "$runs" --warmup 1 --ignore-failure --shell=none --style basic \
        --export-csv "$csv" \
        --command-name ours "$(quoted "${ours[@]}" "$left" "$right")" \
        --command-name diff "$(quoted "${gnudiff[@]}" "$left" "$right")" \
        --command-name git "$(quoted "${gitdiff[@]}" "$left" "$right")" >&2
    t_ours=$(median "$csv" ours)
    t_diff=$(median "$csv" diff)
    t_git=$(median "$csv" git)
    [[ -n $t_ours && -n $t_diff && -n $t_git ]] || die "hyperfine gave no medians for $pair"

    r_ours=$(peak_rss "${ours[@]}" "$left" "$right")
    r_diff=$(peak_rss "${gnudiff[@]}" "$left" "$right")
    r_git=$(peak_rss "${gitdiff[@]}" "$left" "$right")

    lines="$(wc -l <"$left") / $(wc -l <"$right")"
    flag=
    [[ -z $note ]] || flag=" (output wrong)"
    rows+=("| $pair$flag | $lines | $(ms "$t_ours") | $(ms "$t_diff") | $(ms "$t_git") | $(ratio "$t_ours" "$t_diff") | $(mb "$r_ours") | $(mb "$r_diff") | $(mb "$r_git") | $(ratio "$r_ours" "$r_diff") |")
done

echo "| pair | lines (left / right) | ours (ms) | diff (ms) | git diff (ms) | time ours/diff | ours RSS (MB) | diff RSS (MB) | git diff RSS (MB) | RSS ours/diff |"
echo "|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|"
printf '%s\n' "${rows[@]}"
echo
echo "Median of $runs runs after 1 warm-up (hyperfine), peak RSS of one run (GNU time);" \
    "$(date +%F), $(nproc) cores, $(uname -sr)."
exit "$failed"
