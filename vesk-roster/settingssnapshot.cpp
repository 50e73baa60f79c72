#include "settingssnapshot.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSaveFile>

#include <algorithm>

namespace {
QByteArray readAll(const QString &path, bool *ok)
{
    QFile file(path);
    *ok = file.open(QIODevice::ReadOnly);
    return *ok ? file.readAll() : QByteArray();
}
} // namespace

VeskSettingsSnapshot VeskSettingsSnapshot::take(const QString &dir)
{
    VeskSettingsSnapshot snapshot;
    snapshot.root = QDir(dir).absolutePath();
    snapshot.existed = QDir(snapshot.root).exists();
    if (!snapshot.existed)
        return snapshot;
    const QDir root(snapshot.root);
    QDirIterator it(snapshot.root, QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString relative = root.relativeFilePath(path);
        if (it.fileInfo().isDir()) {
            snapshot.dirs.append(relative);
        } else {
            bool ok = false;
            const QByteArray bytes = readAll(path, &ok);
            if (ok)
                snapshot.files.insert(relative, bytes);
        }
    }
    return snapshot;
}

void VeskSettingsSnapshot::restore() const
{
    if (!existed) {
        QDir(root).removeRecursively();
        return;
    }
    const QDir rootDir(root);
    QStringList newDirs;
    QDirIterator it(root, QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString relative = rootDir.relativeFilePath(path);
        if (it.fileInfo().isDir()) {
            if (!dirs.contains(relative))
                newDirs.append(path);
        } else if (!files.contains(relative)) {
            QFile::remove(path);
        }
    }
    for (const QString &relative : dirs)
        rootDir.mkpath(relative);
    for (auto file = files.cbegin(); file != files.cend(); ++file) {
        const QString path = rootDir.filePath(file.key());
        bool ok = false;
        if (readAll(path, &ok) == file.value() && ok)
            continue;
        QSaveFile out(path);
        if (out.open(QIODevice::WriteOnly)) {
            out.write(file.value());
            out.commit();
        }
    }
    // Deepest first, so that parents are empty when their turn comes.
    std::sort(newDirs.begin(), newDirs.end(),
        [](const QString &a, const QString &b) { return a.size() > b.size(); });
    for (const QString &path : qAsConst(newDirs))
        QDir(path).removeRecursively();
}
