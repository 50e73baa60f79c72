// The stand-in host: what the filter library relies on from fields, XML
// nodes, the settings store and the contact model.

#include <standin/veskstandin.h>
#include <veskaccount.h>
#include <veskbuddy.h>
#include <veskfield.h>
#include <veskprotocol.h>
#include <veskroster.h>
#include <vesksettingsmanager.h>
#include <veskxmlnode.h>

#include <QTemporaryDir>
#include <QtTest>

class tst_Host : public QObject
{
    Q_OBJECT

private slots:
    void init() { VeskStandIn::resetRoster(); }

    void fieldsRoundTripThroughXml_data();
    void fieldsRoundTripThroughXml();
    void fromXmlKeepsFieldsTheNodeDoesNotMention();
    void fromXmlTakesTheLastValueOfAnId();
    void fieldListSurvivesAFileRoundTrip();
    void selectedLabelFollowsTheSelectedIdsPosition();

    void appendChildAcceptsANodeOfAnotherDocument();
    void setContentOfGarbageGivesANullNode();

    void settingsSurviveAFreshStore();
    void unwrittenKeysReadAsTheGivenDefault();
    void removeKeyForgetsTheValue();

    void viewsAnswerForTheirEntry();
    void registriesListWhatWasAdded();
};

void tst_Host::fieldsRoundTripThroughXml_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << QStringLiteral("bob");
    QTest::newRow("empty") << QString();
    QTest::newRow("markup") << QStringLiteral("<a href=\"x\">&amp;</a> ]]> '");
    QTest::newRow("newlines and tabs") << QStringLiteral("one\ntwo\r\nthree\tfour\r");
    QTest::newRow("leading and trailing blanks") << QStringLiteral("  x  ");
    QTest::newRow("control characters") << QString::fromUtf16(u"\u0001\u0000\u001f");
    QTest::newRow("non-ASCII") << QStringLiteral("Zoë Ærøskøbing 東京 🙂");
    QTest::newRow("lone surrogate") << QString(QChar(0xD800)) + QStringLiteral("x");
    QTest::newRow("non-characters") << QString(QChar(0xFFFE)) + QString(QChar(0xFFFF));
    QTest::newRow("regexp metacharacters") << QStringLiteral(".*[a-z]+\\d(?!x)$^{}|");
}

void tst_Host::fieldsRoundTripThroughXml()
{
    QFETCH(QString, text);
    const QList<VeskField> original {
        VeskField::comboBox(QString(), QStringLiteral("is_or_not"), { QStringLiteral("is"), text },
            { QStringLiteral("is"), text }, text, QString()),
        VeskField::lineEdit(QString(), text, text, 32767, QString()),
    };
    QList<VeskField> blank {
        VeskField::comboBox(QString(), QStringLiteral("is_or_not"), {}, {}, QString(), QString()),
        VeskField::lineEdit(QString(), text, QStringLiteral("old"), 32767, QString()),
    };
    const QList<VeskField> restored = VeskField::fromXml(blank, VeskField::toXml(original));
    QCOMPARE(restored.size(), 2);
    QCOMPARE(restored.at(0).getSelectedId(), text);
    QCOMPARE(restored.at(1).getId(), text);
    QCOMPARE(restored.at(1).getText(), text);
}

