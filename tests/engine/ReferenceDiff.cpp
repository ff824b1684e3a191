#include "ReferenceDiff.h"

#include <algorithm>
#include <map>
#include <memory>
#include <unordered_map>

namespace Reference {

namespace {

struct Link
{
    std::shared_ptr<const Link> previous;
    std::int64_t i, j;
};

class Table
{
public:
    std::optional<std::int64_t> get(std::int64_t k) const
    {
        const auto it = thresh.find(k);
        return it == thresh.end() ? std::nullopt : std::optional(it->second);
    }
    void put(std::int64_t k, std::int64_t value)
    {
        thresh[k] = value;
        if (max < k)
            max = k;
    }
    std::int64_t lastKey() const { return max; }
    std::int64_t count() const { return std::int64_t(thresh.size()); }
    std::int64_t lastValue() const { return *get(lastKey()); }
    bool isGreaterThan(std::int64_t index, std::int64_t value) const { return *get(index) > value; }
    bool isLessThan(std::int64_t index, std::int64_t value) const { return *get(index) < value; }
    void append(std::int64_t value) { put(count() == 0 ? 0 : lastKey() + 1, value); }

    std::optional<std::int64_t> insert(std::int64_t j, std::optional<std::int64_t> k)
    {
        const bool nonzero = k && *k != 0;
        if (nonzero && isGreaterThan(*k, j) && isLessThan(*k - 1, j)) {
            put(*k, j);
            return k;
        }
        std::int64_t high = nonzero ? *k : (count() > 0 ? lastKey() : -1);
        if (high == -1 || lastValue() < j) {
            append(j);
            return high + 1;
        }
        std::int64_t low = 0;
        while (low <= high) {
            const auto index = std::int64_t((double(high) + double(low)) / 2);
            const std::int64_t value = *get(index);
            if (value == j)
                return std::nullopt;
            if (value < j)
                low = index + 1;
            else
                high = index - 1;
        }
        put(low, j);
        return low;
    }

private:
    std::map<std::int64_t, std::int64_t> thresh;
    std::int64_t max = -1;
};

Matches toArray(std::vector<std::int64_t> matchesA, std::vector<std::int64_t> matchesB)
{
    Matches result;
    if (matchesA.empty())
        return result;
    std::vector<std::pair<std::int64_t, std::int64_t>> pairs;
    for (std::size_t n = 0; n < matchesA.size(); ++n)
        pairs.emplace_back(matchesA[n], matchesB[n]);
    std::sort(pairs.begin(), pairs.end());
    result.resize(std::size_t(pairs.back().first) + 1);
    for (const auto& [i, j] : pairs)
        result[std::size_t(i)] = j;
    return result;
}

class Walk
{
public:
    std::vector<SeqDiff::Difference> run(const Lines& a, const Lines& b)
    {
        const Matches matches = longestCommonSubsequences(a, b);
        const std::int64_t lastA = std::int64_t(a.size()) - 1, lastB = std::int64_t(b.size()) - 1;
        const std::int64_t lastMatch = std::int64_t(matches.size()) - 1;
        std::int64_t ai = 0, bi = 0;
        for (ai = 0; ai <= lastMatch; ++ai) {
            if (!matches[std::size_t(ai)]) {
                onANotB(ai, bi);
                continue;
            }
            while (bi < *matches[std::size_t(ai)]) {
                onBNotA(ai, bi);
                bi += 1;
            }
            onMatch();
            bi += 1;
        }
        while (ai <= lastA || bi <= lastB) {
            if (ai == lastA + 1 && bi <= lastB)
                while (bi <= lastB)
                    onBNotA(ai, bi++);
            if (bi == lastB + 1 && ai <= lastA)
                while (ai <= lastA)
                    onANotB(ai++, bi);
            if (ai <= lastA)
                onANotB(ai++, bi);
            if (bi <= lastB)
                onBNotA(ai, bi++);
        }
        if (pending)
            diffs.push_back(*pending);
        return diffs;
    }

private:
    void onANotB(std::int64_t ai, std::int64_t bi)
    {
        if (pending)
            pending->SetDeleted(ai);
        else
            pending = SeqDiff::Difference(ai, ai, bi, -1);
    }
    void onBNotA(std::int64_t ai, std::int64_t bi)
    {
        if (pending)
            pending->SetAdded(bi);
        else
            pending = SeqDiff::Difference(ai, -1, bi, bi);
    }
    void onMatch()
    {
        if (pending)
            diffs.push_back(*pending);
        pending.reset();
    }

    std::vector<SeqDiff::Difference> diffs;
    std::optional<SeqDiff::Difference> pending;
};

} // namespace

Lines split(const std::u16string& text)
{
    std::u16string normal;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\r') {
            normal += u'\n';
            if (i + 1 < text.size() && text[i + 1] == u'\n')
                ++i;
        } else {
            normal += text[i];
        }
    }
    Lines lines(1);
    for (char16_t c : normal) {
        if (c == u'\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    return lines;
}

Matches longestCommonSubsequences(const Lines& a, const Lines& b)
{
    std::int64_t aStart = 0, aEnd = std::int64_t(a.size()) - 1;
    std::int64_t bStart = 0, bEnd = std::int64_t(b.size()) - 1;
    std::vector<std::int64_t> matchesA, matchesB;
    while (aStart <= aEnd && bStart <= bEnd && a[std::size_t(aStart)] == b[std::size_t(bStart)]) {
        matchesA.push_back(aStart++);
        matchesB.push_back(bStart++);
    }
    while (aStart <= aEnd && bStart <= bEnd && a[std::size_t(aEnd)] == b[std::size_t(bEnd)]) {
        matchesA.push_back(aEnd--);
        matchesB.push_back(bEnd--);
    }

    std::unordered_map<std::u16string, std::vector<std::int64_t>> bMatches;
    for (std::int64_t bi = bStart; bi <= bEnd; ++bi)
        bMatches[b[std::size_t(bi)]].push_back(bi);

    Table table;
    std::map<std::int64_t, std::shared_ptr<const Link>> links;
    for (std::int64_t i = aStart; i <= aEnd; ++i) {
        const auto found = bMatches.find(a[std::size_t(i)]);
        if (found == bMatches.end())
            continue;
        std::optional<std::int64_t> k;
        const std::vector<std::int64_t>& positions = found->second;
        for (auto it = positions.rbegin(); it != positions.rend(); ++it) {
            const std::int64_t j = *it;
            k = table.insert(j, k);
            if (!k)
                continue;
            std::shared_ptr<const Link> previous = *k > 0 ? links.at(*k - 1) : nullptr;
            links[*k] = std::make_shared<const Link>(Link{previous, i, j});
        }
    }
    if (table.count() > 0) {
        for (auto link = links.at(table.lastKey()); link; link = link->previous) {
            matchesA.push_back(link->i);
            matchesB.push_back(link->j);
        }
    }
    return toArray(matchesA, matchesB);
}

std::vector<SeqDiff::Difference> differences(const Lines& a, const Lines& b)
{
    return Walk().run(a, b);
}

} // namespace Reference
