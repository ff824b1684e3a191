#pragma once

#include <QApplication>
#include <QString>

class QUrl;

namespace toolkit {

struct VersionData
{
    int MajorVersion = 0, MinorVersion = 0, BugVersion = 0, NonReleaseVersion = 0, StageCode = 0;
    QString LongVersion, ShortVersion;
};

// The application object: version data, the quit command, and the few services the program asks
// of the desktop.
class Application : public QApplication
{
    Q_OBJECT
public:
    Application(int& argc, char** argv);

    VersionData version;

    // Closes every window, telling each that the application quits, then ends the event loop
    // with the code. A window that refuses stops the quit.
    static void Quit(int code);
    static bool quitting() { return quitting_; }

    // Deletes every window; they own pop-ups that are top-level widgets too, so these go with them.
    static void deleteWindows();

    static void MsgBox(const QString& text);
    // Hands a web or mail address to the desktop; a failure is not reported.
    static void ShowURL(const QString& address);
    static void ShowURL(const QUrl& url);

private:
    static inline bool quitting_ = false;
};

} // namespace toolkit
