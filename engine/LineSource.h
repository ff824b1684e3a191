#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace SeqDiff {

// The hash a line store keeps for each of its lines, so that a comparison need not read every
// line again. Equal texts give equal hashes; unequal texts may too, so equality is still checked.
std::uint64_t lineHash(std::u16string_view line);

// A line's characters as a store holds them: UTF-16 units, or one byte each where every
// character is below U+0100. Equal when the characters are, whatever the widths.
struct LineText
{
    const void* data;
    std::size_t size; // in characters
    bool narrow;

    friend bool operator==(const LineText& x, const LineText& y)
    {
        if (x.size != y.size)
            return false;
        if (x.narrow == y.narrow)
            return std::memcmp(x.data, y.data, x.size * (x.narrow ? 1 : 2)) == 0;
        const auto* n = static_cast<const unsigned char*>(x.narrow ? x.data : y.data);
        const auto* w = static_cast<const char16_t*>(x.narrow ? y.data : x.data);
        for (std::size_t i = 0; i < x.size; ++i)
            if (w[i] != n[i])
                return false;
        return true;
    }
};

// Lines as a store keeps them, read in place: the comparison copies no text. A source must not
// change while a comparison reads it, which may be on another thread.
class LineSource
{
public:
    virtual ~LineSource() = default;
    virtual std::size_t lineCount() const = 0;
    virtual std::u16string_view line(std::size_t i) const = 0;
    // lineHash(line(i)), kept rather than computed again.
    virtual std::uint64_t lineHash(std::size_t i) const = 0;
    // The line as it is held, for comparing lines without widening them.
    virtual LineText lineText(std::size_t i) const
    {
        const std::u16string_view l = line(i);
        return {l.data(), l.size(), false};
    }
};

} // namespace SeqDiff
