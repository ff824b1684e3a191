#pragma once

#include "LineSource.h"

#include <QString>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace toolkit {

// A pane's lines as they stood at one revision. It never changes, so a comparison may read it on
// another thread while the user goes on typing.
class TextSnapshot final : public SeqDiff::LineSource
{
public:
    TextSnapshot(QString text, std::vector<std::u16string_view> lines, quint64 revision);

    std::size_t lineCount() const override { return lines.size(); }
    std::u16string_view line(std::size_t i) const override { return lines[i]; }
    std::uint64_t lineHash(std::size_t i) const override { return hashes[i]; }
    quint64 revision() const { return rev; }

private:
    QString text; // what the views point into
    std::vector<std::u16string_view> lines;
    std::vector<std::uint64_t> hashes;
    quint64 rev;
};

} // namespace toolkit
