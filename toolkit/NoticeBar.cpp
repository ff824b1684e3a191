#include "NoticeBar.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

#include <algorithm>

namespace toolkit {

NoticeBar::NoticeBar(QWidget* parent, const QString& closeTip)
    : QWidget(parent)
    , label(new QLabel(this))
    , closeButton(new QToolButton(this))
    , row(new QHBoxLayout(this))
{
    setAutoFillBackground(true);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, QColor(0xFF, 0xF4, 0xC8));
    colours.setColor(QPalette::WindowText, Qt::black);
    setPalette(colours);
    // Plain text: a file's name must never be taken for markup.
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    closeButton->setText(QStringLiteral("✕"));
    closeButton->setAutoRaise(true);
    closeButton->setToolTip(closeTip);
    closeButton->setAccessibleName(closeTip);
    connect(closeButton, &QToolButton::clicked, this, &NoticeBar::dismiss);
    row->setContentsMargins(8, 4, 4, 4);
    row->addWidget(label, 1);
    row->addWidget(closeButton, 0, Qt::AlignTop);
    parent->installEventFilter(this);
    hide();
}

void NoticeBar::addNotice(const QString& line)
{
    if (!lines.isEmpty() && lines.last() == line)
        return;
    lines << line;
    while (lines.size() > kMaxLines)
        lines.removeFirst();
    label->setText(lines.join(QLatin1Char('\n')));
    place();
    show();
    raise();
}

void NoticeBar::addAction(const QString& key, const QString& text, std::function<void()> act)
{
    QPushButton* button = findChild<QPushButton*>(key, Qt::FindDirectChildrenOnly);
    if (!button) {
        button = new QPushButton(this);
        button->setObjectName(key);
        row->insertWidget(row->indexOf(closeButton), button, 0, Qt::AlignTop);
        actions.push_back(button);
    }
    button->setText(text);
    lineOf.insert(key, lines.value(lines.size() - 1));
    button->disconnect(this);
    connect(button, &QPushButton::clicked, this, [this, act = std::move(act)] {
        // The bar may be told something new by what the action does; the button goes before.
        const std::function<void()> run = act;
        dismiss();
        run();
    });
    place();
}

void NoticeBar::withdraw(const QString& key)
{
    QPushButton* button = findChild<QPushButton*>(key, Qt::FindDirectChildrenOnly);
    if (!button)
        return;
    lines.removeOne(lineOf.take(key));
    actions.erase(std::find(actions.begin(), actions.end(), button));
    delete button;
    if (lines.isEmpty())
        return dismiss();
    label->setText(lines.join(QLatin1Char('\n')));
    place();
}

QString NoticeBar::text() const
{
    return isVisible() ? lines.join(QLatin1Char('\n')) : QString();
}

void NoticeBar::dismiss()
{
    lines.clear();
    for (QPushButton* button : actions) {
        button->setObjectName(QString());
        button->hide();
        button->deleteLater();
    }
    actions.clear();
    lineOf.clear();
    hide();
}

bool NoticeBar::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parent() && event->type() == QEvent::Resize && !lines.isEmpty())
        place();
    return QWidget::eventFilter(watched, event);
}

void NoticeBar::setBottomMargin(int margin)
{
    bottomMargin = margin;
    place();
}

void NoticeBar::place()
{
    const QWidget* over = parentWidget();
    // The label wraps in the width the buttons leave it; the layout's own answer to the height
    // for a width overlooks the buttons.
    const QMargins margins = row->contentsMargins();
    int labelWidth = over->width() - margins.left() - margins.right();
    int height = 0;
    std::vector<QWidget*> buttons(actions.begin(), actions.end());
    buttons.push_back(closeButton);
    for (QWidget* button : buttons) {
        labelWidth -= button->sizeHint().width() + row->spacing();
        height = std::max(height, button->sizeHint().height());
    }
    height = std::max(height, label->heightForWidth(std::max(labelWidth, 1)));
    height += margins.top() + margins.bottom();
    const int bottom = over->height() - bottomMargin;
    height = std::min(height, bottom / 3);
    setGeometry(0, bottom - height, over->width(), height);
}

} // namespace toolkit
