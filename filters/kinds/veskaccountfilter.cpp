#include "veskaccountfilter.h"

#include "veskchoicecondition_p.h"

#include <veskaccount.h>

#include <QCoreApplication>

namespace {

// Whether identity is uid + "@" + protocol, compared piecewise so that the
// roster view's per-entry call builds no string.
bool isIdentityOf(const QString &identity, const VeskAccountConnection &account)
{
    const QString uid = account.getUid();
    const QString protocol = account.getProtocolName();
    return identity.size() == uid.size() + 1 + protocol.size()
        && identity.startsWith(uid, Qt::CaseSensitive)
        && identity.at(uid.size()) == QLatin1Char('@')
        && identity.endsWith(protocol, Qt::CaseSensitive);
}

} // namespace

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
    const VeskAccountConnection *account = VeskChoiceCondition::accountOf(buddy);
    if (!account)
        return !positive;
    return VeskChoiceCondition::decide(isIdentityOf(accountId, *account), positive);
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
}
