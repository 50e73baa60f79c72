// The quick search (folding, its two scopes, the empty search) and the
// whole-roster call against filter() entry by entry.

#include "veskfiltertestenv.h"
#include "veskfiltertree.h"
#include "veskseedrows.h"

#include <rosterfile.h>
#include <veskrosterquicksearch.h>

#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>

namespace {

// A filter of a class the library does not know: passes by the parity of the
// display name's length, so that its answers differ between entries.
class HostFilter : public VeskRosterFilter
{
public:
    RosterFilterType getType() const override { return RosterFilterLeaf; }
    QString id() const override { return QStringLiteral("host"); }
    QString name() const override { return id(); }
    QString display() const override { return id(); }
    bool filter(const VeskBuddy &buddy) const override { return buddy.getDisplay().size() % 2; }
};

void configureRandomly(VeskRosterFilter *leaf, QRandomGenerator &random)
{
    static const QStringList texts = { QString(), QStringLiteral("a"), QStringLiteral("an"),
        QStringLiteral("Work"), QStringLiteral("online"), QStringLiteral("e") };
    QList<VeskField> fields = leaf->getConfiguration();
    for (VeskField &field : fields) {
        const QStringList ids = field.getComboBoxIds();
        if (field.getKind() == VeskField::ComboBox && !ids.isEmpty())
            field.setSelectedId(ids.at(random.bounded(int(ids.size()))));
        else if (field.getKind() == VeskField::LineEdit)
            field.setText(texts.at(random.bounded(int(texts.size()))));
    }
    leaf->setConfiguration(fields);
}

VeskRosterFilter::RosterFilterType randomType(QRandomGenerator &random)
{
    return random.bounded(2) ? VeskRosterFilter::RosterFilterAnd : VeskRosterFilter::RosterFilterOr;
}

void fillRandomly(
    VeskRosterFiltersStack *stack, QRandomGenerator &random, int depth, bool hostFilters = true)
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    const QStringList kinds = manager->getAvailableFilters();
    const int children = 1 + random.bounded(3);
    for (int i = 0; i < children; ++i) {
        const int pick = random.bounded(8);
        if (depth < 2 && pick == 0) {
            VeskRosterFiltersStack *nested = VeskFilterTree::nested(randomType(random), {});
            fillRandomly(nested, random, depth + 1, hostFilters);
            stack->appendFilter(nested);
        } else if (pick == 1 && hostFilters) {
            stack->appendFilter(new HostFilter);
        } else {
            VeskRosterFilter *leaf = manager->createFilter(
                kinds.at(random.bounded(int(kinds.size()))), VeskRosterFilter::RosterFilterDefault);
            configureRandomly(leaf, random);
            stack->appendFilter(leaf);
        }
    }
}

QVector<VeskBuddy> allEntries()
{
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    return QVector<VeskBuddy>(entries.cbegin(), entries.cend());
}

QVector<int> oneByOne(const QVector<VeskBuddy> &entries, const VeskRosterQuickSearch *search)
{
    const VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    QVector<int> passing;
    for (int i = 0; i < entries.size(); ++i) {
        if (search ? manager->filter(entries.at(i), *search) : manager->filter(entries.at(i)))
            passing.append(i);
    }
    return passing;
}

QStringList names(const QVector<VeskBuddy> &entries, const QVector<int> &indices)
{
    QStringList list;
    for (const int i : indices)
        list.append(entries.at(i).getDisplay());
    return list;
}

// A small roster: two groups, accounts on two protocols, a temporary contact,
// an entry of an unknown kind.
void addRoster()
{
    VeskFilterTree::addPresences();
    VeskAccountConnection *work
        = VeskStandIn::addAccount(QStringLiteral("me@work.example"), QStringLiteral("xmpp"));
    VeskAccountConnection *home
        = VeskStandIn::addAccount(QStringLiteral("4711"), QStringLiteral("icq"));
    const VeskBuddy friends = VeskStandIn::addGroup(QStringLiteral("Friends"), 0);
    const VeskBuddy colleagues = VeskStandIn::addGroup(QStringLiteral("Kollegen"), 0);
    auto contact = [](const QString &name, const VeskBuddy &group, VeskAccountConnection *account,
                       const QString &presence, const QString &status) {
        VeskStandIn::ContactInfo info;
        info.display = name;
        info.group = group;
        info.account = account;
        info.presence = VeskStandIn::makePresence(presence, presence, status);
        return info;
    };
    VeskStandIn::addContact(
        contact(QStringLiteral("Renée"), friends, home, QStringLiteral("online"), QString()));
    VeskStandIn::addContact(contact(
        QStringLiteral("Bob"), friends, work, QStringLiteral("away"), QStringLiteral("Café")));
    VeskStandIn::addContact(
        contact(QStringLiteral("Jürgen"), colleagues, work, QStringLiteral("online"), QString()));
    VeskStandIn::addContact(
        contact(QStringLiteral("Ada"), colleagues, home, QStringLiteral("away"), QString()));
    VeskStandIn::addTemporary(contact(QStringLiteral("Stranger"), VeskBuddy(), nullptr,
        QStringLiteral("online"), QStringLiteral("renee's friend")));
    VeskStandIn::addEntry(7, QStringLiteral("Rene unknown kind"));
}

} // namespace

