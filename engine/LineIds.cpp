#include "LineIds.h"

#include "LineSource.h"
#include "Lines.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace SeqDiff {

namespace {

std::uint64_t hashBytes(const void* data, std::size_t size)
{
    constexpr std::uint64_t k1 = 0x9E3779B97F4A7C15ULL;
    constexpr std::uint64_t k2 = 0xC2B2AE3D27D4EB4FULL;
    auto p = static_cast<const unsigned char*>(data);
    const bool longer = size >= 8;
    std::uint64_t h = size * k1;
    for (; size >= 8; p += 8, size -= 8) {
        std::uint64_t w;
        std::memcpy(&w, p, 8);
        w *= k2;
        h = ((h ^ w ^ (w >> 31)) * k1);
    }
    if (size > 0) {
        // The last bytes in whole loads, some read twice, rather than copied byte by byte,
        // which stalls the load of the word they make. With the length in the hash, the bytes
        // still decide the word.
        std::uint64_t w;
        if (longer) {
            std::memcpy(&w, p + size - 8, 8);
            w >>= 8 * (8 - size);
        } else if (size >= 4) {
            std::uint32_t low, high;
            std::memcpy(&low, p, 4);
            std::memcpy(&high, p + size - 4, 4);
            w = low | std::uint64_t(high) << 32;
        } else {
            w = p[0] | std::uint64_t(p[size / 2]) << 8 | std::uint64_t(p[size - 1]) << 16;
        }
        w *= k2;
        h = ((h ^ w ^ (w >> 31)) * k1);
    }
    h ^= h >> 33;
    h *= 0xFF51AFD7ED558CCDULL;
    h ^= h >> 33;
    return h;
}

// A slot of the tables below, which find a line's id by its hash.
struct Slot
{
    LineId idPlusOne; // 0 when free
    std::uint32_t tag; // high half of the hash: most unequal lines are never read
};

// Doubles a table three quarters full, placing each id again by `hashOf(id)`.
template <class HashOf> void grow(std::vector<Slot>& slots, HashOf hashOf)
{
    std::vector<Slot> old(slots.size() * 2, Slot{0, 0});
    old.swap(slots);
    const std::size_t mask = slots.size() - 1;
    for (const Slot& slot : old) {
        if (slot.idPlusOne == 0)
            continue;
        std::size_t s = hashOf(slot.idPlusOne - 1) & mask;
        while (slots[s].idPlusOne != 0)
            s = (s + 1) & mask;
        slots[s] = slot;
    }
}

template <class View> class Interner
{
public:
    // Sized for `lines` distinct lines; it grows when more come.
    explicit Interner(std::size_t lines)
    {
        std::size_t capacity = 1024;
        while (capacity < lines + lines / 4)
            capacity *= 2;
        slots.assign(capacity, Slot{0, 0});
        // Address space only: pages are touched as distinct lines come.
        first.reserve(lines);
    }

    LineId idOf(View line) { return idOf(line, hashOf(line)); }
    void prefetch(std::uint64_t h) const { __builtin_prefetch(&slots[h & (slots.size() - 1)]); }

    void intern(std::span<const View> lines, LineIds& ids)
    {
        // Hash a few lines ahead and fetch their slots early: the table is larger than the
        // cache, and waiting for each slot in turn would dominate.
        constexpr std::size_t ahead = 16;
        std::uint64_t hashes[ahead];
        ids.reserve(lines.size());
        for (std::size_t i = 0; i < lines.size(); i += ahead) {
            const std::size_t count = std::min(ahead, lines.size() - i);
            for (std::size_t j = 0; j < count; ++j) {
                hashes[j] = hashOf(lines[i + j]);
                __builtin_prefetch(&slots[hashes[j] & (slots.size() - 1)]);
            }
            for (std::size_t j = 0; j < count; ++j)
                ids.push_back(idOf(lines[i + j], hashes[j]));
        }
    }

    // Most lines of the second text follow their twin in the first: try the line after the last
    // twin before hashing.
    void internFollowing(std::span<const View> lines, std::span<const View> before,
        const LineIds& beforeIds, LineIds& ids)
    {
        std::vector<std::uint32_t> lastIn(first.size(), 0);
        for (std::size_t i = 0; i < beforeIds.size(); ++i)
            lastIn[beforeIds[i]] = static_cast<std::uint32_t>(i);
        ids.reserve(lines.size());
        std::size_t next = 0;
        for (const View line : lines) {
            if (next < before.size() && before[next] == line) {
                ids.push_back(beforeIds[next++]);
                continue;
            }
            const LineId id = idOf(line, hashOf(line));
            ids.push_back(id);
            if (id < lastIn.size())
                next = lastIn[id] + 1;
        }
    }

    static std::uint64_t hashOf(View line)
    {
        return hashBytes(line.data(), line.size() * sizeof(line[0]));
    }

    LineId idOf(View line, std::uint64_t h)
    {
        const auto tag = static_cast<std::uint32_t>(h >> 32);
        const std::size_t mask = slots.size() - 1;
        for (std::size_t s = h & mask;; s = (s + 1) & mask) {
            Slot& slot = slots[s];
            if (slot.idPlusOne == 0) {
                if (first.size() >= 0xFFFFFFF0U)
                    throw std::length_error("too many distinct lines");
                first.push_back(line);
                slot = Slot{static_cast<LineId>(first.size()), tag};
                const LineId id = slot.idPlusOne - 1;
                if (first.size() * 4 > slots.size() * 3)
                    grow(slots, [&](LineId old) { return hashOf(first[old]); });
                return id;
            }
            if (slot.tag == tag && first[slot.idPlusOne - 1] == line)
                return slot.idPlusOne - 1;
        }
    }

private:
    std::vector<Slot> slots; // a power of two, at most three quarters full
    std::vector<View> first; // per id, its first line
};

template <class View>
std::array<LineIds, 2> intern(std::span<const View> a, std::span<const View> b)
{
    Interner<View> table(a.size() + b.size());
    std::array<LineIds, 2> ids;
    table.intern(a, ids[0]);
    table.internFollowing(b, a, ids[0], ids[1]);
    return ids;
}

// The same table over two line sources, read in place: the kept hashes place a line, and the
// text is read only to tell apart lines whose hashes agree. The table grows with the distinct
// lines, not with all of them: a long text of few distinct lines keeps it small.
class SourceInterner
{
public:
    // Sized for `lines` distinct lines up to a million; beyond, it grows.
    SourceInterner(const LineSource& a, const LineSource& b, std::size_t lines, StopCheck& stop)
        : sources{&a, &b}
        , stop(stop)
    {
        lines = std::min<std::size_t>(lines, 1 << 20);
        std::size_t capacity = 1024;
        while (capacity < lines + lines / 4)
            capacity *= 2;
        slots.assign(capacity, Slot{0, 0});
    }

