#include "RtfReader.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QtTest>

#include <random>
#include <sys/stat.h>

namespace {

std::string_view view(const QByteArray& bytes)
{
    return {bytes.constData(), std::size_t(bytes.size())};
}

QString plainText(const QByteArray& rtf)
{
    QTextDocument doc;
    documents::readRtf(view(rtf), doc);
    return doc.toPlainText();
}

// Six pixels, each of its own colour and alpha, so any decoding slip shows.
QImage sampleImage()
{
    QImage image(3, 2, QImage::Format_ARGB32);
    const QRgb pixels[] = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0x80FFFFFF, 0xFF000000, 0x00123456};
    for (int i = 0; i < 6; ++i)
        image.setPixel(i % 3, i / 3, pixels[i]);
    return image;
}

QByteArray encoded(const QImage& image, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

// The pictures of a document in order, with the size they are shown at.
struct Shown
{
    QImage image;
    QSizeF size;
    QString name;
};

QList<Shown> pictures(const QTextDocument& doc)
{
    QList<Shown> found;
    for (QTextBlock block = doc.begin(); block.isValid(); block = block.next())
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextImageFormat format = it.fragment().charFormat().toImageFormat();
            if (format.isValid())
                found.append({doc.resource(QTextDocument::ImageResource, QUrl(format.name()))
                                  .value<QImage>(),
                    QSizeF(format.width(), format.height()), format.name()});
        }
    return found;
}

// Font, size, styles, colours and alignment at `position`, in a few words.
QString describe(const QTextDocument& doc, int position)
{
    QTextCursor cursor(const_cast<QTextDocument*>(&doc));
    cursor.setPosition(position + 1); // the format of the character before the cursor
    const QTextCharFormat f = cursor.charFormat();
    QStringList parts{
        f.fontFamilies().toStringList().value(0, "-"), QString::number(f.fontPointSize())};
    if (f.fontWeight() >= QFont::Bold)
        parts << "b";
    if (f.fontItalic())
        parts << "i";
    if (f.fontUnderline())
        parts << "u";
    if (f.fontStrikeOut())
        parts << "s";
    if (f.hasProperty(QTextFormat::ForegroundBrush))
        parts << "fg" + f.foreground().color().name();
    if (f.hasProperty(QTextFormat::BackgroundBrush))
        parts << "bg" + f.background().color().name();
    const Qt::Alignment a = cursor.blockFormat().alignment();
    parts << (a & Qt::AlignHCenter ? "center"
            : a & Qt::AlignRight   ? "right"
            : a & Qt::AlignJustify ? "justify"
                                   : "left");
    return parts.join(' ');
}

} // namespace

class TestRichText : public QObject
{
    Q_OBJECT
private slots:
    void plainText_data();
    void plainText();
    void formats_data();
    void formats();
    void pictures_data();
    void pictures();
    void attachments_data();
    void attachments();
    void files_data();
    void files();
    void hostile_data();
    void hostile();
    void mutated();
    void longDocuments();
};

