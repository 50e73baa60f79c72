#include "veskfiltertree.h"
#include "veskkeys.h"
#include "veskrostershown.h"

#include <filtersdialog.h>
#include <librarysession.h>
#include <mainwindow.h>
#include <rosterfile.h>
#include <rosterlibrary.h>
#include <sortingdialog.h>

#include <QApplication>
#include <QComboBox>
#include <QDirIterator>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using VeskRosterShown::reference;
using VeskRosterShown::shown;

namespace {

// Every file under the settings directory with its bytes.
QMap<QString, QByteArray> files(const QString &dir)
{
    QMap<QString, QByteArray> result;
    QDirIterator it(dir, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        file.open(QIODevice::ReadOnly);
        result.insert(file.fileName(), file.readAll());
    }
    return result;
}

using VeskKeys::key;
using VeskKeys::type;

} // namespace

class tst_RosterWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void choosingAFilterChangesTheRows();
    void keyboardBuildsAndStoresAFilter();
    void cancelStoresNothing();
    void sortingMethodFromTheEditorOrdersTheView();
    void refusalShowsAMessageAndStoresNothing_data();
    void refusalShowsAMessageAndStoresNothing();
    void simulatedActivityKeepsTheViewInStep();
    void veskRosterBesideTheWindowLosesNothing();

private:
    template <typename Editor> Editor *openEditor(int shortcut);
    template <typename Editor> bool editorClosed();
    void choose(int mnemonic, const QString &text);

    std::unique_ptr<QTemporaryDir> dir;
    std::unique_ptr<VeskRosterLibrary> library;
    std::unique_ptr<VeskRosterWindow> window;
};

void tst_RosterWindow::init()
{
    dir = std::make_unique<QTemporaryDir>();
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::sampleRoster(), &error));
    library = std::make_unique<VeskRosterLibrary>(dir->path() + QLatin1String("/settings"));
    QVERIFY2(library->open(&error), qPrintable(error));
    // One filter of our own to choose: everybody who is not offline.
    QVERIFY(library->change(
        [](VeskLibrarySession &session, QString *error) {
            VeskRosterFiltersStack *stack = session.createStack(
                QStringLiteral("online"), VeskRosterFilter::RosterFilterAnd, error);
            stack->appendFilter(VeskFilterTree::presence(QStringLiteral("offline"), false));
            return session.storeNewStack(stack, error);
        },
        &error));
    window = std::make_unique<VeskRosterWindow>(library.get());
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitFor([this] { return QApplication::activeWindow() == window.get(); }));
}

void tst_RosterWindow::cleanup()
{
    window.reset();
    library.reset();
    VeskStandIn::resetRoster();
    dir.reset();
}

template <typename Editor> Editor *tst_RosterWindow::openEditor(int shortcut)
{
    key(shortcut, Qt::ControlModifier);
    auto *editor = window->findChild<Editor *>();
    if (!editor)
        return nullptr;
    // Without a window manager nothing activates a new window by itself.
    editor->activateWindow();
    if (QTest::qWaitFor([editor] { return QApplication::activeWindow() == editor; }))
        return editor;
    return nullptr;
}

// Waits for the editor to go and the roster window to take the keys again.
template <typename Editor> bool tst_RosterWindow::editorClosed()
{
    if (!QTest::qWaitFor([this] { return !window->findChild<Editor *>(); }))
        return false;
    window->activateWindow();
    return QTest::qWaitFor([this] { return QApplication::activeWindow() == window.get(); });
}

// Alt+mnemonic focuses a labelled widget; typing picks the item in a combo box.
void tst_RosterWindow::choose(int mnemonic, const QString &text)
{
    key(mnemonic, Qt::AltModifier);
    // A combo box adds what is typed within this interval to its last search.
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    type(text);
}

void tst_RosterWindow::choosingAFilterChangesTheRows()
{
    QCOMPARE(window->statusText(), QStringLiteral("42 of 42 entries shown"));
    choose(Qt::Key_F, QStringLiteral("online"));
    QCOMPARE(library->session()->filters()->getCurrentFilterName(), QStringLiteral("online"));
    QTRY_COMPARE(window->statusText(), QStringLiteral("34 of 42 entries shown"));
    QCOMPARE(shown(*window->proxy()), reference());
    QVERIFY(!shown(*window->proxy()).contains(QLatin1String("Dad")));
}

