#pragma once

#include "vesk_host_export.h"

#include <QList>
#include <QString>

// One account of the user, owned by the host.
class VESK_HOST_EXPORT VeskAccountConnection
{
public:
    QString getUid() const;
    QString getProtocolName() const;

private:
    friend struct VeskStandInAccess;
    VeskAccountConnection(const QString &uid, const QString &protocolName);
    ~VeskAccountConnection();
    Q_DISABLE_COPY(VeskAccountConnection)

    QString uid;
    QString protocolName;
};

// The registry of the user's accounts.
class VESK_HOST_EXPORT VeskAccountManager
{
public:
    static VeskAccountManager *getInstance();
    QList<VeskAccountConnection *> getAccounts() const;

private:
    friend struct VeskStandInAccess;
    VeskAccountManager();
    ~VeskAccountManager();
    Q_DISABLE_COPY(VeskAccountManager)

    QList<VeskAccountConnection *> accounts;
};
