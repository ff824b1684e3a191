// The comparison window on a 1M-line pair with 10,000 differences, on real widgets offscreen:
// what a tick, a scroll, a keystroke and the comparison after a pause cost.

#include "App.h"
#include "BenchPairs.h"
#include "BevelButton.h"
#include "Canvas.h"
#include "DiffWin.h"
#include "TextArea.h"
#include "Timer.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace {

using toolkit::TextArea;

constexpr std::size_t kSpacing = 100;

// Runs events until the comparison under way has come back and been drawn.
void waitForResult(DiffWin& w)
{
    while (!w.resultIsCurrent())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

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
        waitForResult(*w);
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

void click(QWidget* target)
{
    const QPointF at = QRectF(target->rect()).center();
    const QPointF global = target->mapToGlobal(at);
    QMouseEvent press(
        QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent release(
        QEvent::MouseButtonRelease, at, global, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
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

// From the tick after the pause until the new bands are drawn: the one comparison of the
// changed texts and the redraw. `tick_ms` is the part the UI thread spends in the tick.
void BM_ComparisonAfterPause(benchmark::State& state)
{
    DiffWin& w = window();
    TextArea& pane = *w.txtBox[0];
    pane.select(pane.CharacterPosition(pane.LineCount() / 3) - 1, 0);
    int n = 0;
    double tick = 0;
    for (auto _ : state) {
        state.PauseTiming();
        typeOrErase(pane, n++);
        stopTimers(w);
        state.ResumeTiming();
        QElapsedTimer clock;
        clock.start();
        emit w.Timer1->Action();
        tick += double(clock.nsecsElapsed()) / 1e6;
        waitForResult(w);
    }
    state.counters["tick_ms"] = benchmark::Counter(tick, benchmark::Counter::kAvgIterations);
    counters(state, w);
}
BENCHMARK(BM_ComparisonAfterPause)->Unit(benchmark::kMillisecond)->Iterations(6);

// A long comparison (the 300k-line pair with a fifth of its lines changed) and the window
// meanwhile: a click on Next every 20 ms. `max_gap_ms` is the longest the UI thread was away
// from its events, `max_click_ms` the longest a click took to be handled.
void BM_AnswersWhileComparing(benchmark::State& state)
{
    DiffWin& w = window();
    const Bench::LinePair pair = Bench::makePair(*Bench::findPairKind("src300k-20pct"));
    double maxGap = 0;
    double maxClick = 0;
    for (auto _ : state) {
        state.PauseTiming();
        w.txtBox[0]->setText(QString::fromStdString(Bench::joinLines(pair.sides[0])));
        w.txtBox[1]->setText(QString::fromStdString(Bench::joinLines(pair.sides[1])));
        stopTimers(w);
        state.ResumeTiming();
        emit w.Timer1->Action();
        QElapsedTimer since;
        since.start();
        QTimer clicks;
        QObject::connect(&clicks, &QTimer::timeout, [&] {
            maxGap = std::max(maxGap, double(since.nsecsElapsed()) / 1e6 - 20);
            QElapsedTimer handled;
            handled.start();
            click(w.NextBtn);
            maxClick = std::max(maxClick, double(handled.nsecsElapsed()) / 1e6);
            since.restart();
        });
        clicks.start(20);
        waitForResult(w);
    }
    state.counters["max_gap_ms"] = maxGap;
    state.counters["max_click_ms"] = maxClick;
    counters(state, w);
}
BENCHMARK(BM_AnswersWhileComparing)->Unit(benchmark::kMillisecond)->Iterations(1);

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
