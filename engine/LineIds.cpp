#include "LineIds.h"

#include <cstring>
#include <stdexcept>

namespace SeqDiff {

namespace {

std::uint64_t hashBytes(const void* data, std::size_t size)
{
    constexpr std::uint64_t k1 = 0x9E3779B97F4A7C15ULL;
    constexpr std::uint64_t k2 = 0xC2B2AE3D27D4EB4FULL;
    auto p = static_cast<const unsigned char*>(data);
    std::uint64_t h = size * k1;
    for (; size >= 8; p += 8, size -= 8) {
        std::uint64_t w;
        std::memcpy(&w, p, 8);
        w *= k2;
        h = ((h ^ w ^ (w >> 31)) * k1);
    }
    if (size > 0) {
        std::uint64_t w = 0;
        std::memcpy(&w, p, size);
        w *= k2;
        h = ((h ^ w ^ (w >> 31)) * k1);
    }
    h ^= h >> 33;
    h *= 0xFF51AFD7ED558CCDULL;
    h ^= h >> 33;
    return h;
}

template <class View> class Interner
{
public:
    explicit Interner(std::size_t expected)
    {
        std::size_t capacity = 1024;
        while (capacity < expected * 2)
            capacity *= 2;
        slots.assign(capacity, 0);
    }

    LineId idOf(View line)
    {
        const std::uint64_t h = hashBytes(line.data(), line.size() * sizeof(line[0]));
        std::size_t mask = slots.size() - 1;
        for (std::size_t s = h & mask;; s = (s + 1) & mask) {
            const LineId slot = slots[s];
            if (slot == 0)
                return add(line, h, s);
            const LineId id = slot - 1;
            if (hashes[id] == h && lines[id] == line)
                return id;
        }
    }

private:
    LineId add(View line, std::uint64_t h, std::size_t s)
    {
        if (lines.size() >= 0xFFFFFFF0U)
            throw std::length_error("too many distinct lines");
        const auto id = static_cast<LineId>(lines.size());
        lines.push_back(line);
        hashes.push_back(h);
        slots[s] = id + 1;
        if (lines.size() * 2 > slots.size())
            grow();
        return id;
    }

    void grow()
    {
        slots.assign(slots.size() * 2, 0);
        const std::size_t mask = slots.size() - 1;
        for (LineId id = 0; id < lines.size(); ++id) {
            std::size_t s = hashes[id] & mask;
            while (slots[s] != 0)
                s = (s + 1) & mask;
            slots[s] = id + 1;
        }
    }

    std::vector<LineId> slots; // id + 1, 0 when free
    std::vector<View> lines;
    std::vector<std::uint64_t> hashes;
};

template <class View>
std::array<LineIds, 2> intern(std::span<const View> a, std::span<const View> b)
{
    // Distinct lines are usually far fewer than lines; the table grows when they are not.
    Interner<View> table((a.size() + b.size()) / 4);
    std::array<LineIds, 2> ids;
    ids[0].reserve(a.size());
    ids[1].reserve(b.size());
    for (View line : a)
        ids[0].push_back(table.idOf(line));
    for (View line : b)
        ids[1].push_back(table.idOf(line));
    return ids;
}

} // namespace

std::array<LineIds, 2> internLines(
    std::span<const std::u16string_view> a, std::span<const std::u16string_view> b)
{
    return intern(a, b);
}

std::array<LineIds, 2> internLines(
    std::span<const std::string_view> a, std::span<const std::string_view> b)
{
    return intern(a, b);
}

} // namespace SeqDiff
