#pragma once

// Roster entries and manager life cycle shared by the sorting tests.

#include <standin/veskstandin.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

#include <QFile>

namespace SortersFixture {

struct Contact
{
    QString display;
    int flag = 0;
    int priority = 0;
    int subscription = 0;
};

inline VeskStandIn::ContactInfo info(const Contact &c)
{
    VeskStandIn::ContactInfo info;
    info.display = c.display;
    info.presence
        = VeskStandIn::makePresence(QStringLiteral("p"), QString(), QString(), c.flag, c.priority);
    info.subscription = c.subscription;
    return info;
}

inline VeskBuddy contact(const Contact &c)
{
    return VeskStandIn::addContact(info(c));
}

inline VeskBuddy contactWithChats(const QString &display, const VeskArg &chats)
{
    VeskStandIn::ContactInfo i = info({ display });
    i.attributes.insert(QStringLiteral("chats_count"), chats);
    return VeskStandIn::addContact(i);
}

inline VeskBuddy temporary(const Contact &c)
{
    return VeskStandIn::addTemporary(info(c));
}

// Deletes both managers and every filter the filters manager registered, as
// the host would on shutdown. Making "default" current is the only way to
// reach the default filter, and it writes settings, so the store is put back
// as it was: a following getInstance() then starts from what was stored.
inline void destroyManagers(const QString &settingsDir)
{
    if (VeskRosterFiltersManager *filters = VeskRosterFiltersManager::instance) {
        QFile file(VeskStandIn::settingsFilePath());
        const bool existed = file.open(QIODevice::ReadOnly);
        const QByteArray stored = file.readAll();
        file.close();

        const QStringList ids = filters->getFilterNames();
        filters->setCurrentFilter(QStringLiteral("default"));
        VeskRosterFilter *defaultFilter = filters->getCurrentFilter();
        for (const QString &id : ids)
            delete filters->getStackFilter(id);
        delete defaultFilter;
        delete filters;

        if (existed && file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(stored);
        else if (!existed)
            file.remove();
        file.close();
    }
    delete VeskRosterSortersManager::instance;
    VeskStandIn::setSettingsDir(settingsDir);
}

} // namespace SortersFixture
