// Sorting a whole list at once: on generated rosters with awkward names, for
// every comparator in both directions and random chains of one to four, the
// bulk order is the order std::stable_sort gives with lessThan().

#include <veskfiltertestenv.h>

#include <QtTest>

#include <algorithm>
#include <numeric>
#include <thread>

namespace {

// splitmix64, so that a failing case is the same on every machine.
struct Random
{
    quint64 state;
    int below(int bound)
    {
        quint64 z = (state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return int((z ^ (z >> 31)) % quint64(bound));
    }
};

// Letter case, accents composed and not, ligatures, dotted and dotless i,
// digits, punctuation, spaces, characters outside the basic plane, and
// letters that some alphabets place after z.
const char *const fragments[] = { "anna", "Anna", "ANNA", "é", "e\xcc\x81", "É", "Ä", "ä", "z", "Z",
    "ﬁ", "fi", "Æ", "æ", "œ", "ß", "ss", "İ", "I", "ı", "i", "2", "10", "9", "-", "'", ".", " ",
    "_", "𝒜", "😀", "Ａ", "ch", "h", "ö", "å", "ñ", "Ω", "ω", "中", "日" };

QString awkwardName(Random &random)
{
    QString name;
    for (int parts = random.below(4); parts > 0; --parts)
        name += QString::fromUtf8(fragments[random.below(int(std::size(fragments)))]);
    return name;
}

// Groups with positions that tie, are 0 or negative; contacts and temporary
// contacts with few distinct presences, subscriptions and chat counts, so that
// every comparator sees ties; and entries of no kind.
QVector<VeskBuddy> generate(quint64 seed, int count)
{
    VeskStandIn::resetRoster();
    Random random { seed };
    QVector<VeskBuddy> entries;
    for (int i = 0; i < count; ++i) {
        const int shape = random.below(20);
        if (shape < 3) {
            const int positions[] = { 0, 0, 1, 2, 2, -3, 7 };
            entries << VeskStandIn::addGroup(awkwardName(random), positions[random.below(7)]);
        } else if (shape < 4) {
            entries << VeskStandIn::addEntry(random.below(2) ? 0 : 7, awkwardName(random));
        } else {
            VeskStandIn::ContactInfo info;
            info.display = awkwardName(random);
            info.presence = VeskStandIn::makePresence(QStringLiteral("p"), QString(), QString(),
                random.below(3) ? 0 : 5, random.below(3) * 10 - 10);
            info.subscription = random.below(3);
            const int chats = random.below(6);
            if (chats < 4)
                info.attributes.insert(
                    QStringLiteral("chats_count"), VeskStandIn::makeIntArg(chats));
            else if (chats == 4)
                info.attributes.insert(QStringLiteral("chats_count"),
                    VeskStandIn::makeArg(VeskArg::TypeString, QStringLiteral("7")));
            entries << (random.below(8) ? VeskStandIn::addContact(info)
                                        : VeskStandIn::addTemporary(info));
        }
    }
    return entries;
}

QStringList describe(const QVector<VeskBuddy> &entries, const QVector<int> &order)
{
    QStringList out;
    for (const int index : order)
        out << QString::number(index) + QLatin1Char(':') + entries.at(index).getDisplay();
    return out;
}

QStringList names(const QVector<VeskBuddy> &entries)
{
    QStringList out;
    for (const VeskBuddy &entry : entries)
        out << QString::number(entry.getType()) + entry.getDisplay();
    return out;
}

// An empty text when bulk and per-pair orders agree on every list, else the
// first list and method on which they differ.
QString compareOrders(const QVector<VeskBuddy> &entries, const QString &method)
{
    const VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    // The lists a roster view sorts (the members of a group, the groups) and,
    // as the pairs get identical answers, a list of every kind of entry.
    QVector<VeskBuddy> members, groups;
    for (const VeskBuddy &entry : entries) {
        const int type = entry.getType();
        if (type == VeskBuddy::TypeGroup)
            groups << entry;
        else if (type == VeskBuddy::TypeContact || type == VeskBuddy::TypeTemporary)
            members << entry;
    }
    for (const QVector<VeskBuddy> &list : { members, groups, entries }) {
        QVector<int> expected(list.size());
        std::iota(expected.begin(), expected.end(), 0);
        std::stable_sort(expected.begin(), expected.end(),
            [&](int a, int b) { return manager->lessThan(list.at(a), list.at(b)); });
        QVector<VeskBuddy> inPlace = list;
        manager->sort(inPlace);
        QVector<VeskBuddy> expectedInPlace;
        for (const int index : expected)
            expectedInPlace << list.at(index);
        const QVector<int> bulk = manager->sortedOrder(list);
        if (bulk != expected || names(inPlace) != names(expectedInPlace)) {
            int at = 0;
            while (at < bulk.size() && bulk.at(at) == expected.at(at))
                ++at;
            return method + QLatin1String(" differs at ") + QString::number(at)
                + QLatin1String(" on ") + QString::number(list.size())
                + QLatin1String(" entries:\n  lessThan: ") + describe(list, expected).join(u'|')
                + QLatin1String("\n  bulk:     ") + describe(list, bulk).join(u'|');
        }
    }
    return QString();
}

void useMethod(const QStringList &ids, const QStringList &flags)
{
    VeskRosterSortersManager *manager = VeskRosterSortersManager::getInstance();
    manager->addSorter(QStringLiteral("m"), ids);
    manager->setSorterAscending(QStringLiteral("m"), flags);
    manager->setCurrentSorter(ids.isEmpty() ? QStringLiteral("none") : QStringLiteral("m"));
}

// Runs in a thread of its own: the first collation in a thread may fix the
// locale that QString::localeAwareCompare keeps using there.
QString everyMethodOnOneRoster(quint64 seed)
{
    const QStringList kinds { QStringLiteral("name"), QStringLiteral("presence"),
        QStringLiteral("presence_priority"), QStringLiteral("chats_count") };
    const QVector<VeskBuddy> entries = generate(seed, 140);
    Random random { seed };
    QVector<QPair<QStringList, QStringList>> methods { { {}, {} } };
    for (const QString &kind : kinds) {
        methods.append({ { kind }, { QStringLiteral("t") } });
        methods.append({ { kind }, { QStringLiteral("f") } });
    }
    for (int i = 0; i < 24; ++i) {
        QStringList ids, flags;
        for (int length = 1 + i % 4; length > 0; --length) {
            ids << kinds.at(random.below(4));
            flags << QLatin1String(random.below(2) ? "t" : "f");
        }
        methods.append({ ids, flags });
    }
    for (const auto &[ids, flags] : methods) {
        useMethod(ids, flags);
        const QString difference = compareOrders(entries, ids.join(u',') + flags.join(u','));
        if (!difference.isEmpty())
            return difference;
    }
    return QString();
}

template <typename Work> QString inNewThread(Work work)
{
    QString result;
    std::thread thread([&] { result = work(); });
    thread.join();
    return result;
}

} // namespace

class tst_SortedOrder : public QObject
{
    Q_OBJECT

private slots:
    void init() { env.reset(new VeskFilterTestEnv); }
    void cleanup()
    {
        env.reset();
        QLocale::setDefault(QLocale::c());
    }

