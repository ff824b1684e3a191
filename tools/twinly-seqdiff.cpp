// twinly-seqdiff LEFT RIGHT: the comparison engine as a command. Reads both files as a pane
// with the encoding UTF-8 gets them, splits them as the comparison does, and prints one line
// per difference record: delStart delEnd addStart addEnd.

#include "PlainFile.h"
#include "SeqDiff.h"
#include "ToolOutput.h"
#include "Utf8.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kTrouble = 2;
constexpr std::string_view kUsage = "usage: twinly-seqdiff LEFT RIGHT | --self-test | --help\n";

// A file's bytes and the text the comparison sees in them.
struct Side
{
    documents::FileBytes bytes;
    std::string repaired;
    std::string_view text;
};

void load(const char* path, Side& side)
{
    std::string error;
    auto bytes = documents::readWholeFile(path, error);
    if (!bytes)
        throw Failure(error);
    side.bytes = std::move(*bytes);
    side.text = sanitizeUtf8(side.bytes.view(), side.repaired);
}

void appendNumber(std::string& out, std::int64_t value)
{
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    out.append(digits.data(), end);
}

int compare(const char* leftPath, const char* rightPath)
{
    std::array<Side, 2> sides;
    load(leftPath, sides[0]);
    load(rightPath, sides[1]);
    // Read line by line, not cut into an array: a file of millions of short lines would need
    // more for the array than for its text.
    const std::vector<SeqDiff::Difference> diffs
        = SeqDiff::compareTexts(sides[0].text, sides[1].text);

    std::string out;
    out.reserve(diffs.size() * 32);
    for (const SeqDiff::Difference& d : diffs) {
        appendNumber(out, d.DeletedStart());
        out += ' ';
        appendNumber(out, d.DeletedEnd());
        out += ' ';
        appendNumber(out, d.AddedStart());
        out += ' ';
        appendNumber(out, d.AddedEnd());
        out += '\n';
    }
    writeAll(out);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view option = argc == 2 ? argv[1] : "";
    try {
        if (argc == 3)
            return compare(argv[1], argv[2]);
        if (option == "--self-test") {
            const bool passed = SeqDiff::SelfTest();
            std::puts(passed ? "SeqDiff: SelfTest passed" : "SeqDiff: SelfTest failed");
            return passed ? 0 : 1;
        }
        if (option == "--help" || option == "-h") {
            std::fputs(kUsage.data(), stdout);
            return 0;
        }
    } catch (const Failure& failure) {
        std::fprintf(stderr, "twinly-seqdiff: %s\n", failure.what());
        return kTrouble;
    } catch (const std::bad_alloc&) {
        std::fputs("twinly-seqdiff: out of memory\n", stderr);
        return kTrouble;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "twinly-seqdiff: %s\n", error.what());
        return kTrouble;
    }
    if (argc == 2 && option.starts_with('-'))
        std::fprintf(stderr, "twinly-seqdiff: unknown option '%s'; %s", argv[1], kUsage.data());
    else
        std::fprintf(
            stderr, "twinly-seqdiff: expected two files, got %d; %s", argc - 1, kUsage.data());
    return kTrouble;
}
