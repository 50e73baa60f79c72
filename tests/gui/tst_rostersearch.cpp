// The roster window's quick search, driven with keys in a real X server:
// Ctrl+F, typing, Backspace, Escape, the "every entry" box, a presence change
// while searching, and where the highlight falls.

#include "veskfiltertree.h"
#include "veskkeys.h"
#include "veskrostershown.h"

#include <librarysession.h>
#include <mainwindow.h>
#include <rosterfile.h>
#include <rosterlibrary.h>
#include <rostertreemodel.h>
#include <searchbar.h>

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTreeView>
#include <QtTest>

#include <memory>

using VeskRosterShown::reference;
using VeskRosterShown::shown;

namespace {

using VeskKeys::key;
using VeskKeys::type;

} // namespace

class tst_RosterSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void typingNarrowsBackspaceWidensEscapeRestores();
    void everyEntryFindsWhatTheFilterHides();
    void presenceChangeWhileSearchingReplacesTheRow();
    void groupsShownOpenAndOnlyGroupsHeld();
    void highlight_data();
    void highlight();

private:
    QString expected(const QString &text,
        VeskRosterQuickSearch::Scope scope = VeskRosterQuickSearch::CurrentFilter) const
    {
        const VeskRosterQuickSearch search(text, scope);
        return reference(&search);
    }

    std::unique_ptr<QTemporaryDir> dir;
    std::unique_ptr<VeskRosterLibrary> library;
    std::unique_ptr<VeskRosterWindow> window;
};

void tst_RosterSearch::init()
{
    dir = std::make_unique<QTemporaryDir>();
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::sampleRoster(), &error));
    library = std::make_unique<VeskRosterLibrary>(dir->path() + QLatin1String("/settings"));
    QVERIFY2(library->open(&error), qPrintable(error));
    // The current filter: everybody who is not offline.
    QVERIFY(library->change(
        [](VeskLibrarySession &session, QString *error) {
            VeskRosterFiltersStack *stack = session.createStack(
                QStringLiteral("online"), VeskRosterFilter::RosterFilterAnd, error);
            stack->appendFilter(VeskFilterTree::presence(QStringLiteral("offline"), false));
            return session.storeNewStack(stack, error)
                && session.setCurrentFilter(QStringLiteral("online"), error);
        },
        &error));
    window = std::make_unique<VeskRosterWindow>(library.get());
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitFor([this] { return QApplication::activeWindow() == window.get(); }));
    QCOMPARE(window->statusText(), QStringLiteral("34 of 42 entries shown"));
}

void tst_RosterSearch::cleanup()
{
    window.reset();
    library.reset();
    VeskStandIn::resetRoster();
    dir.reset();
}

