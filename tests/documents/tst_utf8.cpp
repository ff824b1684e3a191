#include "Utf8.h"

#include <QtTest>

#include <functional>
#include <random>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ustring.h>
#include <unicode/utf8.h>

namespace {

using Bytes = std::string;
using Generator = std::function<Bytes(std::mt19937&)>;

std::string_view view(const QByteArray& a)
{
    return {a.constData(), std::size_t(a.size())};
}

QByteArray hex(std::string_view s)
{
    return QByteArray(s.data(), qsizetype(s.size())).toHex(' ');
}

// ICU's converter with a callback that writes U+FFFD for whatever it cannot decode, the way the
// program's other encodings are read.
void writeReplacement(const void*, UConverterToUnicodeArgs* args, const char*, int32_t,
    UConverterCallbackReason reason, UErrorCode* error)
{
    if (reason > UCNV_IRREGULAR)
        return;
    static const UChar replacement = 0xFFFD;
    *error = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &replacement, 1, 0, error);
}

std::u16string icuConverter(std::string_view bytes)
{
    UErrorCode error = U_ZERO_ERROR;
    UConverter* converter = ucnv_open("UTF-8", &error);
    ucnv_setToUCallBack(converter, writeReplacement, nullptr, nullptr, nullptr, &error);
    std::u16string out(bytes.size() + 1, u'\0');
    const int32_t length = ucnv_toUChars(
        converter, out.data(), int32_t(out.size()), bytes.data(), int32_t(bytes.size()), &error);
    ucnv_close(converter);
    if (U_FAILURE(error))
        throw std::runtime_error(u_errorName(error));
    out.resize(std::size_t(length));
    return out;
}

std::u16string icuWithSubstitution(std::string_view bytes)
{
    UErrorCode error = U_ZERO_ERROR;
    std::u16string out(bytes.size() + 1, u'\0');
    int32_t length = 0;
    u_strFromUTF8WithSub(out.data(), int32_t(out.size()), &length, bytes.data(),
        int32_t(bytes.size()), 0xFFFD, nullptr, &error);
    if (U_FAILURE(error))
        throw std::runtime_error(u_errorName(error));
    out.resize(std::size_t(length));
    return out;
}

// Strict decoding: nullopt when `bytes` is not well-formed UTF-8.
std::optional<std::u16string> icuStrict(std::string_view bytes)
{
    UErrorCode error = U_ZERO_ERROR;
    std::u16string out(bytes.size() + 1, u'\0');
    int32_t length = 0;
    u_strFromUTF8(
        out.data(), int32_t(out.size()), &length, bytes.data(), int32_t(bytes.size()), &error);
    if (U_FAILURE(error))
        return std::nullopt;
    out.resize(std::size_t(length));
    return out;
}

void appendCodePoint(Bytes& s, UChar32 c)
{
    char buffer[U8_MAX_LENGTH];
    int32_t length = 0;
    U8_APPEND_UNSAFE(buffer, length, c);
    s.append(buffer, std::size_t(length));
}

int uniform(std::mt19937& rng, int lo, int hi)
{
    return std::uniform_int_distribution<int>(lo, hi)(rng);
}

// Well-formed text: ASCII runs (long enough to reach the eight-byte path), NUL, line breaks,
// the byte-order mark and characters of every length up to U+10FFFF.
Bytes validText(std::mt19937& rng, int maxItems)
{
    Bytes s;
    const int items = uniform(rng, 0, maxItems);
    for (int i = 0; i < items; ++i) {
        switch (uniform(rng, 0, 7)) {
        case 0:
            s.append(std::size_t(uniform(rng, 1, 20)), char(uniform(rng, 0x20, 0x7E)));
            break;
        case 1:
            s += char(uniform(rng, 0, 0x7F));
            break;
        case 2:
            appendCodePoint(s, uniform(rng, 0x80, 0x7FF));
            break;
        case 3:
            appendCodePoint(s, uniform(rng, 0x800, 0xD7FF));
            break;
        case 4:
            appendCodePoint(s, uniform(rng, 0xE000, 0xFFFF));
            break;
        case 5:
            appendCodePoint(s, uniform(rng, 0x10000, 0x10FFFF));
            break;
        case 6: {
            static constexpr UChar32 edges[] = {0, 0x7F, 0x80, 0x7FF, 0x800, 0xD7FF, 0xE000, 0xFEFF,
                0xFFFD, 0xFFFF, 0x2029, 0x10000, 0xFFFE, 0x3FFFF, 0x40000, 0x10FFFF};
            appendCodePoint(s, edges[uniform(rng, 0, int(std::size(edges)) - 1)]);
            break;
        }
        default:
            s += "\r\n";
            break;
        }
    }
    return s;
}

