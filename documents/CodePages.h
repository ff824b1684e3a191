#pragma once

#include "TextEncoding.h"

#include <QString>

#include <map>
#include <memory>
#include <string_view>

namespace documents {

// Windows and Mac code pages as rich text names them, turned into text. Each undecodable
// sequence becomes one U+FFFD. Converters are opened on first use and kept.
class CodePages
{
public:
    static constexpr int kWestern = 1252;
    static constexpr int kMacRoman = 10000;
    static constexpr int kShiftJis = 932;
    static constexpr int kMacJapanese = 10001;

    CodePages();
    ~CodePages();
    CodePages(const CodePages&) = delete;
    CodePages& operator=(const CodePages&) = delete;

    QString decode(int codePage, std::string_view bytes);

    static bool isKnown(int codePage);
    // The code page of a font's character set; the document's one for ANSI and default.
    static int ofCharset(int charset, int documentCodePage);

private:
    UConverter* converter(int codePage);

    std::map<int, IcuConverter> converters;
};

} // namespace documents
