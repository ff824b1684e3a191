#pragma once

// A deliberately literal, slow rendering of the comparison: dictionaries, a threshold table
// keyed by integer, links shared between chains, and the walk with its three callbacks. The
// engine's fast paths are checked against it record for record.

#include "Difference.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Reference {

using Lines = std::vector<std::u16string>;
using Matches = std::vector<std::optional<std::int64_t>>;

// The text as the comparison splits it: every CR LF, CR and LF made one LF, then cut at LF.
Lines split(const std::u16string& text);

// Per line of a up to the last match: the matched line of b, or nothing.
Matches longestCommonSubsequences(const Lines& a, const Lines& b);

std::vector<SeqDiff::Difference> differences(const Lines& a, const Lines& b);

} // namespace Reference
