// The group, account and protocol filters: which entries "is" and "is not"
// pass, what a new filter passes, the items they offer, and how configuration
// is walked.

#include "kindsfixture.h"

#include <veskaccountfilter.h>
#include <veskgroupfilter.h>
#include <veskprotocolfilter.h>

#include <QtTest>

#include <algorithm>
#include <memory>

namespace {

std::unique_ptr<VeskRosterFilter> makeFilter(const QString &kind)
{
    if (kind == QLatin1String("group"))
        return std::make_unique<VeskGroupFilter>();
    if (kind == QLatin1String("account"))
        return std::make_unique<VeskAccountFilter>();
    return std::make_unique<VeskProtocolFilter>();
}

QString valueFieldOf(const QString &kind)
{
    return kind + QLatin1String("_filter_presence");
}

const QString conditionId = QStringLiteral("is_or_not");

} // namespace

class tst_ChoiceFilters : public QObject
{
    Q_OBJECT

private slots:
    void init() { entries = buildRoster(); }
    void cleanup() { VeskStandIn::resetRoster(); }

    void conditionPassesEntries_data();
    void conditionPassesEntries();
    void newFilterPassesEntriesOfAnEmptyValue_data();
    void newFilterPassesEntriesOfAnEmptyValue();
    void anyFieldButTheConditionCarriesTheValue_data();
    void anyFieldButTheConditionCarriesTheValue();
    void emptyFieldListChangesNothing_data();
    void emptyFieldListChangesNothing();
    void accountItemsAreDistinct_data();
    void accountItemsAreDistinct();
    void groupItemsAreTheRostersGroupsAsTheyCome();

private:
    QList<LabelledEntry> entries;
};

void tst_ChoiceFilters::conditionPassesEntries_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("display");

    const QString group = QStringLiteral("group");
    QTest::newRow("group is Friends") << group << "is"
                                      << "Friends"
                                      << "contact"
                                      << "is Friends";
    QTest::newRow("group is Work") << group << "is"
                                   << "Work"
                                   << "temporary, no account"
                                   << "is Work";
    QTest::newRow("group is the empty name") << group << "is"
                                             << ""
                                             << "group, invalid, bare"
                                             << "is ";
    QTest::newRow("group is compared case-sensitively") << group << "is"
                                                        << "friends"
                                                        << ""
                                                        << "is friends";
    QTest::newRow("group is not Friends") << group << "is not"
                                          << "Friends"
                                          << "temporary, group, invalid, no account, bare"
                                          << "is not Friends";
    QTest::newRow("group is not the empty name") << group << "is not"
                                                 << ""
                                                 << "contact, temporary, no account"
                                                 << "is not ";

    const QString account = QStringLiteral("account");
    QTest::newRow("account is alice@home@jabber") << account << "is"
                                                  << "alice@home@jabber"
                                                  << "contact"
                                                  << "account is alice@home@jabber";
    QTest::newRow("account is bob@icq") << account << "is"
                                        << "bob@icq"
                                        << "temporary"
                                        << "account is bob@icq";
    QTest::newRow("account on a protocol without a name") << account << "is"
                                                          << "carol@"
                                                          << "bare"
                                                          << "account is carol@";
    QTest::newRow("account identity lacking the protocol") << account << "is"
                                                           << "alice@home"
                                                           << ""
                                                           << "account is alice@home";
    QTest::newRow("account identity of the right length with another separator")
        << account << "is"
        << "alice@home#jabber"
        << ""
        << "account is alice@home#jabber";
    QTest::newRow("account identity with another last letter") << account << "is"
                                                               << "alice@home@jabbex"
                                                               << ""
                                                               << "account is alice@home@jabbex";
    QTest::newRow("account identity is case-sensitive") << account << "is"
                                                        << "Alice@home@jabber"
                                                        << ""
                                                        << "account is Alice@home@jabber";
    QTest::newRow("account is the empty identity") << account << "is"
                                                   << ""
                                                   << ""
                                                   << "account is ";
    QTest::newRow("account is not alice@home@jabber")
        << account << "is not"
        << "alice@home@jabber"
        << "temporary, group, invalid, no account, bare"
        << "account is not alice@home@jabber";
    QTest::newRow("account is not the empty identity")
        << account << "is not"
        << ""
        << "contact, temporary, group, invalid, no account, bare"
        << "account is not ";

    const QString protocol = QStringLiteral("protocol");
    QTest::newRow("protocol is jabber") << protocol << "is"
                                        << "jabber"
                                        << "contact"
                                        << "protocol is jabber";
    QTest::newRow("protocol is icq") << protocol << "is"
                                     << "icq"
                                     << "temporary"
                                     << "protocol is icq";
    QTest::newRow("protocol is the empty name") << protocol << "is"
                                                << ""
                                                << "bare"
                                                << "protocol is ";
    QTest::newRow("protocol is compared case-sensitively") << protocol << "is"
                                                           << "Jabber"
                                                           << ""
                                                           << "protocol is Jabber";
    QTest::newRow("protocol is not jabber") << protocol << "is not"
                                            << "jabber"
                                            << "temporary, group, invalid, no account, bare"
                                            << "protocol is not jabber";
    QTest::newRow("protocol is not the empty name")
        << protocol << "is not"
        << ""
        << "contact, temporary, group, invalid, no account"
        << "protocol is not ";
}

