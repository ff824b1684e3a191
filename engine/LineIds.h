#pragma once

#include "LineSource.h"
#include "StopCheck.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace SeqDiff {

// A line reduced to a number: two lines have the same id exactly when they are equal,
// character for character.
using LineId = std::uint32_t;
using LineIds = std::vector<LineId>;

// Numbers the lines of both sides from one table, so that ids can be compared across sides.
std::array<LineIds, 2> internLines(
    std::span<const std::u16string_view> a, std::span<const std::u16string_view> b);
std::array<LineIds, 2> internLines(
    std::span<const std::string_view> a, std::span<const std::string_view> b);
// The lines of two UTF-8 texts as splitLines cuts them, but read one at a time, with no array
// of them: the common head is skipped and its length stored in `head`, the rest is numbered.
std::array<LineIds, 2> internTextLines(std::string_view a, std::string_view b, std::size_t& head);
// Lines [aFrom, aTo) of `a` and [bFrom, bTo) of `b`, by the hashes the sources keep.
std::array<LineIds, 2> internLines(const LineSource& a, std::size_t aFrom, std::size_t aTo,
    const LineSource& b, std::size_t bFrom, std::size_t bTo, StopCheck& stop);

} // namespace SeqDiff
