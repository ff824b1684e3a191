#pragma once

#include "TextEncoding.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace documents {

// Whether `bytes` decode under `encoding` without a single undecodable sequence. A U+FFFD that
// the bytes themselves spell out in UTF-8 is text, not a fault.
bool decodesCleanly(TextEncoding encoding, std::string_view bytes);

// When `bytes` do not decode cleanly under rows[current], the first other row under which they
// do, trying first the rows that ICU's charset detector names for the bytes; -1 when there is
// none, when the bytes hold a NUL, or when they are longer than kHintLimit (every row would have
// to decode them whole).
int cleanerRow(std::string_view bytes, std::span<const TextEncoding> rows, int current);

inline constexpr std::size_t kHintLimit = std::size_t(32) << 20;
// The detector ranks by a look at the start of the bytes; the check decodes them all.
inline constexpr std::size_t kDetectorSample = std::size_t(64) << 10;

} // namespace documents
