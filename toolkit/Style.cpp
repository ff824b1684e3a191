#include "Style.h"

#include <QFontDatabase>
#include <QPalette>
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
    w->setToolTip(t);
}

} // namespace toolkit
