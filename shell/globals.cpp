#include "globals.h"

#include "TextLookup.h"

#include <QCoreApplication>
#include <QTranslator>

// Each accessor carries its English text twice: in the //% comment, from which lupdate writes the
// catalogue's source text, and as the fallback that the program returns. The catalogue test runs
// lupdate over this file and holds the two to each other. The manual is too long for //% lines
// and lives only in its raw literal.

namespace globals {

QString lookUp(const char* id, QStringView fallback)
{
    // qtTrId answers with the id itself when no catalogue knows it.
    QString text = qtTrId(id);
    if (text == QLatin1String(id))
        return fallback.toString();
    return text;
}

QTranslator* installTranslator(QCoreApplication& app, const QLocale& locale)
{
    auto* translator = new QTranslator(&app);
    if (!translator->load(
            locale, QStringLiteral("twinly"), QStringLiteral("_"), QStringLiteral(":/i18n"))) {
        delete translator;
        return nullptr;
    }
    QCoreApplication::installTranslator(translator);
    return translator;
}

QString kEditM()
{
    //% "Edit"
    return lookUp(QT_TRID_NOOP("globals.kEditM"), u"Edit");
}

QString kHelpM()
{
    //% "Help"
    return lookUp(QT_TRID_NOOP("globals.kHelpM"), u"Help");
}

QString kAboutM()
{
    //% "About Twinly"
    return lookUp(QT_TRID_NOOP("globals.kAboutM"), u"About Twinly");
}

QString kManualM()
{
    //% "Operation explanation"
    return lookUp(QT_TRID_NOOP("globals.kManualM"), u"Operation explanation");
}

QString kLicenseM()
{
    //% "Copyright"
    return lookUp(QT_TRID_NOOP("globals.kLicenseM"), u"Copyright");
}

QString kSummaryT()
{
    //% "Text Compare Utility"
    return lookUp(QT_TRID_NOOP("globals.kSummaryT"), u"Text Compare Utility");
}

QString kURLHTag()
{
    //% "Jump to the support page"
    return lookUp(QT_TRID_NOOP("globals.kURLHTag"), u"Jump to the support page");
}

QString kMailHTag()
{
    //% "Make new mail to the author"
    return lookUp(QT_TRID_NOOP("globals.kMailHTag"), u"Make new mail to the author");
}

QString kDropHTag()
{
    //% "You can drop any file in this area or everywhere in the window. \r"
    //% "(It's Ok to drop two files at a time.)"
    return lookUp(QT_TRID_NOOP("globals.kDropHTag"),
        u"You can drop any file in this area or everywhere in the window. \r"
        u"(It's Ok to drop two files at a time.)");
}

QString kMainTitleT()
{
    //% "Text Differences"
    return lookUp(QT_TRID_NOOP("globals.kMainTitleT"), u"Text Differences");
}

QString kTWLLicenseT()
{
    //% "Twinly's comparison engine is its own code and needs nothing but the C++ standard "
    //% "library.\n"
    //% "Its windows are built with Qt, and ICU converts its Japanese encodings, all but two "
    //% "that use tables of its own.\n"
    //% "The licences of these libraries ask that a program built with them make this known.\n"
    //% "That is why these notices are shown; the full licence texts are published on the "
    //% "projects' web pages."
    return lookUp(QT_TRID_NOOP("globals.kTWLLicenseT"),
        u"Twinly's comparison engine is its own code and needs nothing but the C++ standard "
        u"library.\n"
        u"Its windows are built with Qt, and ICU converts its Japanese encodings, all but two "
        u"that use tables of its own.\n"
        u"The licences of these libraries ask that a program built with them make this known.\n"
        u"That is why these notices are shown; the full licence texts are published on the "
        u"projects' web pages.");
}

QString kManualT()
{
    static const QString manual = QString::fromUtf8(R"manual(Twinly compares two texts line by line.
(Any file can be read as text.)

◆ The left and right panes hold the two texts. The indicator between them joins each stretch of lines that differs by a yellow band (#FFCC00), from its place on the left to its place on the right; its blue ground (#99CCFF) stands for the lines that are the same. The current difference is drawn in orange, and its lines are marked in both panes; within changed lines, the characters that differ are marked more strongly. The small boxes at the lower left and lower right show the two colours.

◆ "Next" and "Prev" step to the next and the previous difference and show it a few lines below the top of the panes; "Top" and "Btm" go to the beginning and the end. The number between the panes counts the differences, and "All same!" shows when there are none. Click a band to make that difference the current one. Turn the mouse wheel over the indicator to scroll both panes together.
The View menu does the same from the keyboard: Alt+Home to the top, Alt+Up to the previous difference, Alt+Down to the next, Alt+End to the bottom.

◆ Drop one or two files on the window or on a pane.
On the window or on the left pane, the first file goes to the left and the second to the right.
On the right pane, the first file goes to the right and the second to the left.
A dropped file replaces the text of its pane; dropped text is added to it.
The File menu opens a file into a pane as a drop does: Open Left… (Ctrl+O), Open Right… (Ctrl+Shift+O). Reload (Ctrl+R or F5) reads both panes' files again.

◆ Files can also be given on the command line, "twinly LEFT RIGHT", or opened with Twinly from the file manager.
While Twinly runs, opening more files hands them to its window instead of starting a second one.

◆ Each pane has its own "Text encoding" popup: UTF-8, ShiftJIS, Japanese MacOS, Japanese EUC and ShiftJIS-X0212.
Choosing one shows the pane's last file again in that encoding, in place of any edits; Undo (Ctrl+Z) brings them back, as it does after Reload and "Clear All".
When the chosen encoding can't read some bytes and another one reads them all, the bar at the bottom of the window offers it.

◆ Rich text (.rtf files and .rtfd folders) is shown with its styles.
HTML and other files are shown as plain text; PNG and JPEG pictures, PDF, movies and ZIP archives are not read.

◆ The title above a pane names its file; click it to see the folders that hold the file. "Clear All" empties both panes.

◆ A bar at the bottom of the window tells of a file that could not be read, and why, and of a shown file that has changed on disk, with a button to reload it. Ctrl+Q quits.


(Note)
1. If a file takes long to read, press Esc to interrupt the reading; the pane keeps what was read so far.

2. The panes can be edited, but Twinly never writes a file. It is a comparison tool, not an editor: edits are gone when it closes.

3. Lines are compared exactly. The line endings CR, LF and CR LF count as the same; blanks at the end of a line count as a difference.
)manual");
    return lookUp(QT_TRID_NOOP("globals.kManualT"), manual);
}

QString kMoveNextHTag()
{
    //% "To the next difference"
    return lookUp(QT_TRID_NOOP("globals.kMoveNextHTag"), u"To the next difference");
}

QString kMovePrevHTag()
{
    //% "To the previous difference"
    return lookUp(QT_TRID_NOOP("globals.kMovePrevHTag"), u"To the previous difference");
}

QString kMoveTopHTag()
{
    //% "To the top"
    return lookUp(QT_TRID_NOOP("globals.kMoveTopHTag"), u"To the top");
}

QString kMoveBtmHTag()
{
    //% "To the bottom"
    return lookUp(QT_TRID_NOOP("globals.kMoveBtmHTag"), u"To the bottom");
}

QString kAppName()
{
    //% "Twinly"
    return lookUp(QT_TRID_NOOP("globals.kAppName"), u"Twinly");
}

QString kEditClear()
{
    //% "Delete"
    return lookUp(QT_TRID_NOOP("globals.kEditClear"), u"Delete");
}

QString kFileQuit()
{
    //% "Quit"
    return lookUp(QT_TRID_NOOP("globals.kFileQuit"), u"Quit");
}

QString kHitAnyKeyT()
{
    //% "\"Click Anywhere\" or \"Hit Any Key\" to close this window."
    return lookUp(QT_TRID_NOOP("globals.kHitAnyKeyT"),
        u"\"Click Anywhere\" or \"Hit Any Key\" to close this window.");
}

QString kSameT()
{
    //% "Same"
    return lookUp(QT_TRID_NOOP("globals.kSameT"), u"Same");
}

QString kDifferentT()
{
    //% "Different"
    return lookUp(QT_TRID_NOOP("globals.kDifferentT"), u"Different");
}

QString kEditCut()
{
    //% "Cut"
    return lookUp(QT_TRID_NOOP("globals.kEditCut"), u"Cut");
}

QString kEditCopy()
{
    //% "Copy"
    return lookUp(QT_TRID_NOOP("globals.kEditCopy"), u"Copy");
}

QString kEditPaste()
{
    //% "Paste"
    return lookUp(QT_TRID_NOOP("globals.kEditPaste"), u"Paste");
}

QString kEditUndo()
{
    //% "Undo"
    return lookUp(QT_TRID_NOOP("globals.kEditUndo"), u"Undo");
}

QString kEditRedo()
{
    //% "Redo"
    return lookUp(QT_TRID_NOOP("globals.kEditRedo"), u"Redo");
}

QString kEditSelectAll()
{
    //% "Select All"
    return lookUp(QT_TRID_NOOP("globals.kEditSelectAll"), u"Select All");
}

QString kMoveNext()
{
    //% "Next"
    return lookUp(QT_TRID_NOOP("globals.kMoveNext"), u"Next");
}

QString kMoveBtm()
{
    //% "Btm"
    return lookUp(QT_TRID_NOOP("globals.kMoveBtm"), u"Btm");
}

QString kMovePrev()
{
    //% "Prev"
    return lookUp(QT_TRID_NOOP("globals.kMovePrev"), u"Prev");
}

QString kMoveTop()
{
    //% "Top"
    return lookUp(QT_TRID_NOOP("globals.kMoveTop"), u"Top");
}

QString kAllTheSameT()
{
    //% "All same!"
    return lookUp(QT_TRID_NOOP("globals.kAllTheSameT"), u"All same!");
}

QString kLicenseTitle1()
{
    //% "Twinly 1.1.4 (2026), free software under the GNU LGPL 2.1:"
    return lookUp(QT_TRID_NOOP("globals.kLicenseTitle1"),
        u"Twinly 1.1.4 (2026), free software under the GNU LGPL 2.1:");
}

QString kLicenseTitle2()
{
    //% "Qt 6 toolkit, under the GNU LGPL 3:"
    return lookUp(QT_TRID_NOOP("globals.kLicenseTitle2"), u"Qt 6 toolkit, under the GNU LGPL 3:");
}

QString kLicenseTitle3()
{
    //% "ICU (Unicode License):"
    return lookUp(QT_TRID_NOOP("globals.kLicenseTitle3"), u"ICU (Unicode License):");
}

QString kClearAll()
{
    //% "Clear All"
    return lookUp(QT_TRID_NOOP("globals.kClearAll"), u"Clear All");
}

QString kBoxLeft()
{
    //% "Left Box"
    return lookUp(QT_TRID_NOOP("globals.kBoxLeft"), u"Left Box");
}

QString kBoxRight()
{
    //% "Right Box"
    return lookUp(QT_TRID_NOOP("globals.kBoxRight"), u"Right Box");
}

QString kLanguage()
{
    // Never shown: a catalogue that answers "Japanese" here switches the encoding popups to their
    // Japanese wording.
    //% "Default"
    return lookUp(QT_TRID_NOOP("globals.kLanguage"), u"Default");
}

QString kNoticeNotRead()
{
    //% "%1 was not read: %2."
    return lookUp(QT_TRID_NOOP("globals.kNoticeNotRead"), u"%1 was not read: %2.");
}

QString kNoticeMissing()
{
    //% "it does not exist"
    return lookUp(QT_TRID_NOOP("globals.kNoticeMissing"), u"it does not exist");
}

QString kNoticeNotAFile()
{
    //% "it is not a regular file"
    return lookUp(QT_TRID_NOOP("globals.kNoticeNotAFile"), u"it is not a regular file");
}

QString kNoticeRefusedKind()
{
    //% "files of this kind are never read"
    return lookUp(QT_TRID_NOOP("globals.kNoticeRefusedKind"), u"files of this kind are never read");
}

QString kNoticeUnreadable()
{
    //% "it could not be opened or read"
    return lookUp(QT_TRID_NOOP("globals.kNoticeUnreadable"), u"it could not be opened or read");
}

QString kNoticeOutsidePackage()
{
    //% "its text lies outside the package"
    return lookUp(
        QT_TRID_NOOP("globals.kNoticeOutsidePackage"), u"its text lies outside the package");
}

QString kNoticeShrank()
{
    //% "%1 became shorter while it was read: only the part that was there is shown."
    return lookUp(QT_TRID_NOOP("globals.kNoticeShrank"),
        u"%1 became shorter while it was read: only the part that was there is shown.");
}

QString kNoticeLinkRefused()
{
    //% "%1: a picture linked from outside the package was left out."
    return lookUp(QT_TRID_NOOP("globals.kNoticeLinkRefused"),
        u"%1: a picture linked from outside the package was left out.");
}

QString kNoticePictures()
{
    //% "%1: pictures beyond the memory budget show as grey boxes."
    return lookUp(QT_TRID_NOOP("globals.kNoticePictures"),
        u"%1: pictures beyond the memory budget show as grey boxes.");
}

QString kNoticeClose()
{
    //% "Close"
    return lookUp(QT_TRID_NOOP("globals.kNoticeClose"), u"Close");
}

QString kFileM()
{
    //% "File"
    return lookUp(QT_TRID_NOOP("globals.kFileM"), u"File");
}

QString kFileOpenLeft()
{
    //% "Open Left…"
    return lookUp(QT_TRID_NOOP("globals.kFileOpenLeft"), u"Open Left…");
}

QString kFileOpenRight()
{
    //% "Open Right…"
    return lookUp(QT_TRID_NOOP("globals.kFileOpenRight"), u"Open Right…");
}

QString kFileReload()
{
    //% "Reload"
    return lookUp(QT_TRID_NOOP("globals.kFileReload"), u"Reload");
}

QString kViewM()
{
    //% "View"
    return lookUp(QT_TRID_NOOP("globals.kViewM"), u"View");
}

QString kViewTop()
{
    //% "Top"
    return lookUp(QT_TRID_NOOP("globals.kViewTop"), u"Top");
}

QString kViewPrev()
{
    //% "Previous"
    return lookUp(QT_TRID_NOOP("globals.kViewPrev"), u"Previous");
}

QString kViewNext()
{
    //% "Next"
    return lookUp(QT_TRID_NOOP("globals.kViewNext"), u"Next");
}

QString kViewBottom()
{
    //% "Bottom"
    return lookUp(QT_TRID_NOOP("globals.kViewBottom"), u"Bottom");
}

QString kNoticePermission()
{
    //% "permission to read it is denied"
    return lookUp(QT_TRID_NOOP("globals.kNoticePermission"), u"permission to read it is denied");
}

QString kNoticeFolder()
{
    //% "it is a folder"
    return lookUp(QT_TRID_NOOP("globals.kNoticeFolder"), u"it is a folder");
}

QString kNoticeSpecial()
{
    //% "it is a device, a FIFO or a socket"
    return lookUp(QT_TRID_NOOP("globals.kNoticeSpecial"), u"it is a device, a FIFO or a socket");
}

QString kNoticeTooLarge()
{
    //% "it is too large to show"
    return lookUp(QT_TRID_NOOP("globals.kNoticeTooLarge"), u"it is too large to show");
}

QString kNoticeChanged()
{
    //% "%1 has changed on disk."
    return lookUp(QT_TRID_NOOP("globals.kNoticeChanged"), u"%1 has changed on disk.");
}

QString kNoticeChangedEdited()
{
    //% "%1 has changed on disk. Reloading replaces the edits in its pane; Undo brings them back."
    return lookUp(QT_TRID_NOOP("globals.kNoticeChangedEdited"),
        u"%1 has changed on disk. Reloading replaces the edits in its pane; Undo brings them "
        u"back.");
}

QString kNoticeChangedStyled()
{
    //% "%1 has changed on disk. Reloading discards the edits in its pane."
    return lookUp(QT_TRID_NOOP("globals.kNoticeChangedStyled"),
        u"%1 has changed on disk. Reloading discards the edits in its pane.");
}

QString kNoticeReloadAnyway()
{
    //% "Reload and discard edits"
    return lookUp(QT_TRID_NOOP("globals.kNoticeReloadAnyway"), u"Reload and discard edits");
}

QString kNoticeHint()
{
    //% "%1 has bytes that %2 cannot read; %3 reads them all."
    return lookUp(QT_TRID_NOOP("globals.kNoticeHint"),
        u"%1 has bytes that %2 cannot read; %3 reads them all.");
}

QString kNoticeUseEncoding()
{
    //% "Read as %1"
    return lookUp(QT_TRID_NOOP("globals.kNoticeUseEncoding"), u"Read as %1");
}

} // namespace globals
