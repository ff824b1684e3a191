#pragma once

// The comparison engine: from two arrays of lines to the list of differences.

#include "Cancelled.h"
#include "Diff.h"
#include "Difference.h"
#include "LineIds.h"
#include "LineSource.h"
#include "Lines.h"

#include <span>
#include <stop_token>
#include <string_view>
#include <vector>

namespace SeqDiff {

std::vector<Difference> FindDifferences(
    std::span<const std::u16string_view> a, std::span<const std::u16string_view> b);
std::vector<Difference> FindDifferences(
    std::span<const std::string_view> a, std::span<const std::string_view> b);
// The same over two UTF-8 texts, cut as splitLines cuts them but without an array of lines.
std::vector<Difference> compareTexts(std::string_view a, std::string_view b);
// The same over lines read in place. Throws Cancelled soon after `stop` is requested.
std::vector<Difference> FindDifferences(
    const LineSource& a, const LineSource& b, std::stop_token stop = {});

// Compares and checks the result record by record; throws std::runtime_error on a mismatch.
void runDiff(std::span<const std::string_view> a, std::span<const std::string_view> b,
    std::span<const Difference> expected);
void runDiff(Diff& diff, std::span<const Difference> expected);

// Runs the eight fixed comparisons; false when any of them gives other records.
bool SelfTest();

} // namespace SeqDiff
