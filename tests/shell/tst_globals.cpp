#include "SeqDiff.h"
#include "globals.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

using Accessor = QString (*)();

// Every accessor, with its default where the text is given rather than written for Twinly.
struct Constant
{
    const char* name;
    Accessor text;
    const char* english;
};

const Constant constants[] = {
    {"kEditM", globals::kEditM, "Edit"},
    {"kHelpM", globals::kHelpM, "Help"},
    {"kAboutM", globals::kAboutM, "About Twinly"},
    {"kManualM", globals::kManualM, "Operation explanation"},
    {"kLicenseM", globals::kLicenseM, "Copyright"},
    {"kSummaryT", globals::kSummaryT, "Text Compare Utility"},
    {"kURLHTag", globals::kURLHTag, "Jump to the support page"},
    {"kMailHTag", globals::kMailHTag, "Make new mail to the author"},
    {"kDropHTag", globals::kDropHTag,
        "You can drop any file in this area or everywhere in the window. \r"
        "(It's Ok to drop two files at a time.)"},
    {"kMainTitleT", globals::kMainTitleT, "Text Differences"},
    {"kTWLLicenseT", globals::kTWLLicenseT, nullptr},
    {"kOriginalSampleT", globals::kOriginalSampleT, nullptr},
    {"kSubstituteSampleT", globals::kSubstituteSampleT, nullptr},
    {"kManualT", globals::kManualT, nullptr},
    {"kMoveNextHTag", globals::kMoveNextHTag, "To the next difference"},
    {"kMovePrevHTag", globals::kMovePrevHTag, "To the previous difference"},
    {"kMoveTopHTag", globals::kMoveTopHTag, "To the top"},
    {"kMoveBtmHTag", globals::kMoveBtmHTag, "To the bottom"},
    {"kAppName", globals::kAppName, "Twinly"},
    {"kEditClear", globals::kEditClear, "Delete"},
    {"kFileQuit", globals::kFileQuit, "Quit"},
    {"kHitAnyKeyT", globals::kHitAnyKeyT,
        "\"Click Anywhere\" or \"Hit Any Key\" to close this window."},
    {"kSameT", globals::kSameT, "Same"},
    {"kDifferentT", globals::kDifferentT, "Different"},
    {"kEditCut", globals::kEditCut, "Cut"},
    {"kEditCopy", globals::kEditCopy, "Copy"},
    {"kEditPaste", globals::kEditPaste, "Paste"},
    {"kEditUndo", globals::kEditUndo, "Undo"},
    {"kEditRedo", globals::kEditRedo, "Redo"},
    {"kEditSelectAll", globals::kEditSelectAll, "Select All"},
    {"kMoveNext", globals::kMoveNext, "Next"},
    {"kMoveBtm", globals::kMoveBtm, "Btm"},
    {"kMovePrev", globals::kMovePrev, "Prev"},
    {"kMoveTop", globals::kMoveTop, "Top"},
    {"kAllTheSameT", globals::kAllTheSameT, "All same!"},
    {"kLicenseTitle1", globals::kLicenseTitle1, nullptr},
    {"kLicenseTitle2", globals::kLicenseTitle2, nullptr},
    {"kLicenseTitle3", globals::kLicenseTitle3, nullptr},
    {"kClearAll", globals::kClearAll, "Clear All"},
    {"kBoxLeft", globals::kBoxLeft, "Left Box"},
    {"kBoxRight", globals::kBoxRight, "Right Box"},
    {"kLanguage", globals::kLanguage, "Default"},
    {"kNoticeNotRead", globals::kNoticeNotRead, "%1 was not read: %2."},
    {"kNoticeMissing", globals::kNoticeMissing, "it does not exist"},
    {"kNoticeNotAFile", globals::kNoticeNotAFile, "it is not a regular file"},
    {"kNoticeRefusedKind", globals::kNoticeRefusedKind, "files of this kind are never read"},
    {"kNoticeUnreadable", globals::kNoticeUnreadable, "it could not be opened or read"},
    {"kNoticeOutsidePackage", globals::kNoticeOutsidePackage, "its text lies outside the package"},
    {"kNoticeShrank", globals::kNoticeShrank,
        "%1 became shorter while it was read: only the part that was there is shown."},
    {"kNoticeLinkRefused", globals::kNoticeLinkRefused,
        "%1: a picture linked from outside the package was left out."},
    {"kNoticePictures", globals::kNoticePictures,
        "%1: pictures beyond the memory budget show as grey boxes."},
    {"kNoticeClose", globals::kNoticeClose, "Close"},
    {"kFileM", globals::kFileM, "File"},
    {"kFileOpenLeft", globals::kFileOpenLeft, "Open Left…"},
    {"kFileOpenRight", globals::kFileOpenRight, "Open Right…"},
    {"kFileReload", globals::kFileReload, "Reload"},
    {"kViewM", globals::kViewM, "View"},
    {"kViewTop", globals::kViewTop, "Top"},
    {"kViewPrev", globals::kViewPrev, "Previous"},
    {"kViewNext", globals::kViewNext, "Next"},
    {"kViewBottom", globals::kViewBottom, "Bottom"},
    {"kNoticePermission", globals::kNoticePermission, "permission to read it is denied"},
    {"kNoticeFolder", globals::kNoticeFolder, "it is a folder"},
    {"kNoticeSpecial", globals::kNoticeSpecial, "it is a device, a FIFO or a socket"},
    {"kNoticeTooLarge", globals::kNoticeTooLarge, "it is too large to show"},
    {"kNoticeChanged", globals::kNoticeChanged, "%1 has changed on disk."},
    {"kNoticeChangedEdited", globals::kNoticeChangedEdited,
        "%1 has changed on disk. Reloading replaces the edits in its pane; Undo brings them back."},
    {"kNoticeChangedStyled", globals::kNoticeChangedStyled,
        "%1 has changed on disk. Reloading discards the edits in its pane."},
    {"kNoticeReloadAnyway", globals::kNoticeReloadAnyway, "Reload and discard edits"},
    {"kNoticeHint", globals::kNoticeHint, "%1 has bytes that %2 cannot read; %3 reads them all."},
    {"kNoticeUseEncoding", globals::kNoticeUseEncoding, "Read as %1"},
};

