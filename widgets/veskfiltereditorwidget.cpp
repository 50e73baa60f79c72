#include "veskfiltereditorwidget.h"

#include "veskconditioneditor_p.h"
#include "veskeditedtree_p.h"
#include "veskwidgetsupport_p.h"

#include <veskrosterfiltersstack.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>

using namespace VeskEditedTree;
using VeskWidgetSupport::button;
using VeskWidgetSupport::label;

namespace {

const int filterRole = Qt::UserRole;

VeskRosterFilter *filterOf(const QTreeWidgetItem *item)
{
    return item ? reinterpret_cast<VeskRosterFilter *>(item->data(0, filterRole).value<quintptr>())
                : nullptr;
}

} // namespace

VeskFilterEditorWidget::VeskFilterEditorWidget(QWidget *parent)
    : QWidget(parent)
{
    auto *form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    advancedBox = new QCheckBox(tr("Ad&vanced mode"), this);
    advancedBox->setObjectName(QStringLiteral("advanced"));
    advancedBox->setAccessibleName(VeskWidgetSupport::spoken(advancedBox->text()));
    form->addRow(QString(), advancedBox);

    tree = new QTreeWidget(this);
    tree->setObjectName(QStringLiteral("conditions"));
    tree->setColumnCount(2);
    tree->setHeaderLabels({ tr("Kind"), tr("Condition") });
    tree->setColumnWidth(0, 160);
    form->addRow(label(tr("&Conditions:"), tree, this), tree);

    kindCombo = new QComboBox(this);
    kindCombo->setObjectName(QStringLiteral("kind"));
    auto *addButton = button(tr("&Add condition"), QKeySequence(tr("Ins")), this);
    auto *stackButton = button(tr("Add nested &stack"), QKeySequence(tr("Ctrl+Ins")), this);
    auto *adding = new QHBoxLayout;
    adding->addWidget(kindCombo, 1);
    adding->addWidget(addButton);
    adding->addWidget(stackButton);
    form->addRow(label(tr("&Kind:"), kindCombo, this), adding);

    auto *removeButton = button(tr("&Remove"), QKeySequence(), this);
    auto *upButton = button(tr("Move &up"), QKeySequence(tr("Ctrl+Up")), this);
    auto *downButton = button(tr("Move &down"), QKeySequence(tr("Ctrl+Down")), this);
    auto *moving = new QHBoxLayout;
    moving->addWidget(removeButton);
    moving->addWidget(upButton);
    moving->addWidget(downButton);
    moving->addStretch();
    form->addRow(QString(), moving);
    treeButtons = { addButton, stackButton, removeButton, upButton, downButton };
    const char *buttonNames[] = { "add", "addStack", "remove", "up", "down" };
    for (int i = 0; i < treeButtons.size(); ++i)
        treeButtons.at(i)->setObjectName(QLatin1String(buttonNames[i]));
    auto *deleteKey
        = new QShortcut(QKeySequence::Delete, tree, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, removeButton, &QPushButton::click);

    joinCombo = new QComboBox(this);
    joinCombo->setObjectName(QStringLiteral("join"));
    joinCombo->addItem(tr("AND: every condition"), int(VeskRosterFilter::RosterFilterAnd));
    joinCombo->addItem(tr("OR: any condition"), int(VeskRosterFilter::RosterFilterOr));
    joinLabel = label(tr("&Join with:"), joinCombo, this);
    form->addRow(joinLabel, joinCombo);

    auto *fieldPanel = new QWidget(this);
    fieldLayout = new QFormLayout(fieldPanel);
    fieldLayout->setContentsMargins(0, 0, 0, 0);
    form->addRow(fieldPanel);

    displayLabel = new QLabel(this);
    displayLabel->setObjectName(QStringLiteral("display"));
    displayLabel->setWordWrap(true);
    displayLabel->setTextFormat(Qt::PlainText);
    displayLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    displayLabel->setAccessibleName(tr("Shows"));
    form->addRow(tr("Shows:"), displayLabel);

    connect(advancedBox, &QCheckBox::toggled, this, [this](bool on) {
        if (working && working->isAdvancedMode() != on) {
            working->setAdvancedMode(on);
            edited();
        }
    });
    connect(tree, &QTreeWidget::currentItemChanged, this, &VeskFilterEditorWidget::showNode);
    connect(addButton, &QPushButton::clicked, this, &VeskFilterEditorWidget::addCondition);
    connect(stackButton, &QPushButton::clicked, this, &VeskFilterEditorWidget::addStack);
    connect(removeButton, &QPushButton::clicked, this, &VeskFilterEditorWidget::removeNode);
    connect(upButton, &QPushButton::clicked, this, [this] { moveNode(-1); });
    connect(downButton, &QPushButton::clicked, this, [this] { moveNode(1); });
    connect(joinCombo, QOverload<int>::of(&QComboBox::activated), this,
        &VeskFilterEditorWidget::setJoin);
    fillKinds();
    setFilter(nullptr);
}

