#include "CodePages.h"

#include "TextEncoding.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <unicode/ucnv.h>

namespace documents {

namespace {

struct Page
{
    int number;
    const char* icuName; // none: the pane's own Japanese decoders
};

// Sorted by number.
constexpr Page kPages[] = {
    {437, "ibm-437"},
    {850, "ibm-850"},
    {852, "ibm-852"},
    {866, "ibm-866"},
    {874, "windows-874"},
    {CodePages::kShiftJis, nullptr},
    {936, "windows-936"},
    {949, "windows-949"},
    {950, "windows-950"},
    {1250, "windows-1250"},
    {1251, "windows-1251"},
    {1252, "windows-1252"},
    {1253, "windows-1253"},
    {1254, "windows-1254"},
    {1255, "windows-1255"},
    {1256, "windows-1256"},
    {1257, "windows-1257"},
    {1258, "windows-1258"},
    {CodePages::kMacRoman, "macintosh"},
    {CodePages::kMacJapanese, nullptr},
    {10006, "x-mac-greek"},
    {10007, "x-mac-cyrillic"},
    {10029, "x-mac-centraleurroman"},
    {10081, "x-mac-turkish"},
    {65001, "UTF-8"},
};

const Page* findPage(int number)
{
    const auto at = std::lower_bound(std::begin(kPages), std::end(kPages), number,
        [](const Page& page, int n) { return page.number < n; });
    return at != std::end(kPages) && at->number == number ? at : nullptr;
}

} // namespace

CodePages::CodePages() = default;
CodePages::~CodePages() = default;

bool CodePages::isKnown(int codePage)
{
    return findPage(codePage) != nullptr;
}

int CodePages::ofCharset(int charset, int documentCodePage)
{
    struct Charset
    {
        int charset;
        int codePage;
    };
    static constexpr Charset kCharsets[] = {{77, kMacRoman}, {78, kMacJapanese}, {86, 10006},
        {87, 10081}, {89, 10029}, {90, 10007}, {128, kShiftJis}, {129, 949}, {134, 936}, {136, 950},
        {161, 1253}, {162, 1254}, {163, 1258}, {177, 1255}, {178, 1256}, {186, 1257}, {204, 1251},
        {222, 874}, {238, 1250}, {254, 437}, {255, 850}};
    // Old Mac documents mark Japanese fonts with the Windows set but hold Mac bytes.
    if (charset == 128 && documentCodePage == kMacRoman)
        return kMacJapanese;
    for (const Charset& entry : kCharsets)
        if (entry.charset == charset)
            return entry.codePage;
    return documentCodePage;
}

UConverter* CodePages::converter(int codePage)
{
    if (const auto found = converters.find(codePage); found != converters.end())
        return found->second.get();
    const Page* page = findPage(codePage);
    if (!page || !page->icuName)
        page = findPage(kWestern);
    IcuConverter opened;
    try {
        opened = openIcuConverter(page->icuName);
    } catch (const std::exception&) {
        // Kept as missing, so the text shows as undecodable rather than failing the file.
    }
    UConverter* result = opened.get();
    converters.emplace(codePage, std::move(opened));
    return result;
}

QString CodePages::decode(int codePage, std::string_view bytes)
{
    if (bytes.empty())
        return {};
    // The same decoders as a plain text pane's, so a text compares alike in both forms.
    if (codePage == kShiftJis || codePage == kMacJapanese) {
        try {
            const std::u16string text = documents::decode(
                codePage == kShiftJis ? TextEncoding::ShiftJIS : TextEncoding::MacJapanese, bytes);
            return QString::fromUtf16(text.data(), qsizetype(text.size()));
        } catch (const std::exception&) {
            // ICU without its Japanese converter: say so in the text rather than fail the file.
            return QString(qsizetype(bytes.size()), QChar::ReplacementCharacter);
        }
    }
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) == 0; }))
        return QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    UConverter* conv = converter(codePage);
    if (!conv)
        return QString(qsizetype(bytes.size()), QChar(0xFFFD));
    ucnv_resetToUnicode(conv);
    // No converter we use makes more than two UTF-16 units of one byte.
    QString text(qsizetype(bytes.size()) * 2 + 1, Qt::Uninitialized);
    try {
        text.truncate(qsizetype(decodeWithIcu(
            conv, bytes, reinterpret_cast<char16_t*>(text.data()), std::size_t(text.size()))));
    } catch (const std::exception&) {
        return QString(qsizetype(bytes.size()), QChar::ReplacementCharacter);
    }
    return text;
}

} // namespace documents