class tst_VeskRosterQuickSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void folding_data();
    void folding();
    void matchesEachPiece_data();
    void matchesEachPiece();
    void searchesCurrentFilterOrEveryEntry();
    void emptySearchIsTheFilterAlone_data();
    void emptySearchIsTheFilterAlone();
    void narrows_data();
    void narrows();
    void wholeRosterCallEqualsFilter_data();
    void wholeRosterCallEqualsFilter();
    void wholeRosterCallDisplayFirstEqualsFilter_data();
    void wholeRosterCallDisplayFirstEqualsFilter();
    void wholeRosterCallSharesGroupsCorrectly();
};

void tst_VeskRosterQuickSearch::folding_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("folded");
    // Latin
    QTest::newRow("capital and accent") << QStringLiteral("RENÉE") << QStringLiteral("renee");
    QTest::newRow("decomposed accent") << QStringLiteral("Rene\u0301e") << QStringLiteral("renee");
    QTest::newRow("umlaut") << QStringLiteral("Jürgen Öztürk") << QStringLiteral("jurgen ozturk");
    QTest::newRow("sharp s") << QStringLiteral("Straße") << QStringLiteral("strasse");
    QTest::newRow("capital sharp s") << QStringLiteral("STRA\u1E9EE") << QStringLiteral("strasse");
    QTest::newRow("Vietnamese, two marks") << QStringLiteral("Nguyễn") << QStringLiteral("nguyen");
    QTest::newRow("Polish stroke")
        << QStringLiteral("Łukasz Żółć") << QStringLiteral("lukasz zolc");
    QTest::newRow("Danish ø and æ") << QStringLiteral("Søren Ærø") << QStringLiteral("soren aero");
    QTest::newRow("French œ") << QStringLiteral("Œuvre") << QStringLiteral("oeuvre");
    QTest::newRow("Croatian đ") << QStringLiteral("Đurđa") << QStringLiteral("durda");
    QTest::newRow("Maltese ħ") << QStringLiteral("Ħal") << QStringLiteral("hal");
    // Turkish: dotless and dotted i all fold to i, whatever the locale
    QTest::newRow("dotless i") << QStringLiteral("Işıl") << QStringLiteral("isil");
    QTest::newRow("dotted capital I") << QStringLiteral("İstanbul") << QStringLiteral("istanbul");
    QTest::newRow("capital I") << QStringLiteral("ISIL") << QStringLiteral("isil");
    // Greek
    QTest::newRow("Greek tonos and case") << QStringLiteral("Άννα") << QStringLiteral("αννα");
    QTest::newRow("Greek final sigma")
        << QStringLiteral("ΟΔΥΣΣΕΥΣ ὀδυσσεύς") << QStringLiteral("οδυσσευσ οδυσσευσ");
    // Cyrillic
    QTest::newRow("Cyrillic case and yo")
        << QStringLiteral("ЁЛКА Пётр") << QStringLiteral("елка петр");
    // Compatibility forms
    QTest::newRow("ligature fi") << QStringLiteral("\uFB01sh") << QStringLiteral("fish");
    QTest::newRow("full-width letters") << QStringLiteral("\uFF21\uFF22c") << QStringLiteral("abc");
    QTest::newRow("Angstrom sign") << QStringLiteral("\u212Bsa") << QStringLiteral("asa");
    // Scripts without case stay as they are, marks aside
    QTest::newRow("Chinese") << QStringLiteral("李小龍") << QStringLiteral("李小龍");
    QTest::newRow("Hebrew points dropped") << QStringLiteral("שָׁלוֹם") << QStringLiteral("שלום");
    QTest::newRow("Arabic") << QStringLiteral("سلام") << QStringLiteral("سلام");
    QTest::newRow("Japanese voiced kana") << QStringLiteral("ガ") << QStringLiteral("カ");
    // Outside the Basic Multilingual Plane: case-folded only
    QTest::newRow("Deseret capital")
        << QStringLiteral("\U00010400") << QStringLiteral("\U00010428");
    QTest::newRow("emoji") << QStringLiteral("A\U0001F600") << QStringLiteral("a\U0001F600");
    QTest::newRow("lone surrogate kept") << QString(QChar(0xD800)) << QString(QChar(0xD800));
    QTest::newRow("only a mark") << QStringLiteral("\u0301") << QString();
}

