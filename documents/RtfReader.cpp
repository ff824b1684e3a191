#include "RtfReader.h"

#include "CodePages.h"
#include "PlainFile.h"
#include "RtfPictures.h"
#include "RtfWords.h"

#include <QColor>
#include <QCryptographicHash>
#include <QHash>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QUrl>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace documents {

using rtf::lookUpWord;
using rtf::Word;
using rtf::WordInfo;

namespace {

// Limits that keep hostile files cheap; real documents stay far below them.
constexpr std::size_t kMaxDepth = 256; // deeper groups share the state of the last one kept
constexpr qsizetype kMaxPictureBytes = qsizetype(64) << 20;
constexpr qint64 kMaxPicturePixels = qint64(32) << 20;
// What the decoded pictures of one document may take together.
constexpr qint64 kMaxPictureMemory = qint64(256) << 20;
constexpr std::size_t kMaxTableEntries = 4096; // fonts, colours
constexpr qsizetype kMaxNameLength = 1024;
constexpr int kMaxHalfPoints = 2000;
constexpr int kMaxTwips = 31680; // 22 inches, for indents
constexpr double kTwipsPerPixel = 15.0; // 1440 an inch at 96 pixels an inch
constexpr double kMaxShownPixels = kMaxTwips / kTwipsPerPixel;
constexpr int kMaxUnicodeSkip = 16;
constexpr std::size_t kCachedFormats = 32;
// Laying out a line costs more than linear time in its format changes: past this many, the rest
// of the line keeps the format it has. Counted per shown line, not per paragraph: code exports
// break their lines with \line and colour every word.
constexpr int kMaxRunsPerLine = 512;
constexpr int kPlaceholderSize = 32;
// How much input is read between two calls of the progress callback.
constexpr std::size_t kProgressStep = std::size_t(64) << 10;

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

enum class Destination : std::uint8_t { Text, Skip, FontTable, ColourTable, Picture, Attachment };
enum class Vertical : std::uint8_t { Normal, Super, Sub };
enum class Alignment : std::uint8_t { Left, Center, Right, Justify };

struct CharProps
{
    int font = -1; // -1: the document's default font
    int halfPoints = 24;
    int foreground = -1; // colour table index; -1 automatic
    int background = -1;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strike = false;
    bool hidden = false;
    Vertical vertical = Vertical::Normal;
    bool operator==(const CharProps&) const = default;
};

struct ParaProps
{
    Alignment alignment = Alignment::Left;
    int leftIndent = 0; // twips
    int rightIndent = 0;
    int firstIndent = 0;
};

struct State
{
    CharProps chars;
    ParaProps para;
    Destination destination = Destination::Text;
    int unicodeSkip = 1;
    // Set on the group around an attachment: the placeholder character that follows it.
    bool dropPlaceholder = false;
};

struct FontEntry
{
    QString name;
    int charset = -1;
    int codePage = 0;
};

struct PictureData
{
    QByteArray bytes;
    int nibble = -1;
    bool readable = false;
    bool tooLarge = false;
    int width = 0; // pixels
    int height = 0;
    int goalWidth = 0; // twips
    int goalHeight = 0;
    int scaleX = 100;
    int scaleY = 100;
};

struct AttachmentData
{
    QString name;
    bool nameDone = false;
    int width = 0; // twips
    int height = 0;
};

// Reads from the opening brace of the document to its end, whatever the input holds: no
// recursion, each byte looked at a bounded number of times, tables and pictures capped.
class Reader
{
public:
    Reader(std::string_view input, QTextDocument& doc, const QByteArray& packageFolder,
        RichTextRead& result)
        : in(input)
        , doc(doc)
        , cursor(&doc)
        , packageFolder(packageFolder)
        , result(result)
    {
    }

    void read(const ReadProgress& between);

private:
    static bool isBlank(char c)
    {
        return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\0';
    }
    void openGroup();
    // True when this closes the document.
    bool closeGroup();
    void leftGroup(const State& leaving);
    void control();
    void hexEscape();
    void controlWord();
    void apply(const WordInfo& info, bool hasParam, int param);
    void openDestination(Destination destination);
    void binary(int count);

