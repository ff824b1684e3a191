#include "CommonSubsequence.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

#ifdef __x86_64__
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace SeqDiff {

namespace {

using Index = std::int32_t;
using Word = std::uint64_t;

constexpr Index kNone = -1;

// The problem after the lines that cannot match have been left out. Such a line changes no
// length of any common subsequence, so the walk back passes it by and the choice among the
// others stays the same. Ids are renumbered from 0 so that tables by id stay small.
struct Reduced
{
    std::vector<Index> a, b; // compact ids
    std::vector<Index> fromA, fromB; // positions in the input
    Index ids = 0;
    std::vector<Index> countB; // per compact id, its lines in b
};

Reduced reduce(std::span<const LineId> a, std::span<const LineId> b, StopCheck& stop)
{
    LineId top = 0;
    for (LineId id : a)
        top = std::max(top, id);
    for (LineId id : b)
        top = std::max(top, id);
    std::vector<std::uint8_t> inA(std::size_t(top) + 1, 0);
    for (LineId id : a)
        inA[id] = 1;
    std::vector<Index> compact(std::size_t(top) + 1, kNone);

    Reduced r;
    r.b.reserve(b.size() + 1);
    r.fromB.reserve(b.size());
    for (std::size_t j = 0; j < b.size(); ++j) {
        stop();
        if (!inA[b[j]])
            continue;
        Index& c = compact[b[j]];
        if (c == kNone) {
            c = r.ids++;
            r.countB.push_back(0);
        }
        ++r.countB[c];
        r.b.push_back(c);
        r.fromB.push_back(static_cast<Index>(j));
    }
    // Against a much shorter text, most of a long one goes: sized to the lines that stay.
    std::size_t kept = a.size();
    if (b.size() < a.size() / 2) {
        kept = 0;
        for (LineId id : a)
            kept += compact[id] != kNone;
    }
    r.a.reserve(kept + 1);
    r.fromA.reserve(kept);
    for (std::size_t i = 0; i < a.size(); ++i) {
        stop();
        const Index c = compact[a[i]];
        if (c == kNone)
            continue;
        r.a.push_back(c);
        r.fromA.push_back(static_cast<Index>(i));
    }
    return r;
}

// Where each id stands in b, ascending, one slice per id.
struct Occurrences
{
    Occurrences(std::span<const Index> b, Index ids)
        : start(std::size_t(ids) + 1, 0)
        , positions(b.size())
    {
        for (Index c : b)
            ++start[std::size_t(c) + 1];
        for (Index c = 0; c < ids; ++c)
            start[std::size_t(c) + 1] += start[std::size_t(c)];
        std::vector<Index> fill(start.begin(), start.end() - 1);
        for (std::size_t j = 0; j < b.size(); ++j)
            positions[std::size_t(fill[std::size_t(b[j])]++)] = static_cast<Index>(j);
    }

    std::span<const Index> of(Index c) const
    {
        const auto from = std::size_t(start[std::size_t(c)]);
        return std::span(positions).subspan(from, std::size_t(start[std::size_t(c) + 1]) - from);
    }

    std::vector<Index> start, positions;
};

// ---- threshold table ---------------------------------------------------------------------

std::vector<Index> byThreshold(
    std::span<const Index> a, std::span<const Index> b, Index ids, StopCheck& stop)
{
    const Occurrences where(b, ids);

    struct Link
    {
        Index prev, i, j;
    };
    std::vector<Index> thresh; // per key: the smallest j that ends a chain of key + 1 pairs
    std::vector<Index> linkAt; // per key: the link written with its threshold
    std::vector<Link> links;

    for (std::size_t i = 0; i < a.size(); ++i) {
        const std::span<const Index> positions = where.of(a[i]);
        Index k = kNone;
        stop(std::int64_t(positions.size()) + 1);
        for (auto p = positions.rbegin(); p != positions.rend(); ++p) {
            const Index j = *p;
            Index key;
            if (k > 0 && thresh[std::size_t(k)] > j && thresh[std::size_t(k) - 1] < j) {
                key = k;
            } else {
                const Index high = k > 0 ? k : static_cast<Index>(thresh.size()) - 1;
                if (high == kNone || thresh.back() < j) {
                    key = static_cast<Index>(thresh.size());
                    thresh.push_back(j);
                    linkAt.push_back(kNone);
                } else {
                    const auto end = thresh.begin() + high + 1;
                    const auto at = std::lower_bound(thresh.begin(), end, j);
                    key = static_cast<Index>(at - thresh.begin());
                    if (*at == j)
                        key = kNone;
                }
            }
            k = key;
            if (key == kNone)
                continue;
            thresh[std::size_t(key)] = j;
            const Index prev = key > 0 ? linkAt[std::size_t(key) - 1] : kNone;
            if (links.size() >= std::size_t(std::numeric_limits<Index>::max()))
                throw std::length_error("too many equal lines to compare this way");
            linkAt[std::size_t(key)] = static_cast<Index>(links.size());
            links.push_back({prev, static_cast<Index>(i), j});
        }
    }

    std::vector<Index> match(a.size(), kNone);
    if (!thresh.empty()) {
        for (Index l = linkAt.back(); l != kNone; l = links[std::size_t(l)].prev)
            match[std::size_t(links[std::size_t(l)].i)] = links[std::size_t(l)].j;
    }
    return match;
}

// ---- furthest-reaching paths -------------------------------------------------------------
//
// x runs along a, y along b, diagonal k = x - y. After d edits (lines left unmatched on either
// side), the points a diagonal reaches form a prefix of it, up to the furthest one. So the
// number of edits to any point is known from the waves of furthest points, which is all the walk
// back needs: a step left or up is allowed exactly when it saves one edit.

// The furthest points after d edits, for the diagonals lo, lo + 2, ..., hi.
struct Wave
{
    Index d = 0, lo = 0, hi = -1;
    std::vector<Index> x;

    bool has(Index k) const { return k >= lo && k <= hi; }
    Index at(Index k) const
    {
        assert(has(k));
        return x[std::size_t((k - lo) / 2)];
    }
};

class Waves
{
public:
    // `a` and `b` are followed in memory by two different sentinels that match nothing, so that
    // a run of equal lines stops at the ends by itself.
    Waves(const Index* a, Index n, const Index* b, Index m, StopCheck& stop)
        : a(a)
        , b(b)
        , n(n)
        , m(m)
        , stop(stop)
    {
    }

    // Runs forward until both ends are reached; returns the number of edits, or nothing when
    // the work went past `budget`, or past what bit rows of `bandRows` rows would cost over the
    // band of twice the edits reached so far. Only a few waves are kept: enough to recompute
    // any other.
    std::optional<Index> run(std::uint64_t budget, std::uint64_t bandRows)
    {
        std::uint64_t work = 0;
        Wave wave, next;
        shape(wave, 0);
        advance(nullptr, wave, work);
        for (Index d = 0;; ++d) {
            const bool done = wave.has(n - m) && wave.at(n - m) >= n;
            if (done || d == 0 || d - checkpoints.back().d >= spacing(d))
                checkpoints.push_back(wave);
            if (done)
                return d;
            // A step here takes some 6 ns; a word of a bit row some 1 ns, three times over (run,
            // recomputed, walked back). The greedy work grows with the square of the edits, the
            // band's with the edits: past some point the band is cheaper even if it must be
            // widened once. The constant allows for the first waves' long runs of equal lines.
            if (work > budget
                || (bandRows > 0 && 2 * work > bandRows * (std::uint64_t(d) / 32 + 6))) {
                reached = d;
                return std::nullopt;
            }
            shape(next, d + 1);
            advance(&wave, next, work);
            std::swap(wave, next);
        }
    }

    // The wave after e edits, around diagonal k. The walk back asks with e going down and k
    // moving by one per step, so the diagonals it can still reach from here form a cone: only
    // that cone is recomputed from the checkpoint below.
    const Wave& around(Index e, Index k)
    {
        auto checkpoint = std::lower_bound(checkpoints.begin(), checkpoints.end(), e,
            [](const Wave& w, Index d) { return w.d < d; });
        if (checkpoint != checkpoints.end() && checkpoint->d == e)
            return *checkpoint;
        if (!block.empty() && e >= block.front().d && e <= block.back().d)
            return block[std::size_t(e - block.front().d)];
        const Wave* prev = &*(checkpoint - 1);
        block.clear();
        block.reserve(std::size_t(e - prev->d));
        std::uint64_t work = 0;
        for (Index f = prev->d + 1; f <= e; ++f) {
            // k is on wave e + 1, so k - reach has the parity of wave f.
            const Index reach = e - f + 1;
            Wave part;
            shape(part, f);
            part.lo = std::max(part.lo, k - reach);
            part.hi = std::min(part.hi, k + reach);
            advance(prev, part, work);
            block.push_back(std::move(part));
            prev = &block.back();
        }
        return block.back();
    }

private:
    // Gives `w` the diagonals that d edits can reach, not yet computed.
    void shape(Wave& w, Index d) const
    {
        w.d = d;
        w.lo = std::max(-d, -m);
        w.lo += (w.lo + d) & 1;
        w.hi = std::min(d, n);
        w.hi -= (w.hi + d) & 1;
    }

    // Checkpoints grow apart as d^(2/3): they and the largest cone then both stay near
    // D^(4/3) entries, and recomputing costs far less than the run itself.
    static Index spacing(Index d) { return std::max<Index>(8, Index(std::cbrt(double(d) * d))); }

    void advance(const Wave* prev, Wave& out, std::uint64_t& work)
    {
        out.x.resize(std::size_t((out.hi - out.lo) / 2 + 1));
        Index* x = out.x.data();
        for (Index k = out.lo; k <= out.hi; k += 2, ++x) {
            Index to = 0;
            if (prev) {
                to = kNone;
                // A line of a left unmatched, from diagonal k - 1.
                if (prev->has(k - 1))
                    to = std::min(prev->at(k - 1) + 1, n);
                // A line of b left unmatched, from diagonal k + 1.
                if (prev->has(k + 1))
                    to = std::max(to, std::min(prev->at(k + 1), m + k));
                assert(to >= 0);
            }
            const Index from = to;
            while (a[to] == b[to - k])
                ++to;
            work += std::uint64_t(to - from);
            *x = to;
        }
        work += out.x.size();
        stop(std::int64_t(out.x.size()));
    }

    const Index* a;
    const Index* b;
    Index n, m;

public:
    Index reached = 0; // the edits reached when run gave up

private:
    StopCheck& stop;
    std::vector<Wave> checkpoints; // by ascending d
    std::vector<Wave> block; // a cone recomputed for the walk back
};

// Gives up as Waves::run does; `reached` then tells how far it came.
std::optional<std::vector<Index>> byGreedy(std::span<const Index> a, std::span<const Index> b,
    std::uint64_t budget, std::uint64_t bandRows, Index& reached, StopCheck& stop)
{
    Waves waves(a.data(), Index(a.size()), b.data(), Index(b.size()), stop);
    const std::optional<Index> edits = waves.run(budget, bandRows);
    if (!edits) {
        reached = waves.reached;
        return std::nullopt;
    }

    std::vector<Index> match(a.size(), kNone);
    Index x = static_cast<Index>(a.size()), y = static_cast<Index>(b.size()), d = *edits;
    const Wave* before = d > 0 ? &waves.around(d - 1, x - y) : nullptr;
    while (x > 0 && y > 0) {
        stop();
        const Index k = x - y;
        if (d > 0 && before->has(k + 1) && before->at(k + 1) >= x) {
            --y; // leave b[y - 1] unmatched
        } else if (d > 0 && before->has(k - 1) && before->at(k - 1) >= x - 1) {
            --x; // leave a[x - 1] unmatched
        } else {
            --x;
            --y;
            assert(a[std::size_t(x)] == b[std::size_t(y)]);
            match[std::size_t(x)] = y;
            continue;
        }
        --d;
        before = d > 0 ? &waves.around(d - 1, x - y) : nullptr;
    }
    return match;
}

// ---- bit-parallel rows ---------------------------------------------------------------------
//
// Row x holds one bit per line of b: bit j is 0 exactly when the longest common subsequence of
// a[0, x) grows by one from b[0, j) to b[0, j + 1).
//
// Only a band of diagonals is computed: a path with D edits never leaves the diagonals k = x - y
// with |k| + |n - m - k| <= D. Left of the band a row keeps the words it had when the band moved
// past them, and right of it the words are still all ones (no growth). Every value is then the
// length of some common subsequence, so none is too large, and along every path of at most D
// edits all values are exact: when the longest has at most D edits, the walk back, which only
// ever compares values on or next to such paths, takes exactly the steps it takes on full rows.

// Per line of b that is frequent, a ready mask of its places; the others set a few bits per row.
struct Masks
{
    Masks(const Occurrences& where, Index ids, std::size_t words, std::size_t maxWords)
        : slot(std::size_t(ids), kNone)
    {
        const std::size_t budget = std::max<std::size_t>(maxWords / 4, words);
        std::size_t count = 0;
        for (Index c = 0; c < ids; ++c) {
            if (where.of(c).size() * 4 < words || (count + 1) * words > budget)
                continue;
            slot[std::size_t(c)] = static_cast<Index>(count++);
            masks.resize(count * words, 0);
            for (Index j : where.of(c))
                masks[(count - 1) * words + std::size_t(j) / 64] |= Word(1) << (j % 64);
        }
    }

    std::vector<Index> slot;
    std::vector<Word> masks;
};

// Zeros among the words [0, count) of a row.
[[gnu::always_inline]] inline std::int64_t zerosIn(const Word* words, std::size_t count)
{
    std::int64_t zeros = 0;
    for (std::size_t w = 0; w < count; ++w)
        zeros += std::popcount(~words[w]);
    return zeros;
}

#ifdef __x86_64__
// The walk back counts a great many words, so the processor's own population count is used
// where there is one. It is looked up on first use rather than by a load-time dispatch, whose
// start-up probe every short run of a command would pay.
__attribute__((target("popcnt"))) std::int64_t zerosWithPopcnt(const Word* words, std::size_t count)
{
    return zerosIn(words, count);
}

std::int64_t zerosPortably(const Word* words, std::size_t count)
{
    return zerosIn(words, count);
}

std::int64_t countZeros(const Word* words, std::size_t count)
{
    static const auto counter = [] {
        unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
        const bool popcnt = __get_cpuid(1, &eax, &ebx, &ecx, &edx) && (ecx & bit_POPCNT) != 0;
        return popcnt ? &zerosWithPopcnt : &zerosPortably;
    }();
    return counter(words, count);
}
#else
std::int64_t countZeros(const Word* words, std::size_t count)
{
    return zerosIn(words, count);
}
#endif

class BitRows
{
public:
    // A stored row: its words lo..hi, and the zeros in the words before lo.
    struct Row
    {
        const Word* words;
        std::size_t lo, hi;
        std::int64_t zerosBefore;
    };

    // The band is the diagonals kLo..kHi; kLo <= 0 <= kHi and kLo <= n - m <= kHi.
    BitRows(std::span<const Index> a, std::size_t m, const Occurrences& where, const Masks& masks,
        std::int64_t kLo, std::int64_t kHi, std::size_t maxWords, StopCheck& stop)
        : a(a)
        , n(a.size())
        , m(m)
        , words((m + 63) / 64)
        , kLo(kLo)
        , kHi(kHi)
        , where(where)
        , masks(masks)
        , work(words, ~Word(0))
        , scratch(words, 0)
        , stop(stop)
    {
        // Keep every row when they fit. Else keep every stride-th one and recompute the rows
        // between two of them when the walk back comes there: each row is computed twice, and
        // the memory is that of 2 sqrt(n) rows. When even that is too much, the rows between
        // two kept ones are recomputed in turn from every step-th of them, kept meanwhile: each
        // row is computed three times, and the memory is that of 3 n^(1/3) rows.
        std::size_t total = 0, widest = 0;
        for (std::size_t x = 0; x <= n; ++x) {
            const std::size_t width = hiWord(x) - loWord(x) + 1;
            total += width + kRowExtra;
            widest = std::max(widest, width);
        }
        if (total > maxWords) {
            stride = step = std::size_t(std::ceil(std::sqrt(double(n + 1))));
            if (2 * stride * (widest + kRowExtra) > maxWords) {
                step = std::size_t(std::ceil(std::cbrt(double(n + 1))));
                stride = step * step;
                between.reserve(step * widest);
                betweenRows.reserve(step);
            }
            block.resize((step - 1) * widest);
            blockRows.resize(step - 1);
            total = 0;
            for (std::size_t x = 0; x <= n; ++x)
                if (x % stride == 0 || x == n)
                    total += hiWord(x) - loWord(x) + 1;
        }
        // Reserved whole, so that rows never move.
        store.reserve(total);
    }

    // Computes all rows, keeping those to keep; returns the value at (n, m).
    std::int64_t run()
    {
        // One row in place: word w of every row at work[w].
        Row row{work.data(), 0, hiWord(0), 0};
        keep(row);
        for (std::size_t x = 1; x <= n; ++x) {
            row = advance(x, row, work.data() + loWord(x));
            if (x % stride == 0 || x == n)
                keep(row);
        }
        return zerosBelow(at(n), m);
    }

    // Row x; asked for with x going down.
    Row at(std::size_t x)
    {
        if (x % stride == 0 || x == n)
            return kept[x / stride + (x % stride ? 1 : 0)];
        if (x % step == 0)
            return from(x);
        const std::size_t base = x - x % step;
        if (blockBase != base) {
            Row row = from(base);
            Word* out = block.data();
            for (std::size_t r = base + 1; r < base + step && r < n; ++r) {
                row = advance(r, row, out);
                blockRows[r - base - 1] = row;
                out += row.hi - row.lo + 1;
            }
            blockBase = base;
        }
        return blockRows[x - base - 1];
    }

    // The value at (x, y) from row x: zeros among its first y bits.
    static std::int64_t zerosBelow(const Row& row, std::size_t y)
    {
        assert(y >= row.lo * 64 || y == 0);
        std::int64_t zeros = row.zerosBefore;
        const std::size_t full = std::min(y / 64, row.hi + 1);
        if (full > row.lo)
            zeros += countZeros(row.words, full - row.lo);
        if (y % 64 && y / 64 <= row.hi && y / 64 >= row.lo)
            zeros += std::popcount(~row.words[y / 64 - row.lo] & ((Word(1) << (y % 64)) - 1));
        return zeros;
    }

    // The highest 0 bit of row x below `y`; there is one within the row's words whenever the
    // walk back asks.
    static std::size_t highestZeroBelow(const Row& row, std::size_t y)
    {
        std::size_t w = std::min((y - 1) / 64, row.hi);
        Word zeros = ~row.words[w - row.lo];
        if (w == (y - 1) / 64 && y % 64)
            zeros &= (Word(1) << (y % 64)) - 1;
        while (zeros == 0) {
            assert(w > row.lo);
            zeros = ~row.words[--w - row.lo];
        }
        return w * 64 + 63 - std::size_t(std::countl_zero(zeros));
    }

private:
    // What a kept row costs besides its words, in words.
    static constexpr std::size_t kRowExtra = sizeof(Row) / sizeof(Word);

    // The words of row x: one before the band's first column, so that the walk back finds the
    // 0 bit in front of any cell of the band, up to the band's last column.
    std::size_t loWord(std::size_t x) const
    {
        const std::int64_t first = std::int64_t(x) - kHi; // the band's first column
        return first > 0 ? std::size_t(first - 1) / 64 : 0;
    }
    std::size_t hiWord(std::size_t x) const
    {
        const std::int64_t last = std::min<std::int64_t>(std::int64_t(m), std::int64_t(x) - kLo);
        return last > 1 ? std::min(words - 1, std::size_t(last - 1) / 64) : 0;
    }

    // Row x from row x - 1, its words written from `out` on; `out` may be where `prev` has the
    // same words, as each word is read before it is written.
    Row advance(std::size_t x, const Row& prev, Word* out)
    {
        const std::size_t lo = loWord(x), hi = hiWord(x);
        std::int64_t zerosBefore = prev.zerosBefore;
        if (lo > prev.lo)
            zerosBefore += countZeros(prev.words, lo - prev.lo);
        stop(std::int64_t(hi - lo + 1));
        const Word* in = prev.words + (lo - prev.lo);
        // Words past the previous row's last one have all bits set.
        const std::size_t known = std::min(hi, prev.hi) + 1 - lo;
        const Index line = a[x - 1];
        const Index dense = masks.slot[std::size_t(line)];
        if (dense != kNone) {
            update(in, known, &masks.masks[std::size_t(dense) * words + lo], out, hi - lo + 1);
            return Row{out, lo, hi, zerosBefore};
        }
        // Only the places inside the band matter.
        const std::span<const Index> all = where.of(line);
        const auto from = std::lower_bound(all.begin(), all.end(), Index(lo * 64));
        const auto to = std::lower_bound(from, all.end(), Index(std::min(m, (hi + 1) * 64)));
        for (auto j = from; j != to; ++j)
            scratch[std::size_t(*j) / 64] |= Word(1) << (*j % 64);
        update(in, known, &scratch[lo], out, hi - lo + 1);
        for (auto j = from; j != to; ++j)
            scratch[std::size_t(*j) / 64] = 0;
        return Row{out, lo, hi, zerosBefore};
    }

    // out = (v + (v & mask)) | (v & ~mask) over `count` words, with the carry running across
    // them, where v is `in` for its first `known` words and all ones after.
    static void update(
        const Word* in, std::size_t known, const Word* mask, Word* out, std::size_t count)
    {
#ifdef __x86_64__
        // The processor's add with carry keeps the chain at a cycle or two per word.
        unsigned char carry = 0;
        const auto one = [&](std::size_t w, Word old) {
            const Word u = old & mask[w];
            unsigned long long sum;
            carry = _addcarry_u64(carry, old, u, &sum);
            out[w] = Word(sum) | (old & ~u);
        };
#else
        Word carry = 0;
        const auto one = [&](std::size_t w, Word old) {
            const Word u = old & mask[w];
            const Word sum = old + u;
            const Word total = sum + carry;
            carry = Word(sum < old) | Word(total < sum);
            out[w] = total | (old & ~u);
        };
#endif
        std::size_t w = 0;
        for (; w < known; ++w)
            one(w, in[w]);
        for (; w < count; ++w)
            one(w, ~Word(0));
    }

    // Row `base`, a multiple of `step`: kept, or kept between two kept ones.
    Row from(std::size_t base)
    {
        const std::size_t top = base - base % stride;
        if (base == top)
            return kept[top / stride];
        if (betweenTop != top) {
            between.clear();
            betweenRows.clear();
            Row row = kept[top / stride];
            for (std::size_t r = top + 1; r < top + stride && r < n; ++r) {
                row = advance(r, row, work.data() + loWord(r));
                if (r % step == 0) {
                    const std::size_t offset = between.size();
                    between.insert(between.end(), row.words, row.words + (row.hi - row.lo + 1));
                    betweenRows.push_back(
                        Row{between.data() + offset, row.lo, row.hi, row.zerosBefore});
                }
            }
            betweenTop = top;
        }
        return betweenRows[(base - top) / step - 1];
    }

    void keep(const Row& row)
    {
        const std::size_t offset = store.size();
        assert(offset + row.hi - row.lo + 1 <= store.capacity());
        store.insert(store.end(), row.words, row.words + (row.hi - row.lo + 1));
        kept.push_back(Row{store.data() + offset, row.lo, row.hi, row.zerosBefore});
    }

    std::span<const Index> a;
    std::size_t n, m, words;
    std::int64_t kLo, kHi;
    const Occurrences& where;
    const Masks& masks;
    std::vector<Word> work, scratch; // the row being computed, and a mask, full width
    std::size_t stride = 1, step = 1; // kept rows, rows kept between them
    std::vector<Word> store; // the kept rows, one after another
    std::vector<Row> kept;
    std::vector<Word> between; // every step-th row after one kept row, up to the next one
    std::vector<Row> betweenRows;
    std::size_t betweenTop = SIZE_MAX;
    std::vector<Word> block; // the rows recomputed between two kept ones
    std::vector<Row> blockRows;
    std::size_t blockBase = SIZE_MAX;
    StopCheck& stop;
};

// `edits`: a guess at the number of lines left unmatched; the band it gives is widened until
// it holds the answer.
std::vector<Index> byBits(std::span<const Index> a, std::span<const Index> b, Index ids,
    std::size_t maxWords, std::int64_t edits, StopCheck& stop)
{
    const Occurrences where(b, ids);
    const std::size_t words = (b.size() + 63) / 64;
    const Masks masks(where, ids, words, maxWords);
    const auto n = std::int64_t(a.size()), m = std::int64_t(b.size());
    const std::int64_t delta = n - m;
    edits = std::max(edits, std::abs(delta));
    for (;;) {
        // The diagonals k with |k| + |delta - k| <= edits.
        const std::int64_t spare = (edits - std::abs(delta)) / 2 + 1;
        const std::int64_t kLo = std::max(-m, std::min<std::int64_t>(0, delta) - spare);
        const std::int64_t kHi = std::min(n, std::max<std::int64_t>(0, delta) + spare);
        BitRows rows(a, b.size(), where, masks, kLo, kHi, maxWords, stop);
        std::int64_t length = rows.run();
        const std::int64_t found = n + m - 2 * length;
        if (found > edits) {
            // Some path has `found` edits, so the answer has no more: a band that wide holds
            // it. A band four times as wide is often enough, and cheaper.
            edits = std::min(found, 4 * edits + 64);
            continue;
        }

        std::vector<Index> match(a.size(), kNone);
        std::size_t x = a.size(), y = b.size();
        while (length > 0) {
            y = BitRows::highestZeroBelow(rows.at(x), y) + 1; // leave b lines unmatched while free
            for (;;) { // then a lines
                const BitRows::Row row = rows.at(x - 1);
                stop(std::int64_t(row.hi - row.lo + 1));
                if (BitRows::zerosBelow(row, y) != length)
                    break;
                --x;
            }
            --x;
            --y;
            assert(a[x] == b[y]);
            match[x] = static_cast<Index>(y);
            --length;
        }
        return match;
    }
}

} // namespace

CommonSubsequence::CommonSubsequence(std::span<const LineId> a, std::span<const LineId> b)
    : a(a)
    , b(b)
{
    constexpr std::size_t most = std::numeric_limits<Index>::max() - 1;
    if (a.size() > most || b.size() > most)
        throw std::length_error("too many lines to compare");
}

std::vector<std::int64_t> CommonSubsequence::find(Method method)
{
    return find(method, Limits());
}

std::vector<std::int64_t> CommonSubsequence::find(Method method, const Limits& limits)
{
    std::vector<std::int64_t> result(a.size(), -1);
    used = method;
    if (a.empty() || b.empty())
        return result;

    Reduced r = reduce(a, b, stop);
    // A common head is matched pair by pair whichever method runs; take it off first.
    std::size_t head = 0;
    while (head < r.a.size() && head < r.b.size() && r.a[head] == r.b[head]) {
        result[std::size_t(r.fromA[head])] = r.fromB[head];
        ++head;
    }
    const std::size_t lengthA = r.a.size(), lengthB = r.b.size();
    r.a.push_back(-1); // sentinels for the greedy method's runs of equal lines
    r.b.push_back(-2);
    const std::span<const Index> ra = std::span(r.a).subspan(head, lengthA - head);
    const std::span<const Index> rb = std::span(r.b).subspan(head, lengthB - head);
    if (ra.empty() || rb.empty())
        return result;

    std::vector<Index> match;
    Index edits = 0; // a first guess for the bit rows' band
    if (method == Method::Automatic) {
        // Rough costs in nanoseconds, measured on ordinary hardware: the threshold table pays
        // 30 for every equal pair, the bit rows 3 for every 64 columns of every row of their
        // band. The greedy method's cost is only known by running it, so it runs first, allowed
        // about half the time of the cheaper other one (a step of it takes some 6 ns): it wins
        // whenever the texts are alike, and gives way when they are not, or when the band of
        // twice the edits it has reached would already be cheaper. The threshold table keeps a
        // link per new threshold, up to one per equal pair, so where that could outgrow the
        // memory allowed it is not chosen.
        std::uint64_t pairs = 0;
        for (Index c : ra)
            pairs += std::uint64_t(r.countB[std::size_t(c)]);
        const std::uint64_t allowed
            = std::max<std::uint64_t>(limits.bitWords * 8, 16 * (ra.size() + rb.size()));
        const std::uint64_t thresholdCost
            = 12 * pairs <= allowed ? 30 * pairs : std::numeric_limits<std::uint64_t>::max();
        const std::uint64_t bitCost = 3 * std::uint64_t(ra.size()) * ((rb.size() + 63) / 64);
        const std::uint64_t budget = std::min(thresholdCost, bitCost) / 12 + ra.size() + rb.size();
        std::optional<std::vector<Index>> found = byGreedy(ra, rb, budget, ra.size(), edits, stop);
        if (found) {
            used = Method::Greedy;
            match = std::move(*found);
        } else {
            edits *= 2;
            // The band may have to be widened a few times: allow for it.
            const std::uint64_t bandCost
                = 12 * std::uint64_t(ra.size()) * (std::uint64_t(edits) / 64 + 2);
            used = std::min(bandCost, bitCost) <= thresholdCost ? Method::BitParallel
                                                                : Method::Threshold;
        }
    }

    if (match.empty()) {
        switch (used) {
        case Method::Threshold:
            match = byThreshold(ra, rb, r.ids, stop);
            break;
        case Method::BitParallel:
            match = byBits(ra, rb, r.ids, limits.bitWords, edits, stop);
            break;
        default:
            match = *byGreedy(ra, rb, std::numeric_limits<std::uint64_t>::max(), 0, edits, stop);
        }
    }
    for (std::size_t i = 0; i < ra.size(); ++i)
        if (match[i] != kNone)
            result[std::size_t(r.fromA[head + i])] = r.fromB[head + std::size_t(match[i])];
    return result;
}

} // namespace SeqDiff
