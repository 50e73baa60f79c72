#include "rosterlibrary.h"

#include <librarysession.h>

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLabel>

VeskRosterLibrary::VeskRosterLibrary(const QString &settingsDir, QObject *parent)
    : QObject(parent)
    , dir(QDir::cleanPath(QDir(settingsDir).absolutePath()))
{
    connect(&watcher, &QFileSystemWatcher::fileChanged, this, &VeskRosterLibrary::reloadIfChanged);
    connect(
        &watcher, &QFileSystemWatcher::directoryChanged, this, &VeskRosterLibrary::reloadIfChanged);
}

VeskRosterLibrary::~VeskRosterLibrary() = default;

bool VeskRosterLibrary::open(QString *error)
{
    // Start-up stores the current filter when the stored one is gone: a
    // change like any other, then the first read.
    return change([](VeskLibrarySession &, QString *) { return true; }, error);
}

bool VeskRosterLibrary::change(const Edit &edit, QString *error)
{
    // The library's managers are singletons: the reading session gives them
    // up for the writing one, which starts them from what is on disk now.
    reading.reset();
    VeskLibrarySession writing;
    bool done = writing.open(dir, VeskLibrarySession::ReadWrite, error, lockTimeoutMs);
    if (done) {
        done = edit(writing, error) && writing.commit(error);
        if (!done)
            writing.rollback();
    }
    writing.close();
    QString readError;
    if (!read(&readError)) {
        *error = readError;
        Q_EMIT lost(readError);
        return false;
    }
    return done;
}

bool VeskRosterLibrary::changeOrExplain(const Edit &edit, QLabel *messageLabel)
{
    QString error;
    if (change(edit, &error))
        return true;
    messageLabel->setText(error);
    messageLabel->show();
    return false;
}

bool VeskRosterLibrary::read(QString *error)
{
    reading.reset();
    // The window cannot show anything without the library, and another
    // run holds the lock only for one short change: wait it out.
    auto session = std::make_unique<VeskLibrarySession>();
    bool opened = false;
    for (int attempt = 0; !opened && attempt < 100; ++attempt)
        opened = session->open(dir, VeskLibrarySession::ReadOnly, error, lockTimeoutMs);
    if (!opened)
        return false;
    session->releaseLock();
    known = fingerprint();
    reading = std::move(session);
    watch();
    Q_EMIT reloaded();
    return true;
}

void VeskRosterLibrary::reloadIfChanged()
{
    if (fingerprint() != known) {
        QString error;
        if (!read(&error))
            Q_EMIT lost(error);
    }
}

QByteArray VeskRosterLibrary::fingerprint() const
{
    // The directory is small: names and bytes tell whether anybody wrote
    // since, where times of modification can miss a write in the same tick.
    QCryptographicHash hash(QCryptographicHash::Sha1);
    QStringList files;
    QDirIterator it(dir, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(it.next());
    files.sort();
    for (const QString &path : qAsConst(files)) {
        hash.addData(path.toUtf8());
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            hash.addData(file.read(1 << 20));
        hash.addData(QByteArray(1, '\0'));
    }
    return hash.result();
}

void VeskRosterLibrary::watch()
{
    const QStringList watched = watcher.files() + watcher.directories();
    if (!watched.isEmpty())
        watcher.removePaths(watched);
    QStringList paths = { dir, dir + QLatin1String("/roster_filters") };
    QDirIterator it(dir, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        paths.append(it.next());
    for (const QString &path : qAsConst(paths)) {
        if (QFileInfo::exists(path))
            watcher.addPath(path);
    }
}