void tst_ChoiceFilters::conditionPassesEntries()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, value);
    QFETCH(QString, expected);
    QFETCH(QString, display);

    const auto filter = makeFilter(kind);
    configure(*filter, { { conditionId, condition }, { valueFieldOf(kind), value } });
    QCOMPARE(passing(*filter, entries), expected);
    QCOMPARE(filter->display(), display);
}

void tst_ChoiceFilters::newFilterPassesEntriesOfAnEmptyValue_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("display");

    QTest::newRow("group: groups, invalid entries and contacts outside groups")
        << "group"
        << "group, invalid, bare"
        << " ";
    // Every identity holds at least the "@".
    QTest::newRow("account: nothing") << "account"
                                      << ""
                                      << "account  ";
    QTest::newRow("protocol: contacts of an unnamed protocol") << "protocol"
                                                               << "bare"
                                                               << "protocol  ";
}

void tst_ChoiceFilters::newFilterPassesEntriesOfAnEmptyValue()
{
    QFETCH(QString, kind);
    QFETCH(QString, expected);
    QFETCH(QString, display);

    const auto filter = makeFilter(kind);
    QCOMPARE(passing(*filter, entries), expected);
    QCOMPARE(filter->display(), display);
    QCOMPARE(filter->getConfiguration().at(0).getSelectedId(), QStringLiteral("is"));
}

void tst_ChoiceFilters::anyFieldButTheConditionCarriesTheValue_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");

    QTest::newRow("group") << "group"
                           << "Work"
                           << "contact, group, invalid, bare";
    QTest::newRow("account") << "account"
                             << "bob@icq"
                             << "contact, group, invalid, no account, bare";
    QTest::newRow("protocol") << "protocol"
                              << "icq"
                              << "contact, group, invalid, no account, bare";
}

void tst_ChoiceFilters::anyFieldButTheConditionCarriesTheValue()
{
    QFETCH(QString, kind);
    QFETCH(QString, value);
    QFETCH(QString, expected);

    const auto filter = makeFilter(kind);
    const QStringList conditions { QStringLiteral("is"), QStringLiteral("is not") };
    const QStringList labels { QStringLiteral("IS"), QStringLiteral("NOT") };
    auto choice = [](const QString &id, const QString &selected) {
        return VeskField::comboBox(QString(), id, {}, {}, selected, QString());
    };
    filter->setConfiguration({
        choice(valueFieldOf(kind), QStringLiteral("Friends")),
        VeskField::comboBox(
            QString(), conditionId, conditions, labels, conditions.at(0), QString()),
        choice(QStringLiteral("anything"), value),
        // Only exactly "is" means "is"; its label is what the field shows.
        VeskField::comboBox(
            QString(), conditionId, conditions, labels, QStringLiteral("IS"), QString()),
    });
    QCOMPARE(passing(*filter, entries), expected);
    QVERIFY2(filter->display().endsWith(QLatin1Char(' ') + value), qPrintable(filter->display()));
}

