// PLACEHOLDER demo: prints the sample roster through the current filter. The
// full vesk-roster program replaces this file.
#include <standin/veskstandin.h>
#include <veskrosterfiltersmanager.h>

#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    VeskStandIn::setSettingsDir(QDir::homePath() + QStringLiteral("/.config/vesk-roster"));
    const VeskBuddy friends = VeskStandIn::addGroup(QStringLiteral("Friends"), 0);
    VeskStandIn::ContactInfo bob;
    bob.display = QStringLiteral("Bob");
    bob.group = friends;
    VeskStandIn::addContact(bob);
    QTextStream out(stdout);
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    for (const VeskBuddy &entry : entries) {
        if (manager->filter(entry))
            out << entry.getDisplay() << '\n';
    }
    return 0;
}
