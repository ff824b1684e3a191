#include "LineStore.h"

#include "LineSource.h"

#include <algorithm>
#include <cassert>

namespace toolkit {

namespace {

// A block grows to about this many UTF-16 units, a line longer than that making one of its own:
// small enough that an edit copies little, large enough that a 200 MB text has few blocks.
constexpr qsizetype kBlockSize = 16 * 1024;

// Calls line(start, end) for each line of d[from, to), `end` past its break. The piece after the
// last break is a line only when `last` says the text ends there.
template <class C, class F>
void forEachLine(const C* d, qsizetype from, qsizetype to, bool last, F line)
{
    qsizetype start = from;
    for (qsizetype i = from; i < to; ++i) {
        const char16_t c = d[i];
        if (c > u'\r' || (c != u'\r' && c != u'\n'))
            continue;
        if (c == u'\r' && i + 1 < to && d[i + 1] == u'\n')
            ++i;
        line(start, i + 1);
        start = i + 1;
    }
    if (last)
        line(start, to);
    else
        assert(start == to);
}

const unsigned char* bytesOf(const QByteArray& text)
{
    return reinterpret_cast<const unsigned char*>(text.constData());
}

// Appends units [from, to) of a block of either width.
void appendUnits(QString& out, const LineBlock& b, qsizetype from, qsizetype to)
{
    if (b.narrow)
        out.append(QLatin1StringView(b.narrowData() + from, to - from));
    else
        out.append(reinterpret_cast<const QChar*>(b.data() + from), to - from);
}

// Cuts lines into blocks that share one buffer, UTF-16 or Latin-1.
class BlockMaker
{
public:
    BlockMaker(const QString& buffer, std::vector<std::shared_ptr<const LineBlock>>& out)
        : buffer(&buffer)
        , out(out)
    {
    }
    BlockMaker(const QByteArray& latin1, std::vector<std::shared_ptr<const LineBlock>>& out)
        : latin1(&latin1)
        , out(out)
    {
    }
    ~BlockMaker() { flush(); }
    void add(qsizetype start, qsizetype end, const std::uint64_t* keptHash = nullptr)
    {
        if (!block) {
            block = std::make_shared<LineBlock>();
            if (buffer)
                block->buffer = *buffer;
            else
                block->latin1 = *latin1;
            block->narrow = !buffer;
            block->from = start;
        }
        block->starts.push_back(std::uint32_t(start - block->from));
        block->size = end - block->from;
        block->longest = std::max(block->longest, std::uint32_t(end - start));
        block->hashes.push_back(keptHash ? *keptHash : block->hashOf(block->lineCount() - 1));
        if (block->size >= kBlockSize)
            flush();
    }

private:
    void flush()
    {
        if (block) {
            // Nine million lines leave tens of megabytes in the vectors' spare room.
            block->starts.shrink_to_fit();
            block->hashes.shrink_to_fit();
            out.push_back(std::move(block));
        }
        block.reset();
    }
    const QString* buffer = nullptr;
    const QByteArray* latin1 = nullptr;
    std::vector<std::shared_ptr<const LineBlock>>& out;
    std::shared_ptr<LineBlock> block;
};

} // namespace

const char16_t* LineBlock::widened() const
{
    std::call_once(widening, [this] { wide = QString::fromLatin1(narrowData(), size); });
    return reinterpret_cast<const char16_t*>(wide.constData());
}

namespace {

// Where the line [start, end) of d ends without its break.
template <class C> std::size_t withoutBreak(const C* d, std::size_t start, std::size_t end)
{
    if (end > start && d[end - 1] == '\n')
        --end;
    if (end > start && d[end - 1] == '\r')
        --end;
    return end;
}

} // namespace

std::size_t LineBlock::textEnd(std::size_t k) const
{
    return narrow ? withoutBreak(narrowData(), starts[k], lineEnd(k))
                  : withoutBreak(data(), starts[k], lineEnd(k));
}

std::u16string_view LineBlock::line(std::size_t k) const
{
    return {data() + starts[k], textEnd(k) - starts[k]};
}

SeqDiff::LineText LineBlock::lineText(std::size_t k) const
{
    const std::size_t length = textEnd(k) - starts[k];
    if (narrow)
        return {narrowData() + starts[k], length, true};
    return {data() + starts[k], length, false};
}

// The hash is that of the UTF-16 form, whatever the width the block holds.
std::uint64_t LineBlock::hashOf(std::size_t k) const
{
    if (!narrow)
        return SeqDiff::lineHash(line(k));
    thread_local std::u16string widened;
    const std::size_t length = textEnd(k) - starts[k];
    widened.resize(length);
    const char* d = narrowData() + starts[k];
    for (std::size_t i = 0; i < length; ++i)
        widened[i] = char16_t(static_cast<unsigned char>(d[i]));
    return SeqDiff::lineHash(widened);
}

LineStore::LineStore(QString text)
    : LineStore(text, text.size())
{
}

LineStore::LineStore(const QString& text, qsizetype to)
{
    {
        BlockMaker maker(text, blocks);
        const auto* d = reinterpret_cast<const char16_t*>(text.constData());
        forEachLine(d, 0, to, true, [&](qsizetype s, qsizetype e) { maker.add(s, e); });
    }
    reindex();
}

LineStore LineStore::fromLatin1(QByteArray text)
{
    LineStore store;
    store.blocks.clear();
    {
        BlockMaker maker(text, store.blocks);
        forEachLine(bytesOf(text), 0, text.size(), true,
            [&](qsizetype s, qsizetype e) { maker.add(s, e); });
    }
    store.reindex();
    return store;
}

void LineStore::extendTo(const QString& text, qsizetype to)
{
    const LineBlock& last = *blocks.back();
    if (last.narrow || last.buffer.constData() != text.constData()
        || last.from + last.size != size()) {
        replace(size(), size(), QStringView(text).sliced(size(), to - size()));
        return;
    }
    // The last block ends with the text's last line so far, whose break may be still to come.
    const qsizetype from = last.from;
    blocks.pop_back();
    {
        BlockMaker maker(text, blocks);
        const auto* d = reinterpret_cast<const char16_t*>(text.constData());
        forEachLine(d, from, to, true, [&](qsizetype s, qsizetype e) { maker.add(s, e); });
    }
    reindex();
}

void LineStore::reindex()
{
    firstLine.resize(blocks.size() + 1);
    firstChar.resize(blocks.size() + 1);
    qsizetype lines = 0;
    qsizetype chars = 0;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        firstLine[b] = lines;
        firstChar[b] = chars;
        lines += qsizetype(blocks[b]->lineCount());
        chars += blocks[b]->size;
    }
    firstLine.back() = lines;
    firstChar.back() = chars;
}

