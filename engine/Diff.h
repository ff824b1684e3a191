#pragma once

#include "CommonSubsequence.h"
#include "Difference.h"
#include "LineIds.h"
#include "StopCheck.h"

#include <cstdint>
#include <optional>
#include <stop_token>
#include <vector>

namespace SeqDiff {

// One comparison of two line arrays, made for a single call of Calculate.
class Diff
{
public:
    Diff(LineIds a, LineIds b);
    virtual ~Diff() = default;

    // The differences in text order. A second call would walk again and append.
    std::vector<Difference> Calculate();

    // Per line of `a` up to its last matched line: the matched line of `b`, or -1. The common
    // head is matched first, then the common tail, then the stretch between them.
    std::vector<std::int64_t> getLongestCommonSubsequences();

    // Which way the stretch between head and tail is computed; all give the same answer.
    void setMethod(CommonSubsequence::Method method, CommonSubsequence::Limits limits);

    // Calculate throws Cancelled soon after `stop` is requested.
    void setStopToken(std::stop_token stop) { this->stop = StopCheck(std::move(stop)); }

private:
    void traverseSequences();
    void onANotB(std::int64_t ai, std::int64_t bi);
    void onBNotA(std::int64_t ai, std::int64_t bi);
    void onMatch();

    LineIds a;
    LineIds b;
    std::vector<Difference> diffs;
    std::optional<Difference> pending;
    CommonSubsequence::Method method = CommonSubsequence::Method::Automatic;
    std::optional<CommonSubsequence::Limits> limits;
    StopCheck stop;
};

} // namespace SeqDiff