void TestRichText::plainText_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* body, const char16_t* text) {
        QTest::newRow(name) << QByteArray("{\\rtf1\\ansi ") + body + "}"
                            << QString::fromUtf16(text);
    };
    row("paragraphs, line, tab", "a\\par b\\line c\\tab d\\\ne", u"a\nb\nc\td\ne");
    row("last paragraph mark kept", "a\\par", u"a\n");
    row("escaped braces and backslash", "\\{x\\}\\\\", u"{x}\\");
    row("symbols", "\\emdash\\endash\\lquote\\rquote\\ldblquote\\rdblquote\\bullet\\_",
        u"\u2014\u2013\u2018\u2019\u201C\u201D\u2022\u2011");
    row("optional hyphen unseen", "hy\\-phen", u"hyphen");
    row("control word delimiters", "\\b x\\b0\\i1y \\i0  z", u"xy  z");
    row("\\u skips one by default", "\\u8364?\\u8364\\'80x", u"\u20AC\u20ACx");
    row("\\uc0 and \\uc2", "\\uc0\\u12354 x\\uc2\\u12354\\'82\\'a0y", u"\u3042x\u3042y");
    row("\\uc restored by the group", "{\\uc2\\u12354 ab}\\u12354 cd", u"\u3042\u3042d");
    row("skip stops at a brace", "\\uc3\\u8364 a{b}", u"\u20ACb");
    row("surrogate pair and lone half", "\\u-10179?\\u-8704?\\u-10179?x", u"\U0001F600\uFFFDx");
    row("1252 escapes", "\\'e9\\'80\\'9c", u"\u00E9\u20AC\u0153");
    row("932 pairs across escapes and lines", "\\ansicpg932 \\'82\\'a0\\'82\r\n\\'a2\\'83N",
        u"\u3042\u3044\u30AF");
    row("932 lone lead byte", "\\ansicpg932 \\'82\\par x", u"\uFFFD\nx");
    row("932 by the font's character set",
        "{\\fonttbl{\\f0 Arial;}{\\f1\\fcharset128 Gothic;}}\\f1\\'82\\'a0\\f0\\'e9",
        u"\u3042\u00E9");
    row("Mac Japanese", "\\ansicpg10001 \\'fd\\'82\\'a0", u"\u00A9\u3042");
    row("Mac document with a Japanese font",
        "\\mac{\\fonttbl{\\f0 Geneva;}{\\f1\\fcharset128 Osaka;}}\\'a5\\f1\\'fd", u"\u2022\u00A9");
    row("tables, info, styles, headers skipped",
        "{\\fonttbl{\\f0 F;}}{\\colortbl;\\red1\\green2\\blue3;}{\\stylesheet{\\s0 "
        "Normal;}}{\\info{\\title T}}{\\header H}x",
        u"x");
    row("unknown optional destinations skipped", "{\\*\\unknown a{b}}{\\*\\fldinst c}x{\\foo y}",
        u"xy");
    row("field result kept", "{\\field{\\*\\fldinst HYPERLINK \"u\"}{\\fldrslt link}}", u"link");
    row("hidden text", "a{\\v b\\par c}d", u"ad");
    row("table cells and rows", "a\\cell \\cell b\\cell\\row c", u"a\t\tb\nc");
    row("binary data is no text", "a\\bin3 {}\\b", u"ab");
    row("attachment placeholder without a package",
        "x{{\\NeXTGraphic p.png \\width20 \\height20}\\'ac}y", u"xy");
}

void TestRichText::plainText()
{
    QFETCH(QByteArray, rtf);
    QFETCH(QString, expected);
    QCOMPARE(::plainText(rtf), expected);
}

void TestRichText::formats_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("expected");
    const QByteArray tables = "{\\rtf1\\ansi{\\fonttbl{\\f0 Times;}{\\f1\\fswiss Arial;}}"
                              "{\\colortbl;\\red255\\green0\\blue0;\\red0\\green0\\blue255;}";
    const QByteArray all = tables + "\\f1\\fs36\\b\\i\\ul\\strike\\cf1\\cb2 X\\plain Y}";
    QTest::newRow("every property") << all << 0 << "Arial 18 b i u s fg#ff0000 bg#0000ff left";
    QTest::newRow("\\plain") << all << 1 << "Times 12 left";
    const QByteArray group = tables + "{\\f1\\fs20\\b\\highlight2 x}y}";
    QTest::newRow("in a group") << group << 0 << "Arial 10 b bg#0000ff left";
    QTest::newRow("after the group") << group << 1 << "Times 12 left";
    const QByteArray zero = tables + "\\b\\i\\ul\\cf2 a\\b0\\i0\\ulnone\\cf0 b\\ul\\fs0 c}";
    QTest::newRow("turned on") << zero << 0 << "Times 12 b i u fg#0000ff left";
    QTest::newRow("turned off by 0") << zero << 1 << "Times 12 left";
    QTest::newRow("\\fs0 is the default size") << zero << 2 << "Times 12 u left";
    const QByteArray noGroups = "{\\rtf1{\\fonttbl\\f0 Times;\\f1 Arial;}\\deff1 x\\f0 y\\plain z}";
    QTest::newRow("table without entry groups") << noGroups << 1 << "Times 12 left";
    QTest::newRow("\\deff") << noGroups << 2 << "Arial 12 left";
    QTest::newRow("font name in Shift_JIS")
        << QByteArray("{\\rtf1\\ansi{\\fonttbl{\\f0\\fcharset128 \\'82\\'6c\\'82\\'72 "
                      "\\'83\\'53\\'83\\'56\\'83\\'62\\'83\\'4e;}}\\f0\\fs100000 x}")
        << 0 << "\uFF2D\uFF33 \u30B4\u30B7\u30C3\u30AF 1000 left";
    const QByteArray paragraphs = "{\\rtf1\\qc a\\par\\pard\\qr b\\par\\pard c\\par{\\qj d}}";
    QTest::newRow("centred") << paragraphs << 0 << "- 12 center";
    QTest::newRow("right") << paragraphs << 2 << "- 12 right";
    QTest::newRow("\\pard") << paragraphs << 4 << "- 12 left";
    QTest::newRow("last paragraph inside a group") << paragraphs << 6 << "- 12 justify";
}

