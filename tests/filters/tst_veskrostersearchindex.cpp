// The search index a view keeps: the same answers as the quick search asking
// the host, for every kind of entry, after entries changed and were read
// again, for any list of candidates.

#include "veskfiltertestenv.h"

#include <rosterfile.h>
#include <veskrosterquicksearch.h>
#include <veskrostersearchindex.h>

#include <QRandomGenerator>
#include <QtTest>

#include <numeric>

namespace {

QVector<VeskBuddy> allEntries()
{
    const QList<VeskBuddy> entries = VeskStandIn::entries();
    return QVector<VeskBuddy>(entries.cbegin(), entries.cend());
}

QVector<int> everyIndex(int count)
{
    QVector<int> all(count);
    std::iota(all.begin(), all.end(), 0);
    return all;
}

// Texts that fold in several ways, and pieces of the generated roster's
// names, groups, accounts and status texts.
const QStringList searches = { QStringLiteral("a"), QStringLiteral("AN"), QStringLiteral("é"),
    QStringLiteral("Ö"), QStringLiteral("isil"), QStringLiteral("ss"), QStringLiteral("work"),
    QStringLiteral("@"), QStringLiteral("icq"), QStringLiteral("lunch"), QStringLiteral("Friends"),
    QStringLiteral(" "), QStringLiteral("zzz"), QStringLiteral("ﬁ"), QString() };

// Each of the searches above, answered by the index and by the search asking
// the host.
void answersAsTheHost(const VeskRosterSearchIndex &index, const QVector<VeskBuddy> &entries)
{
    for (const QString &text : searches) {
        const VeskRosterQuickSearch search(text);
        QCOMPARE(index.matching(search, everyIndex(index.size())), search.matching(entries));
    }
}

} // namespace

class tst_VeskRosterSearchIndex : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersAsTheSearch_data();
    void answersAsTheSearch();
    void changedEntriesReadAgain();
    void candidatesInTheirOrder();
};

void tst_VeskRosterSearchIndex::answersAsTheSearch_data()
{
    QTest::addColumn<quint32>("seed");
    QTest::newRow("the sample roster") << quint32(0);
    for (quint32 seed = 1; seed <= 4; ++seed)
        QTest::newRow(qPrintable(QStringLiteral("generated %1").arg(seed))) << seed;
}

void tst_VeskRosterSearchIndex::answersAsTheSearch()
{
    QFETCH(quint32, seed);
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(
        seed ? VeskRosterFile::generate(600, seed) : VeskRosterFile::sampleRoster(), &error));
    // An entry of a kind the library does not know has a name and nothing else.
    VeskStandIn::addEntry(7, QStringLiteral("Ünknown kind"));
    const QVector<VeskBuddy> entries = allEntries();
    const VeskRosterSearchIndex index(entries);
    QCOMPARE(index.size(), int(entries.size()));
    answersAsTheHost(index, entries);
}

// Status texts, names and groups change; the index reads the changed
// entries again and answers as the host does now, also after it has dropped
// the space of the texts it no longer needs.
void tst_VeskRosterSearchIndex::changedEntriesReadAgain()
{
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::generate(300, 11), &error));
    const QVector<VeskBuddy> entries = allEntries();
    VeskRosterSearchIndex index(entries);
    QList<VeskBuddy> groups;
    QVector<int> members;
    for (int i = 0; i < entries.size(); ++i) {
        const int type = entries.at(i).getType();
        if (type == VeskBuddy::TypeGroup)
            groups.append(entries.at(i));
        else if (type == VeskBuddy::TypeContact)
            members.append(i);
    }
    QRandomGenerator random(11);
    for (int round = 0; round < 2000; ++round) {
        const int i = members.at(random.bounded(int(members.size())));
        const VeskBuddy &entry = entries.at(i);
        switch (random.bounded(3)) {
        case 0:
            VeskStandIn::setPresence(entry,
                VeskStandIn::makePresence(QStringLiteral("away"), QString(),
                    searches.at(random.bounded(int(searches.size())))));
            break;
        case 1:
            VeskStandIn::setDisplay(entry, QStringLiteral("Zoë %1").arg(round));
            break;
        default:
            VeskStandIn::setGroup(entry, groups.at(random.bounded(int(groups.size()))));
            break;
        }
        index.update(i, entry);
    }
    answersAsTheHost(index, entries);
}

void tst_VeskRosterSearchIndex::candidatesInTheirOrder()
{
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::sampleRoster(), &error));
    const QVector<VeskBuddy> entries = allEntries();
    const VeskRosterSearchIndex index(entries);
    const VeskRosterQuickSearch search(QStringLiteral("a"));
    QVector<int> candidates = everyIndex(index.size());
    std::reverse(candidates.begin(), candidates.end());
    candidates.append({ -1, index.size(), 100000 });
    QVector<int> expected;
    for (const int i : qAsConst(candidates)) {
        if (i >= 0 && i < entries.size() && search.matches(entries.at(i)))
            expected.append(i);
    }
    QVERIFY(!expected.isEmpty());
    QCOMPARE(index.matching(search, candidates), expected);
    for (const int i : { 0, int(entries.size()) - 1 })
        QCOMPARE(index.matches(search, i), search.matches(entries.at(i)));
    QVERIFY(!index.matches(search, -1));
    QVERIFY(!VeskRosterSearchIndex().matches(search, 0));
}

QTEST_GUILESS_MAIN(tst_VeskRosterSearchIndex)
#include "tst_veskrostersearchindex.moc"
