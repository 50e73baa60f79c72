#include "filtertree.h"

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>

#include <QStringList>

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

QString describe(VeskRosterFilter *filter)
{
    VeskRosterFiltersStack *stack = asStack(filter);
    if (!stack) {
        QStringList values;
        const QList<VeskField> fields = filter->getConfiguration();
        for (const VeskField &field : fields) {
            values.append(field.getId() + QLatin1Char('=')
                + (field.getKind() == VeskField::ComboBox ? field.getSelectedId()
                                                          : field.getText()));
        }
        return filter->id() + QLatin1Char('{') + values.join(QLatin1Char(';')) + QLatin1Char('}');
    }
    QStringList children;
    const QList<VeskRosterFilter *> filters = stack->getFilters();
    for (VeskRosterFilter *child : filters)
        children.append(describe(child));
    return QString::number(stack->getType()) + QLatin1Char('[') + children.join(QLatin1Char(','))
        + QLatin1Char(']');
}

int depth(VeskRosterFilter *filter)
{
    VeskRosterFiltersStack *stack = asStack(filter);
    if (!stack)
        return 0;
    int deepest = 0;
    const QList<VeskRosterFilter *> children = stack->getFilters();
    for (VeskRosterFilter *child : children)
        deepest = qMax(deepest, depth(child));
    return deepest + 1;
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
