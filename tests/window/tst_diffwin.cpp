#include "App.h"
#include "BevelButton.h"
#include "Canvas.h"
#include "DiffWin.h"
#include "Geometry.h"
#include "HelpWindow.h"
#include "Label.h"
#include "MenuBar1.h"
#include "Rectangle.h"
#include "TextArea.h"
#include "Timer.h"
#include "WidthLayout.h"
#include "globals.h"

#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTest>

using toolkit::windowRect;

namespace {
int argc = 1;
char arg0[] = "tst_diffwin";
char* argv[] = {arg0, nullptr};

// The window at a content size, shown offscreen.
DiffWin* openWindow(QSize size = {672, 500})
{
    auto* w = &toolkit::implicitInstance<DiffWin>();
    w->Show();
    if (!QTest::qWaitForWindowExposed(w))
        return nullptr;
    if (size != QSize(w->Width(), w->Height())) {
        w->setSize(size.width(), size.height());
        if (!QTest::qWaitFor([&] { return QSize(w->Width(), w->Height()) == size; }, 2000))
            return nullptr;
    }
    return w;
}
} // namespace

class TstDiffWin : public QObject
{
    Q_OBJECT
private slots:
    void cleanup();
    void widthArithmetic_data();
    void widthArithmetic();
    void controlsAtTheirPlaces_data();
    void controlsAtTheirPlaces();
    void resizeKeepsTheRows_data();
    void resizeKeepsTheRows();
    void opensOnAComparisonOfTheSamples();
    void compareFollowsThePanes_data();
    void compareFollowsThePanes();
    void menuBarTable();
    void viewKeysDoWhatTheButtonsDo_data();
    void viewKeysDoWhatTheButtonsDo();
    void helpItemsActOnlyInTheComparisonWindow();
    void editingItemsActOnTheFocusedPane();
    void tabOrder();
};

void TstDiffWin::cleanup()
{
    toolkit::Application::deleteWindows();
}

void TstDiffWin::widthArithmetic_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("half");
    QTest::addColumn<int>("canvasLeft");
    QTest::addColumn<int>("rightPaneLeft");
    QTest::addColumn<int>("sameFilmLeft");
    QTest::addColumn<int>("encodingMenuWidth"); // the label takes the rest of the row
    QTest::newRow("default 672") << 672 << 289 << 307 << 363 << 303 << 183;
    QTest::newRow("odd 673: spare pixel to the right") << 673 << 289 << 307 << 363 << 303 << 183;
    QTest::newRow("500: the label gives way") << 500 << 203 << 221 << 277 << 217 << 120;
    QTest::newRow("400") << 400 << 153 << 171 << 227 << 167 << 120;
    QTest::newRow("minimum 320: the pop-up has the row") << 320 << 113 << 131 << 187 << 127 << 107;
    QTest::newRow("wide 1000") << 1000 << 453 << 471 << 527 << 467 << 347;
}

void TstDiffWin::widthArithmetic()
{
    QFETCH(int, width);
    QFETCH(int, half);
    QFETCH(int, canvasLeft);
    QFETCH(int, rightPaneLeft);
    QFETCH(int, sameFilmLeft);
    const WidthLayout l = WidthLayout::forWidth(width, 54);
    QCOMPARE(l.half, half);
    QCOMPARE(l.paneWidth, half - 4);
    QCOMPARE(l.titleBoxWidth, half - 6);
    QCOMPARE(l.canvasLeft, canvasLeft);
    QCOMPARE(l.right + 2, rightPaneLeft);
    QCOMPARE(l.sameFilmLeft, sameFilmLeft);
    QFETCH(int, encodingMenuWidth);
    QCOMPARE(l.encodingMenuWidth, encodingMenuWidth);
    QCOMPARE(l.encodingLabelWidth + l.encodingMenuWidth, l.paneWidth - 2);
    // The left margin is always 20; the right one takes what is left.
    const int rightMargin = width - (rightPaneLeft + l.paneWidth);
    QVERIFY(rightMargin == 24 || rightMargin == 25);
}

