#include "Utf8.h"

#include <QtTest>

#include <random>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

namespace {

QByteArray hex(std::string_view s)
{
    return QByteArray(s.data(), qsizetype(s.size())).toHex(' ');
}

// Characters of every length (often at the ends of their ranges) and ASCII runs long enough
// for the word-wise loops. Damaged text mixes in single bytes from the edges of the lead and
// continuation ranges: next to each other and to the characters they make stray continuations,
// overlongs, surrogates, values above U+10FFFF, bytes that never occur and cut sequences.
std::string generate(std::mt19937& rng)
{
    static constexpr unsigned char edgeBytes[] = {0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1,
        0xC2, 0xDF, 0xE0, 0xE1, 0xED, 0xEF, 0xF0, 0xF3, 0xF4, 0xF5, 0xFF};
    static constexpr UChar32 ranges[][2]
        = {{0x80, 0x7FF}, {0x800, 0xD7FF}, {0xE000, 0xFFFF}, {0x10000, 0x10FFFF}};
    const auto pick = [&](int lo, int hi) { return std::uniform_int_distribution(lo, hi)(rng); };
    const int damage = pick(0, 3); // none in a quarter of the inputs
    std::string s;
    for (int items = pick(0, 40); items > 0; --items) {
        const int kind = pick(0, 4 + damage);
        if (kind == 0) {
            s.append(std::size_t(pick(1, 24)), char(pick(0, 0x7F)));
        } else if (kind <= 4) {
            const auto [lo, hi] = ranges[kind - 1];
            const UChar32 c = pick(0, 3) ? pick(lo, hi) : pick(0, 1) ? lo : hi;
            char bytes[U8_MAX_LENGTH];
            int32_t length = 0;
            U8_APPEND_UNSAFE(bytes, length, c);
            s.append(bytes, std::size_t(length));
        } else {
            for (int n = pick(1, 3); n > 0; --n)
                s += char(edgeBytes[pick(0, int(std::size(edgeBytes)) - 1)]);
        }
    }
    return s;
}

} // namespace

class TestUtf8 : public QObject
{
    Q_OBJECT
private slots:
    void knownSequences_data();
    void knownSequences();
    void agreesWithIcu();
};

void TestUtf8::knownSequences_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QString>("expected");
    // QString from the whole array: fromUtf16() would stop at NUL and drop a byte-order mark.
    const auto row
        = []<std::size_t N>(const char* name, const char* hexBytes, const char16_t(&text)[N]) {
              QTest::newRow(name) << QByteArray::fromHex(hexBytes)
                                  << QString(reinterpret_cast<const QChar*>(text), N - 1);
          };
    row("NUL and byte-order mark kept", "61 00 EF BB BF 62", u"a\u0000\uFEFFb");
    row("edges of each length", "C2 80 DF BF E0 A0 80 ED 9F BF EE 80 80 EF BF BF",
        u"\u0080\u07FF\u0800\uD7FF\uE000\uFFFF");
    row("U+10000 and U+10FFFF", "F0 90 80 80 F4 8F BF BF", u"\U00010000\U0010FFFF");
    // The worked examples of the Unicode Standard, chapter 3.
    row("truncated sequences", "61 F1 80 80 E1 80 C2 62 80 63 80 BF 64",
        u"a\uFFFD\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFDd");
    row("non-shortest forms", "C0 AF E0 80 BF F0 81 82 41",
        u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA");
    row("surrogates", "ED A0 80 ED BF BF ED AF 41",
        u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA");
    row("above U+10FFFF and FF", "F4 91 92 93 FF 41 80 BF 42",
        u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFDA\uFFFD\uFFFDB");
    row("maximal subparts", "E1 80 E2 F0 91 92 F1 BF 41", u"\uFFFD\uFFFD\uFFFD\uFFFDA");
    row("F5 and above never lead", "F5 80 FE", u"\uFFFD\uFFFD\uFFFD");
    row("cut at the end", "61 62 F0 9F 98", u"ab\uFFFD");
    // Where the eight-byte steps meet the byte-wise ones.
    row("bad last byte of a word", "61 62 63 64 65 66 67 FF 68 69 6A 6B 6C 6D 6E 6F 70",
        u"abcdefg\uFFFDhijklmnop");
    row("cut across a word", "61 62 63 64 65 66 67 E2 82 68 69 6A 6B 6C 6D 6E 6F 70",
        u"abcdefg\uFFFDhijklmnop");
    row("bad after long ASCII",
        "61 62 63 64 65 66 67 68 69 6A 6B 6C 6D 6E 6F 70 71 72 73 74 75 76 77 78 79 7A 30 31 32 "
        "33 FF 35 36 37 38 39 C3 A9 41 42 43 44 45 46 47 48 80",
        u"abcdefghijklmnopqrstuvwxyz0123\uFFFD56789\u00E9ABCDEFGH\uFFFD");
}

void TestUtf8::knownSequences()
{
    QFETCH(QByteArray, input);
    QFETCH(QString, expected);
    const std::string_view bytes(input.constData(), std::size_t(input.size()));
    std::string storage;
    QCOMPARE(hex(sanitizeUtf8(bytes, storage)), expected.toUtf8().toHex(' '));
    QCOMPARE(validUtf8Prefix(bytes) == bytes.size(), !expected.contains(QChar(0xFFFD)));
}

// ICU's reading, with U+FFFD for each maximal subpart, is the reference. Well-formed input must
// also come back as is, without a copy.
void TestUtf8::agreesWithIcu()
{
    constexpr int kInputs = 5000;
    std::mt19937 rng(20240611);
    int wellFormed = 0;
    for (int i = 0; i < kInputs; ++i) {
        const std::string input = generate(rng);
        std::u16string decoded(input.size() + 1, u'\0');
        int32_t length = 0;
        int32_t substitutions = 0;
        UErrorCode error = U_ZERO_ERROR;
        u_strFromUTF8WithSub(decoded.data(), int32_t(decoded.size()), &length, input.data(),
            int32_t(input.size()), 0xFFFD, &substitutions, &error);
        QVERIFY2(U_SUCCESS(error), u_errorName(error));
        const QByteArray expected = QString::fromUtf16(decoded.data(), length).toUtf8();

        std::string storage = "untouched";
        const std::string_view out = sanitizeUtf8(input, storage);
        const bool valid = substitutions == 0;
        wellFormed += valid;
        if (hex(out) != expected.toHex(' ') || (validUtf8Prefix(input) == input.size()) != valid
            || (valid && (out.data() != input.data() || storage != "untouched")))
            QFAIL(qPrintable("input " + hex(input) + "\nours  " + hex(out)));
    }
    // Both kinds of input must turn up often, or the generator has gone wrong.
    QVERIFY2(wellFormed > kInputs / 5 && wellFormed < kInputs / 2,
        qPrintable(QString::number(wellFormed)));
}

QTEST_APPLESS_MAIN(TestUtf8)
#include "tst_utf8.moc"
