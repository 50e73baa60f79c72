// The roster window's sorting editor on its own, over a settings directory
// in which a filter sorts by a method.

#include "veskfiltertree.h"

#include <librarysession.h>
#include <rosterfile.h>
#include <rosterlibrary.h>
#include <sortingdialog.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

class tst_SortingEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void renamedMethodTakesItsFiltersAlong();

private:
    std::unique_ptr<QTemporaryDir> dir;
    std::unique_ptr<VeskRosterLibrary> library;
};

void tst_SortingEditor::init()
{
    dir = std::make_unique<QTemporaryDir>();
    QString error;
    QVERIFY(VeskRosterFile::load(VeskRosterFile::sampleRoster(), &error));
    library = std::make_unique<VeskRosterLibrary>(dir->path() + QLatin1String("/settings"));
    QVERIFY2(library->open(&error), qPrintable(error));
    // "online" sorts by "by name", which is also the default method.
    QVERIFY2(library->change(
                 [](VeskLibrarySession &session, QString *error) {
                     if (!session.storeSorter(QStringLiteral("by name"), { QStringLiteral("name") },
                             { QStringLiteral("t") }, error)
                         || !session.setDefaultSorter(QStringLiteral("by name"), error))
                         return false;
                     VeskRosterFiltersStack *stack = session.createStack(
                         QStringLiteral("online"), VeskRosterFilter::RosterFilterAnd, error);
                     stack->appendFilter(
                         VeskFilterTree::presence(QStringLiteral("offline"), false));
                     stack->setSorter(QStringLiteral("by name"));
                     return session.storeNewStack(stack, error);
                 },
                 &error),
        qPrintable(error));
}

void tst_SortingEditor::cleanup()
{
    library.reset();
    VeskStandIn::resetRoster();
    dir.reset();
}

void tst_SortingEditor::renamedMethodTakesItsFiltersAlong()
{
    auto *editor = new VeskSorterEditor(library.get());
    editor->setAttribute(Qt::WA_DeleteOnClose);
    editor->show();
    editor->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(editor));
    auto *name = editor->findChild<QLineEdit *>(QStringLiteral("name"));
    QCOMPARE(name->text(), QStringLiteral("by name"));
    name->setFocus();
    name->selectAll();
    QTest::keyClicks(name, QStringLiteral("alphabetical"));
    QTest::keyClick(name, Qt::Key_Return, Qt::ControlModifier);
    QVERIFY2(editor->message().isEmpty(), qPrintable(editor->message()));

    VeskLibrarySession *session = library->session();
    QCOMPARE(session->sorters()->getSorters(), QStringList { QStringLiteral("alphabetical") });
    QCOMPARE(session->sorters()->getDefault(), QStringLiteral("alphabetical"));
    QCOMPARE(session->filters()->getStackFilter(QStringLiteral("online"))->getSorter(),
        QStringLiteral("alphabetical"));
    QCOMPARE(session->sorters()->getSorters(QStringLiteral("alphabetical")),
        QStringList { QStringLiteral("name") });
}

QTEST_MAIN(tst_SortingEditor)
#include "tst_sortingeditor.moc"
