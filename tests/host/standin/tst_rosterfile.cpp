// The roster file format as the stand-in host receives it.

#include <rosterfile.h>
#include <veskstandin.h>
#include <veskaccount.h>
#include <veskbuddy.h>

#include <QtTest>

class tst_RosterFile : public QObject
{
    Q_OBJECT

private slots:
    void init() { VeskStandIn::resetRoster(); }
    void cleanup() { VeskStandIn::resetRoster(); }

    void malformedDocumentsAreRefusedWithLineAndColumn_data();
    void malformedDocumentsAreRefusedWithLineAndColumn();
    void chatsCountKeepsTheTypeOfItsValue_data();
    void chatsCountKeepsTheTypeOfItsValue();
    void contactsWithoutGroupOrAccountHaveNone();
    void temporaryContactsAreNoContacts();
    void generatedRostersAreDeterministicPerSeedAndLoad();
};

void tst_RosterFile::malformedDocumentsAreRefusedWithLineAndColumn_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("message");
    QTest::newRow("lines count from 1") << QByteArray("{\n  \"groups\": [")
                                        << QStringLiteral("line 2, column 14: expected a group");
    QTest::newRow("trailing text")
        << QByteArray("{} x") << QStringLiteral("line 1, column 4: unexpected text after");
    QTest::newRow("columns count characters, not bytes")
        << QByteArray("{\"contacts\": [{\"display\": \"Zoë\", \"group\": \"G\"}]}")
        << QStringLiteral("line 1, column 43: contact \"Zoë\" names the group \"G\"");
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

void tst_RosterFile::chatsCountKeepsTheTypeOfItsValue_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("count"); // read only from an integer
    QTest::newRow("whole number") << QByteArray("7") << int(VeskArg::TypeInt) << 7;
    QTest::newRow("whole value written with a fraction part")
        << QByteArray("7.0") << int(VeskArg::TypeInt) << 7;
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
    QCOMPARE(qMakePair(chats.getType(), chats.getType() == VeskArg::TypeInt ? chats.toInt() : 0),
        qMakePair(type, count));
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

void tst_RosterFile::generatedRostersAreDeterministicPerSeedAndLoad()
{
    const QByteArray generated = VeskRosterFile::generate(2000, 42);
    QCOMPARE(VeskRosterFile::generate(2000, 42), generated);
    QVERIFY(VeskRosterFile::generate(2000, 43) != generated);
    QString error;
    QVERIFY2(VeskRosterFile::load(generated, &error), qPrintable(error));
    int people = 0;
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    for (const VeskBuddy &entry : entries)
        people += entry.getType() == VeskBuddy::TypeContact
            || entry.getType() == VeskBuddy::TypeTemporary;
    QCOMPARE(people, 2000);
}

QTEST_GUILESS_MAIN(tst_RosterFile)
#include "tst_rosterfile.moc"