LineStore::Place LineStore::placeOfLine(qsizetype i) const
{
    const auto it = std::upper_bound(firstLine.begin(), firstLine.end() - 1, i);
    const std::size_t b = std::size_t(it - firstLine.begin()) - 1;
    return {b, std::size_t(i - firstLine[b])};
}

std::u16string_view LineStore::line(qsizetype i) const
{
    const Place p = placeOfLine(i);
    return blocks[p.block]->line(p.line);
}

std::uint64_t LineStore::lineHash(qsizetype i) const
{
    const Place p = placeOfLine(i);
    const LineBlock& b = *blocks[p.block];
    return p.line == b.unhashed ? b.hashOf(p.line) : b.hashes[p.line];
}

SeqDiff::LineText LineStore::lineText(qsizetype i) const
{
    const Place p = placeOfLine(i);
    return blocks[p.block]->lineText(p.line);
}

qsizetype LineStore::lineStart(qsizetype i) const
{
    if (i >= lineCount())
        return size();
    const Place p = placeOfLine(std::max<qsizetype>(i, 0));
    return firstChar[p.block] + qsizetype(blocks[p.block]->starts[p.line]);
}

qsizetype LineStore::lineEnd(qsizetype i) const
{
    const Place p = placeOfLine(i);
    return firstChar[p.block] + qsizetype(blocks[p.block]->textEnd(p.line));
}

qsizetype LineStore::longestLine() const
{
    std::size_t best = 0;
    for (std::size_t b = 1; b < blocks.size(); ++b)
        if (blocks[b]->longest > blocks[best]->longest)
            best = b;
    // A block's figure may be above its lines' since an edit in place shortened one.
    const LineBlock& block = *blocks[best];
    std::size_t line = 0;
    for (std::size_t k = 1; k < block.lineCount(); ++k)
        if (block.lineEnd(k) - block.starts[k] > block.lineEnd(line) - block.starts[line])
            line = k;
    return firstLine[best] + qsizetype(line);
}

qsizetype LineStore::lineAt(qsizetype position) const
{
    position = std::clamp<qsizetype>(position, 0, size());
    auto it = std::upper_bound(firstChar.begin(), firstChar.end() - 1, position);
    std::size_t b = std::size_t(it - firstChar.begin()) - 1;
    const LineBlock& block = *blocks[b];
    const auto within = std::uint32_t(position - firstChar[b]);
    const auto k = std::upper_bound(block.starts.begin(), block.starts.end(), within);
    return firstLine[b] + qsizetype(k - block.starts.begin()) - 1;
}

char16_t LineStore::at(qsizetype position) const
{
    auto it = std::upper_bound(firstChar.begin(), firstChar.end() - 1, position);
    const std::size_t b = std::size_t(it - firstChar.begin()) - 1;
    return blocks[b]->unit(std::size_t(position - firstChar[b]));
}

QString LineStore::text(qsizetype from, qsizetype to) const
{
    QString out;
    appendText(out, from, to);
    return out;
}

bool LineStore::sameText(const LineStore& other) const
{
    if (size() != other.size())
        return false;
    constexpr qsizetype kPiece = qsizetype(1) << 16;
    QString mine;
    QString theirs;
    for (qsizetype at = 0; at < size(); at += kPiece) {
        mine.clear();
        theirs.clear();
        appendText(mine, at, at + kPiece);
        other.appendText(theirs, at, at + kPiece);
        if (mine != theirs)
            return false;
    }
    return true;
}

