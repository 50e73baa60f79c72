#include "mainwindow.h"

#include "filtersdialog.h"
#include "rosterlibrary.h"
#include "rostertreemodel.h"
#include "searchbar.h"
#include "sortingdialog.h"

#include <librarysession.h>
#include <veskfilterkinds.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrosterproxymodel.h>
#include <veskrostersortersmanager.h>
#include <veskstandin.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QShortcut>
#include <QStatusBar>
#include <QStyledItemDelegate>
#include <QToolBar>
#include <QTreeView>
#include <QVBoxLayout>

namespace {

const QString defaultId = QStringLiteral("default");

// The method the view is sorted by: the current filter's, or the default
// method while "default" (or a filter without a method of its own) is current.
QString currentMethod(const VeskLibrarySession &session)
{
    const QString id = session.filters()->getCurrentFilterName();
    VeskRosterFilter *filter = session.filter(id);
    if (id == defaultId || !filter || filter->getSorter().isEmpty())
        return session.sorters()->getDefault();
    return filter->getSorter();
}

// Group rows read "Friends (3/10)": members shown of members held; the
// search's match is highlighted in members' names.
class GroupCountDelegate : public VeskSearchHighlightDelegate
{
public:
    using VeskSearchHighlightDelegate::VeskSearchHighlightDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const auto *proxy = qobject_cast<const VeskRosterProxyModel *>(index.model());
        if (!proxy || index.column() != 0
            || proxy->rosterEntry(index).getType() != VeskBuddy::TypeGroup)
            return;
        const QModelIndex source = proxy->mapToSource(index);
        option->text = VeskRosterWindow::tr("%1 (%2/%3)")
                           .arg(option->text)
                           .arg(proxy->rowCount(index))
                           .arg(source.model()->rowCount(source));
        option->font.setBold(true);
    }
};

} // namespace

