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

std::vector<Difference> FindDifferences(
    const LineSource& a, const LineSource& b, std::stop_token stop)
{
    const auto views = [](const LineSource& s) {
        std::vector<std::u16string_view> v(s.lineCount());
        for (std::size_t i = 0; i < v.size(); ++i)
            v[i] = s.line(i);
        return v;
    };
    const std::vector<std::u16string_view> av = views(a);
    const std::vector<std::u16string_view> bv = views(b);
    if (stop.stop_requested())
        throw Cancelled();
    std::vector<Difference> result = FindDifferences(av, bv);
    if (stop.stop_requested())
        throw Cancelled();
    return result;
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
