#pragma once

#include <string>
#include <string_view>

// The text that decoding `bytes` as UTF-8 gives, still as UTF-8. Each ill-formed sequence
// becomes one U+FFFD per maximal subpart, as ICU's converter decodes it, so both panes and the
// comparison see the same characters. A byte-order mark stays, as the character U+FEFF.
//
// Well-formed input (the usual case) is returned as is, pointing into `bytes`, and `storage`
// is left alone; otherwise the repaired text is written to `storage` and the result points
// into it.
std::string_view sanitizeUtf8(std::string_view bytes, std::string& storage);

// Length of the well-formed UTF-8 that starts `bytes`; bytes.size() when all of it is.
std::size_t validUtf8Prefix(std::string_view bytes);