// The texts whose English stands in a raw literal, without a //% copy for lupdate.
const QStringList longTexts = {"kManualT", "kOriginalSampleT", "kSubstituteSampleT"};

Accessor accessorForKey(QStringView key)
{
    for (const Constant& c : constants) {
        if (key == QLatin1String("globals.") + QLatin1String(c.name))
            return c.text;
    }
    return nullptr;
}

struct Message
{
    QString id;
    QString source;
    QString translation;
};

// A catalogue as lupdate writes it; <byte value="xd"/> stands for a control character.
QList<Message> readCatalogue(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(path));
    QXmlStreamReader xml(&file);
    QList<Message> messages;
    QString* field = nullptr;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            const auto name = xml.name();
            if (name == u"message")
                messages.append({xml.attributes().value("id").toString(), {}, {}});
            else if (name == u"source" && !messages.isEmpty())
                field = &messages.last().source;
            else if (name == u"translation" && !messages.isEmpty())
                field = &messages.last().translation;
            else if (name == u"byte" && field)
                field->append(QChar(xml.attributes().value("value").mid(1).toUInt(nullptr, 16)));
        } else if (token == QXmlStreamReader::EndElement) {
            if (xml.name() == u"source" || xml.name() == u"translation")
                field = nullptr;
        } else if (token == QXmlStreamReader::Characters && field) {
            field->append(xml.text());
        }
    }
    if (xml.hasError())
        qFatal("%s: %s", qPrintable(path), qPrintable(xml.errorString()));
    return messages;
}

