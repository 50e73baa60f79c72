#include "filterbuilder.h"

#include "refusal.h"
#include "sessiontext_p.h"

#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>

namespace {
const QString stackKind = QStringLiteral("stack_filter");

QStringList fieldIds(const QList<VeskField> &configuration)
{
    QStringList ids;
    for (const VeskField &field : configuration)
        ids.append(field.getId());
    return ids;
}
} // namespace

VeskFilterBuilder::VeskFilterBuilder(VeskRosterFiltersManager *manager, Warn warn)
    : manager(manager)
    , warn(std::move(warn))
{ }

QList<QStringList> VeskFilterBuilder::splitConditions(const QStringList &args)
{
    QList<QStringList> conditions;
    for (const QString &arg : args) {
        if (!arg.contains(QLatin1Char('='))) {
            conditions.append(QStringList(arg));
            continue;
        }
        if (conditions.isEmpty()) {
            refuse(vtr("\"%1\" comes before any kind; a CONDITION is a kind followed by its "
                       "FIELD=VALUE arguments (see \"vesk-roster kinds\")")
                       .arg(arg));
        }
        conditions.last().append(arg);
    }
    return conditions;
}

QStringList VeskFilterBuilder::kinds() const
{
    QStringList kinds = manager->getAvailableFilters();
    kinds.sort();
    return kinds;
}

VeskRosterFilter::RosterFilterType VeskFilterBuilder::parseType(const QString &text)
{
    if (text == QLatin1String("and"))
        return VeskRosterFilter::RosterFilterAnd;
    if (text == QLatin1String("or"))
        return VeskRosterFilter::RosterFilterOr;
    refuse(vtr("unknown stack type \"%1\"; a stack joins its children with \"and\" or \"or\"")
               .arg(text));
}

QString VeskFilterBuilder::typeName(VeskRosterFilter::RosterFilterType type)
{
    switch (type) {
    case VeskRosterFilter::RosterFilterAnd:
        return QStringLiteral("and");
    case VeskRosterFilter::RosterFilterOr:
        return QStringLiteral("or");
    default:
        return QStringLiteral("default");
    }
}

std::unique_ptr<VeskRosterFilter> VeskFilterBuilder::leaf(const QStringList &condition) const
{
    Fields fields;
    for (int i = 1; i < condition.size(); ++i) {
        const QString &arg = condition.at(i);
        const int equals = arg.indexOf(QLatin1Char('='));
        fields.append(qMakePair(arg.left(equals), arg.mid(equals + 1)));
    }
    return leaf(condition.value(0), fields);
}

std::unique_ptr<VeskRosterFilter> VeskFilterBuilder::leaf(
    const QString &kind, const Fields &fields) const
{
    if (kind == stackKind) {
        refuse(vtr("\"stack_filter\" is not a CONDITION; a nested stack is added on its own with "
                   "\"add NAME[/I...] stack_filter and|or CONDITION...\""));
    }
    const QStringList known = kinds();
    if (!known.contains(kind))
        refuse(vtr("unknown kind \"%1\"; kinds: %2").arg(kind, quotedList(known)));
    std::unique_ptr<VeskRosterFilter> filter(
        manager->createFilter(kind, VeskRosterFilter::RosterFilterDefault));
    if (!filter)
        refuse(vtr("the library created no filter of kind \"%1\"").arg(kind));

    QList<VeskField> configuration = filter->getConfiguration();
    for (const auto &field : fields) {
        int index = -1;
        for (int i = 0; i < configuration.size(); ++i) {
            if (configuration.at(i).getId() == field.first)
                index = i;
        }
        if (index < 0)
            refuseField(kind, field.first, configuration);
        VeskField &target = configuration[index];
        if (target.getKind() == VeskField::ComboBox) {
            const QStringList items = target.getComboBoxIds();
            if (!items.contains(field.second)) {
                warn(vtr("\"%1\" is not among the current items of %2's \"%3\" (%4); "
                         "kept as given")
                         .arg(field.second, kind, field.first, quotedList(items)));
            }
            target.setSelectedId(field.second);
        } else {
            target.setText(field.second);
        }
    }
    filter->setConfiguration(configuration);
    return filter;
}

void VeskFilterBuilder::refuseField(
    const QString &kind, const QString &field, const QList<VeskField> &configuration) const
{
    QString owner;
    const QStringList known = kinds();
    for (const QString &other : known) {
        if (other == kind)
            continue;
        std::unique_ptr<VeskRosterFilter> probe(
            manager->createFilter(other, VeskRosterFilter::RosterFilterDefault));
        if (probe && fieldIds(probe->getConfiguration()).contains(field)) {
            owner = other;
            break;
        }
    }
    const QString valid = quotedList(fieldIds(configuration));
    if (!owner.isEmpty()) {
        refuse(vtr("\"%1\" is a field of kind \"%2\", not of \"%3\"; fields of \"%3\": %4")
                   .arg(field, owner, kind, valid));
    }
    refuse(vtr("unknown field \"%1\" for kind \"%2\"; its fields: %3").arg(field, kind, valid));
}

std::unique_ptr<VeskRosterFiltersStack> VeskFilterBuilder::nestedStack(
    VeskRosterFilter::RosterFilterType type,
    std::vector<std::unique_ptr<VeskRosterFilter>> children) const
{
    std::unique_ptr<VeskRosterFilter> created(manager->createFilter(stackKind, type));
    auto *stack = dynamic_cast<VeskRosterFiltersStack *>(created.get());
    if (!stack)
        refuse(vtr("the library created no nested stack"));
    created.release();
    std::unique_ptr<VeskRosterFiltersStack> result(stack);
    for (auto &child : children)
        result->appendFilter(child.release());
    return result;
}
