#pragma once

#include <QtGlobal>

#include <array>
#include <string_view>
#include <vector>

// Which parts of a pair of changed lines differ, so that a reader need not hunt for them.
namespace inlinespans {

// Columns [from, to) of a line, in UTF-16 units.
struct Columns
{
    qsizetype from = 0;
    qsizetype to = 0;

    bool operator==(const Columns&) const = default;
};

// Per side of the pair, in the order of the line.
using Changed = std::array<std::vector<Columns>, 2>;

// Lines longer than this are not compared: they are marked whole.
constexpr qsizetype kLongest = 10000;

// Words, runs of blanks, and single other characters, each whole: a character outside the
// Basic Multilingual Plane or with marks that combine with it is never cut. Kanji and kana stand
// alone, as Japanese puts no blanks between words.
std::vector<std::u16string_view> tokens(std::u16string_view line);

// The tokens of each line that the other lacks, by the comparison engine over tokens.
Changed changed(std::u16string_view a, std::u16string_view b);

} // namespace inlinespans