void TestRichText::formats()
{
    QFETCH(QByteArray, rtf);
    QFETCH(int, position);
    QFETCH(QString, expected);
    QTextDocument doc;
    QVERIFY(documents::readRtf(view(rtf), doc).read);
    QCOMPARE(describe(doc, position), expected);
}

void TestRichText::pictures_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QSizeF>("shown");
    QTest::addColumn<bool>("lossless");
    const QByteArray png = encoded(sampleImage(), "PNG");
    QByteArray brokenHex;
    for (const char c : png.toHex())
        brokenHex += brokenHex.size() % 9 == 8 ? QByteArray("\r\nz") + c : QByteArray(1, c);
    const auto row
        = [](const char* name, const QByteArray& body, QSizeF shown, bool lossless = true) {
              QTest::newRow(name) << "{\\rtf1 a" + body + "b}"
                                  << "a\uFFFCb" << shown << lossless;
          };
    row("hex, size in twips",
        "{\\pict\\pngblip\\picw3\\pich2\\picwgoal600\\pichgoal300 " + png.toHex() + "}", {40, 20});
    row("hex with line breaks and bad digits", "{\\pict\\pngblip " + brokenHex + "}", {3, 2});
    row("\\bin and scaling",
        "{\\pict\\pngblip\\picscalex200\\bin" + QByteArray::number(png.size()) + " " + png + "}",
        {6, 2});
    row("Word's shape picture, fallback skipped",
        "{\\*\\shppict{\\pict\\pngblip\\picw3\\pich2 " + png.toHex()
            + "}}{\\nonshppict{\\pict\\wmetafile8 0102}}",
        {3, 2});
    row("JPEG", "{\\pict\\jpegblip " + encoded(sampleImage(), "JPEG").toHex() + "}", {3, 2}, false);
    QTest::newRow("metafile not shown")
        << QByteArray("{\\rtf1 a{\\pict\\wmetafile8 0102}b}") << "ab" << QSizeF() << true;
    QTest::newRow("cut inside the picture")
        << "{\\rtf1 a{\\pict\\pngblip " + png.toHex() << "a\uFFFC" << QSizeF(3, 2) << true;
    // Past the limits a grey box stands in, and the reader says so.
    QTest::newRow("enormous claimed size: placeholder") << "{\\rtf1 a{\\pict\\pngblip "
            + encoded(QImage(8000, 8000, QImage::Format_Mono), "PNG").toHex() + "}b}"
                                                        << "a\uFFFCb" << QSizeF(32, 32) << false;
}

void TestRichText::pictures()
{
    QFETCH(QByteArray, rtf);
    QFETCH(QString, text);
    QFETCH(QSizeF, shown);
    QFETCH(bool, lossless);
    QTextDocument doc;
    const documents::RichTextRead read = documents::readRtf(view(rtf), doc);
    QVERIFY(read.read);
    QCOMPARE(doc.toPlainText(), text);
    const QList<Shown> found = ::pictures(doc);
    QCOMPARE(found.size(), shown.isValid() ? 1 : 0);
    QCOMPARE(read.picturesLeftOut, shown == QSizeF(32, 32));
    if (found.isEmpty())
        return;
    QCOMPARE(found[0].size, shown);
    if (read.picturesLeftOut)
        return;
    QCOMPARE(found[0].image.size(), sampleImage().size());
    if (lossless)
        QCOMPARE(found[0].image.convertToFormat(QImage::Format_ARGB32), sampleImage());
}