    void intern(int side, std::size_t from, std::size_t to, LineIds& ids)
    {
        // A few hashes ahead are read and their slots fetched early, as the table is larger
        // than the cache.
        constexpr std::size_t ahead = 16;
        std::uint64_t hashes[ahead];
        const LineSource& source = *sources[side];
        ids.reserve(to - from);
        for (std::size_t i = from; i < to; i += ahead) {
            const std::size_t count = std::min(ahead, to - i);
            stop(std::int64_t(count));
            for (std::size_t j = 0; j < count; ++j) {
                hashes[j] = source.lineHash(i + j);
                __builtin_prefetch(&slots[hashes[j] & (slots.size() - 1)]);
            }
            for (std::size_t j = 0; j < count; ++j)
                ids.push_back(idOf(side, i + j, hashes[j]));
        }
    }

private:
    struct Place
    {
        std::uint32_t side;
        std::uint32_t index;
    };

    LineId idOf(int side, std::size_t index, std::uint64_t h)
    {
        const auto tag = static_cast<std::uint32_t>(h >> 32);
        const std::size_t mask = slots.size() - 1;
        for (std::size_t s = h & mask;; s = (s + 1) & mask) {
            Slot& slot = slots[s];
            if (slot.idPlusOne == 0) {
                if (first.size() >= 0xFFFFFFF0U || index > 0xFFFFFFFFU)
                    throw std::length_error("too many lines");
                first.push_back(Place{std::uint32_t(side), std::uint32_t(index)});
                slot = Slot{static_cast<LineId>(first.size()), tag};
                const LineId id = slot.idPlusOne - 1;
                if (first.size() * 4 > slots.size() * 3)
                    grow(slots, [&](LineId old) {
                        const Place p = first[old];
                        return sources[p.side]->lineHash(p.index);
                    });
                return id;
            }
            if (slot.tag == tag) {
                const Place p = first[slot.idPlusOne - 1];
                if (sources[p.side]->lineText(p.index) == sources[side]->lineText(index))
                    return slot.idPlusOne - 1;
            }
        }
    }

    const LineSource* sources[2];
    StopCheck& stop;
    std::vector<Slot> slots; // a power of two, at most three quarters full
    std::vector<Place> first; // per id, where it was first seen
};

// The lines both texts start with, found by comparing bytes rather than line by line: their
// number in `lines`, and the length they take. A CR among the last shared bytes ends no line
// here, as what follows it decides its ending in each text.
std::size_t sharedLines(std::string_view x, std::string_view y, std::size_t& lines)
{
    const std::size_t n = std::min(x.size(), y.size());
    std::size_t common = 0;
#ifdef __SSE2__
    for (; common + 16 <= n; common += 16) {
        const auto load = [&](std::string_view t) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(t.data() + common));
        };
        const unsigned same = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(load(x), load(y))));
        if (same != 0xFFFF)
            break;
    }
