#include "TextSnapshot.h"

namespace toolkit {

TextSnapshot::TextSnapshot(QString text, std::vector<std::u16string_view> lines, quint64 revision)
    : text(std::move(text))
    , lines(std::move(lines))
    , rev(revision)
{
    hashes.reserve(this->lines.size());
    for (std::u16string_view l : this->lines)
        hashes.push_back(SeqDiff::lineHash(l));
}

} // namespace toolkit
