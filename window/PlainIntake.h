#pragma once

#include "LineStore.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <string>
#include <string_view>

// Takes a file's bytes in the pieces they are read in. While UTF-8 is wanted and the bytes are
// well-formed, they are decoded as they come and not kept, so a large file is never held both
// as bytes and as text; the first ill-formed sequence turns the text so far back into bytes, and
// from there on the bytes are kept as they are.
class PlainIntake
{
public:
    // `expected` sizes the buffer; a file that reports no size grows it as it comes.
    PlainIntake(bool decodeUtf8, std::uint64_t expected);
    void take(std::string_view piece);
    // At the end of the read, or where it stopped.
    void finish();
    std::uint64_t taken() const { return count; }
    // After finish(): the text when every byte was decoded, else nothing and the bytes.
    bool decoded() const { return decoding; }
    // Takes the text away, one byte a character while none is above U+00FF.
    toolkit::LineStore lines();
    std::string& bytes() { return raw; }

private:
    void keepBytes();
    void append(std::u16string_view units);
    bool decoding;
    std::uint64_t expected;
    std::uint64_t count = 0;
    bool wide = false;
    QByteArray latin1;
    QString utf16;
    std::u16string scratch;
    std::string raw;
    std::string pending; // the start of a sequence that the next piece ends
};
