// The mapping from what an XMPP server says to host entries, without a
// server: the roster mapping is fed the stanzas' contents directly.

#include <veskaccount.h>
#include <veskroster.h>
#include <veskstandin.h>
#include <veskxmppaccount.h>
#include <veskxmpphost.h>
#include <veskxmpproster.h>

#include <accountstatus.h>
#include <rostertreemodel.h>

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

namespace {

using Item = VeskXmppRoster::Item;

Item item(const QString &jid, const QString &name, const QStringList &groups,
    const QString &subscription = QStringLiteral("both"))
{
    return Item { jid, name, groups, subscription };
}

QString groupOf(const VeskBuddy &entry)
{
    const VeskBuddy group = entry.getType() == VeskBuddy::TypeContact
        ? VeskBuddyContact(entry).getParent()
        : VeskBuddy(VeskBuddyTemporary(entry).getGroup());
    return group.isValid() ? group.getDisplay() : QStringLiteral("-");
}

VeskPresence presenceOf(const VeskBuddy &entry)
{
    return entry.getType() == VeskBuddy::TypeContact ? VeskBuddyContact(entry).getPresence()
                                                     : VeskBuddyTemporary(entry).getPresence();
}

// The whole host roster as one text: "kind group/display presence
// [description] chats subscription" per member, groups first.
QString rosterText()
{
    QStringList lines;
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    for (const VeskBuddy &entry : entries) {
        if (entry.getType() == VeskBuddy::TypeGroup)
            lines.append(QStringLiteral("group %1").arg(entry.getDisplay()));
    }
    for (const VeskBuddy &entry : entries) {
        if (entry.getType() == VeskBuddy::TypeGroup)
            continue;
        const VeskPresence presence = presenceOf(entry);
        QString line
            = QStringLiteral("%1 %2/%3 %4")
                  .arg(entry.getType() == VeskBuddy::TypeContact ? QStringLiteral("contact")
                                                                 : QStringLiteral("temporary"),
                      groupOf(entry), entry.getDisplay(), presence.getId());
        if (!presence.getDescription().isEmpty())
            line += QStringLiteral(" [%1]").arg(presence.getDescription());
        if (entry.getType() == VeskBuddy::TypeContact) {
            const VeskBuddyContact contact(entry);
            const VeskArg chats = contact.getAttrib(QStringLiteral("chats_count"));
            line += QStringLiteral(" %1 s%2")
                        .arg(chats.toInt())
                        .arg(contact.getSubscription().getPriority());
        }
        lines.append(line);
    }
    lines.sort();
    return lines.join(QLatin1Char('\n'));
}

// The tree as "Group(member,member) member", every index asked for by row
// and checked to answer that row and parent.
QString treeText(const QAbstractItemModel &model)
{
    QStringList top;
    for (int row = 0; row < model.rowCount(); ++row) {
        const QModelIndex index = model.index(row, 0);
        if (index.row() != row || model.parent(index).isValid())
            return QStringLiteral("row %1 is lost").arg(row);
        QString text = index.data().toString();
        QStringList children;
        for (int child = 0; child < model.rowCount(index); ++child) {
            const QModelIndex c = model.index(child, 0, index);
            if (c.row() != child || model.parent(c) != index)
                return QStringLiteral("row %1 of %2 is lost").arg(child).arg(text);
            children.append(c.data().toString());
        }
        if (!children.isEmpty())
            text += QLatin1Char('(') + children.join(QLatin1Char(',')) + QLatin1Char(')');
        top.append(text);
    }
    return top.join(QLatin1Char(' '));
}

} // namespace