void tst_VeskRosterQuickSearch::folding()
{
    QFETCH(QString, text);
    QFETCH(QString, folded);
    QCOMPARE(VeskRosterQuickSearch::fold(text), folded);
}

void tst_VeskRosterQuickSearch::matchesEachPiece_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("found");
    QTest::newRow("display, accent typed")
        << QStringLiteral("renée") << QStringList { QStringLiteral("Renée") };
    QTest::newRow("display, accent found by plain letter") << QStringLiteral(
        "REN") << QStringList { QStringLiteral("Renée"), QStringLiteral("Rene unknown kind") };
    QTest::newRow("account uid") << QStringLiteral("work.example")
                                 << QStringList { QStringLiteral("Bob"), QStringLiteral("Jürgen") };
    QTest::newRow("protocol is not searched") << QStringLiteral("icq") << QStringList();
    QTest::newRow("group name") << QStringLiteral("kolleg")
                                << QStringList { QStringLiteral("Jürgen"), QStringLiteral("Ada") };
    QTest::newRow("status text of a contact, not of a temporary contact")
        << QStringLiteral("cafe") << QStringList { QStringLiteral("Bob") };
    QTest::newRow("status text of a temporary contact is not read") << QStringLiteral(
        "friend") << QStringList { QStringLiteral("Renée"), QStringLiteral("Bob") };
    QTest::newRow("nothing") << QStringLiteral("zzz") << QStringList();
}

void tst_VeskRosterQuickSearch::matchesEachPiece()
{
    QFETCH(QString, text);
    QFETCH(QStringList, found);
    VeskFilterTestEnv env;
    addRoster();
    const QVector<VeskBuddy> entries = allEntries();
    const VeskRosterQuickSearch search(text);
    QVector<int> one;
    for (int i = 0; i < entries.size(); ++i) {
        if (search.matches(entries.at(i)))
            one.append(i);
    }
    // Groups match by their own name too; the view never asks about them.
    QStringList members;
    for (const QString &name : names(entries, one)) {
        if (name != QLatin1String("Friends") && name != QLatin1String("Kollegen"))
            members.append(name);
    }
    QCOMPARE(members, found);
    QCOMPARE(search.matching(entries), one);
}

void tst_VeskRosterQuickSearch::searchesCurrentFilterOrEveryEntry()
{
    VeskFilterTestEnv env;
    addRoster();
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->addStackFilter(QStringLiteral("online"), VeskRosterFilter::RosterFilterAnd)
        ->appendFilter(VeskFilterTree::presence(QStringLiteral("online")));
    manager->setCurrentFilter(QStringLiteral("online"));
    const QVector<VeskBuddy> entries = allEntries();

    VeskRosterQuickSearch search(QStringLiteral("E"));
    QCOMPARE(names(entries, manager->filterEntries(entries, search)),
        QStringList(
            { QStringLiteral("Renée"), QStringLiteral("Jürgen"), QStringLiteral("Stranger") }));
    search.setScope(VeskRosterQuickSearch::EveryEntry);
    QCOMPARE(names(entries, manager->filterEntries(entries, search)),
        QStringList(
            { QStringLiteral("Friends"), QStringLiteral("Kollegen"), QStringLiteral("Renée"),
                QStringLiteral("Bob"), QStringLiteral("Jürgen"), QStringLiteral("Ada"),
                QStringLiteral("Stranger"), QStringLiteral("Rene unknown kind") }));
    QCOMPARE(manager->filterEntries(entries, search), oneByOne(entries, &search));
}

