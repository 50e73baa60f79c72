// The filter editor widget in a window of its own, as a client embeds it:
// driven with keys, checked through the tree it hands back.

#include "veskfiltertestenv.h"
#include "veskfiltertree.h"
#include "veskkeys.h"

#include <rosterfile.h>
#include <veskfiltereditorwidget.h>
#include <veskfilterkinds.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

using namespace VeskFilterTree;

namespace {

// A condition kind of the test's own, which the library does not know: a
// combo box with labels, a line edit with a caption, a bound and a trailing
// text, and a combo box without labels.
class InitialsFilter : public VeskRosterFilter
{
public:
    RosterFilterType getType() const override { return RosterFilterLeaf; }
    QString id() const override { return QStringLiteral("initials"); }
    QString name() const override { return QStringLiteral("initials"); }
    QString display() const override { return QStringLiteral("%1 %2 %3").arg(how, text, part); }
    bool filter(const VeskBuddy &) const override { return true; }
    QList<VeskField> getConfiguration() const override
    {
        return { VeskField::comboBox(QString(), QStringLiteral("initials_how"),
                     { QStringLiteral("starts"), QStringLiteral("ends") },
                     { QStringLiteral("starts with"), QStringLiteral("ends with") }, how,
                     QString()),
            VeskField::lineEdit(QStringLiteral("letters"), QStringLiteral("initials_text"), text,
                12, QStringLiteral("(case ignored)")),
            VeskField::comboBox(QString(), QStringLiteral("initials_part"),
                { QStringLiteral("first"), QStringLiteral("last") }, {}, part, QString()) };
    }
    void setConfiguration(const QList<VeskField> &fields) override
    {
        for (const VeskField &field : fields) {
            if (field.getId() == QLatin1String("initials_how"))
                how = field.getSelectedId();
            else if (field.getId() == QLatin1String("initials_text"))
                text = field.getText();
            else if (field.getId() == QLatin1String("initials_part"))
                part = field.getSelectedId();
        }
    }

private:
    QString how = QStringLiteral("starts");
    QString text;
    QString part = QStringLiteral("first");
};

void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    VeskKeys::keyOrWindow(key, modifiers);
}

using VeskKeys::type;

// Alt+mnemonic focuses a labelled widget; typing picks the item in a combo box.
void choose(int mnemonic, const QString &text)
{
    key(mnemonic, Qt::AltModifier);
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    type(text);
}

VeskRosterFiltersStack *stackOf(
    VeskRosterFilter::RosterFilterType type, const QList<VeskRosterFilter *> &children)
{
    VeskRosterFiltersStack *stack = nested(type, children);
    stack->setName(QString());
    return stack;
}

VeskRosterFilter *leaf(const QString &kind, const FieldValues &values)
{
    VeskRosterFilter *filter = VeskRosterFiltersManager::getInstance()->createFilter(
        kind, VeskRosterFilter::RosterFilterDefault);
    configure(*filter, values);
    return filter;
}

VeskRosterFilter *group(const QString &name)
{
    return leaf(QStringLiteral("group"),
        { { QStringLiteral("is_or_not"), QStringLiteral("is") },
            { QStringLiteral("group_filter_presence"), name } });
}

// What the generated editors show: per field, in order, "id=[item ids|item
// texts] selected id" for a combo box, "id=text max" for a line edit.
QString shownFields(const QList<QWidget *> &editors)
{
    QStringList parts;
    for (QWidget *editor : editors) {
        if (auto *combo = qobject_cast<QComboBox *>(editor)) {
            QStringList ids, texts;
            for (int i = 0; i < combo->count(); ++i) {
                ids << combo->itemData(i).toString();
                texts << combo->itemText(i);
            }
            parts << QStringLiteral("%1=[%2|%3] %4")
                         .arg(editor->objectName(), ids.join(QLatin1Char(',')),
                             texts.join(QLatin1Char(',')), combo->currentData().toString());
        } else if (auto *edit = qobject_cast<QLineEdit *>(editor)) {
            parts << QStringLiteral("%1=%2 %3")
                         .arg(editor->objectName(), edit->text())
                         .arg(edit->maxLength());
        }
    }
    return parts.join(QStringLiteral("; "));
}

