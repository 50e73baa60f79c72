#include "veskaccount.h"

#include "veskhost_p.h"

VeskAccountConnection::VeskAccountConnection(const QString &uid, const QString &protocolName)
    : uid(uid)
    , protocolName(protocolName)
{ }

VeskAccountConnection::~VeskAccountConnection() = default;

QString VeskAccountConnection::getUid() const
{
    return uid;
}

QString VeskAccountConnection::getProtocolName() const
{
    return protocolName;
}

VeskAccountManager::VeskAccountManager() = default;
VeskAccountManager::~VeskAccountManager()
{
    for (VeskAccountConnection *account : qAsConst(accounts))
        VeskStandInAccess::deleteAccount(account);
}

VeskAccountManager *VeskAccountManager::getInstance()
{
    static VeskAccountManager manager;
    return &manager;
}

QList<VeskAccountConnection *> VeskAccountManager::getAccounts() const
{
    return accounts;
}
