// Twinly: compares two texts line by line.

#include "App.h"
#include "CommandLine.h"
#include "DiffWin.h"
#include "DocumentChannel.h"
#include "FileTypes1.h"
#include "MenuBar1.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <unistd.h>

namespace {

// --help and --version are answered before any window system is touched, so they work on a
// console without a display. The files come back absolute, against the folder of this launch,
// since a running Twinly may have been started anywhere. Nothing when the launch ends here.
std::optional<QByteArrayList> documentsFromCommandLine(int argc, char** argv, int& exitCode)
{
    const CommandLine line = CommandLine::parse(argc, argv);
    for (const QString& message : line.messages)
        std::fprintf(stderr, "%s\n", qPrintable(message));
    switch (line.action) {
    case CommandLine::Action::Open:
        return line.files;
    case CommandLine::Action::Help:
        std::fputs(qPrintable(CommandLine::usage()), stdout);
        exitCode = 0;
        break;
    case CommandLine::Action::Version:
        std::fputs("twinly " TWINLY_VERSION "\n", stdout);
        exitCode = 0;
        break;
    case CommandLine::Action::Refuse:
        std::fputs(qPrintable(CommandLine::usage()), stderr);
        exitCode = CommandLine::kRefused;
        break;
    }
    return std::nullopt;
}

// The exit code when a running Twinly took the documents; nothing when this launch is to become
// the running one.
std::optional<int> handOver(DocumentChannel& channel, const QByteArrayList& paths)
{
    switch (channel.forward(paths)) {
    case DocumentChannel::Handover::Delivered:
        return 0;
    case DocumentChannel::Handover::Unanswered:
        std::fputs("twinly: the running Twinly did not answer in time; it may still open the "
                   "files when it does.\n",
            stderr);
        return 1;
    case DocumentChannel::Handover::NoInstance:
        break;
    }
    return std::nullopt;
}

// A terminating signal quits like the Quit command, so that the socket goes with the program. The
// handler may do little more than write to a pipe, which it can only find in a global.
int signalPipe[2] = {-1, -1};

void onSignal(int)
{
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

void quitOnSignals(QObject* parent)
{
    if (::pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, parent);
    QObject::connect(notifier, &QSocketNotifier::activated, [] {
        char bytes[16];
        while (::read(signalPipe[0], bytes, sizeof bytes) > 0) { }
        toolkit::Application::Quit(0);
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
}

// Documents from a later launch: the window comes to the front and takes them.
void openForwarded(const QByteArrayList& paths)
{
    if (toolkit::Application::quitting())
        return;
    auto& win = toolkit::implicitInstance<DiffWin>();
    win.setWindowState(win.windowState() & ~Qt::WindowMinimized);
    win.Show();
    App::instance().openDocuments(paths);
}

} // namespace

int main(int argc, char** argv)
{
    int exitCode = 0;
    const std::optional<QByteArrayList> documents = documentsFromCommandLine(argc, argv, exitCode);
    if (!documents)
        return exitCode;
    const QByteArrayList paths = *documents;
    // Qt gets the program's name and nothing else to parse.
    int qtArgc = 1;
    char* qtArgv[] = {argv[0], nullptr};
    std::unique_ptr<DocumentChannel> channel;
    {
        QCoreApplication console(qtArgc, qtArgv);
        channel = std::make_unique<DocumentChannel>(DocumentChannel::sessionServerName());
        if (const std::optional<int> code = handOver(*channel, paths))
            return *code;
    }

    pAllFileTypes();
    auto app = std::make_unique<App>(qtArgc, qtArgv);
    if (!app->Event_Open())
        return 0;

    toolkit::implicitInstance<DiffWin>().Show();
    // Listening only now: a document can't arrive before the window has opened.
    if (channel->listen())
        QObject::connect(
            channel.get(), &DocumentChannel::documentsReceived, app.get(), &openForwarded);
    else
        std::fprintf(stderr, "twinly: later launches will open a window of their own (%s).\n",
            qPrintable(channel->errorString()));
    quitOnSignals(app.get());
    // After the window's first paint is queued, so it is on screen while the files are read.
    if (!paths.isEmpty())
        QTimer::singleShot(0, app.get(), [paths] {
            // The launch's own files are told of on its console too.
            auto& win = toolkit::implicitInstance<DiffWin>();
            win.echoNotices = true;
            App::instance().openDocuments(paths);
            win.echoNotices = false;
        });
    const int code = App::exec();

    channel.reset();
    toolkit::Application::deleteWindows();
    delete &MenuBar1::instance();
    return code;
}
