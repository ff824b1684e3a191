#pragma once

#include "LineSource.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

namespace toolkit {

// Whole lines of a text, each with its break, and each line's hash. Never changed once made, so
// stores and their snapshots share them. A block whose characters are all below U+0100 may hold
// them one byte each (`narrow`): half the memory for most files.
struct LineBlock
{
    QString buffer; // often the whole text a store was made from, shared by many blocks
    QByteArray latin1; // likewise, for a narrow block
    bool narrow = false;
    qsizetype from = 0;
    qsizetype size = 0;
    std::vector<std::uint32_t> starts; // of each line, counted from `from`
    std::vector<std::uint64_t> hashes;
    std::uint32_t longest = 0; // units of its longest line, break included
    // A line edited in place since its hash was taken: its hash is taken when asked for, by
    // whoever reads it, so that typing in a very long line does not hash it on every key.
    std::size_t unhashed = std::size_t(-1);

    // The block's UTF-16 units; a narrow block is widened the first time it is asked, for the
    // few blocks a pane shows.
    const char16_t* data() const
    {
        return narrow ? widened() : reinterpret_cast<const char16_t*>(buffer.constData()) + from;
    }
    const char* narrowData() const { return latin1.constData() + from; }
    char16_t unit(std::size_t i) const
    {
        return narrow ? char16_t(static_cast<unsigned char>(narrowData()[i])) : data()[i];
    }
    std::size_t lineCount() const { return starts.size(); }
    std::size_t lineEnd(std::size_t k) const // past the break
    {
        return k + 1 < starts.size() ? starts[k + 1] : std::size_t(size);
    }
    std::size_t textEnd(std::size_t k) const; // where the break begins
    std::u16string_view line(std::size_t k) const; // without its break
    SeqDiff::LineText lineText(std::size_t k) const;
    std::uint64_t hashOf(std::size_t k) const;

private:
    const char16_t* widened() const;
    mutable std::once_flag widening;
    mutable QString wide;
};

// A plain text as lines: CR, LF and CR LF end a line, and no other character does. Positions are
// UTF-16 offsets from the start of the text. Copies cost one pointer per block and share the
// blocks, which an edit replaces rather than changes.
class LineStore
{
public:
    LineStore()
        : LineStore(QString())
    {
    }
    // Safe on any thread. Blocks keep views of `text` rather than a copy.
    explicit LineStore(QString text);
    // The lines of text's first `to` units, or up to `to` once more of the same text has come
    // (a text taken in by slices); blocks keep views of `text` rather than a copy.
    LineStore(const QString& text, qsizetype to);
    void extendTo(const QString& text, qsizetype to);
    // A text whose characters are all below U+0100, one byte each; blocks keep views of it.
    static LineStore fromLatin1(QByteArray text);

    qsizetype size() const { return firstChar.back(); }
    qsizetype lineCount() const { return qsizetype(firstLine.back()); }
    std::u16string_view line(qsizetype i) const;
    std::uint64_t lineHash(qsizetype i) const;
    SeqDiff::LineText lineText(qsizetype i) const;
    qsizetype lineStart(qsizetype i) const; // size() for i == lineCount()
    qsizetype lineEnd(qsizetype i) const; // where its break begins
    // A line with the most characters, or nearly: after edits within a line it may be one a
    // little shorter. Costs a look at each block.
    qsizetype longestLine() const;
    // The line that holds `position`; a position on a break belongs to the line the break ends.
    qsizetype lineAt(qsizetype position) const;
    char16_t at(qsizetype position) const;
    QString text(qsizetype from, qsizetype to) const;
    QString text() const { return text(0, size()); }
    void appendText(QString& out, qsizetype from, qsizetype to) const;
    // The same characters, line breaks included, read a piece at a time rather than copied whole.
    bool sameText(const LineStore& other) const;

    template <class F> void forEachLineStart(F f) const
    {
        for (std::size_t b = 0; b < blocks.size(); ++b) {
            for (const std::uint32_t at : blocks[b]->starts)
                f(firstChar[b] + qsizetype(at));
        }
    }

    // Calls f on the text a block at a time, with a std::u16string_view or, for a narrow block,
    // a std::string_view of Latin-1. A block holds whole lines, so no surrogate pair is cut.
    template <class F> void forEachPiece(F f) const
    {
        for (const auto& b : blocks) {
            if (b->narrow)
                f(std::string_view(b->narrowData(), std::size_t(b->size)));
            else
                f(std::u16string_view(b->data(), std::size_t(b->size)));
        }
    }

    // Replaces [from, to) by `with`. Only the lines the change reaches get new blocks and hashes.
    void replace(qsizetype from, qsizetype to, QStringView with);

private:
    struct Place
    {
        std::size_t block;
        std::size_t line; // within the block
    };
    Place placeOfLine(qsizetype i) const;
    bool replaceInPlace(qsizetype from, qsizetype to, QStringView with);
    void reindex();

    std::vector<std::shared_ptr<const LineBlock>> blocks;
    std::vector<qsizetype> firstLine; // per block, and the total at the end
    std::vector<qsizetype> firstChar;
};

} // namespace toolkit