void TestRichText::attachments_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("loaded");
    QTest::addColumn<bool>("leaves"); // told as a part outside the package
    QTest::newRow("beside the text") << "pic.png" << true << false;
    QTest::newRow("in a subfolder") << "sub/pic.png" << true << false;
    QTest::newRow("link inside the package") << "inner-link.png" << true << false;
    QTest::newRow("climbing out") << "../secret.png" << false << true;
    QTest::newRow("climbing and back") << "sub/../pic.png" << false << true;
    QTest::newRow("absolute path") << "ABSOLUTE" << false << true;
    QTest::newRow("link to outside") << "outer-link.png" << false << true;
    QTest::newRow("missing") << "none.png" << false << false;
    QTest::newRow("a folder") << "sub" << false << false;
    QTest::newRow("text a link to outside") << "TXT-LINK" << false << true;
    QTest::newRow("one picture under many names") << "ALIASES" << true << false;
}

void TestRichText::attachments()
{
    QFETCH(QString, name);
    QFETCH(bool, loaded);
    QFETCH(bool, leaves);
    QTemporaryDir dir;
    const QString package = dir.filePath("doc.rtfd");
    QVERIFY(QDir().mkpath(package + "/sub"));
    const QImage image = sampleImage();
    QVERIFY(image.save(package + "/pic.png") && image.save(package + "/sub/pic.png"));
    QVERIFY(image.save(dir.filePath("secret.png")));
    QVERIFY(QFile::link(package + "/pic.png", package + "/inner-link.png"));
    QVERIFY(QFile::link(dir.filePath("secret.png"), package + "/outer-link.png"));
    if (name == "ABSOLUTE")
        name = dir.filePath("secret.png");
    QByteArray body = "{{\\NeXTGraphic " + name.toUtf8() + " \\width1500 \\height750\n}\xac}";
    if (name == "ALIASES") {
        body = "{{\\NeXTGraphic pic.png \\width1500 \\height750\n}\xac}";
        for (const char* alias : {"inner-link.png", "./pic.png", ".//inner-link.png"})
            body += QByteArray("{{\\NeXTGraphic ") + alias + "\n}\xac}";
    }
    QFile text(package + "/TXT.rtf");
    QVERIFY(text.open(QIODevice::WriteOnly));
    text.write("{\\rtf1\\ansi a" + body + "b}");
    text.close();
    if (name == "TXT-LINK") {
        QVERIFY(text.rename(dir.filePath("outside.rtf")));
        QVERIFY(QFile::link(dir.filePath("outside.rtf"), package + "/TXT.rtf"));
    }

    QTextDocument doc;
    const documents::RichTextRead read
        = documents::readRichTextFile(QFile::encodeName(package), doc);
    QCOMPARE(read.read, name != "TXT-LINK");
    QCOMPARE(read.leftPackage, leaves);
    if (name == "ALIASES") {
        // Four names lead to the one file, which is decoded once.
        QCOMPARE(doc.toPlainText(), "a\uFFFC\uFFFC\uFFFC\uFFFCb");
        QStringList resources;
        for (const Shown& shown : ::pictures(doc))
            resources << shown.name;
        resources.removeDuplicates();
        QCOMPARE(resources.size(), 1);
        return;
    }
    QCOMPARE(doc.toPlainText(), loaded ? "a\uFFFCb" : read.read ? "ab" : "");
    const QList<Shown> found = ::pictures(doc);
    QCOMPARE(found.size(), loaded ? 1 : 0);
    if (loaded) {
        QCOMPARE(found[0].size, QSizeF(100, 50));
        QCOMPARE(found[0].image.convertToFormat(QImage::Format_ARGB32), image);
    }
}

void TestRichText::files_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("expected"); // empty: nothing read
    QTest::newRow("rich text file") << "file"
                                    << "x";
    QTest::newRow("package") << "package"
                             << "x";
    QTest::newRow("missing") << "missing"
                             << "";
    QTest::newRow("FIFO") << "fifo"
                          << "";
    QTest::newRow("link to a device") << "device"
                                      << "";
    QTest::newRow("package without its text") << "empty package"
                                              << "";
    QTest::newRow("not rich text") << "plain"
                                   << "";
}

