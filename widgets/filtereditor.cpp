#include "filtereditor.h"

#include "filtertree.h"
#include "rosterlibrary.h"

#include <librarysession.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSet>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace VeskFilterTreeOps;

namespace {

const QString defaultId = QStringLiteral("default");
const int filterRole = Qt::UserRole;

VeskRosterFilter *filterOf(const QTreeWidgetItem *item)
{
    return item ? reinterpret_cast<VeskRosterFilter *>(item->data(0, filterRole).value<quintptr>())
                : nullptr;
}

QPushButton *button(const QString &text, const QKeySequence &shortcut, QWidget *parent)
{
    auto *result = new QPushButton(text, parent);
    result->setAutoDefault(false);
    if (!shortcut.isEmpty()) {
        auto *extra = new QShortcut(shortcut, parent);
        QObject::connect(extra, &QShortcut::activated, result, [result] { result->click(); });
        result->setToolTip(shortcut.toString(QKeySequence::NativeText));
    }
    return result;
}

} // namespace

VeskFilterEditor::VeskFilterEditor(VeskRosterLibrary *rosterLibrary, QWidget *parent)
    : QDialog(parent)
    , library(rosterLibrary)
{
    setWindowTitle(tr("Filters"));
    buildWidgets();
    loadDrafts();
    filterList->setCurrentRow(drafts.size() > 1 ? 1 : 0);
    filterList->setFocus();
}

VeskFilterEditor::~VeskFilterEditor() = default;

QString VeskFilterEditor::message() const
{
    return messageLabel->isVisible() ? messageLabel->text() : QString();
}

