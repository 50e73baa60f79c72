#include "veskaccountfilter.h"

#include "veskchoicecondition_p.h"
#include "veskleafrule_p.h"

#include <veskaccount.h>

#include <veskfilterplan_p.h>

#include <QCoreApplication>

VeskAccountFilter::VeskAccountFilter()
    : positive(true)
{ }

VeskAccountFilter::~VeskAccountFilter() = default;

VeskRosterFilter::RosterFilterType VeskAccountFilter::getType() const
{
    return RosterFilterLeaf;
}

QString VeskAccountFilter::id() const
{
    return QStringLiteral("account");
}

QString VeskAccountFilter::name() const
{
    return QCoreApplication::translate("translation", "account", "filter name");
}

QString VeskAccountFilter::display() const
{
    return QCoreApplication::translate("translation", "account %1 %2", "roster filter")
        .arg(conditionLabel)
        .arg(accountId);
}

bool VeskAccountFilter::filter(const VeskBuddy &buddy) const
{
    VeskEntryReader entry(buddy, false, false);
    return VeskLeafRule::account(entry, accountId, positive);
}

QList<VeskField> VeskAccountFilter::getConfiguration() const
{
    const QStringList accounts
        = VeskChoiceCondition::distinctAccountTexts(VeskChoiceCondition::AccountIdentity);
    return VeskChoiceCondition::configuration(
        positive, QStringLiteral("account_filter_presence"), accounts, accounts, accountId);
}

void VeskAccountFilter::setConfiguration(const QList<VeskField> &fields)
{
    VeskChoiceCondition::read(fields, &accountId, &positive, &conditionLabel);
    VeskFilterPlan::conditionChanged(this);
}
