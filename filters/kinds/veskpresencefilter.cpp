#include "veskpresencefilter.h"
#include "veskchoicecondition_p.h"
#include "veskleafrule_p.h"
#include <veskentrykind_p.h>

#include <veskbuddy.h>
#include <veskpresence.h>
#include <veskprotocol.h>

#include <veskfilterplan_p.h>

#include <QCoreApplication>

VeskPresenceFilter::VeskPresenceFilter()
    : positive(true)
{ }

VeskPresenceFilter::~VeskPresenceFilter() = default;

VeskRosterFilter::RosterFilterType VeskPresenceFilter::getType() const
{
    return RosterFilterLeaf;
}

QString VeskPresenceFilter::id() const
{
    return QStringLiteral("presence");
}

QString VeskPresenceFilter::name() const
{
    return QCoreApplication::translate("translation", "presence", "filter name");
}

QString VeskPresenceFilter::display() const
{
    return QCoreApplication::translate("translation", "presence %1 %2", "roster filter")
        .arg(conditionLabel)
        .arg(presenceLabel);
}

bool VeskPresenceFilter::filter(const VeskBuddy &buddy) const
{
    VeskEntryReader entry(buddy, true, false);
    return VeskLeafRule::presence(entry, presenceId, positive);
}

QList<VeskField> VeskPresenceFilter::getConfiguration() const
{
    // One item per presence id: the first protocol offering an id gives it
    // its label and its place.
    QStringList ids;
    QStringList labels;
    const QList<VeskProtocol *> protocols
        = VeskPluginManager::getInstance()->getRegisteredProtocols();
    for (const VeskProtocol *protocol : protocols) {
        const QList<VeskPresence> presences
            = protocol->getAllPresences(QStringLiteral("___VeskBuddyDefaultType___"));
        for (const VeskPresence &presence : presences) {
            const QString id = presence.getId();
            if (ids.contains(id))
                continue;
            labels.append(presence.getDisplay());
            ids.append(id);
        }
    }

    return VeskChoiceCondition::configuration(
        positive, QStringLiteral("presence_filter_presence"), ids, labels, presenceId);
}

void VeskPresenceFilter::setConfiguration(const QList<VeskField> &fields)
{
    VeskChoiceCondition::read(fields, &presenceId, &positive, &conditionLabel, &presenceLabel);
    VeskFilterPlan::conditionChanged(this);
}
