#include "App.h"
#include "CommandLine.h"
#include "DiffWin.h"
#include "HelpWindow.h"
#include "globals.h"

#include <QDir>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTranslator>

#include <memory>

namespace {
int argc = 1;
char arg0[] = "tst_startup";
char* argv[] = {arg0, nullptr};
} // namespace

class TstStartup : public QObject
{
    Q_OBJECT
private slots:
    void consoleOptions_data();
    void consoleOptions();
    void commandLine_data();
    void commandLine();
    void noRunpathEntryIsEmpty();
    void languageFollowsTheCatalogue();
    void secondLaunchHandsOver_data();
    void secondLaunchHandsOver();
    void closingTheComparisonWindowQuits();
    void failedSelfTestStops();
};

void TstStartup::consoleOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("stdoutHas");
    QTest::addColumn<QString>("stderrHas");
    QTest::newRow("version") << QStringList{"--version"} << 0 << "twinly 1.1.4"
                             << "";
    QTest::newRow("help") << QStringList{"--help"} << 0 << "--version"
                          << "";
    QTest::newRow("unknown option") << QStringList{"--frobnicate"} << 2 << ""
                                    << "frobnicate";
    QTest::newRow("Qt's option") << QStringList{"-platform", "offscreen"} << 2 << ""
                                 << "-platform";
}

void TstStartup::consoleOptions()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, stdoutHas);
    QFETCH(QString, stderrHas);
    QProcess p;
    // No display at all: the options must be answered before any window system is needed.
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    env.remove("QT_QPA_PLATFORM");
    QTemporaryDir runtime;
    env.insert("XDG_RUNTIME_DIR", runtime.path());
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(TWINLY_BINARY), arguments);
    QVERIFY(p.waitForFinished(20000));
    QCOMPARE(p.exitStatus(), QProcess::NormalExit);
    QCOMPARE(p.exitCode(), exitCode);
    QVERIFY2(
        QString::fromUtf8(p.readAllStandardOutput()).contains(stdoutHas), qPrintable(stdoutHas));
    QVERIFY2(
        QString::fromUtf8(p.readAllStandardError()).contains(stderrHas), qPrintable(stderrHas));
    // Neither answering nor refusing an option looks for a running Twinly.
    QVERIFY(QDir(runtime.path())
                .isEmpty(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot));
}

void TstStartup::commandLine_data()
{
    QTest::addColumn<QByteArrayList>("arguments");
    QTest::addColumn<int>("action");
    QTest::addColumn<QByteArrayList>("files"); // relative ones against the working folder
    using A = CommandLine::Action;
    QTest::newRow("files") << QByteArrayList{"a.txt", "/x/../b"} << int(A::Open)
                           << QByteArrayList{"a.txt", "/b"};
    QTest::newRow("options after --") << QByteArrayList{"--", "-platform", "--",
        "-reverse"} << int(A::Open) << QByteArrayList{"-platform", "--", "-reverse"};
    QTest::newRow("lone dash is a file")
        << QByteArrayList{"-"} << int(A::Open) << QByteArrayList{"-"};
    QTest::newRow("name not UTF-8")
        << QByteArrayList{"/t/\xff\xfe.txt"} << int(A::Open) << QByteArrayList{"/t/\xff\xfe.txt"};
    QTest::newRow("empty name ignored")
        << QByteArrayList{"", "a"} << int(A::Open) << QByteArrayList{"a"};
    QTest::newRow("Qt's option") << QByteArrayList{"-platform", "b.txt"} << int(A::Refuse)
                                 << QByteArrayList();
    QTest::newRow("help after a file")
        << QByteArrayList{"a", "--help"} << int(A::Help) << QByteArrayList();
    QTest::newRow("version") << QByteArrayList{"-v"} << int(A::Version) << QByteArrayList();
}

void TstStartup::commandLine()
{
    QFETCH(QByteArrayList, arguments);
    QFETCH(int, action);
    QFETCH(QByteArrayList, files);
    std::vector<const char*> argv{"twinly"};
    for (const QByteArray& argument : arguments)
        argv.push_back(argument.constData());
    const CommandLine line = CommandLine::parse(int(argv.size()), argv.data());
    QCOMPARE(int(line.action), action);
    for (QByteArray& file : files)
        if (!file.startsWith('/'))
            file.prepend(QFile::encodeName(QDir::currentPath()) + '/');
    QCOMPARE(line.files, files);
}

// An empty entry in the RUNPATH stands for the working folder.
void TstStartup::noRunpathEntryIsEmpty()
{
    QProcess readelf;
    readelf.start("readelf", {"-d", QStringLiteral(TWINLY_BINARY)});
    QVERIFY(readelf.waitForFinished(10000) && readelf.exitCode() == 0);
    for (const QByteArray& line : readelf.readAllStandardOutput().split('\n')) {
        if (!line.contains("(RUNPATH)") && !line.contains("(RPATH)"))
            continue;
        const QByteArray paths = line.mid(line.indexOf('[') + 1).chopped(1);
        QVERIFY2(!paths.split(':').contains(QByteArray()), line.constData());
    }
}

