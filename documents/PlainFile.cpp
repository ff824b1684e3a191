#include "PlainFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace documents {

namespace {

PathKind kindOf(mode_t mode)
{
    if (S_ISREG(mode))
        return PathKind::File;
    if (S_ISDIR(mode))
        return PathKind::Folder;
    if (S_ISFIFO(mode))
        return PathKind::Fifo;
    if (S_ISSOCK(mode))
        return PathKind::Socket;
    if (S_ISCHR(mode) || S_ISBLK(mode))
        return PathKind::Device;
    return PathKind::Other;
}

std::string quoted(const std::string& path)
{
    std::string text(1, '\'');
    text += path;
    text += '\'';
    return text;
}

std::string cannot(const char* what, const std::string& path, int error)
{
    return std::string("cannot ") + what + " " + quoted(path) + ": " + std::strerror(error);
}

std::string notAFile(const std::string& path, PathKind kind)
{
    return quoted(path) + " is " + describe(kind) + ", not a file";
}

} // namespace

PathKind pathKind(const std::string& path)
{
    struct stat info;
    if (::stat(path.c_str(), &info) != 0)
        return PathKind::Missing;
    return kindOf(info.st_mode);
}

const char* describe(PathKind kind)
{
    switch (kind) {
    case PathKind::Missing:
        return "missing";
    case PathKind::File:
        return "a file";
    case PathKind::Folder:
        return "a folder";
    case PathKind::Fifo:
        return "a FIFO";
    case PathKind::Socket:
        return "a socket";
    case PathKind::Device:
        return "a device";
    case PathKind::Other:
        break;
    }
    return "not a regular file";
}

PlainFile::PlainFile(const std::string& path)
    : path(path)
{
    struct stat info;
    if (::stat(path.c_str(), &info) != 0) {
        failure = errno;
        problem = cannot("open", path, failure);
        return;
    }
    if (!S_ISREG(info.st_mode)) {
        problem = notAFile(path, kindOf(info.st_mode));
        return;
    }
    fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) {
        failure = errno;
        problem = cannot("open", path, failure);
        return;
    }
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        problem = S_ISREG(info.st_mode) ? cannot("read", path, errno)
                                        : notAFile(path, kindOf(info.st_mode));
        ::close(fd);
        fd = -1;
        return;
    }
    size = std::uint64_t(info.st_size);
}

PlainFile::~PlainFile()
{
    if (fd >= 0)
        ::close(fd);
}

std::size_t PlainFile::read(char* into, std::size_t count)
{
    if (fd < 0 || ended)
        return 0;
    const std::uint64_t limit = size > 0 ? size : kUnsizedLimit;
    if (count > limit - taken)
        count = std::size_t(limit - taken);
    for (;;) {
        const ssize_t got = count == 0 ? 0 : ::read(fd, into, count);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0) {
            failure = errno;
            problem = cannot("read", path, failure);
        }
        if (got <= 0) {
            ended = true;
            return 0;
        }
        taken += std::uint64_t(got);
        if (taken == limit)
            ended = true;
        return std::size_t(got);
    }
}

bool PlainFile::grew()
{
    if (fd < 0 || size == 0 || taken < size)
        return false;
    char probe;
    ssize_t got;
    do
        got = ::read(fd, &probe, 1);
    while (got < 0 && errno == EINTR);
    return got > 0;
}

std::optional<FileBytes> readWholeFile(
    const std::string& path, std::string& error, std::uint64_t maxSize)
{
    PlainFile file(path);
    if (!file.isOpen()) {
        error = file.error();
        return std::nullopt;
    }
    if (file.sizeAtOpen() > maxSize) {
        error = quoted(path) + " has more than " + std::to_string(maxSize) + " bytes";
        return std::nullopt;
    }
    FileBytes bytes;
    try {
        // Files without a size grow the buffer as they go.
        std::size_t capacity = std::size_t(file.sizeAtOpen()) + 1;
        bytes.data = std::make_unique_for_overwrite<char[]>(capacity);
        while (!file.atEnd()) {
            if (bytes.size == capacity) {
                const std::size_t larger = capacity * 2;
                auto grown = std::make_unique_for_overwrite<char[]>(larger);
                std::memcpy(grown.get(), bytes.data.get(), bytes.size);
                bytes.data = std::move(grown);
                capacity = larger;
            }
            bytes.size += file.read(bytes.data.get() + bytes.size, capacity - bytes.size);
        }
    } catch (const std::bad_alloc&) {
        error = quoted(path) + " is too large to read whole";
        return std::nullopt;
    }
    if (!file.error().empty()) {
        error = file.error();
        return std::nullopt;
    }
    if (bytes.size > maxSize) {
        error = quoted(path) + " has more than " + std::to_string(maxSize) + " bytes";
        return std::nullopt;
    }
    if (file.shrank()) {
        error = quoted(path) + " shrank while being read";
        return std::nullopt;
    }
    if (file.grew()) {
        // Chasing a file that is being written to could go on for ever.
        error = quoted(path) + " grew while being read";
        return std::nullopt;
    }
    return bytes;
}

} // namespace documents