void VeskFilterEditor::buildWidgets()
{
    auto *filtersLabel = new QLabel(tr("&Filters:"), this);
    filterList = new QListWidget(this);
    filtersLabel->setBuddy(filterList);
    auto *newButton = button(tr("&New filter"), QKeySequence(tr("Ctrl+N")), this);
    removeFilterButton = button(tr("Remove filter"), QKeySequence(tr("Ctrl+Del")), this);
    upFilterButton = button(tr("Filter up"), QKeySequence(tr("Alt+Up")), this);
    downFilterButton = button(tr("Filter down"), QKeySequence(tr("Alt+Down")), this);
    auto *left = new QVBoxLayout;
    left->addWidget(filtersLabel);
    left->addWidget(filterList);
    for (QPushButton *b : { newButton, removeFilterButton, upFilterButton, downFilterButton })
        left->addWidget(b);

    editArea = new QWidget(this);
    auto *form = new QFormLayout(editArea);
    form->setContentsMargins(0, 0, 0, 0);
    nameEdit = new QLineEdit(editArea);
    auto *nameLabel = new QLabel(tr("Na&me:"), editArea);
    nameLabel->setBuddy(nameEdit);
    form->addRow(nameLabel, nameEdit);
    advancedBox = new QCheckBox(tr("Ad&vanced mode"), editArea);
    form->addRow(QString(), advancedBox);

    tree = new QTreeWidget(editArea);
    tree->setColumnCount(2);
    tree->setHeaderLabels({ tr("Kind"), tr("Condition") });
    tree->setColumnWidth(0, 160);
    tree->setObjectName(QStringLiteral("conditions"));
    auto *treeLabel = new QLabel(tr("&Conditions:"), editArea);
    treeLabel->setBuddy(tree);
    form->addRow(treeLabel, tree);

    kindCombo = new QComboBox(editArea);
    kindCombo->setObjectName(QStringLiteral("kind"));
    auto *kindLabel = new QLabel(tr("&Kind:"), editArea);
    kindLabel->setBuddy(kindCombo);
    auto *addButton = button(tr("&Add condition"), QKeySequence(tr("Ins")), editArea);
    auto *stackButton = button(tr("Add nested &stack"), QKeySequence(tr("Ctrl+Ins")), editArea);
    auto *adding = new QHBoxLayout;
    adding->addWidget(kindCombo, 1);
    adding->addWidget(addButton);
    adding->addWidget(stackButton);
    form->addRow(kindLabel, adding);

    auto *removeButton = button(tr("&Remove"), QKeySequence(), editArea);
    auto *upButton = button(tr("Move &up"), QKeySequence(tr("Ctrl+Up")), editArea);
    auto *downButton = button(tr("Move &down"), QKeySequence(tr("Ctrl+Down")), editArea);
    auto *moving = new QHBoxLayout;
    moving->addWidget(removeButton);
    moving->addWidget(upButton);
    moving->addWidget(downButton);
    moving->addStretch();
    form->addRow(QString(), moving);
    auto *deleteKey
        = new QShortcut(QKeySequence::Delete, tree, nullptr, nullptr, Qt::WidgetShortcut);
    connect(
        deleteKey, &QShortcut::activated, removeButton, [removeButton] { removeButton->click(); });

    joinCombo = new QComboBox(editArea);
    joinCombo->setObjectName(QStringLiteral("join"));
    joinCombo->addItem(tr("AND: every condition"), int(VeskRosterFilter::RosterFilterAnd));
    joinCombo->addItem(tr("OR: any condition"), int(VeskRosterFilter::RosterFilterOr));
    joinLabel = new QLabel(tr("&Join with:"), editArea);
    joinLabel->setBuddy(joinCombo);
    form->addRow(joinLabel, joinCombo);

    fieldPanel = new QWidget(editArea);
    fieldLayout = new QFormLayout(fieldPanel);
    fieldLayout->setContentsMargins(0, 0, 0, 0);
    form->addRow(fieldPanel);

    displayLabel = new QLabel(editArea);
    displayLabel->setObjectName(QStringLiteral("display"));
    displayLabel->setWordWrap(true);
    displayLabel->setTextFormat(Qt::PlainText);
    displayLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form->addRow(tr("Shows:"), displayLabel);

    messageLabel = new QLabel(this);
    messageLabel->setObjectName(QStringLiteral("message"));
    messageLabel->setWordWrap(true);
    messageLabel->setTextFormat(Qt::PlainText);
    messageLabel->setStyleSheet(QStringLiteral("color: #b00020"));
    messageLabel->hide();

    buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto *okKey = new QShortcut(QKeySequence(tr("Ctrl+Return")), this);
    connect(okKey, &QShortcut::activated, this, &VeskFilterEditor::accept);

    auto *columns = new QHBoxLayout;
    columns->addLayout(left, 1);
    columns->addWidget(editArea, 3);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addWidget(messageLabel);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &VeskFilterEditor::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &VeskFilterEditor::reject);
    connect(filterList, &QListWidget::currentRowChanged, this, &VeskFilterEditor::showDraft);
    connect(newButton, &QPushButton::clicked, this, &VeskFilterEditor::newFilter);
    connect(removeFilterButton, &QPushButton::clicked, this, &VeskFilterEditor::removeFilter);
    connect(upFilterButton, &QPushButton::clicked, this, [this] { moveFilter(-1); });
    connect(downFilterButton, &QPushButton::clicked, this, [this] { moveFilter(1); });
    connect(nameEdit, &QLineEdit::textEdited, this, [this](const QString &text) {
        draft()->name = text;
        filterList->currentItem()->setText(text);
        changed();
    });
    connect(advancedBox, &QCheckBox::toggled, this, [this](bool on) {
        if (draft()->root && draft()->advanced != on) {
            draft()->advanced = on;
            changed();
        }
    });
    connect(tree, &QTreeWidget::currentItemChanged, this, &VeskFilterEditor::showNode);
    connect(addButton, &QPushButton::clicked, this, &VeskFilterEditor::addCondition);
    connect(stackButton, &QPushButton::clicked, this, &VeskFilterEditor::addStack);
    connect(removeButton, &QPushButton::clicked, this, &VeskFilterEditor::removeNode);
    connect(upButton, &QPushButton::clicked, this, [this] { moveNode(-1); });
    connect(downButton, &QPushButton::clicked, this, [this] { moveNode(1); });
    connect(joinCombo, QOverload<int>::of(&QComboBox::activated), this, &VeskFilterEditor::setJoin);
    resize(820, 560);
}

void VeskFilterEditor::loadDrafts()
{
    VeskRosterFiltersManager *manager = library->session()->filters();
    QStringList kinds = manager->getAvailableFilters();
    std::sort(kinds.begin(), kinds.end(), [manager](const QString &a, const QString &b) {
        return manager->getFilterName(a).localeAwareCompare(manager->getFilterName(b)) < 0;
    });
    for (const QString &kind : qAsConst(kinds))
        kindCombo->addItem(manager->getFilterName(kind), kind);

    const QStringList ids = manager->getFilterNames();
    for (const QString &id : ids) {
        auto entry = std::make_unique<Draft>();
        entry->name = id;
        if (id != defaultId) {
            VeskRosterFiltersStack *stack = manager->getStackFilter(id);
            if (!stack)
                continue;
            entry->original = id;
            entry->advanced = stack->isAdvancedMode();
            entry->sorter = stack->getSorter();
            entry->root.reset(static_cast<VeskRosterFiltersStack *>(copy(stack, manager)));
            openedWith.append(id);
        }
        filterList->addItem(id);
        drafts.push_back(std::move(entry));
    }
}

