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
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kTrouble = 2;
constexpr std::string_view kUsage = "usage: twinly-seqdiff LEFT RIGHT | --self-test | --help\n";

// A file's bytes and the text the comparison sees in them.
struct Side
{
    Side() = default;
    Side(const Side&) = delete;
    Side& operator=(const Side&) = delete;
    ~Side()
    {
        if (mapped != nullptr)
            ::munmap(mapped, mappedSize);
    }

    void* mapped = nullptr;
    std::size_t mappedSize = 0;
    documents::FileBytes bytes;
    std::string repaired;
    std::string_view text;
};

// A mapped file cut short by another program faults when its lost pages are read: say so and
// stop rather than die of the signal.
extern "C" void onLostPage(int)
{
    constexpr std::string_view message
        = "twinly-seqdiff: a file was cut short while being compared\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, message.data(), message.size());
    ::_exit(kTrouble);
}

// Maps a regular file with a size whole, its pages read in at once: cheaper than copying a
// large file into memory of our own. Null when that is not possible; the caller reads it then.
void* mapWhole(const char* path, std::size_t& size)
{
    documents::PlainFile file(path);
    if (!file.isOpen() || file.sizeAtOpen() == 0 || file.sizeAtOpen() > SIZE_MAX)
        return nullptr;
    size = std::size_t(file.sizeAtOpen());
    struct sigaction action = {};
    action.sa_handler = onLostPage;
    if (::sigaction(SIGBUS, &action, nullptr) != 0)
        return nullptr;
    void* at = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file.descriptor(), 0);
    if (at == MAP_FAILED)
        return nullptr;
    struct stat info;
    if (::fstat(file.descriptor(), &info) != 0 || std::uint64_t(info.st_size) != size) {
        // Changed since it was opened: the reading below tells what happened.
        ::munmap(at, size);
        return nullptr;
    }
    return at;
}

void load(const char* path, Side& side)
{
    side.mapped = mapWhole(path, side.mappedSize);
    std::string_view raw;
    if (side.mapped != nullptr) {
        raw = std::string_view(static_cast<const char*>(side.mapped), side.mappedSize);
    } else {
        std::string error;
        auto bytes = documents::readWholeFile(path, error);
        if (!bytes)
            throw Failure(error);
        side.bytes = std::move(*bytes);
        raw = side.bytes.view();
    }
    side.text = sanitizeUtf8(raw, side.repaired);
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
