#include "EncodingHint.h"
#include "TextEncoding.h"
#include "Utf8.h"

#include <QProcess>
#include <QtTest>

#include <random>

using documents::TextEncoding;
Q_DECLARE_METATYPE(TextEncoding)

namespace {

// Perl's Encode, run now: the reference does not go through the tables we generated from it.
// Empty when it fails, which it tells on stderr.
QByteArray perl(const QString& script, const QStringList& arguments = {})
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start("perl", QStringList{"-MEncode", "-e", script} + arguments);
    const bool ran = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
    return ran ? process.readAllStandardOutput() : QByteArray();
}

// Every code that `encoding` decodes as a whole, one line each: bytes and UTF-8, in hex.
// Bytes that stand alone are not tried as the start of pairs.
const char* const kEveryCode = R"(
    my $e = shift;
    sub dec { my $c = shift; my $u = eval { decode($e, $c, Encode::FB_CROAK) };
              defined $u && $c eq '' && length $u ? $u : undef }
    sub out { my ($b, $u) = @_; print unpack('H*', $b), ' ', unpack('H*', encode('UTF-8', $u)), "\n" }
    for my $a (0..255) { my $u = dec(chr $a); out(chr $a, $u) if defined $u }
    for my $a (0..255) { next if defined dec(chr $a);
        for my $b (0..255) { my $u = dec(chr($a) . chr $b); out(chr($a) . chr $b, $u) if defined $u } })";

QString decoded(TextEncoding encoding, const QByteArray& bytes)
{
    const std::u16string text
        = documents::decode(encoding, {bytes.constData(), std::size_t(bytes.size())});
    return QString::fromUtf16(text.data(), qsizetype(text.size()));
}

} // namespace

class TestEncodings : public QObject
{
    Q_OBJECT
private slots:
    void everyCodeAsPerl_data();
    void everyCodeAsPerl();
    void jis0208SameInShiftJisAndEuc();
    void badSequences_data();
    void badSequences();
    void eucJpInLinearTime();
    void mutatedInputs();
    void cleanerRow_data();
    void cleanerRow();
};

void TestEncodings::everyCodeAsPerl_data()
{
    QTest::addColumn<TextEncoding>("encoding");
    QTest::addColumn<QString>("perlName");
    QTest::addColumn<bool>("highBits");
    // Codes Perl reads that are not Shift_JIS characters; we show them as bad.
    QTest::addColumn<QByteArrayList>("shownAsBad");
    const QByteArrayList windowsOnly{"80", "a0", "fd", "fe", "ff"};
    QTest::newRow("ShiftJIS") << TextEncoding::ShiftJIS << "cp932" << false << windowsOnly;
    QTest::newRow("DOSJapanese") << TextEncoding::DOSJapanese << "cp932" << false << windowsOnly;
    QTest::newRow("MacJapanese") << TextEncoding::MacJapanese << "MacJapanese" << false
                                 << QByteArrayList();
    QTest::newRow("ShiftJIS-X0212")
        << TextEncoding::ShiftJISX0212 << "jis0212-raw" << false << QByteArrayList();
    QTest::newRow("ShiftJIS-X0212, high bits set")
        << TextEncoding::ShiftJISX0212 << "jis0212-raw" << true << QByteArrayList();
}

void TestEncodings::everyCodeAsPerl()
{
    QFETCH(TextEncoding, encoding);
    QFETCH(QString, perlName);
    QFETCH(bool, highBits);
    QFETCH(QByteArrayList, shownAsBad);
    const QList<QByteArray> lines = perl(kEveryCode, {perlName}).split('\n');
    QVERIFY(lines.size() > 6000);
    for (qsizetype n = 0; n < lines.size() - 1; ++n) {
        const QByteArrayList code = lines[n].split(' ');
        QByteArray bytes = QByteArray::fromHex(code[0]);
        if (highBits && bytes.size() == 2) { // every mix of high bits, in turn
            bytes[0] = char(bytes[0] | (n & 1) << 7);
            bytes[1] = char(bytes[1] | (n & 2) << 6);
        }
        const QString expected = shownAsBad.contains(code[0])
            ? QString(QChar(0xFFFD))
            : QString::fromUtf8(QByteArray::fromHex(code[1]));
        const QString ours = decoded(encoding, bytes);
        if (ours != expected)
            QCOMPARE(bytes.toHex(' ') + ": " + ours, bytes.toHex(' ') + ": " + expected);
    }
}

