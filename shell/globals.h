#pragma once

// Every text that Twinly shows in more than one language, one accessor per text. Each looks its
// key ("globals." and the accessor's name) up in the installed catalogues and falls back to the
// English default when no catalogue holds it.

#include <QLocale>
#include <QString>

class QCoreApplication;
class QTranslator;

namespace globals {

// Set once at start-up from kLanguage(); chooses the wording of the encoding popups.
inline bool isJapanese = false;
// The pane that the next file opened from outside goes to; 2 or more ends the batch.
inline int fCount = 0;

// Loads :/i18n/twinly_<lang>.qm for the first of the locale's UI languages that has one and
// installs it on `app`, which owns it. nullptr when there is no catalogue for the locale.
QTranslator* installTranslator(QCoreApplication& app, const QLocale& locale = QLocale::system());

QString kEditM();
QString kHelpM();
QString kAboutM();
QString kManualM();
QString kLicenseM();
QString kSummaryT();
QString kURLHTag();
QString kMailHTag();
QString kDropHTag();
QString kMainTitleT();
QString kTWLLicenseT();
QString kOriginalSampleT();
QString kSubstituteSampleT();
QString kManualT();
QString kMoveNextHTag();
QString kMovePrevHTag();
QString kMoveTopHTag();
QString kMoveBtmHTag();
QString kAppName();
QString kEditClear();
QString kFileQuit();
QString kHitAnyKeyT();
QString kSameT();
QString kDifferentT();
QString kEditCut();
QString kEditCopy();
QString kEditPaste();
QString kEditUndo();
QString kEditRedo();
QString kEditSelectAll();
QString kMoveNext();
QString kMoveBtm();
QString kMovePrev();
QString kMoveTop();
QString kAllTheSameT();
QString kLicenseTitle1();
QString kLicenseTitle2();
QString kLicenseTitle3();
QString kClearAll();
QString kBoxLeft();
QString kBoxRight();
QString kLanguage();
// Notices about files; %1 is a file's name.
QString kNoticeNotRead();
QString kNoticeMissing();
QString kNoticeNotAFile();
QString kNoticeRefusedKind();
QString kNoticeUnreadable();
QString kNoticeOutsidePackage();
QString kNoticeShrank();
QString kNoticeLinkRefused();
QString kNoticePictures();
QString kNoticeClose();
// The File and View menus, and what the notice bar offers.
QString kFileM();
QString kFileOpenLeft();
QString kFileOpenRight();
QString kFileReload();
QString kViewM();
QString kViewTop();
QString kViewPrev();
QString kViewNext();
QString kViewBottom();
QString kNoticePermission();
QString kNoticeFolder();
QString kNoticeSpecial();
QString kNoticeTooLarge();
QString kNoticeChanged();
QString kNoticeChangedEdited();
QString kNoticeChangedStyled();
QString kNoticeReloadAnyway();
QString kNoticeHint();
QString kNoticeUseEncoding();

} // namespace globals
