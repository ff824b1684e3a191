#pragma once

#include "Cancelled.h"

#include <cstdint>
#include <stop_token>

namespace SeqDiff {

// Asks a stop token now and then from inside a long loop. Work is counted in rough steps of a
// few nanoseconds; the token is asked once per some 100k steps, well under a millisecond, so
// the counting costs nothing worth measuring and a stop is noticed quickly.
class StopCheck
{
public:
    StopCheck() = default;
    explicit StopCheck(std::stop_token token)
        : token(std::move(token))
        , left(this->token.stop_possible() ? kSteps : kNever)
    {
    }

    // Throws Cancelled when a stop was requested.
    void operator()(std::int64_t steps = 1)
    {
        left -= steps;
        if (left <= 0) [[unlikely]]
            ask();
    }

    void ask()
    {
        if (token.stop_requested())
            throw Cancelled();
        left = token.stop_possible() ? kSteps : kNever;
    }

    const std::stop_token& stopToken() const { return token; }

private:
    static constexpr std::int64_t kSteps = 100'000;
    static constexpr std::int64_t kNever = INT64_MAX / 2;

    std::stop_token token;
    std::int64_t left = kNever;
};

} // namespace SeqDiff