VeskFilterEditorWidget::~VeskFilterEditorWidget() = default;

bool VeskFilterEditorWidget::registerKind(
    const QString &kindId, const QString &name, const VeskFilterKinds::Factory &create)
{
    if (!filterKinds.registerKind(kindId, name, create))
        return false;
    fillKinds();
    return true;
}

const VeskFilterKinds &VeskFilterEditorWidget::kinds() const
{
    return filterKinds;
}

void VeskFilterEditorWidget::fillKinds()
{
    const QString chosen = kindCombo->currentData().toString();
    kindCombo->clear();
    const QStringList ids = filterKinds.kinds();
    for (const QString &kind : ids)
        kindCombo->addItem(filterKinds.name(kind), kind);
    kindCombo->setCurrentIndex(qMax(0, kindCombo->findData(chosen)));
}

void VeskFilterEditorWidget::setFilter(const VeskRosterFiltersStack *filter)
{
    original.reset(filter ? filterKinds.copyStack(filter) : nullptr);
    startFrom(original.get());
}

void VeskFilterEditorWidget::discard()
{
    startFrom(original.get());
    Q_EMIT changed();
}

void VeskFilterEditorWidget::startFrom(const VeskRosterFiltersStack *filter)
{
    working.reset(filter ? filterKinds.copyStack(filter) : nullptr);
    modified = false;
    const bool editable = working != nullptr;
    for (QWidget *control : { static_cast<QWidget *>(advancedBox), static_cast<QWidget *>(tree),
             static_cast<QWidget *>(kindCombo) })
        control->setEnabled(editable);
    for (QPushButton *control : qAsConst(treeButtons))
        control->setEnabled(editable);
    {
        const QSignalBlocker blocker(advancedBox);
        advancedBox->setChecked(editable && working->isAdvancedMode());
    }
    rebuildTree(working.get());
}

void VeskFilterEditorWidget::setPlaceholderText(const QString &text)
{
    placeholder = text;
    updateTexts();
}

bool VeskFilterEditorWidget::hasFilter() const
{
    return working != nullptr;
}

const VeskRosterFiltersStack *VeskFilterEditorWidget::filter() const
{
    return working.get();
}

VeskRosterFiltersStack *VeskFilterEditorWidget::editedFilter() const
{
    return working ? filterKinds.copyStack(working.get()) : nullptr;
}

bool VeskFilterEditorWidget::isModified() const
{
    return modified;
}

QString VeskFilterEditorWidget::displayText() const
{
    return working ? working->display() : QString();
}

const VeskRosterFilter *VeskFilterEditorWidget::selectedNode() const
{
    return selected();
}

VeskRosterFilter *VeskFilterEditorWidget::selected() const
{
    return filterOf(tree->currentItem());
}

VeskRosterFiltersStack *VeskFilterEditorWidget::targetStack() const
{
    VeskRosterFilter *node = selected();
    if (!node)
        return working.get();
    if (VeskRosterFiltersStack *stack = asStack(node))
        return stack;
    return asStack(node->getParent());
}

void VeskFilterEditorWidget::rebuildTree(VeskRosterFilter *select)
{
    {
        const QSignalBlocker blocker(tree);
        tree->clear();
        if (working)
            addItems(nullptr, working.get(), select);
        tree->expandAll();
    }
    showNode();
    updateTexts();
}

void VeskFilterEditorWidget::addItems(
    QTreeWidgetItem *parent, VeskRosterFilter *filter, VeskRosterFilter *select)
{
    auto *item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(tree);
    item->setData(0, filterRole, QVariant::fromValue(quintptr(filter)));
    if (filter == select)
        tree->setCurrentItem(item);
    if (VeskRosterFiltersStack *stack = asStack(filter)) {
        const QList<VeskRosterFilter *> children = stack->getFilters();
        for (VeskRosterFilter *child : children)
            addItems(item, child, select);
    }
}