#endif
    while (common < n && x[common] == y[common])
        ++common;
    std::size_t end = common;
    if (end > 0 && x[end - 1] == '\r')
        --end;
    while (end > 0 && x[end - 1] != '\n' && x[end - 1] != '\r')
        --end;
    const std::string_view shared = x.substr(0, end);
    lines = countLineFeeds(shared);
    if (end > 0 && std::memchr(shared.data(), '\r', end) != nullptr)
        for (std::size_t i = 0; i < end; ++i)
            lines += shared[i] == '\r' && (i + 1 == end || shared[i + 1] != '\n');
    return end;
}

} // namespace

std::array<LineIds, 2> internTextLines(std::string_view a, std::string_view b, std::size_t& head)
{
    // The common head is only counted.
    std::size_t startA = sharedLines(a, b, head); // where lineA starts
    std::size_t startB = startA; // where lineB starts
    LineCursor left(a, startA), right(b, startB);
    std::string_view lineA, lineB;
    bool hasA = left.next(lineA), hasB = right.next(lineB);
    while (hasA && hasB && lineA == lineB) {
        ++head;
        startA = left.offset();
        startB = right.offset();
        hasA = left.next(lineA);
        hasB = right.next(lineB);
    }

    // Sized for a text of mostly distinct lines up to a million of them; beyond, it grows, so
    // that a text of many equal lines keeps it small.
    const std::size_t guess = std::min<std::size_t>((a.size() + b.size()) / 64, 1 << 20);
    Interner<std::string_view> table(guess);
    std::array<LineIds, 2> ids;
    // One line more than LF endings in the usual text: counted, to grow the arrays once.
    const auto endings = [](std::string_view text) { return countLineFeeds(text) + 1; };
    ids[0].reserve(std::max(endings(a), head) - head);
    ids[1].reserve(std::max(endings(b), head) - head);
    // Per id, where the line after its last place in a starts, and its number there.
    std::vector<std::size_t> afterLast;
    std::vector<std::uint32_t> lastIndex;
    // A few lines ahead are hashed and their slots fetched early: the table is larger than the
    // cache, and waiting for each slot in turn would dominate.
    constexpr std::size_t ahead = 16;
    std::string_view lines[ahead];
    std::size_t ends[ahead];
    std::uint64_t hashes[ahead];
    while (hasA) {
        std::size_t count = 0;
        for (; hasA && count < ahead; hasA = left.next(lineA)) {
            lines[count] = lineA;
            ends[count++] = left.offset();
        }
        for (std::size_t j = 0; j < count; ++j) {
            hashes[j] = Interner<std::string_view>::hashOf(lines[j]);
            table.prefetch(hashes[j]);
        }
        for (std::size_t j = 0; j < count; ++j) {
            const LineId id = table.idOf(lines[j], hashes[j]);
            if (id >= afterLast.size()) {
                afterLast.resize(id + 1);
                lastIndex.resize(id + 1);
            }
            afterLast[id] = ends[j];
            lastIndex[id] = static_cast<std::uint32_t>(ids[0].size());
            ids[0].push_back(id);
        }
    }

    // Most lines of b follow their twin in a: try the line after the last twin before hashing,
    // and take whole runs of such lines at once where the bytes agree.
    const std::size_t linesA = ids[0].size();
    std::size_t nextIndex = 0;
    LineCursor follow(a, startA); // at line nextIndex of the rest of a
    for (; hasB; startB = right.offset(), hasB = right.next(lineB)) {
        if (nextIndex < linesA) {
            std::size_t run = 0;
            const std::size_t length
                = sharedLines(a.substr(follow.offset()), b.substr(startB), run);
            if (run > 0) {
                ids[1].insert(ids[1].end(), ids[0].begin() + std::ptrdiff_t(nextIndex),
                    ids[0].begin() + std::ptrdiff_t(nextIndex + run));
                nextIndex += run;
                follow = LineCursor(a, follow.offset() + length);
                right = LineCursor(b, startB + length);
                continue;
            }
            if (follow.skip(lineB)) {
                ids[1].push_back(ids[0][nextIndex++]);
                continue;
            }
        }
        const LineId id = table.idOf(lineB);
        ids[1].push_back(id);
        if (id < afterLast.size()) {
            nextIndex = lastIndex[id] + 1;
            follow = LineCursor(a, afterLast[id]);
        }
    }
    return ids;
}

std::array<LineIds, 2> internLines(const LineSource& a, std::size_t aFrom, std::size_t aTo,
    const LineSource& b, std::size_t bFrom, std::size_t bTo, StopCheck& stop)
{
    SourceInterner table(a, b, (aTo - aFrom) + (bTo - bFrom), stop);
    std::array<LineIds, 2> ids;
    table.intern(0, aFrom, aTo, ids[0]);
    table.intern(1, bFrom, bTo, ids[1]);
    return ids;
}

std::uint64_t lineHash(std::u16string_view line)
{
    return hashBytes(line.data(), line.size() * sizeof(line[0]));
}

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
