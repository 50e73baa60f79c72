#include "veskwidgetsupport_p.h"

#include <QLabel>
#include <QPushButton>
#include <QShortcut>

namespace VeskWidgetSupport {

QString spoken(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('&') && i + 1 < text.size())
            ++i; // "&&" stays one ampersand, "&x" becomes "x"
        result.append(text.at(i));
    }
    if (result.endsWith(QLatin1Char(':')))
        result.chop(1);
    return result;
}

QPushButton *button(const QString &text, const QKeySequence &shortcut, QWidget *parent)
{
    auto *result = new QPushButton(text, parent);
    result->setAutoDefault(false);
    result->setAccessibleName(spoken(text));
    if (!shortcut.isEmpty()) {
        auto *extra = new QShortcut(shortcut, parent);
        QObject::connect(extra, &QShortcut::activated, result, [result] {
            if (result->isEnabled())
                result->click();
        });
        result->setToolTip(shortcut.toString(QKeySequence::NativeText));
    }
    return result;
}

QLabel *label(const QString &text, QWidget *buddy, QWidget *parent)
{
    auto *result = new QLabel(text, parent);
    result->setBuddy(buddy);
    buddy->setAccessibleName(spoken(text));
    return result;
}

} // namespace VeskWidgetSupport
