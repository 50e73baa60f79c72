#pragma once

#include "vesk_host_export.h"
#include "veskpresence.h"

#include <QList>
#include <QString>

// One protocol plug-in, owned by the host.
class VESK_HOST_EXPORT VeskProtocol
{
public:
    // The presences the protocol offers for the given kind of contact; the
    // default contact type is "___VeskBuddyDefaultType___".
    QList<VeskPresence> getAllPresences(const QString &type) const;

private:
    friend struct VeskStandInAccess;
    VeskProtocol(const QString &name, const QList<VeskPresence> &presences);
    ~VeskProtocol();
    Q_DISABLE_COPY(VeskProtocol)

    QString name;
    QList<VeskPresence> presences;
};

// The registry of protocol plug-ins.
class VESK_HOST_EXPORT VeskPluginManager
{
public:
    static VeskPluginManager *getInstance();
    QList<VeskProtocol *> getRegisteredProtocols() const;

private:
    friend struct VeskStandInAccess;
    VeskPluginManager();
    ~VeskPluginManager();
    Q_DISABLE_COPY(VeskPluginManager)

    QList<VeskProtocol *> protocols;
};
