#!/usr/bin/env bash
# Writes the seeded benchmark pairs to bench/data/ (or OUTDIR), building twinly-benchgen first
# when needed, then checks that the files are what their names say.
#
#   bench/make-data.sh [OUTDIR]
#
# TWINLY_BUILD picks the build folder (default: build). The list of pairs written, with their
# edit counts, goes to OUTDIR/pairs.txt; compare.sh reads it.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(dirname "$here")
build=${TWINLY_BUILD:-$root/build}
out=${1:-$here/data}

die() {
    echo "make-data.sh: $*" >&2
    exit 2
}

if [[ ! -f $build/CMakeCache.txt ]]; then
    cmake -S "$root" -B "$build" -G Ninja -DTWINLY_WERROR=ON >&2
fi
# The bench folder is configured only when Google Benchmark is installed.
cmake --build "$build" --target twinly-benchgen >&2 \
    || die "could not build twinly-benchgen in $build (is libbenchmark-dev installed?)"
gen=$build/bench/twinly-benchgen
[[ -x $gen ]] || die "$gen is missing after the build"

mkdir -p "$out"
"$gen" all "$out" >"$out/pairs.txt.new"
mv "$out/pairs.txt.new" "$out/pairs.txt"

# Each line of pairs.txt: "NAME: left=N right=N modified=N inserted=N deleted=N".
field() { sed -n "s/.* $1=\([0-9]*\).*/\1/p" <<<"$2"; }

failed=0
fail() {
    echo "make-data.sh: $*" >&2
    failed=1
}

while IFS= read -r entry; do
    name=${entry%%:*}
    left=$out/$name.left
    right=$out/$name.right
    for side in left right; do
        file=$out/$name.$side
        want=$(field "$side" "$entry")
        got=$(wc -l <"$file")
        ((got == want)) || fail "$file has $got lines, not $want"
        if grep -q $'\r' "$file"; then
            fail "$file holds a CR"
        fi
    done

    # Both kinds of text: the source-like one has its 10-15% of blank lines, the repetitive one
    # its 20 distinct lines.
    read -r total blank distinct < <(awk '{ n++; if ($0 == "") b++; if (!seen[$0]++) d++ }
        END { print n, b + 0, d }' "$left")
    case $name in
    src*)
        ((blank * 100 >= total * 10 && blank * 100 <= total * 15)) \
            || fail "$left: $blank of $total lines blank, not 10-15%"
        ;;
    rep*)
        ((distinct == 20)) || fail "$left: $distinct distinct lines, not 20"
        ;;
    esac

    # The edits made are one way from left to right, so a minimal diff needs no more lines than
    # they touched; in source-like text, where most lines are unique, hardly fewer either.
    modified=$(field modified "$entry")
    inserted=$(field inserted "$entry")
    deleted=$(field deleted "$entry")
    ((modified + inserted + deleted > 0)) || continue
    read -r minus plus < <({ diff --minimal "$left" "$right" || [[ $? -eq 1 ]]; } \
        | awk '/^</ { m++ } /^>/ { p++ } END { print m + 0, p + 0 }')
    ((minus <= modified + deleted && plus <= modified + inserted)) \
        || fail "$name: diff --minimal takes -$minus +$plus lines, more than the edits made"
    if [[ $name == src* ]]; then
        ((minus * 10 >= (modified + deleted) * 9 && plus * 10 >= (modified + inserted) * 9)) \
            || fail "$name: diff --minimal takes only -$minus +$plus lines for the edits made"
    fi
done <"$out/pairs.txt"

((failed == 0)) || exit 1
echo "make-data.sh: wrote and checked $(wc -l <"$out/pairs.txt") pairs in $out" >&2
