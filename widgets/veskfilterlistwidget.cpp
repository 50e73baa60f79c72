#include "veskfilterlistwidget.h"

#include "veskwidgetsupport_p.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

using VeskWidgetSupport::button;
using VeskWidgetSupport::label;

namespace {
const QString defaultId = QStringLiteral("default");
} // namespace

VeskFilterListWidget::VeskFilterListWidget(QWidget *parent)
    : QWidget(parent)
{
    list = new QListWidget(this);
    list->setObjectName(QStringLiteral("filters"));
    auto *listLabel = label(tr("&Filters:"), list, this);
    nameEdit = new QLineEdit(this);
    nameEdit->setObjectName(QStringLiteral("name"));
    auto *nameLabel = label(tr("Na&me:"), nameEdit, this);
    auto *newButton = button(tr("&New filter"), QKeySequence(tr("Ctrl+N")), this);
    removeButton = button(tr("Remove filter"), QKeySequence(tr("Ctrl+Del")), this);
    upButton = button(tr("Filter up"), QKeySequence(tr("Alt+Up")), this);
    downButton = button(tr("Filter down"), QKeySequence(tr("Alt+Down")), this);
    auto *renameKey = new QShortcut(QKeySequence(tr("F2")), this);
    setFocusProxy(list);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(listLabel);
    layout->addWidget(list);
    auto *naming = new QFormLayout;
    naming->addRow(nameLabel, nameEdit);
    layout->addLayout(naming);
    for (QPushButton *b : { newButton, removeButton, upButton, downButton })
        layout->addWidget(b);

    connect(list, &QListWidget::currentRowChanged, this, &VeskFilterListWidget::showCurrent);
    connect(newButton, &QPushButton::clicked, this, &VeskFilterListWidget::newFilter);
    connect(removeButton, &QPushButton::clicked, this, &VeskFilterListWidget::removeFilter);
    connect(upButton, &QPushButton::clicked, this, [this] { moveFilter(-1); });
    connect(downButton, &QPushButton::clicked, this, [this] { moveFilter(1); });
    connect(renameKey, &QShortcut::activated, this, [this] {
        if (nameEdit->isEnabled()) {
            nameEdit->setFocus();
            nameEdit->selectAll();
        }
    });
    connect(nameEdit, &QLineEdit::textEdited, this, [this](const QString &text) {
        const int row = list->currentRow();
        if (isFixed(row) || row >= names.size())
            return;
        names[row] = text;
        list->item(row)->setText(text);
        Q_EMIT filterRenamed(row, text);
        Q_EMIT changed();
    });
    setFilters({});
}

VeskFilterListWidget::~VeskFilterListWidget() = default;

bool VeskFilterListWidget::isFixed(int row)
{
    return row <= 0; // "default", or no row at all
}

void VeskFilterListWidget::setFilters(const QStringList &filterNames)
{
    names = QStringList { defaultId };
    for (const QString &name : filterNames) {
        if (name != defaultId)
            names.append(name);
    }
    originalNames = names;
    removed.clear();
    {
        const QSignalBlocker blocker(list);
        list->clear();
        list->addItems(names);
    }
    list->setCurrentRow(names.size() > 1 ? 1 : 0);
    showCurrent();
}

QStringList VeskFilterListWidget::filters() const
{
    return names;
}

QStringList VeskFilterListWidget::originals() const
{
    return originalNames;
}

QStringList VeskFilterListWidget::removedFilters() const
{
    return removed;
}

int VeskFilterListWidget::count() const
{
    return names.size();
}

QString VeskFilterListWidget::name(int row) const
{
    return names.value(row);
}

QString VeskFilterListWidget::original(int row) const
{
    return originalNames.value(row);
}

int VeskFilterListWidget::currentRow() const
{
    return list->currentRow();
}

void VeskFilterListWidget::setCurrentRow(int row)
{
    list->setCurrentRow(row);
}

QString VeskFilterListWidget::currentFilter() const
{
    return names.value(list->currentRow());
}

void VeskFilterListWidget::setCurrentFilter(const QString &name)
{
    const int row = names.indexOf(name);
    if (row >= 0)
        list->setCurrentRow(row);
}

QString VeskFilterListWidget::unusedName() const
{
    for (int n = 1;; ++n) {
        const QString name = tr("filter %1").arg(n);
        if (!names.contains(name))
            return name;
    }
}

void VeskFilterListWidget::showCurrent()
{
    const int row = list->currentRow();
    const bool editable = !isFixed(row);
    nameEdit->setText(names.value(row));
    nameEdit->setEnabled(editable);
    removeButton->setEnabled(editable);
    upButton->setEnabled(editable && row > 1);
    downButton->setEnabled(editable && row + 1 < names.size());
    Q_EMIT currentRowChanged(row);
}

void VeskFilterListWidget::newFilter()
{
    const QString name = unusedName();
    names.append(name);
    originalNames.append(QString());
    list->addItem(name);
    Q_EMIT filterAdded(names.size() - 1);
    list->setCurrentRow(names.size() - 1);
    Q_EMIT changed();
    nameEdit->setFocus();
    nameEdit->selectAll();
}

void VeskFilterListWidget::removeFilter()
{
    const int row = list->currentRow();
    if (isFixed(row))
        return;
    Q_EMIT filterAboutToBeRemoved(row);
    if (!originalNames.at(row).isEmpty())
        removed.append(originalNames.at(row));
    names.removeAt(row);
    originalNames.removeAt(row);
    delete list->takeItem(row);
    showCurrent();
    Q_EMIT changed();
}

void VeskFilterListWidget::moveFilter(int delta)
{
    const int row = list->currentRow();
    const int to = row + delta;
    // "default" keeps the first place.
    if (isFixed(row) || to < 1 || to >= names.size())
        return;
    names.move(row, to);
    originalNames.move(row, to);
    {
        const QSignalBlocker blocker(list);
        list->insertItem(to, list->takeItem(row));
        list->setCurrentRow(to);
    }
    Q_EMIT filterMoved(row, to);
    showCurrent();
    Q_EMIT changed();
}
