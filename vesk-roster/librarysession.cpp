#include "librarysession.h"

#include "refusal.h"
#include "settingssnapshot.h"
#include "text_p.h"

#include <veskstandin.h>
#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>
#include <vesksettingsmanager.h>

namespace {
const QString defaultId = QStringLiteral("default");
}

VeskLibrarySession::VeskLibrarySession(const QString &dir)
    : settingsDir(dir)
{
    VeskStandIn::setSettingsDir(dir);
    filtersManager = VeskRosterFiltersManager::getInstance();
    sortersManager = VeskRosterSortersManager::getInstance();
    const QStringList ids = filtersManager->getFilterNames();
    for (const QString &id : ids) {
        VeskRosterFiltersStack *stack = filtersManager->getStackFilter(id);
        if (stack && !stacks.contains(stack))
            stacks.append(stack);
    }

    // The manager hands out the default filter only while it is current, and
    // making it current writes settings: switch there and back, then put the
    // files back as start-up left them.
    const QString current = filtersManager->getCurrentFilterName();
    if (current == defaultId) {
        defaultFilter = filtersManager->getCurrentFilter();
    } else {
        const VeskSettingsSnapshot snapshot = VeskSettingsSnapshot::take(dir);
        filtersManager->setCurrentFilter(defaultId);
        defaultFilter = filtersManager->getCurrentFilter();
        filtersManager->setCurrentFilter(current);
        snapshot.restore();
    }
}

VeskLibrarySession::~VeskLibrarySession()
{
    for (VeskRosterFiltersStack *stack : qAsConst(stacks)) {
        if (stack != defaultFilter)
            delete stack;
    }
    delete defaultFilter;
    delete filtersManager;
    delete sortersManager;
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

VeskRosterFiltersStack *VeskLibrarySession::editableStack(const QString &id) const
{
    if (id == defaultId) {
        refuse(vtr("the default filter cannot be edited; create a filter of your own with "
                   "\"new NAME and|or CONDITION...\""));
    }
    VeskRosterFiltersStack *stack = filtersManager->getStackFilter(id);
    if (!stack) {
        QStringList names = filtersManager->getFilterNames();
        names.removeAll(defaultId);
        refuse(vtr("unknown filter \"%1\"; filters you can edit: %2").arg(id, quotedList(names)));
    }
    return stack;
}

void VeskLibrarySession::adopt(VeskRosterFiltersStack *stack)
{
    if (!stacks.contains(stack))
        stacks.append(stack);
}

void VeskLibrarySession::release(VeskRosterFiltersStack *stack)
{
    stacks.removeAll(stack);
}

void VeskLibrarySession::storeDisplayOrder(const QStringList &order) const
{
    VeskSettingsManager::getInstance()->writeGlobalSetting(VeskField::comboBox(
        QString(), QStringLiteral("filters"), order, QStringList(), QString(), QString()));
}
