#pragma once

// Builds and describes filter trees for tests: a whole tree compares as one
// string.

#include <standin/veskstandin.h>
#include <veskfield.h>
#include <veskrosterfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>

#include <QStringList>

namespace VeskFilterTree {

// Registers a protocol whose default contacts offer "online", "away" and
// "dnd", so that presence leaves have labels.
inline void addPresences()
{
    VeskStandIn::addProtocol(QStringLiteral("proto"),
        { VeskStandIn::makePresence(QStringLiteral("online"), QStringLiteral("Online")),
            VeskStandIn::makePresence(QStringLiteral("away"), QStringLiteral("Away")),
            VeskStandIn::makePresence(QStringLiteral("dnd"), QStringLiteral("Busy")) });
}

// A presence leaf made by the manager's factory and configured as the
// host's editor would: through its own field list.
inline VeskRosterFilter *presence(const QString &presenceId, bool positive = true)
{
    VeskRosterFilter *filter = VeskRosterFiltersManager::getInstance()->createFilter(
        QStringLiteral("presence"), VeskRosterFilter::RosterFilterDefault);
    QList<VeskField> fields = filter->getConfiguration();
    for (VeskField &field : fields) {
        if (field.getId() == QLatin1String("is_or_not"))
            field.setSelectedId(positive ? QStringLiteral("is") : QStringLiteral("is not"));
        else
            field.setSelectedId(presenceId);
    }
    filter->setConfiguration(fields);
    return filter;
}

QString typeName(VeskRosterFilter::RosterFilterType type);

// A nested stack, named after its type as the stack file's reader names it.
inline VeskRosterFiltersStack *nested(
    VeskRosterFilter::RosterFilterType type, const QList<VeskRosterFilter *> &children)
{
    auto *stack = static_cast<VeskRosterFiltersStack *>(
        VeskRosterFiltersManager::getInstance()->createFilter(
            QStringLiteral("stack_filter"), type));
    stack->setName(typeName(type));
    for (VeskRosterFilter *child : children)
        stack->appendFilter(child);
    return stack;
}

inline QString typeName(VeskRosterFilter::RosterFilterType type)
{
    switch (type) {
    case VeskRosterFilter::RosterFilterAnd:
        return QStringLiteral("AND");
    case VeskRosterFilter::RosterFilterOr:
        return QStringLiteral("OR");
    case VeskRosterFilter::RosterFilterLeaf:
        return QStringLiteral("LEAF");
    default:
        return QStringLiteral("DEFAULT");
    }
}

// Type, name, sorter, advanced mode and children of a stack; kind, stored
// values and display text of a leaf.
inline QString describe(VeskRosterFilter *filter)
{
    if (!filter)
        return QStringLiteral("null");
    if (filter->getType() == VeskRosterFilter::RosterFilterLeaf) {
        QStringList values;
        const QList<VeskField> fields = filter->getConfiguration();
        for (const VeskField &field : fields)
            values.append(
                field.getId() + QLatin1Char('=') + field.getSelectedId() + field.getText());
        return filter->id() + QLatin1Char('{') + values.join(QLatin1Char(';')) + QLatin1String("}'")
            + filter->display() + QLatin1Char('\'');
    }
    auto *stack = dynamic_cast<VeskRosterFiltersStack *>(filter);
    if (!stack)
        return QStringLiteral("?");
    QStringList children;
    const QList<VeskRosterFilter *> filters = stack->getFilters();
    for (VeskRosterFilter *child : filters)
        children.append(describe(child));
    return typeName(stack->getType()) + QLatin1Char(' ') + stack->name() + QLatin1String(" sort=")
        + stack->getSorter()
        + (stack->isAdvancedMode() ? QLatin1String(" advanced") : QLatin1String(""))
        + QLatin1String(" [") + children.join(QLatin1String(", ")) + QLatin1Char(']');
}

} // namespace VeskFilterTree
