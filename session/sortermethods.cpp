#include "librarysession.h"
#include "sessiontext_p.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

bool VeskLibrarySession::renameSorter(
    const QString &oldName, const QString &newName, QString *error)
{
    if (!isWritable(error))
        return false;
    const QStringList methods = sortersManager->getSorters();
    if (!methods.contains(oldName)) {
        *error = vtr("unknown sorting method \"%1\"").arg(oldName);
        return false;
    }
    if (newName.isEmpty()) {
        *error = vtr("a sorting method's name cannot be empty");
        return false;
    }
    if (newName == oldName)
        return true;
    if (methods.contains(newName)) {
        *error = vtr("a sorting method named \"%1\" already exists").arg(newName);
        return false;
    }
    // A filter keeps its method by name: left behind, it would sort by a
    // method that no longer exists. Every such filter must take the new
    // name, or the method keeps the old one.
    QList<VeskRosterFiltersStack *> naming;
    const QStringList ids = filtersManager->getFilterNames();
    for (const QString &id : ids) {
        VeskRosterFiltersStack *filter = stack(id);
        if (!filter || filter->getSorter() != oldName)
            continue;
        if (!isEditable(id, error))
            return false;
        naming.append(filter);
    }
    // The new method is stored before any filter names it, and the old one
    // removed only once none does.
    sortersManager->addSorter(newName, sortersManager->getSorters(oldName));
    sortersManager->setSorterAscending(newName, sortersManager->getSortersAscending(oldName));
    for (VeskRosterFiltersStack *filter : qAsConst(naming)) {
        filter->setSorter(newName);
        if (!storeStack(filter, error))
            return false;
    }
    const bool wasDefault = sortersManager->getDefault() == oldName;
    sortersManager->removeSorter(oldName);
    if (wasDefault)
        sortersManager->setDefault(newName);
    return verifySettings(error);
}