namespace {
// Every control of the window by its name.
QWidget* control(DiffWin* w, const QString& name)
{
    const QHash<QString, QWidget*> all{{"WinBack", w->WinBack}, {"txtBack1", w->txtBack[1]},
        {"txtBack0", w->txtBack[0]}, {"txtBox0", w->txtBox[0]}, {"txtBox1", w->txtBox[1]},
        {"BtnsBack", w->BtnsBack}, {"NextBtn", w->NextBtn}, {"PrevBtn", w->PrevBtn},
        {"TopBtn", w->TopBtn}, {"BtmBtn", w->BtmBtn}, {"SameColSample", w->SameColSample},
        {"SameLabel", w->SameLabel}, {"DiffColSample", w->DiffColSample},
        {"DiffLabel", w->DiffLabel}, {"titleBack1", w->titleBack[1]}, {"titleBox1", w->titleBox[1]},
        {"TELabel1", w->TELabel[1]}, {"TEBMenu1", w->TEBMenu[1]}, {"SameFilm", w->SameFilm},
        {"ClearButton", w->ClearButton}, {"diffCanvas", w->diffCanvas},
        {"titleBack0", w->titleBack[0]}, {"titleBox0", w->titleBox[0]}, {"TELabel0", w->TELabel[0]},
        {"TEBMenu0", w->TEBMenu[0]}, {"DiffTotal", w->DiffTotal}};
    return all.value(name);
}
} // namespace

void TstDiffWin::controlsAtTheirPlaces_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QString>("parent");
    QTest::addColumn<bool>("visible");
    const struct
    {
        const char* name;
        QRect rect;
        const char* parent;
        bool visible;
    } table[] = {
        {"WinBack", {2, 2, 668, 496}, "", true},
        {"txtBack1", {363, 10, 291, 450}, "WinBack", false},
        {"txtBack0", {18, 10, 291, 450}, "WinBack", false},
        {"txtBox0", {20, 59, 287, 398}, "WinBack", true},
        {"txtBox1", {365, 59, 287, 398}, "WinBack", true},
        {"BtnsBack", {272, 469, 128, 22}, "WinBack", true},
        {"NextBtn", {337, 471, 30, 18}, "BtnsBack", true},
        {"PrevBtn", {305, 471, 30, 18}, "BtnsBack", true},
        {"TopBtn", {274, 471, 30, 18}, "BtnsBack", true},
        {"BtmBtn", {368, 471, 30, 18}, "BtnsBack", true},
        {"SameColSample", {20, 467, 70, 24}, "WinBack", true},
        {"SameLabel", {30, 469, 50, 16}, "SameColSample", true},
        {"DiffColSample", {580, 467, 70, 24}, "WinBack", true},
        {"DiffLabel", {585, 470, 60, 16}, "DiffColSample", true},
        {"titleBack1", {365, 12, 287, 45}, "WinBack", true},
        {"titleBox1", {366, 13, 285, 22}, "titleBack1", true},
        {"TELabel1", {366, 37, 100, 16}, "titleBack1", true},
        {"TEBMenu1", {466, 35, 185, 22}, "titleBack1", true},
        {"SameFilm", {305, 467, 62, 26}, "WinBack", false},
        {"ClearButton", {309, 13, 54, 22}, "WinBack", true},
        {"diffCanvas", {309, 59, 54, 398}, "WinBack", true},
        {"titleBack0", {20, 12, 287, 45}, "WinBack", true},
        {"titleBox0", {21, 13, 285, 22}, "titleBack0", true},
        {"TELabel0", {21, 37, 100, 16}, "titleBack0", true},
        {"TEBMenu0", {121, 35, 185, 22}, "titleBack0", true},
        {"DiffTotal", {309, 35, 54, 22}, "WinBack", true},
    };
    for (const auto& row : table)
        QTest::newRow(row.name) << row.name << row.rect << row.parent << row.visible;
}

