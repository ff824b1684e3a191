#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace SeqDiff {

// Cuts a text into the lines the comparison sees. CR LF, CR and LF each end a line, so n
// endings give n + 1 lines: a trailing newline brings a last, empty line, and an empty text is
// one empty line, as an empty pane shows it. U+2028 and U+2029 stay inside their line, as they
// do in a pane. The views point into `text`.
std::vector<std::u16string_view> splitLines(std::u16string_view text);
// The same for UTF-8 bytes.
std::vector<std::string_view> splitLines(std::string_view text);

// LF characters in a text, sixteen bytes at a time where the processor allows: one fewer
// than its lines when they end in LF, taken to size arrays once.
std::size_t countLineFeeds(std::string_view text);
std::size_t countLineFeeds(std::u16string_view text);

// The lines of a UTF-8 text one at a time, cut as splitLines cuts them, from the line that
// starts at `from`: a long text of short lines needs no array of them.
class LineCursor
{
public:
    explicit LineCursor(std::string_view text, std::size_t from = 0)
        : text(text)
        , pos(from)
    {
    }

    // The next line; false after the last one.
    bool next(std::string_view& line);
    // Steps past the next line if it is `line`; false, without moving, when it is not.
    bool skip(std::string_view line);
    // Where the line after the last one returned starts.
    std::size_t offset() const { return pos; }

private:
    std::string_view text;
    std::size_t pos;
    bool done = false;
};

} // namespace SeqDiff
