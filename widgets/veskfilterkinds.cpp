#include "veskfilterkinds.h"

#include "veskeditedtree_p.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>

#include <algorithm>

namespace {

const QString stackKind = QStringLiteral("stack_filter");

// Reached at each call rather than kept: a program may create the library's
// managers anew (after another program changed the settings) while an
// editor stays open.
VeskRosterFiltersManager *manager()
{
    return VeskRosterFiltersManager::getInstance();
}

} // namespace

VeskFilterKinds::VeskFilterKinds() = default;
VeskFilterKinds::~VeskFilterKinds() = default;

bool VeskFilterKinds::registerKind(
    const QString &kindId, const QString &name, const Factory &create)
{
    if (kindId.isEmpty() || kindId == stackKind || !create
        || manager()->getAvailableFilters().contains(kindId))
        return false;
    own.insert(kindId, Kind { name.isEmpty() ? kindId : name, create });
    return true;
}

bool VeskFilterKinds::isRegistered(const QString &kindId) const
{
    return own.contains(kindId);
}

QStringList VeskFilterKinds::kinds() const
{
    QStringList result = manager()->getAvailableFilters() + own.keys();
    std::sort(result.begin(), result.end(), [this](const QString &a, const QString &b) {
        const int order = name(a).localeAwareCompare(name(b));
        return order != 0 ? order < 0 : a < b;
    });
    return result;
}

QString VeskFilterKinds::name(const QString &kindId) const
{
    const auto it = own.constFind(kindId);
    return it != own.constEnd() ? it->name : manager()->getFilterName(kindId);
}

VeskRosterFilter *VeskFilterKinds::createLeaf(const QString &kindId) const
{
    if (kindId == stackKind)
        return nullptr;
    const auto it = own.constFind(kindId);
    if (it != own.constEnd())
        return it->create();
    return manager()->createFilter(kindId, VeskRosterFilter::RosterFilterDefault);
}

VeskRosterFiltersStack *VeskFilterKinds::createStack(VeskRosterFilter::RosterFilterType type) const
{
    return static_cast<VeskRosterFiltersStack *>(manager()->createFilter(stackKind, type));
}

VeskRosterFilter *VeskFilterKinds::copy(const VeskRosterFilter *filter) const
{
    if (!filter)
        return nullptr;
    if (const VeskRosterFiltersStack *stack = VeskEditedTree::asStack(filter))
        return copyStack(stack);
    VeskRosterFilter *leaf = createLeaf(filter->id());
    if (leaf)
        leaf->setConfiguration(filter->getConfiguration());
    return leaf;
}

VeskRosterFiltersStack *VeskFilterKinds::copyStack(const VeskRosterFiltersStack *stack) const
{
    if (!stack)
        return nullptr;
    VeskRosterFiltersStack *result = createStack(stack->getType());
    const QList<VeskRosterFilter *> children = stack->getFilters();
    for (const VeskRosterFilter *child : children) {
        if (VeskRosterFilter *childCopy = copy(child))
            result->appendFilter(childCopy);
    }
    result->setAdvancedMode(stack->isAdvancedMode());
    result->setSorter(stack->getSorter());
    return result;
}
