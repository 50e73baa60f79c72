#include "sortereditor.h"

#include "rosterlibrary.h"

#include <librarysession.h>
#include <veskrostersortersmanager.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSet>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

const int idRole = Qt::UserRole;

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

QStringList flagsOf(const QList<bool> &ascending)
{
    QStringList flags;
    for (bool up : ascending)
        flags.append(up ? QStringLiteral("t") : QStringLiteral("f"));
    return flags;
}

} // namespace

VeskSorterEditor::VeskSorterEditor(VeskRosterLibrary *rosterLibrary, QWidget *parent)
    : QDialog(parent)
    , library(rosterLibrary)
{
    setWindowTitle(tr("Sorting methods"));
    VeskRosterSortersManager *sorters = library->session()->sorters();

    auto *methodsLabel = new QLabel(tr("&Methods:"), this);
    methodList = new QListWidget(this);
    methodsLabel->setBuddy(methodList);
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
    auto *nameLabel = new QLabel(tr("Na&me:"), editArea);
    nameLabel->setBuddy(nameEdit);
    form->addRow(nameLabel, nameEdit);
    defaultBox = new QCheckBox(tr("&Default method (for filters without one)"), editArea);
    form->addRow(QString(), defaultBox);
    comparatorList = new QListWidget(editArea);
    comparatorList->setObjectName(QStringLiteral("comparators"));
    auto *listLabel = new QLabel(tr("Com&parators:"), editArea);
    listLabel->setBuddy(comparatorList);
    form->addRow(listLabel, comparatorList);
    auto *hint = new QLabel(tr("The first comparator that tells two entries apart decides; a "
                               "checked comparator sorts ascending (Space switches)."),
        editArea);
    hint->setWordWrap(true);
    form->addRow(QString(), hint);
    comparatorCombo = new QComboBox(editArea);
    comparatorCombo->setObjectName(QStringLiteral("comparator"));
    auto *comboLabel = new QLabel(tr("&Comparator:"), editArea);
    comboLabel->setBuddy(comparatorCombo);
    auto *addButton = button(tr("&Add"), QKeySequence(tr("Ins")), editArea);
    auto *adding = new QHBoxLayout;
    adding->addWidget(comparatorCombo, 1);
    adding->addWidget(addButton);
    form->addRow(comboLabel, adding);
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
    connect(deleteKey, &QShortcut::activated, dropButton, [dropButton] { dropButton->click(); });

    messageLabel = new QLabel(this);
    messageLabel->setObjectName(QStringLiteral("message"));
    messageLabel->setWordWrap(true);
    messageLabel->setTextFormat(Qt::PlainText);
    messageLabel->setStyleSheet(QStringLiteral("color: #b00020"));
    messageLabel->hide();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto *okKey = new QShortcut(QKeySequence(tr("Ctrl+Return")), this);
    connect(okKey, &QShortcut::activated, this, &VeskSorterEditor::accept);

    auto *columns = new QHBoxLayout;
    columns->addLayout(left, 1);
    columns->addWidget(editArea, 2);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addWidget(messageLabel);
    layout->addWidget(buttons);

    QStringList ids = sorters->getAvailableSorters();
    std::sort(ids.begin(), ids.end());
    for (const QString &id : qAsConst(ids))
        comparatorCombo->addItem(sorters->getSorterDisplay(id), id);
    defaultMethod = openedDefault = sorters->getDefault();
    const QStringList names = sorters->getSorters();
    for (const QString &name : names) {
        Method entry { name, name, sorters->getSorters(name), {}, false };
        const QStringList flags = sorters->getSortersAscending(name);
        for (int i = 0; i < entry.ids.size(); ++i)
            entry.ascending.append(i >= flags.size() || flags.at(i) == QLatin1String("t"));
        methods.push_back(entry);
        openedWith.append(name);
        methodList->addItem(name);
    }

    connect(buttons, &QDialogButtonBox::accepted, this, &VeskSorterEditor::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &VeskSorterEditor::reject);
    connect(methodList, &QListWidget::currentRowChanged, this, &VeskSorterEditor::showMethod);
    connect(newButton, &QPushButton::clicked, this, &VeskSorterEditor::newMethod);
    connect(removeButton, &QPushButton::clicked, this, &VeskSorterEditor::removeMethod);
    connect(addButton, &QPushButton::clicked, this, &VeskSorterEditor::addComparator);
    connect(dropButton, &QPushButton::clicked, this, &VeskSorterEditor::removeComparator);
    connect(upButton, &QPushButton::clicked, this, [this] { moveComparator(-1); });
    connect(downButton, &QPushButton::clicked, this, [this] { moveComparator(1); });
    connect(nameEdit, &QLineEdit::textEdited, this, [this](const QString &text) {
        if (defaultMethod == method()->name)
            defaultMethod = text;
        method()->name = text;
        methodList->currentItem()->setText(text);
        changed();
    });
    connect(defaultBox, &QCheckBox::toggled, this, [this](bool on) {
        if (on)
            defaultMethod = method()->name;
        else if (defaultMethod == method()->name)
            defaultMethod.clear();
        messageLabel->hide();
    });
    connect(comparatorList, &QListWidget::itemChanged, this, [this](QListWidgetItem *item) {
        const int row = comparatorList->row(item);
        const bool up = item->checkState() == Qt::Checked;
        if (row < 0 || method()->ascending.value(row) == up)
            return;
        method()->ascending[row] = up;
        comparatorText(item, method()->ids.at(row), up);
        changed();
    });
    methodList->setCurrentRow(0);
    showMethod();
    methodList->setFocus();
    resize(640, 440);
}

