// The sorting-method operations of the session.
#include "librarysession.h"

#include "sessiontext_p.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>
#include <vesksettingsmanager.h>

bool VeskLibrarySession::storeSorter(
    const QString &name, const QStringList &ids, const QStringList &ascending, QString *error)
{
    if (!isWritable(error))
        return false;
    if (name.isEmpty()) {
        *error = vtr("a sorting method's name cannot be empty");
        return false;
    }
    // A method is read with one direction per comparator; both are stored
    // before anything makes it current.
    sortersManager->addSorter(name, ids);
    sortersManager->setSorterAscending(name, ascending);
    return verifySettings(error);
}

bool VeskLibrarySession::removeSorter(const QString &name, QString *error)
{
    if (!isWritable(error))
        return false;
    if (!sortersManager->getSorters().contains(name)) {
        *error = vtr("unknown sorting method \"%1\"").arg(name);
        return false;
    }
    sortersManager->removeSorter(name);
    // The library keeps the method's directions; a method stored later under
    // the same name without directions of its own would take them over.
    if (VeskSettingsManagerPrivate *settings = VeskSettingsManagerPrivate::settingsMgrPrivInstance)
        settings->removeKey(QLatin1String("sorter_asc_") + name);
    // The library would go on announcing a method that is gone as the
    // default, and no name could bring back the built-in order.
    if (sortersManager->getDefault() == name)
        sortersManager->setDefault(QString());
    return verifySettings(error);
}

bool VeskLibrarySession::setDefaultSorter(const QString &name, QString *error)
{
    if (!isWritable(error))
        return false;
    if (!name.isEmpty() && !sortersManager->getSorters().contains(name)) {
        *error = vtr("unknown sorting method \"%1\"").arg(name);
        return false;
    }
    sortersManager->setDefault(name);
    return verifySettings(error);
}

bool VeskLibrarySession::sortCurrentFilter(const QString &method, QString *error)
{
    if (!isWritable(error))
        return false;
    if (!sortersManager->getSorters().contains(method)) {
        *error = vtr("unknown sorting method \"%1\"").arg(method);
        return false;
    }
    const QString current = filtersManager->getCurrentFilterName();
    VeskRosterFiltersStack *currentStack = stack(current);
    if (currentStack && !isEditable(current, error))
        return false;
    // The method is kept by the current filter: a stack keeps it in its
    // file, the default filter as the default method.
    sortersManager->setCurrentSorter(method);
    // From now on the filter keeps a method of its own, even the default one.
    const bool followed = currentStack && followingDefault.remove(currentStack);
    if (currentStack && !storeStack(currentStack, error)) {
        if (followed)
            followingDefault.insert(currentStack);
        return false;
    }
    return verifySettings(error);
}