// A piece of damage: each kind of ill-formed sequence there is.
Bytes damage(std::mt19937& rng)
{
    const auto cont = [&] { return char(uniform(rng, 0x80, 0xBF)); };
    switch (uniform(rng, 0, 9)) {
    case 0: { // stray continuation bytes
        Bytes s;
        for (int i = uniform(rng, 1, 4); i > 0; --i)
            s += cont();
        return s;
    }
    case 1: // overlong forms
        return Bytes{char(uniform(rng, 0xC0, 0xC1)), cont()};
    case 2:
        return Bytes{'\xE0', char(uniform(rng, 0x80, 0x9F)), cont()};
    case 3:
        return Bytes{'\xF0', char(uniform(rng, 0x80, 0x8F)), cont(), cont()};
    case 4: // surrogates D800..DFFF
        return Bytes{'\xED', char(uniform(rng, 0xA0, 0xBF)), cont()};
    case 5: // above U+10FFFF
        return Bytes{'\xF4', char(uniform(rng, 0x90, 0xBF)), cont(), cont()};
    case 6:
        return Bytes{char(uniform(rng, 0xF5, 0xF7)), cont(), cont(), cont()};
    case 7: // bytes that never occur
        return Bytes(1, char(uniform(rng, 0xF8, 0xFF)));
    case 8: { // a character cut short
        const UChar32 starts[] = {0x80, 0x800, 0x10000};
        const UChar32 ends[] = {0x7FF, 0xD7FF, 0x10FFFF};
        const int length = uniform(rng, 0, 2);
        Bytes whole;
        appendCodePoint(whole, uniform(rng, starts[length], ends[length]));
        whole.resize(std::size_t(uniform(rng, 1, int(whole.size()) - 1)));
        return whole;
    }
    default:
        return Bytes(1, '\0');
    }
}

Bytes randomBytes(std::mt19937& rng)
{
    Bytes s(std::size_t(uniform(rng, 0, 40)), '\0');
    for (char& c : s)
        c = char(uniform(rng, 0, 255));
    return s;
}

// Bytes drawn from the boundaries of the lead and continuation ranges, so that every
// combination of lead byte and first continuation byte turns up often.
Bytes boundaryBytes(std::mt19937& rng)
{
    static constexpr unsigned char alphabet[]
        = {0x00, 0x0A, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0,
            0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xFE, 0xFF};
    Bytes s(std::size_t(uniform(rng, 0, 12)), '\0');
    for (char& c : s)
        c = char(alphabet[uniform(rng, 0, int(std::size(alphabet)) - 1)]);
    return s;
}