    void byte(char c, bool escaped);
    void flushBytes();
    void deliver(QStringView text);
    void emitText(QStringView text);
    void flushRun();
    void paragraph();
    void cell();

    int codePageOf(const FontEntry& font) const;
    int currentCodePage() const;
    const FontEntry* font(int number) const;
    QColor colour(int index) const;
    QTextCharFormat charFormat(const CharProps& props);
    QTextCharFormat makeCharFormat(const CharProps& props) const;
    static QTextBlockFormat blockFormat(const ParaProps& props);

    void startFont(int number);
    void endFont();
    void endColour();
    void pictureByte(char c);
    void appendPicture(std::string_view bytes);
    void endPicture();
    void endAttachment();
    QString addImage(const QImage& image);
    // The resource of the picture in `bytes`, decoded once per content; empty when it can't
    // be shown.
    QString pictureResource(const QByteArray& bytes, QSize& size);
    QString placeholder();
    void insertImage(const QString& resource, QSizeF shown);

    bool tracking() const { return untracked == 0; }

    std::string_view in;
    std::size_t pos = 0;
    std::size_t contentEnd = 0; // after the last byte that is not blank

    State st;
    std::vector<State> saved;
    std::size_t untracked = 0; // groups open beyond kMaxDepth
    bool starred = false;
    int toSkip = 0; // characters still to skip after \u

    int documentCodePage = CodePages::kWestern;
    int defaultFont = 0;
    std::unordered_map<int, FontEntry> fonts;
    std::vector<QColor> colours;
    CodePages codePages;
    // Documents switch among a few formats; making one anew costs more than the text it holds.
    std::vector<std::pair<CharProps, QTextCharFormat>> formats;

    FontEntry fontEntry;
    int fontNumber = 0;
    bool fontOpen = false;
    int colourParts[3] = {0, 0, 0};
    bool colourGiven = false;
    PictureData picture;
    AttachmentData attachment;
    qint64 memoryLeft = kMaxPictureMemory;
    int images = 0;
    struct Loaded
    {
        QString resource; // empty: could not be shown
        QSize size;
    };
    // By the attachment's name as written, by the file it leads to, and by the content of a
    // picture: a package that names one file under many names, or a document with one picture
    // many times, reads and holds it once.
    QHash<QString, Loaded> attachments;
    QHash<QByteArray, Loaded> byPath;
    QHash<QByteArray, Loaded> byContent;
    QString placeholderResource;
    int runsInLine = 0;

    std::string bytes; // text bytes not decoded yet: a double-byte character can span escapes
    QString run;
    CharProps runProps;
    bool cellPending = false; // a cell ended: a tab unless the row ends first
    bool paragraphHasContent = false;
    ParaProps contentPara;

