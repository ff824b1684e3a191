#include "SeqDiff.h"

#include <stdexcept>

namespace SeqDiff {

std::vector<Difference> FindDifferences(
    std::span<const std::u16string_view> a, std::span<const std::u16string_view> b)
{
    auto ids = internLines(a, b);
    return Diff(std::move(ids[0]), std::move(ids[1])).Calculate();
}

std::vector<Difference> FindDifferences(
    std::span<const std::string_view> a, std::span<const std::string_view> b)
{
    auto ids = internLines(a, b);
    return Diff(std::move(ids[0]), std::move(ids[1])).Calculate();
}

void runDiff(std::span<const std::string_view> a, std::span<const std::string_view> b,
    std::span<const Difference> expected)
{
    auto ids = internLines(a, b);
    Diff diff(std::move(ids[0]), std::move(ids[1]));
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
