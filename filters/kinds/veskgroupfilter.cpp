#include "veskgroupfilter.h"
#include <veskentrykind_p.h>

#include "veskchoicecondition_p.h"
#include "veskleafrule_p.h"

#include <veskbuddy.h>
#include <veskroster.h>

#include <veskfilterplan_p.h>

#include <QCoreApplication>

VeskGroupFilter::VeskGroupFilter()
    : positive(true)
{ }

VeskGroupFilter::~VeskGroupFilter() = default;

VeskRosterFilter::RosterFilterType VeskGroupFilter::getType() const
{
    return RosterFilterLeaf;
}

QString VeskGroupFilter::id() const
{
    return QStringLiteral("group");
}

QString VeskGroupFilter::name() const
{
    // The one leaf name under the comment the filters manager uses for its
    // kind names, so both share a translation.
    return QCoreApplication::translate("translation", "group", "nc");
}

QString VeskGroupFilter::display() const
{
    // Reads as the condition followed by the group's own name, so there is no
    // word of ours to translate.
    return QStringLiteral("%1 %2").arg(conditionLabel).arg(groupName);
}

bool VeskGroupFilter::filter(const VeskBuddy &buddy) const
{
    VeskEntryReader entry(buddy, false, false);
    return VeskLeafRule::group(entry, groupName, positive);
}

QList<VeskField> VeskGroupFilter::getConfiguration() const
{
    const QStringList groups = VeskRoster::getInstance()->getGroupsNames();
    return VeskChoiceCondition::configuration(
        positive, QStringLiteral("group_filter_presence"), groups, groups, groupName);
}

void VeskGroupFilter::setConfiguration(const QList<VeskField> &fields)
{
    VeskChoiceCondition::read(fields, &groupName, &positive, &conditionLabel);
    VeskFilterPlan::conditionChanged(this);
}
