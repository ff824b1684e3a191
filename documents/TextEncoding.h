#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct UConverter;

namespace documents {

// The encodings a pane can lay on a file's bytes. A pane's popup row indexes TE; rows exist for
// the first five only, the others are kept working all the same.
enum class TextEncoding {
    UTF8,
    ShiftJIS, // Windows' Shift_JIS (code page 932, NEC and IBM extensions)
    MacJapanese,
    EUCJP,
    ShiftJISX0212, // byte pairs read as JIS X 0212, high bits ignored
    ISO2022JP,
    DOSJapanese, // code page 932, as ShiftJIS
    ASCII,
    None, // never chosen; read as UTF-8, so no byte is lost
};

inline constexpr std::array<TextEncoding, 9> TE{TextEncoding::UTF8, TextEncoding::ShiftJIS,
    TextEncoding::MacJapanese, TextEncoding::EUCJP, TextEncoding::ShiftJISX0212,
    TextEncoding::ISO2022JP, TextEncoding::DOSJapanese, TextEncoding::ASCII, TextEncoding::None};

// Upper bound of the UTF-16 units decode() writes for byteCount bytes: byteCount for most
// encodings, more for MacJapanese (some of its codes stand for up to five units).
// Throws std::length_error when the bound does not fit in a size_t.
std::size_t maxDecodedLength(TextEncoding encoding, std::size_t byteCount);

// Decodes the whole text in one go into `out`, which has room for maxDecodedLength units, and
// returns how many it wrote. The result is well-formed UTF-16. Every undecodable or cut
// sequence becomes one U+FFFD and the text after it is read on; a byte-order mark stays, as
// U+FEFF. Throws std::runtime_error if ICU lacks a converter (a broken installation).
std::size_t decode(TextEncoding encoding, std::string_view bytes, char16_t* out);
std::u16string decode(TextEncoding encoding, std::string_view bytes);

// An ICU converter by name that writes one U+FFFD for each sequence it can't read, for other
// readers of text in other encodings. Throws std::runtime_error if ICU lacks it.
struct CloseConverter
{
    void operator()(UConverter* converter) const;
};
using IcuConverter = std::unique_ptr<UConverter, CloseConverter>;
IcuConverter openIcuConverter(const char* name);
// Decodes the whole of `bytes` with `converter` into `out`, which has room for `capacity`
// units, and returns how many it wrote.
std::size_t decodeWithIcu(
    UConverter* converter, std::string_view bytes, char16_t* out, std::size_t capacity);

} // namespace documents
