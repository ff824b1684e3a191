#pragma once

#include <QtGlobal>

namespace toolkit {

// Columns [from, to) of one line, in UTF-16 units.
struct LineSpan
{
    qsizetype line = 0;
    qsizetype from = 0;
    qsizetype to = 0;

    bool operator==(const LineSpan&) const = default;
};

} // namespace toolkit
