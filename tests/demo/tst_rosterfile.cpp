// The roster file format as the stand-in host receives it.

#include <rosterfile.h>
#include <standin/veskstandin.h>
#include <veskaccount.h>
#include <veskbuddy.h>
#include <veskroster.h>

#include <QtTest>

class tst_RosterFile : public QObject
{
    Q_OBJECT

private slots:
    void init() { VeskStandIn::resetRoster(); }
    void cleanup() { VeskStandIn::resetRoster(); }

    void malformedDocumentsAreRefusedWithLineAndColumn_data();
    void malformedDocumentsAreRefusedWithLineAndColumn();
    void aRefusedDocumentLeavesAnEmptyRoster();
    void chatsCountKeepsTheTypeOfItsValue_data();
    void chatsCountKeepsTheTypeOfItsValue();
    void contactsWithoutGroupOrAccountHaveNone();
    void temporaryContactsAreNoContacts();
    void repeatedGroupNamesAreKeptAndTheFirstHoldsTheMembers();
    void sampleAndGeneratedRostersLoad();
};

void tst_RosterFile::malformedDocumentsAreRefusedWithLineAndColumn_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty document")
        << QByteArray() << QStringLiteral("line 1, column 1: the roster is empty");
    QTest::newRow("not an object")
        << QByteArray("[]") << QStringLiteral("line 1, column 1: expected the roster (an object)");
    QTest::newRow("unterminated object") << QByteArray(
        "{\n  \"groups\": [") << QStringLiteral("line 2, column 14: expected a group (an object)");
    QTest::newRow("trailing text") << QByteArray(
        "{} x") << QStringLiteral("line 1, column 4: unexpected text after the roster object");
    QTest::newRow("unknown key") << QByteArray("{\"contacts\": [{\"name\": \"Bob\"}]}")
                                 << QStringLiteral(
                                        "line 1, column 16: unknown key \"name\" in a contact");
    QTest::newRow("wrong type") << QByteArray("{\"groups\": [{\"name\": \"A\", \"pos\": \"1\"}]}")
                                << QStringLiteral(
                                       "line 1, column 34: \"pos\" must be a whole number");
    QTest::newRow("columns count characters")
        << QByteArray("{\"contacts\": [{\"display\": \"Zoë\", \"group\": \"G\"}]}")
        << QStringLiteral("line 1, column 43: contact \"Zoë\" names the group \"G\"");
    QTest::newRow("account out of range")
        << QByteArray("{\"contacts\": [{\"account\": 0}]}")
        << QStringLiteral(
               "line 1, column 27: contact \"\" names account 0, but there are 0 accounts");
    QTest::newRow("account on an unlisted protocol")
        << QByteArray("{\"accounts\": [{\"uid\": \"a\", \"protocol\": \"x\"}]}")
        << QStringLiteral("line 1, column 40: account \"a\" names the protocol \"x\"");
    QTest::newRow("bad escape") << QByteArray("{\"contacts\": [{\"display\": \"a\\q\"}]}")
                                << QStringLiteral("line 1, column 29: unknown escape in a string");
    QTest::newRow("object as chats count")
        << QByteArray("{\"contacts\": [{\"chats_count\": {}}]}")
        << QStringLiteral("line 1, column 31: \"chats_count\" must be a number");
}

void tst_RosterFile::malformedDocumentsAreRefusedWithLineAndColumn()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, message);
    QString error;
    QVERIFY(!VeskRosterFile::load(document, &error));
    QVERIFY2(error.startsWith(message), qPrintable(error));
}

void tst_RosterFile::aRefusedDocumentLeavesAnEmptyRoster()
{
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::sampleRoster(), &error));
    QVERIFY(!VeskRosterFile::load(
        "{\"groups\": [{\"name\": \"A\"}], \"contacts\": [{\"group\": \"B\"}]}", &error));
    QCOMPARE(VeskStandIn::entries().size(), 0);
    QCOMPARE(VeskRoster::getInstance()->getGroupsNames(), QStringList());
    QCOMPARE(VeskAccountManager::getInstance()->getAccounts().size(), 0);
}

