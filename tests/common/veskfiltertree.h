#pragma once

// Builds, configures and describes filters for tests: a whole tree or field
// list compares as one string. Shared with the reliability tests and the fuzz
// targets.

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
    case VeskRosterFilter::RosterFilterLeaf:
        return QStringLiteral("LEAF");
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

// The answers of `filter` for every roster entry, as a string of 0 and 1.
inline QString answers(const VeskRosterFilter *filter)
{
    QString result;
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    for (const VeskBuddy &entry : entries)
        result.append(filter->filter(entry) ? QLatin1Char('1') : QLatin1Char('0'));
    return result;
}

// A whole tree as one line: type, sorting method and advanced flag of the
// top-level stack, then each node; a leaf shows its kind, chosen values and
// display text. Names of nested stacks are left out: they are not stored.
// With `normalised`, what a write and a read legitimately drop is dropped
// too: nested stacks left without children vanish, and the type of a stack
// without children is not shown (it is only stored for a stack that has
// children). Without `withDisplay`, leaves show their answers for the roster
// instead of their display texts: a stored value that names no item shows an
// empty label until the filter is saved once, then the label of what it was
// read as.
inline QString describe(VeskRosterFilter *filter, bool normalised = false, bool withDisplay = true)
{
    if (!filter)
        return QStringLiteral("null");
    auto *stack = dynamic_cast<VeskRosterFiltersStack *>(filter);
    if (!stack) {
        QStringList fields;
        const QList<VeskField> configuration = filter->getConfiguration();
        for (const VeskField &field : configuration) {
            const bool combo = field.getKind() == VeskField::ComboBox;
            fields.append(field.getId() + QLatin1String(combo ? "=>" : "=")
                + (combo ? field.getSelectedId() : field.getText()));
        }
        return QStringLiteral("%1 %2 {%3} \"%4\"")
            .arg(filter->id(), typeName(filter->getType()), fields.join(QLatin1Char(';')),
                withDisplay ? filter->display() : answers(filter));
    }
    const bool nested = filter->getParent() != nullptr;
    QStringList children;
    const QList<VeskRosterFilter *> list = stack->getFilters();
    for (VeskRosterFilter *child : list) {
        const QString text = describe(child, normalised, withDisplay);
        if (!normalised || !text.isEmpty())
            children.append(text);
    }
    if (normalised && nested && children.isEmpty())
        return QString();
    const QString type
        = normalised && children.isEmpty() ? QStringLiteral("*") : typeName(stack->getType());
    const QString extras = nested
        ? QString()
        : QStringLiteral(" sort=\"%1\" advanced=%2")
              .arg(stack->getSorter(),
                  stack->isAdvancedMode() ? QStringLiteral("t") : QStringLiteral("f"));
    return QStringLiteral("%1%2 (%3)").arg(type, extras, children.join(QLatin1String(", ")));
}

} // namespace VeskFilterTree