void TstDiffWin::controlsAtTheirPlaces()
{
    QFETCH(QString, name);
    QFETCH(QRect, rect);
    QFETCH(QString, parent);
    QFETCH(bool, visible);
    DiffWin* w = openWindow();
    QVERIFY(w);
    QCOMPARE(w->Title(), globals::kMainTitleT());
    QWidget* c = control(w, name);
    QVERIFY(c);
    QCOMPARE(windowRect(c), rect);
    QCOMPARE(c->parentWidget(), parent.isEmpty() ? w->surface() : control(w, parent));
    QCOMPARE(c->isVisible(), visible);
}

void TstDiffWin::resizeKeepsTheRows_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("larger") << QSize(900, 700);
    QTest::newRow("minimum") << QSize(320, 150);
    QTest::newRow("narrow") << QSize(420, 500);
    QTest::newRow("odd width") << QSize(673, 500);
}

void TstDiffWin::resizeKeepsTheRows()
{
    QFETCH(QSize, size);
    DiffWin* w = openWindow(size);
    QVERIFY(w);
    const WidthLayout l = WidthLayout::forWidth(size.width(), 54);
    const int grow = size.height() - 500;

    // Panes, frames and indicator grow with the height; the panes share the width evenly.
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(w->txtBox[i]->width(), l.paneWidth);
        QCOMPARE(w->txtBox[i]->height(), 398 + grow);
        QCOMPARE(w->txtBack[i]->width(), l.half);
        QCOMPARE(w->titleBox[i]->width(), l.titleBoxWidth);
        // The encoding pop-up keeps its right edge one pixel inside its title panel.
        QCOMPARE(windowRect(w->TEBMenu[i]).right(), windowRect(w->titleBack[i]).right() - 1);
        // Beside it the label, or where there is no room for its words, nothing.
        const QRect label = windowRect(w->TELabel[i]);
        QCOMPARE(label.left(), windowRect(w->titleBack[i]).left() + 1);
        QVERIFY(w->TELabel[i]->isHidden() || w->TELabel[i]->sizeHint().width() <= label.width());
        QCOMPARE(windowRect(w->TEBMenu[i]).left(),
            w->TELabel[i]->isHidden() ? label.left() : label.left() + l.encodingLabelWidth);
    }
    QCOMPARE(windowRect(w->txtBox[0]).left(), 20);
    QCOMPARE(windowRect(w->txtBox[1]).left(), l.right + 2);
    QCOMPARE(windowRect(w->diffCanvas), QRect(l.canvasLeft, 59, 54, 398 + grow));
    QCOMPARE(windowRect(w->ClearButton).left(), l.canvasLeft);
    QCOMPARE(windowRect(w->DiffTotal).left(), l.canvasLeft);

    // The bottom row keeps its distance from the bottom edge; the key on the right its place at
    // the right edge; the buttons travel with their panel.
    QCOMPARE(windowRect(w->BtnsBack), QRect(l.btnsBackLeft, 469 + grow, 128, 22));
    QCOMPARE(windowRect(w->NextBtn), QRect(l.btnsBackLeft + 65, 471 + grow, 30, 18));
    QCOMPARE(windowRect(w->SameFilm).topLeft(), QPoint(l.sameFilmLeft, 467 + grow));
    QCOMPARE(windowRect(w->SameColSample).topLeft(), QPoint(20, 467 + grow));
    QCOMPARE(windowRect(w->DiffColSample).topLeft(), QPoint(580 + size.width() - 672, 467 + grow));
    QCOMPARE(windowRect(w->DiffLabel).topLeft(), QPoint(585 + size.width() - 672, 470 + grow));
    QCOMPARE(windowRect(w->titleBack[0]).top(), 12);
    if (size == QSize(320, 150))
        QCOMPARE(w->txtBox[0]->height(), 48);
}

