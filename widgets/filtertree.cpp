#include "filtertree.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>

namespace VeskFilterTreeOps {

VeskRosterFiltersStack *asStack(VeskRosterFilter *filter)
{
    if (!filter || filter->getType() == VeskRosterFilter::RosterFilterLeaf)
        return nullptr;
    return dynamic_cast<VeskRosterFiltersStack *>(filter);
}

VeskRosterFilter *copy(VeskRosterFilter *filter, VeskRosterFiltersManager *manager)
{
    VeskRosterFiltersStack *stack = asStack(filter);
    if (!stack) {
        VeskRosterFilter *leaf = manager->createFilter(filter->id(), filter->getType());
        if (leaf)
            leaf->setConfiguration(filter->getConfiguration());
        return leaf;
    }
    auto *result = static_cast<VeskRosterFiltersStack *>(
        manager->createFilter(QStringLiteral("stack_filter"), stack->getType()));
    const QList<VeskRosterFilter *> children = stack->getFilters();
    for (VeskRosterFilter *child : children) {
        if (VeskRosterFilter *childCopy = copy(child, manager))
            result->appendFilter(childCopy);
    }
    return result;
}

VeskRosterFiltersStack *retype(VeskRosterFiltersStack *stack,
    VeskRosterFilter::RosterFilterType type, VeskRosterFiltersManager *manager)
{
    auto *result = static_cast<VeskRosterFiltersStack *>(
        manager->createFilter(QStringLiteral("stack_filter"), type));
    const QList<VeskRosterFilter *> children = stack->getFilters();
    for (VeskRosterFilter *child : children) {
        stack->removeFilter(child);
        result->appendFilter(child);
    }
    return result;
}

bool hasEmptyStack(VeskRosterFilter *filter)
{
    VeskRosterFiltersStack *stack = asStack(filter);
    if (!stack)
        return false;
    const QList<VeskRosterFilter *> children = stack->getFilters();
    if (children.isEmpty())
        return true;
    for (VeskRosterFilter *child : children) {
        if (hasEmptyStack(child))
            return true;
    }
    return false;
}

} // namespace VeskFilterTreeOps
