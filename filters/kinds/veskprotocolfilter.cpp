#include "veskprotocolfilter.h"

#include "veskchoicecondition_p.h"
#include "veskleafrule_p.h"

#include <veskaccount.h>

#include <veskfilterplan_p.h>

#include <QCoreApplication>

VeskProtocolFilter::VeskProtocolFilter()
    : positive(true)
{ }

VeskProtocolFilter::~VeskProtocolFilter() = default;

VeskRosterFilter::RosterFilterType VeskProtocolFilter::getType() const
{
    return RosterFilterLeaf;
}

QString VeskProtocolFilter::id() const
{
    return QStringLiteral("protocol");
}

QString VeskProtocolFilter::name() const
{
    return QCoreApplication::translate("translation", "protocol", "filter name");
}

QString VeskProtocolFilter::display() const
{
    return QCoreApplication::translate("translation", "protocol %1 %2", "roster filter")
        .arg(conditionLabel)
        .arg(protocolName);
}

bool VeskProtocolFilter::filter(const VeskBuddy &buddy) const
{
    VeskEntryReader entry(buddy, false, false);
    return VeskLeafRule::protocol(entry, protocolName, positive);
}

QList<VeskField> VeskProtocolFilter::getConfiguration() const
{
    const QStringList protocols
        = VeskChoiceCondition::distinctAccountTexts(VeskChoiceCondition::ProtocolName);
    return VeskChoiceCondition::configuration(
        positive, QStringLiteral("protocol_filter_presence"), protocols, protocols, protocolName);
}

void VeskProtocolFilter::setConfiguration(const QList<VeskField> &fields)
{
    VeskChoiceCondition::read(fields, &protocolName, &positive, &conditionLabel);
    VeskFilterPlan::conditionChanged(this);
}