void TstDiffWin::opensOnAComparisonOfTheSamples()
{
    DiffWin* w = openWindow();
    QVERIFY(w);
    QTRY_VERIFY_WITH_TIMEOUT(w->resultIsCurrent(), 5000);
    QCOMPARE(w->txtBox[0]->LineCount(), globals::kOriginalSampleT().count(u'\r') + 1);
    QCOMPARE(QString::fromStdString(w->textClone[0].bytes()), w->txtBox[0]->Text());
    QVERIFY(w->diffs.size() >= 3);
    // The first difference is made current with the first result.
    QVERIFY(!w->onlyFirst);
    QCOMPARE(w->curDiffNum, 0);
    QCOMPARE(w->topsA.size(), w->diffs.size());
    QCOMPARE(w->curLine, w->topsA[0]);
    for (size_t i = 0; i < w->diffs.size(); ++i) {
        QCOMPARE(w->topsA[i], w->diffs[i].DeletedStart());
        QCOMPARE(w->topsB[i], w->diffs[i].AddedStart());
    }
}

void TstDiffWin::compareFollowsThePanes_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<QList<qint64>>("records"); // delStart delEnd addStart addEnd, flattened
    QTest::newRow("same text") << "a\rb"
                               << "a\rb" << QList<qint64>{};
    QTest::newRow("line endings do not count") << "one\rtwo"
                                               << "one\r\ntwo" << QList<qint64>{};
    QTest::newRow("trailing newline adds an empty line") << "one\ntwo"
                                                         << "one\ntwo\n"
                                                         << QList<qint64>{2, -1, 2, 2};
    QTest::newRow("replacement") << "one"
                                 << "two" << QList<qint64>{0, 0, 0, 0};
    QTest::newRow("worked example")
        << "a\rb\rc\rd\re"
        << "a\rx\ry\rb\rc\rj\re" << QList<qint64>{1, -1, 1, 2, 3, 3, 5, 5};
    QTest::newRow("line separator stays in its line")
        << QString::fromUtf16(u"a\u2028b\rc") << QString::fromUtf16(u"a\rb\rc")
        << QList<qint64>{0, 0, 0, 1};
}

void TstDiffWin::compareFollowsThePanes()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(QList<qint64>, records);
    DiffWin* w = openWindow();
    QVERIFY(w);
    w->scrolTop = {4, 5};
    w->curDiffNum = 7;
    w->onlyFirst = false;
    w->txtBox[0]->setText(left);
    w->txtBox[1]->setText(right);
    w->Timer2->setMode(0);
    w->compare();
    QTRY_VERIFY_WITH_TIMEOUT(w->resultIsCurrent(), 5000);
    QList<qint64> got;
    for (const auto& d : w->diffs)
        got << d.DeletedStart() << d.DeletedEnd() << d.AddedStart() << d.AddedEnd();
    QCOMPARE(got, records);
    QCOMPARE(w->scrolTop, (std::array<int, 2>{0, 0}));
    QCOMPARE(w->curDiffNum, 7); // comparing leaves the navigation alone
    w->initTops();
    QCOMPARE(w->topsA.size(), w->diffs.size());
}