void tst_ChoiceFilters::emptyFieldListChangesNothing_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("value");
    QTest::newRow("group") << "group"
                           << "Friends";
    QTest::newRow("account") << "account"
                             << "bob@icq";
    QTest::newRow("protocol") << "protocol"
                              << "icq";
}

void tst_ChoiceFilters::emptyFieldListChangesNothing()
{
    QFETCH(QString, kind);
    QFETCH(QString, value);

    const auto filter = makeFilter(kind);
    configure(
        *filter, { { conditionId, QStringLiteral("is not") }, { valueFieldOf(kind), value } });
    const auto state = [&] {
        return QStringList { passing(*filter, entries), filter->display(),
            describe(filter->getConfiguration()) };
    };
    const QStringList before = state();
    filter->setConfiguration({});
    QCOMPARE(state(), before);
}

void tst_ChoiceFilters::accountItemsAreDistinct_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("accounts"); // uid@protocol ..., split at the first "@"
    QTest::addColumn<QString>("expected");

    QTest::newRow("two accounts of one identity give one account item") << "account"
                                                                        << "a@x a@x"
                                                                        << "a@x";
    QTest::newRow("one uid on two protocols gives two account items") << "account"
                                                                      << "a@x a@y"
                                                                      << "a@x,a@y";
    QTest::newRow("no account, no account items") << "account"
                                                  << ""
                                                  << "";
    QTest::newRow("three accounts on two protocols give two protocol items") << "protocol"
                                                                             << "a@x b@x c@y"
                                                                             << "x,y";
    QTest::newRow("no account, no protocol items") << "protocol"
                                                   << ""
                                                   << "";
}

void tst_ChoiceFilters::accountItemsAreDistinct()
{
    QFETCH(QString, kind);
    QFETCH(QString, accounts);
    QFETCH(QString, expected);

    VeskStandIn::resetRoster();
    const QStringList list = accounts.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &account : list)
        VeskStandIn::addAccount(
            account.section(QLatin1Char('@'), 0, 0), account.section(QLatin1Char('@'), 1));
    const auto filter = makeFilter(kind);
    configure(*filter, { { valueFieldOf(kind), QStringLiteral("gone") } });

    const VeskField items = filter->getConfiguration().at(1);
    QCOMPARE(items.getId(), valueFieldOf(kind));
    QCOMPARE(items.getComboBoxLabels(), items.getComboBoxIds());
    QStringList ids = items.getComboBoxIds();
    std::sort(ids.begin(), ids.end());
    QCOMPARE(ids.join(QLatin1Char(',')), expected);
    // A value no account offers any more stays chosen.
    QCOMPARE(items.getSelectedId(), QStringLiteral("gone"));
}

void tst_ChoiceFilters::groupItemsAreTheRostersGroupsAsTheyCome()
{
    VeskStandIn::addGroup(QStringLiteral("Friends"), 3);
    VeskGroupFilter filter;
    configure(filter, { { conditionId, QStringLiteral("is not") } });
    QCOMPARE(describe(filter.getConfiguration()),
        QStringLiteral("is_or_not=[is,is not|is,is not] is not; "
                       "group_filter_presence=[Friends,Work,Friends|Friends,Work,Friends] "));
}

QTEST_GUILESS_MAIN(tst_ChoiceFilters)
#include "tst_choicefilters.moc"
