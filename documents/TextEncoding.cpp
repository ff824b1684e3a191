#include "TextEncoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>
#include <vector>

namespace documents {

namespace {

constexpr char16_t kReplacement = 0xFFFD;
// Noncharacters, never the target of a mapping: markers in the generated tables.
constexpr char16_t kNoChar = 0xFFFF;
constexpr char16_t kSequence = 0xFFFE;

#include "Jis0212Table.inc"
#include "MacJapaneseTable.inc"

std::size_t decodeUtf8(std::string_view bytes, char16_t* out)
{
    const auto* p = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const std::size_t n = bytes.size();
    char16_t* o = out;
    std::size_t i = 0;
    while (i < n) {
        if (p[i] < 0x80) {
            // ASCII comes in runs: eight bytes at a time while it lasts.
            for (std::uint64_t word; i + 8 <= n; i += 8, o += 8) {
                std::memcpy(&word, p + i, 8);
                if (word & 0x8080808080808080ULL)
                    break;
                for (int k = 0; k < 8; ++k)
                    o[k] = p[i + k];
            }
            while (i < n && p[i] < 0x80)
                *o++ = p[i++];
            continue;
        }
        // Takes the maximal subpart of a bad sequence, as Utf8.h and ICU's converter do.
        UChar32 c;
        U8_NEXT_OR_FFFD(p, i, n, c);
        if (U16_LENGTH(c) == 1) {
            *o++ = char16_t(c);
        } else {
            *o++ = U16_LEAD(c);
            *o++ = U16_TRAIL(c);
        }
    }
    return std::size_t(o - out);
}

// Several units for one code; the few such codes are looked up in a sorted list.
char16_t* appendSequence(std::uint16_t code, char16_t* out)
{
    const auto* found = std::lower_bound(std::begin(macSequences), std::end(macSequences), code,
        [](const MacSequence& s, std::uint16_t c) { return s.code < c; });
    return std::copy_n(found->units, found->length, out);
}

bool isShiftJisTrail(unsigned byte)
{
    return byte >= 0x40 && byte <= 0xFC && byte != 0x7F;
}

std::size_t decodeMacJapanese(std::string_view bytes, char16_t* out)
{
    const auto* p = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const std::size_t n = bytes.size();
    char16_t* o = out;
    for (std::size_t i = 0; i < n;) {
        const unsigned lead = p[i++];
        const char16_t single = macSingle[lead];
        if (single < kSequence) {
            *o++ = single;
            continue;
        }
        if (single == kSequence) {
            o = appendSequence(std::uint16_t(lead), o);
            continue;
        }
        // A byte that leads nothing, or a lead cut off by the end or by a byte that can't
        // follow it, is bad alone. So is a lead whose pair with an ASCII byte is unmapped: the
        // ASCII is read again by itself, so a stray lead costs no letter or line break. Other
        // unmapped pairs are one U+FFFD.
        const unsigned row = macLeadRow[lead];
        const unsigned trail = i < n ? p[i] : 0;
        const bool paired = row && isShiftJisTrail(trail);
        const char16_t c = paired ? macPairs[row - 1][trail - 0x40] : kNoChar;
        if (!paired || (c == kNoChar && trail < 0x80)) {
            *o++ = kReplacement;
            continue;
        }
        ++i;
        if (c == kSequence)
            o = appendSequence(std::uint16_t(lead << 8 | trail), o);
        else
            *o++ = c == kNoChar ? kReplacement : c;
    }
    return std::size_t(o - out);
}

std::size_t decodeJis0212Pairs(std::string_view bytes, char16_t* out)
{
    const auto* p = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const std::size_t n = bytes.size();
    char16_t* o = out;
    for (std::size_t i = 0; i + 1 < n; i += 2) {
        // Unsigned, so bytes below 0x21 fall out of range too.
        const unsigned row = (p[i] & 0x7Fu) - 0x21u;
        const unsigned cell = (p[i + 1] & 0x7Fu) - 0x21u;
        const unsigned place = row < 94 ? jis0212Row[row] : 0;
        const char16_t c = place && cell < 94 ? jis0212Cells[place - 1][cell] : kNoChar;
        *o++ = c == kNoChar ? kReplacement : c;
    }
    if (n % 2)
        *o++ = kReplacement;
    return std::size_t(o - out);
}

// ICU's stock substitute writes U+001A for some encodings; a pane shows U+FFFD for every
// sequence it could not read, whatever the encoding.
void writeReplacement(const void*, UConverterToUnicodeArgs* args, const char*, int32_t,
    UConverterCallbackReason reason, UErrorCode* error)
{
    if (reason > UCNV_IRREGULAR)
        return;
    *error = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &kReplacement, 1, 0, error);
}

// ICU takes at most 2 GB of bytes and 1 G units per call.
constexpr std::size_t kMaxBytesPerCall = std::size_t(1) << 30;
constexpr std::size_t kMaxUnitsPerCall = 0x3FFFFFFF;

// Converts [from, to) into [out, outEnd); `flush` ends the text, so a sequence cut off at its
// end counts as bad. Returns the end of what it wrote.
char16_t* convert(UConverter* converter, const char* from, const char* to, char16_t* out,
    char16_t* outEnd, bool flush)
{
    for (;;) {
        const char* pieceEnd = from + std::min(std::size_t(to - from), kMaxBytesPerCall);
        char16_t* limit = out + std::min(std::size_t(outEnd - out), kMaxUnitsPerCall);
        UErrorCode error = U_ZERO_ERROR;
        ucnv_toUnicode(
            converter, &out, limit, &from, pieceEnd, nullptr, flush && pieceEnd == to, &error);
        if (error == U_BUFFER_OVERFLOW_ERROR) {
            // Only the per-call cap can be reached: outEnd is at maxDecodedLength.
            if (limit == outEnd)
                return out;
        } else if (U_FAILURE(error)) {
            throw std::runtime_error(std::string("cannot decode: ") + u_errorName(error));
        } else if (from == to) {
            return out;
        }
    }
}

std::size_t decodeNamed(
    const char* name, std::string_view bytes, char16_t* out, std::size_t capacity)
{
    return decodeWithIcu(openIcuConverter(name).get(), bytes, out, capacity);
}

// ICU's ISO-2022-JP takes a line break after a lead byte into the bad pair, and so loses the
// line. A line break can never be part of a character there, so a sequence still open at one
// is ended as bad before the break is read.
std::size_t decodeIso2022Jp(std::string_view bytes, char16_t* out, std::size_t capacity)
{
    const IcuConverter converter = openIcuConverter("ISO-2022-JP");
    const char* from = bytes.data();
    const char* end = from + bytes.size();
    char16_t* o = out;
    char16_t* outEnd = out + capacity;
    const auto isBreak = [](char c) { return c == '\n' || c == '\r'; };
    for (const char* search = from;;) {
        const char* cut = std::find_if(search, end, isBreak);
        o = convert(converter.get(), from, cut, o, outEnd, cut == end);
        if (cut == end)
            break;
        UErrorCode error = U_ZERO_ERROR;
        if (ucnv_toUCountPending(converter.get(), &error) > 0)
            o = convert(converter.get(), cut, cut, o, outEnd, true);
        from = cut;
        search = cut + 1;
    }
    return std::size_t(o - out);
}

// ICU swallows the byte after a lead whose pair it can't map, an ASCII letter or line break
// included, and reads EUC-JP's stray C1 bytes as controls. So ICU gives only the characters:
// each valid code is asked of it once, into tables, and the bytes are walked here, bad
// sequences as the WHATWG decoders end them. A byte that was not taken into a character is
// read again on its own when it is ASCII.
struct JapaneseTables
{
    std::array<char16_t, 256> sjisSingle{}; // kNoChar: a lead or a bad byte
    std::vector<char16_t> sjisPairs = std::vector<char16_t>(0x10000, kNoChar); // lead << 8 | trail
    std::array<char16_t, 94 * 94> euc0208{};
    std::array<char16_t, 94 * 94> euc0212{};
    std::array<char16_t, 63> eucKana{};
};

// One code through ICU alone: its character, or kNoChar unless it makes exactly one.
char16_t askIcu(UConverter* converter, std::string_view code)
{
    ucnv_resetToUnicode(converter);
    char16_t out[4];
    char16_t* o = out;
    const char* from = code.data();
    UErrorCode error = U_ZERO_ERROR;
    ucnv_toUnicode(converter, &o, out + 4, &from, code.data() + code.size(), nullptr, true, &error);
    return U_SUCCESS(error) && o == out + 1 && out[0] != kReplacement ? out[0] : kNoChar;
}

bool isSjisLead(unsigned byte)
{
    return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}

JapaneseTables makeJapaneseTables()
{
    JapaneseTables t;
    const IcuConverter sjis = openIcuConverter("windows-31j");
    for (unsigned lead = 0; lead < 256; ++lead) {
        // IBM's table behind windows-31j swaps 1A, 1C and 7F; Windows and every other reader
        // keep ASCII as it is.
        const char single = char(lead);
        t.sjisSingle[lead] = lead < 0x80 ? char16_t(lead)
            : isSjisLead(lead)           ? kNoChar
                                         : askIcu(sjis.get(), {&single, 1});
        if (!isSjisLead(lead))
            continue;
        for (unsigned trail = 0x40; trail <= 0xFC; ++trail) {
            const char pair[2] = {char(lead), char(trail)};
            if (isShiftJisTrail(trail))
                t.sjisPairs[lead << 8 | trail] = askIcu(sjis.get(), {pair, 2});
        }
    }
    const IcuConverter euc = openIcuConverter("EUC-JP");
    for (unsigned row = 0; row < 94; ++row) {
        for (unsigned cell = 0; cell < 94; ++cell) {
            const char code[3] = {'\x8F', char(0xA1 + row), char(0xA1 + cell)};
            t.euc0208[row * 94 + cell] = askIcu(euc.get(), {code + 1, 2});
            t.euc0212[row * 94 + cell] = askIcu(euc.get(), {code, 3});
        }
    }
    for (unsigned kana = 0; kana < t.eucKana.size(); ++kana) {
        const char code[2] = {'\x8E', char(0xA1 + kana)};
        t.eucKana[kana] = askIcu(euc.get(), {code, 2});
    }
    return t;
}

const JapaneseTables& japaneseTables()
{
    static const JapaneseTables tables = makeJapaneseTables();
    return tables;
}

std::size_t decodeShiftJis(std::string_view bytes, char16_t* out)
{
    const JapaneseTables& t = japaneseTables();
    const auto* p = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const std::size_t n = bytes.size();
    char16_t* o = out;
    for (std::size_t i = 0; i < n;) {
        const unsigned lead = p[i++];
        const char16_t single = t.sjisSingle[lead];
        if (single != kNoChar || !isSjisLead(lead)) {
            *o++ = single == kNoChar ? kReplacement : single;
            continue;
        }
        if (i == n) {
            *o++ = kReplacement;
            break;
        }
        const unsigned trail = p[i];
        const char16_t c = t.sjisPairs[lead << 8 | trail];
        // A bad pair takes its second byte along unless that byte is ASCII.
        if (c != kNoChar || trail >= 0x80)
            ++i;
        *o++ = c == kNoChar ? kReplacement : c;
    }
    return std::size_t(o - out);
}

std::size_t decodeEucJp(std::string_view bytes, char16_t* out)
{
    const JapaneseTables& t = japaneseTables();
    const auto* p = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const std::size_t n = bytes.size();
    const auto isCode = [](unsigned b) { return b >= 0xA1 && b <= 0xFE; };
    char16_t* o = out;
    for (std::size_t i = 0; i < n;) {
        const unsigned lead = p[i++];
        if (lead < 0x80) {
            *o++ = char16_t(lead);
            continue;
        }
        char16_t c = kNoChar;
        // Each following byte is taken while it can still belong to the code; the first one
        // that can't ends the bad sequence and, when ASCII, is read again.
        if (lead == 0x8E && i < n && p[i] >= 0xA1 && p[i] <= 0xDF) {
            c = t.eucKana[p[i++] - 0xA1];
        } else if (lead == 0x8F && i < n && isCode(p[i])) {
            const unsigned row = p[i++] - 0xA1;
            if (i < n && isCode(p[i]))
                c = t.euc0212[row * 94 + p[i++] - 0xA1];
            else if (i < n && p[i] >= 0x80)
                ++i;
        } else if (isCode(lead) && i < n && isCode(p[i])) {
            c = t.euc0208[(lead - 0xA1) * 94 + p[i++] - 0xA1];
        } else if ((lead == 0x8E || lead == 0x8F || isCode(lead)) && i < n && p[i] >= 0x80) {
            ++i;
        }
        *o++ = c == kNoChar ? kReplacement : c;
    }
    return std::size_t(o - out);
}

} // namespace