class tst_XmppMapping : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        VeskStandIn::resetRoster();
        host = std::make_unique<VeskXmppHost>();
        roster = host->addRoster(QStringLiteral("me@example.org"));
    }
    void cleanup()
    {
        host.reset();
        VeskStandIn::resetRoster();
    }

    void accountIsTheBareJid()
    {
        const QList<VeskAccountConnection *> accounts
            = VeskAccountManager::getInstance()->getAccounts();
        QCOMPARE(accounts.size(), 1);
        QCOMPARE(accounts.first()->getUid(), QStringLiteral("me@example.org"));
        QCOMPARE(accounts.first()->getProtocolName(), QStringLiteral("jabber"));
    }

    void rosterItems()
    {
        roster->setRoster({ item(QStringLiteral("ann@x"), QStringLiteral("Ann"),
                                { QStringLiteral("Friends"), QStringLiteral("Work") }),
            item(QStringLiteral("bob@x"), QString(), { QStringLiteral("Work") },
                QStringLiteral("to")),
            item(QStringLiteral("cy@x"), QStringLiteral("Cy"), {}, QStringLiteral("from")),
            item(QStringLiteral("dee@x"), QStringLiteral("Dee"), { QStringLiteral("Friends") },
                QStringLiteral("none")) });
        // A contact in two groups shows in each; no name shows the JID;
        // groups come in the order they first appear.
        QCOMPARE(rosterText(),
            QStringLiteral("contact -/Cy offline 0 s1\n"
                           "contact Friends/Ann offline 0 s3\n"
                           "contact Friends/Dee offline 0 s0\n"
                           "contact Work/Ann offline 0 s3\n"
                           "contact Work/bob@x offline 0 s2\n"
                           "group Friends\n"
                           "group Work"));
        QCOMPARE(VeskRoster::getInstance()->getGroupsNames(),
            QStringList({ QStringLiteral("Friends"), QStringLiteral("Work") }));
    }

    void presenceOfTheMostAvailableResource_data()
    {
        QTest::addColumn<QStringList>("presences"); // resource:type:show:priority:status
        QTest::addColumn<QString>("expected");
        QTest::newRow("no show is online")
            << QStringList { QStringLiteral("a::-:0:hi") } << QStringLiteral("online [hi]");
        QTest::newRow("each show maps to its id")
            << QStringList { QStringLiteral("a::xa:0:") } << QStringLiteral("xa");
        QTest::newRow("higher priority wins over a more available show")
            << QStringList { QStringLiteral("a::chat:0:c"), QStringLiteral("b::dnd:5:d") }
            << QStringLiteral("dnd [d]");
        QTest::newRow("same priority: the more available show wins") << QStringList {
            QStringLiteral("a::away:1:w"), QStringLiteral("b::-:1:o"), QStringLiteral("c::xa:1:x")
        } << QStringLiteral("online [o]");
        QTest::newRow("chat beats online, dnd beats away") << QStringList {
            QStringLiteral("a::dnd:0:"), QStringLiteral("b::chat:0:"), QStringLiteral("c::away:0:")
        } << QStringLiteral("chat");
        QTest::newRow("the winner leaving hands over to the next")
            << QStringList { QStringLiteral("a::away:0:w"), QStringLiteral("b::chat:3:c"),
                   QStringLiteral("b:unavailable:-:0:") }
            << QStringLiteral("away [w]");
        QTest::newRow("all resources gone is offline, without a description") << QStringList {
            QStringLiteral("a::away:0:w"), QStringLiteral("a:unavailable:-:0:bye")
        } << QStringLiteral("offline");
        QTest::newRow("unavailable from the bare JID ends every resource")
            << QStringList { QStringLiteral("a::away:0:w"), QStringLiteral("b::-:0:"),
                   QStringLiteral(":unavailable:-:0:") }
            << QStringLiteral("offline");
        QTest::newRow("subscription requests are no presence")
            << QStringList { QStringLiteral("a::away:0:w"), QStringLiteral("a:subscribe:-:0:") }
            << QStringLiteral("away [w]");
        QTest::newRow("an unknown show still means there")
            << QStringList { QStringLiteral("a::lunch:0:") } << QStringLiteral("online");
        QTest::newRow("negative priorities count too")
            << QStringList { QStringLiteral("a::away:-5:") } << QStringLiteral("away");
    }
    void presenceOfTheMostAvailableResource()
    {
        QFETCH(QStringList, presences);
        QFETCH(QString, expected);
        roster->setRoster({ item(QStringLiteral("ann@x"), QStringLiteral("Ann"),
            { QStringLiteral("F"), QStringLiteral("G") }) });
        QSignalSpy changed(host.get(), &VeskXmppHost::entryChanged);
        for (const QString &presence : presences) {
            const QStringList p = presence.split(QLatin1Char(':'));
            const QString from
                = p.at(0).isEmpty() ? QStringLiteral("ann@x") : QStringLiteral("ann@x/") + p.at(0);
            roster->presence(from, p.at(1), p.at(2) == QLatin1String("-") ? QString() : p.at(2),
                p.at(4), p.at(3).toInt());
        }
        for (const VeskBuddy &entry : roster->entriesOf(QStringLiteral("ann@x"))) {
            const VeskPresence presence = VeskBuddyContact(entry).getPresence();
            QString got = presence.getId();
            if (!presence.getDescription().isEmpty())
                got += QStringLiteral(" [%1]").arg(presence.getDescription());
            QCOMPARE(got, expected);
        }
        QVERIFY(!changed.isEmpty() || expected == QLatin1String("offline"));
    }

    void temporaryContacts()
    {
        roster->setRoster({ item(QStringLiteral("ann@x"), QStringLiteral("Ann"), {}) });
        // Our own other resources are no one's presence.
        roster->presence(
            QStringLiteral("me@example.org/phone"), QString(), QString(), QString(), 0);
        roster->message(QStringLiteral("Stranger@Y/pc"));
        roster->message(QStringLiteral("stranger@y/pc"));
        roster->presence(QStringLiteral("other@y/a"), QString(), QStringLiteral("away"),
            QStringLiteral("hello"), 0);
        QCOMPARE(rosterText(),
            QStringLiteral("contact -/Ann offline 0 s3\n"
                           "temporary -/other@y away [hello]\n"
                           "temporary -/stranger@y offline"));
        // Unavailable: the temporary contact goes.
        roster->presence(
            QStringLiteral("other@y/a"), QStringLiteral("unavailable"), QString(), QString(), 0);
        // Added to the roster: the temporary contact becomes a contact with
        // the messages counted so far.
        roster->pushItem(
            item(QStringLiteral("stranger@y"), QStringLiteral("S"), { QStringLiteral("New") }));
        QCOMPARE(rosterText(),
            QStringLiteral("contact -/Ann offline 0 s3\n"
                           "contact New/S offline 2 s3\n"
                           "group New"));
    }

    void rosterPushes()
    {
        roster->setRoster({ item(QStringLiteral("ann@x"), QStringLiteral("Ann"),
                                { QStringLiteral("A"), QStringLiteral("B") }),
            item(QStringLiteral("bob@x"), QStringLiteral("Bob"), { QStringLiteral("B") }) });
        roster->presence(
            QStringLiteral("ann@x/r"), QString(), QStringLiteral("dnd"), QStringLiteral("busy"), 0);
        roster->message(QStringLiteral("ann@x/r"));
        QSignalSpy added(host.get(), &VeskXmppHost::entryAdded);
        QSignalSpy removed(host.get(), &VeskXmppHost::entryAboutToBeRemoved);
        // Renamed and regrouped: the entry in B stays, A's goes, C's comes,
        // with the presence and chats the contact had.
        roster->pushItem(item(QStringLiteral("ann@x"), QStringLiteral("Anna"),
            { QStringLiteral("B"), QStringLiteral("C") }));
        QCOMPARE(added.size(), 2); // group C and its entry
        QCOMPARE(removed.size(), 2); // the entry in A and group A
        roster->pushItem(item(QStringLiteral("bob@x"), QString(), {}, QStringLiteral("remove")));
        roster->pushItem(item(QStringLiteral("cat@x"), QString(), {}, QStringLiteral("none")));
        QCOMPARE(rosterText(),
            QStringLiteral("contact -/cat@x offline 0 s0\n"
                           "contact B/Anna dnd [busy] 1 s3\n"
                           "contact C/Anna dnd [busy] 1 s3\n"
                           "group B\n"
                           "group C"));
        QCOMPARE(VeskRoster::getInstance()->getGroupsNames(),
            QStringList({ QStringLiteral("B"), QStringLiteral("C") }));
        // The full roster again (after a reconnection): what is missing goes.
        roster->setRoster(
            { item(QStringLiteral("cat@x"), QStringLiteral("Cat"), {}, QStringLiteral("both")) });
        QCOMPARE(rosterText(), QStringLiteral("contact -/Cat offline 0 s3"));
    }

    void offlineWhenDisconnected()
    {
        roster->setRoster({ item(QStringLiteral("ann@x"), QStringLiteral("Ann"), {}) });
        roster->presence(
            QStringLiteral("ann@x/r"), QString(), QString(), QStringLiteral("here"), 0);
        roster->message(QStringLiteral("ann@x/r"));
        roster->presence(QStringLiteral("tmp@y/r"), QString(), QString(), QString(), 0);
        roster->setOffline();
        QCOMPARE(rosterText(), QStringLiteral("contact -/Ann offline 1 s3"));
    }

    void twoAccountsShareGroups()
    {
        VeskXmppRoster *second = host->addRoster(QStringLiteral("work@example.org"));
        roster->setRoster(
            { item(QStringLiteral("ann@x"), QStringLiteral("Ann"), { QStringLiteral("F") }) });
        second->setRoster({ item(
            QStringLiteral("ann@x"), QStringLiteral("Ann at work"), { QStringLiteral("F") }) });
        QCOMPARE(VeskRoster::getInstance()->getGroupsNames(), QStringList({ QStringLiteral("F") }));
        roster->setRoster({});
        QCOMPARE(rosterText(), QStringLiteral("contact F/Ann at work offline 0 s3\ngroup F"));
    }

    // The window's tree model follows the host entry by entry: checked by
    // the model tester at every step, and row by row against the host.
    void treeModelFollowsTheHost()
    {
        VeskRosterTreeModel model;
        QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setRoster(VeskStandIn::entries());
        VeskAccountStatus::follow(host.get(), &model);
        roster->setRoster({ item(QStringLiteral("ann@x"), QStringLiteral("Ann"),
                                { QStringLiteral("A"), QStringLiteral("B") }),
            item(QStringLiteral("bob@x"), QStringLiteral("Bob"), { QStringLiteral("A") }),
            item(QStringLiteral("cy@x"), QStringLiteral("Cy"), {}),
            item(QStringLiteral("dee@x"), QStringLiteral("Dee"), {}) });
        roster->message(QStringLiteral("tmp@y"));
        QCOMPARE(treeText(model), QStringLiteral("A(Ann,Bob) B(Ann) Cy Dee tmp@y"));
        // Rows before others go: the rows after them must be found again.
        roster->pushItem(item(QStringLiteral("cy@x"), QString(), {}, QStringLiteral("remove")));
        roster->pushItem(
            item(QStringLiteral("ann@x"), QStringLiteral("Ann"), { QStringLiteral("B") }));
        QCOMPARE(treeText(model), QStringLiteral("A(Bob) B(Ann) Dee tmp@y"));
        roster->pushItem(item(QStringLiteral("bob@x"), QString(), {}, QStringLiteral("remove")));
        roster->presence(
            QStringLiteral("dee@x/r"), QString(), QStringLiteral("away"), QString(), 0);
        QCOMPARE(treeText(model), QStringLiteral("B(Ann) Dee tmp@y"));
        QCOMPARE(model.members().size(), 3);
    }

    void settingsChecks_data()
    {
        QTest::addColumn<QString>("jid");
        QTest::addColumn<QString>("server");
        QTest::addColumn<bool>("insecure");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("bare JID with TLS") << "me@example.org"
                                           << "" << false << true;
        QTest::newRow("full JID") << "me@example.org/pc"
                                  << "" << false << false;
        QTest::newRow("no domain") << "me@"
                                   << "" << false << false;
        QTest::newRow("no TLS on 127.0.0.1") << "me@x"
                                             << "127.0.0.1:5222" << true << true;
        QTest::newRow("no TLS on ::1") << "me@x"
                                       << "[::1]:5222" << true << true;
        QTest::newRow("no TLS on localhost") << "me@x"
                                             << "localhost:5222" << true << true;
        QTest::newRow("no TLS elsewhere") << "me@x"
                                          << "192.0.2.1:5222" << true << false;
        QTest::newRow("no TLS without a server") << "me@x"
                                                 << "" << true << false;
    }
    void settingsChecks()
    {
        QFETCH(QString, jid);
        QFETCH(QString, server);
        QFETCH(bool, insecure);
        QFETCH(bool, accepted);
        VeskXmppSettings settings;
        settings.jid = jid;
        settings.insecure = insecure;
        if (!server.isEmpty())
            QVERIFY(VeskXmppHost::parseServer(server, &settings.host, &settings.port));
        QCOMPARE(VeskXmppHost::settingsProblem(settings).isEmpty(), accepted);
    }

private:
    std::unique_ptr<VeskXmppHost> host;
    VeskXmppRoster *roster = nullptr;
};

QTEST_GUILESS_MAIN(tst_XmppMapping)
#include "tst_xmppmapping.moc"