bool hasJapanese(const QString& text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        const auto script = c.script();
        return script == QChar::Script_Han || script == QChar::Script_Hiragana
            || script == QChar::Script_Katakana;
    });
}

} // namespace

class TestGlobals : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void defaults_data();
    void defaults();
    void japanese();
    void partialCatalogue();
    void installTranslator_data();
    void installTranslator();
    void writtenTexts_data();
    void writtenTexts();
    void samples();
    void catalogue_data();
    void catalogue();

private:
    static void installJapanese()
    {
        QVERIFY(globals::installTranslator(*qApp, QLocale(QLocale::Japanese, QLocale::Japan)));
    }
};

void TestGlobals::cleanup()
{
    for (QTranslator* translator : qApp->findChildren<QTranslator*>()) {
        QCoreApplication::removeTranslator(translator);
        delete translator;
    }
}

void TestGlobals::defaults_data()
{
    QTest::addColumn<Accessor>("text");
    QTest::addColumn<QString>("expected");
    for (const Constant& c : constants) {
        if (c.english)
            QTest::newRow(c.name) << c.text << QString::fromUtf8(c.english);
    }
}

void TestGlobals::defaults()
{
    QFETCH(Accessor, text);
    QFETCH(QString, expected);
    QCOMPARE(text(), expected);
}

void TestGlobals::japanese()
{
    std::vector<QString> english;
    for (const Constant& c : constants)
        english.push_back(c.text());
    installJapanese();

    QCOMPARE(globals::kLanguage(), QStringLiteral("Japanese"));
    for (const Message& m : readCatalogue(TWINLY_JA_TS)) {
        const Accessor text = accessorForKey(m.id);
        QVERIFY2(text, qPrintable(m.id));
        QCOMPARE(text(), m.translation);
    }
    // Every shown text is Japanese but the name, and the samples keep their English.
    for (std::size_t i = 0; i < std::size(constants); ++i) {
        const QString name = constants[i].name;
        const QString text = constants[i].text();
        if (name.contains("Sample"))
            QCOMPARE(text, english[i]);
        else if (name != "kAppName" && name != "kLanguage")
            QVERIFY2(hasJapanese(text), qPrintable(name + ": " + text));
    }
}

void TestGlobals::partialCatalogue()
{
    QVERIFY(globals::installTranslator(*qApp, QLocale(QLocale::German, QLocale::Germany)));
    QCOMPARE(globals::kEditM(), QStringLiteral("Bearbeiten"));
    QCOMPARE(globals::kMoveNext(), QStringLiteral("Weiter"));
    QCOMPARE(globals::kClearAll(), QStringLiteral("Alles leeren"));
    QCOMPARE(globals::kHelpM(), QStringLiteral("Help"));
    QCOMPARE(globals::kMovePrev(), QStringLiteral("Prev"));
    QCOMPARE(globals::kLanguage(), QStringLiteral("Default"));
}

void TestGlobals::installTranslator_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<bool>("found");
    QTest::newRow("ja_JP") << QLocale("ja_JP") << true;
    QTest::newRow("ja") << QLocale(QLocale::Japanese) << true;
    QTest::newRow("fr_FR") << QLocale("fr_FR") << false;
    QTest::newRow("en_US") << QLocale("en_US") << false;
    QTest::newRow("C") << QLocale::c() << false;
}

void TestGlobals::installTranslator()
{
    QFETCH(QLocale, locale);
    QFETCH(bool, found);
    QTranslator* translator = globals::installTranslator(*qApp, locale);
    QCOMPARE(translator != nullptr, found);
    QCOMPARE(int(qApp->findChildren<QTranslator*>().size()), found ? 1 : 0);
    QCOMPARE(globals::kLanguage() == "Japanese", found);
}

void TestGlobals::writtenTexts_data()
{
    QTest::addColumn<bool>("japanese");
    QTest::newRow("English") << false;
    QTest::newRow("Japanese") << true;
}