void TstDiffWin::menuBarTable()
{
    DiffWin* w = openWindow();
    QVERIFY(w);
    // Each menu's title, then its items' names; "-" for a separator, which shows no text (a
    // separator with one is drawn as a heading).
    QStringList shown;
    for (QAction* menu : w->menuBar()->actions()) {
        shown << menu->text() + ':';
        for (QAction* a : menu->menu()->actions()) {
            QVERIFY(!a->isSeparator() || a->text().isEmpty());
            shown << (a->isSeparator() ? QStringLiteral("-") : a->objectName());
        }
    }
    QCOMPARE(shown,
        (QStringList{globals::kFileM() + ':', "FileOpenLeft", "FileOpenRight", "FileReload", "-",
            "FileQuit", globals::kEditM() + ':', "EditUndo", "EditRedo", "-", "EditCut", "EditCopy",
            "EditPaste", "EditClear", "-", "EditSelectAll", "-", globals::kViewM() + ':', "ViewTop",
            "ViewPrev", "ViewNext", "ViewBottom", globals::kHelpM() + ':', "HelpAbout", "HelpHelp",
            "HelpLicense"}));
    using K = QKeySequence;
    const std::pair<const char*, K> keys[] = {{"FileOpenLeft", K(Qt::CTRL | Qt::Key_O)},
        {"FileOpenRight", K(Qt::CTRL | Qt::SHIFT | Qt::Key_O)}, {"FileReload", K(Qt::Key_F5)},
        {"FileReload", K(Qt::CTRL | Qt::Key_R)}, {"FileQuit", K(Qt::CTRL | Qt::Key_Q)},
        {"EditUndo", K::Undo}, {"EditRedo", K(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)},
        {"EditCut", K::Cut}, {"EditCopy", K::Copy}, {"EditPaste", K::Paste},
        {"EditSelectAll", K::SelectAll}, {"ViewTop", K(Qt::ALT | Qt::Key_Home)},
        {"ViewPrev", K(Qt::ALT | Qt::Key_Up)}, {"ViewNext", K(Qt::ALT | Qt::Key_Down)},
        {"ViewBottom", K(Qt::ALT | Qt::Key_End)}};
    for (const auto& [name, key] : keys)
        QVERIFY2(MenuBar1::instance().item(name)->action->shortcuts().contains(key), name);
}

void TstDiffWin::viewKeysDoWhatTheButtonsDo_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("current"); // from the second of four differences
    QTest::newRow("Alt+Home") << int(Qt::Key_Home) << "TopBtn" << 0;
    QTest::newRow("Alt+Up") << int(Qt::Key_Up) << "PrevBtn" << 0;
    QTest::newRow("Alt+Down") << int(Qt::Key_Down) << "NextBtn" << 2;
    QTest::newRow("Alt+End") << int(Qt::Key_End) << "BtmBtn" << 3;
}

void TstDiffWin::viewKeysDoWhatTheButtonsDo()
{
    QFETCH(int, key);
    QFETCH(QString, button);
    QFETCH(int, current);
    DiffWin* w = openWindow();
    QVERIFY(w);
    w->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), w);
    QString left, right;
    for (int i = 0; i < 200; ++i) {
        left += QStringLiteral("line %1\n").arg(i);
        right += QString::fromLatin1(i % 50 == 7 ? "changed %1\n" : "line %1\n").arg(i);
    }
    w->txtBox[0]->setText(left);
    w->txtBox[1]->setText(right);
    w->compare();
    QTRY_VERIFY_WITH_TIMEOUT(w->resultIsCurrent(), 5000);
    QCOMPARE(w->diffs.size(), size_t(4));
    // From the second difference, scrolled a little: the button, then the key in the pane.
    std::array<QList<int>, 2> after;
    for (QList<int>& state : after) {
        w->curDiffNum = 1;
        w->curLine = int(w->topsA[1]);
        w->txtBox[0]->setVerticalScrollPosition(30);
        w->txtBox[1]->setVerticalScrollPosition(40);
        if (&state == &after[0])
            w->findChild<toolkit::BevelButton*>(button)->click();
        else
            QTest::keyClick(w->txtBox[0]->focusProxy(), Qt::Key(key), Qt::AltModifier);
        state = {w->curDiffNum, w->curLine, w->txtBox[0]->VerticalScrollPosition(),
            w->txtBox[1]->VerticalScrollPosition()};
    }
    QCOMPARE(after[0].first(), current);
    QCOMPARE(after[1], after[0]);
}