    void bulkOrderIsTheStableOrderOfLessThan_data();
    void bulkOrderIsTheStableOrderOfLessThan();
    void bulkOrderFollowsLessThanWhenItsCollationLocaleIsStale();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_SortedOrder::bulkOrderIsTheStableOrderOfLessThan_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<quint64>("seed");
    QTest::newRow("en_US") << QLocale(QLocale::English, QLocale::UnitedStates) << quint64(1);
    QTest::newRow("sv_SE") << QLocale(QLocale::Swedish, QLocale::Sweden) << quint64(2);
    QTest::newRow("tr_TR") << QLocale(QLocale::Turkish, QLocale::Turkey) << quint64(3);
    QTest::newRow("C") << QLocale::c() << quint64(4);
}

void tst_SortedOrder::bulkOrderIsTheStableOrderOfLessThan()
{
    QFETCH(QLocale, locale);
    QFETCH(quint64, seed);
    QLocale::setDefault(locale);
    QCOMPARE(inNewThread([&] { return everyMethodOnOneRoster(seed); }), QString());
}

void tst_SortedOrder::bulkOrderFollowsLessThanWhenItsCollationLocaleIsStale()
{
    // Qt 5 keeps the collator of a thread's first localeAwareCompare, so
    // lessThan() may collate in another locale than a collator made now.
    const QString difference = inNewThread([] {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        QString::localeAwareCompare(QStringLiteral("a"), QStringLiteral("b"));
        QLocale::setDefault(QLocale(QLocale::Swedish, QLocale::Sweden));
        QVector<VeskBuddy> entries;
        for (const char *name : { "z", "ä", "o", "ö", "å", "a" }) {
            VeskStandIn::ContactInfo info;
            info.display = QString::fromUtf8(name);
            entries << VeskStandIn::addContact(info);
        }
        useMethod({ QStringLiteral("name") }, { QStringLiteral("t") });
        return compareOrders(entries, QStringLiteral("name"));
    });
    QCOMPARE(difference, QString());
}

QTEST_GUILESS_MAIN(tst_SortedOrder)
#include "tst_sortedorder.moc"