VeskSorterEditor::~VeskSorterEditor() = default;

QString VeskSorterEditor::message() const
{
    return messageLabel->isVisible() ? messageLabel->text() : QString();
}

VeskSorterEditor::Method *VeskSorterEditor::method()
{
    const int row = methodList->currentRow();
    return row >= 0 && row < int(methods.size()) ? &methods[size_t(row)] : nullptr;
}

void VeskSorterEditor::showMethod()
{
    Method *current = method();
    editArea->setEnabled(current != nullptr);
    nameEdit->setText(current ? current->name : QString());
    const QSignalBlocker blocker(defaultBox);
    defaultBox->setChecked(current && current->name == defaultMethod);
    showComparators(0);
}

void VeskSorterEditor::comparatorText(QListWidgetItem *item, const QString &id, bool ascending)
{
    const QString name = library->session()->sorters()->getSorterDisplay(id);
    item->setText(ascending ? tr("%1, ascending").arg(name) : tr("%1, descending").arg(name));
}

void VeskSorterEditor::showComparators(int select)
{
    const QSignalBlocker blocker(comparatorList);
    comparatorList->clear();
    const Method *current = method();
    if (!current)
        return;
    for (int i = 0; i < current->ids.size(); ++i) {
        auto *item = new QListWidgetItem(comparatorList);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(current->ascending.at(i) ? Qt::Checked : Qt::Unchecked);
        item->setData(idRole, current->ids.at(i));
        comparatorText(item, current->ids.at(i), current->ascending.at(i));
    }
    if (comparatorList->count() > 0)
        comparatorList->setCurrentRow(qBound(0, select, comparatorList->count() - 1));
}

void VeskSorterEditor::changed()
{
    if (Method *current = method())
        current->dirty = true;
    messageLabel->hide();
}

void VeskSorterEditor::newMethod()
{
    QString name;
    for (int n = 1;; ++n) {
        name = tr("method %1").arg(n);
        if (std::none_of(
                methods.begin(), methods.end(), [&](const Method &m) { return m.name == name; }))
            break;
    }
    methods.push_back(Method { QString(), name, {}, {}, true });
    methodList->addItem(name);
    methodList->setCurrentRow(int(methods.size()) - 1);
    nameEdit->setFocus();
    nameEdit->selectAll();
}

void VeskSorterEditor::removeMethod()
{
    const int row = methodList->currentRow();
    if (!method())
        return;
    if (defaultMethod == method()->name)
        defaultMethod.clear();
    methods.erase(methods.begin() + row);
    delete methodList->takeItem(row);
    messageLabel->hide();
}

void VeskSorterEditor::addComparator()
{
    Method *current = method();
    if (!current)
        return;
    current->ids.append(comparatorCombo->currentData().toString());
    current->ascending.append(true);
    showComparators(current->ids.size() - 1);
    changed();
}

void VeskSorterEditor::removeComparator()
{
    Method *current = method();
    const int row = comparatorList->currentRow();
    if (!current || row < 0)
        return;
    current->ids.removeAt(row);
    current->ascending.removeAt(row);
    showComparators(row);
    changed();
}

void VeskSorterEditor::moveComparator(int delta)
{
    Method *current = method();
    const int row = comparatorList->currentRow();
    const int to = row + delta;
    if (!current || row < 0 || to < 0 || to >= current->ids.size())
        return;
    current->ids.move(row, to);
    current->ascending.move(row, to);
    showComparators(to);
    changed();
}

void VeskSorterEditor::accept()
{
    const auto edit = [this](VeskLibrarySession &session, QString *error) {
        return store(session, error);
    };
    if (library->changeOrExplain(edit, messageLabel))
        QDialog::accept();
}

bool VeskSorterEditor::store(VeskLibrarySession &session, QString *error)
{
    QSet<QString> names;
    for (const Method &entry : methods) {
        if (entry.name.isEmpty()) {
            *error = tr("a sorting method needs a name");
            return false;
        }
        if (names.contains(entry.name)) {
            *error = tr("two methods are named \"%1\"; choose another name").arg(entry.name);
            return false;
        }
        names.insert(entry.name);
    }
    const QStringList stored = session.sorters()->getSorters();
    for (const QString &name : qAsConst(openedWith)) {
        const bool kept = std::any_of(methods.begin(), methods.end(),
            [&](const Method &entry) { return entry.original == name && entry.name == name; });
        if (!kept && stored.contains(name) && !session.removeSorter(name, error))
            return false;
    }
    for (const Method &entry : methods) {
        if ((entry.dirty || entry.original != entry.name)
            && !session.storeSorter(entry.name, entry.ids, flagsOf(entry.ascending), error))
            return false;
    }
    return defaultMethod == openedDefault || session.setDefaultSorter(defaultMethod, error);
}
