#include "vesksortereditorwidget.h"

#include "veskwidgetsupport_p.h"

#include <veskrostersortersmanager.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

using VeskWidgetSupport::button;
using VeskWidgetSupport::label;

VeskSorterEditorWidget::VeskSorterEditorWidget(QWidget *parent)
    : QWidget(parent)
{
    methodList = new QListWidget(this);
    methodList->setObjectName(QStringLiteral("methods"));
    auto *methodsLabel = label(tr("&Methods:"), methodList, this);
    setFocusProxy(methodList);
    auto *newButton = button(tr("&New method"), QKeySequence(tr("Ctrl+N")), this);
    auto *removeButton = button(tr("Remove method"), QKeySequence(tr("Ctrl+Del")), this);
    auto *left = new QVBoxLayout;
    left->addWidget(methodsLabel);
    left->addWidget(methodList);
    left->addWidget(newButton);
    left->addWidget(removeButton);

    editArea = new QWidget(this);
    auto *form = new QFormLayout(editArea);
    form->setContentsMargins(0, 0, 0, 0);
    nameEdit = new QLineEdit(editArea);
    nameEdit->setObjectName(QStringLiteral("name"));
    form->addRow(label(tr("Na&me:"), nameEdit, editArea), nameEdit);
    defaultBox = new QCheckBox(tr("&Default method (for filters without one)"), editArea);
    defaultBox->setObjectName(QStringLiteral("default"));
    defaultBox->setAccessibleName(VeskWidgetSupport::spoken(defaultBox->text()));
    form->addRow(QString(), defaultBox);
    comparatorList = new QListWidget(editArea);
    comparatorList->setObjectName(QStringLiteral("comparators"));
    form->addRow(label(tr("Com&parators:"), comparatorList, editArea), comparatorList);
    auto *hint = new QLabel(tr("The first comparator that tells two entries apart decides; a "
                               "checked comparator sorts ascending (Space switches)."),
        editArea);
    hint->setWordWrap(true);
    form->addRow(QString(), hint);
    comparatorCombo = new QComboBox(editArea);
    comparatorCombo->setObjectName(QStringLiteral("comparator"));
    auto *addButton = button(tr("&Add"), QKeySequence(tr("Ins")), editArea);
    auto *adding = new QHBoxLayout;
    adding->addWidget(comparatorCombo, 1);
    adding->addWidget(addButton);
    form->addRow(label(tr("&Comparator:"), comparatorCombo, editArea), adding);
    auto *dropButton = button(tr("&Remove"), QKeySequence(), editArea);
    auto *upButton = button(tr("Move &up"), QKeySequence(tr("Ctrl+Up")), editArea);
    auto *downButton = button(tr("Move do&wn"), QKeySequence(tr("Ctrl+Down")), editArea);
    auto *moving = new QHBoxLayout;
    moving->addWidget(dropButton);
    moving->addWidget(upButton);
    moving->addWidget(downButton);
    moving->addStretch();
    form->addRow(QString(), moving);
    auto *deleteKey
        = new QShortcut(QKeySequence::Delete, comparatorList, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, dropButton, &QPushButton::click);

    auto *columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->addLayout(left, 1);
    columns->addWidget(editArea, 2);

    connect(methodList, &QListWidget::currentRowChanged, this, &VeskSorterEditorWidget::showMethod);
    connect(newButton, &QPushButton::clicked, this, &VeskSorterEditorWidget::newMethod);
    connect(removeButton, &QPushButton::clicked, this, &VeskSorterEditorWidget::removeMethod);
    connect(addButton, &QPushButton::clicked, this, &VeskSorterEditorWidget::addComparator);
    connect(dropButton, &QPushButton::clicked, this, &VeskSorterEditorWidget::removeComparator);
    connect(upButton, &QPushButton::clicked, this, [this] { moveComparator(-1); });
    connect(downButton, &QPushButton::clicked, this, [this] { moveComparator(1); });
    connect(nameEdit, &QLineEdit::textEdited, this, [this](const QString &text) {
        VeskSortingMethod *current = method();
        if (!current)
            return;
        if (defaultName == current->name)
            defaultName = text;
        current->name = text;
        methodList->currentItem()->setText(text);
        edited(false);
    });
    connect(defaultBox, &QCheckBox::toggled, this, [this](bool on) {
        VeskSortingMethod *current = method();
        if (!current)
            return;
        if (on)
            defaultName = current->name;
        else if (defaultName == current->name)
            defaultName.clear();
        edited(false);
    });
    connect(comparatorList, &QListWidget::itemChanged, this, [this](QListWidgetItem *item) {
        VeskSortingMethod *current = method();
        const int row = comparatorList->row(item);
        const bool up = item->checkState() == Qt::Checked;
        if (!current || row < 0 || current->ascending.value(row) == up)
            return;
        current->ascending[row] = up;
        comparatorText(item, current->comparators.at(row), up);
        edited(true);
    });
    showMethod();
}

VeskSorterEditorWidget::~VeskSorterEditorWidget() = default;

void VeskSorterEditorWidget::loadMethods(const VeskRosterSortersManager *sorters)
{
    QStringList ids = sorters->getAvailableSorters();
    std::sort(ids.begin(), ids.end());
    QStringList names;
    for (const QString &id : qAsConst(ids))
        names.append(sorters->getSorterDisplay(id));
    setComparators(ids, names);

    QList<VeskSortingMethod> stored;
    const QStringList methodNames = sorters->getSorters();
    for (const QString &name : methodNames) {
        VeskSortingMethod entry { name, name, sorters->getSorters(name), {}, false };
        const QStringList flags = sorters->getSortersAscending(name);
        // A position without a stored direction is ascending, as the library reads it.
        for (int i = 0; i < entry.comparators.size(); ++i)
            entry.ascending.append(i >= flags.size() || flags.at(i) == QLatin1String("t"));
        stored.append(entry);
    }
    setMethods(stored, sorters->getDefault());
}