// The same text saved in Shift_JIS and in EUC-JP must compare as the same: every JIS X 0208
// character, by row and cell, in both.
void TestEncodings::jis0208SameInShiftJisAndEuc()
{
    const QList<QByteArray> saved = perl(R"(
        for my $r (1..94) { for my $c (1..94) {
            next unless length decode('jis0208-raw', chr($r + 32) . chr($c + 32), Encode::FB_QUIET);
            $s .= chr(($r + 1 >> 1) + ($r <= 62 ? 0x80 : 0xC0)) . chr($r % 2 ? $c + 0x3F + ($c >= 64) : $c + 0x9E);
            $e .= chr($r + 0xA0) . chr($c + 0xA0) } }
        print unpack('H*', $s), "\n", unpack('H*', $e))")
                                        .split('\n');
    QCOMPARE(saved.size(), 2);
    const QString fromSjis = decoded(TextEncoding::ShiftJIS, QByteArray::fromHex(saved[0]));
    const QString fromEuc = decoded(TextEncoding::EUCJP, QByteArray::fromHex(saved[1]));
    QCOMPARE(fromSjis.size(), 6879);
    QVERIFY(!fromSjis.contains(QChar(0xFFFD)));
    for (qsizetype i = 0; i < fromSjis.size(); ++i) {
        if (fromEuc[i] != fromSjis[i])
            QCOMPARE(saved[1].mid(4 * i, 4) + ": " + QString(fromEuc[i]),
                saved[1].mid(4 * i, 4) + ": " + QString(fromSjis[i]));
    }
    QCOMPARE(fromEuc.size(), fromSjis.size());
}

