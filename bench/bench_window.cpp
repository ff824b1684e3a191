// The comparison window on a 1M-line pair with 10,000 differences, on real widgets offscreen:
// what a tick, a scroll, a keystroke and the comparison after a pause cost.

#include "App.h"
#include "BenchPairs.h"
#include "Canvas.h"
#include "DiffWin.h"
#include "TextArea.h"
#include "Timer.h"

#include <QKeyEvent>
#include <QScrollBar>

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace {

using toolkit::TextArea;

constexpr std::size_t kSpacing = 100;

// Real timers stay off, so that only what a benchmark does runs.
void stopTimers(DiffWin& w)
{
    w.Timer1->setMode(0);
    w.Timer2->setMode(0);
}

// The 1M-line source-like text on the left; on the right every hundredth line replaced, which
// gives one difference each.
DiffWin& window()
{
    static DiffWin* made = [] {
        const Bench::LinePair pair = Bench::makePair(*Bench::findPairKind("src1m-0.1pct"));
        std::vector<std::string> right = pair.sides[0];
        for (std::size_t i = kSpacing / 2; i < right.size(); i += kSpacing)
            right[i] = "/* changed line " + std::to_string(i) + " */";
        auto* w = &toolkit::implicitInstance<DiffWin>();
        w->Show();
        QCoreApplication::processEvents();
        w->txtBox[0]->setText(QString::fromStdString(Bench::joinLines(pair.sides[0])));
        w->txtBox[1]->setText(QString::fromStdString(Bench::joinLines(right)));
        // The pause is over: the next tick compares.
        emit w->Timer2->Action();
        emit w->Timer1->Action();
        stopTimers(*w);
        QCoreApplication::processEvents();
        return w;
    }();
    return *made;
}

void counters(benchmark::State& state, const DiffWin& w)
{
    state.counters["diffs"] = double(w.diffs.size());
    state.counters["lines"] = double(w.txtBox[0]->LineCount());
}

void BM_IdleTick(benchmark::State& state)
{
    DiffWin& w = window();
    emit w.Timer1->Action();
    for (auto _ : state)
        emit w.Timer1->Action();
    counters(state, w);
}
BENCHMARK(BM_IdleTick)->Unit(benchmark::kMicrosecond);

// Both panes move by a few lines, as a wheel notch over the indicator does, and the next tick
// redraws. With paint, the panes and the indicator are painted too, as on screen.
void BM_RedrawAfterScroll(benchmark::State& state)
{
    DiffWin& w = window();
    const int middle = w.txtBox[0]->LineCount() / 2;
    const bool paint = state.range(0) != 0;
    int step = 0;
    for (auto _ : state) {
        const int line = middle + (step++ % 2) * 3;
        w.txtBox[0]->setVerticalScrollPosition(line);
        w.txtBox[1]->setVerticalScrollPosition(line);
        emit w.Timer1->Action();
        if (paint)
            w.repaint();
    }
    counters(state, w);
}
BENCHMARK(BM_RedrawAfterScroll)->Arg(0)->Arg(1)->ArgNames({"paint"})->Unit(benchmark::kMillisecond);

void key(QWidget* target, int code, const QString& text)
{
    QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, text);
    QKeyEvent release(QEvent::KeyRelease, code, Qt::NoModifier, text);
    QCoreApplication::sendEvent(target, &press);
    QCoreApplication::sendEvent(target, &release);
}

// Types an x on even turns and takes it back on odd ones, so the text stays as it was.
void typeOrErase(TextArea& pane, int turn)
{
    if (turn % 2 == 0)
        key(pane.focusProxy(), Qt::Key_X, QStringLiteral("x"));
    else
        key(pane.focusProxy(), Qt::Key_Backspace, QString());
}

// A keystroke in a pane: the edit and what the window does about it, before the pause.
void BM_Keystroke(benchmark::State& state)
{
    DiffWin& w = window();
    TextArea& pane = *w.txtBox[0];
    pane.select(pane.CharacterPosition(pane.LineCount() / 2) - 1, 0);
    int n = 0;
    for (auto _ : state)
        typeOrErase(pane, n++);
    stopTimers(w);
    counters(state, w);
}
BENCHMARK(BM_Keystroke)->Unit(benchmark::kMicrosecond);

// The tick after the pause: the one comparison of the changed texts and the redraw.
void BM_ComparisonAfterPause(benchmark::State& state)
{
    DiffWin& w = window();
    TextArea& pane = *w.txtBox[0];
    pane.select(pane.CharacterPosition(pane.LineCount() / 3) - 1, 0);
    int n = 0;
    for (auto _ : state) {
        state.PauseTiming();
        typeOrErase(pane, n++);
        stopTimers(w);
        state.ResumeTiming();
        emit w.Timer1->Action();
    }
    counters(state, w);
}
BENCHMARK(BM_ComparisonAfterPause)->Unit(benchmark::kMillisecond)->Iterations(6);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    App app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