void tst_VeskRosterQuickSearch::emptySearchIsTheFilterAlone_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("scope");
    QTest::newRow("empty, current filter")
        << QString() << int(VeskRosterQuickSearch::CurrentFilter);
    QTest::newRow("empty, every entry") << QString() << int(VeskRosterQuickSearch::EveryEntry);
    QTest::newRow("only a combining mark")
        << QStringLiteral("\u0301") << int(VeskRosterQuickSearch::EveryEntry);
}

void tst_VeskRosterQuickSearch::emptySearchIsTheFilterAlone()
{
    QFETCH(QString, text);
    QFETCH(int, scope);
    VeskFilterTestEnv env;
    addRoster();
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->addStackFilter(QStringLiteral("away"), VeskRosterFilter::RosterFilterAnd)
        ->appendFilter(VeskFilterTree::presence(QStringLiteral("away")));
    manager->setCurrentFilter(QStringLiteral("away"));
    const QVector<VeskBuddy> entries = allEntries();
    const VeskRosterQuickSearch search(text, VeskRosterQuickSearch::Scope(scope));
    QVERIFY(search.isEmpty());
    QCOMPARE(names(entries, manager->filterEntries(entries, search)),
        QStringList({ QStringLiteral("Bob"), QStringLiteral("Ada") }));
    QCOMPARE(manager->filterEntries(entries, search), manager->filterEntries(entries));
    QCOMPARE(oneByOne(entries, &search), oneByOne(entries, nullptr));
}

void tst_VeskRosterQuickSearch::narrows_data()
{
    QTest::addColumn<QString>("previous");
    QTest::addColumn<int>("previousScope");
    QTest::addColumn<QString>("next");
    QTest::addColumn<int>("nextScope");
    QTest::addColumn<bool>("narrows");
    const int current = VeskRosterQuickSearch::CurrentFilter;
    const int every = VeskRosterQuickSearch::EveryEntry;
    QTest::newRow("a letter typed")
        << QStringLiteral("re") << current << QStringLiteral("ren") << current << true;
    QTest::newRow("a letter typed before")
        << QStringLiteral("en") << current << QStringLiteral("ren") << current << true;
    QTest::newRow("accent typed") << QStringLiteral("ren") << current << QStringLiteral("RENÉ")
                                  << current << true;
    QTest::newRow("a letter removed")
        << QStringLiteral("ren") << current << QStringLiteral("re") << current << false;
    QTest::newRow("a letter changed")
        << QStringLiteral("ren") << current << QStringLiteral("rem") << current << false;
    QTest::newRow("cleared") << QStringLiteral("ren") << current << QString() << current << false;
    QTest::newRow("first letter, current filter")
        << QString() << current << QStringLiteral("r") << current << true;
    QTest::newRow("first letter, every entry")
        << QString() << every << QStringLiteral("r") << every << false;
    QTest::newRow("scope widened")
        << QStringLiteral("r") << current << QStringLiteral("re") << every << false;
}

void tst_VeskRosterQuickSearch::narrows()
{
    QFETCH(QString, previous);
    QFETCH(int, previousScope);
    QFETCH(QString, next);
    QFETCH(int, nextScope);
    QFETCH(bool, narrows);
    const VeskRosterQuickSearch before(previous, VeskRosterQuickSearch::Scope(previousScope));
    const VeskRosterQuickSearch after(next, VeskRosterQuickSearch::Scope(nextScope));
    QCOMPARE(after.narrows(before), narrows);
}

void tst_VeskRosterQuickSearch::wholeRosterCallEqualsFilter_data()
{
    addSeedRows(30);
}

// Generated rosters (with entries of unknown kinds added), random trees that
// hold filters of a class the library does not know: the whole-roster call
// answers what filter() answers entry by entry, with and without a search.
void tst_VeskRosterQuickSearch::wholeRosterCallEqualsFilter()
{
    QFETCH(quint32, seed);
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::generate(100 + int(seed) * 7, seed), &error));
    QRandomGenerator random(seed);
    VeskStandIn::addEntry(0, QStringLiteral("kind zero Anna"));
    VeskStandIn::addEntry(7, QStringLiteral("kind seven"));
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *stack
        = manager->addStackFilter(QStringLiteral("p"), randomType(random));
    fillRandomly(stack, random, 0);
    manager->setCurrentFilter(QStringLiteral("p"));
    QVector<VeskBuddy> entries = allEntries();
    std::shuffle(entries.begin(), entries.end(), random);

    QCOMPARE(manager->filterEntries(entries), oneByOne(entries, nullptr));
    static const QStringList texts = { QStringLiteral("a"), QStringLiteral("AN"),
        QStringLiteral("é"), QStringLiteral("work"), QStringLiteral("@"), QStringLiteral("zz") };
    for (const QString &text : texts) {
        for (const auto scope :
            { VeskRosterQuickSearch::CurrentFilter, VeskRosterQuickSearch::EveryEntry }) {
            const VeskRosterQuickSearch search(text, scope);
            QCOMPARE(manager->filterEntries(entries, search), oneByOne(entries, &search));
            QVector<int> matching;
            for (int i = 0; i < entries.size(); ++i) {
                if (search.matches(entries.at(i)))
                    matching.append(i);
            }
            QCOMPARE(search.matching(entries), matching);
        }
    }
    manager->setCurrentFilter(QStringLiteral("default"));
    const VeskRosterQuickSearch search(QStringLiteral("e"));
    QCOMPARE(manager->filterEntries(entries, search), oneByOne(entries, &search));
}

