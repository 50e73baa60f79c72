#include "librarysession.h"

#include "sessionfiles_p.h"
#include "sessiontext_p.h"
#include "settingsjournal.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>
#include <vesksettingslock.h>
#include <veskstackfile_p.h>
#include <veskstandin.h>

#include <QDir>
#include <QFileInfo>

using VeskSessionFiles::createDirectories;
using VeskSessionFiles::diagnose;
using VeskSessionFiles::nearestExisting;
using VeskSessionFiles::writeProblem;

namespace {

const QString defaultId = QStringLiteral("default");

} // namespace

VeskLibrarySession::VeskLibrarySession() = default;

VeskLibrarySession::~VeskLibrarySession()
{
    close();
}

QString VeskLibrarySession::defaultSettingsDir(QString *error)
{
    const QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!config.isEmpty() && QDir::isAbsolutePath(config))
        return config + QLatin1String("/vesk-roster");
    const QString home = qEnvironmentVariable("HOME");
    if (!home.isEmpty() && QDir::isAbsolutePath(home))
        return home + QLatin1String("/.config/vesk-roster");
    *error = vtr("there is no settings directory: neither XDG_CONFIG_HOME nor HOME is set to an "
                 "absolute path; give one with --settings DIR");
    return QString();
}

bool VeskLibrarySession::open(
    const QString &settingsDir, Access mode, QString *error, int lockTimeoutMs)
{
    close();
    directory = QDir::cleanPath(QDir(settingsDir).absolutePath());
    access = mode;
    journal = std::make_unique<VeskSettingsJournal>();
    lock = std::make_unique<VeskSettingsLock>();

    const QFileInfo place(directory);
    if ((place.exists() || place.isSymLink()) && !place.isDir()) {
        *error = vtr("the settings directory %1 is not a directory").arg(directory);
        return false;
    }
    if (mode == ReadOnly)
        return lockForReading(lockTimeoutMs, error) && startLibrary(error);

    VeskSettingsLock creation;
    if (!lockCreation(&creation, lockTimeoutMs, error))
        return false;
    QString reason;
    if (!createDirectories(directory, journal.get(), &reason)) {
        journal->restore(nullptr);
        *error = vtr("cannot create the settings directory %1: %2").arg(directory, reason);
        return false;
    }
    if (!lock->lock(directory, VeskSettingsLock::Exclusive, lockTimeoutMs, error)) {
        // A directory made here may be another run's by now: it stays.
        journal->clear();
        return false;
    }
    creation.unlock();
    VeskSessionFiles::removeSettingsLeftovers(directory);
    const QString settingsFile = directory + QLatin1String("/settings.dat");
    const QString filterDir = directory + QLatin1String("/roster_filters");
    if (QFileInfo::exists(settingsFile) && !QFileInfo(settingsFile).isFile()) {
        *error = vtr("the settings file %1 is not a regular file").arg(settingsFile);
    } else if (!(reason = writeProblem(directory)).isEmpty()) {
        *error = vtr("cannot write to the settings directory %1: %2").arg(directory, reason);
    } else if (QFileInfo::exists(filterDir) && !(reason = writeProblem(filterDir)).isEmpty()) {
        *error = vtr("cannot write to the filter directory %1: %2").arg(filterDir, reason);
    } else {
        journal->recordFile(settingsFile);
        if (startLibrary(error))
            return true;
    }
    rollback();
    close();
    return false;
}

// A directory that does not exist may be created by a writer at any moment:
// the lock of the directory it is created in keeps the two apart. A few
// tries, since the directory may appear while the lock is awaited.
bool VeskLibrarySession::lockForReading(int timeoutMs, QString *error)
{
    for (int attempt = 0; attempt < 8; ++attempt) {
        if (QFileInfo::exists(directory))
            return lock->lock(directory, VeskSettingsLock::Shared, timeoutMs, error);
        const QString parent = nearestExisting(directory);
        // Below a file nothing can be created: there is nothing to read.
        if (!QFileInfo(parent).isDir())
            return true;
        if (!lock->lock(parent, VeskSettingsLock::Shared, timeoutMs, error))
            return false;
        if (!QFileInfo::exists(directory) && nearestExisting(directory) == parent)
            return true;
        lock->unlock();
    }
    *error = vtr("the settings directory %1 keeps changing; try again").arg(directory);
    return false;
}

bool VeskLibrarySession::lockCreation(VeskSettingsLock *creation, int timeoutMs, QString *error)
{
    for (int attempt = 0; attempt < 8; ++attempt) {
        if (QFileInfo::exists(directory))
            return true;
        const QString parent = nearestExisting(directory);
        if (!QFileInfo(parent).isDir())
            return true; // creating fails, and says why
        if (!creation->lock(parent, VeskSettingsLock::Exclusive, timeoutMs, error))
            return false;
        if (!QFileInfo::exists(directory) && nearestExisting(directory) == parent)
            return true;
        creation->unlock();
    }
    *error = vtr("the settings directory %1 keeps changing; try again").arg(directory);
    return false;
}