VeskFilterEditor::Draft *VeskFilterEditor::draft() const
{
    const int row = filterList->currentRow();
    return row >= 0 && row < int(drafts.size()) ? drafts.at(size_t(row)).get() : nullptr;
}

VeskRosterFilter *VeskFilterEditor::selectedFilter() const
{
    return filterOf(tree->currentItem());
}

VeskRosterFiltersStack *VeskFilterEditor::targetStack() const
{
    VeskRosterFilter *selected = selectedFilter();
    if (!selected)
        return draft()->root.get();
    if (VeskRosterFiltersStack *stack = asStack(selected))
        return stack;
    return asStack(selected->getParent());
}

void VeskFilterEditor::showDraft()
{
    Draft *current = draft();
    const bool editable = current && current->root;
    const int row = filterList->currentRow();
    editArea->setEnabled(editable);
    removeFilterButton->setEnabled(editable);
    upFilterButton->setEnabled(editable && row > 1);
    downFilterButton->setEnabled(editable && row + 1 < int(drafts.size()));
    nameEdit->setText(current ? current->name : QString());
    {
        const QSignalBlocker blocker(advancedBox);
        advancedBox->setChecked(editable && current->advanced);
    }
    rebuildTree(editable ? current->root.get() : nullptr);
    if (current && !editable)
        displayLabel->setText(tr("every entry; the default filter cannot be edited"));
}

void VeskFilterEditor::rebuildTree(VeskRosterFilter *select)
{
    const QSignalBlocker blocker(tree);
    tree->clear();
    if (draft() && draft()->root)
        addItems(nullptr, draft()->root.get(), select);
    tree->expandAll();
    showNode();
    updateTexts();
}

void VeskFilterEditor::addItems(
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

void VeskFilterEditor::showNode()
{
    qDeleteAll(fieldEditors);
    fieldEditors.clear();
    while (fieldLayout->rowCount() > 0)
        fieldLayout->removeRow(0);
    VeskRosterFilter *selected = selectedFilter();
    VeskRosterFiltersStack *stack = asStack(selected);
    joinCombo->setEnabled(stack != nullptr);
    joinLabel->setEnabled(stack != nullptr);
    if (stack)
        joinCombo->setCurrentIndex(joinCombo->findData(int(stack->getType())));
    if (!selected || stack)
        return;

    // The editors are the filter's own description of its settings: a combo
    // box or a line edit per field, in the filter's order.
    auto *row = new QWidget(fieldPanel);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    const QList<VeskField> fields = selected->getConfiguration();
    for (int i = 0; i < fields.size(); ++i) {
        const VeskField &field = fields.at(i);
        QWidget *editor = nullptr;
        if (field.getKind() == VeskField::ComboBox) {
            auto *combo = new QComboBox(row);
            const QStringList ids = field.getComboBoxIds();
            const QStringList labels = field.getComboBoxLabels();
            for (int item = 0; item < ids.size(); ++item) {
                const QString label = labels.value(item);
                combo->addItem(label.isEmpty() ? ids.at(item) : label, ids.at(item));
            }
            combo->setCurrentIndex(ids.indexOf(field.getSelectedId()));
            connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                [this, combo, i](int index) { setField(i, combo->itemData(index).toString()); });
            editor = combo;
        } else {
            auto *edit = new QLineEdit(field.getText(), row);
            edit->setMaxLength(field.getMaxLength());
            connect(edit, &QLineEdit::textEdited, this,
                [this, i](const QString &text) { setField(i, text); });
            editor = edit;
        }
        editor->setObjectName(field.getId());
        editor->setAccessibleName(field.getId());
        layout->addWidget(editor, 1);
    }
    // Tab goes from the join chooser through the field editors, then on.
    QWidget *previous = joinCombo;
    for (int i = 0; i < layout->count(); ++i) {
        QWidget::setTabOrder(previous, layout->itemAt(i)->widget());
        previous = layout->itemAt(i)->widget();
    }
    if (layout->count() > 0)
        row->setFocusProxy(layout->itemAt(0)->widget());
    fieldEditors.append(row);
    fieldLayout->addRow(selected->name(), row);
    // Now, not when the layout gets round to it: the editor may take the focus at once.
    row->show();
}

