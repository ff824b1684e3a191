#include "Difference.h"

#include <algorithm>

namespace SeqDiff {

Difference::Difference(
    std::int64_t delStart, std::int64_t delEnd, std::int64_t addStart, std::int64_t addEnd)
    : delStart(delStart)
    , delEnd(delEnd)
    , addStart(addStart)
    , addEnd(addEnd)
{
}

void Difference::SetDeleted(std::int64_t line)
{
    delStart = std::min(line, delStart);
    delEnd = std::max(line, delEnd);
}

void Difference::SetAdded(std::int64_t line)
{
    addStart = std::min(line, addStart);
    addEnd = std::max(line, addEnd);
}

bool Difference::Equals(const Difference& other) const
{
    return delStart == other.delStart && delEnd == other.delEnd && addStart == other.addStart
        && addEnd == other.addEnd;
}

std::int64_t Difference::DeletedCount() const
{
    return delEnd < 0 ? 0 : delEnd - delStart + 1;
}

std::int64_t Difference::AddedCount() const
{
    return addEnd < 0 ? 0 : addEnd - addStart + 1;
}

} // namespace SeqDiff
