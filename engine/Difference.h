#pragma once

#include <cstdint>

namespace SeqDiff {

// One stretch of change between the left lines `a` and the right lines `b`. Both ranges are
// inclusive; an end of -1 means the run is empty, and its start then still tells where the
// change lies in that text.
class Difference
{
public:
    Difference() = default;
    Difference(
        std::int64_t delStart, std::int64_t delEnd, std::int64_t addStart, std::int64_t addEnd);

    std::int64_t AddedStart() const { return addStart; }
    std::int64_t AddedEnd() const { return addEnd; }
    std::int64_t DeletedEnd() const { return delEnd; }
    std::int64_t DeletedStart() const { return delStart; }

    // Widen the run so that it holds `line`.
    void SetDeleted(std::int64_t line);
    void SetAdded(std::int64_t line);

    bool Equals(const Difference& other) const;
    bool operator==(const Difference& other) const { return Equals(other); }

    std::int64_t DeletedCount() const;
    std::int64_t AddedCount() const;

private:
    std::int64_t delStart = -1;
    std::int64_t delEnd = -1;
    std::int64_t addStart = -1;
    std::int64_t addEnd = -1;
};

} // namespace SeqDiff