void tst_RosterSearch::typingNarrowsBackspaceWidensEscapeRestores()
{
    const QString filterAlone = shown(*window->proxy());
    QCOMPARE(filterAlone, reference());
    QVERIFY(QApplication::focusWidget() != window->searchBar()->field());
    key(Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(QApplication::focusWidget(), window->searchBar()->field());

    type(QStringLiteral("a"));
    QCOMPARE(shown(*window->proxy()), expected(QStringLiteral("a")));
    type(QStringLiteral("li"));
    QCOMPARE(shown(*window->proxy()), expected(QStringLiteral("ali")));
    QCOMPARE(shown(*window->proxy()), QStringLiteral("Friends: Alice Martin"));
    QTRY_COMPARE(window->statusText(), QStringLiteral("1 of 42 entries shown, searching for ali"));

    key(Qt::Key_Backspace);
    QCOMPARE(window->searchBar()->text(), QStringLiteral("al"));
    QCOMPARE(shown(*window->proxy()), expected(QStringLiteral("al")));
    QVERIFY(shown(*window->proxy()).contains(QLatin1String("Alice Martin")));
    QVERIFY(shown(*window->proxy()) != QLatin1String("Friends: Alice Martin"));

    // A group whose name matches shows all its members the filter passes.
    key(Qt::Key_A, Qt::ControlModifier);
    type(QStringLiteral("BÄND"));
    QCOMPARE(shown(*window->proxy()), expected(QStringLiteral("band")));
    QVERIFY(shown(*window->proxy()).startsWith(QLatin1String("Band: ")));

    key(Qt::Key_Escape);
    QCOMPARE(window->searchBar()->text(), QString());
    QCOMPARE(shown(*window->proxy()), filterAlone);
    QTRY_COMPARE(window->statusText(), QStringLiteral("34 of 42 entries shown"));
}

void tst_RosterSearch::everyEntryFindsWhatTheFilterHides()
{
    key(Qt::Key_F, Qt::ControlModifier);
    type(QStringLiteral("emile"));
    // Émile is offline: the current filter hides him.
    QCOMPARE(shown(*window->proxy()), QString());
    QTRY_COMPARE(
        window->statusText(), QStringLiteral("0 of 42 entries shown, searching for emile"));
    key(Qt::Key_V, Qt::AltModifier);
    // A mnemonic clicks its button with a short animation.
    QTRY_VERIFY(window->findChild<QCheckBox *>(QStringLiteral("searchEveryEntry"))->isChecked());
    QCOMPARE(shown(*window->proxy()),
        expected(QStringLiteral("emile"), VeskRosterQuickSearch::EveryEntry));
    QCOMPARE(shown(*window->proxy()), QStringLiteral("Friends: Émile Roux"));
    QTRY_COMPARE(
        window->statusText(), QStringLiteral("1 of 42 entries shown, searching for emile"));
}

void tst_RosterSearch::presenceChangeWhileSearchingReplacesTheRow()
{
    key(Qt::Key_F, Qt::ControlModifier);
    type(QStringLiteral("a"));
    QVERIFY(shown(*window->proxy()).contains(QLatin1String("Alice Martin")));
    const QVector<VeskBuddy> &members = window->model()->members();
    int alice = -1;
    for (int member = 0; member < members.size(); ++member) {
        if (members.at(member).getDisplay() == QLatin1String("Alice Martin"))
            alice = member;
    }
    QVERIFY(alice >= 0);
    VeskStandIn::setPresence(members.at(alice),
        VeskStandIn::makePresence(QStringLiteral("offline"), QString(), QString(), 5));
    window->model()->memberChanged(alice);
    QCOMPARE(shown(*window->proxy()), expected(QStringLiteral("a")));
    QVERIFY(!shown(*window->proxy()).contains(QLatin1String("Alice Martin")));
    VeskStandIn::setPresence(members.at(alice),
        VeskStandIn::makePresence(QStringLiteral("online"), QString(), QString(), 0, 50));
    window->model()->memberChanged(alice);
    QCOMPARE(shown(*window->proxy()), expected(QStringLiteral("a")));
    // Typing on after the change still gives the library's answer.
    type(QStringLiteral("l"));
    QCOMPARE(shown(*window->proxy()), expected(QStringLiteral("al")));
    key(Qt::Key_Escape);
    QCOMPARE(shown(*window->proxy()), reference());
}

// Every group a search shows is open, as before it; the tree holds on to the
// groups only, not to each member (which would make every keystroke carry
// all of them through the proxy's layout change). The texts the search looks
// at are read in slices once the field has the focus; a letter typed before
// they are all read finds the same.
void tst_RosterSearch::groupsShownOpenAndOnlyGroupsHeld()
{
    key(Qt::Key_F, Qt::ControlModifier);
    type(QStringLiteral("o"));
    QCOMPARE(shown(*window->proxy()), expected(QStringLiteral("o")));
    const QAbstractItemModel *proxy = window->proxy();
    auto groupsOpen = [&] {
        for (int row = 0; row < proxy->rowCount(); ++row) {
            const QModelIndex index = proxy->index(row, 0);
            if (proxy->hasChildren(index) && !window->view()->isExpanded(index))
                return false;
        }
        return true;
    };
    QVERIFY(groupsOpen());
    type(QStringLiteral("l"));
    key(Qt::Key_Escape);
    QVERIFY(groupsOpen());
    QTRY_VERIFY(!window->searchBar()->isPreparing());
    for (int row = 0; row < proxy->rowCount(); ++row) {
        const QModelIndex index = proxy->index(row, 0);
        for (int member = 0; member < proxy->rowCount(index); ++member)
            QVERIFY(!window->view()->isExpanded(proxy->index(member, 0, index)));
    }
    // The roster's rows change while the field has the focus: the texts are
    // read again, and the search finds the new name.
    VeskStandIn::ContactInfo info;
    info.display = QStringLiteral("Zoltán");
    info.presence = VeskStandIn::makePresence(QStringLiteral("online"));
    window->model()->insertEntry(VeskStandIn::addContact(info));
    QVERIFY(window->searchBar()->isPreparing());
    type(QStringLiteral("zolt"));
    QCOMPARE(shown(*window->proxy()), QStringLiteral("-: Zolt\u00E1n"));
    QTRY_VERIFY(!window->searchBar()->isPreparing());
}

void tst_RosterSearch::highlight_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("needle");
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("length");
    QTest::newRow("plain") << QStringLiteral("Alice Martin") << QStringLiteral("mar") << 6 << 3;
    QTest::newRow("accent in the name")
        << QStringLiteral("Émile") << QStringLiteral("emi") << 0 << 3;
    QTest::newRow("sharp s matched by ss")
        << QStringLiteral("Straße") << QStringLiteral("SS") << 4 << 1;
    QTest::newRow("decomposed accent kept with its letter")
        << QStringLiteral("Rene\u0301e") << QStringLiteral("ene") << 1 << 4;
    QTest::newRow("no match") << QStringLiteral("Bob") << QStringLiteral("x") << -1 << 0;
}

void tst_RosterSearch::highlight()
{
    QFETCH(QString, text);
    QFETCH(QString, needle);
    QFETCH(int, start);
    QFETCH(int, length);
    int at = -1;
    int size = 0;
    const bool found = VeskSearchHighlightDelegate::matchIn(text, needle, &at, &size);
    QCOMPARE(found, start >= 0);
    if (found) {
        QCOMPARE(at, start);
        QCOMPARE(size, length);
    }
}

QTEST_MAIN(tst_RosterSearch)
#include "tst_rostersearch.moc"
