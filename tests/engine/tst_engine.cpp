#include "ReferenceDiff.h"
#include "SeqDiff.h"

#include <QtTest>

#include <random>

using SeqDiff::CommonSubsequence;
using SeqDiff::Difference;
using Records = std::vector<Difference>;
using Method = CommonSubsequence::Method;

Q_DECLARE_METATYPE(Records)
Q_DECLARE_METATYPE(std::vector<std::int64_t>)

namespace {

QString show(const Records& records)
{
    QStringList parts;
    for (const Difference& d : records)
        parts << QStringLiteral("(%1, %2, %3, %4)")
                     .arg(d.DeletedStart())
                     .arg(d.DeletedEnd())
                     .arg(d.AddedStart())
                     .arg(d.AddedEnd());
    return parts.join(QLatin1Char(' '));
}

std::vector<std::u16string_view> views(const Reference::Lines& lines)
{
    return {lines.begin(), lines.end()};
}

// Words separated by blanks; "_" stands for an empty line.
Reference::Lines words(const QString& text)
{
    Reference::Lines lines;
    for (const QString& word : text.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        lines.push_back(word == QLatin1String("_") ? std::u16string() : word.toStdU16String());
    return lines;
}

// The engine's result for one pair, by the given method and memory limits.
Records compare(const Reference::Lines& a, const Reference::Lines& b, Method method,
    CommonSubsequence::Limits limits = {})
{
    const auto va = views(a), vb = views(b);
    auto ids = SeqDiff::internLines(va, vb);
    SeqDiff::Diff diff(std::move(ids[0]), std::move(ids[1]));
    diff.setMethod(method, limits);
    return diff.Calculate();
}

// Lines held as a store holds them, with their hashes kept. A coarse source keeps hashes that
// collide a great deal, so the text must still be checked.
class Source : public SeqDiff::LineSource
{
public:
    explicit Source(const Reference::Lines& lines, bool coarse = false)
        : lines(lines)
    {
        for (const std::u16string& line : lines)
            hashes.push_back(SeqDiff::lineHash(line) & (coarse ? 3 : ~std::uint64_t(0)));
    }
    std::size_t lineCount() const override { return lines.size(); }
    std::u16string_view line(std::size_t i) const override { return lines[i]; }
    std::uint64_t lineHash(std::size_t i) const override
    {
        if (i == stopAt)
            stopper->request_stop();
        return hashes[i];
    }

    // Requests a stop when the hash of line `i` is read.
    void stopWhenRead(std::size_t i, std::stop_source& stop)
    {
        stopAt = i;
        stopper = &stop;
    }

private:
    const Reference::Lines& lines;
    std::vector<std::uint64_t> hashes;
    std::size_t stopAt = SIZE_MAX;
    std::stop_source* stopper = nullptr;
};

constexpr Method allMethods[]
    = {Method::Automatic, Method::Threshold, Method::Greedy, Method::BitParallel};

} // namespace

class TestEngine : public QObject
{
    Q_OBJECT
private slots:
    void recordOperations();
    void splitting_data();
    void splitting();
    void comparing_data();
    void comparing();
    void matchesArray_data();
    void matchesArray();
    void selfTest();
    void randomPairsAgreeWithReference();
    void editedTextsAgreeWithReference_data();
    void editedTextsAgreeWithReference();
    void shuffledLinesAgreeWithReference();
    void stopsWhenAsked();
};

void TestEngine::recordOperations()
{
    QCOMPARE(Difference(1, -1, 1, 2).DeletedCount(), 0);
    QCOMPARE(Difference(1, -1, 1, 2).AddedCount(), 2);
    QCOMPARE(Difference(3, 3, 5, 5).DeletedCount(), 1);
    QCOMPARE(Difference(3, 3, 5, 5).AddedCount(), 1);
    // Equals looks at every field.
    QVERIFY(Difference(1, -1, 1, 2).Equals(Difference(1, -1, 1, 2)));
    QVERIFY(!Difference(1, -1, 1, 2).Equals(Difference(1, -1, 1, 3)));
    QVERIFY(!Difference(1, -1, 1, 2).Equals(Difference(0, -1, 1, 2)));

    // Widening: an empty run takes the line as its end; a lower line moves the start.
    Difference d(3, 3, 5, -1);
    d.SetAdded(5);
    QVERIFY(d.Equals(Difference(3, 3, 5, 5)));
    d.SetDeleted(1);
    QVERIFY(d.Equals(Difference(1, 3, 5, 5)));
}

void TestEngine::splitting_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("lines");
    const auto row = [](const char* name, const char16_t* text, QStringList lines) {
        QTest::newRow(name) << QString::fromUtf16(text) << lines;
    };
    row("no ending", u"one\ntwo", {"one", "two"});
    row("trailing LF", u"one\ntwo\n", {"one", "two", ""});
    row("blank line", u"one\n\ntwo", {"one", "", "two"});
    row("single LF", u"\n", {"", ""});
    row("empty", u"", {""});
    row("CR", u"a\rb\r", {"a", "b", ""});
    row("CR LF is one ending", u"a\r\nb", {"a", "b"});
    row("LF CR is two", u"a\n\rb", {"a", "", "b"});
    row("CR CR LF", u"a\r\r\nb", {"a", "", "b"});
    row("separators stay", u"a\u2028b\u2029c", {QString::fromUtf16(u"a\u2028b\u2029c")});
    row("form feed stays", u"a\fb\vc", {"a\fb\vc"});
    row("blanks kept", u" a \t\n b", {" a \t", " b"});
    // Past the sixteen bytes that the UTF-8 splitter skips at a time.
    row("long plain run", u"0123456789abcdefghijklmnopqrstuvwxyz\r\n",
        {"0123456789abcdefghijklmnopqrstuvwxyz", ""});
}