void TestEncodings::badSequences_data()
{
    QTest::addColumn<TextEncoding>("encoding");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, TextEncoding e, const char* bytes, const char16_t* text) {
        QTest::newRow(name) << e << QByteArray::fromHex(bytes) << QString::fromUtf16(text);
    };
    using T = TextEncoding;
    row("UTF-8 bad byte, BOM kept", T::UTF8, "EF BB BF 61 FF 62", u"\uFEFFa\uFFFDb");
    row("ShiftJIS lead before LF", T::ShiftJIS, "82 0A 41", u"\uFFFD\nA");
    row("ShiftJIS lead at the end", T::ShiftJIS, "41 82", u"A\uFFFD");
    row("ShiftJIS unmapped pair, ASCII kept", T::ShiftJIS, "82 41 85 41 82 0A",
        u"\uFFFDA\uFFFDA\uFFFD\n");
    row("ShiftJIS unmapped pair", T::ShiftJIS, "85 9F 82 A0", u"\uFFFD\u3042");
    row("ShiftJIS lead before a bad byte", T::ShiftJIS, "82 FD 41", u"\uFFFDA");
    row("ShiftJIS controls as ASCII", T::ShiftJIS, "1A 1C 7F", u"\x1A\x1C\x7F");
    row("MacJapanese lead before LF", T::MacJapanese, "88 0A 41", u"\uFFFD\nA");
    row("MacJapanese lead at the end", T::MacJapanese, "41 88", u"A\uFFFD");
    row("MacJapanese byte that leads nothing", T::MacJapanese, "F0 41 FC 82 A0",
        u"\uFFFDA\uFFFD\u3042");
    row("MacJapanese lead before a single", T::MacJapanese, "88 FD", u"\uFFFD\u00A9");
    row("MacJapanese unmapped pair, ASCII kept", T::MacJapanese, "EB 40 41", u"\uFFFD@A");
    row("MacJapanese unmapped pair", T::MacJapanese, "85 FC 88 9E 41", u"\uFFFD\uFFFDA");
    row("MacJapanese DEL", T::MacJapanese, "7F 5C 80", u"\u007F\u00A5\\");
    row("EUC-JP lead before LF", T::EUCJP, "A4 0A 41", u"\uFFFD\nA");
    row("EUC-JP cut three-byte code", T::EUCJP, "8F A2 0A 8F A2 AF", u"\uFFFD\n\u02D8");
    row("EUC-JP C1 bytes", T::EUCJP, "80 8D 90 A0 FF 41", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA");
    row("EUC-JP unmapped pair, ASCII kept", T::EUCJP, "A9 A1 A4 41 8F 41", u"\uFFFD\uFFFDA\uFFFDA");
    row("EUC-JP bad SS2", T::EUCJP, "8E 41 A4 A2", u"\uFFFDA\u3042");
    row("ShiftJIS-X0212 lone last byte", T::ShiftJISX0212, "B0 A1 30", u"\u4E02\uFFFD");
    row("ShiftJIS-X0212 unmapped pairs", T::ShiftJISX0212, "21 21 0A 0A B0 A1",
        u"\uFFFD\uFFFD\u4E02");
    row("ISO-2022-JP lead before LF", T::ISO2022JP, "1B 24 42 24 0A 41", u"\uFFFD\nA");
    row("ISO-2022-JP lead before CR LF", T::ISO2022JP, "1B 24 42 24 22 24 0D 0A 41",
        u"\u3042\uFFFD\r\nA");
    row("ISO-2022-JP cut escape", T::ISO2022JP, "41 1B 24", u"A\uFFFD");
    row("ISO-2022-JP cut escape before LF", T::ISO2022JP, "1B 24 0A 41", u"\uFFFD\nA");
    row("ASCII", T::ASCII, "41 80 FF 0A", u"A\uFFFD\uFFFD\n");
    row("None reads UTF-8", T::None, "E3 81 82 FF", u"\u3042\uFFFD");
}

void TestEncodings::badSequences()
{
    QFETCH(TextEncoding, encoding);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, expected);
    QCOMPARE(decoded(encoding, bytes), expected);
}

// A text full of three-byte lead bytes, cut or not, takes no longer than one of kanji.
void TestEncodings::eucJpInLinearTime()
{
    const auto timeOf = [](const QByteArray& unit) {
        const QByteArray bytes = unit.repeated(4'000'000 / unit.size());
        QElapsedTimer clock;
        clock.start();
        const QString text = decoded(TextEncoding::EUCJP, bytes);
        return text.isEmpty() ? 0 : std::max<qint64>(clock.nsecsElapsed(), 1'000'000);
    };
    const qint64 kanji = timeOf(QByteArray::fromHex("C6FCCBDC"));
    for (const char* unit : {"8F", "8F41", "8FB0", "8FB0A1", "8F8F0A"})
        QCOMPARE_LT(timeOf(QByteArray::fromHex(unit)), 5 * kanji);
}

