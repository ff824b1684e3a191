// twinly-decode ROW FILE: prints, as UTF-8, the text a pane shows after reading FILE with its
// encoding popup at ROW (0 UTF-8, 1 ShiftJIS, 2 Japanese MacOS, 3 Japanese EUC,
// 4 ShiftJIS-X0212).

#include "PlainFile.h"
#include "TextEncoding.h"
#include "ToolOutput.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

constexpr int kTrouble = 2;
constexpr int kRows = 5;
constexpr std::string_view kUsage = "usage: twinly-decode ROW FILE (ROW 0 to 4) | --help\n";

void appendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | c >> 6);
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | c >> 12);
        out += char(0x80 | (c >> 6 & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | c >> 18);
        out += char(0x80 | (c >> 12 & 0x3F));
        out += char(0x80 | (c >> 6 & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

// Writes the decoded text out as UTF-8 in pieces, so a large text needs no second full copy.
void writeUtf8(std::u16string_view text)
{
    constexpr std::size_t kPiece = 1 << 16;
    std::string out;
    out.reserve(kPiece * 3 + 4);
    for (std::size_t i = 0; i < text.size();) {
        const char32_t unit = text[i++];
        // The decoders write well-formed UTF-16: a lead surrogate always has its trail.
        if (unit >= 0xD800 && unit < 0xDC00 && i < text.size())
            appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (text[i++] - 0xDC00));
        else
            appendUtf8(out, unit);
        if (out.size() >= kPiece * 3 || i == text.size()) {
            writeAll(out);
            out.clear();
        }
    }
}

int run(std::string_view rowText, const char* path)
{
    int row = -1;
    const auto [end, problem] = std::from_chars(rowText.begin(), rowText.end(), row);
    if (problem != std::errc() || end != rowText.end() || row < 0 || row >= kRows)
        throw Failure("row '" + std::string(rowText) + "' is not one of 0 to 4");
    std::string error;
    const auto bytes = documents::readWholeFile(path, error);
    if (!bytes)
        throw Failure(error);
    writeUtf8(documents::decode(documents::TE[std::size_t(row)], bytes->view()));
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        if (argc == 3)
            return run(argv[1], argv[2]);
        if (argc == 2
            && (std::string_view(argv[1]) == "--help" || std::string_view(argv[1]) == "-h")) {
            std::fputs(kUsage.data(), stdout);
            return 0;
        }
    } catch (const std::bad_alloc&) {
        std::fputs("twinly-decode: out of memory\n", stderr);
        return kTrouble;
    } catch (const std::exception& failure) {
        // One line, whatever a file name or row holds.
        std::string message = failure.what();
        std::replace_if(
            message.begin(), message.end(), [](char c) { return c == '\n' || c == '\r'; }, '?');
        std::fprintf(stderr, "twinly-decode: %s\n", message.c_str());
        return kTrouble;
    }
    std::fprintf(stderr, "twinly-decode: expected a row and a file; %s", kUsage.data());
    return kTrouble;
}
