// The Help, About and Copyright windows, shown offscreen: their layout at the designed sizes and
// after a resize, how each one goes away, and what their links open.

#include "AboutWindow.h"
#include "App.h"
#include "Canvas.h"
#include "Geometry.h"
#include "HelpWindow.h"
#include "Label.h"
#include "LicenseWindow.h"
#include "MenuBar1.h"
#include "TextArea.h"
#include "globals.h"

#include <QAbstractScrollArea>
#include <QDesktopServices>
#include <QPointer>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QTranslator>

using toolkit::implicitInstance;
using Text = QString (*)();
Q_DECLARE_METATYPE(Text)

namespace {

toolkit::Window& windowNamed(const QString& name)
{
    if (name == QLatin1String("Help"))
        return implicitInstance<HelpWindow>();
    if (name == QLatin1String("About"))
        return implicitInstance<AboutWindow>();
    return implicitInstance<LicenseWindow>();
}

QWidget* control(const QString& window, const QString& name)
{
    return windowNamed(window).findChild<QWidget*>(name);
}

// Stands in for the comparison window, which is in front before an information window opens.
// Offscreen, a window shown again after a hide is only made active if another one was between.
bool deskInFront()
{
    static QWidget* desk = new QWidget();
    desk->show();
    desk->activateWindow();
    return QTest::qWaitFor([] { return QApplication::activeWindow() == desk; });
}

bool bringUp(toolkit::Window& w)
{
    if (!deskInFront())
        return false;
    w.Show();
    return QTest::qWaitFor([&] { return QApplication::activeWindow() == &w; });
}

// Stands in for the desktop's browser and mail program.
class UrlCatcher : public QObject
{
    Q_OBJECT
public:
    QStringList opened;
public slots:
    void open(const QUrl& url) { opened << QUrl::fromPercentEncoding(url.toEncoded()); }
};

// Runs `during` inside the About window's modal loop, then hides it if it is still up; a guard
// ends a loop that nothing ended. Returns whether the guard had to.
bool runModal(AboutWindow& about, const std::function<void()>& during)
{
    bool stuck = false;
    QPointer<AboutWindow> window = &about;
    if (!deskInFront())
        qWarning("the stand-in for the comparison window never came to the front");
    QTimer::singleShot(0, qApp, [&] {
        if (!QTest::qWaitFor([&] { return QApplication::activeWindow() == window; }))
            qWarning("the About window never became active");
        during();
        if (window)
            window->Hide();
    });
    QTimer guard;
    guard.callOnTimeout(&about, [&] {
        stuck = true;
        about.Hide();
    });
    guard.start(5000);
    about.ShowModal();
    return stuck;
}

} // namespace

class TestInfoWindows : public QObject
{
    Q_OBJECT
    UrlCatcher urls;

private slots:
    void initTestCase()
    {
        for (const char* scheme : {"https", "http", "mailto", "file"})
            QDesktopServices::setUrlHandler(QLatin1String(scheme), &urls, "open");
    }
    void cleanupTestCase()
    {
        for (const char* scheme : {"https", "http", "mailto", "file"})
            QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
    }

