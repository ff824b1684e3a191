#include "Diff.h"

namespace SeqDiff {

Diff::Diff(LineIds a, LineIds b)
    : a(std::move(a))
    , b(std::move(b))
{
}

void Diff::setMethod(CommonSubsequence::Method m, CommonSubsequence::Limits l)
{
    method = m;
    limits = l;
}

std::vector<Difference> Diff::Calculate()
{
    traverseSequences();
    if (pending)
        diffs.push_back(*pending);
    return diffs;
}

std::vector<std::int64_t> Diff::getLongestCommonSubsequences()
{
    std::int64_t aStart = 0, aEnd = std::int64_t(a.size()) - 1;
    std::int64_t bStart = 0, bEnd = std::int64_t(b.size()) - 1;
    while (aStart <= aEnd && bStart <= bEnd && a[std::size_t(aStart)] == b[std::size_t(bStart)]) {
        stop();
        ++aStart;
        ++bStart;
    }
    const std::int64_t lastA = aEnd;
    while (aStart <= aEnd && bStart <= bEnd && a[std::size_t(aEnd)] == b[std::size_t(bEnd)]) {
        stop();
        --aEnd;
        --bEnd;
    }

    const auto midA = std::span(a).subspan(std::size_t(aStart), std::size_t(aEnd - aStart + 1));
    const auto midB = std::span(b).subspan(std::size_t(bStart), std::size_t(bEnd - bStart + 1));
    CommonSubsequence middle(midA, midB);
    middle.setStopToken(stop.stopToken());
    std::vector<std::int64_t> found = limits ? middle.find(method, *limits) : middle.find(method);
    std::vector<std::int64_t> matches;
    if (aStart == 0 && aEnd == lastA) {
        // Nothing shared at either end: the middle's answer is the whole one, and a text of
        // millions of lines is not given a second table of them.
        matches = std::move(found);
    } else {
        matches.assign(a.size(), -1);
        for (std::int64_t i = 0; i < aStart; ++i)
            matches[std::size_t(i)] = i;
        for (std::size_t i = 0; i < found.size(); ++i)
            if (found[i] >= 0)
                matches[std::size_t(aStart) + i] = bStart + found[i];
        for (std::int64_t i = aEnd + 1; i <= lastA; ++i)
            matches[std::size_t(i)] = bEnd + (i - aEnd);
    }

    // Lines of a behind the last match have no entry.
    while (!matches.empty() && matches.back() < 0)
        matches.pop_back();
    return matches;
}

void Diff::traverseSequences()
{
    const std::vector<std::int64_t> matches = getLongestCommonSubsequences();
    const std::int64_t lastA = std::int64_t(a.size()) - 1;
    const std::int64_t lastB = std::int64_t(b.size()) - 1;
    const std::int64_t lastMatch = std::int64_t(matches.size()) - 1;
    std::int64_t ai = 0, bi = 0;
    for (; ai <= lastMatch; ++ai) {
        stop();
        const std::int64_t match = matches[std::size_t(ai)];
        if (match < 0) {
            onANotB(ai, bi);
            continue;
        }
        stop(match - bi);
        for (; bi < match; ++bi)
            onBNotA(ai, bi);
        onMatch();
        ++bi;
    }

    // What is left behind the last match: one line of each side in turn, then the rest of the
    // longer side, all in one record.
    while (ai <= lastA || bi <= lastB) {
        stop();
        if (ai == lastA + 1)
            for (; bi <= lastB; ++bi)
                onBNotA(ai, bi);
        if (bi == lastB + 1)
            for (; ai <= lastA; ++ai)
                onANotB(ai, bi);
        if (ai <= lastA)
            onANotB(ai++, bi);
        if (bi <= lastB)
            onBNotA(ai, bi++);
    }
}

void Diff::onANotB(std::int64_t ai, std::int64_t bi)
{
    if (!pending)
        pending = Difference(ai, ai, bi, -1);
    else
        pending->SetDeleted(ai);
}

void Diff::onBNotA(std::int64_t ai, std::int64_t bi)
{
    if (!pending)
        pending = Difference(ai, -1, bi, bi);
    else
        pending->SetAdded(bi);
}

void Diff::onMatch()
{
    if (pending) {
        diffs.push_back(*pending);
        pending.reset();
    }
}

} // namespace SeqDiff