Bytes mutated(std::mt19937& rng, int maxItems)
{
    Bytes s = validText(rng, maxItems);
    for (int i = uniform(rng, 1, 3); i > 0; --i) {
        const std::size_t at = std::size_t(uniform(rng, 0, int(s.size())));
        switch (uniform(rng, 0, 3)) {
        case 0:
            s.insert(at, damage(rng));
            break;
        case 1:
            if (at < s.size())
                s[at] = char(uniform(rng, 0, 255));
            break;
        case 2:
            if (at < s.size())
                s.erase(at, 1);
            break;
        default:
            s.resize(at);
            break;
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
    void wellFormedIsNotCopied();
    void agreesWithIcu_data();
    void agreesWithIcu();
    void storageMayHoldTheInput();
};

void TestUtf8::knownSequences_data()
{
    // Input bytes in hex, the expected text as characters.
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QString>("expected");
    // QString from the whole array: fromUtf16() would stop at NUL and drop a byte-order mark.
    const auto row
        = []<std::size_t N>(const char* name, const char* hexBytes, const char16_t(&text)[N]) {
              QTest::newRow(name) << QByteArray::fromHex(hexBytes)
                                  << QString(reinterpret_cast<const QChar*>(text), N - 1);
          };
    row("empty", "", u"");
    row("NUL kept", "61 00 62", u"a\u0000b");
    row("byte-order mark kept", "EF BB BF 78", u"\uFEFFx");
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

    row("C0 and C1 never lead", "C0 80 C1 BF", u"\uFFFD\uFFFD\uFFFD\uFFFD");
    row("F5 and above never lead", "F5 80 80 80 FE FF", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
    row("cut at the end", "61 62 F0 9F 98", u"ab\uFFFD");
    row("cut before ASCII", "E2 82 41", u"\uFFFDA");
    row("cut before a lead", "E2 82 E2 82 AC", u"\uFFFD\u20AC");
    // Where the eight-byte steps meet the byte-wise ones.
    row("valid across a word", "61 62 63 64 65 66 67 E2 82 AC 68 69 6A 6B 6C 6D 6E 6F 70",
        u"abcdefg\u20AChijklmnop");
    row("bad last byte of a word", "61 62 63 64 65 66 67 FF 68 69 6A 6B 6C 6D 6E 6F 70",
        u"abcdefg\uFFFDhijklmnop");
    row("bad first byte of a word", "61 62 63 64 65 66 67 68 FF 69 6A 6B 6C 6D 6E 6F 70",
        u"abcdefgh\uFFFDijklmnop");
    row("cut across a word", "61 62 63 64 65 66 67 E2 82 68 69 6A 6B 6C 6D 6E 6F 70",
        u"abcdefg\uFFFDhijklmnop");
    row("bad after long ASCII",
        "61 62 63 64 65 66 67 68 69 6A 6B 6C 6D 6E 6F 70 71 72 73 74 75 76 77 78 79 7A 30 31 32 "
        "33 34 35 36 37 38 39 C3 A9 41 42 43 44 45 46 47 48 80",
        u"abcdefghijklmnopqrstuvwxyz0123456789\u00E9ABCDEFGH\uFFFD");
}

void TestUtf8::knownSequences()
{
    QFETCH(QByteArray, input);
    QFETCH(QString, expected);
    std::string storage;
    const std::string_view out = sanitizeUtf8(view(input), storage);
    QCOMPARE(hex(out), expected.toUtf8().toHex(' '));
    QCOMPARE(validUtf8Prefix(view(input)) == std::size_t(input.size()),
        !expected.contains(QChar(0xFFFD)));
}

void TestUtf8::wellFormedIsNotCopied()
{
    std::mt19937 rng(7);
    for (int i = 0; i < 2000; ++i) {
        const Bytes input = validText(rng, i < 1000 ? 10 : 200);
        std::string storage = "untouched";
        const std::string_view out = sanitizeUtf8(input, storage);
        if (out.data() != input.data() || out.size() != input.size() || storage != "untouched")
            QFAIL(qPrintable("copied or changed: " + hex(input)));
    }
}

void TestUtf8::agreesWithIcu_data()
{
    QTest::addColumn<Generator>("generate");
    QTest::addColumn<int>("count");
    QTest::newRow("random bytes") << Generator(randomBytes) << 5000;
    QTest::newRow("boundary bytes") << Generator(boundaryBytes) << 10000;
    QTest::newRow("short damaged text")
        << Generator([](std::mt19937& rng) { return mutated(rng, 6); }) << 5000;
    QTest::newRow("long damaged text")
        << Generator([](std::mt19937& rng) { return mutated(rng, 300); }) << 1000;
}

void TestUtf8::agreesWithIcu()
{
    QFETCH(Generator, generate);
    QFETCH(int, count);
    std::mt19937 rng(20240611);
    int wellFormed = 0;
    for (int i = 0; i < count; ++i) {
        const Bytes input = generate(rng);
        std::string storage;
        const std::string_view out = sanitizeUtf8(input, storage);

        // Our output must itself be well-formed and mean what ICU reads from the input.
        const std::optional<std::u16string> ours = icuStrict(out);
        const std::u16string icu = icuWithSubstitution(input);
        if (!ours || *ours != icu || icuConverter(input) != icu)
            QFAIL(qPrintable("input " + hex(input) + "\nours  " + hex(out)));

        const bool valid = icuStrict(input).has_value();
        wellFormed += valid;
        if ((validUtf8Prefix(input) == input.size()) != valid)
            QFAIL(qPrintable("prefix wrong for " + hex(input)));
    }
    // The generators are meant to produce mostly damaged input.
    QVERIFY2(wellFormed < count / 2, qPrintable(QString::number(wellFormed)));
}

void TestUtf8::storageMayHoldTheInput()
{
    std::string storage = "x\xFFy";
    const std::string_view out = sanitizeUtf8(storage, storage);
    QCOMPARE(hex(out), hex("x\xEF\xBF\xBDy"));
}

QTEST_APPLESS_MAIN(TestUtf8)
#include "tst_utf8.moc"
