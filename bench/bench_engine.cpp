// The comparison engine alone, on the same kinds of text that bench/make-data.sh writes.

#include "BenchPairs.h"
#include "CommonSubsequence.h"
#include "SeqDiff.h"

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using SeqDiff::CommonSubsequence;
using Method = CommonSubsequence::Method;

// A pair as twinly-seqdiff sees it: one text per side, cut by the engine's own splitLines.
struct Texts
{
    std::array<std::string, 2> text;
    std::array<std::vector<std::string_view>, 2> lines;
};

// Made on first use, so that a filtered run does not build the 1M-line pair for nothing.
const Texts& texts(const Bench::PairKind& kind)
{
    static std::map<std::string_view, std::unique_ptr<Texts>> made;
    auto& slot = made[kind.name];
    if (!slot) {
        const Bench::LinePair pair = Bench::makePair(kind);
        slot = std::make_unique<Texts>();
        for (int side = 0; side < 2; ++side) {
            slot->text[side] = Bench::joinLines(pair.sides[side]);
            slot->lines[side] = SeqDiff::splitLines(slot->text[side]);
        }
    }
    return *slot;
}

std::int64_t lineCount(const Texts& t)
{
    return std::int64_t(t.lines[0].size() + t.lines[1].size());
}

std::string_view methodName(Method method)
{
    switch (method) {
    case Method::Automatic:
        return "Automatic";
    case Method::Threshold:
        return "Threshold";
    case Method::Greedy:
        return "Greedy";
    case Method::BitParallel:
        return "BitParallel";
    }
    return "?";
}

void findDifferences(benchmark::State& state, const Bench::PairKind& kind)
{
    const Texts& t = texts(kind);
    std::size_t records = 0;
    for (auto _ : state) {
        const auto diffs = SeqDiff::FindDifferences(t.lines[0], t.lines[1]);
        records = diffs.size();
        benchmark::DoNotOptimize(diffs.data());
    }
    state.SetItemsProcessed(state.iterations() * lineCount(t));
    state.counters["records"] = double(records);
}

// The stretch that Diff hands to CommonSubsequence: the common head and tail trimmed.
std::array<SeqDiff::LineIds, 2> middle(const Texts& t)
{
    auto ids = SeqDiff::internLines(t.lines[0], t.lines[1]);
    auto& [a, b] = ids;
    std::size_t head = 0;
    while (head < a.size() && head < b.size() && a[head] == b[head])
        ++head;
    std::size_t tail = 0;
    while (tail < a.size() - head && tail < b.size() - head
        && a[a.size() - 1 - tail] == b[b.size() - 1 - tail])
        ++tail;
    a.erase(a.end() - std::ptrdiff_t(tail), a.end());
    b.erase(b.end() - std::ptrdiff_t(tail), b.end());
    a.erase(a.begin(), a.begin() + std::ptrdiff_t(head));
    b.erase(b.begin(), b.begin() + std::ptrdiff_t(head));
    return ids;
}

void commonSubsequence(benchmark::State& state, const Bench::PairKind& kind, Method method)
{
    const auto ids = middle(texts(kind));
    Method used = method;
    std::int64_t matched = 0;
    for (auto _ : state) {
        CommonSubsequence lcs(ids[0], ids[1]);
        const auto found = lcs.find(method);
        used = lcs.methodUsed();
        benchmark::DoNotOptimize(found.data());
        matched = std::count_if(found.begin(), found.end(), [](std::int64_t m) { return m >= 0; });
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(ids[0].size() + ids[1].size()));
    state.counters["matched"] = double(matched);
    // A forced method may still hand over to another; show what really ran.
    state.SetLabel(std::string(methodName(used)));
}

void splitLines(benchmark::State& state, const Bench::PairKind& kind)
{
    const std::string& text = texts(kind).text[0];
    std::size_t lines = 0;
    for (auto _ : state) {
        const auto split = SeqDiff::splitLines(text);
        lines = split.size();
        benchmark::DoNotOptimize(split.data());
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(lines));
    state.SetBytesProcessed(state.iterations() * std::int64_t(text.size()));
}

void internLines(benchmark::State& state, const Bench::PairKind& kind)
{
    const Texts& t = texts(kind);
    for (auto _ : state) {
        const auto ids = SeqDiff::internLines(t.lines[0], t.lines[1]);
        benchmark::DoNotOptimize(ids[0].data());
    }
    state.SetItemsProcessed(state.iterations() * lineCount(t));
}

void registerAll()
{
    for (const Bench::PairKind& kind : Bench::pairKinds()) {
        if (kind.large)
            continue;
        const std::string name(kind.name);
        benchmark::RegisterBenchmark(("FindDifferences/" + name).c_str(), findDifferences, kind)
            ->Unit(benchmark::kMillisecond);
    }

    for (const Bench::PairKind& kind : Bench::pairKinds()) {
        if (kind.style != Bench::Style::Repetitive || kind.large)
            continue;
        for (Method method :
            {Method::Automatic, Method::Threshold, Method::Greedy, Method::BitParallel}) {
            // Greedy's cost grows with the square of the edit distance: about 5 s a run on two
            // unrelated 20k-line texts, and it tells nothing that the 50% pair does not.
            if (kind.unrelated && method == Method::Greedy)
                continue;
            const std::string name = "CommonSubsequence/" + std::string(kind.name) + "/"
                + std::string(methodName(method));
            benchmark::RegisterBenchmark(name.c_str(), commonSubsequence, kind, method)
                ->Unit(benchmark::kMillisecond);
        }
    }

    const Bench::PairKind& large = *Bench::findPairKind("src1m-0.1pct");
    benchmark::RegisterBenchmark("splitLines/src1m-0.1pct", splitLines, large)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("internLines/src1m-0.1pct", internLines, large)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    registerAll();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