void CloseConverter::operator()(UConverter* converter) const
{
    ucnv_close(converter);
}

IcuConverter openIcuConverter(const char* name)
{
    UErrorCode error = U_ZERO_ERROR;
    IcuConverter converter(ucnv_open(name, &error));
    if (U_SUCCESS(error))
        ucnv_setToUCallBack(converter.get(), writeReplacement, nullptr, nullptr, nullptr, &error);
    if (U_FAILURE(error))
        throw std::runtime_error(
            std::string("no text converter for ") + name + ": " + u_errorName(error));
    return converter;
}

std::size_t decodeWithIcu(
    UConverter* converter, std::string_view bytes, char16_t* out, std::size_t capacity)
{
    const char* begin = bytes.data();
    const char* end = begin + bytes.size();
    return std::size_t(convert(converter, begin, end, out, out + capacity, true) - out);
}

std::size_t maxDecodedLength(TextEncoding encoding, std::size_t byteCount)
{
    switch (encoding) {
    case TextEncoding::MacJapanese: {
        // A mix of singles and pairs: the most is at all singles or all pairs.
        const std::size_t single = std::max<std::size_t>(macMaxSingleUnits, 1);
        const std::size_t pair = std::max<std::size_t>(macMaxPairUnits, 2);
        if (byteCount > std::numeric_limits<std::size_t>::max() / (single + pair))
            throw std::length_error("text too long to decode");
        return std::max(byteCount * single, byteCount / 2 * pair + byteCount % 2 * single);
    }
    case TextEncoding::ShiftJISX0212:
        return byteCount / 2 + byteCount % 2;
    default:
        // One unit per byte at most: no code of these stands for more units than it has bytes.
        return byteCount;
    }
}

std::size_t decode(TextEncoding encoding, std::string_view bytes, char16_t* out)
{
    if (bytes.empty())
        return 0;
    const std::size_t capacity = maxDecodedLength(encoding, bytes.size());
    switch (encoding) {
    case TextEncoding::UTF8:
    case TextEncoding::None:
        return decodeUtf8(bytes, out);
    case TextEncoding::MacJapanese:
        return decodeMacJapanese(bytes, out);
    case TextEncoding::ShiftJISX0212:
        return decodeJis0212Pairs(bytes, out);
    case TextEncoding::EUCJP:
        return decodeEucJp(bytes, out);
    case TextEncoding::ISO2022JP:
        return decodeIso2022Jp(bytes, out, capacity);
    case TextEncoding::ASCII:
        return decodeNamed("US-ASCII", bytes, out, capacity);
    case TextEncoding::ShiftJIS:
    case TextEncoding::DOSJapanese:
        break;
    }
    return decodeShiftJis(bytes, out);
}

std::u16string decode(TextEncoding encoding, std::string_view bytes)
{
    std::u16string text(maxDecodedLength(encoding, bytes.size()), u'\0');
    text.resize(decode(encoding, bytes, text.data()));
    return text;
}

} // namespace documents
