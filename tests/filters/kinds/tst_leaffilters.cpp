// The six leaf filters: which entries each condition passes, what a new
// filter passes, the items they offer, and how their configuration is walked.

#include "kindsfixture.h"

#include <QtTest>

#include <algorithm>

namespace {

const QString conditionId = QStringLiteral("is_or_not");

void row(const char *kind, const char *condition, const char *value, const char *expected,
    const char *display)
{
    QTest::addRow("%s %s \"%s\"", kind, condition, value)
        << QString::fromUtf8(kind) << QString::fromUtf8(condition) << QString::fromUtf8(value)
        << QString::fromUtf8(expected) << QString::fromUtf8(display);
}

VeskField choice(const QString &id, const QString &selected)
{
    return VeskField::comboBox(QString(), id, {}, {}, selected, QString());
}

} // namespace

class tst_LeafFilters : public QObject
{
    Q_OBJECT

private slots:
    void init() { entries = buildRoster(); }
    void cleanup() { VeskStandIn::resetRoster(); }

    void conditionPassesEntries_data();
    void conditionPassesEntries();
    void lastFieldOfAnIdWinsAndAnEmptyListChangesNothing_data();
    void lastFieldOfAnIdWinsAndAnEmptyListChangesNothing();
    void unknownTextConditionKeepsThePreviousTest_data();
    void unknownTextConditionKeepsThePreviousTest();
    void presenceItemsAreUniqueByIdWithTheFirstProtocolsLabelAndPlace();
    void itemsAreDistinct_data();
    void itemsAreDistinct();

private:
    QList<LabelledEntry> entries;
};

void tst_LeafFilters::conditionPassesEntries_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("condition"); // empty: a new filter, never configured
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("display");
    const char *all = "contact, temporary, group, invalid, no account, bare";

    row("group", "", "", "group, invalid, bare", " ");
    row("group", "is", "Work", "temporary, no account", "is Work");
    row("group", "is", "friends", "", "is friends");
    row("group", "is not", "Friends", "temporary, group, invalid, no account, bare",
        "is not Friends");
    row("group", "is not", "", "contact, temporary, no account", "is not ");
    // Every identity holds at least the "@".
    row("account", "", "", "", "account  ");
    row("account", "is", "alice@home@jabber", "contact", "account is alice@home@jabber");
    row("account", "is", "carol@", "bare", "account is carol@");
    row("account", "is", "alice@home", "", "account is alice@home");
    row("account", "is", "alice@home#jabber", "", "account is alice@home#jabber");
    row("account", "is", "bob@icx", "", "account is bob@icx");
    row("account", "is", "Alice@home@jabber", "", "account is Alice@home@jabber");
    row("account", "is not", "bob@icq", "contact, group, invalid, no account, bare",
        "account is not bob@icq");
    row("protocol", "", "", "bare", "protocol  ");
    row("protocol", "is", "icq", "temporary", "protocol is icq");
    row("protocol", "is", "Jabber", "", "protocol is Jabber");
    row("protocol", "is not", "", "contact, temporary, group, invalid, no account",
        "protocol is not ");
    row("display", "", "", "bare", "display ");
    row("display", "contains", "bob", "contact, temporary", "display bob");
    row("display", "contains", "", all, "display ");
    row("display", "contains", "Bob", "contact, no account", "display Bob");
    row("display", "contains", "a.b", "invalid", "display a.b");
    row("display", "does not contain", "bob", "group, invalid, no account, bare", "display bob");
    row("display", "does not contain", "", "", "display ");
    row("display", "match exactly", "Bobby", "no account", "display Bobby");
    row("description", "", "", "no account, bare", "description ");
    row("description", "contains", "", "contact, no account, bare", "description ");
    row("description", "contains", "Away", "", "description Away");
    row("description", "does not contain", "away", "no account, bare", "description away");
    row("description", "does not contain", "", "", "description ");
    row("description", "match exactly", "awa", "", "description awa");
    row("description", "is not empty", "zzz", "contact", "description zzz");
    row("presence", "", "", "no account, bare", "presence  ");
    row("presence", "is", "away", "contact, temporary", "presence is Away");
    row("presence", "is", "Away", "", "presence is ");
    row("presence", "is not", "away", "group, invalid, no account, bare", "presence is not Away");
}