void TstStartup::secondLaunchHandsOver_data()
{
    QTest::addColumn<QStringList>("first");
    QTest::addColumn<QStringList>("second");
    QTest::newRow("files") << QStringList() << QStringList{"a.txt", "b.txt", "c.txt"};
    QTest::newRow("no files, first with files") << QStringList{"a.txt", "b.txt"} << QStringList();
}

void TstStartup::secondLaunchHandsOver()
{
    QFETCH(QStringList, first);
    QFETCH(QStringList, second);
    // A session of its own: a private runtime folder, offscreen.
    QTemporaryDir runtime;
    QFile::setPermissions(runtime.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_RUNTIME_DIR", runtime.path());
    env.insert("QT_QPA_PLATFORM", "offscreen");
    const auto launch = [&](const QStringList& arguments) {
        auto p = std::make_unique<QProcess>();
        p->setProcessEnvironment(env);
        p->setWorkingDirectory(runtime.path());
        p->start(QStringLiteral(TWINLY_BINARY), arguments);
        return p;
    };
    const auto listening = [&] {
        return !QDir(runtime.path()).entryList({"twinly-*.socket"}, QDir::System).isEmpty();
    };
    for (const char* name : {"a.txt", "b.txt", "c.txt"}) {
        QFile file(runtime.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("text\n") == 5);
    }
    const auto running = launch(first);
    QTRY_VERIFY_WITH_TIMEOUT(listening(), 20000);

    QElapsedTimer clock;
    clock.start();
    const auto later = launch(second);
    QVERIFY(later->waitForFinished(10000));
    QCOMPARE(later->exitStatus(), QProcess::NormalExit);
    QCOMPARE(later->exitCode(), 0);
    QCOMPARE(later->readAllStandardError(), QByteArray());
    QCOMPARE_LT(clock.elapsed(), 5000);
    QCOMPARE(running->state(), QProcess::Running);

    // Terminated, it quits as by the menu and takes its socket along.
    running->terminate();
    QVERIFY(running->waitForFinished(10000));
    QCOMPARE(running->exitStatus(), QProcess::NormalExit);
    QCOMPARE(running->exitCode(), 0);
    QVERIFY(!listening());
}

void TstStartup::languageFollowsTheCatalogue()
{
    App& app = App::instance();
    QVERIFY(app.Event_Open());
    QVERIFY(!globals::isJapanese);
    QTranslator* ja = globals::installTranslator(app, QLocale(QStringLiteral("ja_JP")));
    QVERIFY(ja);
    QVERIFY(app.Event_Open());
    QVERIFY(globals::isJapanese);
    QCoreApplication::removeTranslator(ja);
    delete ja;
    QVERIFY(app.Event_Open());
    QVERIFY(!globals::isJapanese);
    QCOMPARE(app.version.ShortVersion, QStringLiteral("1.1.4"));
}

void TstStartup::closingTheComparisonWindowQuits()
{
    auto& win = toolkit::implicitInstance<DiffWin>();
    win.Show();
    auto& help = toolkit::implicitInstance<HelpWindow>();
    help.Show();
    QVERIFY(QTest::qWaitForWindowExposed(&help));

    // A user's close of the Help window only hides it.
    help.Close();
    QVERIFY(!help.isVisible());
    QCOMPARE(&toolkit::implicitInstance<HelpWindow>(), &help);
    help.Show();

    QTimer::singleShot(0, &win, [&win] { win.Close(); });
    QTimer watchdog;
    watchdog.setSingleShot(true);
    connect(&watchdog, &QTimer::timeout, [] { QCoreApplication::exit(99); });
    watchdog.start(10000);
    QCOMPARE(QCoreApplication::exec(), 0);
    QVERIFY(!win.isVisible());
    QVERIFY(!help.isVisible());
}

void TstStartup::failedSelfTestStops()
{
    App& app = App::instance();
    app.selfTest = [] { return false; };
    QString shown;
    QTimer::singleShot(0, [&shown] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            shown = box->text();
            box->accept();
        }
    });
    QVERIFY(!app.Event_Open());
    QCOMPARE(shown, QStringLiteral("SeqDiff: SelfTest failed"));
    QVERIFY(toolkit::Application::quitting());
}

int main(int, char**)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    App app(argc, argv);
    TstStartup test;
    const int result = QTest::qExec(&test);
    toolkit::Application::deleteWindows();
    return result;
}

#include "tst_startup.moc"