void VeskSorterEditorWidget::setComparators(const QStringList &ids, const QStringList &names)
{
    comparatorCombo->clear();
    comparatorNames.clear();
    for (int i = 0; i < ids.size(); ++i) {
        const QString name = names.value(i).isEmpty() ? ids.at(i) : names.at(i);
        comparatorCombo->addItem(name, ids.at(i));
        comparatorNames.insert(ids.at(i), name);
    }
    showComparators(comparatorList->currentRow());
}

void VeskSorterEditorWidget::setMethods(
    const QList<VeskSortingMethod> &methods, const QString &defaultMethod)
{
    working = methods;
    for (VeskSortingMethod &entry : working) {
        while (entry.ascending.size() < entry.comparators.size())
            entry.ascending.append(true);
        entry.ascending = entry.ascending.mid(0, entry.comparators.size());
    }
    defaultName = defaultMethod;
    removed.clear();
    modified = false;
    {
        const QSignalBlocker blocker(methodList);
        methodList->clear();
        for (const VeskSortingMethod &entry : qAsConst(working))
            methodList->addItem(entry.name);
        methodList->setCurrentRow(0);
    }
    showMethod();
}

QList<VeskSortingMethod> VeskSorterEditorWidget::methods() const
{
    return working;
}

QString VeskSorterEditorWidget::defaultMethod() const
{
    return defaultName;
}

QStringList VeskSorterEditorWidget::removedMethods() const
{
    return removed;
}

bool VeskSorterEditorWidget::isModified() const
{
    return modified;
}

QString VeskSorterEditorWidget::currentMethod() const
{
    const int row = methodList->currentRow();
    return row >= 0 && row < working.size() ? working.at(row).name : QString();
}

VeskSortingMethod *VeskSorterEditorWidget::method()
{
    const int row = methodList->currentRow();
    return row >= 0 && row < working.size() ? &working[row] : nullptr;
}

void VeskSorterEditorWidget::showMethod()
{
    VeskSortingMethod *current = method();
    editArea->setEnabled(current != nullptr);
    nameEdit->setText(current ? current->name : QString());
    const QSignalBlocker blocker(defaultBox);
    defaultBox->setChecked(current && current->name == defaultName);
    showComparators(0);
}

void VeskSorterEditorWidget::comparatorText(
    QListWidgetItem *item, const QString &id, bool ascending)
{
    const QString name = comparatorNames.value(id, id);
    item->setText(ascending ? tr("%1, ascending").arg(name) : tr("%1, descending").arg(name));
}

void VeskSorterEditorWidget::showComparators(int select)
{
    const QSignalBlocker blocker(comparatorList);
    comparatorList->clear();
    const VeskSortingMethod *current = method();
    if (!current)
        return;
    for (int i = 0; i < current->comparators.size(); ++i) {
        auto *item = new QListWidgetItem(comparatorList);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(current->ascending.at(i) ? Qt::Checked : Qt::Unchecked);
        comparatorText(item, current->comparators.at(i), current->ascending.at(i));
    }
    if (comparatorList->count() > 0)
        comparatorList->setCurrentRow(qBound(0, select, comparatorList->count() - 1));
}

void VeskSorterEditorWidget::edited(bool chain)
{
    if (VeskSortingMethod *current = method(); current && chain)
        current->modified = true;
    modified = true;
    Q_EMIT changed();
}

void VeskSorterEditorWidget::newMethod()
{
    QString name;
    for (int n = 1;; ++n) {
        name = tr("method %1").arg(n);
        if (std::none_of(working.cbegin(), working.cend(),
                [&](const VeskSortingMethod &m) { return m.name == name; }))
            break;
    }
    working.append(VeskSortingMethod { name, QString(), {}, {}, true });
    methodList->addItem(name);
    methodList->setCurrentRow(working.size() - 1);
    edited(true);
    nameEdit->setFocus();
    nameEdit->selectAll();
}

void VeskSorterEditorWidget::removeMethod()
{
    const int row = methodList->currentRow();
    VeskSortingMethod *current = method();
    if (!current)
        return;
    if (defaultName == current->name)
        defaultName.clear();
    if (!current->original.isEmpty())
        removed.append(current->original);
    working.removeAt(row);
    delete methodList->takeItem(row);
    modified = true;
    Q_EMIT changed();
}

void VeskSorterEditorWidget::addComparator()
{
    VeskSortingMethod *current = method();
    if (!current || comparatorCombo->currentIndex() < 0)
        return;
    current->comparators.append(comparatorCombo->currentData().toString());
    current->ascending.append(true);
    showComparators(current->comparators.size() - 1);
    edited(true);
}

void VeskSorterEditorWidget::removeComparator()
{
    VeskSortingMethod *current = method();
    const int row = comparatorList->currentRow();
    if (!current || row < 0)
        return;
    current->comparators.removeAt(row);
    current->ascending.removeAt(row);
    showComparators(row);
    edited(true);
}

void VeskSorterEditorWidget::moveComparator(int delta)
{
    VeskSortingMethod *current = method();
    const int row = comparatorList->currentRow();
    const int to = row + delta;
    if (!current || row < 0 || to < 0 || to >= current->comparators.size())
        return;
    current->comparators.move(row, to);
    current->ascending.move(row, to);
    showComparators(to);
    edited(true);
}