void TstDiffWin::helpItemsActOnlyInTheComparisonWindow()
{
    DiffWin* w = openWindow();
    QVERIFY(w);
    w->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), w);
    MenuBar1& bar = MenuBar1::instance();
    const toolkit::MenuItem& helpHelp = *bar.item(QStringLiteral("HelpHelp"));
    QVERIFY(bar.isEnabledNow(helpHelp));

    bar.choose(helpHelp);
    HelpWindow* help = &toolkit::implicitInstance<HelpWindow>();
    QTRY_VERIFY(help->isVisible());
    help->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), help);
    // The Help window holds no handler for the Help items.
    QVERIFY(!bar.isEnabledNow(helpHelp));
    QVERIFY(!bar.isEnabledNow(*bar.item(QStringLiteral("HelpAbout"))));

    w->activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), w);
    bar.choose(helpHelp); // a second time: the same window
    QCOMPARE(&toolkit::implicitInstance<HelpWindow>(), help);
    int helpWindows = 0;
    for (QWidget* t : QApplication::topLevelWidgets())
        helpWindows += qobject_cast<HelpWindow*>(t) != nullptr;
    QCOMPARE(helpWindows, 1);
}

void TstDiffWin::editingItemsActOnTheFocusedPane()
{
    DiffWin* w = openWindow();
    QVERIFY(w);
    w->activateWindow();
    toolkit::TextArea* pane = w->txtBox[0];
    pane->setText(QStringLiteral("keep this\rcut this"));
    pane->setFocus();
    QTRY_VERIFY(pane->hasFocus());
    MenuBar1& bar = MenuBar1::instance();
    auto item = [&](const char* name) -> const toolkit::MenuItem& {
        return *bar.item(QString::fromLatin1(name));
    };

    pane->select(pane->CharacterPosition(1) - 1, 8);
    // Stepping to a difference, and the redraw after it, leave the focus and the selection.
    emit w->Timer2->Action();
    emit w->Timer1->Action();
    QTRY_VERIFY(w->resultIsCurrent());
    QTest::mouseClick(w->NextBtn, Qt::LeftButton);
    emit w->Timer1->Action();
    QVERIFY(w->txtBox[1]->highlightFirst() >= 0);
    QVERIFY(bar.isEnabledNow(item("EditCut")));
    bar.choose(item("EditCut"));
    QCOMPARE(pane->Lines(), (QStringList{"keep this", ""}));
    bar.choose(item("EditUndo"));
    QCOMPARE(pane->Lines(), (QStringList{"keep this", "cut this"}));
    bar.choose(item("EditSelectAll"));
    QCOMPARE(pane->SelectionLength(), pane->TextLength());
    bar.choose(item("EditClear"));
    QCOMPARE(pane->Text(), QString());
    QVERIFY(!bar.isEnabledNow(item("EditCopy"))); // nothing selected

    // In a read-only text only copying and selecting apply.
    pane->setText(QStringLiteral("read only"));
    pane->setReadOnly(true);
    pane->select(0, int(pane->TextLength()));
    QVERIFY(bar.isEnabledNow(item("EditCopy")));
    QVERIFY(!bar.isEnabledNow(item("EditCut")));
    QVERIFY(!bar.isEnabledNow(item("EditPaste")));
    bar.choose(item("EditClear"));
    QCOMPARE(pane->Text(), QStringLiteral("read only"));
}

void TstDiffWin::tabOrder()
{
    DiffWin* w = openWindow();
    QVERIFY(w);
    QList<QWidget*> chain;
    QWidget* at = w->txtBox[0]->focusProxy();
    for (int i = 0; i < 5; ++i) {
        chain << at;
        do
            at = at->nextInFocusChain();
        while (!(at->focusPolicy() & Qt::TabFocus) || !at->isVisible());
    }
    QCOMPARE(chain,
        (QList<QWidget*>{w->txtBox[0]->focusProxy(), w->txtBox[1]->focusProxy(), w->diffCanvas,
            w->TEBMenu[1], w->ClearButton}));
    QCOMPARE(at, w->txtBox[0]->focusProxy());
}

int main(int, char**)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    App app(argc, argv);
    TstDiffWin test;
    return QTest::qExec(&test);
}

#include "tst_diffwin.moc"