void tst_Host::fromXmlKeepsFieldsTheNodeDoesNotMention()
{
    const QList<VeskField> stored {
        VeskField::lineEdit(
            QString(), QStringLiteral("a"), QStringLiteral("new a"), 32767, QString()),
    };
    const QList<VeskField> templ {
        VeskField::lineEdit(
            QString(), QStringLiteral("a"), QStringLiteral("old a"), 32767, QString()),
        VeskField::comboBox(QString(), QStringLiteral("b"), { QStringLiteral("x") },
            { QStringLiteral("X") }, QStringLiteral("x"), QString()),
    };
    const QList<VeskField> result = VeskField::fromXml(templ, VeskField::toXml(stored));
    QCOMPARE(result.at(0).getText(), QStringLiteral("new a"));
    QCOMPARE(result.at(1).getSelectedId(), QStringLiteral("x"));
    QCOMPARE(result.at(1).getSelectedLabel(), QStringLiteral("X"));

    // A null node or a node of another shape changes nothing either.
    QCOMPARE(VeskField::fromXml(templ, VeskXmlNode(QString(), QString(), nullptr)).at(0).getText(),
        QStringLiteral("old a"));
    QCOMPARE(VeskField::fromXml(templ, VeskXmlNode(QStringLiteral("other"), QString(), nullptr))
                 .at(0)
                 .getText(),
        QStringLiteral("old a"));
}

void tst_Host::fromXmlTakesTheLastValueOfAnId()
{
    const QList<VeskField> stored {
        VeskField::lineEdit(QString(), QStringLiteral("a"), QStringLiteral("first"), 1, QString()),
        VeskField::lineEdit(QString(), QStringLiteral("a"), QStringLiteral("last"), 1, QString()),
    };
    const QList<VeskField> templ {
        VeskField::lineEdit(QString(), QStringLiteral("a"), QString(), 1, QString()),
    };
    QCOMPARE(VeskField::fromXml(templ, VeskField::toXml(stored)).at(0).getText(),
        QStringLiteral("last"));
}

void tst_Host::fieldListSurvivesAFileRoundTrip()
{
    const QString hostile = QStringLiteral("a\"b<c>&d\ne\u0002f 🙂");
    VeskXmlNode root(QStringLiteral("stack_filter"), QString(), nullptr);
    VeskXmlNode leaf = root.addChild(QStringLiteral("display"), QString());
    leaf.appendChild(VeskField::toXml(
        { VeskField::lineEdit(QString(), QStringLiteral("t"), hostile, 32767, QString()) }));

    VeskXmlNode reread(QString(), QString(), nullptr);
    QVERIFY(reread.setContent(root.toByteArray()));
    QCOMPARE(reread.name(), QStringLiteral("stack_filter"));
    const VeskXmlNode fields = reread.getChildNodes().value(0).getChildNodes().value(0);
    const QList<VeskField> templ { VeskField::lineEdit(
        QString(), QStringLiteral("t"), QString(), 32767, QString()) };
    QCOMPARE(VeskField::fromXml(templ, fields).at(0).getText(), hostile);
}

void tst_Host::selectedLabelFollowsTheSelectedIdsPosition()
{
    const VeskField field = VeskField::comboBox(QString(), QStringLiteral("f"),
        { QStringLiteral("is"), QStringLiteral("is not") },
        { QStringLiteral("ist"), QStringLiteral("ist nicht") }, QStringLiteral("is not"),
        QString());
    QCOMPARE(field.getSelectedLabel(), QStringLiteral("ist nicht"));
    VeskField unknown = field;
    unknown.setSelectedId(QStringLiteral("gone"));
    QCOMPARE(unknown.getSelectedLabel(), QString());
}

void tst_Host::appendChildAcceptsANodeOfAnotherDocument()
{
    VeskXmlNode parent(QStringLiteral("stack_filter"), QString(), nullptr);
    VeskXmlNode nested(QStringLiteral("stack_filter"), QString(), nullptr);
    nested.setAttribute(QStringLiteral("type"), QStringLiteral("OR"), QString());
    nested.addChild(QStringLiteral("group"), QString());
    parent.appendChild(nested);
    parent.appendChild(VeskField::toXml({}));

    const QList<VeskXmlNode> children = parent.getChildNodes();
    QCOMPARE(children.size(), 2);
    QCOMPARE(children.at(0).getAttribute(QStringLiteral("type"), QString()), QStringLiteral("OR"));
    QCOMPARE(children.at(0).getChildNodes().value(0).name(), QStringLiteral("group"));
    QCOMPARE(children.at(1).name(), QStringLiteral("fields"));
}

