#pragma once

#include "LineStream.h"
#include "Random.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

enum class Style { Source, Repetitive };

// One benchmark pair: how its left text is made and how the right one comes from it.
struct PairKind
{
    std::string_view name;
    std::string_view description;
    Style style;
    std::size_t lines;
    unsigned changedPerMille; // of the left lines; unused when unrelated
    bool unrelated; // the right text is a second, independent draw
    std::size_t distinct = 20; // lines of a repetitive text
    bool large = false; // minutes for diff: timed once, whole-process only (compare-large.sh)
};

struct EditCounts
{
    std::size_t modified = 0;
    std::size_t inserted = 0;
    std::size_t deleted = 0;
};

struct LinePair
{
    std::array<std::vector<std::string>, 2> sides;
    EditCounts edits;
};

constexpr std::uint64_t kDefaultSeed = 20240611;

const std::vector<PairKind>& pairKinds();
// Pairs for the window's benchmarks, too slow for the engine's: written only when named.
const std::vector<PairKind>& windowPairKinds();
// Null for an unknown name.
const PairKind* findPairKind(std::string_view name);

// The same kind and seed give the same pair, byte for byte, on every machine.
LinePair makePair(const PairKind& kind, std::uint64_t seed = kDefaultSeed);

// Copies `left` with `changed` of its lines edited at random places: mostly lines replaced,
// some lines or small blocks inserted or deleted. New lines come from `newLines`, and a replaced
// line always differs from the one it replaces. When no untouched line is left to replace or
// delete, the rest are insertions.
std::vector<std::string> editLines(std::span<const std::string> left, std::size_t changed,
    Random& places, LineStream& newLines, EditCounts& counts);

// The text as the files hold it: every line ended by LF.
std::string joinLines(std::span<const std::string> lines);

} // namespace Bench