VeskRosterWindow::VeskRosterWindow(VeskRosterLibrary *library, QWidget *parent)
    : QMainWindow(parent)
    , rosterLibrary(library)
    , rosterModel(new VeskRosterTreeModel(this))
    , proxyModel(new VeskRosterProxyModel(this))
    , tree(new QTreeView(this))
    , search(new VeskSearchBar(proxyModel, this))
    , filterCombo(new QComboBox(this))
    , sorterCombo(new QComboBox(this))
    , statusLabel(new QLabel(this))
    , random(20261123)
{
    setWindowTitle(tr("Roster"));
    rosterModel->setRoster(VeskStandIn::entries());
    for (const VeskBuddy &member : rosterModel->members()) {
        const VeskPresence presence = member.getType() == VeskBuddy::TypeContact
            ? VeskBuddyContact(member).getPresence()
            : VeskBuddyTemporary(member).getPresence();
        if (std::none_of(presences.begin(), presences.end(),
                [&](const VeskPresence &p) { return p.getId() == presence.getId(); }))
            presences.append(presence);
    }
    proxyModel->setSourceModel(rosterModel);
    tree->setModel(proxyModel);
    tree->setItemDelegate(new GroupCountDelegate(tree));
    tree->setUniformRowHeights(true);
    tree->setAlternatingRowColors(true);
    tree->header()->setStretchLastSection(false);
    tree->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    tree->setColumnWidth(0, 220);
    tree->setColumnWidth(1, 110);
    tree->setColumnWidth(2, 190);
    tree->setColumnWidth(3, 190);
    tree->setColumnWidth(4, 60);
    auto *central = new QWidget(this);
    auto *column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(search);
    column->addWidget(tree, 1);
    setCentralWidget(central);
    auto *find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, search, &VeskSearchBar::focusField);
    connect(search, &VeskSearchBar::searchChanged, this, [this] {
        // The proxy lays its rows out anew for a search; groups it shows
        // again open, as they were before it.
        expandGroups(0, proxyModel->rowCount() - 1);
        countShown();
    });
    // A group that a changed member shows again opens, as it was before.
    connect(proxyModel, &QAbstractItemModel::rowsInserted, this,
        [this](const QModelIndex &parent, int first, int last) {
            if (!parent.isValid())
                expandGroups(first, last);
        });

    auto *bar = addToolBar(tr("Roster"));
    bar->setObjectName(QStringLiteral("choosers"));
    bar->setMovable(false);
    auto *filterLabel = new QLabel(tr("&Filter:"), this);
    filterLabel->setBuddy(filterCombo);
    filterCombo->setObjectName(QStringLiteral("filter"));
    filterCombo->setMinimumContentsLength(14);
    auto *sorterLabel = new QLabel(tr("&Sorting:"), this);
    sorterLabel->setBuddy(sorterCombo);
    sorterCombo->setObjectName(QStringLiteral("sorter"));
    sorterCombo->setMinimumContentsLength(14);
    bar->addWidget(filterLabel);
    bar->addWidget(filterCombo);
    bar->addSeparator();
    bar->addWidget(sorterLabel);
    bar->addWidget(sorterCombo);

    QMenu *roster = menuBar()->addMenu(tr("&Roster"));
    QAction *filters
        = roster->addAction(tr("&Edit filters..."), this, &VeskRosterWindow::editFilters);
    filters->setShortcut(QKeySequence(tr("Ctrl+E")));
    QAction *sorters
        = roster->addAction(tr("Edit s&orting methods..."), this, &VeskRosterWindow::editSorters);
    sorters->setShortcut(QKeySequence(tr("Ctrl+M")));
    simulateAction = roster->addAction(tr("Simulate &activity"));
    simulateAction->setCheckable(true);
    simulateAction->setShortcut(QKeySequence(tr("Ctrl+T")));
    roster->addSeparator();
    QAction *quit = roster->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence(tr("Ctrl+Q")));
    bar->addSeparator();
    bar->addAction(filters);
    bar->addAction(sorters);
    bar->addAction(simulateAction);

    statusLabel->setObjectName(QStringLiteral("status"));
    // It quotes what the user typed, which is never markup.
    statusLabel->setTextFormat(Qt::PlainText);
    statusBar()->addWidget(statusLabel);

    simulation.setInterval(800);
    connect(&simulation, &QTimer::timeout, this, &VeskRosterWindow::simulateStep);
    connect(simulateAction, &QAction::toggled, this,
        [this](bool on) { on ? simulation.start() : simulation.stop(); });
    countTimer.setSingleShot(true);
    connect(&countTimer, &QTimer::timeout, this, &VeskRosterWindow::countShown);
    for (auto signal : { &QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved })
        connect(proxyModel, signal, this, &VeskRosterWindow::scheduleCount);
    connect(proxyModel, &QAbstractItemModel::layoutChanged, this, &VeskRosterWindow::scheduleCount);
    connect(proxyModel, &QAbstractItemModel::modelReset, this, &VeskRosterWindow::scheduleCount);
    connect(filterCombo, QOverload<int>::of(&QComboBox::activated), this,
        &VeskRosterWindow::chooseFilter);
    connect(sorterCombo, QOverload<int>::of(&QComboBox::activated), this,
        &VeskRosterWindow::chooseSorter);
    connect(rosterLibrary, &VeskRosterLibrary::reloaded, this, &VeskRosterWindow::refresh);
    connect(rosterLibrary, &VeskRosterLibrary::lost, this, &VeskRosterWindow::giveUp);

    refresh();
    resize(900, 640);
    tree->setFocus();
}

VeskRosterWindow::~VeskRosterWindow() = default;

void VeskRosterWindow::giveUp(const QString &error)
{
    simulation.stop();
    simulateAction->setEnabled(false);
    tree->setModel(nullptr);
    // An open editor would ask the library for its next condition; it is not
    // deleted, since this may run inside its own accept().
    const QList<QDialog *> dialogs = findChildren<QDialog *>();
    for (QDialog *dialog : dialogs) {
        dialog->setEnabled(false);
        dialog->hide();
    }
    setEnabled(false);
    QMessageBox::critical(this, tr("Roster"),
        tr("The settings directory can no longer be read, so the roster window closes: %1")
            .arg(error));
    QCoreApplication::exit(2);
}

QString VeskRosterWindow::statusText() const
{
    return statusLabel->text();
}

void VeskRosterWindow::refresh()
{
    proxyModel->refresh();
    expandGroups(0, proxyModel->rowCount() - 1);
    fillChoosers();
    countShown();
}

// The groups among the top rows `first` to `last`. Right after the proxy's
// layout change the tree has yet to lay itself out, so opening a group only
// notes it. Not expandAll(): that notes every row,
// members too, and the proxy would carry all of them through each keystroke.
void VeskRosterWindow::expandGroups(int first, int last)
{
    for (int row = first; row <= last; ++row) {
        const QModelIndex group = proxyModel->index(row, 0);
        if (proxyModel->hasChildren(group))
            tree->expand(group);
    }
}

