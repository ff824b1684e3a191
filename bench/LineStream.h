#pragma once

#include <string>

namespace Bench {

// An endless source of lines; texts and the lines their edits bring in come from the same kind.
class LineStream
{
public:
    virtual ~LineStream() = default;
    virtual std::string next() = 0;
};

} // namespace Bench
