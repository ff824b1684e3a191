// One plain pane, offscreen, on large texts: taking a text in (cut and hashed on the reading
// thread, handed over on the UI thread), a keystroke with the snapshot a comparison would take,
// and a 20 MB line with typing at its end.

#include "BenchPairs.h"
#include "TextArea.h"

#include <QApplication>
#include <QKeyEvent>

#include <benchmark/benchmark.h>
#include <string>

namespace {

using toolkit::TextArea;

// The left side of the 1M-line source-like pair: 23 MB.
const QString& millionLines()
{
    static const QString text = QString::fromStdString(
        Bench::joinLines(Bench::makePair(*Bench::findPairKind("src1m-0.1pct")).sides[0]));
    return text;
}

// About 200 MB: the million lines nine times over.
const QString& twoHundredMegabytes()
{
    static const QString text = millionLines().repeated(9);
    return text;
}

// 20 MB of words and nothing that ends a line.
const QString& singleLine()
{
    static const QString text = [] {
        QString s = millionLines().left(20'000'000);
        s.replace(u'\n', u' ');
        return s;
    }();
    return text;
}

const QString& textOf(int which)
{
    return which == 0 ? millionLines() : which == 1 ? twoHundredMegabytes() : singleLine();
}

TextArea& pane()
{
    static TextArea* made = [] {
        auto* p = new TextArea;
        p->resize(300, 400);
        p->show();
        QCoreApplication::processEvents();
        return p;
    }();
    return *made;
}

void key(QWidget* target, int code, Qt::KeyboardModifiers modifiers, const QString& text)
{
    QKeyEvent press(QEvent::KeyPress, code, modifiers, text);
    QKeyEvent release(QEvent::KeyRelease, code, modifiers, text);
    QCoreApplication::sendEvent(target, &press);
    QCoreApplication::sendEvent(target, &release);
}

// What a reading thread does: cut the text into lines and hash them.
void BM_Prepare(benchmark::State& state)
{
    const QString& text = textOf(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(TextArea::prepare(text));
    state.counters["MB"] = double(text.size()) / 1e6;
}
BENCHMARK(BM_Prepare)->DenseRange(0, 2)->ArgNames({"text"})->Unit(benchmark::kMillisecond);

// What the UI thread does with a prepared text, painted once.
void BM_HandOver(benchmark::State& state)
{
    const toolkit::PreparedText prepared = TextArea::prepare(textOf(int(state.range(0))));
    TextArea& p = pane();
    for (auto _ : state) {
        p.setText(prepared);
        p.repaint();
    }
    state.counters["lines"] = double(p.LineCount());
}
BENCHMARK(BM_HandOver)->DenseRange(0, 2)->ArgNames({"text"})->Unit(benchmark::kMillisecond);

// A character typed and taken back in turn, each with the snapshot the comparison takes and a
// paint; in the middle of the million lines, or at the end of the 20 MB line.
void BM_Keystroke(benchmark::State& state)
{
    const int which = int(state.range(0));
    TextArea& p = pane();
    p.setText(TextArea::prepare(textOf(which)));
    QWidget* editor = p.focusProxy();
    if (which == 2)
        key(editor, Qt::Key_End, Qt::ControlModifier, QString());
    else
        p.select(p.CharacterPosition(p.LineCount() / 2) - 1, 0);
    int n = 0;
    for (auto _ : state) {
        if (n++ % 2 == 0)
            key(editor, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
        else
            key(editor, Qt::Key_Backspace, Qt::NoModifier, QString());
        benchmark::DoNotOptimize(p.snapshot());
        p.repaint();
    }
    state.counters["lines"] = double(p.LineCount());
}
BENCHMARK(BM_Keystroke)->Arg(0)->Arg(2)->ArgNames({"text"})->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