void tst_VeskRosterQuickSearch::wholeRosterCallDisplayFirstEqualsFilter_data()
{
    wholeRosterCallEqualsFilter_data();
}

// Trees whose first test is a display filter and that hold only the library's
// own filters: the call reads the names of the next entries ahead of their
// tests. Rosters of every length around the size of those reads, so that
// the last block is short by any amount.
void tst_VeskRosterQuickSearch::wholeRosterCallDisplayFirstEqualsFilter()
{
    QFETCH(quint32, seed);
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::generate(60 + int(seed) * 3, seed), &error));
    QRandomGenerator random(seed);
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *stack
        = manager->addStackFilter(QStringLiteral("p"), randomType(random));
    VeskRosterFilter *display
        = manager->createFilter(QStringLiteral("display"), VeskRosterFilter::RosterFilterDefault);
    QVERIFY(display);
    configureRandomly(display, random);
    stack->appendFilter(display);
    fillRandomly(stack, random, 0, false);
    manager->setCurrentFilter(QStringLiteral("p"));
    QVector<VeskBuddy> entries = allEntries();
    std::shuffle(entries.begin(), entries.end(), random);

    const QVector<int> expected = oneByOne(entries, nullptr);
    const VeskRosterQuickSearch search(QStringLiteral("e"), VeskRosterQuickSearch::CurrentFilter);
    const QVector<int> searched = oneByOne(entries, &search);
    // The answers for the first `size` entries are those below `size`.
    const auto below = [](const QVector<int> &indices, int size) {
        return indices.mid(
            0, int(std::lower_bound(indices.cbegin(), indices.cend(), size) - indices.cbegin()));
    };
    for (int size = 0; size <= 70 && size <= entries.size(); ++size) {
        const QVector<VeskBuddy> part = entries.mid(0, size);
        QCOMPARE(manager->filterEntries(part), below(expected, size));
        QCOMPARE(manager->filterEntries(part, search), below(searched, size));
    }
    QCOMPARE(manager->filterEntries(entries), expected);
    QCOMPARE(manager->filterEntries(entries, search), searched);
}

// Two groups whose names are equal texts held apart, and one group's name
// handed out afresh: an answer kept for one text must not be taken for
// another that merely sits where it sat.
void tst_VeskRosterQuickSearch::wholeRosterCallSharesGroupsCorrectly()
{
    VeskFilterTestEnv env;
    const VeskBuddy alpha = VeskStandIn::addGroup(QStringLiteral("Alpha"), 0);
    const VeskBuddy beta = VeskStandIn::addGroup(QStringLiteral("Beta"), 0);
    QVector<VeskBuddy> entries;
    for (int i = 0; i < 50; ++i) {
        VeskStandIn::ContactInfo info;
        info.display = QStringLiteral("c%1").arg(i);
        info.group = i % 3 ? alpha : beta;
        entries.append(VeskStandIn::addContact(info));
    }
    const VeskRosterQuickSearch search(QStringLiteral("alp"), VeskRosterQuickSearch::EveryEntry);
    QVector<int> expected;
    for (int i = 0; i < entries.size(); ++i) {
        if (i % 3)
            expected.append(i);
    }
    QCOMPARE(search.matching(entries), expected);
    QCOMPARE(VeskRosterFiltersManager::getInstance()->filterEntries(entries, search), expected);
}

QTEST_GUILESS_MAIN(tst_VeskRosterQuickSearch)
#include "tst_veskrosterquicksearch.moc"
