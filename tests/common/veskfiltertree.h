#pragma once

// Builds, configures and describes filters for tests: a whole tree or field
// list compares as one string.

#include <veskfield.h>
#include <veskrosterfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskstandin.h>

#include <QPair>
#include <QStringList>

namespace VeskFilterTree {

using FieldValues = QList<QPair<QString, QString>>;

// What the host's filter editor does: the filter's own fields with the given
// values put in (a selected id or a text, by field id), handed back.
inline void configure(VeskRosterFilter &filter, const FieldValues &values)
{
    QList<VeskField> fields = filter.getConfiguration();
    for (const auto &value : values) {
        for (VeskField &field : fields) {
            if (field.getId() != value.first)
                continue;
            if (field.getKind() == VeskField::ComboBox)
                field.setSelectedId(value.second);
            else
                field.setText(value.second);
        }
    }
    filter.setConfiguration(fields);
}

// "id=[item ids|item labels] selected id" or "id=text" per field.
inline QString describe(const QList<VeskField> &fields)
{
    QStringList parts;
    for (const VeskField &field : fields) {
        if (field.getKind() == VeskField::ComboBox)
            parts << QStringLiteral("%1=[%2|%3] %4")
                         .arg(field.getId(), field.getComboBoxIds().join(QLatin1Char(',')),
                             field.getComboBoxLabels().join(QLatin1Char(',')),
                             field.getSelectedId());
        else
            parts << QStringLiteral("%1=%2").arg(field.getId(), field.getText());
    }
    return parts.join(QStringLiteral("; "));
}

// Registers a protocol whose default contacts offer "online", "away" and
// "dnd", so that presence leaves have labels.
inline void addPresences()
{
    VeskStandIn::addProtocol(QStringLiteral("proto"),
        { VeskStandIn::makePresence(QStringLiteral("online"), QStringLiteral("Online")),
            VeskStandIn::makePresence(QStringLiteral("away"), QStringLiteral("Away")),
            VeskStandIn::makePresence(QStringLiteral("dnd"), QStringLiteral("Busy")) });
}

// A presence leaf made by the manager's factory.
inline VeskRosterFilter *presence(const QString &presenceId, bool positive = true)
{
    VeskRosterFilter *filter = VeskRosterFiltersManager::getInstance()->createFilter(
        QStringLiteral("presence"), VeskRosterFilter::RosterFilterDefault);
    configure(*filter,
        { { QStringLiteral("is_or_not"),
              positive ? QStringLiteral("is") : QStringLiteral("is not") },
            { QStringLiteral("presence_filter_presence"), presenceId } });
    return filter;
}

inline QString typeName(VeskRosterFilter::RosterFilterType type)
{
    switch (type) {
    case VeskRosterFilter::RosterFilterAnd:
        return QStringLiteral("AND");
    case VeskRosterFilter::RosterFilterOr:
        return QStringLiteral("OR");
    default:
        return QStringLiteral("DEFAULT");
    }
}

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

// Type, name, sorter, advanced mode and children of a stack; kind, fields and
// display text of a leaf.
inline QString describe(VeskRosterFilter *filter)
{
    if (!filter)
        return QStringLiteral("null");
    if (filter->getType() == VeskRosterFilter::RosterFilterLeaf)
        return filter->id() + QLatin1Char('{') + describe(filter->getConfiguration())
            + QLatin1String("}'") + filter->display() + QLatin1Char('\'');
    auto *stack = dynamic_cast<VeskRosterFiltersStack *>(filter);
    if (!stack)
        return QStringLiteral("?");
    QStringList children;
    const QList<VeskRosterFilter *> filters = stack->getFilters();
    for (VeskRosterFilter *child : filters)
        children.append(describe(child));
    return typeName(stack->getType()) + QLatin1Char(' ') + stack->name() + QLatin1String(" sort=")
        + stack->getSorter()
        + (stack->isAdvancedMode() ? QLatin1String(" advanced") : QLatin1String())
        + QLatin1String(" [") + children.join(QLatin1String(", ")) + QLatin1Char(']');
}

} // namespace VeskFilterTree