void tst_LeafFilters::conditionPassesEntries()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, value);
    const auto filter = makeFilter(kind);
    if (!condition.isEmpty())
        configure(*filter, { { conditionId, condition }, { valueFieldOf(kind), value } });
    QCOMPARE(filter->getConfiguration().at(1).getText()
            + filter->getConfiguration().at(1).getSelectedId(),
        value);
    QTEST(passing(*filter, entries), "expected");
    QTEST(filter->display(), "display");
}

void tst_LeafFilters::lastFieldOfAnIdWinsAndAnEmptyListChangesNothing_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("first"); // condition, value
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("expected");
    // For the choice kinds any field but the condition carries the value, and
    // only exactly "is" means "is".
    QTest::newRow("group") << QStringLiteral("group") << QStringLiteral("is,Friends")
                           << QStringLiteral("IS,Work")
                           << QStringLiteral("contact, group, invalid, bare");
    QTest::newRow("account") << QStringLiteral("account") << QStringLiteral("is,alice@home@jabber")
                             << QStringLiteral("IS,bob@icq")
                             << QStringLiteral("contact, group, invalid, no account, bare");
    QTest::newRow("protocol") << QStringLiteral("protocol") << QStringLiteral("is,jabber")
                              << QStringLiteral("IS,icq")
                              << QStringLiteral("contact, group, invalid, no account, bare");
    QTest::newRow("presence") << QStringLiteral("presence") << QStringLiteral("is,away")
                              << QStringLiteral("IS,online")
                              << QStringLiteral(
                                     "contact, temporary, group, invalid, no account, bare");
    QTest::newRow("display") << QStringLiteral("display") << QStringLiteral("match exactly,x")
                             << QStringLiteral("contains,a") << QStringLiteral("invalid");
    QTest::newRow("description") << QStringLiteral("description")
                                 << QStringLiteral("match exactly,x")
                                 << QStringLiteral("contains,a") << QStringLiteral("contact");
}

void tst_LeafFilters::lastFieldOfAnIdWinsAndAnEmptyListChangesNothing()
{
    QFETCH(QString, kind);
    QFETCH(QString, first);
    QFETCH(QString, last);
    const auto filter = makeFilter(kind);
    const bool text = filter->getConfiguration().at(1).getKind() == VeskField::LineEdit;
    const auto value = [&](const QString &v) {
        return text ? VeskField::lineEdit(QString(), valueFieldOf(kind), v, 32767, QString())
                    : choice(QStringLiteral("anything"), v);
    };
    QList<VeskField> fields { choice(conditionId, first.section(QLatin1Char(','), 0, 0)),
        value(first.section(QLatin1Char(','), 1)),
        choice(conditionId, last.section(QLatin1Char(','), 0, 0)),
        value(last.section(QLatin1Char(','), 1)) };
    if (text) // fields of other ids are ignored
        fields << VeskField::lineEdit(
            QString(), QStringLiteral("other"), QStringLiteral("Bobby"), 1, QString());
    filter->setConfiguration(fields);
    const QString state
        = passing(*filter, entries) + QLatin1Char('/') + describe(filter->getConfiguration());
    filter->setConfiguration({});
    QCOMPARE(
        passing(*filter, entries) + QLatin1Char('/') + describe(filter->getConfiguration()), state);
    QTEST(passing(*filter, entries), "expected");
}

void tst_LeafFilters::unknownTextConditionKeepsThePreviousTest_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("text"); // first configured with "contains"
    QTest::addColumn<QString>("unknown"); // then this condition, with the text "Bobby"
    QTest::addColumn<QString>("expected"); // passing / display / condition shown
    QTest::newRow("the display filter knows no \"is not empty\"")
        << QStringLiteral("display") << QStringLiteral("bob") << QStringLiteral("is not empty")
        << QStringLiteral("contact, temporary / display Bobby / is not empty");
    QTest::newRow("conditions are case-sensitive")
        << QStringLiteral("description") << QStringLiteral("way") << QStringLiteral("Contains")
        << QStringLiteral("contact / description Bobby / Contains");
}