void tst_RosterWindow::keyboardBuildsAndStoresAFilter()
{
    auto *editor = openEditor<VeskFilterEditor>(Qt::Key_E);
    QVERIFY(editor);
    key(Qt::Key_N, Qt::ControlModifier);
    type(QStringLiteral("online friends"));
    choose(Qt::Key_K, QStringLiteral("presence"));
    key(Qt::Key_Insert);
    key(Qt::Key_Down); // "is" -> "is not" (a space would open the list)
    key(Qt::Key_Tab);
    type(QStringLiteral("Offline"));
    key(Qt::Key_Insert, Qt::ControlModifier);
    type(QStringLiteral("OR"));
    for (const char *group : { "Friends", "Family" }) {
        choose(Qt::Key_K, QStringLiteral("group"));
        key(Qt::Key_Insert);
        key(Qt::Key_Tab);
        type(QString::fromLatin1(group));
    }
    QCOMPARE(editor->findChild<QLabel *>(QStringLiteral("display"))->text(),
        QStringLiteral("(presence is not Offline) AND ((is Friends) OR (is Family))"));
    key(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(editorClosed<VeskFilterEditor>());

    QProcess vesk;
    vesk.start(QStringLiteral(VESK_ROSTER_PROGRAM),
        { QStringLiteral("--settings"), library->settingsDir(), QStringLiteral("export"),
            QStringLiteral("online friends") });
    QVERIFY(vesk.waitForFinished());
    QJsonObject exported = QJsonDocument::fromJson(vesk.readAllStandardOutput()).object();
    exported.remove(QStringLiteral("sorter"));
    QCOMPARE(QJsonDocument(exported).toJson(QJsonDocument::Compact),
        QByteArray(
            R"({"advanced":false,"children":[)"
            R"({"fields":{"is_or_not":"is not","presence_filter_presence":"offline"},"kind":"presence"},)"
            R"({"children":[{"fields":{"group_filter_presence":"Friends","is_or_not":"is"},"kind":"group"},)"
            R"({"fields":{"group_filter_presence":"Family","is_or_not":"is"},"kind":"group"}],)"
            R"("kind":"stack_filter","type":"or"}],"name":"online friends","type":"and"})"));

    key(Qt::Key_F, Qt::AltModifier);
    key(Qt::Key_End); // listed last
    QTRY_COMPARE(window->statusText(), QStringLiteral("14 of 42 entries shown"));
    QCOMPARE(shown(*window->proxy()), reference());
    QVERIFY(shown(*window->proxy()).startsWith(QLatin1String("Friends: ")));
}

void tst_RosterWindow::cancelStoresNothing()
{
    const auto before = files(library->settingsDir());
    auto *editor = openEditor<VeskFilterEditor>(Qt::Key_E);
    QVERIFY(editor);
    key(Qt::Key_N, Qt::ControlModifier);
    type(QStringLiteral("never stored"));
    choose(Qt::Key_K, QStringLiteral("display"));
    key(Qt::Key_Insert);
    key(Qt::Key_Escape);
    QVERIFY(editorClosed<VeskFilterEditor>());
    QCOMPARE(files(library->settingsDir()), before);
    QCOMPARE(library->session()->filters()->getFilterNames(),
        QStringList({ QStringLiteral("default"), QStringLiteral("online") }));
}

void tst_RosterWindow::sortingMethodFromTheEditorOrdersTheView()
{
    auto *editor = openEditor<VeskSorterEditor>(Qt::Key_M);
    QVERIFY(editor);
    key(Qt::Key_N, Qt::ControlModifier);
    type(QStringLiteral("by chats"));
    choose(Qt::Key_C, QStringLiteral("chats"));
    key(Qt::Key_Insert);
    key(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY(editorClosed<VeskSorterEditor>());

    choose(Qt::Key_S, QStringLiteral("by chats"));
    QCOMPARE(library->session()->sorters()->getDefault(), QStringLiteral("by chats"));
    // Most chats first; the contacts without a count keep roster order.
    QVERIFY2(
        shown(*window->proxy())
            .startsWith(QStringLiteral(
                "Friends: Alice Martin, Fatima, Dana Kowalski, Bob, Tariq, Émile Roux, charlie, "
                "Ivan, Greg, Hana Sato, Julia | ")),
        qPrintable(shown(*window->proxy())));
    QCOMPARE(shown(*window->proxy()), reference());
}

void tst_RosterWindow::refusalShowsAMessageAndStoresNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("conditionFirst"); // a condition before the nested stacks, or after
    QTest::addColumn<int>("stacks"); // nested stacks, each inside the last
    QTest::addColumn<QString>("message");
    QTest::newRow("too deep") << "deep" << false << VeskLibrarySession::maximumNesting()
                              << "levels deep, deeper than";
    QTest::newRow("empty nested stack")
        << "hollow" << true << 1 << "has a stack without conditions";
    QTest::newRow("the default filter's name")
        << "default" << true << 0 << "\"default\" is the name of the built-in filter";
}

void tst_RosterWindow::refusalShowsAMessageAndStoresNothing()
{
    QFETCH(QString, name);
    QFETCH(bool, conditionFirst);
    QFETCH(int, stacks);
    QFETCH(QString, message);
    const auto before = files(library->settingsDir());
    auto *editor = openEditor<VeskFilterEditor>(Qt::Key_E);
    QVERIFY(editor);
    key(Qt::Key_N, Qt::ControlModifier);
    type(name);
    choose(Qt::Key_K, QStringLiteral("presence"));
    if (conditionFirst)
        key(Qt::Key_Insert);
    for (int i = 0; i < stacks; ++i) {
        key(Qt::Key_C, Qt::AltModifier);
        key(Qt::Key_Insert, Qt::ControlModifier);
    }
    if (!conditionFirst)
        key(Qt::Key_Insert);
    key(Qt::Key_Return, Qt::ControlModifier);
    QVERIFY2(editor->message().contains(message), qPrintable(editor->message()));
    QVERIFY(editor->isVisible());
    QCOMPARE(files(library->settingsDir()), before);
    key(Qt::Key_Escape);
}

void tst_RosterWindow::simulatedActivityKeepsTheViewInStep()
{
    choose(Qt::Key_F, QStringLiteral("online"));
    QTRY_COMPARE(window->statusText(), QStringLiteral("34 of 42 entries shown"));
    const QString before = shown(*window->proxy());
    for (int step = 0; step < 30; ++step)
        window->simulateStep();
    QVERIFY(shown(*window->proxy()) != before);
    QCOMPARE(shown(*window->proxy()), reference());
}

// vesk-roster stores a filter while the window is open; the window shows it,
// and a change made in the window afterwards keeps it.
void tst_RosterWindow::veskRosterBesideTheWindowLosesNothing()
{
    auto veskRoster = [this](const QStringList &args) {
        QProcess process;
        process.start(QStringLiteral(VESK_ROSTER_PROGRAM),
            QStringList { QStringLiteral("--settings"), library->settingsDir() } + args);
        process.waitForFinished();
        return QString::fromUtf8(process.readAllStandardOutput());
    };
    veskRoster({ QStringLiteral("new"), QStringLiteral("workmates"), QStringLiteral("and"),
        QStringLiteral("group"), QStringLiteral("is_or_not=is"),
        QStringLiteral("group_filter_presence=Work") });
    auto *chooser = window->findChild<QComboBox *>(QStringLiteral("filter"));
    QTRY_VERIFY(chooser->findData(QStringLiteral("workmates")) >= 0);
    choose(Qt::Key_F, QStringLiteral("online"));
    const QString listed = veskRoster({ QStringLiteral("filters") });
    QVERIFY2(listed.contains(QLatin1String("workmates")), qPrintable(listed));
    QCOMPARE(library->session()->filters()->getCurrentFilterName(), QStringLiteral("online"));
    QCOMPARE(library->session()->filters()->getFilterNames(),
        QStringList(
            { QStringLiteral("default"), QStringLiteral("online"), QStringLiteral("workmates") }));
}

QTEST_MAIN(tst_RosterWindow)
#include "tst_rosterwindow.moc"