void TestEngine::splitting()
{
    QFETCH(QString, text);
    QFETCH(QStringList, lines);
    const std::u16string utf16 = text.toStdU16String();
    QStringList got;
    for (std::u16string_view line : SeqDiff::splitLines(std::u16string_view(utf16)))
        got << QString::fromStdU16String(std::u16string(line));
    QCOMPARE(got, lines);

    // The UTF-8 twin cuts the same text at the same places.
    const QByteArray utf8 = text.toUtf8();
    QStringList got8;
    for (std::string_view line : SeqDiff::splitLines(std::string_view(utf8.data(), utf8.size())))
        got8 << QString::fromUtf8(line.data(), qsizetype(line.size()));
    QCOMPARE(got8, lines);
}

void TestEngine::comparing_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<Records>("expected");
    const auto row = [](const char* name, const char* left, const char* right, Records expected) {
        QTest::newRow(name) << left << right << expected;
    };
    row("same text", "a\nb\nc", "a\nb\nc", {});
    row("endings differ only", "one\rtwo", "one\r\ntwo", {});
    row("added trailing newline", "one\ntwo", "one\ntwo\n", {{2, -1, 2, 2}});
    row("removed trailing newline", "one\ntwo\n", "one\ntwo", {{2, 2, 2, -1}});
    row("trailing blank differs", "a\nb \nc", "a\nb\nc", {{1, 1, 1, 1}});
    row("case differs", "Line", "line", {{0, 0, 0, 0}});
    row("both empty", "", "", {});
    // An empty pane is one empty line: against three lines that is a replacement.
    row("empty left", "", "x\ny\nz", {{0, 0, 0, 2}});
    row("empty left, blank line right", "", "x\n\nz", {{0, -1, 0, 0}, {1, -1, 2, 2}});
    row("empty right", "x\ny", "", {{0, 1, 0, 0}});
    row("worked example", "a\nb\nc\nd\ne", "a\nx\ny\nb\nc\nj\ne", {{1, -1, 1, 2}, {3, 3, 5, 5}});
    row("x against x x", "x", "x\nx", {{1, -1, 1, 1}});
    row("leftovers on both sides", "k\nx\ny", "k\np\nq\nr", {{1, 2, 1, 3}});
    row("p q p against q p q", "p\nq\np", "q\np\nq", {{0, 0, 0, -1}, {3, -1, 2, 2}});
}

void TestEngine::comparing()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(Records, expected);
    const std::u16string l = left.toStdU16String(), r = right.toStdU16String();
    const auto a = SeqDiff::splitLines(std::u16string_view(l));
    const auto b = SeqDiff::splitLines(std::u16string_view(r));
    const Records got = SeqDiff::FindDifferences(a, b);
    QCOMPARE(show(got), show(expected));
}

void TestEngine::matchesArray_data()
{
    using Matches = std::vector<std::int64_t>;
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<Matches>("matches");
    const auto row = [](const char* name, const char* left, const char* right, Matches matches) {
        QTest::newRow(name) << left << right << matches;
    };
    row("p q p", "p q p", "q p q", {-1, 0, 1});
    row("a b c d e", "a b c d e", "a x y b c j e", {0, 3, 4, -1, 6});
    row("swapped", "a b", "b a", {-1, 0});
    row("equal", "a b c", "a b c", {0, 1, 2});
    row("prefix", "a b", "a b c", {0, 1});
    row("nothing common", "a b", "c d", {});
    row("lines behind the last match", "a b c", "a", {0});
}

