// The roster file format as the stand-in host receives it.

#include <rosterfile.h>
#include <veskaccount.h>
#include <veskbuddy.h>
#include <veskstandin.h>

#include <QJsonParseError>
#include <QtTest>

class tst_RosterFile : public QObject
{
    Q_OBJECT

private slots:
    void init() { VeskStandIn::resetRoster(); }
    void cleanup() { VeskStandIn::resetRoster(); }

    void syntaxErrorsNameLineAndColumn_data();
    void syntaxErrorsNameLineAndColumn();
    void contentErrorsNameTheJsonPath_data();
    void contentErrorsNameTheJsonPath();
    void laxStringsAreReadAsTheirEscapes();
    void chatsCountKeepsTheTypeOfItsValue_data();
    void chatsCountKeepsTheTypeOfItsValue();
    void contactsWithoutGroupOrAccountHaveNone();
    void temporaryContactsAreNoContacts();
    void generatedRostersAreDeterministicPerSeedAndLoad();
};

void tst_RosterFile::syntaxErrorsNameLineAndColumn_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("position");
    QTest::addColumn<int>("error"); // QJsonParseError::ParseError, worded by Qt

    auto row = [](const char *name, const char *document, const char *position,
                   QJsonParseError::ParseError error) {
        QTest::newRow(name) << QByteArray(document) << QString::fromUtf8(position) << int(error);
    };
    row("lines count from 1", "{\n  \"groups\": [", "line 2, column 14",
        QJsonParseError::UnterminatedArray);
    row("trailing text", "{} x", "line 1, column 4", QJsonParseError::GarbageAtEnd);
    row("columns count characters, not bytes", "{\"a\": \"Zoë\" x}", "line 1, column 14",
        QJsonParseError::UnterminatedObject);
    row("a byte order mark is no column", "\xEF\xBB\xBF{} x", "line 1, column 4",
        QJsonParseError::GarbageAtEnd);
    row("invalid UTF-8", "{\n\"a\": \"\xff\"}", "line 2, column 7",
        QJsonParseError::IllegalUTF8String);
    row("missing colon", "{\"a\" 1}", "line 1, column 7", QJsonParseError::MissingNameSeparator);
    row("number out of double range", "{\"a\": 1e400}", "line 1, column 12",
        QJsonParseError::IllegalNumber);
}

void tst_RosterFile::syntaxErrorsNameLineAndColumn()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, position);
    QFETCH(int, error);
    QJsonParseError parseError;
    parseError.error = QJsonParseError::ParseError(error);
    QString message;
    QVERIFY(!VeskRosterFile::load(document, &message));
    QCOMPARE(message, position + QLatin1String(": ") + parseError.errorString());
    QVERIFY(VeskStandIn::entries().isEmpty());
}

