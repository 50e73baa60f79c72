#include "settingsjournal.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

void VeskSettingsJournal::recordFile(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    for (const File &file : qAsConst(files)) {
        if (file.path == absolute)
            return;
    }
    File file;
    file.path = absolute;
    const QFileInfo info(absolute);
    if (!info.exists() && !info.isSymLink()) {
        file.state = Absent;
    } else if (info.isFile() && !info.isSymLink()) {
        QFile in(absolute);
        if (in.open(QIODevice::ReadOnly)) {
            file.bytes = in.readAll();
            file.state = in.error() == QFileDevice::NoError ? Present : Unknown;
        }
    }
    // Anything else (a link, a directory, a file that cannot be read) is
    // left as it is found on restore: it cannot be put back byte for byte.
    files.append(file);
}

void VeskSettingsJournal::recordMissingDirectories(const QString &path)
{
    QString dir = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    QStringList missing;
    while (!QFileInfo::exists(dir)) {
        missing.append(dir);
        const QString parent = QFileInfo(dir).path();
        if (parent == dir)
            break;
        dir = parent;
    }
    for (const QString &created : qAsConst(missing)) {
        if (!createdDirectories.contains(created))
            createdDirectories.append(created);
    }
}

void VeskSettingsJournal::recordCreatedDirectory(const QString &path)
{
    const QString dir = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    if (!createdDirectories.contains(dir))
        createdDirectories.prepend(dir);
}

bool VeskSettingsJournal::restore(QString *error) const
{
    QStringList failed;
    for (auto it = files.crbegin(); it != files.crend(); ++it) {
        const File &file = *it;
        if (file.state == Absent) {
            const QFileInfo info(file.path);
            if ((info.exists() || info.isSymLink()) && !QFile::remove(file.path))
                failed.append(file.path);
        } else if (file.state == Present) {
            QFile current(file.path);
            if (current.open(QIODevice::ReadOnly) && current.readAll() == file.bytes)
                continue;
            QSaveFile out(file.path);
            if (!out.open(QIODevice::WriteOnly) || out.write(file.bytes) != file.bytes.size()
                || !out.commit())
                failed.append(file.path);
        }
    }
    // Innermost first; whatever is in them is this run's, since the run held
    // the directory's lock from before they existed.
    for (const QString &dir : createdDirectories) {
        if (QFileInfo::exists(dir) && !QDir(dir).removeRecursively())
            failed.append(dir);
    }
    if (!failed.isEmpty() && error)
        *error = failed.join(QLatin1String(", "));
    return failed.isEmpty();
}

void VeskSettingsJournal::clear()
{
    files.clear();
    createdDirectories.clear();
}