// Damaged and cut texts of every kind through every decoder. Output stays within the bound and
// well-formed, line breaks are never swallowed (except by the pairs of ShiftJIS-X0212), and
// UTF-8 reads as Utf8.h repairs it.
void TestEncodings::mutatedInputs()
{
    static const QByteArrayList seeds{"日本語のテキスト\r\nabc 123\n ½ 😀 ",
        QByteArray::fromHex("93FA967B8CEA82CC0D0A838183458350FFB1B2879087FB"), // Shift_JIS, Mac
        QByteArray::fromHex("85AB87FB85AB87FC85BF"), // Mac codes of five units each
        QByteArray::fromHex("C6FCCBDCB8EC8EB18FB0A10A"), // EUC-JP
        QByteArray::fromHex("1B2442467C4B5C1B2842410D0A1B2849313221"), // ISO-2022-JP
        QByteArray::fromHex("B0A1B0A3303031320A")}; // JIS X 0212 pairs
    static const char interesting[] = "\x0A\x0D\x1B\x8E\x8F\x80\x82\xA0\xE0\xEB\xF0\xFF\x7F$B(";
    std::mt19937 rng(20240612);
    const auto pick
        = [&](int lo, int hi) { return std::uniform_int_distribution(lo, std::max(lo, hi))(rng); };
    for (int round = 0; round < 10000; ++round) {
        QByteArray input;
        for (int parts = pick(1, 4); parts > 0; --parts)
            input += seeds[pick(0, int(seeds.size()) - 1)];
        for (int edits = pick(0, 6); edits > 0 && !input.isEmpty(); --edits) {
            const int at = pick(0, int(input.size()) - 1);
            const int kind = pick(0, 3);
            if (kind == 0)
                input[at] = char(pick(0, 255));
            else if (kind == 1)
                input.insert(at, interesting[pick(0, int(sizeof interesting) - 2)]);
            else
                input.truncate(kind == 2 ? input.size() - pick(1, 3) : at);
        }
        const std::string_view bytes(input.constData(), std::size_t(input.size()));
        std::string repaired;
        const QString utf8 = QString::fromUtf8(sanitizeUtf8(bytes, repaired));
        for (const TextEncoding encoding : documents::TE) {
            const QByteArray context
                = input.toHex(' ') + " as " + QByteArray::number(int(encoding));
            const std::size_t bound = documents::maxDecodedLength(encoding, bytes.size());
            std::u16string out(bound + 2, u'\x1234'); // a fence catches a write past the bound
            const std::size_t length = documents::decode(encoding, bytes, out.data());
            QVERIFY2(length <= bound && out.substr(bound) == u"\x1234\x1234", context);
            const QString text = QString::fromUtf16(out.data(), qsizetype(length));
            QVERIFY2(text.isValidUtf16(), context);
            if (encoding != TextEncoding::ShiftJISX0212)
                QVERIFY2(
                    text.count('\n') == input.count('\n') && text.count('\r') == input.count('\r'),
                    "line break lost: " + context);
            if (encoding == TextEncoding::UTF8)
                QCOMPARE(text, utf8);
        }
    }
}

void TestEncodings::cleanerRow_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("current"); // a row of the pane's pop-up
    QTest::addColumn<int>("offered"); // -1: none
    const QByteArray sjis = QByteArray::fromHex("93fa967b8cea8365834c83588367") + "\n";
    const QByteArray euc = QByteArray::fromHex("c6fccbdcb8eca5c6a5ada5b9a5c8") + "\n";
    QTest::newRow("ShiftJIS under UTF-8") << sjis << 0 << 1;
    QTest::newRow("EUC under UTF-8") << euc << 0 << 3;
    QTest::newRow("EUC under ShiftJIS") << euc << 1 << 3;
    QTest::newRow("read cleanly already") << sjis << 1 << -1;
    // Text, not a decoding fault: the bytes spell U+FFFD.
    QTest::newRow("UTF-8 spelling U+FFFD") << QByteArray("a \xef\xbf\xbd b\n") << 0 << -1;
    QTest::newRow("only MacOS reads it") << QByteArray("\xff\xfe\xfd") << 0 << 2;
    QTest::newRow("a cut lead byte: no row reads it") << QByteArray("abc\x81") << 0 << -1;
    QTest::newRow("binary") << QByteArray("\x93\xfa\0\x96\x7b", 5) << 0 << -1;
    QTest::newRow("past the limit")
        << sjis.repeated(int(documents::kHintLimit / 15 + 1)) << 0 << -1;
}

void TestEncodings::cleanerRow()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, current);
    QFETCH(int, offered);
    const std::span<const TextEncoding> rows = std::span(documents::TE).first(5);
    const std::string_view view(bytes.constData(), std::size_t(bytes.size()));
    QCOMPARE(documents::cleanerRow(view, rows, current), offered);
}

QTEST_APPLESS_MAIN(TestEncodings)
#include "tst_encodings.moc"