// The texts written for Twinly rather than given: headings of one line ending in a colon, the
// credits in four lines, the manual in LF-separated lines.
void TestGlobals::writtenTexts()
{
    QFETCH(bool, japanese);
    if (japanese)
        installJapanese();
    for (const QString& title :
        {globals::kLicenseTitle1(), globals::kLicenseTitle2(), globals::kLicenseTitle3()}) {
        QVERIFY2(title.endsWith(u':') || title.endsWith(u'：'), qPrintable(title));
        QVERIFY(!title.contains(u'\n') && !title.contains(u'\r'));
    }
    const QString credits = globals::kTWLLicenseT();
    QCOMPARE(credits.count(u'\n'), 3);
    QVERIFY(!credits.contains(u'\r') && !credits.endsWith(u'\n'));

    const QString manual = globals::kManualT();
    QVERIFY(!manual.contains(u'\r'));
    QVERIFY2(manual.count(u'\n') >= 25 && manual.count(u'\n') <= 40,
        qPrintable(QString::number(manual.count(u'\n'))));
}

void TestGlobals::samples()
{
    const QString left = globals::kOriginalSampleT();
    const QString right = globals::kSubstituteSampleT();
    for (const QString& sample : {left, right}) {
        QVERIFY(!sample.contains(u'\n'));
        QVERIFY(sample.endsWith(u'\r'));
        QVERIFY(std::all_of(sample.begin(), sample.end(),
            [](QChar c) { return c == u'\r' || (c >= u' ' && c <= u'~'); }));
        QVERIFY2(sample.count(u'\r') >= 70 && sample.count(u'\r') <= 85,
            qPrintable(QString::number(sample.count(u'\r'))));
    }
    const auto lines = [](const QString& text) {
        return SeqDiff::splitLines(
            std::u16string_view(reinterpret_cast<const char16_t*>(text.utf16()), text.size()));
    };
    const auto diffs = SeqDiff::FindDifferences(lines(left), lines(right));
    QVERIFY2(diffs.size() >= 3 && diffs.size() <= 5, qPrintable(QString::number(diffs.size())));
}

void TestGlobals::catalogue_data()
{
    QTest::addColumn<bool>("extracted");
    QTest::newRow("twinly_ja.ts") << false;
    QTest::newRow("lupdate over the sources") << true;
}

// Each id must be a key of the program, and each source text the program's default; the row
// run through lupdate holds the //% comments to the defaults the code returns.
void TestGlobals::catalogue()
{
    QFETCH(bool, extracted);
    QString path = TWINLY_JA_TS;
    QTemporaryDir dir;
    if (extracted) {
        QVERIFY(dir.isValid());
        path = dir.filePath("extracted.ts");
        QProcess lupdate;
        lupdate.start(TWINLY_LUPDATE,
            {"-silent", "-locations", "none", QDir(TWINLY_SHELL_DIR).filePath("globals.cpp"),
                QDir(TWINLY_SHELL_DIR).filePath("Samples.cpp"), "-ts", path});
        QVERIFY(lupdate.waitForFinished(60000));
        QCOMPARE(lupdate.exitCode(), 0);
    }
    const QList<Message> messages = readCatalogue(path);
    QStringList ids;
    for (const Message& m : messages) {
        QVERIFY2(!ids.contains(m.id), qPrintable(m.id));
        ids.append(m.id);
        const Accessor text = accessorForKey(m.id);
        QVERIFY2(text, qPrintable(m.id));
        if (extracted && m.source.isEmpty())
            QVERIFY2(longTexts.contains(m.id.mid(8)), qPrintable(m.id));
        else
            QCOMPARE(m.source, text());
    }
    // lupdate finds every key; the shipped catalogue has all but the untranslated samples.
    QCOMPARE(ids.size(), int(std::size(constants)) - (extracted ? 0 : 2));
}

QTEST_MAIN(TestGlobals)
#include "tst_globals.moc"
