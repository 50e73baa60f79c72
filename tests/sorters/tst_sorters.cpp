// The four comparators' sign tables.

#include "sortersfixture.h"

#include <veskrostersorterbychatscount.h>
#include <veskrostersorterbyname.h>
#include <veskrostersorterbypresence.h>
#include <veskrostersorterbypresencepriority.h>

#include <QtTest>

#include <limits>

using namespace SortersFixture;

namespace {
constexpr int IntMax = std::numeric_limits<int>::max();
constexpr int IntMin = std::numeric_limits<int>::min();
} // namespace

class tst_Sorters : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { VeskStandIn::resetRoster(); }

    void byNameOrdersPositionedGroupsThenCaseFoldedTexts_data();
    void byNameOrdersPositionedGroupsThenCaseFoldedTexts();
    void byNameAgreesWithLoweredLocaleAwareCompareForAnyText();
    void byChatsCountIsPositiveWhenTheSecondHasMoreChats_data();
    void byChatsCountIsPositiveWhenTheSecondHasMoreChats();
    void byPresencePriorityIsPositiveWhenTheSecondRanksHigher_data();
    void byPresencePriorityIsPositiveWhenTheSecondRanksHigher();
    void byPresenceSetsFlagFiveApartThenRanksSubscriptions_data();
    void byPresenceSetsFlagFiveApartThenRanksSubscriptions();

private:
    void addRows(const QList<std::tuple<const char *, QString, QString, int>> &rows);
    int compare(const VeskRosterSorter &sorter) const;

    QHash<QString, VeskBuddy> roster;
};

void tst_Sorters::init()
{
    VeskStandIn::resetRoster();
    roster.clear();
    const auto add = [this](const char *key, const VeskBuddy &buddy) {
        roster.insert(QString::fromUtf8(key), buddy);
    };
    add("group Friends at 3", VeskStandIn::addGroup(QStringLiteral("Friends"), 3));
    add("group Alpha at 5", VeskStandIn::addGroup(QStringLiteral("Alpha"), 5));
    add("group Zoo at 3", VeskStandIn::addGroup(QStringLiteral("Zoo"), 3));
    add("group Ahead at -1", VeskStandIn::addGroup(QStringLiteral("Ahead"), -1));
    add("group Work at 0", VeskStandIn::addGroup(QStringLiteral("Work"), 0));
    add("group family at 0", VeskStandIn::addGroup(QStringLiteral("family"), 0));
    add("Alice", contact({ QStringLiteral("Alice") }));
    add("aLICE", contact({ QStringLiteral("aLICE") }));
    add("Bob", contact({ QStringLiteral("Bob") }));
    add("Zoë", contact({ QStringLiteral("Zoë") }));
    add("zOË", contact({ QStringLiteral("zOË") }));
    add("temporary Carol", temporary({ QStringLiteral("Carol") }));
    add("entry of kind 7", VeskStandIn::addEntry(7, QStringLiteral("Dave")));

    add("7 chats", contactWithChats(QStringLiteral("a"), VeskStandIn::makeIntArg(7)));
    add("3 chats", contactWithChats(QStringLiteral("b"), VeskStandIn::makeIntArg(3)));
    add("no chats attribute", contact({ QStringLiteral("c") }));
    add("chats as text 7",
        contactWithChats(
            QStringLiteral("d"), VeskStandIn::makeArg(VeskArg::TypeString, QStringLiteral("7"))));
    add("chats as double 7",
        contactWithChats(QStringLiteral("e"), VeskStandIn::makeArg(VeskArg::TypeDouble, 7.0)));
    add("most chats", contactWithChats(QStringLiteral("f"), VeskStandIn::makeIntArg(IntMax)));
    add("fewest chats", contactWithChats(QStringLiteral("g"), VeskStandIn::makeIntArg(IntMin)));

    add("priority 10", contact({ QStringLiteral("h"), 0, 10 }));
    add("priority 20", contact({ QStringLiteral("i"), 0, 20 }));
    add("temporary priority 30", temporary({ QStringLiteral("j"), 0, 30 }));
    add("highest priority", contact({ QStringLiteral("k"), 0, IntMax }));
    add("lowest priority", contact({ QStringLiteral("l"), 0, IntMin }));

    add("flag 5 subscription 1", contact({ QStringLiteral("m"), 5, 50, 1 }));
    add("flag 5 subscription 1 priority 0", contact({ QStringLiteral("n"), 5, 0, 1 }));
    add("flag 5 subscription 4", contact({ QStringLiteral("o"), 5, 0, 4 }));
    add("flag 2 subscription 2", contact({ QStringLiteral("p"), 2, 0, 2 }));
    add("flag 2 subscription 9", contact({ QStringLiteral("q"), 2, 90, 9 }));
    add("temporary flag 1", temporary({ QStringLiteral("r"), 1 }));
    add("temporary flag 5", temporary({ QStringLiteral("s"), 5 }));
    add("subscription -3", contact({ QStringLiteral("t"), 0, 0, -3 }));
}