    QTextDocument& doc;
    QTextCursor cursor;
    QByteArray packageFolder;
    RichTextRead& result;
};

void Reader::read(const ReadProgress& between)
{
    // One edit for the whole document: the layout is not redone after each piece.
    cursor.beginEditBlock();
    contentEnd = in.size();
    while (contentEnd > 0 && isBlank(in[contentEnd - 1]))
        --contentEnd;
    std::size_t nextLook = kProgressStep;
    while (pos < in.size()) {
        if (pos >= nextLook && between) {
            nextLook = pos + kProgressStep;
            if (!between(double(pos) / double(in.size()))) {
                result.stopped = true;
                break;
            }
        }
        const char c = in[pos++];
        switch (c) {
        case '{':
            openGroup();
            break;
        case '}':
            if (closeGroup())
                pos = in.size();
            break;
        case '\\':
            control();
            break;
        case '\r':
        case '\n':
        case '\0':
            break;
        default:
            if (toSkip > 0)
                --toSkip;
            else
                byte(c, false);
        }
    }
    // Groups left open by a cut file end here, so their pictures and table entries count.
    flushBytes();
    untracked = 0;
    while (!saved.empty())
        closeGroup();
    flushRun();
    cursor.setBlockFormat(blockFormat(paragraphHasContent ? contentPara : st.para));
    cursor.endEditBlock();
}

void Reader::openGroup()
{
    flushBytes();
    toSkip = 0;
    starred = false;
    if (saved.size() < kMaxDepth)
        saved.push_back(st);
    else
        ++untracked;
}

bool Reader::closeGroup()
{
    flushBytes();
    toSkip = 0;
    starred = false;
    if (untracked > 0) {
        --untracked;
        return false;
    }
    if (saved.empty())
        return false; // one closing brace too many
    const State leaving = st;
    st = saved.back();
    saved.pop_back();
    leftGroup(leaving);
    if (!saved.empty())
        return false;
    // The document's group is closed. Anything but blanks after it means a brace too many
    // came earlier; the text after it is still the user's.
    return pos >= contentEnd;
}

void Reader::leftGroup(const State& leaving)
{
    if (leaving.destination == Destination::FontTable)
        endFont();
    if (leaving.destination == st.destination)
        return;
    if (leaving.destination == Destination::Picture)
        endPicture();
    else if (leaving.destination == Destination::Attachment)
        endAttachment();
}

void Reader::control()
{
    if (pos >= in.size())
        return;
    const char c = in[pos];
    if (isLetter(c)) {
        controlWord();
        return;
    }
    ++pos;
    if (c == '\'') {
        hexEscape();
        return;
    }
    if (c == '*') {
        starred = true;
        return;
    }
    if (toSkip > 0) {
        --toSkip;
        return;
    }
    switch (c) {
    case '\\':
    case '{':
    case '}':
        byte(c, true);
        break;
    case '~':
        flushBytes();
        deliver(u"\u00A0");
        break;
    case '_':
        flushBytes();
        deliver(u"\u2011");
        break;
    case '\r':
    case '\n':
        flushBytes();
        paragraph();
        break;
    default:
        // \- marks where a word may break: nothing a reader sees. Others mean nothing here.
        break;
    }
}

void Reader::hexEscape()
{
    int value = 0;
    for (int digit = 0; digit < 2; ++digit) {
        const int nibble = pos < in.size() ? hexValue(in[pos]) : -1;
        if (nibble < 0)
            return; // bad escapes are dropped; what follows is read as usual
        value = value * 16 + nibble;
        ++pos;
    }
    if (toSkip > 0)
        --toSkip;
    else
        byte(char(value), true);
}

void Reader::controlWord()
{
    const std::size_t start = pos;
    while (pos < in.size() && isLetter(in[pos]))
        ++pos;
    const std::string_view name = in.substr(start, std::min<std::size_t>(pos - start, 32));
    bool negative = false;
    if (pos + 1 < in.size() && in[pos] == '-' && isDigit(in[pos + 1])) {
        negative = true;
        ++pos;
    }
    const bool hasParam = pos < in.size() && isDigit(in[pos]);
    long long value = 0;
    while (pos < in.size() && isDigit(in[pos])) {
        value = std::min(value * 10 + (in[pos] - '0'), (long long)INT_MAX);
        ++pos;
    }
    if (pos < in.size() && in[pos] == ' ')
        ++pos;
    const int param = int(negative ? -value : value);

    const WordInfo& info = lookUpWord(name);
    if (info.word == Word::Binary) {
        starred = false;
        binary(param);
        return;
    }
    if (toSkip > 0) {
        --toSkip;
        starred = false;
        return;
    }
    flushBytes();
    if (starred) {
        starred = false;
        // Optional destinations we don't know are skipped whole.
        if (info.word != Word::ShapePicture && info.word != Word::Attachment) {
            openDestination(Destination::Skip);
            return;
        }
    }
    if (st.destination != Destination::Skip)
        apply(info, hasParam, param);
}

void Reader::binary(int count)
{
    const std::size_t taken = std::min(std::size_t(std::max(count, 0)), in.size() - pos);
    const std::string_view data = in.substr(pos, taken);
    pos += taken;
    if (toSkip > 0) {
        --toSkip;
        return;
    }
    if (st.destination == Destination::Picture)
        appendPicture(data);
}

void Reader::openDestination(Destination destination)
{
    if (!tracking() || st.destination == destination || st.destination == Destination::Skip)
        return;
    if (st.destination != Destination::Text)
        destination = Destination::Skip;
    st.destination = destination;
    switch (destination) {
    case Destination::FontTable:
        fontOpen = false;
        break;
    case Destination::ColourTable:
        colourGiven = false;
        colourParts[0] = colourParts[1] = colourParts[2] = 0;
        break;
    case Destination::Picture:
        picture = {};
        break;
    case Destination::Attachment:
        attachment = {};
        break;
    default:
        break;
    }
}

void Reader::apply(const WordInfo& info, bool hasParam, int param)
{
    const bool on = !hasParam || param != 0;
    CharProps& chars = st.chars;
    ParaProps& para = st.para;
    if (st.destination == Destination::Attachment && !attachment.name.isEmpty()
        && info.word != Word::Unicode && info.word != Word::UnicodeSkip)
        attachment.nameDone = true;

    switch (info.word) {
    case Word::Unknown:
    case Word::Binary:
    case Word::ShapePicture:
        break;
    case Word::Ansi:
        documentCodePage = CodePages::kWestern;
        break;
    case Word::Mac:
        documentCodePage = CodePages::kMacRoman;
        break;
    case Word::Pc:
        documentCodePage = 437;
        break;
    case Word::Pca:
        documentCodePage = 850;
        break;
    case Word::AnsiCodePage:
        if (CodePages::isKnown(param))
            documentCodePage = param;
        break;
    case Word::DefaultFont:
        defaultFont = param;
        formats.clear();
        break;
    case Word::UnicodeSkip:
        st.unicodeSkip = std::clamp(hasParam ? param : 1, 0, kMaxUnicodeSkip);
        break;
    case Word::Unicode: {
        if (!hasParam)
            break;
        const int unit = param < 0 ? param + 65536 : param;
        const char16_t c = unit >= 0 && unit <= 0xFFFF ? char16_t(unit) : u'\uFFFD';
        deliver(QStringView(&c, 1));
        toSkip = st.unicodeSkip;
        break;
    }
    case Word::FontTable:
        openDestination(Destination::FontTable);
        break;
    case Word::ColourTable:
        openDestination(Destination::ColourTable);
        break;
    case Word::Picture:
        openDestination(Destination::Picture);
        break;
    case Word::Attachment:
        if (st.destination == Destination::Text && tracking()) {
            if (!saved.empty())
                saved.back().dropPlaceholder = true;
            openDestination(Destination::Attachment);
        }
        break;
    case Word::Ignorable:
        openDestination(Destination::Skip);
        break;
    case Word::Paragraph:
        paragraph();
        break;
    case Word::Cell:
        cell();
        break;
    case Word::Row:
        cellPending = false;
        paragraph();
        break;
    case Word::Character:
        deliver(QStringView(&info.character, 1));
        break;
    case Word::Plain:
        chars = {};
        break;
    case Word::Font:
        if (st.destination == Destination::FontTable)
            startFont(param);
        else
            chars.font = param;
        break;
    case Word::FontSize:
        chars.halfPoints = param > 0 ? std::min(param, kMaxHalfPoints) : CharProps{}.halfPoints;
        break;
    case Word::Bold:
        chars.bold = on;
        break;
    case Word::Italic:
        chars.italic = on;
        break;
    case Word::Underline:
        chars.underline = on;
        break;
    case Word::UnderlineNone:
        chars.underline = false;
        break;
    case Word::Strike:
        chars.strike = on;
        break;
    case Word::Hidden:
        chars.hidden = on;
        break;
    case Word::Superscript:
        chars.vertical = Vertical::Super;
        break;
    case Word::Subscript:
        chars.vertical = Vertical::Sub;
        break;
    case Word::NoSuperSub:
        chars.vertical = Vertical::Normal;
        break;
    case Word::Foreground:
        chars.foreground = param;
        break;
    case Word::Background:
        chars.background = param;
        break;
    case Word::ParagraphDefault:
        para = {};
        break;
    case Word::AlignLeft:
        para.alignment = Alignment::Left;
        break;
    case Word::AlignCenter:
        para.alignment = Alignment::Center;
        break;
    case Word::AlignRight:
        para.alignment = Alignment::Right;
        break;
    case Word::AlignJustify:
        para.alignment = Alignment::Justify;
        break;
    case Word::LeftIndent:
        para.leftIndent = std::clamp(param, 0, kMaxTwips);
        break;
    case Word::RightIndent:
        para.rightIndent = std::clamp(param, 0, kMaxTwips);
        break;
    case Word::FirstIndent:
        para.firstIndent = std::clamp(param, -kMaxTwips, kMaxTwips);
        break;
    case Word::Charset:
        if (st.destination == Destination::FontTable)
            fontEntry.charset = param;
        break;
    case Word::FontCodePage:
        if (st.destination == Destination::FontTable)
            fontEntry.codePage = param;
        break;
    case Word::Red:
    case Word::Green:
    case Word::Blue:
        if (st.destination == Destination::ColourTable) {
            colourParts[int(info.word) - int(Word::Red)] = std::clamp(param, 0, 255);
            colourGiven = true;
        }
        break;
    case Word::PngBlip:
    case Word::JpegBlip:
        picture.readable = true;
        break;
    case Word::OtherBlip:
        picture.readable = false;
        break;
    case Word::PictureWidth:
        picture.width = param;
        break;
    case Word::PictureHeight:
        picture.height = param;
        break;
    case Word::GoalWidth:
        picture.goalWidth = param;
        break;
    case Word::GoalHeight:
        picture.goalHeight = param;
        break;
    case Word::ScaleX:
        picture.scaleX = std::clamp(param, 1, 1000);
        break;
    case Word::ScaleY:
        picture.scaleY = std::clamp(param, 1, 1000);
        break;
    case Word::Width:
        attachment.width = param;
        break;
    case Word::Height:
        attachment.height = param;
        break;
    }
}

void Reader::byte(char c, bool escaped)
{
    switch (st.destination) {
    case Destination::Text:
    case Destination::Attachment:
        bytes += c;
        break;
    case Destination::FontTable:
        if (c == ';' && !escaped) {
            flushBytes();
            endFont();
        } else {
            bytes += c;
        }
        break;
    case Destination::ColourTable:
        if (c == ';' && !escaped)
            endColour();
        break;
    case Destination::Picture:
        if (!escaped)
            pictureByte(c);
        break;
    case Destination::Skip:
        break;
    }
}

void Reader::flushBytes()
{
    if (bytes.empty())
        return;
    const QString text = codePages.decode(currentCodePage(), bytes);
    bytes.clear();
    deliver(text);
}

void Reader::deliver(QStringView text)
{
    switch (st.destination) {
    case Destination::Text:
        emitText(text);
        break;
    case Destination::FontTable:
        if (fontEntry.name.size() < kMaxNameLength)
            fontEntry.name += text;
        break;
    case Destination::Attachment:
        if (!attachment.nameDone && attachment.name.size() < kMaxNameLength)
            attachment.name += text;
        break;
    default:
        break;
    }
}

void Reader::emitText(QStringView text)
{
    if (st.dropPlaceholder) {
        st.dropPlaceholder = false;
        if (!text.isEmpty() && (text.front() == u'\u00AC' || text.front() == u'\uFFFC'))
            text = text.mid(1);
    }
    if (text.isEmpty() || st.chars.hidden)
        return;
    if (st.chars != runProps && runsInLine < kMaxRunsPerLine) {
        flushRun();
        runProps = st.chars;
    }
    if (cellPending) {
        run += u'\t';
        cellPending = false;
    }
    run += text;
    if (text.contains(QChar::LineSeparator))
        runsInLine = 0;
    paragraphHasContent = true;
    contentPara = st.para;
}

void Reader::flushRun()
{
    if (run.isEmpty())
        return;
    // \u can give half a surrogate pair or a NUL; the document gets neither.
    run.remove(QChar(0));
    for (qsizetype i = 0; i < run.size(); ++i) {
        const QChar c = run.at(i);
        if (c.isHighSurrogate() && i + 1 < run.size() && run.at(i + 1).isLowSurrogate())
            ++i;
        else if (c.isSurrogate())
            run[i] = QChar::ReplacementCharacter;
    }
    cursor.insertText(run, charFormat(runProps));
    run.clear();
    ++runsInLine;
}

void Reader::paragraph()
{
    if (st.destination != Destination::Text || st.chars.hidden)
        return;
    cellPending = false;
    flushRun();
    const QTextBlockFormat format = blockFormat(st.para);
    cursor.setBlockFormat(format);
    cursor.insertBlock(format, charFormat(st.chars));
    paragraphHasContent = false;
    runsInLine = 0;
}

void Reader::cell()
{
    if (st.destination != Destination::Text || st.chars.hidden)
        return;
    if (cellPending) {
        cellPending = false;
        emitText(u"\t"); // the cell before this one was empty
    }
    cellPending = true;
}

int Reader::codePageOf(const FontEntry& font) const
{
    if (CodePages::isKnown(font.codePage))
        return font.codePage;
    const int codePage = CodePages::ofCharset(font.charset, documentCodePage);
    return CodePages::isKnown(codePage) ? codePage : documentCodePage;
}

int Reader::currentCodePage() const
{
    if (st.destination == Destination::FontTable)
        return codePageOf(fontEntry);
    const FontEntry* current = font(st.chars.font);
    return current ? codePageOf(*current) : documentCodePage;
}

const FontEntry* Reader::font(int number) const
{
    const auto found = fonts.find(number < 0 ? defaultFont : number);
    return found != fonts.end() ? &found->second : nullptr;
}

QColor Reader::colour(int index) const
{
    return index >= 0 && std::size_t(index) < colours.size() ? colours[std::size_t(index)]
                                                             : QColor();
}

QTextCharFormat Reader::charFormat(const CharProps& props)
{
    for (const auto& [known, format] : formats)
        if (known == props)
            return format;
    if (formats.size() == kCachedFormats)
        formats.clear();
    formats.emplace_back(props, makeCharFormat(props));
    return formats.back().second;
}

QTextCharFormat Reader::makeCharFormat(const CharProps& props) const
{
    QTextCharFormat format;
    if (const FontEntry* entry = font(props.font); entry && !entry->name.isEmpty())
        format.setFontFamilies({entry->name});
    format.setFontPointSize(props.halfPoints / 2.0);
    if (props.bold)
        format.setFontWeight(QFont::Bold);
    if (props.italic)
        format.setFontItalic(true);
    if (props.underline)
        format.setFontUnderline(true);
    if (props.strike)
        format.setFontStrikeOut(true);
    if (props.vertical == Vertical::Super)
        format.setVerticalAlignment(QTextCharFormat::AlignSuperScript);
    else if (props.vertical == Vertical::Sub)
        format.setVerticalAlignment(QTextCharFormat::AlignSubScript);
    if (const QColor c = colour(props.foreground); c.isValid())
        format.setForeground(c);
    if (const QColor c = colour(props.background); c.isValid())
        format.setBackground(c);
    return format;
}

QTextBlockFormat Reader::blockFormat(const ParaProps& props)
{
    QTextBlockFormat format;
    switch (props.alignment) {
    case Alignment::Left:
        format.setAlignment(Qt::AlignLeft);
        break;
    case Alignment::Center:
        format.setAlignment(Qt::AlignHCenter);
        break;
    case Alignment::Right:
        format.setAlignment(Qt::AlignRight);
        break;
    case Alignment::Justify:
        format.setAlignment(Qt::AlignJustify);
        break;
    }
    if (props.leftIndent > 0)
        format.setLeftMargin(props.leftIndent / kTwipsPerPixel);
    if (props.rightIndent > 0)
        format.setRightMargin(props.rightIndent / kTwipsPerPixel);
    if (props.firstIndent != 0)
        format.setTextIndent(props.firstIndent / kTwipsPerPixel);
    return format;
}

void Reader::startFont(int number)
{
    endFont(); // an entry without its semicolon
    fontEntry = {};
    fontNumber = number;
    fontOpen = true;
}

void Reader::endFont()
{
    if (!fontOpen)
        return;
    fontOpen = false;
    formats.clear();
    if (fonts.size() < kMaxTableEntries || fonts.contains(fontNumber)) {
        fontEntry.name = fontEntry.name.trimmed();
        fonts[fontNumber] = std::move(fontEntry);
    }
    fontEntry = {};
}

void Reader::endColour()
{
    formats.clear();
    if (colours.size() < kMaxTableEntries) {
        colours.push_back(
            colourGiven ? QColor(colourParts[0], colourParts[1], colourParts[2]) : QColor());
    }
    colourGiven = false;
    colourParts[0] = colourParts[1] = colourParts[2] = 0;
}

void Reader::pictureByte(char c)
{
    const int value = hexValue(c);
    if (value < 0)
        return; // line breaks and stray characters between the digits
    if (picture.nibble < 0) {
        picture.nibble = value;
        return;
    }
    const char whole = char(picture.nibble * 16 + value);
    picture.nibble = -1;
    appendPicture(std::string_view(&whole, 1));
}

void Reader::appendPicture(std::string_view data)
{
    if (picture.tooLarge)
        return;
    if (picture.bytes.size() + qsizetype(data.size()) > kMaxPictureBytes) {
        picture.tooLarge = true;
        picture.bytes.clear();
        return;
    }
    picture.bytes.append(data.data(), qsizetype(data.size()));
}

void Reader::endPicture()
{
    const PictureData taken = std::move(picture);
    picture = {};
    if (!taken.readable || taken.bytes.isEmpty() || st.chars.hidden)
        return;
    QSize size(kPlaceholderSize, kPlaceholderSize);
    const QString resource = taken.tooLarge ? placeholder() : pictureResource(taken.bytes, size);
    if (resource.isEmpty())
        return; // not a picture we can read
    // Goals are twips; \picw and \pich are pixels for the bitmaps we show.
    const double width = taken.goalWidth > 0 ? taken.goalWidth / kTwipsPerPixel
        : taken.width > 0                    ? taken.width
                                             : size.width();
    const double height = taken.goalHeight > 0 ? taken.goalHeight / kTwipsPerPixel
        : taken.height > 0                     ? taken.height
                                               : size.height();
    insertImage(resource, QSizeF(width * taken.scaleX / 100, height * taken.scaleY / 100));
}

void Reader::endAttachment()
{
    const AttachmentData taken = std::move(attachment);
    attachment = {};
    if (packageFolder.isEmpty() || st.chars.hidden)
        return;
    const QString name = taken.name.trimmed();
    auto known = attachments.find(name);
    if (known == attachments.end()) {
        Loaded loaded;
        bool leaves = false;
        const std::optional<QByteArray> path = insidePackage(packageFolder, name.toUtf8(), &leaves);
        result.leftPackage = result.leftPackage || leaves;
        if (path && byPath.contains(*path))
            loaded = byPath.value(*path);
        else if (const auto data = path ? readAttachment(*path, kMaxPictureBytes) : std::nullopt)
            loaded.resource
                = pictureResource(QByteArray(data->data.get(), qsizetype(data->size)), loaded.size);
        if (path)
            byPath.insert(*path, loaded);
        known = attachments.insert(name, loaded);
    }
    if (known->resource.isEmpty())
        return;
    insertImage(known->resource,
        QSizeF(taken.width > 0 ? taken.width / kTwipsPerPixel : known->size.width(),
            taken.height > 0 ? taken.height / kTwipsPerPixel : known->size.height()));
}

QString Reader::pictureResource(const QByteArray& bytes, QSize& size)
{
    const QByteArray key = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
    auto known = byContent.find(key);
    if (known == byContent.end()) {
        Loaded loaded;
        bool tooLarge = memoryLeft <= 0;
        const QImage image
            = tooLarge ? QImage() : decodePicture(bytes, kMaxPicturePixels, memoryLeft, &tooLarge);
        if (!image.isNull())
            loaded = {addImage(image), image.size()};
        else if (tooLarge)
            loaded = {placeholder(), QSize(kPlaceholderSize, kPlaceholderSize)};
        known = byContent.insert(key, loaded);
    }
    size = known->size;
    return known->resource;
}

QString Reader::placeholder()
{
    result.picturesLeftOut = true;
    if (placeholderResource.isEmpty()) {
        // A grey box, crossed.
        const int last = kPlaceholderSize - 1;
        QImage box(kPlaceholderSize, kPlaceholderSize, QImage::Format_RGB32);
        box.fill(QColor(0xDD, 0xDD, 0xDD));
        for (int i = 0; i <= last; ++i) {
            for (const QPoint p : {QPoint(i, 0), QPoint(i, last), QPoint(0, i), QPoint(last, i),
                     QPoint(i, i), QPoint(last - i, i)})
                box.setPixel(p, qRgb(0x99, 0x99, 0x99));
        }
        placeholderResource = QStringLiteral("rtf-picture:placeholder");
        doc.addResource(QTextDocument::ImageResource, QUrl(placeholderResource), box);
    }
    return placeholderResource;
}

QString Reader::addImage(const QImage& image)
{
    memoryLeft -= image.sizeInBytes();
    const QString name = QStringLiteral("rtf-picture:%1").arg(++images);
    doc.addResource(QTextDocument::ImageResource, QUrl(name), image);
    return name;
}

void Reader::insertImage(const QString& resource, QSizeF shown)
{
    if (st.destination != Destination::Text)
        return;
    // Within the limits, keeping the proportions.
    const double largest = std::max(shown.width(), shown.height());
    if (largest > kMaxShownPixels)
        shown *= kMaxShownPixels / largest;
    shown = shown.expandedTo(QSizeF(1, 1));
    if (st.chars != runProps) {
        flushRun();
        runProps = st.chars;
    }
    if (cellPending) {
        run += u'\t';
        cellPending = false;
    }
    flushRun();
    QTextImageFormat format;
    format.merge(charFormat(st.chars));
    format.setName(resource);
    format.setWidth(shown.width());
    format.setHeight(shown.height());
    cursor.insertImage(format);
    paragraphHasContent = true;
    contentPara = st.para;
}

// Where the document's group starts: "{\rtf", after blanks or a byte-order mark.
std::size_t documentStart(std::string_view bytes)
{
    std::size_t at = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    while (at < bytes.size()
        && (bytes[at] == ' ' || bytes[at] == '\t' || bytes[at] == '\r' || bytes[at] == '\n'))
        ++at;
    return bytes.substr(at).starts_with("{\\rtf") ? at : std::string_view::npos;
}

} // namespace