void TestEngine::matchesArray()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(std::vector<std::int64_t>, matches);
    const Reference::Lines a = words(left), b = words(right);
    for (Method method : allMethods) {
        const auto va = views(a), vb = views(b);
        auto ids = SeqDiff::internLines(va, vb);
        SeqDiff::Diff diff(std::move(ids[0]), std::move(ids[1]));
        diff.setMethod(method, {});
        QCOMPARE(diff.getLongestCommonSubsequences(), matches);
    }
}

void TestEngine::selfTest()
{
    QVERIFY(SeqDiff::SelfTest());

    using Lines = std::vector<std::string_view>;
    const Lines a{"a", "b", "c", "d", "e"}, b{"a", "x", "y", "b", "c", "j", "e"};
    SeqDiff::runDiff(a, b, Records{{1, -1, 1, 2}, {3, 3, 5, 5}});
    // One field off by one, a record too many or too few: each is a mismatch.
    QVERIFY_THROWS_EXCEPTION(
        std::runtime_error, SeqDiff::runDiff(a, b, Records{{1, -1, 1, 2}, {3, 3, 5, 6}}));
    QVERIFY_THROWS_EXCEPTION(std::runtime_error,
        SeqDiff::runDiff(a, b, Records{{1, -1, 1, 2}, {3, 3, 5, 5}, {7, -1, 7, 7}}));
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, SeqDiff::runDiff(a, b, Records{{1, -1, 1, 2}}));
}

void TestEngine::randomPairsAgreeWithReference()
{
    // Small alphabets make many equal lines, which is where the choice among equally long
    // alignments matters. Texts are built with all three endings, and with U+2028 and U+2029
    // inside lines, so the splitting is checked against the literal one on the way.
    std::mt19937_64 random(20261123);
    const std::u16string alphabet[] = {u"a", u"b", u"", u"a ", u"c", u"\u2028", u"dd", u"b\u2029"};
    const std::u16string endings[] = {u"\n", u"\r", u"\r\n"};
    auto text = [&](std::size_t letters) {
        std::u16string t;
        const std::size_t lines = random() % 24;
        for (std::size_t i = 0; i < lines; ++i) {
            t += alphabet[random() % letters];
            if (i + 1 < lines || random() % 2)
                t += endings[random() % 3];
        }
        return t;
    };
    // A copy with a few characters replaced by endings or preceded by a letter: long runs of
    // equal lines whose endings may differ, as in an edited file.
    auto edited = [&](const std::u16string& t) {
        std::u16string e;
        for (const char16_t c : t) {
            const auto roll = random() % 16;
            if (roll == 0)
                e += endings[random() % 3];
            else
                e += (roll == 1 ? alphabet[random() % 2] : u"") + c;
        }
        return e;
    };
    // A small memory limit pushes the bit rows through their paths that keep only some rows.
    const CommonSubsequence::Limits tight{2};
    for (int round = 0; round < 10000; ++round) {
        const std::size_t letters = 2 + round % 6;
        const std::u16string left = text(letters),
                             right = round % 50 == 0 ? u""
            : round % 3 == 1                         ? edited(left)
                                                     : text(letters);
        const Reference::Lines a = Reference::split(left), b = Reference::split(right);
        const Records expected = Reference::differences(a, b);

        const auto sa = SeqDiff::splitLines(std::u16string_view(left));
        const auto sb = SeqDiff::splitLines(std::u16string_view(right));
        QCOMPARE(sa.size(), a.size());
        QCOMPARE(sb.size(), b.size());
        QCOMPARE(show(SeqDiff::FindDifferences(sa, sb)), show(expected));
        QCOMPARE(
            show(SeqDiff::FindDifferences(Source(a, round % 3 == 0), Source(b, round % 3 == 0))),
            show(expected));
        const std::string l8 = QString::fromStdU16String(left).toStdString();
        const std::string r8 = QString::fromStdU16String(right).toStdString();
        QCOMPARE(show(SeqDiff::compareTexts(l8, r8)), show(expected));
        for (Method method : allMethods) {
            const Records got
                = compare(a, b, method, round % 2 ? tight : CommonSubsequence::Limits{});
            if (!(got == expected))
                QFAIL(qPrintable(QStringLiteral("round %1, method %2: %3 instead of %4")
                                     .arg(round)
                                     .arg(int(method))
                                     .arg(show(got), show(expected))));
        }
    }
}

