#include "InlineSpans.h"

#include "SeqDiff.h"

#include <QChar>

namespace inlinespans {

namespace {

enum class Kind { Word, Blank, Single };

Kind kindOf(char32_t c)
{
    if (QChar::isSpace(c))
        return Kind::Blank;
    const QChar::Script s = QChar::script(c);
    if (s == QChar::Script_Han || s == QChar::Script_Hiragana || s == QChar::Script_Katakana)
        return Kind::Single;
    if (QChar::isLetterOrNumber(c) || c == U'_')
        return Kind::Word;
    return Kind::Single;
}

// One code point at `at`; a lone surrogate counts as one unit.
char32_t codePointAt(std::u16string_view s, std::size_t at, std::size_t& units)
{
    const char16_t c = s[at];
    if (QChar::isHighSurrogate(c) && at + 1 < s.size() && QChar::isLowSurrogate(s[at + 1])) {
        units = 2;
        return QChar::surrogateToUcs4(c, s[at + 1]);
    }
    units = 1;
    return c;
}

} // namespace

std::vector<std::u16string_view> tokens(std::u16string_view line)
{
    std::vector<std::u16string_view> out;
    std::size_t start = 0;
    Kind kind = Kind::Single;
    for (std::size_t at = 0; at < line.size();) {
        std::size_t units = 1;
        const char32_t c = codePointAt(line, at, units);
        const Kind k = kindOf(c);
        const bool joins = at > start
            && (QChar::category(c) == QChar::Mark_NonSpacing
                || QChar::category(c) == QChar::Mark_SpacingCombining
                || QChar::category(c) == QChar::Mark_Enclosing || (k == kind && k != Kind::Single));
        if (!joins) {
            if (at > start)
                out.push_back(line.substr(start, at - start));
            start = at;
            kind = k;
        }
        at += units;
    }
    if (start < line.size())
        out.push_back(line.substr(start));
    return out;
}

Changed changed(std::u16string_view a, std::u16string_view b)
{
    const std::array<std::u16string_view, 2> line{a, b};
    Changed out;
    if (qsizetype(a.size()) > kLongest || qsizetype(b.size()) > kLongest || a.empty()
        || b.empty()) {
        for (int s = 0; s < 2; ++s) {
            if (!line[s].empty())
                out[s].push_back({0, qsizetype(line[s].size())});
        }
        return out;
    }
    const std::array<std::vector<std::u16string_view>, 2> words{tokens(a), tokens(b)};
    const auto column = [&](int s, std::int64_t token) {
        return token < std::int64_t(words[s].size())
            ? qsizetype(words[s][std::size_t(token)].data() - line[s].data())
            : qsizetype(line[s].size());
    };
    const auto add = [&](int s, std::int64_t first, std::int64_t last) {
        if (last < 0)
            return;
        const Columns c{column(s, first), column(s, last + 1)};
        if (!out[s].empty() && out[s].back().to == c.from)
            out[s].back().to = c.to;
        else
            out[s].push_back(c);
    };
    for (const SeqDiff::Difference& d : SeqDiff::FindDifferences(words[0], words[1])) {
        add(0, d.DeletedStart(), d.DeletedEnd());
        add(1, d.AddedStart(), d.AddedEnd());
    }
    return out;
}

} // namespace inlinespans
