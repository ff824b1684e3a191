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
    // Calls f(std::string_view) with the bytes, without a copy when they are held as such.
    template <class F> void withBytes(F f) const
    {
        if (text)
            f(std::string_view(bytes()));
        else
            f(std::string_view(raw));
    }
    // The text itself, when it is what the bytes decode to as UTF-8.
    const std::optional<toolkit::LineStore>& utf8Text() const { return text; }

private:
    std::string raw;
    std::optional<toolkit::LineStore> text;
};

// Appends the UTF-8 form of well-formed UTF-16, or of Latin-1.
void appendUtf8(std::string& out, std::u16string_view text);
void appendUtf8(std::string& out, std::string_view latin1);
