#pragma once

#include <array>
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

} // namespace SeqDiff
