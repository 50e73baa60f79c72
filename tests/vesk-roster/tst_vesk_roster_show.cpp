// vesk-roster end to end. What the reading commands print: the roster, the kinds, and text from
// rosters and files kept inert.

#include "veskrosterrunner.h"

#include <rosterfile.h>

#include <QJsonArray>
#include <QJsonDocument>

class tst_VeskRosterShow : public QObject, public VeskRosterRunner
{
    Q_OBJECT

private slots:
    void initTestCase() { setUpFixture(); }
    void init() { newSettings(); }

    void sampleRosterShowsWithNoArguments();
    void showListsTheRosterInTheBuiltInOrder();
    void kindsOfferTheLoadedRostersItems();
    void hostileTextStaysInert();
    void namesThatCannotBeTypedAreShownEscaped();
};

void tst_VeskRosterShow::sampleRosterShowsWithNoArguments()
{
    // No --settings either: the program falls back to $XDG_CONFIG_HOME/vesk-roster.
    const Result result = program(QStringList());
    QVERIFY2(result.status == 0, qPrintable(result.err));
    const QJsonArray contacts
        = QJsonDocument::fromJson(VeskRosterFile::sampleRoster())[QLatin1String("contacts")]
              .toArray();
    QVERIFY(contacts.size() >= 40);
    for (const QJsonValue &contact : contacts) {
        const QString display = contact[QLatin1String("display")].toString();
        QVERIFY2(result.out.contains(display), qPrintable(display));
    }
    // Reading stores nothing, not even the directory.
    QVERIFY(!QDir(temp->filePath(QStringLiteral("vesk-roster"))).exists());
}

void tst_VeskRosterShow::showListsTheRosterInTheBuiltInOrder()
{
    // Groups by position; members online before offline, then by
    // subscription (highest first), then by name; the groupless last.
    const QJsonObject expected = parse(QStringLiteral(R"({"filter": "default", "sorter": "",
      "groups": [{"name": "Friends", "entries": [
        {"display": "Eve", "kind": "contact", "group": "Friends", "account": "me@example.org@jabber",
         "presence": "away", "description": "", "chats_count": 1},
        {"display": "Bob", "kind": "contact", "group": "Friends", "account": "me@example.org@jabber",
         "presence": "online", "description": "", "chats_count": null},
        {"display": "Tim", "kind": "temporary", "group": "Friends", "account": null,
         "presence": "online", "description": "", "chats_count": null}]},
      {"name": "Work", "entries": [
        {"display": "alice", "kind": "contact", "group": "Work", "account": "me@example.org@jabber",
         "presence": "away", "description": "", "chats_count": 5},
        {"display": "Carol", "kind": "contact", "group": "Work", "account": "me@example.org@jabber",
         "presence": "online", "description": "at lunch", "chats_count": 9},
        {"display": "Adam", "kind": "contact", "group": "Work", "account": "123@icq",
         "presence": "offline", "description": "", "chats_count": 7}]}],
      "ungrouped": [{"display": "Dave", "kind": "contact", "group": null, "account": null,
         "presence": "offline", "description": "", "chats_count": null}]})"));
    const Result result = run(A({ "--json", "show" }));
    QVERIFY2(result.status == 0, qPrintable(result.err));
    QCOMPARE(parse(result.out), expected);
}

void tst_VeskRosterShow::kindsOfferTheLoadedRostersItems()
{
    const Result result = run(A({ "--json", "kinds" }));
    QVERIFY2(result.status == 0, qPrintable(result.err));
    const QJsonValue kinds = parse(result.out).value(QLatin1String("kinds"));
    QStringList seen;
    for (const QJsonValue &kind : kinds.toArray())
        seen.append(kind[QLatin1String("id")].toString());
    // The group field's items: the loaded roster's groups, in roster order.
    const QJsonValue groups = kinds[3][QLatin1String("fields")][1][QLatin1String("items")];
    for (const QJsonValue &item : groups.toArray())
        seen.append(item[QLatin1String("id")].toString());
    QCOMPARE(seen,
        A({ "account", "description", "display", "group", "presence", "protocol", "Work",
            "Friends" }));
}