void VeskRosterWindow::fillChoosers()
{
    VeskLibrarySession *session = rosterLibrary->session();
    const QString current = session->filters()->getCurrentFilterName();
    filterCombo->clear();
    const QStringList ids = session->filters()->getFilterNames();
    for (const QString &id : ids)
        filterCombo->addItem(id == defaultId ? tr("default (every entry)") : id, id);
    filterCombo->setCurrentIndex(filterCombo->findData(current));

    const QString method = currentMethod(*session);
    sorterCombo->clear();
    sorterCombo->addItem(tr("built-in order (presence, name)"), QString());
    const QStringList methods = session->sorters()->getSorters();
    for (const QString &name : methods)
        sorterCombo->addItem(name, name);
    sorterCombo->setCurrentIndex(qMax(0, sorterCombo->findData(method)));
}

void VeskRosterWindow::chooseFilter(int index)
{
    const QString id = filterCombo->itemData(index).toString();
    QString error;
    if (!rosterLibrary->change([&](VeskLibrarySession &session,
                                   QString *error) { return session.setCurrentFilter(id, error); },
            &error))
        showError(error);
}

void VeskRosterWindow::chooseSorter(int index)
{
    const QString name = sorterCombo->itemData(index).toString();
    QString error;
    const bool done = rosterLibrary->change(
        [&](VeskLibrarySession &session, QString *error) {
            if (!name.isEmpty())
                return session.sortCurrentFilter(name, error);
            // The built-in order: no default method, and none kept by the
            // current filter, which then takes the (empty) default.
            const QString current = session.filters()->getCurrentFilterName();
            VeskRosterFiltersStack *stack = session.stack(current);
            if (!session.setDefaultSorter(QString(), error))
                return false;
            if (!stack || stack->getSorter().isEmpty())
                return true;
            const std::unique_ptr<VeskRosterFiltersStack> replacement(
                VeskFilterKinds().copyStack(stack));
            replacement->setSorter(QString());
            return session.replaceStack(current, replacement.get(), error);
        },
        &error);
    if (!done)
        showError(error);
}

void VeskRosterWindow::editFilters()
{
    auto *editor = new VeskFilterEditor(rosterLibrary, this);
    editor->setAttribute(Qt::WA_DeleteOnClose);
    editor->open();
}

void VeskRosterWindow::editSorters()
{
    auto *editor = new VeskSorterEditor(rosterLibrary, this);
    editor->setAttribute(Qt::WA_DeleteOnClose);
    editor->open();
}

void VeskRosterWindow::simulateStep()
{
    const QVector<VeskBuddy> &members = rosterModel->members();
    if (members.isEmpty() || presences.isEmpty())
        return;
    for (int n = 0; n < 3; ++n) {
        const int member = random.bounded(members.size());
        const VeskBuddy &entry = members.at(member);
        VeskStandIn::setPresence(entry, presences.at(random.bounded(presences.size())));
        if (entry.getType() == VeskBuddy::TypeContact) {
            const VeskArg chats = VeskBuddyContact(entry).getAttrib(QStringLiteral("chats_count"));
            const int count = chats.getType() == VeskArg::TypeInt ? chats.toInt() : 0;
            VeskStandIn::setAttribute(entry, QStringLiteral("chats_count"),
                VeskStandIn::makeIntArg(count + random.bounded(3)));
        }
        rosterModel->memberChanged(member);
    }
}

void VeskRosterWindow::scheduleCount()
{
    countTimer.start(0);
}

void VeskRosterWindow::countShown()
{
    // Members are the rows without children among the top rows and all rows
    // under groups; the proxy holds only what is shown.
    int shown = 0;
    for (int row = 0; row < proxyModel->rowCount(); ++row) {
        const QModelIndex index = proxyModel->index(row, 0);
        if (proxyModel->rosterEntry(index).getType() == VeskBuddy::TypeGroup)
            shown += proxyModel->rowCount(index);
        else
            ++shown;
    }
    const QString text = search->text();
    statusLabel->setText(text.isEmpty()
            ? tr("%1 of %2 entries shown").arg(shown).arg(rosterModel->members().size())
            : tr("%1 of %2 entries shown, searching for %3")
                  .arg(shown)
                  .arg(rosterModel->members().size())
                  .arg(text));
}

void VeskRosterWindow::showError(const QString &error)
{
    fillChoosers();
    auto *box = new QMessageBox(QMessageBox::Warning, tr("Roster"), error, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}
