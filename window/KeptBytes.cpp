#include "KeptBytes.h"

#include <QStringEncoder>

#include <algorithm>
#include <utility>

std::string KeptBytes::bytes() const
{
    if (!text)
        return raw;
    std::string out;
    out.reserve(std::size_t(text->size()));
    text->forEachPiece([&out](auto piece) { appendUtf8(out, piece); });
    return out;
}

void appendUtf8(std::string& out, std::u16string_view text)
{
    // Qt's encoder writes straight into the string's room, a piece at a time so that the room
    // it asks for (three bytes a unit) stays small; it carries a pair cut between pieces over.
    QStringEncoder encoder(QStringEncoder::Utf8);
    constexpr std::size_t kPiece = 1 << 16;
    for (std::size_t at = 0; at < text.size(); at += kPiece) {
        const QStringView piece(text.substr(at, kPiece));
        const std::size_t used = out.size();
        out.resize(used + std::size_t(encoder.requiredSpace(piece.size())));
        char* end = encoder.appendToBuffer(out.data() + used, piece);
        out.resize(std::size_t(end - out.data()));
    }
}

void appendUtf8(std::string& out, std::string_view latin1)
{
    const auto high = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
    for (auto at = latin1.begin(); at != latin1.end();) {
        // ASCII, most of any text held this way, goes over as it is.
        const auto run = std::find_if(at, latin1.end(), high);
        out.append(at, run);
        if (run == latin1.end())
            break;
        const auto c = static_cast<unsigned char>(*run);
        out.push_back(char(0xC0 | (c >> 6)));
        out.push_back(char(0x80 | (c & 0x3F)));
        at = run + 1;
    }
}