void tst_Host::setContentOfGarbageGivesANullNode()
{
    VeskXmlNode node(QString(), QString(), nullptr);
    QVERIFY(node.isNull());
    QVERIFY(!node.setContent(QByteArrayLiteral("<stack_filter><unclosed>")));
    QVERIFY(node.isNull());
    QVERIFY(!node.hasChildNodes());
    QCOMPARE(node.getAttribute(QStringLiteral("sort"), QString()), QString());
}

void tst_Host::settingsSurviveAFreshStore()
{
    QTemporaryDir dir;
    QTemporaryDir other;
    VeskStandIn::setSettingsDir(dir.path());
    QVERIFY(VeskSettingsManager::getInstance()->getSettingsDir().endsWith(QLatin1Char('/')));
    QVERIFY(VeskSettingsManagerPrivate::settingsMgrPrivInstance);

    const QStringList order { QStringLiteral("default"), QStringLiteral("b"), QStringLiteral("a") };
    VeskSettingsManager::getInstance()->writeGlobalSetting(
        VeskField::comboBox(QString(), QStringLiteral("filters"), order, {}, QString(), QString()));
    VeskSettingsManagerPrivate::settingsMgrPrivInstance->writeGlobalSetting(VeskField::lineEdit(
        QString(), QStringLiteral("roster_filter"), QStringLiteral("b"), 32767, QString()));

    VeskStandIn::setSettingsDir(other.path());
    VeskStandIn::setSettingsDir(dir.path()); // a fresh load from the file
    const VeskField list = VeskSettingsManager::getInstance()->readGlobalSetting(
        VeskField::comboBox(QString(), QStringLiteral("filters"), {}, {}, QString(), QString()));
    QCOMPARE(list.getComboBoxIds(), order);
    // Written through one front end, read through the other.
    const VeskField current
        = VeskSettingsManager::getInstance()->readGlobalSetting(VeskField::lineEdit(QString(),
            QStringLiteral("roster_filter"), QStringLiteral("default"), 32767, QString()));
    QCOMPARE(current.getText(), QStringLiteral("b"));
}

void tst_Host::unwrittenKeysReadAsTheGivenDefault()
{
    QTemporaryDir dir;
    VeskStandIn::setSettingsDir(dir.path());
    VeskSettingsManagerPrivate *store = VeskSettingsManagerPrivate::settingsMgrPrivInstance;
    QCOMPARE(store
                 ->readGlobalSetting(VeskField::lineEdit(QString(), QStringLiteral("roster_filter"),
                     QStringLiteral("default"), 32767, QString()))
                 .getText(),
        QStringLiteral("default"));
    const QStringList fallback { QStringLiteral("x"), QStringLiteral("y") };
    QCOMPARE(store
                 ->readGlobalSetting(VeskField::comboBox(
                     QString(), QStringLiteral("sorters"), fallback, {}, QString(), QString()))
                 .getComboBoxIds(),
        fallback);
}

void tst_Host::removeKeyForgetsTheValue()
{
    QTemporaryDir dir;
    VeskStandIn::setSettingsDir(dir.path());
    VeskSettingsManagerPrivate *store = VeskSettingsManagerPrivate::settingsMgrPrivInstance;
    store->writeGlobalSetting(VeskField::comboBox(QString(), QStringLiteral("sorter_x"),
        { QStringLiteral("name") }, {}, QString(), QString()));
    store->removeKey(QStringLiteral("sorter_x"));
    VeskStandIn::setSettingsDir(dir.path());
    QCOMPARE(store
                 ->readGlobalSetting(VeskField::comboBox(
                     QString(), QStringLiteral("sorter_x"), {}, {}, QString(), QString()))
                 .getComboBoxIds(),
        QStringList());
}