// The same from the filter's own description; a combo box item without a
// label shows its id.
QString describedFields(const QList<VeskField> &fields)
{
    QStringList parts;
    for (const VeskField &field : fields) {
        if (field.getKind() == VeskField::ComboBox) {
            const QStringList ids = field.getComboBoxIds();
            QStringList texts;
            for (int i = 0; i < ids.size(); ++i) {
                const QString label = field.getComboBoxLabels().value(i);
                texts << (label.isEmpty() ? ids.at(i) : label);
            }
            parts << QStringLiteral("%1=[%2|%3] %4")
                         .arg(field.getId(), ids.join(QLatin1Char(',')),
                             texts.join(QLatin1Char(',')), field.getSelectedId());
        } else {
            parts << QStringLiteral("%1=%2 %3")
                         .arg(field.getId(), field.getText())
                         .arg(field.getMaxLength());
        }
    }
    return parts.join(QStringLiteral("; "));
}

} // namespace

class tst_VeskFilterEditorWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void keyboardBuildsANestedFilter();
    void discardHandsBackTheOriginal();
    void generatedEditorsFollowTheConfiguration_data();
    void generatedEditorsFollowTheConfiguration();
    void registeredKindIsOfferedAndMade();
    void theLibrarysKindsCannotBeTakenOver();

private:
    QList<QWidget *> fieldEditors() const;

    std::unique_ptr<VeskFilterTestEnv> env;
    std::unique_ptr<VeskFilterEditorWidget> editor;
};

void tst_VeskFilterEditorWidget::init()
{
    env = std::make_unique<VeskFilterTestEnv>();
    QString error;
    QVERIFY2(VeskRosterFile::load(VeskRosterFile::sampleRoster(), &error), qPrintable(error));
    VeskRosterFiltersManager::getInstance();
    editor = std::make_unique<VeskFilterEditorWidget>();
    QVERIFY(editor->registerKind(
        QStringLiteral("initials"), QStringLiteral("initials"), [] { return new InitialsFilter; }));
    editor->resize(700, 500);
    editor->show();
    editor->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(editor.get()));
}

void tst_VeskFilterEditorWidget::cleanup()
{
    editor.reset();
    env.reset();
}

// The editors of the selected condition, in the order they were made.
QList<QWidget *> tst_VeskFilterEditorWidget::fieldEditors() const
{
    QList<QWidget *> result;
    const QList<QWidget *> all = editor->findChildren<QWidget *>();
    for (QWidget *widget : all) {
        if ((qobject_cast<QComboBox *>(widget) || qobject_cast<QLineEdit *>(widget))
            && widget->objectName() != QLatin1String("kind")
            && widget->objectName() != QLatin1String("join") && widget->isVisible())
            result.append(widget);
    }
    return result;
}

void tst_VeskFilterEditorWidget::keyboardBuildsANestedFilter()
{
    const std::unique_ptr<VeskRosterFiltersStack> given(
        stackOf(VeskRosterFilter::RosterFilterAnd, {}));
    given->setSorter(QStringLiteral("by name"));
    editor->setFilter(given.get());
    QSignalSpy changed(editor.get(), &VeskFilterEditorWidget::changed);

    choose(Qt::Key_K, QStringLiteral("presence"));
    key(Qt::Key_Insert);
    key(Qt::Key_Down); // "is" -> "is not" (a space would open the list)
    key(Qt::Key_Tab);
    type(QStringLiteral("Offline"));
    key(Qt::Key_Insert, Qt::ControlModifier);
    type(QStringLiteral("OR"));
    for (const char *name : { "Friends", "Family" }) {
        choose(Qt::Key_K, QStringLiteral("group"));
        key(Qt::Key_Insert);
        key(Qt::Key_Tab);
        type(QString::fromLatin1(name));
    }
    key(Qt::Key_V, Qt::AltModifier);
    // A mnemonic clicks its check box a moment later, as a press would.
    QTRY_VERIFY(editor->filter()->isAdvancedMode());

    const std::unique_ptr<VeskRosterFiltersStack> expected(
        stackOf(VeskRosterFilter::RosterFilterAnd,
            { presence(QStringLiteral("offline"), false),
                nested(VeskRosterFilter::RosterFilterOr,
                    { group(QStringLiteral("Friends")), group(QStringLiteral("Family")) }) }));
    expected->setSorter(QStringLiteral("by name"));
    expected->setAdvancedMode(true);
    const std::unique_ptr<VeskRosterFiltersStack> edited(editor->editedFilter());
    QCOMPARE(describe(edited.get()), describe(expected.get()));
    QCOMPARE(editor->findChild<QLabel *>(QStringLiteral("display"))->text(),
        QStringLiteral("(presence is not Offline) AND ((is Friends) OR (is Family))"));
    QVERIFY(editor->isModified());
    QVERIFY(changed.count() > 0);
    // The filter handed in is the caller's and stays as it was.
    QCOMPARE(given->getFilters().size(), 0);
}

