#include "veskdisplayfilter.h"

#include "veskleafrule_p.h"
#include "vesktextcondition_p.h"

#include <veskbuddy.h>

#include <veskfilterplan_p.h>

#include <QCoreApplication>

namespace {
const QString textFieldId = QStringLiteral("display_filter_regexp");
} // namespace

VeskDisplayFilter::VeskDisplayFilter()
    : matchMode(VeskTextCondition::Equals)
{ }

VeskDisplayFilter::~VeskDisplayFilter() = default;

VeskRosterFilter::RosterFilterType VeskDisplayFilter::getType() const
{
    return RosterFilterLeaf;
}

QString VeskDisplayFilter::id() const
{
    return QStringLiteral("display");
}

QString VeskDisplayFilter::name() const
{
    return QCoreApplication::translate("translation", "display", "filter name");
}

QString VeskDisplayFilter::display() const
{
    return QCoreApplication::translate("translation", "display %1", "roster filter").arg(text);
}

bool VeskDisplayFilter::filter(const VeskBuddy &buddy) const
{
    VeskEntryReader entry(buddy, false, false);
    return VeskLeafRule::display(entry, matchMode, matchText);
}

QList<VeskField> VeskDisplayFilter::getConfiguration() const
{
    return VeskTextCondition::configuration(false, conditionId, textFieldId, text);
}

void VeskDisplayFilter::setConfiguration(const QList<VeskField> &fields)
{
    VeskTextCondition::read(fields, textFieldId, &conditionId, &text);
    VeskTextCondition::compile(conditionId, text, false, &matchMode, &matchText);
    VeskFilterPlan::conditionChanged(this);
}
