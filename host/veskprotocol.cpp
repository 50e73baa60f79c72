#include "veskprotocol.h"

#include "veskhost_p.h"

VeskProtocol::VeskProtocol(const QString &name, const QList<VeskPresence> &presences)
    : name(name)
    , presences(presences)
{ }

VeskProtocol::~VeskProtocol() = default;

QList<VeskPresence> VeskProtocol::getAllPresences(const QString &type) const
{
    if (type == QLatin1String("___VeskBuddyDefaultType___"))
        return presences;
    return {};
}

VeskPluginManager::VeskPluginManager() = default;
VeskPluginManager::~VeskPluginManager()
{
    for (VeskProtocol *protocol : qAsConst(protocols))
        VeskStandInAccess::deleteProtocol(protocol);
}

VeskPluginManager *VeskPluginManager::getInstance()
{
    static VeskPluginManager manager;
    return &manager;
}

QList<VeskProtocol *> VeskPluginManager::getRegisteredProtocols() const
{
    return protocols;
}