RichTextRead readRtf(std::string_view bytes, QTextDocument& doc, const QByteArray& packageFolder,
    const ReadProgress& between)
{
    RichTextRead result;
    doc.clear();
    const std::size_t start = documentStart(bytes);
    if (start == std::string_view::npos) {
        result.error = "not rich text";
        return result;
    }
    const bool undo = doc.isUndoRedoEnabled();
    doc.setUndoRedoEnabled(false);
    Reader(bytes.substr(start), doc, packageFolder, result).read(between);
    doc.setUndoRedoEnabled(undo);
    result.read = true;
    return result;
}

RichTextRead readRichTextFile(
    const QByteArray& path, QTextDocument& doc, const ReadProgress& between)
{
    doc.clear();
    // An .rtfd is a folder; its text is TXT.rtf and its pictures lie beside it.
    RichTextRead result;
    const bool package = pathKind(path.toStdString()) == PathKind::Folder;
    std::optional<QByteArray> file = path;
    if (package) {
        file = insidePackage(path, "TXT.rtf", &result.leftPackage);
        if (!file) {
            result.error = result.leftPackage ? "its text lies outside the package" : "no TXT.rtf";
            return result;
        }
    }
    const auto bytes = readWholeFile(file->toStdString(), result.error);
    if (!bytes)
        return result;
    return readRtf(bytes->view(), doc, package ? path : QByteArray(), between);
}

} // namespace documents