void tst_VeskFilterEditorWidget::discardHandsBackTheOriginal()
{
    const std::unique_ptr<VeskRosterFiltersStack> given(stackOf(VeskRosterFilter::RosterFilterOr,
        { presence(QStringLiteral("online")),
            nested(VeskRosterFilter::RosterFilterAnd,
                { group(QStringLiteral("Work")), presence(QStringLiteral("away"), false) }) }));
    given->setSorter(QStringLiteral("by chats"));
    const QString before = describe(given.get());
    editor->setFilter(given.get());

    // Select the nested stack's first condition, remove it, add a display
    // condition to the stack, and switch the whole filter to AND.
    auto *tree = editor->findChild<QTreeWidget *>(QStringLiteral("conditions"));
    key(Qt::Key_C, Qt::AltModifier);
    tree->setCurrentItem(tree->topLevelItem(0)->child(1)->child(0));
    key(Qt::Key_Delete);
    choose(Qt::Key_K, QStringLiteral("display"));
    key(Qt::Key_Insert);
    type(QStringLiteral("x"));
    tree->setCurrentItem(tree->topLevelItem(0));
    choose(Qt::Key_J, QStringLiteral("AND"));
    key(Qt::Key_V, Qt::AltModifier);
    QTRY_VERIFY(editor->filter()->isAdvancedMode());
    const std::unique_ptr<VeskRosterFiltersStack> edited(editor->editedFilter());
    QVERIFY2(describe(edited.get()) != before, qPrintable(describe(edited.get())));

    editor->discard();
    QVERIFY(!editor->isModified());
    const std::unique_ptr<VeskRosterFiltersStack> discarded(editor->editedFilter());
    QCOMPARE(describe(discarded.get()), before);
    QCOMPARE(editor->displayText(), given->display());
    QCOMPARE(describe(given.get()), before);
}

void tst_VeskFilterEditorWidget::generatedEditorsFollowTheConfiguration_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<FieldValues>("values");
    const auto is = [](const char *id) {
        return qMakePair(QStringLiteral("is_or_not"), QString::fromLatin1(id));
    };
    QTest::newRow("presence") << "presence"
                              << FieldValues { is("is not"),
                                     { QStringLiteral("presence_filter_presence"),
                                         QStringLiteral("away") } };
    QTest::newRow("display") << "display"
                             << FieldValues { is("does not contain"),
                                    { QStringLiteral("display_filter_regexp"),
                                        QStringLiteral("Ali") } };
    QTest::newRow("description") << "description"
                                 << FieldValues { is("match exactly"),
                                        { QStringLiteral("description_filter_regexp"),
                                            QStringLiteral("lunch") } };
    QTest::newRow("group") << "group"
                           << FieldValues { is("is"),
                                  { QStringLiteral("group_filter_presence"),
                                      QStringLiteral("Family") } };
    QTest::newRow("account") << "account" << FieldValues { is("is not") };
    QTest::newRow("protocol") << "protocol" << FieldValues { is("is") };
    QTest::newRow("a kind the client registered")
        << "initials"
        << FieldValues { { QStringLiteral("initials_how"), QStringLiteral("ends") },
               { QStringLiteral("initials_text"), QStringLiteral("AB") },
               { QStringLiteral("initials_part"), QStringLiteral("last") } };
}

