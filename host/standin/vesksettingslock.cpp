#include "vesksettingslock.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>
#endif

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("VeskSettingsLock", text);
}

#ifdef Q_OS_UNIX
QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// "1234 (vesk-roster new big or ...)" for a process that holds a lock on the
// file (dev, inode), from the kernel's table of locks; empty when it cannot be
// known.
QString lockHolder(dev_t device, ino_t inode)
{
    QFile locks(QStringLiteral("/proc/locks"));
    if (!locks.open(QIODevice::ReadOnly))
        return QString();
    const QByteArray wanted = QByteArray::number(major(device), 16).rightJustified(2, '0') + ':'
        + QByteArray::number(minor(device), 16).rightJustified(2, '0') + ':'
        + QByteArray::number(quint64(inode));
    const QByteArray self = QByteArray::number(qint64(::getpid()));
    // "1: FLOCK  ADVISORY  WRITE 1234 00:2e:131 0 EOF"; waiters show "->".
    for (const QByteArray &line : locks.readAll().split('\n')) {
        const QList<QByteArray> fields = line.simplified().split(' ');
        if (fields.size() < 6 || fields.at(1) != "FLOCK" || fields.at(5) != wanted)
            continue;
        const QByteArray pid = fields.at(4);
        if (pid == self)
            continue;
        QFile cmdline(QStringLiteral("/proc/%1/cmdline").arg(QString::fromLatin1(pid)));
        QString command;
        if (cmdline.open(QIODevice::ReadOnly)) {
            QByteArray bytes = cmdline.read(200);
            bytes.replace('\0', ' ');
            command = QString::fromLocal8Bit(bytes.trimmed());
            // A command line is text of another user: shown, never obeyed.
            for (QChar &c : command) {
                if (c.unicode() < 0x20 || c.unicode() == 0x7f)
                    c = QLatin1Char('?');
            }
        }
        return command.isEmpty() ? QString::fromLatin1(pid)
                                 : tr("%1 (%2)").arg(QString::fromLatin1(pid), command);
    }
    return QString();
}
#endif

} // namespace

VeskSettingsLock::VeskSettingsLock() = default;

VeskSettingsLock::~VeskSettingsLock()
{
    unlock();
}

bool VeskSettingsLock::isLocked() const
{
    return fd >= 0;
}

void VeskSettingsLock::unlock()
{
#ifdef Q_OS_UNIX
    if (fd >= 0) {
        ::flock(fd, LOCK_UN);
        ::close(fd);
    }
#endif
    fd = -1;
}

bool VeskSettingsLock::lock(const QString &settingsDir, Mode mode, int timeoutMs, QString *error)
{
    unlock();
#ifdef Q_OS_UNIX
    const QByteArray path = QFile::encodeName(settingsDir);
    const QDeadlineTimer deadline(qMax(0, timeoutMs));
    int pause = 2;
    int candidate = -1;
    for (;;) {
        if (candidate < 0)
            candidate = ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (candidate < 0) {
            *error = tr("cannot lock the settings directory %1: %2")
                         .arg(settingsDir, systemError(errno));
            return false;
        }
        int result;
        do {
            result = ::flock(candidate, (mode == Exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB);
        } while (result != 0 && errno == EINTR);
        if (result == 0) {
            // A holder may have removed the directory (a refused first run
            // leaves nothing behind) while this process waited on it: the lock
            // counts only if the path still names the locked directory.
            struct stat locked;
            struct stat current;
            if (::fstat(candidate, &locked) == 0 && ::stat(path.constData(), &current) == 0
                && locked.st_dev == current.st_dev && locked.st_ino == current.st_ino) {
                fd = candidate;
                return true;
            }
            ::close(candidate);
            candidate = -1;
            continue;
        }
        const int lockError = errno;
        if (lockError != EWOULDBLOCK) {
            ::close(candidate);
            *error = tr("cannot lock the settings directory %1: %2")
                         .arg(settingsDir, systemError(lockError));
            return false;
        }
        if (deadline.hasExpired()) {
            struct stat info;
            QString holder;
            if (::fstat(candidate, &info) == 0)
                holder = lockHolder(info.st_dev, info.st_ino);
            ::close(candidate);
            const QString seconds = QString::number(timeoutMs / 1000.0, 'g', 3);
            *error = holder.isEmpty()
                ? tr("the settings directory %1 is in use by another process; gave up after "
                     "%2 s")
                      .arg(settingsDir, seconds)
                : tr("the settings directory %1 is in use by process %2; gave up after %3 s")
                      .arg(settingsDir, holder, seconds);
            return false;
        }
        // Polling with a short, growing pause: flock() cannot wait with a
        // bound, and a short pause keeps a waiter from starving behind a
        // stream of short runs.
        QThread::msleep(ulong(qBound(qint64(1), deadline.remainingTime(), qint64(pause))));
        pause = qMin(pause * 2, 20);
    }
#else
    Q_UNUSED(settingsDir)
    Q_UNUSED(mode)
    Q_UNUSED(timeoutMs)
    *error = tr("locking a settings directory is not supported on this system");
    return false;
#endif
}
