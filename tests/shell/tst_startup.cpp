#include "App.h"
#include "DiffWin.h"
#include "HelpWindow.h"
#include "globals.h"

#include <QMessageBox>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <QTranslator>

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
    void languageFollowsTheCatalogue();
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
    QTest::newRow("unknown option") << QStringList{"--frobnicate"} << 1 << ""
                                    << "frobnicate";
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
    p.setProcessEnvironment(env);
    p.start(QStringLiteral(TWINLY_BINARY), arguments);
    QVERIFY(p.waitForFinished(20000));
    QCOMPARE(p.exitStatus(), QProcess::NormalExit);
    QCOMPARE(p.exitCode(), exitCode);
    QVERIFY2(
        QString::fromUtf8(p.readAllStandardOutput()).contains(stdoutHas), qPrintable(stdoutHas));
    QVERIFY2(
        QString::fromUtf8(p.readAllStandardError()).contains(stderrHas), qPrintable(stderrHas));
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
