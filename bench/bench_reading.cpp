// Reading a large file into a pane, as a drop does: the 1024-byte chunks with the event loop
// between them, the decoding and the pane taking the text. TWINLY_READ_MB sets the file's
// size (default 20); the peak memory counter is the process's, against the file's size.

#include "App.h"
#include "BenchPairs.h"
#include "BevelButton.h"
#include "DiffWin.h"
#include "FolderItem.h"
#include "TextArea.h"
#include "Timer.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <fstream>
#include <string>
#include <sys/resource.h>

namespace {

// Source-like lines up to the size asked for, written as they are made so that the file's
// text is not held in memory: the peak counter then shows what reading costs.
std::size_t writeFile(const QString& path)
{
    const char* mb = std::getenv("TWINLY_READ_MB");
    const std::size_t size = std::size_t(mb ? std::atoi(mb) : 20) << 20;
    const Bench::LinePair pair = Bench::makePair(*Bench::findPairKind("src100k-1pct"));
    std::ofstream out(path.toStdString(), std::ios::binary);
    std::size_t written = 0;
    for (std::size_t i = 0; written < size; i = (i + 1) % pair.sides[0].size()) {
        out << pair.sides[0][i] << '\n';
        written += pair.sides[0][i].size() + 1;
    }
    return written;
}

void readIntoPane(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("large.txt"));
    const std::size_t size = writeFile(path);
    auto& w = toolkit::implicitInstance<DiffWin>();
    w.Show();
    w.Timer1->setMode(0);
    w.encodingMode[0] = int(state.range(0));
    for (auto _ : state) {
        w.setTextBox(toolkit::FolderItem(path), 0, w.txtBox[0], w.titleBox[0]);
        w.Timer1->setMode(0);
        w.Timer2->setMode(0);
    }
    state.counters["lines"] = double(w.txtBox[0]->LineCount());
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["MB"] = double(size >> 20);
    state.counters["MB/s"] = benchmark::Counter(
        double(size) / (1 << 20), benchmark::Counter::kIsIterationInvariantRate);
    state.counters["peak/size"] = double(usage.ru_maxrss) * 1024 / double(size);
}
BENCHMARK(readIntoPane)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    App app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    toolkit::Application::deleteWindows();
    return 0;
}
