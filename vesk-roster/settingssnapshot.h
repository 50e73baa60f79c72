#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

// The bytes of every file under a settings directory, so that a refused
// command can put back exactly what was there: start-up already writes
// settings, and a refusal found after it must leave no trace.
class VeskSettingsSnapshot
{
public:
    static VeskSettingsSnapshot take(const QString &dir);

    // Rewrites the files whose bytes differ, removes files and directories
    // that appeared since, and leaves untouched files alone.
    void restore() const;

private:
    QString root;
    bool existed = false;
    QHash<QString, QByteArray> files; // relative path -> content
    QStringList dirs; // relative paths
};
