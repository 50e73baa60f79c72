// The filter operations of the session: each stores through the library,
// then reads back what the next start will find.
#include "librarysession.h"

#include "sessiontext_p.h"
#include "settingsjournal.h"
#include "storedmethod_p.h"

#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <vesksettingsmanager.h>
#include <veskstackfile_p.h>

#include <algorithm>

namespace {

const QString defaultId = QStringLiteral("default");

} // namespace

VeskRosterFiltersStack *VeskLibrarySession::createStack(
    const QString &name, VeskRosterFilter::RosterFilterType type, QString *error)
{
    if (name.isEmpty()) {
        *error = vtr("a filter name cannot be empty");
        return nullptr;
    }
    if (isRegistered(name)) {
        *error = vtr("a filter named \"%1\" already exists").arg(name);
        return nullptr;
    }
    VeskRosterFiltersStack *stack = filtersManager->addStackFilter(name, type);
    if (!stack) {
        *error = vtr("the library did not create the filter \"%1\"").arg(name);
        return nullptr;
    }
    stacks.append(stack);
    return stack;
}

bool VeskLibrarySession::storeStack(VeskRosterFiltersStack *stack, QString *error)
{
    if (!isWritable(error))
        return false;
    const QString id = stack->id();
    if (!checkStorable(stack, id, error))
        return false;
    journal->recordMissingDirectories(VeskStackFile::directory());
    journal->recordFile(filePath(id));
    const QString method = storedMethod(stack);
    {
        const VeskStoredMethod stored(stack, method);
        stack->writeFilterSettings();
    }
    if (!verifyStored(stack, id, error))
        return false;
    noteStoredMethod(stack, method);
    return true;
}

bool VeskLibrarySession::storeDisplayOrder(QString *error)
{
    // The manager stores the order only when a filter moves up or down; a
    // new or removed filter would otherwise be listed by the file system's
    // order after the next start.
    VeskSettingsManager::getInstance()->writeGlobalSetting(
        VeskField::comboBox(QString(), QStringLiteral("filters"), filtersManager->getFilterNames(),
            QStringList(), QString(), QString()));
    return verifySettings(error);
}

bool VeskLibrarySession::storeNewStack(VeskRosterFiltersStack *stack, QString *error)
{
    return storeStack(stack, error) && storeDisplayOrder(error);
}

bool VeskLibrarySession::replaceStack(
    const QString &id, VeskRosterFiltersStack *replacement, QString *error)
{
    VeskRosterFiltersStack *old = stack(id);
    if (!old) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    if (!isWritable(error))
        return false;
    QString method = replacement->getSorter();
    if (method == old->getSorter())
        method = storedMethod(old);
    const VeskStoredMethod carried(replacement, method);
    if (!checkStorable(replacement, id, error))
        return false;
    // One rename replaces the old file by the new one; only then does the
    // registered filter take the new content, read from that file.
    journal->recordFile(filePath(id));
    replacement->setName(id);
    replacement->writeFilterSettings();
    const bool stored = verifyStored(replacement, id, error);
    replacement->setName(QString());
    if (!stored)
        return false;
    old->readFilterSettings();
    noteStoredMethod(old, method);
    unreadable.erase(std::remove_if(unreadable.begin(), unreadable.end(),
                         [&](const Unreadable &file) { return file.id == id; }),
        unreadable.end());
    return true;
}

bool VeskLibrarySession::removeStack(const QString &id, QString *error)
{
    VeskRosterFiltersStack *removed = stack(id);
    if (!removed) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    if (!isWritable(error))
        return false;
    journal->recordFile(filePath(id));
    const bool wasCurrent = filtersManager->getCurrentFilter() == removed;
    filtersManager->removeStackFilter(id);
    stacks.removeAll(removed);
    followingDefault.remove(removed);
    delete removed;
    // Stored as well, so that a later filter of the same name does not
    // become current by surprise.
    if (wasCurrent)
        filtersManager->setCurrentFilter(defaultId);
    return verifyRemoved(id, error) && storeDisplayOrder(error);
}

bool VeskLibrarySession::renameStack(const QString &oldId, const QString &newId, QString *error)
{
    VeskRosterFiltersStack *renamed = stack(oldId);
    if (!renamed) {
        *error = vtr("unknown filter \"%1\"").arg(oldId);
        return false;
    }
    if (newId.isEmpty()) {
        *error = vtr("a filter name cannot be empty");
        return false;
    }
    if (isRegistered(newId)) {
        *error = vtr("a filter named \"%1\" already exists").arg(newId);
        return false;
    }
    if (!isWritable(error))
        return false;
    if (!checkStorable(renamed, newId, error))
        return false;
    journal->recordFile(filePath(oldId));
    journal->recordFile(filePath(newId));
    // The library moves the file and stores the display order, and the
    // current filter's new name when it is current.
    filtersManager->rename(oldId, newId);
    if (filtersManager->getStackFilter(newId) != renamed) {
        *error = vtr("the library did not rename \"%1\" to \"%2\"").arg(oldId, newId);
        return false;
    }
    return verifyStored(renamed, newId, error) && verifyRemoved(oldId, error)
        && verifySettings(error);
}

bool VeskLibrarySession::moveUp(const QString &id, QString *error)
{
    if (!isWritable(error))
        return false;
    if (id == defaultId) {
        *error = vtr("the default filter always stays first");
        return false;
    }
    const int at = filtersManager->getFilterNames().indexOf(id);
    if (at < 0) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    if (at <= 1) {
        *error = vtr("\"%1\" is already the first filter after the default filter, which always "
                     "stays first")
                     .arg(id);
        return false;
    }
    filtersManager->upFilter(id);
    return verifySettings(error);
}

bool VeskLibrarySession::moveDown(const QString &id, QString *error)
{
    if (!isWritable(error))
        return false;
    if (id == defaultId) {
        *error = vtr("the default filter always stays first");
        return false;
    }
    const QStringList order = filtersManager->getFilterNames();
    const int at = order.indexOf(id);
    if (at < 0) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    if (at + 1 >= order.size()) {
        *error = vtr("\"%1\" is already the last filter").arg(id);
        return false;
    }
    filtersManager->downFilter(id);
    return verifySettings(error);
}

bool VeskLibrarySession::setCurrentFilter(const QString &id, QString *error)
{
    if (!isWritable(error))
        return false;
    if (!isRegistered(id)) {
        *error = vtr("unknown filter \"%1\"").arg(id);
        return false;
    }
    filtersManager->setCurrentFilter(id);
    return verifySettings(error);
}