// The previous test stays whole, text included, but the new text is shown.
void tst_LeafFilters::unknownTextConditionKeepsThePreviousTest()
{
    QFETCH(QString, kind);
    QFETCH(QString, text);
    QFETCH(QString, unknown);
    const auto filter = makeFilter(kind);
    configure(
        *filter, { { conditionId, QStringLiteral("contains") }, { valueFieldOf(kind), text } });
    configure(
        *filter, { { conditionId, unknown }, { valueFieldOf(kind), QStringLiteral("Bobby") } });
    QTEST(passing(*filter, entries) + QLatin1String(" / ") + filter->display()
            + QLatin1String(" / ") + filter->getConfiguration().at(0).getSelectedId(),
        "expected");
}

void tst_LeafFilters::presenceItemsAreUniqueByIdWithTheFirstProtocolsLabelAndPlace()
{
    using VeskStandIn::makePresence;
    VeskStandIn::resetRoster();
    VeskStandIn::addProtocol(QStringLiteral("first"),
        { makePresence(QStringLiteral("online"), QStringLiteral("Online")),
            makePresence(QStringLiteral("away"), QStringLiteral("Away")) });
    VeskStandIn::addProtocol(QStringLiteral("empty"), {});
    VeskStandIn::addProtocol(QStringLiteral("second"),
        { makePresence(QStringLiteral("dnd"), QStringLiteral("Busy")),
            makePresence(QStringLiteral("away"), QStringLiteral("Gone")),
            makePresence(QStringLiteral("Online"), QStringLiteral("ONLINE")),
            makePresence(QStringLiteral("dnd"), QStringLiteral("Busy again")) });
    VeskPresenceFilter filter;
    configure(filter,
        { { conditionId, QStringLiteral("is not") },
            { valueFieldOf(QStringLiteral("presence")), QStringLiteral("away") } });
    QCOMPARE(describe(filter.getConfiguration()) + QLatin1Char('/') + filter.display(),
        QStringLiteral(
            "is_or_not=[is,is not|is,is not] is not; presence_filter_presence="
            "[online,away,dnd,Online|Online,Away,Busy,ONLINE] away/presence is not Away"));
}

void tst_LeafFilters::itemsAreDistinct_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("accounts"); // uid@protocol ..., split at the first "@"
    QTest::addColumn<QString>("expected");
    QTest::newRow("two accounts of one identity give one account item")
        << QStringLiteral("account") << QStringLiteral("a@x a@x") << QStringLiteral("a@x");
    QTest::newRow("one uid on two protocols gives two account items")
        << QStringLiteral("account") << QStringLiteral("a@x a@y") << QStringLiteral("a@x,a@y");
    QTest::newRow("three accounts on two protocols give two protocol items")
        << QStringLiteral("protocol") << QStringLiteral("a@x b@x c@y") << QStringLiteral("x,y");
    QTest::newRow("groups are listed as the roster names them")
        << QStringLiteral("group") << QStringLiteral("") << QStringLiteral("Friends,Work,Friends");
}

void tst_LeafFilters::itemsAreDistinct()
{
    QFETCH(QString, kind);
    QFETCH(QString, accounts);
    VeskStandIn::resetRoster();
    for (const QString &account : accounts.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        VeskStandIn::addAccount(
            account.section(QLatin1Char('@'), 0, 0), account.section(QLatin1Char('@'), 1));
    for (const char *group : { "Friends", "Work", "Friends" })
        VeskStandIn::addGroup(QLatin1String(group), 0);
    const auto filter = makeFilter(kind);
    configure(*filter, { { valueFieldOf(kind), QStringLiteral("gone") } });
    const VeskField items = filter->getConfiguration().at(1);
    QCOMPARE(items.getComboBoxLabels(), items.getComboBoxIds());
    // A value no account offers any more stays chosen.
    QCOMPARE(items.getSelectedId(), QStringLiteral("gone"));
    QStringList ids = items.getComboBoxIds();
    if (kind != QLatin1String("group"))
        std::sort(ids.begin(), ids.end());
    QTEST(ids.join(QLatin1Char(',')), "expected");
}

QTEST_GUILESS_MAIN(tst_LeafFilters)
#include "tst_leaffilters.moc"