void VeskFilterEditorWidget::showNode()
{
    // Keys must not go nowhere when the editor that had them goes.
    if (conditionEditor && conditionEditor->isAncestorOf(QApplication::focusWidget()))
        tree->setFocus();
    delete conditionEditor;
    conditionEditor = nullptr;
    while (fieldLayout->rowCount() > 0)
        fieldLayout->removeRow(0);
    VeskRosterFilter *node = selected();
    VeskRosterFiltersStack *stack = asStack(node);
    joinCombo->setEnabled(stack != nullptr);
    joinLabel->setEnabled(stack != nullptr);
    if (stack)
        joinCombo->setCurrentIndex(joinCombo->findData(int(stack->getType())));
    if (!node || stack)
        return;

    conditionEditor = new VeskConditionEditor(node, this);
    connect(conditionEditor, &VeskConditionEditor::changed, this, &VeskFilterEditorWidget::edited);
    // Tab goes from the join chooser through the field editors, then on.
    QWidget *previous = joinCombo;
    const QList<QWidget *> editors = conditionEditor->editors();
    for (QWidget *editor : editors) {
        QWidget::setTabOrder(previous, editor);
        previous = editor;
    }
    fieldLayout->addRow(node->name(), conditionEditor);
    // Now, not when the layout gets round to it: the editor may take the focus at once.
    conditionEditor->show();
}

void VeskFilterEditorWidget::updateTexts()
{
    for (QTreeWidgetItemIterator it(tree); *it; ++it) {
        const VeskRosterFilter *filter = filterOf(*it);
        if (const VeskRosterFiltersStack *stack = asStack(filter)) {
            (*it)->setText(
                0, stack->getType() == VeskRosterFilter::RosterFilterOr ? tr("OR") : tr("AND"));
            (*it)->setText(1, stack->display());
        } else {
            (*it)->setText(0, filter->name());
            (*it)->setText(1, filter->display());
        }
    }
    displayLabel->setText(working ? working->display() : placeholder);
}

void VeskFilterEditorWidget::edited()
{
    modified = true;
    updateTexts();
    Q_EMIT changed();
}

void VeskFilterEditorWidget::addCondition()
{
    VeskRosterFiltersStack *stack = targetStack();
    if (!stack)
        return;
    VeskRosterFilter *leaf = filterKinds.createLeaf(kindCombo->currentData().toString());
    if (!leaf)
        return;
    stack->appendFilter(leaf);
    rebuildTree(leaf);
    edited();
    if (conditionEditor)
        conditionEditor->setFocus();
}

void VeskFilterEditorWidget::addStack()
{
    VeskRosterFiltersStack *stack = targetStack();
    if (!stack)
        return;
    VeskRosterFiltersStack *nested = filterKinds.createStack(VeskRosterFilter::RosterFilterAnd);
    stack->appendFilter(nested);
    rebuildTree(nested);
    edited();
    joinCombo->setFocus();
}

void VeskFilterEditorWidget::removeNode()
{
    VeskRosterFilter *node = selected();
    VeskRosterFiltersStack *parent = node ? asStack(node->getParent()) : nullptr;
    if (!parent)
        return; // the filter itself is not a node to remove
    parent->removeFilter(node);
    delete node;
    rebuildTree(parent);
    edited();
}

void VeskFilterEditorWidget::moveNode(int delta)
{
    VeskRosterFilter *node = selected();
    VeskRosterFiltersStack *parent = node ? asStack(node->getParent()) : nullptr;
    if (!parent || !moveChild(parent, node, delta))
        return;
    rebuildTree(node);
    edited();
}

void VeskFilterEditorWidget::setJoin(int index)
{
    VeskRosterFiltersStack *stack = asStack(selected());
    const auto type = VeskRosterFilter::RosterFilterType(joinCombo->itemData(index).toInt());
    if (!stack || stack->getType() == type)
        return;
    VeskRosterFiltersStack *replacement = retype(stack, type, filterKinds);
    if (stack == working.get()) {
        working.reset(replacement);
    } else {
        replaceChild(asStack(stack->getParent()), stack, replacement);
        delete stack;
    }
    rebuildTree(replacement);
    edited();
}
