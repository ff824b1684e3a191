#include "CommonSubsequence.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>

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
    r.a.reserve(a.size() + 1);
    r.fromA.reserve(a.size());
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
    // the work went past `budget`. Only a few waves are kept: enough to recompute any other.
    std::optional<Index> run(std::uint64_t budget)
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
            if (work > budget)
                return std::nullopt;
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
    StopCheck& stop;
    std::vector<Wave> checkpoints; // by ascending d
    std::vector<Wave> block; // a cone recomputed for the walk back
};

std::optional<std::vector<Index>> byGreedy(
    std::span<const Index> a, std::span<const Index> b, std::uint64_t budget, StopCheck& stop)
{
    Waves waves(a.data(), Index(a.size()), b.data(), Index(b.size()), stop);
    const std::optional<Index> edits = waves.run(budget);
    if (!edits)
        return std::nullopt;

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

class BitRows
{
public:
    BitRows(std::span<const Index> a, std::span<const Index> b, Index ids, std::size_t maxWords,
        StopCheck& stop)
        : a(a)
        , n(a.size())
        , words((b.size() + 63) / 64)
        , where(b, ids)
        , denseSlot(std::size_t(ids), kNone)
        , scratch(words, 0)
        , stop(stop)
    {
        // Lines that are frequent in b get a ready mask; the rest set a few bits per row.
        const std::size_t maskBudget = std::max<std::size_t>(maxWords / 2, words);
        for (Index c = 0; c < ids; ++c) {
            if (where.of(c).size() * 4 < words || (denseCount + 1) * words > maskBudget)
                continue;
            denseSlot[std::size_t(c)] = static_cast<Index>(denseCount++);
            masks.resize(denseCount * words, 0);
            setBits(&masks[(denseCount - 1) * words], where.of(c), true);
        }

        if ((n + 1) * words <= maxWords) {
            stride = 1;
        } else {
            stride = std::max<std::size_t>(1, std::size_t(std::sqrt(double(n + 1))));
        }
        rows.resize(n + 1);
        std::vector<Word> row(words, ~Word(0));
        rows[0] = row;
        for (std::size_t x = 1; x <= n; ++x) {
            step(row.data(), a[x - 1]);
            if (x % stride == 0 || x == n)
                rows[x] = row;
        }
    }

    // Row x; asked for with x going down.
    const Word* at(std::size_t x)
    {
        if (!rows[x].empty())
            return rows[x].data();
        for (std::size_t r : recomputed)
            if (r > x)
                std::vector<Word>().swap(rows[r]);
        recomputed.clear();
        std::size_t c = x - 1;
        while (rows[c].empty())
            --c;
        std::vector<Word> row = rows[c];
        for (std::size_t e = c + 1; e <= x; ++e) {
            step(row.data(), a[e - 1]);
            rows[e] = row;
            recomputed.push_back(e);
        }
        return rows[x].data();
    }

private:
    // Sets the bits of `positions`, or clears their whole words.
    static void setBits(Word* mask, std::span<const Index> positions, bool set)
    {
        for (Index j : positions)
            mask[std::size_t(j) / 64] = set ? mask[std::size_t(j) / 64] | Word(1) << (j % 64) : 0;
    }

    void step(Word* v, Index line)
    {
        stop(std::int64_t(words));
        const Index dense = denseSlot[std::size_t(line)];
        if (dense != kNone) {
            update(v, &masks[std::size_t(dense) * words]);
            return;
        }
        setBits(scratch.data(), where.of(line), true);
        update(v, scratch.data());
        setBits(scratch.data(), where.of(line), false);
    }

    void update(Word* v, const Word* mask) const
    {
        // v = (v + (v & mask)) | (v & ~mask), with the carry running across words.
        Word carry = 0;
        for (std::size_t w = 0; w < words; ++w) {
            const Word old = v[w];
            const Word u = old & mask[w];
            const Word sum = old + u;
            const Word total = sum + carry;
            carry = Word(sum < old) | Word(total < sum);
            v[w] = total | (old & ~u);
        }
    }

    std::span<const Index> a;
    std::size_t n, words;
    Occurrences where;
    std::vector<Index> denseSlot;
    std::size_t denseCount = 0;
    std::vector<Word> masks, scratch;
    std::size_t stride = 1;
    std::vector<std::vector<Word>> rows; // by x; empty where only recomputing can tell
    std::vector<std::size_t> recomputed;
    StopCheck& stop;
};

// Number of 0 bits among the first `bits` bits of a row. The walk back counts a great many
// words; the processor's own population count is chosen at load time where there is one.
__attribute__((target_clones("popcnt", "default"))) std::int64_t zerosBelow(
    const Word* row, std::size_t bits)
{
    std::int64_t zeros = 0;
    std::size_t w = 0;
    for (; (w + 1) * 64 <= bits; ++w)
        zeros += std::popcount(~row[w]);
    if (bits % 64)
        zeros += std::popcount(~row[w] & ((Word(1) << (bits % 64)) - 1));
    return zeros;
}

// The highest 0 bit below `bits`; there is one whenever zerosBelow(row, bits) > 0.
std::size_t highestZeroBelow(const Word* row, std::size_t bits)
{
    std::size_t w = (bits - 1) / 64;
    Word zeros = ~row[w];
    if (bits % 64)
        zeros &= (Word(1) << (bits % 64)) - 1;
    while (zeros == 0)
        zeros = ~row[--w];
    return w * 64 + 63 - std::size_t(std::countl_zero(zeros));
}

std::vector<Index> byBits(std::span<const Index> a, std::span<const Index> b, Index ids,
    std::size_t maxWords, StopCheck& stop)
{
    BitRows rows(a, b, ids, maxWords, stop);
    std::vector<Index> match(a.size(), kNone);
    std::size_t x = a.size(), y = b.size();
    std::int64_t length = zerosBelow(rows.at(x), y);
    while (length > 0) {
        stop(std::int64_t(y / 64));
        y = highestZeroBelow(rows.at(x), y) + 1; // leave b lines unmatched while it is free
        while (zerosBelow(rows.at(x - 1), y) == length) { // then a lines
            stop(std::int64_t(y / 64));
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
    if (method == Method::Automatic) {
        // Rough costs in nanoseconds, measured on ordinary hardware: the threshold table pays
        // for every equal pair, the bit rows for every 64 columns of every row. The greedy
        // method's cost is only known by running it, so it runs first, allowed about half the
        // time of the cheaper other one (a step of it takes some 6 ns): it wins whenever the
        // texts are alike, and gives way when they are not.
        std::uint64_t pairs = 0;
        for (Index c : ra)
            pairs += std::uint64_t(r.countB[std::size_t(c)]);
        const std::uint64_t thresholdCost = 30 * pairs;
        const std::uint64_t bitCost = 5 * std::uint64_t(ra.size()) * ((rb.size() + 63) / 64);
        const std::uint64_t budget = std::min(thresholdCost, bitCost) / 12 + ra.size() + rb.size();
        std::optional<std::vector<Index>> found = byGreedy(ra, rb, budget, stop);
        if (found) {
            used = Method::Greedy;
            match = std::move(*found);
        } else {
            used = bitCost <= thresholdCost ? Method::BitParallel : Method::Threshold;
        }
    }

    if (match.empty()) {
        switch (used) {
        case Method::Threshold:
            match = byThreshold(ra, rb, r.ids, stop);
            break;
        case Method::BitParallel:
            match = byBits(ra, rb, r.ids, limits.bitWords, stop);
            break;
        default:
            match = *byGreedy(ra, rb, std::numeric_limits<std::uint64_t>::max(), stop);
        }
    }
    for (std::size_t i = 0; i < ra.size(); ++i)
        if (match[i] != kNone)
            result[std::size_t(r.fromA[head + i])] = r.fromB[head + std::size_t(match[i])];
    return result;
}

} // namespace SeqDiff
