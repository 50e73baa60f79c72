// The four comparators' sign tables.

#include "sortersfixture.h"

#include <veskrostersorterbychatscount.h>
#include <veskrostersorterbyname.h>
#include <veskrostersorterbypresence.h>
#include <veskrostersorterbypresencepriority.h>

#include <QtTest>

#include <limits>
#include <memory>

using namespace SortersFixture;

namespace {

constexpr int IntMax = std::numeric_limits<int>::max();
constexpr int IntMin = std::numeric_limits<int>::min();

void row(const char *comparator, const char *a, const char *b, int expected)
{
    QTest::addRow("%s: %s against %s", comparator, a, b)
        << QString::fromUtf8(comparator) << QString::fromUtf8(a) << QString::fromUtf8(b)
        << expected;
}

std::unique_ptr<VeskRosterSorter> comparator(const QString &id)
{
    if (id == QLatin1String("name"))
        return std::make_unique<VeskRosterSorterByName>();
    if (id == QLatin1String("chats count"))
        return std::make_unique<VeskRosterSorterByChatsCount>();
    if (id == QLatin1String("presence priority"))
        return std::make_unique<VeskRosterSorterByPresencePriority>();
    return std::make_unique<VeskRosterSorterByPresence>();
}

} // namespace

class tst_Sorters : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { VeskStandIn::resetRoster(); }

    void comparatorGivesItsSign_data();
    void comparatorGivesItsSign();
    void byNameAgreesWithLoweredLocaleAwareCompareForAnyText();

private:
    QHash<QString, VeskBuddy> roster;
};

void tst_Sorters::init()
{
    VeskStandIn::resetRoster();
    using VeskStandIn::addGroup;
    const auto text = [](const char *display, int type, const QVariant &value) {
        return contact(display, 0, 0, 0, VeskStandIn::makeArg(type, value));
    };
    roster = {
        { QStringLiteral("group at 3"), addGroup(QStringLiteral("Friends"), 3) },
        { QStringLiteral("group at 5"), addGroup(QStringLiteral("Alpha"), 5) },
        { QStringLiteral("other group at 3"), addGroup(QStringLiteral("Zoo"), 3) },
        { QStringLiteral("group at -1"), addGroup(QStringLiteral("Ahead"), -1) },
        { QStringLiteral("Work at 0"), addGroup(QStringLiteral("Work"), 0) },
        { QStringLiteral("family at 0"), addGroup(QStringLiteral("family"), 0) },
        { QStringLiteral("Alice"), contact("Alice") },
        { QStringLiteral("aLICE"), contact("aLICE") },
        { QStringLiteral("Bob"), contact("Bob") },
        { QStringLiteral("Zoë"), contact("Zoë") },
        { QStringLiteral("zOË"), contact("zOË") },
        { QStringLiteral("temporary Carol"), contact("Carol", 0, 0, 0, {}, true) },
        { QStringLiteral("kind 7"), VeskStandIn::addEntry(7, QStringLiteral("Dave")) },
        { QStringLiteral("7 chats"), withChats("a", 7) },
        { QStringLiteral("3 chats"), withChats("b", 3) },
        { QStringLiteral("no chats"), contact("c") },
        { QStringLiteral("chats as text 7"), text("d", VeskArg::TypeString, QStringLiteral("7")) },
        { QStringLiteral("chats as double 7"), text("e", VeskArg::TypeDouble, 7.0) },
        { QStringLiteral("most chats"), withChats("f", IntMax) },
        { QStringLiteral("fewest chats"), withChats("g", IntMin) },
        { QStringLiteral("priority 10"), contact("h", 0, 10) },
        { QStringLiteral("priority 20"), contact("i", 0, 20) },
        { QStringLiteral("temporary priority 30"), contact("j", 0, 30, 0, {}, true) },
        { QStringLiteral("highest priority"), contact("k", 0, IntMax) },
        { QStringLiteral("lowest priority"), contact("l", 0, IntMin) },
        { QStringLiteral("flag 5 sub 1"), contact("m", 5, 50, 1) },
        { QStringLiteral("flag 5 sub 1 priority 0"), contact("n", 5, 0, 1) },
        { QStringLiteral("flag 5 sub 4"), contact("o", 5, 0, 4) },
        { QStringLiteral("flag 2 sub 2"), contact("p", 2, 0, 2) },
        { QStringLiteral("flag 2 sub 9"), contact("q", 2, 90, 9) },
        { QStringLiteral("temporary flag 1"), contact("r", 1, 0, 0, {}, true) },
        { QStringLiteral("temporary flag 5"), contact("s", 5, 0, 0, {}, true) },
        { QStringLiteral("sub -3"), contact("t", 0, 0, -3) },
    };
}