void tst_RosterFile::chatsCountKeepsTheTypeOfItsValue_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("count");
    QTest::newRow("whole number") << QByteArray("7") << int(VeskArg::TypeInt) << 7;
    QTest::newRow("whole number with a fraction part")
        << QByteArray("7.0") << int(VeskArg::TypeInt) << 7;
    QTest::newRow("negative") << QByteArray("-3") << int(VeskArg::TypeInt) << -3;
    QTest::newRow("largest int") << QByteArray("2147483647") << int(VeskArg::TypeInt) << 2147483647;
    QTest::newRow("beyond int") << QByteArray("2147483648") << int(VeskArg::TypeDouble) << 0;
    QTest::newRow("fraction") << QByteArray("2.5") << int(VeskArg::TypeDouble) << 0;
    QTest::newRow("string") << QByteArray("\"7\"") << int(VeskArg::TypeString) << 0;
    QTest::newRow("boolean") << QByteArray("true") << int(VeskArg::TypeBool) << 0;
    QTest::newRow("null") << QByteArray("null") << int(VeskArg::TypeNone) << 0;
}

void tst_RosterFile::chatsCountKeepsTheTypeOfItsValue()
{
    QFETCH(QByteArray, value);
    QFETCH(int, type);
    QFETCH(int, count);
    QString error;
    QVERIFY2(VeskRosterFile::load("{\"contacts\": [{\"chats_count\": " + value + "}]}", &error),
        qPrintable(error));
    const VeskArg chats
        = VeskBuddyContact(VeskStandIn::entries().at(0)).getAttrib(QStringLiteral("chats_count"));
    QCOMPARE(chats.getType(), type);
    if (type == VeskArg::TypeInt)
        QCOMPARE(chats.toInt(), count);
}

void tst_RosterFile::contactsWithoutGroupOrAccountHaveNone()
{
    QString error;
    QVERIFY2(
        VeskRosterFile::load("{\"contacts\": [{\"display\": \"Bob\", \"account\": null}]}", &error),
        qPrintable(error));
    const VeskBuddyContact bob(VeskStandIn::entries().at(0));
    QVERIFY(!bob.getParent().isValid());
    QCOMPARE(bob.getParent().getDisplay(), QString());
    QCOMPARE(bob.getAccount(), nullptr);
}

void tst_RosterFile::temporaryContactsAreNoContacts()
{
    QString error;
    QVERIFY2(VeskRosterFile::load(
                 "{\"groups\": [{\"name\": \"G\"}], \"contacts\": [{\"display\": \"t\", "
                 "\"group\": \"G\", \"temporary\": true, \"chats_count\": 4}]}",
                 &error),
        qPrintable(error));
    const VeskBuddy entry = VeskStandIn::entries().at(1);
    QCOMPARE(entry.getType(), int(VeskBuddy::TypeTemporary));
    QVERIFY(!VeskBuddyContact(entry).isValid());
    QCOMPARE(VeskBuddyTemporary(entry).getGroup().getDisplay(), QStringLiteral("G"));
}

void tst_RosterFile::repeatedGroupNamesAreKeptAndTheFirstHoldsTheMembers()
{
    QString error;
    QVERIFY2(VeskRosterFile::load(
                 "{\"groups\": [{\"name\": \"B\", \"pos\": 1}, {\"name\": \"B\", \"pos\": 2}], "
                 "\"contacts\": [{\"group\": \"B\"}]}",
                 &error),
        qPrintable(error));
    QCOMPARE(VeskRoster::getInstance()->getGroupsNames(),
        QStringList({ QStringLiteral("B"), QStringLiteral("B") }));
    QCOMPARE(
        VeskBuddyGroup(VeskBuddyContact(VeskStandIn::entries().at(2)).getParent()).getPos(), 1);
}

void tst_RosterFile::sampleAndGeneratedRostersLoad()
{
    QString error;
    QVERIFY2(VeskRosterFile::load(VeskRosterFile::sampleRoster(), &error), qPrintable(error));
    QVERIFY2(VeskRosterFile::load(VeskRosterFile::generate(2000, 42), &error), qPrintable(error));
    int people = 0;
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    for (const VeskBuddy &entry : entries)
        people += entry.getType() == VeskBuddy::TypeContact
            || entry.getType() == VeskBuddy::TypeTemporary;
    QCOMPARE(people, 2000);
    QCOMPARE(VeskRosterFile::generate(2000, 42), VeskRosterFile::generate(2000, 42));
}

QTEST_GUILESS_MAIN(tst_RosterFile)
#include "tst_rosterfile.moc"
