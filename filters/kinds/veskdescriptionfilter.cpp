#include "veskdescriptionfilter.h"
#include <veskentrykind_p.h>

#include "veskleafrule_p.h"
#include "vesktextcondition_p.h"

#include <veskbuddy.h>

#include <veskfilterplan_p.h>

#include <QCoreApplication>

namespace {
const QString textFieldId = QStringLiteral("description_filter_regexp");
} // namespace

VeskDescriptionFilter::VeskDescriptionFilter()
    : matchMode(VeskTextCondition::Equals)
{ }

VeskDescriptionFilter::~VeskDescriptionFilter() = default;

VeskRosterFilter::RosterFilterType VeskDescriptionFilter::getType() const
{
    return RosterFilterLeaf;
}

QString VeskDescriptionFilter::id() const
{
    return QStringLiteral("description");
}

QString VeskDescriptionFilter::name() const
{
    return QCoreApplication::translate("translation", "description", "filter name");
}

QString VeskDescriptionFilter::display() const
{
    return QCoreApplication::translate("translation", "description %1", "roster filter").arg(text);
}

bool VeskDescriptionFilter::filter(const VeskBuddy &buddy) const
{
    VeskEntryReader entry(buddy, false, true);
    return VeskLeafRule::description(entry, matchMode, matchText);
}

QList<VeskField> VeskDescriptionFilter::getConfiguration() const
{
    return VeskTextCondition::configuration(true, conditionId, textFieldId, text);
}

void VeskDescriptionFilter::setConfiguration(const QList<VeskField> &fields)
{
    VeskTextCondition::read(fields, textFieldId, &conditionId, &text);
    VeskTextCondition::compile(conditionId, text, true, &matchMode, &matchText);
    VeskFilterPlan::conditionChanged(this);
}
