#pragma once

#include "LineStore.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The bytes last read into a pane, kept so that another encoding can read them again. Bytes that
// were well-formed UTF-8 are not held twice: the text they decoded to, whose blocks the pane
// shares, gives them back exactly.
class KeptBytes
{
public:
    KeptBytes() = default;
    explicit KeptBytes(std::string bytes)
        : raw(std::move(bytes))
    {
    }
    // `decoded` is what well-formed UTF-8 decoded to, byte-order mark included.
    explicit KeptBytes(toolkit::LineStore decoded)
        : text(std::move(decoded))
    {
    }
    std::string bytes() const;
    // The text itself, when it is what the bytes decode to as UTF-8.
    const std::optional<toolkit::LineStore>& utf8Text() const { return text; }

private:
    std::string raw;
    std::optional<toolkit::LineStore> text;
};

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

// Appends the UTF-8 form of well-formed UTF-16, or of Latin-1.
void appendUtf8(std::string& out, std::u16string_view text);
void appendUtf8(std::string& out, std::string_view latin1);
