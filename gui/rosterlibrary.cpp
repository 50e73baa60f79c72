#include "rosterlibrary.h"

#include <librarysession.h>
#include <refusal.h>
#include <settingssnapshot.h>

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>

VeskRosterLibrary::VeskRosterLibrary(const QString &settingsDir, QObject *parent)
    : QObject(parent)
    , dir(settingsDir.endsWith(QLatin1Char('/')) ? settingsDir : settingsDir + QLatin1Char('/'))
{
    connect(&watcher, &QFileSystemWatcher::fileChanged, this, &VeskRosterLibrary::reloadIfChanged);
    connect(
        &watcher, &QFileSystemWatcher::directoryChanged, this, &VeskRosterLibrary::reloadIfChanged);
}

VeskRosterLibrary::~VeskRosterLibrary() = default;

bool VeskRosterLibrary::open(QString *error)
{
    // Start-up itself stores the current filter; it is a change like any other.
    return change([](VeskLibrarySession &) {}, [](VeskLibrarySession &) {}, error);
}

bool VeskRosterLibrary::change(const Step &edit, const Step &verify, QString *error)
{
    if (!lockForWriting(error))
        return false;
    bool done = false;
    if (!current || fingerprint() != known)
        reload();
    const VeskSettingsSnapshot snapshot = VeskSettingsSnapshot::take(dir);
    try {
        edit(*current);
        reload();
        verify(*current);
        done = true;
    } catch (const VeskRefusal &refusal) {
        *error = refusal.message();
        snapshot.restore();
        reload();
    }
    unlock();
    return done;
}

void VeskRosterLibrary::reloadIfChanged()
{
    if (fingerprint() == known)
        return;
    QString error;
    if (lockForWriting(&error)) {
        reload();
        unlock();
    }
}

bool VeskRosterLibrary::lockForWriting(QString *)
{
    return true;
}

void VeskRosterLibrary::unlock() { }

void VeskRosterLibrary::reload()
{
    // The library keeps its state in two singletons: the old session deletes
    // them, the new one starts them from what is on disk.
    current.reset();
    current = std::make_unique<VeskLibrarySession>(dir);
    known = fingerprint();
    watch();
    Q_EMIT reloaded();
}

QByteArray VeskRosterLibrary::fingerprint() const
{
    // The directory is small: its names and bytes say whether anybody wrote
    // since, where times of modification can miss a write in the same tick.
    QCryptographicHash hash(QCryptographicHash::Sha1);
    QStringList files;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(it.next());
    files.sort();
    for (const QString &path : qAsConst(files)) {
        hash.addData(path.toUtf8());
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            hash.addData(file.readAll());
        hash.addData("\0", 1);
    }
    return hash.result();
}

void VeskRosterLibrary::watch()
{
    const QStringList watched = watcher.files() + watcher.directories();
    if (!watched.isEmpty())
        watcher.removePaths(watched);
    QStringList paths = { dir, dir + QLatin1String("roster_filters") };
    QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        paths.append(it.next());
    for (const QString &path : qAsConst(paths)) {
        if (QFileInfo::exists(path))
            watcher.addPath(path);
    }
}