void TestRichText::files()
{
    QFETCH(QString, kind);
    QFETCH(QString, expected);
    QTemporaryDir dir;
    const QString path
        = dir.filePath(kind == "package" || kind == "empty package" ? "a.rtfd" : "a.rtf");
    const auto write = [](const QString& file, const QByteArray& bytes) {
        QFile out(file);
        return out.open(QIODevice::WriteOnly) && out.write(bytes) == bytes.size();
    };
    if (kind == "file")
        QVERIFY(write(path, "{\\rtf1 x}"));
    else if (kind == "package")
        QVERIFY(QDir().mkdir(path) && write(path + "/TXT.rtf", "{\\rtf1 x}"));
    else if (kind == "empty package")
        QVERIFY(QDir().mkdir(path));
    else if (kind == "fifo")
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    else if (kind == "device")
        QVERIFY(QFile::link("/dev/zero", path));
    else if (kind == "plain")
        QVERIFY(write(path, "just text\n"));

    QTextDocument doc("left over");
    QCOMPARE(documents::readRichTextFile(QFile::encodeName(path), doc).read, !expected.isEmpty());
    QCOMPARE(doc.toPlainText(), expected);
}

void TestRichText::hostile_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<bool>("read");
    QTest::addColumn<QString>("expected");
    const auto times = [](const char* part, int count) { return QByteArray(part).repeated(count); };
    QTest::newRow("100,000 nested groups keep their text")
        << "{\\rtf1 " + times("{\\b ", 100000) + "deep" + times("}", 100000) + " after}" << true
        << "deep after";
    QTest::newRow("deep skipped groups")
        << "{\\rtf1 a" + times("{\\*\\x ", 100000) + "b" + times("}", 100000) + "c}" << true
        << "ac";
    QTest::newRow("missing closing braces") << QByteArray("{\\rtf1 {\\b a{\\i b") << true << "ab";
    QTest::newRow("closing braces too many") << QByteArray("{\\rtf1 a}}} b}\r\n}") << true << "a b";
    QTest::newRow("groups after the document's")
        << "{\\rtf1 a}" + times("{b}", 200000) << true << "a" + QString(200000, u'b');
    QTest::newRow("huge \\bin") << QByteArray("{\\rtf1 a{\\pict\\pngblip\\bin99999999999 xy}")
                                << true << "a";
    QTest::newRow("negative \\bin") << QByteArray("{\\rtf1 a\\bin-5 b}") << true << "ab";
    QTest::newRow("bad hex") << QByteArray("{\\rtf1 a\\'zz\\'4}b\\'") << true << "azzb";
    QTest::newRow("huge numbers") << QByteArray(
        "{\\rtf1\\uc99999999999\\u99999999999 a}\\u-99999999999 b}")
                                  << true << "\uFFFD\uFFFD";
    QTest::newRow("NUL characters")
        << QByteArray("{\\rtf1 a\\'00\\uc0\\u0 b\\u c}") << true << "abc";
    QTest::newRow("endless control word")
        << "{\\rtf1 a\\" + times("x", 1 << 20) + "1234567890123456789 b}" << true << "ab";
    QTest::newRow("lone backslash at the end") << QByteArray("{\\rtf1 a\\") << true << "a";
    QByteArray fonts;
    for (int i = 0; i < 20000; ++i)
        fonts += "{\\f" + QByteArray::number(i) + " F;}";
    QTest::newRow("many fonts and colours") << "{\\rtf1{\\fonttbl" + fonts + "}{\\colortbl"
            + times("\\red1;", 100000) + "}\\f19999\\cf99999 x}"
                                            << true << "x";
    QTest::newRow("not rich text") << QByteArray("just text {\\rtf1 x}") << false << "";
    QTest::newRow("cut header") << QByteArray("{\\rt") << false << "";
    QTest::newRow("nothing") << QByteArray() << false << "";
}

void TestRichText::hostile()
{
    QFETCH(QByteArray, rtf);
    QFETCH(bool, read);
    QFETCH(QString, expected);
    QTextDocument doc("left over");
    QCOMPARE(documents::readRtf(view(rtf), doc).read, read);
    QCOMPARE(doc.toPlainText(), expected);
    QVERIFY(::pictures(doc).isEmpty());
}