void tst_RosterFile::contentErrorsNameTheJsonPath_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("message");

    const QByteArray contactKeys
        = "valid keys: display, group, account, temporary, presence, subscription, chats_count";
    auto row = [](const char *name, const QByteArray &document, const QByteArray &message) {
        QTest::newRow(name) << document << QString::fromUtf8(message);
    };
    row("empty document", " \n", "the roster is empty (expected a JSON object)");
    row("not an object", "[]", "the roster must be a JSON object");
    row("unknown key at the top", R"({"contact": []})",
        "contact: unknown key; valid keys: protocols, accounts, groups, contacts");
    row("section not an array", R"({"groups": {}})", "groups: must be an array");
    row("element not an object", R"({"groups": [{"name": "a"}, 5]})",
        "groups[1]: must be an object");
    row("unknown group, as a typo",
        R"({"groups": [{"name": "Friends"}, {"name": "Work"}],
            "contacts": [{"group": "Work"}, {"display": "Zoë", "group": "Frends"}]})",
        R"(contacts[1].group: no group "Frends"; groups: "Friends", "Work")");
    row("long name lists are cut",
        R"({"groups": [{"name": "0"}, {"name": "1"}, {"name": "2"}, {"name": "3"}, {"name": "4"},
            {"name": "5"}, {"name": "6"}, {"name": "7"}, {"name": "8"}], "contacts": [{"group": "9"}]})",
        R"(contacts[0].group: no group "9"; groups: "0", "1", "2", "3", "4", "5", "6", "7", … (9 in all))");
    row("unknown protocol",
        R"({"protocols": [{"name": "jabber"}], "accounts": [{"protocol": "xmpp"}]})",
        R"(accounts[0].protocol: no protocol "xmpp"; protocols: "jabber")");
    row("account index beyond the accounts",
        R"({"protocols": [{"name": "p"}], "accounts": [{"protocol": "p"}], "contacts": [{"account": 1}]})",
        R"(contacts[0].account: no account 1; "accounts" lists 1 (indexes start at 0))");
    row("negative account index", R"({"contacts": [{"account": -1}]})",
        R"(contacts[0].account: must be null or an index into "accounts")");
    row("fraction where an integer belongs", R"({"contacts": [{"subscription": 1.5}]})",
        "contacts[0].subscription: must be a whole number from -2147483648 to 2147483647");
    row("integer beyond int", R"({"groups": [{"name": "g", "pos": 2147483648}]})",
        "groups[0].pos: must be a whole number from -2147483648 to 2147483647");
    row("number where a string belongs", R"({"contacts": [{"display": 5}]})",
        "contacts[0].display: must be a string");
    row("string where a boolean belongs", R"({"contacts": [{"temporary": "yes"}]})",
        "contacts[0].temporary: must be true or false");
    row("nested place", R"({"contacts": [{}, {"presence": {"flag": "x"}}]})",
        "contacts[1].presence.flag: must be a whole number from -2147483648 to 2147483647");
    row("description only in a contact's presence",
        R"({"protocols": [{"name": "p", "presences": [{"description": ""}]}]})",
        "protocols[0].presences[0].description: unknown key; valid keys: id, display, flag, "
        "priority");
    row("odd keys are quoted in the path", R"({"contacts": [{"dis play": 1}]})",
        "contacts[0][\"dis play\"]: unknown key; " + contactKeys);
    row("control characters never reach the message", "{\"contacts\": [{\"a\\u001b\": 1}]}",
        "contacts[0][\"a\\u001b\"]: unknown key; " + contactKeys);
    row("protocol without a name", R"({"protocols": [{"name": ""}]})",
        R"(protocols[0]: a protocol needs a non-empty "name")");
    row("group without a name", R"({"groups": [{"pos": 1}]})",
        R"(groups[0]: a group needs a "name")");
    row("account without a protocol", R"({"accounts": [{"uid": "u"}]})",
        R"(accounts[0]: an account needs a "protocol")");
    row("object as chats count", R"({"contacts": [{"chats_count": {}}]})",
        "contacts[0].chats_count: must be a number, a string, true, false or null");
    row("lone surrogate", R"({"contacts": [{"display": "a\ud800"}]})",
        R"(contacts[0].display: "a\ud800" holds a lone surrogate, which is not a character)");
    row("lone surrogate written in capitals", R"({"groups": [{"name": "\uDC00"}]})",
        R"(groups[0].name: "\udc00" holds a lone surrogate, which is not a character)");
}

void tst_RosterFile::contentErrorsNameTheJsonPath()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, message);
    QString error;
    QVERIFY(!VeskRosterFile::load(document, &error));
    QCOMPARE(error, message);
    QVERIFY(VeskStandIn::entries().isEmpty());
}

// Qt's parser is looser than the JSON grammar: a raw control character inside
// a string is read as that character, and an unknown escape (\x) as the
// character after the backslash. An escaped surrogate pair is the character it
// encodes; an escaped backslash followed by "ud800" is plain text.
void tst_RosterFile::laxStringsAreReadAsTheirEscapes()
{
    QString error;
    QVERIFY2(VeskRosterFile::load(
                 "{\"contacts\": [{\"display\": \"a\tb\"}, {\"display\": \"\\ud83d\\ude00\"}, "
                 "{\"display\": \"\\\\ud800\"}, {\"display\": \"\\x\"}]}",
                 &error),
        qPrintable(error));
    QStringList names;
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    for (const VeskBuddy &entry : entries)
        names.append(entry.getDisplay());
    QCOMPARE(names,
        QStringList({ QStringLiteral("a\tb"), QString::fromUtf8("\xF0\x9F\x98\x80"),
            QStringLiteral("\\ud800"), QStringLiteral("x") }));
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