void TestEngine::editedTextsAgreeWithReference_data()
{
    QTest::addColumn<int>("distinct");
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("editPercent");
    QTest::addColumn<int>("rounds");
    QTest::newRow("repetitive, few edits") << 6 << 300 << 3 << 40;
    QTest::newRow("repetitive, many edits") << 6 << 300 << 40 << 40;
    QTest::newRow("varied, few edits") << 200 << 400 << 2 << 40;
    QTest::newRow("varied, many edits") << 60 << 400 << 30 << 40;
    QTest::newRow("unrelated") << 12 << 250 << 100 << 40;
    // Too large for the literal rendering to be quick: the threshold method, its twin in
    // arrays, referees, and the others must reach its answer through their checkpoints.
    QTest::newRow("large, repetitive") << 20 << 6000 << 2 << 1;
    QTest::newRow("large, heavily edited") << 20 << 6000 << 50 << 1;
    QTest::newRow("large, varied") << 2000 << 6000 << 5 << 1;
    QTest::newRow("large, three distinct lines") << 3 << 3000 << 5 << 1;
    QTest::newRow("large, many distinct, all edited") << 1000 << 3000 << 100 << 1;
}

void TestEngine::editedTextsAgreeWithReference()
{
    // Texts many machine words wide, edited in runs as real texts are.
    QFETCH(int, distinct);
    QFETCH(int, lines);
    QFETCH(int, editPercent);
    QFETCH(int, rounds);
    std::mt19937_64 random(std::uint64_t(distinct * 1000 + editPercent));
    auto line
        = [&] { return u"line " + std::u16string(1, char16_t(0x4E00 + random() % distinct)); };
    for (int round = 0; round < rounds; ++round) {
        Reference::Lines a;
        for (int i = 0; i < lines; ++i)
            a.push_back(line());
        Reference::Lines b;
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (int(random() % 100) >= editPercent) {
                b.push_back(a[i]);
                continue;
            }
            const std::size_t run = 1 + random() % 4;
            switch (random() % 3) {
            case 0: // replaced
                for (std::size_t r = 0; r < run; ++r)
                    b.push_back(line());
                i += run - 1;
                break;
            case 1: // deleted
                i += run - 1;
                break;
            default: // inserted
                for (std::size_t r = 0; r < run; ++r)
                    b.push_back(line());
                b.push_back(a[i]);
            }
        }
        const Records expected
            = lines > 1000 ? compare(a, b, Method::Threshold) : Reference::differences(a, b);
        QVERIFY(!expected.empty());
        // The bit rows all kept; kept at two levels, every n^(2/3)-th and every n^(1/3)-th
        // between them; every sqrt(n)-th kept.
        for (Method method : allMethods)
            for (const CommonSubsequence::Limits& limits : {CommonSubsequence::Limits{},
                     CommonSubsequence::Limits{64}, CommonSubsequence::Limits{20000}})
                QCOMPARE(show(compare(a, b, method, limits)), show(expected));
    }
}

void TestEngine::shuffledLinesAgreeWithReference()
{
    // Lines that all differ, in another order: few equal pairs but a long way round, where the
    // automatic choice falls back on the threshold table.
    std::mt19937_64 random(5);
    Reference::Lines a;
    for (int i = 0; i < 3000; ++i)
        a.push_back(u"line " + QString::number(i).toStdU16String());
    Reference::Lines b = a;
    std::shuffle(b.begin(), b.end(), random);
    const auto va = views(a), vb = views(b);
    auto ids = SeqDiff::internLines(va, vb);
    CommonSubsequence middle(ids[0], ids[1]);
    std::vector<std::int64_t> expected(a.size(), -1);
    const Reference::Matches matches = Reference::longestCommonSubsequences(a, b);
    for (std::size_t i = 0; i < matches.size(); ++i)
        expected[i] = matches[i].value_or(-1);
    QCOMPARE(middle.find(), expected);
    QCOMPARE(middle.methodUsed(), Method::Threshold);
}

void TestEngine::stopsWhenAsked()
{
    // Two unrelated texts of few distinct lines: the bit rows take the longest. The stop comes
    // while the lines are numbered, and the loops after it must notice.
    std::mt19937_64 random(9);
    Reference::Lines a, b;
    for (int i = 0; i < 6000; ++i) {
        a.push_back(std::u16string(1, char16_t(u'a' + random() % 20)));
        b.push_back(std::u16string(1, char16_t(u'a' + random() % 20)));
    }
    std::stop_source stop;
    Source left(a), right(b);
    right.stopWhenRead(b.size() - 2, stop);
    QVERIFY_THROWS_EXCEPTION(
        SeqDiff::Cancelled, SeqDiff::FindDifferences(left, right, stop.get_token()));
    QVERIFY(stop.stop_requested());
    // Without a stop the same pair compares.
    QVERIFY(!SeqDiff::FindDifferences(Source(a), Source(b)).empty());
}

QTEST_APPLESS_MAIN(TestEngine)
#include "tst_engine.moc"
