#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

// Texts of the program go through the translation call like the library's,
// in their own context.
inline QString vtr(const char *text)
{
    return QCoreApplication::translate("vesk-roster", text);
}

// "a", "b", "c" as a person reads a list of names.
inline QString quotedList(const QStringList &names)
{
    if (names.isEmpty())
        return vtr("(none)");
    QStringList quoted;
    quoted.reserve(names.size());
    for (const QString &name : names)
        quoted.append(QLatin1Char('"') + name + QLatin1Char('"'));
    return quoted.join(QLatin1String(", "));
}
