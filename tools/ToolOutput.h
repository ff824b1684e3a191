#pragma once
// What the command-line tools share: the one kind of problem they report, and writing stdout.

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>

// A problem worth one line on stderr.
class Failure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

// Writes all of `text` to stdout in as few calls as the system allows.
inline void writeAll(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            throw Failure(std::string("cannot write the output: ") + std::strerror(errno));
        text.remove_prefix(std::size_t(written));
    }
}
