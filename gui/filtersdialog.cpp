#include "filtersdialog.h"

#include "rosterlibrary.h"

#include <librarysession.h>
#include <veskfiltereditorwidget.h>
#include <veskfilterlistwidget.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QSet>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

const QString defaultId = QStringLiteral("default");

bool hasEmptyStack(const VeskRosterFilter *filter)
{
    if (filter->getType() == VeskRosterFilter::RosterFilterLeaf)
        return false;
    const auto *stack = dynamic_cast<const VeskRosterFiltersStack *>(filter);
    if (!stack)
        return false;
    const QList<VeskRosterFilter *> children = stack->getFilters();
    return children.isEmpty() || std::any_of(children.cbegin(), children.cend(), hasEmptyStack);
}

} // namespace

VeskFilterEditor::VeskFilterEditor(VeskRosterLibrary *rosterLibrary, QWidget *parent)
    : QDialog(parent)
    , library(rosterLibrary)
{
    setWindowTitle(tr("Filters"));
    filterList = new VeskFilterListWidget(this);
    editor = new VeskFilterEditorWidget(this);
    editor->setPlaceholderText(tr("every entry; the default filter cannot be edited"));

    messageLabel = new QLabel(this);
    messageLabel->setObjectName(QStringLiteral("message"));
    messageLabel->setWordWrap(true);
    messageLabel->setTextFormat(Qt::PlainText);
    messageLabel->setStyleSheet(QStringLiteral("color: #b00020"));
    messageLabel->setAccessibleName(tr("Why the filters were not stored"));
    messageLabel->hide();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto *okKey = new QShortcut(QKeySequence(tr("Ctrl+Return")), this);
    connect(okKey, &QShortcut::activated, this, &VeskFilterEditor::accept);

    auto *columns = new QHBoxLayout;
    columns->addWidget(filterList, 1);
    columns->addWidget(editor, 3);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addWidget(messageLabel);
    layout->addWidget(buttons);

    load();
    connect(buttons, &QDialogButtonBox::accepted, this, &VeskFilterEditor::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &VeskFilterEditor::reject);
    connect(filterList, &VeskFilterListWidget::currentRowChanged, this, &VeskFilterEditor::showRow);
    connect(filterList, &VeskFilterListWidget::filterAdded, this, [this](int row) {
        Draft draft;
        draft.root.reset(editor->kinds().createStack(VeskRosterFilter::RosterFilterAnd));
        draft.dirty = true;
        drafts.insert(drafts.begin() + row, std::move(draft));
    });
    connect(filterList, &VeskFilterListWidget::filterAboutToBeRemoved, this, [this](int row) {
        drafts.erase(drafts.begin() + row);
        shownRow = -1;
    });
    connect(filterList, &VeskFilterListWidget::filterMoved, this,
        [this](int from, int to) { std::swap(drafts[size_t(from)], drafts[size_t(to)]); });
    connect(filterList, &VeskFilterListWidget::changed, messageLabel, &QLabel::hide);
    connect(editor, &VeskFilterEditorWidget::changed, this, &VeskFilterEditor::edited);
    showRow(filterList->currentRow());
    filterList->setFocus();
    resize(820, 560);
}

VeskFilterEditor::~VeskFilterEditor() = default;

QString VeskFilterEditor::message() const
{
    return messageLabel->isVisible() ? messageLabel->text() : QString();
}

void VeskFilterEditor::load()
{
    VeskRosterFiltersManager *manager = library->session()->filters();
    QStringList names;
    const QStringList ids = manager->getFilterNames();
    drafts.clear();
    for (const QString &id : ids) {
        Draft draft;
        if (id != defaultId) {
            VeskRosterFiltersStack *stack = manager->getStackFilter(id);
            if (!stack)
                continue;
            draft.root.reset(editor->kinds().copyStack(stack));
        } else if (!names.isEmpty()) {
            continue;
        }
        names.append(id);
        drafts.push_back(std::move(draft));
    }
    if (names.value(0) != defaultId) {
        names.prepend(defaultId);
        drafts.insert(drafts.begin(), Draft());
    }
    filterList->setFilters(names);
}

void VeskFilterEditor::showRow(int row)
{
    shownRow = row >= 0 && row < int(drafts.size()) ? row : -1;
    editor->setFilter(shownRow >= 0 ? drafts[size_t(shownRow)].root.get() : nullptr);
}

void VeskFilterEditor::edited()
{
    if (shownRow >= 0 && drafts[size_t(shownRow)].root) {
        drafts[size_t(shownRow)].root.reset(editor->editedFilter());
        drafts[size_t(shownRow)].dirty = true;
    }
    messageLabel->hide();
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
    for (int row = 0; row < int(drafts.size()); ++row) {
        VeskRosterFiltersStack *root = drafts[size_t(row)].root.get();
        if (!root)
            continue;
        const QString name = filterList->name(row);
        if (name.isEmpty())
            return tr("a filter needs a name");
        if (name == defaultId)
            return tr("\"default\" is the name of the built-in filter; choose another");
        if (names.contains(name))
            return tr("two filters are named \"%1\"; choose another name").arg(name);
        names.insert(name);
        const int nesting = VeskLibrarySession::nestingOf(root);
        if (nesting > VeskLibrarySession::maximumNesting()) {
            return tr("the filter \"%1\" nests stacks %2 levels deep, deeper than %3 levels")
                .arg(name)
                .arg(nesting)
                .arg(VeskLibrarySession::maximumNesting());
        }
        if (hasEmptyStack(root)) {
            return tr("the filter \"%1\" has a stack without conditions: a stack stored without "
                      "children does not read back as it was, so it is never stored")
                .arg(name);
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
    const VeskFilterKinds &kinds = editor->kinds();
    const QStringList removed = filterList->removedFilters();
    for (const QString &id : removed) {
        if (session.stack(id) && !session.removeStack(id, error))
            return false;
    }
    for (int row = 0; row < int(drafts.size()); ++row) {
        const Draft &draft = drafts[size_t(row)];
        const QString name = filterList->name(row);
        const QString original = filterList->original(row);
        if (!draft.root || (!draft.dirty && name == original))
            continue;
        if (!original.isEmpty() && session.stack(original)) {
            if (draft.dirty) {
                const std::unique_ptr<VeskRosterFiltersStack> replacement(
                    kinds.copyStack(draft.root.get()));
                if (!session.replaceStack(original, replacement.get(), error))
                    return false;
            }
            if (name != original && !session.renameStack(original, name, error))
                return false;
            continue;
        }
        VeskRosterFiltersStack *stack = session.createStack(name, draft.root->getType(), error);
        if (!stack)
            return false;
        const QList<VeskRosterFilter *> children = draft.root->getFilters();
        for (const VeskRosterFilter *child : children) {
            if (VeskRosterFilter *copy = kinds.copy(child))
                stack->appendFilter(copy);
        }
        stack->setAdvancedMode(draft.root->isAdvancedMode());
        stack->setSorter(draft.root->getSorter());
        if (!session.storeNewStack(stack, error))
            return false;
    }
    return storeOrder(session, error);
}

bool VeskFilterEditor::storeOrder(VeskLibrarySession &session, QString *error)
{
    // The display order, one step at a time as the library moves filters.
    // Filters another program added meanwhile sink to the end.
    QHash<QString, int> rank;
    const QStringList names = filterList->filters();
    for (const QString &name : names)
        rank.insert(name, int(rank.size()));
    auto rankOf = [&](const QString &id) {
        return rank.value(id, int(rank.size()));
    };
    for (bool moved = true; moved;) {
        moved = false;
        const QStringList order = session.filters()->getFilterNames();
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
