#include "BenchPairs.h"

#include "RepetitiveLines.h"
#include "SourceLines.h"

#include <algorithm>
#include <memory>
#include <optional>

namespace Bench {

namespace {

enum Fate : std::uint8_t { Keep, Replace, Delete };

std::unique_ptr<LineStream> makeStream(const PairKind& kind, std::uint64_t seed)
{
    if (kind.style == Style::Source)
        return std::make_unique<SourceLines>(seed);
    return std::make_unique<RepetitiveLines>(seed, kind.distinct);
}

// FNV-1a, so that each pair draws from its own streams under one seed.
std::uint64_t nameHash(std::string_view name)
{
    std::uint64_t h = 0xCBF29CE484222325ull;
    for (unsigned char c : name) {
        h ^= c;
        h *= 0x100000001B3ull;
    }
    return h;
}

// Half of all edits touch one line; the rest are spread over 2..largest.
std::size_t blockSize(Random& random, std::size_t largest)
{
    if (largest <= 1 || random.chance(500))
        return 1;
    return 2 + random.below(largest - 1);
}

// The first run of `size` untouched lines at or after `from`, wrapping round once.
std::optional<std::size_t> findUntouched(
    const std::vector<std::uint8_t>& fate, std::size_t from, std::size_t size)
{
    const std::size_t n = fate.size();
    if (size > n)
        return std::nullopt;
    std::size_t run = 0;
    for (std::size_t step = 0; step < n + size; ++step) {
        const std::size_t p = (from + step) % n;
        if (p == 0)
            run = 0; // a run cannot wrap past the last line
        run = fate[p] == Keep ? run + 1 : 0;
        if (run == size)
            return p + 1 - size;
    }
    return std::nullopt;
}

std::string replacement(const std::string& old, LineStream& newLines)
{
    for (int attempt = 0; attempt < 16; ++attempt) {
        std::string line = newLines.next();
        if (line != old)
            return line;
    }
    return old + " // edited";
}

} // namespace

const std::vector<PairKind>& pairKinds()
{
    static const std::vector<PairKind> kinds{
        {"src100k-1pct", "source-like, 100k lines, 1% of lines changed", Style::Source, 100000, 10,
            false},
        {"src100k-10pct", "source-like, 100k lines, 10% of lines changed", Style::Source, 100000,
            100, false},
        {"src1m-0.1pct", "source-like, 1M lines, 0.1% of lines changed", Style::Source, 1000000, 1,
            false},
        {"rep20k-1pct", "20k lines from 20 distinct ones, 1% of lines changed", Style::Repetitive,
            20000, 10, false},
        {"rep20k-50pct", "20k lines from 20 distinct ones, 50% of lines changed", Style::Repetitive,
            20000, 500, false},
        {"rep20k-unrelated", "20k lines from 20 distinct ones, two independent draws",
            Style::Repetitive, 20000, 0, true},
        {"rep100k-1000-unrelated", "100k lines from 1000 distinct ones, two independent draws",
            Style::Repetitive, 100000, 0, true, 1000, true},
        {"rep300k-1000-unrelated", "300k lines from 1000 distinct ones, two independent draws",
            Style::Repetitive, 300000, 0, true, 1000, true},
        {"rep300k-50-unrelated", "300k lines from 50 distinct ones, two independent draws",
            Style::Repetitive, 300000, 0, true, 50, true},
        {"rep300k-200-50pct", "300k lines from 200 distinct ones, 50% of lines changed",
            Style::Repetitive, 300000, 500, false, 200, true},
        {"rep500k-200-5pct", "500k lines from 200 distinct ones, 5% of lines changed",
            Style::Repetitive, 500000, 50, false, 200, true},
        {"rep1m-3-5pct", "1M lines from 3 distinct ones, 5% of lines changed", Style::Repetitive,
            1000000, 50, false, 3, true},
        {"empty20m-0.1pct", "20M empty lines, 0.1% of lines changed", Style::Repetitive, 20000000,
            1, false, 1, true},
    };
    return kinds;
}

const std::vector<PairKind>& windowPairKinds()
{
    static const std::vector<PairKind> kinds{
        {"src300k-20pct", "source-like, 300k lines, 20% of lines changed", Style::Source, 300000,
            200, false},
    };
    return kinds;
}

const PairKind* findPairKind(std::string_view name)
{
    for (const PairKind& kind : windowPairKinds())
        if (kind.name == name)
            return &kind;
    for (const PairKind& kind : pairKinds())
        if (kind.name == name)
            return &kind;
    return nullptr;
}

std::vector<std::string> editLines(std::span<const std::string> left, std::size_t changed,
    Random& places, LineStream& newLines, EditCounts& counts)
{
    const std::size_t n = left.size();
    std::vector<std::uint8_t> fate(n, Keep);
    std::vector<std::size_t> insertBefore(n + 1, 0);

    std::size_t budget = changed;
    while (budget > 0) {
        const auto roll = places.below(100);
        Fate kind = roll < 70 ? Replace : Delete;
        std::size_t size = std::min(blockSize(places, roll < 70 ? 3 : 5), budget);
        const bool insert = roll >= 85 || n == 0;
        std::optional<std::size_t> start;
        if (!insert) {
            const std::size_t from = places.below(n);
            start = findUntouched(fate, from, size);
            if (!start && size > 1) {
                size = 1;
                start = findUntouched(fate, from, size);
            }
        }
        if (start) {
            std::fill_n(fate.begin() + std::ptrdiff_t(*start), size, kind);
            (kind == Replace ? counts.modified : counts.deleted) += size;
        } else {
            insertBefore[places.below(n + 1)] += size;
            counts.inserted += size;
        }
        budget -= size;
    }

    std::vector<std::string> right;
    right.reserve(n + counts.inserted);
    for (std::size_t i = 0;; ++i) {
        for (std::size_t k = 0; k < insertBefore[i]; ++k)
            right.push_back(newLines.next());
        if (i == n)
            break;
        if (fate[i] == Keep)
            right.push_back(left[i]);
        else if (fate[i] == Replace)
            right.push_back(replacement(left[i], newLines));
    }
    return right;
}

LinePair makePair(const PairKind& kind, std::uint64_t seed)
{
    const std::uint64_t base = mixSeed(seed, nameHash(kind.name));
    LinePair pair;
    auto& [left, right] = pair.sides;

    const auto leftStream = makeStream(kind, mixSeed(base, 1));
    left.reserve(kind.lines);
    for (std::size_t i = 0; i < kind.lines; ++i)
        left.push_back(leftStream->next());

    if (kind.unrelated) {
        const auto rightStream = makeStream(kind, mixSeed(base, 2));
        right.reserve(kind.lines);
        for (std::size_t i = 0; i < kind.lines; ++i)
            right.push_back(rightStream->next());
        return pair;
    }

    Random places(mixSeed(base, 3));
    const auto newLines = makeStream(kind, mixSeed(base, 4));
    const std::size_t changed = kind.lines * std::min(kind.changedPerMille, 1000u) / 1000;
    right = editLines(left, changed, places, *newLines, pair.edits);
    return pair;
}

std::string joinLines(std::span<const std::string> lines)
{
    std::size_t size = 0;
    for (const std::string& line : lines)
        size += line.size() + 1;
    std::string text;
    text.reserve(size);
    for (const std::string& line : lines) {
        text += line;
        text += '\n';
    }
    return text;
}

} // namespace Bench