bool VeskLibrarySession::startLibrary(QString *error)
{
    VeskStandIn::setSettingsPersistent(access == ReadWrite);
    VeskStandIn::setSettingsDir(directory);
    filtersManager = VeskRosterFiltersManager::getInstance();
    sortersManager = VeskRosterSortersManager::getInstance();
    const QStringList ids = filtersManager->getFilterNames();
    for (const QString &id : ids) {
        VeskRosterFiltersStack *stack = filtersManager->getStackFilter(id);
        if (stack && !stacks.contains(stack))
            stacks.append(stack);
    }

    // The manager hands out the default filter only while it is current, and
    // making it current stores settings: switch there and back in memory,
    // then take the settings from the file again.
    const QString current = filtersManager->getCurrentFilterName();
    if (current == defaultId) {
        defaultFilter = filtersManager->getCurrentFilter();
    } else {
        VeskStandIn::setSettingsPersistent(false);
        filtersManager->setCurrentFilter(defaultId);
        defaultFilter = filtersManager->getCurrentFilter();
        filtersManager->setCurrentFilter(current);
        VeskStandIn::setSettingsPersistent(access == ReadWrite);
        VeskStandIn::setSettingsDir(directory);
    }
    findUnreadable();
    findFiltersWithoutMethod();
    // Start-up stores the current filter when the stored one is gone.
    return access == ReadOnly || verifySettings(error);
}

void VeskLibrarySession::findUnreadable()
{
    unreadable.clear();
    for (VeskRosterFiltersStack *stack : qAsConst(stacks)) {
        const QString id = stack->id();
        const VeskRosterFilter::RosterFilterType type = stack->getType();
        if (!stack->getFilters().isEmpty()
            && (type == VeskRosterFilter::RosterFilterAnd
                || type == VeskRosterFilter::RosterFilterOr))
            continue;
        const QString path = filePath(id);
        QString reason = diagnose(path);
        if (reason.isEmpty())
            reason = vtr("it reads as a filter without conditions");
        unreadable.append({ id, path, reason });
    }
    // Files that the library passes over without a word: not regular files,
    // and names it never writes.
    const QDir dir(VeskStackFile::directory());
    const QStringList names = dir.entryList(QDir::Files | QDir::System, QDir::Name);
    for (const QString &name : names) {
        QString id;
        const QString path = dir.filePath(name);
        if (VeskStackFile::idForFile(name, &id)) {
            if (id != defaultId && !QFileInfo(path).isFile())
                unreadable.append({ id, path, vtr("it is not a regular file") });
            continue;
        }
        QString reason = diagnose(path);
        if (reason.isEmpty())
            reason = vtr("its name is not one under which a filter is stored");
        unreadable.append({ QString(), path, reason });
    }
}

void VeskLibrarySession::close()
{
    for (VeskRosterFiltersStack *stack : qAsConst(stacks)) {
        if (stack != defaultFilter)
            delete stack;
    }
    stacks.clear();
    followingDefault.clear();
    delete defaultFilter;
    defaultFilter = nullptr;
    delete filtersManager;
    filtersManager = nullptr;
    delete sortersManager;
    sortersManager = nullptr;
    unreadable.clear();
    if (lock)
        lock->unlock();
    journal.reset();
    VeskStandIn::setSettingsPersistent(true);
}

bool VeskLibrarySession::rollback(QString *error)
{
    if (!journal)
        return true;
    QString failed;
    const bool restored = journal->restore(&failed);
    journal->clear();
    if (!restored && error)
        *error = vtr("could not put back %1").arg(failed);
    return restored;
}

bool VeskLibrarySession::commit(QString *error)
{
    if (access == ReadWrite && isOpen() && !verifySettings(error))
        return false;
    if (journal)
        journal->clear();
    return true;
}

VeskRosterFilter *VeskLibrarySession::filter(const QString &id) const
{
    if (id == defaultId)
        return defaultFilter;
    return filtersManager->getStackFilter(id);
}

bool VeskLibrarySession::isRegistered(const QString &id) const
{
    return id == defaultId || filtersManager->getStackFilter(id);
}

VeskRosterFiltersStack *VeskLibrarySession::stack(const QString &id) const
{
    return filtersManager->getStackFilter(id);
}

bool VeskLibrarySession::isEditable(const QString &id, QString *error) const
{
    if (id == defaultId) {
        *error = vtr("the default filter cannot be edited");
        return false;
    }
    if (!stack(id)) {
        QStringList names = filtersManager->getFilterNames();
        names.removeAll(defaultId);
        *error = vtr("unknown filter \"%1\"; filters you can edit: %2").arg(id, quotedList(names));
        return false;
    }
    for (const Unreadable &file : unreadable) {
        if (file.id == id) {
            *error = vtr("the filter \"%1\" could not be read from %2 (%3); an edit would store "
                         "what little was read in its place, so it can only be removed or "
                         "replaced")
                         .arg(id, file.path, file.reason);
            return false;
        }
    }
    return true;
}

void VeskLibrarySession::releaseLock()
{
    if (lock)
        lock->unlock();
}

bool VeskLibrarySession::isWritable(QString *error) const
{
    if (access == ReadWrite && isOpen() && lock && lock->isLocked())
        return true;
    *error = vtr("the settings directory %1 is open for reading only").arg(directory);
    return false;
}
