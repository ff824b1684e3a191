// twinly-seqdiff LEFT RIGHT: the comparison engine as a command. Reads both files as a pane
// with the encoding UTF-8 gets them, splits them as the comparison does, and prints one line
// per difference record: delStart delEnd addStart addEnd.

#include "SeqDiff.h"
#include "Utf8.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kTrouble = 2;
constexpr std::string_view kUsage = "usage: twinly-seqdiff LEFT RIGHT | --self-test | --help\n";

// A problem worth one line on stderr.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

std::string quoted(const char* path)
{
    // Appended piece by piece: "'" + std::string trips a false -Wrestrict in GCC 12.
    std::string text(1, '\'');
    text += path;
    text += '\'';
    return text;
}

std::string cannot(const char* what, const char* path, int error)
{
    return std::string("cannot ") + what + " " + quoted(path) + ": " + std::strerror(error);
}

// What a path that is not a regular file is, for the message.
const char* kindOf(mode_t mode)
{
    if (S_ISDIR(mode))
        return "a folder";
    if (S_ISFIFO(mode))
        return "a FIFO";
    if (S_ISSOCK(mode))
        return "a socket";
    if (S_ISCHR(mode) || S_ISBLK(mode))
        return "a device";
    return "not a regular file";
}

class FileDescriptor
{
public:
    explicit FileDescriptor(int fd)
        : fd(fd)
    {
    }
    ~FileDescriptor()
    {
        if (fd >= 0)
            ::close(fd);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return fd; }

private:
    int fd;
};

// A file's bytes and the text the comparison sees in them.
struct Side
{
    std::unique_ptr<char[]> bytes;
    std::size_t size = 0;
    std::string repaired;
    std::vector<std::string_view> lines;
};

void readWhole(const char* path, Side& side)
{
    // Only regular files: a FIFO, a socket or a device could block or never end. The type is
    // checked before opening (opening some devices has effects of its own) and again on the
    // open file, in case the path changed in between.
    struct stat info;
    if (::stat(path, &info) != 0)
        throw Failure(cannot("open", path, errno));
    if (!S_ISREG(info.st_mode))
        throw Failure(quoted(path) + " is " + kindOf(info.st_mode) + ", not a file");
    const FileDescriptor file(::open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file.get() < 0)
        throw Failure(cannot("open", path, errno));
    if (::fstat(file.get(), &info) != 0)
        throw Failure(cannot("read", path, errno));
    if (!S_ISREG(info.st_mode))
        throw Failure(quoted(path) + " is " + kindOf(info.st_mode) + ", not a file");

    try {
        // One byte more than the file's size, so that one read takes it all and the next one
        // sees its end. Files of /proc report size 0 and still have text: they grow the buffer.
        std::size_t capacity = std::size_t(info.st_size) + 1;
        side.bytes = std::make_unique_for_overwrite<char[]>(capacity);
        for (;;) {
            if (side.size == capacity) {
                // A file that is being written to could be chased for ever: refuse it.
                if (info.st_size > 0)
                    throw Failure(quoted(path) + " grew while being read");
                const std::size_t larger = capacity * 2;
                auto grown = std::make_unique_for_overwrite<char[]>(larger);
                std::memcpy(grown.get(), side.bytes.get(), side.size);
                side.bytes = std::move(grown);
                capacity = larger;
            }
            const ssize_t got
                = ::read(file.get(), side.bytes.get() + side.size, capacity - side.size);
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0)
                throw Failure(cannot("read", path, errno));
            if (got == 0)
                break;
            side.size += std::size_t(got);
        }
    } catch (const std::bad_alloc&) {
        throw Failure(quoted(path) + " is too large to read whole");
    }
}

void load(const char* path, Side& side)
{
    readWhole(path, side);
    const std::string_view text
        = sanitizeUtf8(std::string_view(side.bytes.get(), side.size), side.repaired);
    side.lines = SeqDiff::splitLines(text);
}

void appendNumber(std::string& out, std::int64_t value)
{
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    out.append(digits.data(), end);
}

// Writes all of `text` to stdout in as few calls as the system allows.
bool writeAll(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        text.remove_prefix(std::size_t(written));
    }
    return true;
}

int compare(const char* leftPath, const char* rightPath)
{
    std::array<Side, 2> sides;
    load(leftPath, sides[0]);
    load(rightPath, sides[1]);
    const std::vector<SeqDiff::Difference> diffs
        = SeqDiff::FindDifferences(sides[0].lines, sides[1].lines);

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
    if (!writeAll(out))
        throw Failure(std::string("cannot write the output: ") + std::strerror(errno));
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
