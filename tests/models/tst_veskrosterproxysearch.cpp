// The proxy model's quick search: typing, deleting and clearing give the
// view the library answers for the search, groups are shown exactly when a
// member is, and a presence change while searching re-places the row.

#include "veskfiltertestenv.h"
#include "veskrostershown.h"

#include <rosterfile.h>
#include <rostertreemodel.h>
#include <veskrosterproxymodel.h>

#include <QAbstractItemModelTester>
#include <QtTest>

using VeskRosterShown::reference;
using VeskRosterShown::shown;

class tst_VeskRosterProxySearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typingNarrowsAndDeletingWidens_data();
    void typingNarrowsAndDeletingWidens();
    void presenceChangeWhileSearching();
};

namespace {

VeskRosterFilter *presenceLeaf(const QString &id, bool is)
{
    VeskRosterFilter *filter = VeskRosterFiltersManager::getInstance()->createFilter(
        QStringLiteral("presence"), VeskRosterFilter::RosterFilterLeaf);
    QList<VeskField> fields = filter->getConfiguration();
    for (VeskField &field : fields) {
        if (field.getId() == QLatin1String("is_or_not"))
            field.setSelectedId(is ? QStringLiteral("is") : QStringLiteral("is not"));
        else
            field.setSelectedId(id);
    }
    filter->setConfiguration(fields);
    return filter;
}

} // namespace

void tst_VeskRosterProxySearch::typingNarrowsAndDeletingWidens_data()
{
    QTest::addColumn<int>("scope");
    QTest::addColumn<QStringList>("texts");
    const QStringList typed = { QStringLiteral("a"), QStringLiteral("an"), QStringLiteral("ann"),
        QStringLiteral("an"), QStringLiteral("a"), QString(), QStringLiteral("E"),
        QStringLiteral("Em"), QStringLiteral("m"), QStringLiteral("work"), QString() };
    QTest::newRow("inside the current filter")
        << int(VeskRosterQuickSearch::CurrentFilter) << typed;
    QTest::newRow("over every entry") << int(VeskRosterQuickSearch::EveryEntry) << typed;
}

// After every step the proxy shows what the library answers for the search
// from scratch (the command line's view, one whole-roster call): the
// incremental steps ask fewer entries and must give the same.
void tst_VeskRosterProxySearch::typingNarrowsAndDeletingWidens()
{
    QFETCH(int, scope);
    QFETCH(QStringList, texts);
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::generate(400, 7), &error));
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->addStackFilter(QStringLiteral("not offline"), VeskRosterFilter::RosterFilterAnd)
        ->appendFilter(presenceLeaf(QStringLiteral("offline"), false));
    VeskRosterTreeModel model;
    model.setRoster(VeskStandIn::entries());
    VeskRosterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setCurrentFilter(QStringLiteral("not offline"));
    proxy.setQuickSearchScope(VeskRosterQuickSearch::Scope(scope));
    QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QString filterAlone = shown(proxy);
    QCOMPARE(filterAlone, reference());

    for (const QString &text : texts) {
        proxy.setQuickSearch(text);
        const VeskRosterQuickSearch search(text, VeskRosterQuickSearch::Scope(scope));
        QCOMPARE(shown(proxy), reference(&search));
        if (text.isEmpty())
            QCOMPARE(shown(proxy), filterAlone);
    }
    // Every group shown holds a member, and every member shown is in the view.
    proxy.setQuickSearch(QStringLiteral("an"));
    for (int row = 0; row < proxy.rowCount(); ++row) {
        const QModelIndex index = proxy.index(row, 0);
        if (proxy.rosterEntry(index).getType() == VeskBuddy::TypeGroup)
            QVERIFY2(proxy.rowCount(index) > 0, qPrintable(index.data().toString()));
    }
}

void tst_VeskRosterProxySearch::presenceChangeWhileSearching()
{
    VeskFilterTestEnv env;
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::sampleRoster(), &error));
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    manager->addStackFilter(QStringLiteral("not offline"), VeskRosterFilter::RosterFilterAnd)
        ->appendFilter(presenceLeaf(QStringLiteral("offline"), false));
    VeskRosterTreeModel model;
    model.setRoster(VeskStandIn::entries());
    VeskRosterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setCurrentFilter(QStringLiteral("not offline"));
    QAbstractItemModelTester tester(&proxy, QAbstractItemModelTester::FailureReportingMode::QtTest);
    proxy.setQuickSearch(QStringLiteral("a"));
    const VeskRosterQuickSearch search(QStringLiteral("a"));
    QCOMPARE(shown(proxy), reference(&search));

    // Alice goes offline: the filter drops her although she still matches.
    int alice = -1;
    for (int member = 0; member < model.members().size(); ++member) {
        if (model.members().at(member).getDisplay() == QLatin1String("Alice Martin"))
            alice = member;
    }
    QVERIFY(alice >= 0);
    const auto setPresence = [&](const VeskPresence &presence) {
        VeskStandIn::setPresence(model.members().at(alice), presence);
        model.memberChanged(alice);
    };
    QVERIFY(shown(proxy).contains(QLatin1String("Alice Martin")));
    setPresence(VeskStandIn::makePresence(QStringLiteral("offline"), QString(), QString(), 5));
    QCOMPARE(shown(proxy), reference(&search));
    QVERIFY(!shown(proxy).contains(QLatin1String("Alice Martin")));
    // Back online: shown again, in her place.
    setPresence(VeskStandIn::makePresence(QStringLiteral("online"), QString(), QString(), 0, 50));
    QCOMPARE(shown(proxy), reference(&search));
    // And the search cleared: the filter's view.
    proxy.setQuickSearch(QString());
    QCOMPARE(shown(proxy), reference());
}

QTEST_MAIN(tst_VeskRosterProxySearch)
#include "tst_veskrosterproxysearch.moc"
