#pragma once

#include "LineSource.h"
#include "LineStore.h"

#include <cstdint>
#include <string_view>

namespace toolkit {

// A pane's lines as they stood at one revision. It never changes, so a comparison may read it on
// another thread while the user goes on typing. It shares the pane's blocks: no text is copied.
class TextSnapshot final : public SeqDiff::LineSource
{
public:
    TextSnapshot(LineStore lines, quint64 revision)
        : lines(std::move(lines))
        , rev(revision)
    {
    }

    std::size_t lineCount() const override { return std::size_t(lines.lineCount()); }
    std::u16string_view line(std::size_t i) const override { return lines.line(qsizetype(i)); }
    std::uint64_t lineHash(std::size_t i) const override { return lines.lineHash(qsizetype(i)); }
    SeqDiff::LineText lineText(std::size_t i) const override
    {
        return lines.lineText(qsizetype(i));
    }
    quint64 revision() const { return rev; }

private:
    const LineStore lines;
    const quint64 rev;
};

} // namespace toolkit