    void windows_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QSize>("minimum");
        QTest::addColumn<bool>("hasMenuBar");
        QTest::addColumn<bool>("fixed"); // the frame too, so a window manager offers no maximise
        QTest::newRow("Help") << "Help" << QSize(400, 400) << QSize(64, 64) << true << false;
        QTest::newRow("About, fixed")
            << "About" << QSize(380, 400) << QSize(380, 400) << false << true;
        QTest::newRow("Copyright")
            << "License" << QSize(550, 586) << QSize(400, 500) << true << false;
    }
    void windows()
    {
        QFETCH(QString, window);
        QFETCH(QSize, size);
        QFETCH(QSize, minimum);
        QFETCH(bool, hasMenuBar);
        toolkit::Window& w = windowNamed(window);
        QVERIFY(bringUp(w));
        QCOMPARE(QSize(w.Width(), w.Height()), size);
        QCOMPARE(w.menuBarModel() == &MenuBar1::instance(), hasMenuBar);
        QVERIFY(!(w.windowFlags() & Qt::WindowMaximizeButtonHint));
        QFETCH(bool, fixed);
        QCOMPARE(w.minimumSize() == w.maximumSize(), fixed);
        // Asked for less than the minimum, the content stops at it.
        w.setSize(10, 10);
        QTRY_COMPARE(QSize(w.Width(), w.Height()), minimum);
        w.setSize(size.width(), size.height());
        QTRY_COMPARE(QSize(w.Width(), w.Height()), size);
        w.Hide();
    }

    // Window coordinates of every control, "name left top width height", at the designed size
    // and after a resize. At the minimum size only the first notice gets shorter; blocks 2 and
    // 3 keep their distance from the bottom, the links their width.
    void geometry_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QRect>("rect");
        const struct
        {
            const char* window;
            QSize size;
            const char* rects;
        } groups[] = {
            {"Help", {400, 400}, "TextArea1 0 0 400 385"},
            {"Help", {520, 300}, "TextArea1 0 0 520 285"},
            {"About", {380, 400},
                "Canvas1 126 19 128 128, AppNameTxt 115 162 150 30, "
                "VerText 115 193 150 20, Label1 74 283 232 30, "
                "Rectangle1 10 316 360 60, Label2 20 325 60 20, Label3 20 353 60 20, "
                "URLText 93 325 270 20, MailText 93 353 138 20, "
                "Rectangle2 55 215 270 58, Label4 65 235 250 20, Label6 10 384 360 16"},
            {"License", {550, 586},
                "Label1 20 14 510 18, Label4 35 33 40 20, MailText0 80 33 240 20, "
                "Label5 35 53 40 20, URLText0 80 53 311 20, TextArea1 20 74 510 178, "
                "Label2 20 266 510 18, Label6 35 284 40 20, MailText1 80 284 265 20, "
                "Label7 35 304 40 20, URLText1 80 304 230 20, TextArea2 20 325 510 84, "
                "Label3 20 425 510 18, Label8 35 443 40 20, MailText2 80 443 250 20, "
                "Label9 35 463 40 20, URLText2 80 463 301 20, TextArea3 20 484 510 84"},
            {"License", {400, 500},
                "Label1 20 14 360 18, MailText0 80 33 240 20, URLText0 80 53 311 20, "
                "TextArea1 20 74 360 92, Label2 20 180 360 18, Label6 35 198 40 20, "
                "MailText1 80 198 265 20, Label7 35 218 40 20, URLText1 80 218 230 20, "
                "TextArea2 20 239 360 84, Label3 20 339 360 18, Label8 35 357 40 20, "
                "MailText2 80 357 250 20, Label9 35 377 40 20, URLText2 80 377 301 20, "
                "TextArea3 20 398 360 84"},
            {"License", {700, 800}, "TextArea1 20 74 660 392, TextArea3 20 698 660 84"},
        };
        for (const auto& g : groups) {
            for (const QString& row : QString(g.rects).split(u',')) {
                const QStringList f = row.split(u' ', Qt::SkipEmptyParts);
                QTest::addRow(
                    "%s %dx%d %s", g.window, g.size.width(), g.size.height(), qPrintable(f[0]))
                    << g.window << g.size << f[0]
                    << QRect(f[1].toInt(), f[2].toInt(), f[3].toInt(), f[4].toInt());
            }
        }
    }
    void geometry()
    {
        QFETCH(QString, window);
        QFETCH(QSize, size);
        QFETCH(QString, name);
        QFETCH(QRect, rect);
        toolkit::Window& w = windowNamed(window);
        QVERIFY(bringUp(w));
        w.setSize(size.width(), size.height());
        QTRY_COMPARE(QSize(w.Width(), w.Height()), size);
        QWidget* c = control(window, name);
        QVERIFY(c);
        QRect r = toolkit::windowRect(c);
        // Links may be wider, for an address that needs it; see linkRows.
        if (name.startsWith(QLatin1String("URLText"))
            || name.startsWith(QLatin1String("MailText"))) {
            QVERIFY(r.width() >= rect.width());
            r.setWidth(rect.width());
        }
        QCOMPARE(r, rect);
        w.Hide();
    }

    // A row without an address is not shown at all; one with an address shows it whole, and a
    // click opens exactly its text and leaves the window up. The About window's links are clicked
    // in aboutModal.
    void linkRows_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("link");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("opens");
        const QString configured; // the support addresses this build was configured with
        const struct
        {
            const char *window, *link, *caption;
            QString opens;
        } rows[] = {
            {"About", "URLText", "Label2", {}},
            {"About", "MailText", "Label3", {}},
            {"License", "MailText0", "Label4", configured},
            {"License", "URLText0", "Label5", configured},
            {"License", "MailText1", "Label6", "mailto:Qt Project <development@qt-project.org>"},
            {"License", "URLText1", "Label7", "https://www.qt.io/"},
            {"License", "MailText2", "Label8", {}},
            {"License", "URLText2", "Label9", "https://icu.unicode.org/"},
        };
        for (const auto& r : rows)
            QTest::addRow("%s %s", r.window, r.link) << r.window << r.link << r.caption << r.opens;
    }
    void linkRows()
    {
        QFETCH(QString, window);
        QFETCH(QString, link);
        QFETCH(QString, caption);
        QFETCH(QString, opens);
        toolkit::Window& w = windowNamed(window);
        auto* l = qobject_cast<QLabel*>(control(window, link));
        QVERIFY(l);
        QCOMPARE(l->isVisibleTo(&w), !l->text().isEmpty());
        QCOMPARE(control(window, caption)->isVisibleTo(&w), l->isVisibleTo(&w));
        if (!l->isVisibleTo(&w))
            return;
        // Up to the box's or the window's right margin.
        if (l->sizeHint().width() <= (window == QLatin1String("About") ? 270 : 450))
            QVERIFY2(l->sizeHint().width() <= l->width(), qPrintable(l->text()));
        if (window == QLatin1String("About"))
            return;
        if (opens.isEmpty())
            opens = (link.startsWith(QLatin1String("Mail")) ? "mailto:" : "") + l->text();
        QVERIFY(bringUp(w));
        urls.opened.clear();
        QTest::mouseClick(l, Qt::LeftButton, {}, QPoint(4, 10));
        QCOMPARE(urls.opened, QStringList{opens});
        QVERIFY(w.isVisible());
        w.Hide();
    }

    void closingHides_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<bool>("byMenu");
        QTest::newRow("Help, close button") << "Help" << false;
        QTest::newRow("Help, FileClose") << "Help" << true;
        QTest::newRow("Copyright, close button") << "License" << false;
        QTest::newRow("Copyright, FileClose") << "License" << true;
    }
    void closingHides()
    {
        QFETCH(QString, window);
        QFETCH(bool, byMenu);
        toolkit::Window* w = &windowNamed(window);
        QVERIFY(bringUp(*w));
        auto* area = w->findChild<toolkit::TextArea*>(QStringLiteral("TextArea1"));
        QVERIFY(area);
        area->setVerticalScrollPosition(4);
        QCOMPARE(area->VerticalScrollPosition(), 4);

        if (byMenu)
            QVERIFY(w->handleMenu(QStringLiteral("FileClose")));
        else
            QVERIFY(!w->close());
        QVERIFY(!w->isVisible());

        QCOMPARE(&windowNamed(window), w);
        QVERIFY(bringUp(*w));
        QCOMPARE(area->VerticalScrollPosition(), 4);
        w->Hide();
    }

    void readOnlyWrapped_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("name");
        for (const char* name :
            {"Help TextArea1", "License TextArea1", "License TextArea2", "License TextArea3"})
            QTest::newRow(name) << QString(name).section(u' ', 0, 0)
                                << QString(name).section(u' ', 1);
    }
    void readOnlyWrapped()
    {
        QFETCH(QString, window);
        QFETCH(QString, name);
        toolkit::Window& w = windowNamed(window);
        QVERIFY(bringUp(w));
        auto* area = qobject_cast<toolkit::TextArea*>(control(window, name));
        QVERIFY(area);
        const QString before = area->Text();
        QVERIFY(!before.isEmpty());
        area->setFocus();
        QTest::keyClick(area->focusProxy(), Qt::Key_A, Qt::ControlModifier);
        QVERIFY(area->SelectionLength() > 0);
        QTest::keyClicks(area->focusProxy(), QStringLiteral("typed"));
        QTest::keyClick(area->focusProxy(), Qt::Key_Delete);
        QCOMPARE(area->Text(), before);
        // Prose wraps: no line may push the pane sideways.
        QCOMPARE(area->findChild<QAbstractScrollArea*>()->horizontalScrollBar()->maximum(), 0);
        w.Hide();
    }

    void licenceTexts()
    {
        const QString text = implicitInstance<LicenseWindow>().TextArea1->Text();
        const QStringList lines = text.trimmed().split(u'\n');
        QCOMPARE(lines.value(0).trimmed(), QStringLiteral("GNU LESSER GENERAL PUBLIC LICENSE"));
        QCOMPARE(lines.value(1).trimmed(), QStringLiteral("Version 2.1, February 1999"));
        QVERIFY(text.contains(QStringLiteral("END OF TERMS AND CONDITIONS")));
        QVERIFY(text.contains(QStringLiteral("Unicode, Inc.")));
        QVERIFY(text.endsWith(QStringLiteral("USE OR OTHER DEALINGS IN THE SOFTWARE.")));
    }

    void tabOrder()
    {
        LicenseWindow& w = implicitInstance<LicenseWindow>();
        QVERIFY(bringUp(w));
        w.TextArea1->setFocus();
        for (QWidget* next : {static_cast<QWidget*>(w.TextArea2),
                 static_cast<QWidget*>(w.TextArea3), static_cast<QWidget*>(w.TextArea1)}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget(), next->focusProxy());
        }
        w.Hide();
    }

    // A key or a click outside the links ends the modal About window; a link opens exactly its
    // text and leaves the window up.
    void aboutModal_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<int>("key");
        QTest::addColumn<QPoint>("at");
        QTest::addColumn<bool>("staysOpen");
        QTest::addColumn<QString>("prefix");
        const int click = 0;
        QTest::newRow("letter") << "" << int(Qt::Key_A) << QPoint() << false << "";
        QTest::newRow("Esc") << "" << int(Qt::Key_Escape) << QPoint() << false << "";
        QTest::newRow("Tab") << "" << int(Qt::Key_Tab) << QPoint() << false << "";
        QTest::newRow("Shift alone") << "" << int(Qt::Key_Shift) << QPoint() << false << "";
        QTest::newRow("F1") << "" << int(Qt::Key_F1) << QPoint() << false << "";
        QTest::newRow("window margin") << "" << click << QPoint(4, 4) << false << "";
        QTest::newRow("icon") << "Canvas1" << click << QPoint(64, 64) << false << "";
        QTest::newRow("name") << "AppNameTxt" << click << QPoint(75, 15) << false << "";
        QTest::newRow("notice") << "Label1" << click << QPoint(100, 5) << false << "";
        QTest::newRow("summary box") << "Label4" << click << QPoint(100, 10) << false << "";
        QTest::newRow("support caption") << "Label2" << click << QPoint(30, 10) << false << "";
        QTest::newRow("support box") << "Rectangle1" << click << QPoint(300, 50) << false << "";
        QTest::newRow("hint") << "Label6" << click << QPoint(180, 8) << false << "";
        QTest::newRow("support link") << "URLText" << click << QPoint(5, 10) << true << "";
        QTest::newRow("mail link") << "MailText" << click << QPoint(5, 10) << true << "mailto:";
    }
    void aboutModal()
    {
        QFETCH(QString, target);
        QFETCH(int, key);
        QFETCH(QPoint, at);
        QFETCH(bool, staysOpen);
        QFETCH(QString, prefix);
        AboutWindow& about = implicitInstance<AboutWindow>();
        QWidget* where = target.isEmpty() ? about.surface() : control("About", target);
        QVERIFY(where);
        if (!where->isVisibleTo(&about))
            QSKIP("no support mail address in this build");
        urls.opened.clear();
        bool modal = false, focused = false, openAfter = false;
        const bool stuck = runModal(about, [&] {
            modal = QApplication::activeModalWidget() == &about;
            focused = QApplication::focusWidget() == about.Canvas1;
            if (key)
                QTest::keyClick(static_cast<QWidget*>(nullptr), Qt::Key(key));
            else
                QTest::mouseClick(where, Qt::LeftButton, {}, at);
            openAfter = about.isVisible();
        });
        QVERIFY(!stuck);
        QVERIFY(modal);
        QVERIFY(focused);
        QCOMPARE(openAfter, staysOpen);
        const auto* link = qobject_cast<toolkit::Label*>(where);
        QCOMPARE(urls.opened, staysOpen ? QStringList{prefix + link->text()} : QStringList());
    }

    void aboutVersionAndClose()
    {
        QPointer<AboutWindow> first = &implicitInstance<AboutWindow>();
        QString shown;
        QVERIFY(!runModal(*first, [&] { shown = first->VerText->text(); }));
        QCOMPARE(shown, QStringLiteral("Version 1.1.4"));
        // Its close button ends it for good; the next one is new and reads the version afresh.
        runModal(*first, [&] { first->close(); });
        QTRY_VERIFY(first.isNull());
        App::instance().version.ShortVersion = QStringLiteral("2.10.0");
        AboutWindow& second = implicitInstance<AboutWindow>();
        QVERIFY(!runModal(second, [&] { shown = second.VerText->text(); }));
        App::instance().version.ShortVersion = QStringLiteral("1.1.4");
        QCOMPARE(shown, QStringLiteral("Version 2.10.0"));
    }

    // Each window shows its strings in the user's language, fetched when it is made.
    void texts_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("what");
        QTest::addColumn<Text>("text");
        const struct
        {
            const char *window, *name, *what;
            Text text;
        } rows[] = {
            {"Help", "", "title", &globals::kManualM},
            {"Help", "TextArea1", "text", &globals::kManualT},
            {"About", "", "title", &globals::kAboutM},
            {"About", "Label4", "text", &globals::kSummaryT},
            {"About", "Label6", "text", &globals::kHitAnyKeyT},
            {"About", "URLText", "tooltip", &globals::kURLHTag},
            {"About", "MailText", "tooltip", &globals::kMailHTag},
            {"License", "", "title", &globals::kLicenseM},
            {"License", "Label1", "text", &globals::kLicenseTitle1},
            {"License", "Label2", "text", &globals::kLicenseTitle2},
            {"License", "Label3", "text", &globals::kLicenseTitle3},
            {"License", "TextArea3", "text", &globals::kTWLLicenseT},
        };
        for (const auto& r : rows)
            QTest::addRow("%s %s %s", r.window, r.name, r.what)
                << r.window << r.name << r.what << r.text;
    }
    void texts()
    {
        QFETCH(QString, window);
        QFETCH(QString, name);
        QFETCH(QString, what);
        QFETCH(Text, text);
        const auto shown = [&] {
            toolkit::Window& w = windowNamed(window);
            QWidget* c = name.isEmpty() ? &w : control(window, name);
            if (what == QLatin1String("title"))
                return c->windowTitle();
            if (what == QLatin1String("tooltip"))
                return c->toolTip();
            if (auto* area = qobject_cast<toolkit::TextArea*>(c))
                return area->Text();
            return qobject_cast<QLabel*>(c)->text();
        };
        const auto remake = [&] {
            delete &windowNamed(window);
            return shown();
        };
        const QString english = remake();
        QCOMPARE(english, text());
        QTranslator* japanese
            = globals::installTranslator(*qApp, QLocale(QLocale::Japanese, QLocale::Japan));
        QVERIFY(japanese);
        const QString translated = remake();
        const QString expected = text();
        QCoreApplication::removeTranslator(japanese);
        delete japanese;
        remake();
        QCOMPARE(translated, expected);
        QVERIFY(translated != english);
    }

    // Last: a quit ends the session for good.
    void quitClosesHiddenWindows()
    {
        HelpWindow& help = implicitInstance<HelpWindow>();
        help.Show();
        QVERIFY(!help.close());
        LicenseWindow& licence = implicitInstance<LicenseWindow>();
        QVERIFY(bringUp(licence));
        // A window that refused would stop the quit and leave the loop running into the guard.
        QTimer::singleShot(0, [] { App::Quit(3); });
        QTimer::singleShot(5000, [] { QCoreApplication::exit(99); });
        QCOMPARE(QCoreApplication::exec(), 3);
        QVERIFY(!licence.isVisible());
        QCOMPARE(&implicitInstance<HelpWindow>(), &help);
    }
};

int main(int argc, char** argv)
{
    App app(argc, argv);
    TestInfoWindows test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_infowindows.moc"
