#include "sortingdialog.h"

#include "rosterlibrary.h"

#include <librarysession.h>
#include <veskrostersortersmanager.h>
#include <vesksortereditorwidget.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QSet>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

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
    editor = new VeskSorterEditorWidget(this);
    editor->loadMethods(library->session()->sorters());
    openedDefault = editor->defaultMethod();

    messageLabel = new QLabel(this);
    messageLabel->setObjectName(QStringLiteral("message"));
    messageLabel->setWordWrap(true);
    messageLabel->setTextFormat(Qt::PlainText);
    messageLabel->setStyleSheet(QStringLiteral("color: #b00020"));
    messageLabel->setAccessibleName(tr("Why the sorting methods were not stored"));
    messageLabel->hide();
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto *okKey = new QShortcut(QKeySequence(tr("Ctrl+Return")), this);
    connect(okKey, &QShortcut::activated, this, &VeskSorterEditor::accept);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(editor);
    layout->addWidget(messageLabel);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &VeskSorterEditor::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &VeskSorterEditor::reject);
    connect(editor, &VeskSorterEditorWidget::changed, messageLabel, &QLabel::hide);
    editor->setFocus();
    resize(640, 440);
}

VeskSorterEditor::~VeskSorterEditor() = default;

QString VeskSorterEditor::message() const
{
    return messageLabel->isVisible() ? messageLabel->text() : QString();
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
    const QList<VeskSortingMethod> methods = editor->methods();
    QSet<QString> names;
    for (const VeskSortingMethod &entry : methods) {
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
    const QStringList removed = editor->removedMethods();
    for (const QString &name : removed) {
        if (session.sorters()->getSorters().contains(name) && !session.removeSorter(name, error))
            return false;
    }
    // Renamed methods take the filters that sort by them along.
    for (const VeskSortingMethod &entry : methods) {
        if (!entry.original.isEmpty() && entry.original != entry.name
            && session.sorters()->getSorters().contains(entry.original)
            && !session.renameSorter(entry.original, entry.name, error))
            return false;
    }
    for (const VeskSortingMethod &entry : methods) {
        if ((entry.modified || entry.original.isEmpty())
            && !session.storeSorter(entry.name, entry.comparators, flagsOf(entry.ascending), error))
            return false;
    }
    const QString defaultMethod = editor->defaultMethod();
    return defaultMethod == openedDefault || defaultMethod == session.sorters()->getDefault()
        || session.setDefaultSorter(defaultMethod, error);
}
