// The filter list and the sorting-method editor in windows of their own,
// driven with keys; and the accessible names of every control of the three
// editor widgets.

#include "veskfiltertestenv.h"
#include "veskkeys.h"

#include <veskfiltereditorwidget.h>
#include <veskfilterlistwidget.h>
#include <veskrostersortersmanager.h>
#include <vesksortereditorwidget.h>

#include <QApplication>
#include <QHBoxLayout>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

namespace {

void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    VeskKeys::keyOrWindow(key, modifiers);
}

using VeskKeys::type;

bool showActive(QWidget *widget)
{
    widget->show();
    widget->activateWindow();
    return QTest::qWaitForWindowActive(widget);
}

// "name(original)" per method: comparators with + for ascending, - for descending.
QString describe(const QList<VeskSortingMethod> &methods)
{
    QStringList parts;
    for (const VeskSortingMethod &method : methods) {
        QStringList chain;
        for (int i = 0; i < method.comparators.size(); ++i)
            chain << (method.ascending.value(i) ? QLatin1Char('+') : QLatin1Char('-'))
                    + method.comparators.at(i);
        parts << QStringLiteral("%1(%2): %3")
                     .arg(method.name, method.original, chain.join(QLatin1Char(' ')));
    }
    return parts.join(QLatin1String("; "));
}

} // namespace

class tst_VeskListWidgets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void filterListEditsWithTheKeyboard();
    void sortingMethodsEditWithTheKeyboard();
    void everyControlHasAnAccessibleName();

private:
    std::unique_ptr<VeskFilterTestEnv> env;
};

void tst_VeskListWidgets::init()
{
    env = std::make_unique<VeskFilterTestEnv>();
}

void tst_VeskListWidgets::cleanup()
{
    env.reset();
}

void tst_VeskListWidgets::filterListEditsWithTheKeyboard()
{
    VeskFilterListWidget list;
    list.setFilters({ QStringLiteral("default"), QStringLiteral("work"), QStringLiteral("home") });
    QVERIFY(showActive(&list));
    QCOMPARE(list.currentFilter(), QStringLiteral("work"));
    QSignalSpy renamed(&list, &VeskFilterListWidget::filterRenamed);

    key(Qt::Key_N, Qt::ControlModifier); // "filter 1", last, its name selected
    type(QStringLiteral("late"));
    key(Qt::Key_Up, Qt::AltModifier); // above "home"
    list.setFocus();
    key(Qt::Key_Home); // "default": fixed
    key(Qt::Key_Delete, Qt::ControlModifier);
    key(Qt::Key_Down, Qt::AltModifier);
    key(Qt::Key_Down); // "work"
    key(Qt::Key_F2);
    type(QStringLiteral("office"));
    list.setFocus();
    key(Qt::Key_End); // "home"
    key(Qt::Key_Delete, Qt::ControlModifier);

    QCOMPARE(list.filters(),
        QStringList(
            { QStringLiteral("default"), QStringLiteral("office"), QStringLiteral("late") }));
    QCOMPARE(list.originals(),
        QStringList({ QStringLiteral("default"), QStringLiteral("work"), QString() }));
    QCOMPARE(list.removedFilters(), QStringList { QStringLiteral("home") });
    QVERIFY(renamed.count() > 0);
    QCOMPARE(renamed.last().at(1).toString(), QStringLiteral("office"));
}

void tst_VeskListWidgets::sortingMethodsEditWithTheKeyboard()
{
    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    sorters->addSorter(QStringLiteral("busy"), { QStringLiteral("chats_count") });
    sorters->setSorterAscending(QStringLiteral("busy"), { QStringLiteral("f") });
    VeskSorterEditorWidget editor;
    editor.loadMethods(sorters);
    QVERIFY(showActive(&editor));
    editor.setFocus();

    key(Qt::Key_N, Qt::ControlModifier);
    type(QStringLiteral("by name"));
    key(Qt::Key_C, Qt::AltModifier);
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    type(QStringLiteral("name"));
    key(Qt::Key_Insert);
    // Still in the combo box, which adds what is typed within this interval
    // to its last search.
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    type(QStringLiteral("pres"));
    key(Qt::Key_Insert);
    key(Qt::Key_P, Qt::AltModifier); // the comparators, "presence" selected
    key(Qt::Key_Space); // descending
    key(Qt::Key_Up, Qt::ControlModifier);
    key(Qt::Key_D, Qt::AltModifier);
    QTRY_COMPARE(editor.defaultMethod(), QStringLiteral("by name"));

    QCOMPARE(describe(editor.methods()),
        QStringLiteral("busy(busy): -chats_count; by name(): -presence +name"));
    QVERIFY(editor.isModified());
    QVERIFY(sorters->getSorters().size() == 1); // nothing stored
}

void tst_VeskListWidgets::everyControlHasAnAccessibleName()
{
    QWidget window;
    auto *filterEditor = new VeskFilterEditorWidget(&window);
    auto *list = new VeskFilterListWidget(&window);
    auto *sorting = new VeskSorterEditorWidget(&window);
    auto *layout = new QHBoxLayout(&window);
    for (QWidget *widget : { static_cast<QWidget *>(list), static_cast<QWidget *>(filterEditor),
             static_cast<QWidget *>(sorting) })
        layout->addWidget(widget);
    VeskRosterFiltersStack *stack = static_cast<VeskRosterFiltersStack *>(
        VeskRosterFiltersManager::getInstance()->createFilter(
            QStringLiteral("stack_filter"), VeskRosterFilter::RosterFilterAnd));
    stack->appendFilter(VeskRosterFiltersManager::getInstance()->createFilter(
        QStringLiteral("display"), VeskRosterFilter::RosterFilterDefault));
    filterEditor->setFilter(stack);
    delete stack;
    auto *tree = filterEditor->findChild<QTreeWidget *>(QStringLiteral("conditions"));
    tree->setCurrentItem(tree->topLevelItem(0)->child(0)); // its field editors show
    QVERIFY(showActive(&window));

    QStringList unnamed;
    int controls = 0;
    const QList<QWidget *> widgets = window.findChildren<QWidget *>();
    for (QWidget *widget : widgets) {
        if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisible() || widget->focusProxy())
            continue;
        ++controls;
        if (widget->accessibleName().isEmpty())
            unnamed << QString::fromLatin1(widget->metaObject()->className()) + QLatin1Char(' ')
                    + widget->objectName();
    }
    QVERIFY2(unnamed.isEmpty(), qPrintable(unnamed.join(QLatin1String(", "))));
    QVERIFY2(controls >= 25, qPrintable(QString::number(controls)));
}

QTEST_MAIN(tst_VeskListWidgets)
#include "tst_vesklistwidgets.moc"
