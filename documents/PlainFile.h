#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace documents {

// What a path names. Links are followed; a dangling link or a loop of links is missing.
enum class PathKind { Missing, File, Folder, Fifo, Socket, Device, Other };

PathKind pathKind(const std::string& path);
// "a folder", "a FIFO" …, for messages.
const char* describe(PathKind kind);

// A regular file opened for reading only, taken in pieces. It never blocks: other kinds are
// refused before opening (opening a device can have effects of its own) and again on the open
// file, in case the path changed in between.
class PlainFile
{
public:
    explicit PlainFile(const std::string& path);
    ~PlainFile();
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;

    bool isOpen() const { return fd >= 0; }
    // The open file's descriptor, -1 when it is not open; it stays owned by this object.
    int descriptor() const { return fd; }
    // One line telling why the file could not be opened or read.
    const std::string& error() const { return problem; }
    // The system's error number behind error(); 0 when the path names no regular file.
    int errorNumber() const { return failure; }
    // The size when opened; files of /proc report 0 and still have text.
    std::uint64_t sizeAtOpen() const { return size; }
    // Reads up to `count` bytes into `into`; 0 at the end or on an error. A file is taken up to
    // the size it had when opened, so one that is being written to still ends; one that reports
    // no size ends at kUnsizedLimit.
    std::size_t read(char* into, std::size_t count);
    bool atEnd() const { return ended; }
    // True when the file had more than its size at opening: it was written to meanwhile.
    bool grew();
    // True when the file ended before the size it had at opening: it was cut meanwhile.
    bool shrank() const { return ended && problem.empty() && size > 0 && taken < size; }

    static constexpr std::uint64_t kUnsizedLimit = std::uint64_t(64) << 20;

private:
    std::string path;
    int fd = -1;
    std::uint64_t size = 0;
    std::uint64_t taken = 0;
    bool ended = false;
    std::string problem;
    int failure = 0;
};

// A whole file's bytes.
struct FileBytes
{
    std::unique_ptr<char[]> data;
    std::size_t size = 0;
    std::string_view view() const { return {data.get(), size}; }
};

// Reads a regular file whole; nothing and a one-line reason in `error` when it can't, when the
// file grew or shrank while it was read, or when it has more than `maxSize` bytes.
std::optional<FileBytes> readWholeFile(const std::string& path, std::string& error,
    std::uint64_t maxSize = std::numeric_limits<std::uint64_t>::max());

} // namespace documents