void tst_Sorters::addRows(const QList<std::tuple<const char *, QString, QString, int>> &rows)
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("expected");
    for (const auto &[name, a, b, expected] : rows)
        QTest::newRow(name) << a << b << expected;
}

int tst_Sorters::compare(const VeskRosterSorter &sorter) const
{
    QFETCH(QString, a);
    QFETCH(QString, b);
    // A typo in a row must not pass as a default-constructed entry.
    if (!roster.contains(a) || !roster.contains(b))
        qFatal("unknown roster entry in test data");
    return sorter.lessThan(roster.value(a), roster.value(b));
}

// Only the sign of a name comparison is defined; the position rule gives 1.
void tst_Sorters::byNameOrdersPositionedGroupsThenCaseFoldedTexts_data()
{
    const QString g3 = QStringLiteral("group Friends at 3");
    const QString g5 = QStringLiteral("group Alpha at 5");
    const QString work = QStringLiteral("group Work at 0");
    const QString family = QStringLiteral("group family at 0");
    addRows({
        { "groups at 3 and 5: a lower position is 0, not negative", g3, g5, 0 },
        { "groups at 5 and 3: the higher position sorts after", g5, g3, 1 },
        { "groups at equal positions: 0 whatever their names", g3, QStringLiteral("group Zoo at 3"),
            0 },
        { "a negative position against 0 is still 0", QStringLiteral("group Ahead at -1"), work,
            0 },
        { "0 against a negative position sorts after", work, QStringLiteral("group Ahead at -1"),
            1 },
        { "groups at 0: Work after family", work, family, 1 },
        { "groups at 0: family before Work", family, work, -1 },
        { "a positioned group against a contact by text", g5, QStringLiteral("Bob"), -1 },
        { "a contact against a positioned group by text", QStringLiteral("Bob"), g5, 1 },
        { "contacts in order", QStringLiteral("Alice"), QStringLiteral("Bob"), -1 },
        { "contacts out of order", QStringLiteral("Bob"), QStringLiteral("Alice"), 1 },
        { "names differing only in case", QStringLiteral("Alice"), QStringLiteral("aLICE"), 0 },
        { "non-ASCII names differing only in case", QStringLiteral("Zoë"), QStringLiteral("zOË"),
            0 },
        { "the same entry", QStringLiteral("Bob"), QStringLiteral("Bob"), 0 },
        { "a temporary contact by its text", QStringLiteral("temporary Carol"),
            QStringLiteral("Bob"), 1 },
        { "an entry of another kind by its text", QStringLiteral("entry of kind 7"),
            QStringLiteral("temporary Carol"), 1 },
    });
}

void tst_Sorters::byNameOrdersPositionedGroupsThenCaseFoldedTexts()
{
    QFETCH(int, expected);
    const int value = compare(VeskRosterSorterByName());
    QCOMPARE((value > 0) - (value < 0), expected);
}

// The comparator lowers ASCII texts itself; every answer must still be the
// one toLower() and localeAwareCompare() give.
void tst_Sorters::byNameAgreesWithLoweredLocaleAwareCompareForAnyText()
{
    const QStringList texts {
        QString(),
        QStringLiteral("Zed"),
        QStringLiteral("zED"),
        QStringLiteral("[Zed]"),
        QStringLiteral("@home"),
        QStringLiteral("`tick"),
        QStringLiteral("_under"),
        QStringLiteral("A_"),
        QStringLiteral("a^"),
        QStringLiteral("ABC 1"),
        QStringLiteral("abc 1"),
        QStringLiteral("abc"),
        QStringLiteral("Émile"),
        QStringLiteral("émile"),
        QStringLiteral("Emile"),
        QStringLiteral("İstanbul"),
        QStringLiteral("istanbul"),
        QStringLiteral("STRASSE"),
        QStringLiteral("straße"),
        QString::fromUtf16(u"\u212B"), // ANGSTROM SIGN lowers to U+00E5
        QString::fromUtf16(u"\u00E5"),
        QString(QChar(0xD800)) + QStringLiteral("x"),
        QStringLiteral("a") + QChar(0) + QStringLiteral("b"),
    };
    QList<VeskBuddy> entries;
    for (const QString &text : texts)
        entries << contact({ text });

    const VeskRosterSorterByName sorter;
    const auto sign = [](int v) {
        return (v > 0) - (v < 0);
    };
    QStringList mismatches;
    for (int i = 0; i < texts.size(); ++i) {
        for (int j = 0; j < texts.size(); ++j) {
            const int expected
                = sign(QString::localeAwareCompare(texts.at(i).toLower(), texts.at(j).toLower()));
            if (sign(sorter.lessThan(entries.at(i), entries.at(j))) != expected)
                mismatches << texts.at(i) + QLatin1String(" / ") + texts.at(j);
        }
    }
    QCOMPARE(mismatches, QStringList());
}