void tst_VeskFilterEditorWidget::generatedEditorsFollowTheConfiguration()
{
    QFETCH(QString, kind);
    QFETCH(FieldValues, values);
    VeskRosterFilter *condition = editor->kinds().createLeaf(kind);
    QVERIFY(condition);
    configure(*condition, values);
    const QList<VeskField> fields = condition->getConfiguration();
    const std::unique_ptr<VeskRosterFiltersStack> given(
        stackOf(VeskRosterFilter::RosterFilterAnd, { condition }));
    editor->setFilter(given.get());
    auto *tree = editor->findChild<QTreeWidget *>(QStringLiteral("conditions"));
    tree->setCurrentItem(tree->topLevelItem(0)->child(0));

    const QList<QWidget *> editors = fieldEditors();
    QCOMPARE(shownFields(editors), describedFields(fields));
    for (QWidget *widget : editors)
        QVERIFY2(!widget->accessibleName().isEmpty(), qPrintable(widget->objectName()));

    // Each editor hands its value back to the condition: the last item of
    // every combo box, a new text in every line edit.
    QList<VeskField> changed = fields;
    for (int i = 0; i < editors.size(); ++i) {
        if (auto *combo = qobject_cast<QComboBox *>(editors.at(i))) {
            combo->setFocus();
            key(Qt::Key_End);
            changed[i].setSelectedId(
                changed.at(i).getComboBoxIds().value(changed.at(i).getComboBoxIds().size() - 1));
        } else if (auto *edit = qobject_cast<QLineEdit *>(editors.at(i))) {
            edit->setFocus();
            edit->selectAll();
            type(QStringLiteral("Zed"));
            changed[i].setText(QStringLiteral("Zed"));
        }
    }
    const std::unique_ptr<VeskRosterFiltersStack> edited(editor->editedFilter());
    QCOMPARE(edited->getFilters().size(), 1);
    QCOMPARE(edited->getFilters().at(0)->id(), kind);
    QCOMPARE(VeskFilterTree::describe(edited->getFilters().at(0)->getConfiguration()),
        VeskFilterTree::describe(changed));
    QCOMPARE(editor->findChild<QLabel *>(QStringLiteral("display"))->text(), edited->display());
}

void tst_VeskFilterEditorWidget::registeredKindIsOfferedAndMade()
{
    const std::unique_ptr<VeskRosterFiltersStack> given(
        stackOf(VeskRosterFilter::RosterFilterAnd, {}));
    editor->setFilter(given.get());
    auto *kinds = editor->findChild<QComboBox *>(QStringLiteral("kind"));
    QVERIFY(kinds->findData(QStringLiteral("initials")) >= 0);
    QCOMPARE(
        kinds->count(), VeskRosterFiltersManager::getInstance()->getAvailableFilters().size() + 1);
    choose(Qt::Key_K, QStringLiteral("initials"));
    key(Qt::Key_Insert);
    type(QStringLiteral("ends"));
    key(Qt::Key_Tab);
    type(QStringLiteral("QX"));
    const std::unique_ptr<VeskRosterFiltersStack> edited(editor->editedFilter());
    QCOMPARE(edited->display(), QStringLiteral("(ends QX first)"));
}

void tst_VeskFilterEditorWidget::theLibrarysKindsCannotBeTakenOver()
{
    VeskFilterKinds kinds;
    const auto make = [] {
        return new InitialsFilter;
    };
    QVERIFY(!kinds.registerKind(QStringLiteral("group"), QStringLiteral("group"), make));
    QVERIFY(!kinds.registerKind(QStringLiteral("stack_filter"), QString(), make));
    QVERIFY(!kinds.registerKind(QString(), QString(), make));
    QVERIFY(!kinds.registerKind(QStringLiteral("initials"), QString(), {}));
    const std::unique_ptr<VeskRosterFilter> made(kinds.createLeaf(QStringLiteral("group")));
    QVERIFY(made && made->id() == QLatin1String("group"));
    QVERIFY(!kinds.createLeaf(QStringLiteral("initials")));
}

QTEST_MAIN(tst_VeskFilterEditorWidget)
#include "tst_veskfiltereditorwidget.moc"