void VeskFilterEditor::updateTexts()
{
    for (QTreeWidgetItemIterator it(tree); *it; ++it) {
        VeskRosterFilter *filter = filterOf(*it);
        const VeskRosterFiltersStack *stack = asStack(filter);
        if (!stack) {
            (*it)->setText(0, filter->name());
            (*it)->setText(1, filter->display());
        } else {
            (*it)->setText(
                0, stack->getType() == VeskRosterFilter::RosterFilterOr ? tr("OR") : tr("AND"));
            (*it)->setText(1, stack->display());
        }
    }
    if (draft() && draft()->root)
        displayLabel->setText(draft()->root->display());
}

void VeskFilterEditor::changed()
{
    draft()->dirty = true;
    messageLabel->hide();
    updateTexts();
}

void VeskFilterEditor::newFilter()
{
    VeskRosterFiltersManager *manager = library->session()->filters();
    QString name;
    for (int n = 1;; ++n) {
        name = tr("filter %1").arg(n);
        if (std::none_of(
                drafts.begin(), drafts.end(), [&](const auto &d) { return d->name == name; }))
            break;
    }
    auto entry = std::make_unique<Draft>();
    entry->name = name;
    entry->dirty = true;
    entry->root.reset(static_cast<VeskRosterFiltersStack *>(
        manager->createFilter(QStringLiteral("stack_filter"), VeskRosterFilter::RosterFilterAnd)));
    drafts.push_back(std::move(entry));
    filterList->addItem(name);
    filterList->setCurrentRow(int(drafts.size()) - 1);
    nameEdit->setFocus();
    nameEdit->selectAll();
}

void VeskFilterEditor::removeFilter()
{
    const int row = filterList->currentRow();
    if (!draft() || !draft()->root)
        return;
    drafts.erase(drafts.begin() + row);
    delete filterList->takeItem(row);
    messageLabel->hide();
}

void VeskFilterEditor::moveFilter(int delta)
{
    const int row = filterList->currentRow();
    const int to = row + delta;
    // "default" keeps the first place.
    if (!draft() || !draft()->root || to < 1 || to >= int(drafts.size()))
        return;
    std::swap(drafts[size_t(row)], drafts[size_t(to)]);
    const QSignalBlocker blocker(filterList);
    filterList->insertItem(to, filterList->takeItem(row));
    filterList->setCurrentRow(to);
    showDraft();
    changed();
}

void VeskFilterEditor::addCondition()
{
    VeskRosterFiltersStack *stack = targetStack();
    const QString kind = kindCombo->currentData().toString();
    VeskRosterFilter *leaf
        = library->session()->filters()->createFilter(kind, VeskRosterFilter::RosterFilterDefault);
    if (!stack || !leaf)
        return;
    stack->appendFilter(leaf);
    rebuildTree(leaf);
    changed();
    if (!fieldEditors.isEmpty())
        fieldEditors.first()->setFocus();
}

void VeskFilterEditor::addStack()
{
    VeskRosterFiltersStack *stack = targetStack();
    if (!stack)
        return;
    VeskRosterFilter *nested = library->session()->filters()->createFilter(
        QStringLiteral("stack_filter"), VeskRosterFilter::RosterFilterAnd);
    stack->appendFilter(nested);
    rebuildTree(nested);
    changed();
    joinCombo->setFocus();
}

void VeskFilterEditor::removeNode()
{
    VeskRosterFilter *selected = selectedFilter();
    VeskRosterFiltersStack *parent = selected ? asStack(selected->getParent()) : nullptr;
    if (!parent)
        return; // the filter itself goes with "Remove filter"
    parent->removeFilter(selected);
    delete selected;
    rebuildTree(parent);
    changed();
}

void VeskFilterEditor::moveNode(int delta)
{
    VeskRosterFilter *selected = selectedFilter();
    VeskRosterFiltersStack *parent = selected ? asStack(selected->getParent()) : nullptr;
    if (!parent)
        return;
    QList<VeskRosterFilter *> children = parent->getFilters();
    const int from = children.indexOf(selected);
    const int to = from + delta;
    if (to < 0 || to >= children.size())
        return;
    children.move(from, to);
    for (VeskRosterFilter *child : qAsConst(children))
        parent->removeFilter(child);
    for (VeskRosterFilter *child : qAsConst(children))
        parent->appendFilter(child);
    rebuildTree(selected);
    changed();
}

void VeskFilterEditor::setJoin(int index)
{
    VeskRosterFiltersStack *stack = asStack(selectedFilter());
    const auto type = VeskRosterFilter::RosterFilterType(joinCombo->itemData(index).toInt());
    if (!stack || stack->getType() == type)
        return;
    // A stack's type is fixed when it is made: a new stack takes the
    // children and the old one's place.
    VeskRosterFiltersStack *replacement = retype(stack, type, library->session()->filters());
    if (stack == draft()->root.get()) {
        draft()->root.reset(replacement);
    } else {
        auto *parent = asStack(stack->getParent());
        QList<VeskRosterFilter *> children = parent->getFilters();
        children[children.indexOf(stack)] = replacement;
        for (VeskRosterFilter *child : parent->getFilters())
            parent->removeFilter(child);
        for (VeskRosterFilter *child : qAsConst(children))
            parent->appendFilter(child);
        delete stack;
    }
    rebuildTree(replacement);
    changed();
}