void LineStore::appendText(QString& out, qsizetype from, qsizetype to) const
{
    from = std::clamp<qsizetype>(from, 0, size());
    to = std::clamp<qsizetype>(to, from, size());
    out.reserve(out.size() + to - from);
    auto it = std::upper_bound(firstChar.begin(), firstChar.end() - 1, from);
    for (std::size_t b = std::size_t(it - firstChar.begin()) - 1;
         b < blocks.size() && firstChar[b] < to; ++b) {
        const qsizetype s = std::max(from, firstChar[b]) - firstChar[b];
        const qsizetype e = std::min(to, firstChar[b + 1]) - firstChar[b];
        appendUnits(out, *blocks[b], s, e);
    }
}

// The lines from the one before `from` to the one holding `to` are cut again, so that a CR and
// an LF that meet or part make the right breaks. Lines before and after them in the same blocks
// keep their hashes.
void LineStore::replace(qsizetype from, qsizetype to, QStringView with)
{
    from = std::clamp<qsizetype>(from, 0, size());
    to = std::clamp<qsizetype>(to, from, size());
    if (replaceInPlace(from, to, with))
        return;
    const qsizetype a = std::max<qsizetype>(lineAt(from) - 1, 0);
    const qsizetype z = lineAt(to);
    const Place pa = placeOfLine(a);
    const Place pz = placeOfLine(z);
    const LineBlock& first = *blocks[pa.block];
    const LineBlock& last = *blocks[pz.block];
    const qsizetype regionStart = lineStart(a);
    const qsizetype regionEnd = firstChar[pz.block] + qsizetype(last.lineEnd(pz.line));
    const qsizetype head = first.starts[pa.line];
    const qsizetype tail = last.size - qsizetype(last.lineEnd(pz.line));

    QString merged;
    merged.reserve(head + (from - regionStart) + with.size() + (regionEnd - to) + tail);
    appendUnits(merged, first, 0, head);
    appendText(merged, regionStart, from);
    merged.append(with);
    appendText(merged, to, regionEnd);
    const qsizetype regionNewEnd = merged.size();
    appendUnits(merged, last, qsizetype(last.lineEnd(pz.line)), last.size);

    std::vector<std::shared_ptr<const LineBlock>> made;
    {
        BlockMaker maker(merged, made);
        const auto kept = [](const LineBlock& b, std::size_t k) {
            return k == b.unhashed ? nullptr : &b.hashes[k];
        };
        for (std::size_t k = 0; k < pa.line; ++k)
            maker.add(first.starts[k], qsizetype(first.lineEnd(k)), kept(first, k));
        const bool atEnd = pz.block + 1 == blocks.size() && pz.line + 1 == last.lineCount();
        const auto* d = reinterpret_cast<const char16_t*>(merged.constData());
        forEachLine(
            d, head, regionNewEnd, atEnd, [&](qsizetype s, qsizetype e) { maker.add(s, e); });
        const qsizetype shift = regionNewEnd - qsizetype(last.lineEnd(pz.line));
        for (std::size_t k = pz.line + 1; k < last.lineCount(); ++k)
            maker.add(last.starts[k] + shift, qsizetype(last.lineEnd(k)) + shift, kept(last, k));
    }
    blocks.erase(blocks.begin() + qsizetype(pa.block), blocks.begin() + qsizetype(pz.block) + 1);
    blocks.insert(blocks.begin() + qsizetype(pa.block), made.begin(), made.end());
    reindex();
}

// An edit within one line's characters, in a block that nothing else holds (no snapshot, no
// other block on its buffer), is made in that block: no copy of a long line on every key.
bool LineStore::replaceInPlace(qsizetype from, qsizetype to, QStringView with)
{
    const qsizetype line = lineAt(from);
    if (to > lineEnd(line) || with.contains(u'\r') || with.contains(u'\n'))
        return false;
    const Place p = placeOfLine(line);
    const std::shared_ptr<const LineBlock>& shared = blocks[p.block];
    if (shared.use_count() != 1 || shared->narrow || !shared->buffer.isDetached())
        return false;
    // Made as a LineBlock and held by this store alone.
    auto* b = const_cast<LineBlock*>(shared.get());
    const qsizetype delta = with.size() - (to - from);
    b->buffer.replace(b->from + (from - firstChar[p.block]), to - from, with.toString());
    b->size += delta;
    for (std::size_t k = p.line + 1; k < b->lineCount(); ++k)
        b->starts[k] = std::uint32_t(qsizetype(b->starts[k]) + delta);
    b->longest = std::max(b->longest, std::uint32_t(b->lineEnd(p.line) - b->starts[p.line]));
    if (b->unhashed != p.line && b->unhashed < b->lineCount())
        b->hashes[b->unhashed] = SeqDiff::lineHash(b->line(b->unhashed));
    b->unhashed = p.line;
    for (std::size_t k = p.block + 1; k < firstChar.size(); ++k)
        firstChar[k] += delta;
    return true;
}

} // namespace toolkit
