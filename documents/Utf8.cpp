#include "Utf8.h"

#include <bit>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::uint64_t kHighBits = 0x8080808080808080ULL;

struct Sequence
{
    std::size_t length; // bytes taken: the whole character, or the maximal subpart when ill-formed
    bool wellFormed;
};

// Reads the sequence that starts with a byte >= 0x80 at `p` (n > 0 bytes left). The lead byte
// fixes the range of the first continuation byte (this is what rules out overlongs, surrogates
// and values above U+10FFFF); the rest take 80..BF. An ill-formed sequence ends before the first
// byte that does not fit, which makes it the maximal subpart; a byte that cannot start a
// sequence at all is a subpart of its own.
Sequence sequenceAt(const unsigned char* p, std::size_t n)
{
    std::size_t continuations;
    unsigned lo = 0x80;
    unsigned hi = 0xBF;
    const unsigned lead = p[0];
    if (lead >= 0xC2 && lead <= 0xDF) {
        continuations = 1;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        continuations = 2;
        if (lead == 0xE0)
            lo = 0xA0;
        else if (lead == 0xED)
            hi = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        continuations = 3;
        if (lead == 0xF0)
            lo = 0x90;
        else if (lead == 0xF4)
            hi = 0x8F;
    } else {
        return {1, false};
    }
    for (std::size_t i = 1; i <= continuations; ++i) {
        if (i >= n || p[i] < lo || p[i] > hi)
            return {i, false};
        lo = 0x80;
        hi = 0xBF;
    }
    return {continuations + 1, true};
}

// Offset of the first byte with its high bit set; `high` is a loaded word masked with kHighBits.
std::size_t firstHighByte(std::uint64_t high)
{
    if constexpr (std::endian::native == std::endian::little)
        return std::size_t(std::countr_zero(high)) / 8;
    else
        return std::size_t(std::countl_zero(high)) / 8;
}

} // namespace

std::size_t validUtf8Prefix(std::string_view bytes)
{
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const std::size_t n = bytes.size();
    std::size_t i = 0;
    while (i < n) {
        // Most text is ASCII: pass it eight bytes at a time, four words per round while the
        // text stays ASCII.
        while (i + 32 <= n) {
            std::uint64_t words[4];
            std::memcpy(words, p + i, 32);
            if ((words[0] | words[1] | words[2] | words[3]) & kHighBits)
                break;
            i += 32;
        }
        while (i + 8 <= n) {
            std::uint64_t word;
            std::memcpy(&word, p + i, 8);
            if (const std::uint64_t high = word & kHighBits) {
                i += firstHighByte(high);
                break;
            }
            i += 8;
        }
        if (i >= n)
            break;
        if (p[i] < 0x80) {
            ++i;
            continue;
        }
        // Non-ASCII letters come in runs (words of a language that needs them).
        do {
            const Sequence s = sequenceAt(p + i, n - i);
            if (!s.wellFormed)
                return i;
            i += s.length;
        } while (i < n && p[i] >= 0x80);
    }
    return n;
}

std::string_view sanitizeUtf8(std::string_view bytes, std::string& storage)
{
    std::size_t valid = validUtf8Prefix(bytes);
    if (valid == bytes.size())
        return bytes;

    // Built aside and moved in at the end, so `bytes` may even point into `storage`.
    std::string repaired;
    // Room for some damage; only a file that is mostly so (binary) has to grow.
    repaired.reserve(bytes.size() + bytes.size() / 8 + kReplacement.size());
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    std::size_t pos = 0;
    for (;;) {
        repaired.append(bytes.substr(pos, valid));
        pos += valid;
        if (pos == bytes.size())
            break;
        repaired.append(kReplacement);
        pos += sequenceAt(p + pos, bytes.size() - pos).length;
        valid = validUtf8Prefix(bytes.substr(pos));
    }
    storage = std::move(repaired);
    return storage;
}