// Damaged documents of every kind: none may crash, hang or grow the text beyond its input.
void TestRichText::mutated()
{
    const QByteArray png = encoded(sampleImage(), "PNG");
    const QList<QByteArray> seeds = {
        "{\\rtf1\\ansi\\ansicpg932{\\fonttbl{\\f0\\fcharset128 \\'82\\'6c;}{\\f1 Arial;}}"
        "{\\colortbl;\\red255\\green0\\blue0;}\\f0\\fs24\\cf1 \\'82\\'a0{\\b\\f1 x\\par}"
        "\\uc2\\u12354\\'82\\'a0\\qc y\\line\\tab\\emdash}",
        "{\\rtf1{\\*\\shppict{\\pict\\pngblip\\picwgoal200 " + png.toHex() + "}}a\\cell b\\row}",
        "{\\rtf1{\\pict\\pngblip\\bin" + QByteArray::number(png.size()) + " " + png + "}\\par}",
        "{\\rtf1\\mac{{\\NeXTGraphic a.png \\width10 \\height10}\\'ac}{\\field{\\*\\fldinst "
        "x}{\\fldrslt y}}\\u-10179?\\u-8704?}",
    };
    const QList<QByteArray> pieces = {"{", "}", "\\", "\\'", "\\'8", "\\*", "\\bin5 ", "\\bin999 ",
        "\\u-1", "\\uc9 ", "\\pict\\pngblip ", "{\\fonttbl", "{\\colortbl;", "\\par", "\\f99 ",
        "{\\*\\x ", "\\NeXTGraphic ", "\\'82", "\\fs-9 ", "\\v "};
    std::mt19937 rng(20240611);
    const auto pick = [&](qsizetype n) {
        return qsizetype(std::uniform_int_distribution<qsizetype>(0, n - 1)(rng));
    };
    QElapsedTimer timer;
    timer.start();
    for (int round = 0; round < 4000; ++round) {
        QByteArray rtf = seeds[pick(seeds.size())];
        for (int edits = 1 + int(pick(6)); edits > 0; --edits) {
            const qsizetype at = pick(rtf.size() + 1);
            switch (pick(5)) {
            case 0:
                if (at < rtf.size())
                    rtf[at] = char(rtf[at] ^ (1 << pick(8)));
                break;
            case 1:
                rtf.insert(at, pick(2) ? '{' : '}');
                break;
            case 2:
                rtf.remove(at, pick(8));
                break;
            case 3:
                rtf.insert(at, pieces[pick(pieces.size())]);
                break;
            case 4: {
                const QByteArray& other = seeds[pick(seeds.size())];
                const qsizetype from = pick(other.size());
                rtf = rtf.left(at) + other.mid(from, pick(200));
                break;
            }
            }
        }
        if (pick(8) == 0)
            rtf.truncate(pick(rtf.size() + 1));
        QTextDocument doc;
        documents::readRtf(view(rtf), doc);
        QVERIFY2(doc.characterCount() <= 3 * rtf.size() + 2, rtf.constData());
    }
    QVERIFY2(timer.elapsed() < 15000, qPrintable(QString::number(timer.elapsed())));
}

// A style switched on every character costs about what plain text costs, and a long read stops
// when asked, keeping what it read.
void TestRichText::longDocuments()
{
    QByteArray rtf = "{\\rtf1\\ansi ", plain = rtf;
    for (int i = 0; i < 100000; ++i) {
        rtf += i % 2 ? "\\b a" : "\\b0 b";
        plain += i % 2 ? "a" : "b";
    }
    rtf += "}";
    plain += "}";
    QTextDocument doc;
    const auto timeOf = [&doc](const QByteArray& bytes) {
        QElapsedTimer clock;
        clock.start();
        documents::readRtf(view(bytes), doc);
        return std::max<qint64>(clock.elapsed(), 20);
    };
    const qint64 plainTime = timeOf(plain);
    QCOMPARE_LT(timeOf(rtf), 10 * plainTime);
    QCOMPARE(doc.characterCount(), 100001);

    int calls = 0;
    const documents::RichTextRead read
        = documents::readRtf(view(rtf), doc, {}, [&](double) { return ++calls < 3; });
    QVERIFY(read.read && read.stopped);
    QCOMPARE(calls, 3);
    QCOMPARE_GT(doc.characterCount(), 1000);
    QCOMPARE_LT(doc.characterCount(), 100000);
}

QTEST_MAIN(TestRichText)
#include "tst_richtext.moc"
