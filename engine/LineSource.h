#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace SeqDiff {

// The hash a line store keeps for each of its lines, so that a comparison need not read every
// line again. Equal texts give equal hashes; unequal texts may too, so equality is still checked.
std::uint64_t lineHash(std::u16string_view line);

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
};

} // namespace SeqDiff
