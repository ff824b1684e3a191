#pragma once

#include "LineIds.h"
#include "StopCheck.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <stop_token>
#include <vector>

namespace SeqDiff {

// Decides which line of `a` goes with which line of `b` in the stretch between the common head
// and tail. Of all longest common subsequences it gives the one that the threshold method gives
// when each line of `a` tries its partners from the last to the first and links every new
// threshold to the one below it: walking back from the ends of both texts, a line of `b` is left
// unmatched whenever that keeps the length, then a line of `a`, and only then is a pair
// matched. Three methods reach that same answer at different costs; by default the cheapest
// one for the input is chosen.
class CommonSubsequence
{
public:
    enum class Method {
        Automatic,
        Threshold, // the threshold table itself: cost grows with the number of equal pairs
        Greedy, // furthest-reaching paths: cost grows with the square of the edit distance
        BitParallel, // 64 columns per machine word: cost grows with the length of one text times
                     // the edit distance
    };

    // Memory, in 64-bit words, that the bit-parallel rows may keep before they keep only every
    // so many rows and compute the others again; the threshold table is not chosen where it
    // could need more.
    struct Limits
    {
        std::size_t bitWords = std::size_t(1) << 20;
    };

    CommonSubsequence(std::span<const LineId> a, std::span<const LineId> b);

    // For each line of `a`, the index of its partner in `b`, or -1.
    std::vector<std::int64_t> find(Method method, const Limits& limits);
    std::vector<std::int64_t> find(Method method = Method::Automatic);

    // `find` throws Cancelled soon after `stop` is requested.
    void setStopToken(std::stop_token stop) { this->stop = StopCheck(std::move(stop)); }

    // The method that the last `find` ended up using.
    Method methodUsed() const { return used; }

private:
    std::span<const LineId> a;
    std::span<const LineId> b;
    Method used = Method::Automatic;
    StopCheck stop;
};

} // namespace SeqDiff