void tst_Sorters::byChatsCountIsPositiveWhenTheSecondHasMoreChats_data()
{
    const QString seven = QStringLiteral("7 chats");
    addRows({
        { "7 chats against a missing attribute", seven, QStringLiteral("no chats attribute"), -7 },
        { "a missing attribute against 7 chats", QStringLiteral("no chats attribute"), seven, 7 },
        { "3 chats against 7", QStringLiteral("3 chats"), seven, 4 },
        { "a text attribute counts 0", QStringLiteral("chats as text 7"), seven, 7 },
        { "a double attribute counts 0", seven, QStringLiteral("chats as double 7"), -7 },
        { "a group counts 0", QStringLiteral("group Alpha at 5"), QStringLiteral("3 chats"), 3 },
        { "a temporary contact counts 0", QStringLiteral("3 chats"),
            QStringLiteral("temporary Carol"), -3 },
        { "equal counts", seven, seven, 0 },
        { "extreme counts keep their sign", QStringLiteral("fewest chats"),
            QStringLiteral("most chats"), IntMax },
        { "extreme counts reversed keep their sign", QStringLiteral("most chats"),
            QStringLiteral("fewest chats"), IntMin },
    });
}

void tst_Sorters::byChatsCountIsPositiveWhenTheSecondHasMoreChats()
{
    QFETCH(int, expected);
    QCOMPARE(compare(VeskRosterSorterByChatsCount()), expected);
}

void tst_Sorters::byPresencePriorityIsPositiveWhenTheSecondRanksHigher_data()
{
    const QString p10 = QStringLiteral("priority 10");
    const QString p20 = QStringLiteral("priority 20");
    addRows({
        { "10 against 20", p10, p20, 10 },
        { "20 against 10", p20, p10, -10 },
        { "a temporary contact's presence counts", QStringLiteral("temporary priority 30"), p10,
            -20 },
        { "a group against a contact", QStringLiteral("group Alpha at 5"), p20, 0 },
        { "a contact against a group", p20, QStringLiteral("group Alpha at 5"), 0 },
        { "an entry of another kind", QStringLiteral("entry of kind 7"), p20, 0 },
        { "extreme priorities keep their sign", QStringLiteral("lowest priority"),
            QStringLiteral("highest priority"), IntMax },
    });
}

void tst_Sorters::byPresencePriorityIsPositiveWhenTheSecondRanksHigher()
{
    QFETCH(int, expected);
    QCOMPARE(compare(VeskRosterSorterByPresencePriority()), expected);
}

void tst_Sorters::byPresenceSetsFlagFiveApartThenRanksSubscriptions_data()
{
    const QString five1 = QStringLiteral("flag 5 subscription 1");
    const QString two2 = QStringLiteral("flag 2 subscription 2");
    const QString two9 = QStringLiteral("flag 2 subscription 9");
    addRows({
        { "flag 5 against another flag", five1, two9, 1 },
        { "another flag against flag 5", two9, five1, -1 },
        { "both flag 5, equal subscriptions, other priorities", five1,
            QStringLiteral("flag 5 subscription 1 priority 0"), 0 },
        { "both flag 5, rising subscriptions", five1, QStringLiteral("flag 5 subscription 4"), 3 },
        { "neither flag 5, falling subscriptions", two9, two2, -7 },
        { "a temporary contact against a contact", QStringLiteral("temporary flag 1"), two2, 2 },
        { "a contact against a temporary contact", two2, QStringLiteral("temporary flag 1"), -2 },
        { "a negative subscription against a temporary contact's 0",
            QStringLiteral("subscription -3"), QStringLiteral("temporary flag 1"), 3 },
        { "a temporary contact with flag 5", QStringLiteral("temporary flag 5"), two2, 1 },
        { "a group against a contact", QStringLiteral("group Alpha at 5"), five1, 0 },
        { "a contact against a group", five1, QStringLiteral("group Alpha at 5"), 0 },
    });
}

void tst_Sorters::byPresenceSetsFlagFiveApartThenRanksSubscriptions()
{
    QFETCH(int, expected);
    QCOMPARE(compare(VeskRosterSorterByPresence()), expected);
}

QTEST_GUILESS_MAIN(tst_Sorters)
#include "tst_sorters.moc"