void tst_Host::viewsAnswerForTheirEntry()
{
    VeskAccountConnection *account
        = VeskStandIn::addAccount(QStringLiteral("me"), QStringLiteral("xmpp"));
    const VeskBuddy group = VeskStandIn::addGroup(QStringLiteral("Work"), 4);
    VeskStandIn::ContactInfo info;
    info.display = QStringLiteral("Ann");
    info.group = group;
    info.account = account;
    info.presence = VeskStandIn::makePresence(
        QStringLiteral("away"), QStringLiteral("Away"), QStringLiteral("lunch"), 5, 20);
    info.subscription = 2;
    info.attributes.insert(QStringLiteral("chats_count"), VeskStandIn::makeIntArg(7));
    const VeskBuddy contact = VeskStandIn::addContact(info);
    info.display = QStringLiteral("Tim");
    const VeskBuddy temporary = VeskStandIn::addTemporary(info);
    const VeskBuddy odd = VeskStandIn::addEntry(7, QStringLiteral("odd"));

    // getDisplay() through a base reference answers for the entry, whatever the view.
    const VeskBuddyGroup groupView(contact);
    const VeskBuddy &asBase = groupView;
    QCOMPARE(asBase.getDisplay(), QStringLiteral("Ann"));
    QCOMPARE(VeskBuddyTemporary(group).getDisplay(), QStringLiteral("Work"));

    const VeskBuddyContact view(contact);
    QVERIFY(view.isValid());
    QCOMPARE(view.getAttrib(QStringLiteral("chats_count")).getType(), 3);
    QCOMPARE(view.getAttrib(QStringLiteral("chats_count")).toInt(), 7);
    QCOMPARE(view.getParent().getDisplay(), QStringLiteral("Work"));
    QCOMPARE(view.getAccount(), account);
    QCOMPARE(view.getPresence().getDescription(), QStringLiteral("lunch"));
    QCOMPARE(view.getSubscription().getPriority(), 2);
    QCOMPARE(VeskBuddyGroup(group).getPos(), 4);

    QVERIFY(!VeskBuddyContact(temporary).isValid());
    QCOMPARE(VeskBuddyContact(temporary).getAttrib(QStringLiteral("chats_count")).getType(), 0);
    QCOMPARE(VeskBuddyTemporary(temporary).getGroup().getDisplay(), QStringLiteral("Work"));
    QCOMPARE(VeskBuddyTemporary(temporary).getPresence().getFlag(), 5);
    QCOMPARE(odd.getType(), 7);
    QVERIFY(!VeskBuddyContact(odd).isValid());

    // A contact without a group stands under an entry that is not valid.
    VeskStandIn::ContactInfo loose;
    loose.display = QStringLiteral("Loose");
    const VeskBuddy parent = VeskBuddyContact(VeskStandIn::addContact(loose)).getParent();
    QVERIFY(!parent.isValid());
    QCOMPARE(parent.getDisplay(), QString());
}

void tst_Host::registriesListWhatWasAdded()
{
    VeskStandIn::addProtocol(
        QStringLiteral("xmpp"), { VeskStandIn::makePresence(QStringLiteral("online")) });
    VeskStandIn::addProtocol(QStringLiteral("irc"), {});
    VeskStandIn::addGroup(QStringLiteral("B"), 0);
    VeskStandIn::addGroup(QStringLiteral("A"), 0);
    VeskStandIn::addGroup(QStringLiteral("B"), 1);
    const QList<VeskProtocol *> protocols
        = VeskPluginManager::getInstance()->getRegisteredProtocols();
    QCOMPARE(protocols.size(), 2);
    QCOMPARE(
        protocols.at(0)->getAllPresences(QStringLiteral("___VeskBuddyDefaultType___")).size(), 1);
    QCOMPARE(protocols.at(0)->getAllPresences(QStringLiteral("other")).size(), 0);
    QCOMPARE(VeskRoster::getInstance()->getGroupsNames(),
        QStringList({ QStringLiteral("B"), QStringLiteral("A"), QStringLiteral("B") }));
}

QTEST_GUILESS_MAIN(tst_Host)
#include "tst_host.moc"
