#pragma once

#include <exception>

namespace SeqDiff {

// Thrown out of a comparison whose stop token was triggered: its texts have changed, and nobody
// wants its result any more.
class Cancelled : public std::exception
{
public:
    const char* what() const noexcept override { return "comparison cancelled"; }
};

} // namespace SeqDiff