void tst_Sorters::comparatorGivesItsSign_data()
{
    QTest::addColumn<QString>("comparator");
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("expected");
    // Only the sign of a name comparison is defined: a lower group position
    // gives 0, a higher one 1; groups at 0 and everything else go by text.
    row("name", "group at 3", "group at 5", 0);
    row("name", "group at 5", "group at 3", 1);
    row("name", "group at 3", "other group at 3", 0);
    row("name", "group at -1", "Work at 0", 0);
    row("name", "Work at 0", "group at -1", 1);
    row("name", "Work at 0", "family at 0", 1);
    row("name", "family at 0", "Work at 0", -1);
    row("name", "group at 5", "Bob", -1);
    row("name", "Bob", "Alice", 1);
    row("name", "Alice", "aLICE", 0);
    row("name", "Zoë", "zOË", 0);
    row("name", "temporary Carol", "Bob", 1);
    row("name", "kind 7", "temporary Carol", 1);
    row("chats count", "7 chats", "no chats", -7);
    row("chats count", "3 chats", "7 chats", 4);
    row("chats count", "chats as text 7", "7 chats", 7);
    row("chats count", "7 chats", "chats as double 7", -7);
    row("chats count", "group at 5", "3 chats", 3);
    row("chats count", "3 chats", "temporary Carol", -3);
    row("chats count", "fewest chats", "most chats", IntMax);
    row("chats count", "most chats", "fewest chats", IntMin);
    row("presence priority", "priority 10", "priority 20", 10);
    row("presence priority", "temporary priority 30", "priority 10", -20);
    row("presence priority", "group at 5", "priority 20", 0);
    row("presence priority", "priority 20", "kind 7", 0);
    row("presence priority", "lowest priority", "highest priority", IntMax);
    row("presence", "flag 5 sub 1", "flag 2 sub 9", 1);
    row("presence", "flag 2 sub 9", "flag 5 sub 1", -1);
    row("presence", "flag 5 sub 1", "flag 5 sub 1 priority 0", 0);
    row("presence", "flag 5 sub 1", "flag 5 sub 4", 3);
    row("presence", "flag 2 sub 9", "flag 2 sub 2", -7);
    row("presence", "temporary flag 1", "flag 2 sub 2", 2);
    row("presence", "sub -3", "temporary flag 1", 3);
    row("presence", "temporary flag 5", "flag 2 sub 2", 1);
    row("presence", "group at 5", "flag 5 sub 1", 0);
    row("presence", "flag 5 sub 1", "group at 5", 0);
}

void tst_Sorters::comparatorGivesItsSign()
{
    QFETCH(QString, comparator);
    QFETCH(QString, a);
    QFETCH(QString, b);
    // A typo in a row must not pass as a default-constructed entry.
    QVERIFY(roster.contains(a) && roster.contains(b));
    int value = ::comparator(comparator)->lessThan(roster.value(a), roster.value(b));
    if (comparator == QLatin1String("name"))
        value = (value > 0) - (value < 0);
    QTEST(value, "expected");
}

// The comparator lowers texts itself, code point by code point; every answer
// must still be the one toLower() and localeAwareCompare() give.
void tst_Sorters::byNameAgreesWithLoweredLocaleAwareCompareForAnyText()
{
    QStringList texts { QString(), QString(QChar(0xD800)) + QLatin1Char('x'),
        QString(QChar(0xDC00)) + QChar(0xD801), QStringLiteral("Ab") + QChar(0xD801),
        QStringLiteral("a") + QChar(0) + QLatin1Char('b') };
    for (const char *text :
        { "Zed", "zED", "[Zed]", "@home", "`tick", "_under", "A_", "a^", "ABC 1", "abc 1", "abc",
            "Émile", "émile", "Emile", "İstanbul", "istanbul", "STRASSE", "straße", "\u212B",
            "\u00E5", "\U00010400x", "\U00010428x", "ΣΑΣ", "σας", "\u01C5", "\u01C6", "ÀÉÎ\u0130" })
        texts << QString::fromUtf8(text);
    QList<VeskBuddy> entries;
    for (const QString &text : qAsConst(texts)) {
        VeskStandIn::ContactInfo info;
        info.display = text;
        entries << VeskStandIn::addContact(info);
    }

    const VeskRosterSorterByName sorter;
    const auto sign = [](int v) {
        return (v > 0) - (v < 0);
    };
    QStringList mismatches;
    for (int i = 0; i < texts.size(); ++i) {
        for (int j = 0; j < texts.size(); ++j) {
            if (sign(sorter.lessThan(entries.at(i), entries.at(j)))
                != sign(QString::localeAwareCompare(texts.at(i).toLower(), texts.at(j).toLower())))
                mismatches << texts.at(i) + QLatin1String(" / ") + texts.at(j);
        }
    }
    QCOMPARE(mismatches, QStringList());
}

QTEST_GUILESS_MAIN(tst_Sorters)
#include "tst_sorters.moc"
