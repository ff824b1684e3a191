#include "App.h"

#include "MenuBar1.h"
#include "SeqDiff.h"
#include "globals.h"

#include <QIcon>

App::App(int& argc, char** argv)
    : toolkit::Application(argc, argv)
    , selfTest(&SeqDiff::SelfTest)
{
    version = {1, 1, 4, 24, 2, QStringLiteral("Twinly 1.1.4"), QStringLiteral("1.1.4")};
    setApplicationName(QStringLiteral("twinly"));
    setApplicationVersion(version.ShortVersion);
    setWindowIcon(QIcon(QStringLiteral(":/Twinly_Icon9_128.png")));
    // Lets the desktop match the window to the installed entry and its icon.
    setDesktopFileName(QStringLiteral("twinly"));
    // The menus fetch their texts once, so the user's language must be in place first.
    globals::installTranslator(*this);
    MenuBar1::instance();
}

bool App::Event_Open()
{
    if (!selfTest()) {
        // Not localised: this is the one message the program shows, before anything else.
        MsgBox(QStringLiteral("SeqDiff: SelfTest failed"));
        Quit(0);
        return false;
    }
    globals::isJapanese = globals::kLanguage() == QLatin1String("Japanese");
    return true;
}
