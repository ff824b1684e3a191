#include "SeqDiff.h"

#include <stdexcept>

namespace SeqDiff {

namespace {

// One comparison of two arrays of lines, numbered from one table.
template <class View> Diff diffOf(std::span<const View> a, std::span<const View> b)
{
    auto ids = internLines(a, b);
    return Diff(std::move(ids[0]), std::move(ids[1]));
}

// Records of the lines after a common head, moved to where those lines are in the whole texts.
std::vector<Difference> movedDown(std::vector<Difference> records, std::size_t head)
{
    const auto moved
        = [&](std::int64_t line) { return line < 0 ? line : line + std::int64_t(head); };
    for (Difference& d : records)
        d = Difference(moved(d.DeletedStart()), moved(d.DeletedEnd()), moved(d.AddedStart()),
            moved(d.AddedEnd()));
    return records;
}

} // namespace

std::vector<Difference> FindDifferences(
    std::span<const std::u16string_view> a, std::span<const std::u16string_view> b)
{
    return diffOf(a, b).Calculate();
}

std::vector<Difference> FindDifferences(
    std::span<const std::string_view> a, std::span<const std::string_view> b)
{
    return diffOf(a, b).Calculate();
}

std::vector<Difference> compareTexts(std::string_view a, std::string_view b)
{
    std::size_t head = 0;
    auto ids = internTextLines(a, b, head);
    return movedDown(Diff(std::move(ids[0]), std::move(ids[1])).Calculate(), head);
}

std::vector<Difference> FindDifferences(
    const LineSource& a, const LineSource& b, std::stop_token stop)
{
    StopCheck check(stop);
    check.ask();
    // The common head and tail match line for line whatever the method; only the stretch
    // between them is numbered and handed on, and its records are moved back into place.
    const std::size_t n = a.lineCount(), m = b.lineCount();
    const auto same = [&](std::size_t i, std::size_t j) {
        return a.lineHash(i) == b.lineHash(j) && a.lineText(i) == b.lineText(j);
    };
    std::size_t head = 0;
    while (head < n && head < m && same(head, head)) {
        check();
        ++head;
    }
    std::size_t tail = 0;
    while (head + tail < n && head + tail < m && same(n - 1 - tail, m - 1 - tail)) {
        check();
        ++tail;
    }
    auto ids = internLines(a, head, n - tail, b, head, m - tail, check);
    Diff diff(std::move(ids[0]), std::move(ids[1]));
    diff.setStopToken(std::move(stop));
    return movedDown(diff.Calculate(), head);
}

void runDiff(std::span<const std::string_view> a, std::span<const std::string_view> b,
    std::span<const Difference> expected)
{
    Diff diff = diffOf(a, b);
    runDiff(diff, expected);
}

void runDiff(Diff& diff, std::span<const Difference> expected)
{
    const std::vector<Difference> result = diff.Calculate();
    if (result.size() != expected.size())
        throw std::runtime_error("");
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (!result[i].Equals(expected[i]))
            throw std::runtime_error("");
}

} // namespace SeqDiff
