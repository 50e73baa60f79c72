#include "reliabilitysupport.h"

#include <veskbuddy.h>
#include <veskfield.h>
#include <veskrosterfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskstandin.h>

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace VeskReliability {

void buildSmallRoster()
{
    using namespace VeskStandIn;
    resetRoster();
    const QList<VeskPresence> chatPresences {
        makePresence(QStringLiteral("online"), QStringLiteral("Online"), QString(), 1, 10),
        makePresence(QStringLiteral("away"), QStringLiteral("Away"), QString(), 2, 5),
        makePresence(QStringLiteral("offline"), QStringLiteral("Offline"), QString(), 0, 0),
    };
    const QList<VeskPresence> mailPresences {
        makePresence(QStringLiteral("online"), QStringLiteral("Available"), QString(), 1, 9),
        makePresence(QStringLiteral("dnd"), QStringLiteral("Busy"), QString(), 3, 1),
    };
    addProtocol(QStringLiteral("chat"), chatPresences);
    addProtocol(QStringLiteral("mail"), mailPresences);
    VeskAccountConnection *work = addAccount(QStringLiteral("me@work"), QStringLiteral("chat"));
    VeskAccountConnection *home = addAccount(QStringLiteral("me@home"), QStringLiteral("mail"));
    const VeskBuddy friends = addGroup(QStringLiteral("Friends"), 0);
    const VeskBuddy colleagues = addGroup(QStringLiteral("Colleagues"), 1);

    ContactInfo alice;
    alice.display = QStringLiteral("Alice");
    alice.group = friends;
    alice.account = work;
    alice.presence = makePresence(
        QStringLiteral("online"), QStringLiteral("Online"), QStringLiteral("at lunch"), 1, 10);
    alice.subscription = 3;
    alice.attributes.insert(QStringLiteral("chats"), makeIntArg(4));
    addContact(alice);

    ContactInfo bob;
    bob.display = QStringLiteral("Bob .*[x]");
    bob.group = colleagues;
    bob.account = home;
    bob.presence = makePresence(QStringLiteral("dnd"), QStringLiteral("Busy"));
    addContact(bob);

    ContactInfo stranger;
    stranger.display = QString();
    stranger.presence = makePresence(QStringLiteral("mystery"));
    addContact(stranger);

    ContactInfo visitor;
    visitor.display = QStringLiteral("Zoë 東京");
    visitor.account = work;
    visitor.presence = makePresence(
        QStringLiteral("away"), QStringLiteral("Away"), QString::fromUtf16(u"\u0001ctl\u0000"));
    addTemporary(visitor);

    addEntry(0, QStringLiteral("kind zero"));
    addEntry(7, QStringLiteral("kind seven"));
}

QStringList describeAll(bool normalised, bool withDisplay)
{
    QStringList result;
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    const QStringList ids = manager->getFilterNames();
    for (const QString &id : ids) {
        if (id == QLatin1String("default"))
            continue;
        result.append(id + QLatin1String(": ")
            + describe(manager->getStackFilter(id), normalised, withDisplay));
    }
    return result;
}

void fillLargeStack(VeskRosterFiltersStack *stack, int leaves, int generation)
{
    static const QStringList kinds { QStringLiteral("display"), QStringLiteral("description"),
        QStringLiteral("group"), QStringLiteral("account"), QStringLiteral("protocol"),
        QStringLiteral("presence") };
    const QList<VeskRosterFilter *> old = stack->getFilters();
    for (VeskRosterFilter *child : old) {
        stack->removeFilter(child);
        delete child;
    }
    stack->setSorter(QStringLiteral("sorter-%1").arg(generation));
    stack->setAdvancedMode(generation % 2);
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    auto *nested = static_cast<VeskRosterFiltersStack *>(
        manager->createFilter(QStringLiteral("stack_filter"), VeskRosterFilter::RosterFilterOr));
    for (int i = 0; i < leaves; ++i) {
        VeskRosterFilter *leaf
            = manager->createFilter(kinds.at(i % kinds.size()), VeskRosterFilter::RosterFilterLeaf);
        if (!leaf)
            continue;
        QList<VeskField> fields = leaf->getConfiguration();
        for (VeskField &field : fields) {
            if (field.getKind() == VeskField::LineEdit) {
                field.setText(QStringLiteral("g%1 #%2 %3")
                                  .arg(generation)
                                  .arg(i)
                                  .arg(QString(generation % 5 * 7, QLatin1Char('x'))));
            } else if (!field.getComboBoxIds().isEmpty()) {
                const QStringList ids = field.getComboBoxIds();
                field.setSelectedId(ids.at((generation + i) % ids.size()));
            }
        }
        leaf->setConfiguration(fields);
        if (nested && i % 4 == 3)
            nested->appendFilter(leaf);
        else
            stack->appendFilter(leaf);
    }
    if (nested)
        stack->appendFilter(nested);
}

VeskRosterFiltersStack *addLargeStack(const QString &name, int leaves, int generation)
{
    VeskRosterFiltersStack *stack = VeskRosterFiltersManager::getInstance()->addStackFilter(name,
        generation % 2 ? VeskRosterFilter::RosterFilterOr : VeskRosterFilter::RosterFilterAnd);
    fillLargeStack(stack, leaves, generation);
    return stack;
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

QStringList snapshotTree(const QString &dir)
{
    QStringList result;
    QDirIterator it(dir, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    const QDir base(dir);
    while (it.hasNext()) {
        const QString path = it.next();
        const QFileInfo info(path);
        const QString relative = base.relativeFilePath(path);
        if (info.isSymLink()) {
            result.append(QStringLiteral("L %1 -> %2").arg(relative, info.symLinkTarget()));
        } else if (info.isDir()) {
            result.append(QStringLiteral("D %1").arg(relative));
        } else {
            const QByteArray hash
                = QCryptographicHash::hash(readFile(path), QCryptographicHash::Sha1).toHex();
            result.append(QStringLiteral("F %1 %2").arg(relative, QString::fromLatin1(hash)));
        }
    }
    result.sort();
    return result;
}

qint64 peakRssKiB()
{
    const QList<QByteArray> lines = readFile(QStringLiteral("/proc/self/status")).split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
    }
    return -1;
}

} // namespace VeskReliability
