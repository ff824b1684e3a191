// Twinly: compares two texts line by line.

#include "App.h"
#include "DiffWin.h"
#include "FileTypes1.h"
#include "MenuBar1.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <memory>

namespace {

// --help and --version are answered before any window system is touched, so they work on a
// console without a display.
void answerOptions(int argc, char** argv)
{
    QCoreApplication console(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("twinly"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TWINLY_VERSION));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Compares two texts line by line."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("files"),
        QStringLiteral("Files to compare: left, then right."), QStringLiteral("[LEFT [RIGHT]]"));
    parser.process(console);
    if (!parser.positionalArguments().isEmpty())
        std::fputs("twinly: opening files from the command line is not available in this version; "
                   "drop them on the window instead.\n",
            stderr);
}

} // namespace

int main(int argc, char** argv)
{
    answerOptions(argc, argv);

    pAllFileTypes();
    auto app = std::make_unique<App>(argc, argv);
    if (!app->Event_Open())
        return 0;

    toolkit::implicitInstance<DiffWin>().Show();
    const int code = App::exec();

    toolkit::Application::deleteWindows();
    delete &MenuBar1::instance();
    return code;
}