void VeskFilterEditor::setField(int field, const QString &value)
{
    VeskRosterFilter *selected = selectedFilter();
    if (!selected || asStack(selected))
        return;
    QList<VeskField> fields = selected->getConfiguration();
    if (field >= fields.size())
        return;
    if (fields.at(field).getKind() == VeskField::ComboBox)
        fields[field].setSelectedId(value);
    else
        fields[field].setText(value);
    selected->setConfiguration(fields);
    changed();
}

void VeskFilterEditor::accept()
{
    const auto edit = [this](VeskLibrarySession &session, QString *error) {
        return store(session, error);
    };
    if (library->changeOrExplain(edit, messageLabel))
        QDialog::accept();
}

QString VeskFilterEditor::check() const
{
    QSet<QString> names;
    for (const auto &entry : drafts) {
        if (!entry->root)
            continue;
        if (entry->name.isEmpty())
            return tr("a filter needs a name");
        if (entry->name == defaultId)
            return tr("\"default\" is the name of the built-in filter; choose another");
        if (names.contains(entry->name))
            return tr("two filters are named \"%1\"; choose another name").arg(entry->name);
        names.insert(entry->name);
        const int nesting = VeskLibrarySession::nestingOf(entry->root.get());
        if (nesting > VeskLibrarySession::maximumNesting()) {
            return tr("the filter \"%1\" nests stacks %2 levels deep, deeper than %3 levels")
                .arg(entry->name)
                .arg(nesting)
                .arg(VeskLibrarySession::maximumNesting());
        }
        if (hasEmptyStack(entry->root.get())) {
            return tr("the filter \"%1\" has a stack without conditions: a stack stored without "
                      "children does not read back as it was, so it is never stored")
                .arg(entry->name);
        }
    }
    return QString();
}

bool VeskFilterEditor::store(VeskLibrarySession &session, QString *error)
{
    // Everything is checked before anything is touched.
    *error = check();
    if (!error->isEmpty())
        return false;
    VeskRosterFiltersManager *manager = session.filters();
    for (const QString &id : qAsConst(openedWith)) {
        const bool kept = std::any_of(
            drafts.begin(), drafts.end(), [&](const auto &entry) { return entry->original == id; });
        if (!kept && session.stack(id) && !session.removeStack(id, error))
            return false;
    }
    for (const auto &entry : drafts) {
        if (!entry->root || !entry->dirty)
            continue;
        if (!entry->original.isEmpty() && session.stack(entry->original)) {
            const std::unique_ptr<VeskRosterFiltersStack> replacement(
                static_cast<VeskRosterFiltersStack *>(copy(entry->root.get(), manager)));
            replacement->setAdvancedMode(entry->advanced);
            replacement->setSorter(entry->sorter);
            if (!session.replaceStack(entry->original, replacement.get(), error))
                return false;
            if (entry->name != entry->original
                && !session.renameStack(entry->original, entry->name, error))
                return false;
            continue;
        }
        VeskRosterFiltersStack *stack
            = session.createStack(entry->name, entry->root->getType(), error);
        if (!stack)
            return false;
        const QList<VeskRosterFilter *> children = entry->root->getFilters();
        for (VeskRosterFilter *child : children)
            stack->appendFilter(copy(child, manager));
        stack->setAdvancedMode(entry->advanced);
        stack->setSorter(entry->sorter);
        if (!session.storeNewStack(stack, error))
            return false;
    }

    // The display order, one step at a time as the library moves filters.
    // Filters another program added meanwhile sink to the end.
    QHash<QString, int> rank;
    for (const auto &entry : drafts)
        rank.insert(entry->name, int(rank.size()));
    auto rankOf = [&](const QString &id) {
        return rank.value(id, int(rank.size()));
    };
    for (bool moved = true; moved;) {
        moved = false;
        const QStringList order = manager->getFilterNames();
        for (int i = 2; i < order.size() && !moved; ++i) {
            if (rankOf(order.at(i - 1)) > rankOf(order.at(i))) {
                if (!session.moveUp(order.at(i), error))
                    return false;
                moved = true;
            }
        }
    }
    return true;
}
