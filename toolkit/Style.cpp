#include "Style.h"

#include <QCursor>
#include <QFontDatabase>
#include <QPalette>
#include <QTextDocument>
#include <QToolTip>
#include <QWidget>

namespace toolkit {

QFont systemFont(FontStyle style)
{
    QFont f = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    // Sizes in the window tables are pixels, as on the screens they were drawn for.
    if (style.size > 0)
        f.setPixelSize(style.size);
    f.setBold(style.bold);
    f.setItalic(style.italic);
    f.setUnderline(style.underline);
    return f;
}

void setTextColor(QWidget* w, QColor color)
{
    QPalette p = w->palette();
    p.setColor(QPalette::WindowText, color);
    p.setColor(QPalette::ButtonText, color);
    p.setColor(QPalette::Text, color);
    w->setPalette(p);
}

void setTooltip(QWidget* w, const QString& text)
{
    QString t = text;
    t.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(u'\r', u'\n');
    // Shown as written: a file name such as "<b>.txt" is no markup.
    if (Qt::mightBeRichText(t))
        t = QStringLiteral("<p style='white-space:pre-wrap'>") + t.toHtmlEscaped()
            + QStringLiteral("</p>");
    w->setToolTip(t);
}

void showTooltipNow(QWidget* w)
{
    QToolTip::showText(QCursor::pos(), w->toolTip(), w, QRect(), 60'000);
}

MarkColours markColours(const QWidget* w)
{
    MarkColours c{w->palette().color(QPalette::Active, QPalette::Highlight), {}};
    c.strong = c.line;
    c.line.setAlpha(48);
    c.strong.setAlpha(112);
    return c;
}

void hideTooltip()
{
    QToolTip::hideText();
}

} // namespace toolkit