void tst_VeskRosterShow::hostileTextStaysInert()
{
    const QStringList roster = A({ "--roster", "hostile.json" });
    const QByteArray named
        = definition(QStringLiteral("\x1b[31mred"), 1, QStringLiteral("\x1b]0;t\x07"));
    RUN_OK(imported, A({ "import", "-" }), named);
    RUN_OK(copied, A({ "import", "-", "--as", "x" }), named);
    for (const QStringList &command : Commands { A({ "show" }), A({ "filters" }), A({ "kinds" }),
             A({ "export", "x" }), A({ "--json", "show" }), A({ "use", "nope" }) }) {
        const Result result = run(roster + command);
        QVERIFY2(!hasControlCharacters(result.out) && !hasControlCharacters(result.err),
            qPrintable(command.join(QLatin1Char(' '))));
    }
    RUN_OK(text, roster + A({ "show" }));
    QVERIFY2(text.out.contains(QLatin1String("\\e]0;pwned\\x07Evil\\e[2J"))
            && text.out.contains(QLatin1String("one\\ntwo"))
            && text.out.contains(QLatin1String("mid\\u202eevil")),
        qPrintable(text.out));
    // CJK characters take two columns: the next column starts at the same
    // place in both rows.
    const QStringList lines = text.out.split(QLatin1Char('\n'));
    auto prefix = [&](const QString &name) {
        for (const QString &line : lines) {
            if (line.contains(name))
                return line.left(line.indexOf(QLatin1String("away")));
        }
        return QString();
    };
    const QString latin = prefix(QStringLiteral("Bob"));
    const QString wide = prefix(QString::fromUtf8("张伟"));
    QVERIFY2(latin.startsWith(QLatin1String("  Bob ")) && wide.size() + 2 == latin.size(),
        qPrintable(latin + QLatin1Char('|') + wide));

    // JSON keeps every text exactly, escaped as JSON escapes.
    RUN_OK(json, roster + A({ "--json", "show" }));
    const QJsonObject group = parse(json.out).value(QLatin1String("groups"))[0].toObject();
    QCOMPARE(group[QLatin1String("name")].toString(), QStringLiteral("G\x07r\rp"));
    QCOMPARE(group.value(QLatin1String("entries"))[0][QLatin1String("display")].toString(),
        QStringLiteral("\x1b]0;pwned\x07"
                       "Evil\x1b[2J"));
    RUN_OK(filters, A({ "filters" }));
    QVERIFY2(filters.out.contains(QLatin1String("\\e[31mred")), qPrintable(filters.out));

    // Account and protocol items come in the accounts' order, in every run.
    RUN_OK(kinds, roster + A({ "--json", "kinds" }));
    QStringList items;
    for (const QJsonValue &kind : parse(kinds.out)[QLatin1String("kinds")].toArray()) {
        if (kind[QLatin1String("id")] == QLatin1String("account")
            || kind[QLatin1String("id")] == QLatin1String("protocol")) {
            for (const QJsonValue &item :
                kind[QLatin1String("fields")][1][QLatin1String("items")].toArray())
                items.append(item[QLatin1String("id")].toString());
        }
    }
    QCOMPARE(items,
        QStringList({ QStringLiteral("zed@jabber"), QStringLiteral("amy@icq"),
            QStringLiteral("mid\u202eevil@jabber"), QStringLiteral("bob@icq"),
            QStringLiteral("kim@jabber"), QStringLiteral("jabber"), QStringLiteral("icq") }));
}

void tst_VeskRosterShow::namesThatCannotBeTypedAreShownEscaped()
{
    // A name with an unpaired surrogate, as a JSON escape.
    const QByteArray document
        = definition(QStringLiteral("NAME"), 1, QStringLiteral("x")).replace("NAME", "\\ud800x");
    RUN_OK(imported, A({ "import", "-" }), document);
    RUN_OK(listed, A({ "filters" }));
    QVERIFY2(listed.out.contains(QLatin1String("\\ud800x")), qPrintable(listed.out));
    RUN_OK(removed, A({ "remove", "\\ud800x" }));
    QCOMPARE(filterList(), QStringLiteral("*default"));
}

QTEST_GUILESS_MAIN(tst_VeskRosterShow)
#include "tst_vesk_roster_show.moc"
