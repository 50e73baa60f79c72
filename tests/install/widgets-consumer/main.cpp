// A client of the installed package that embeds the filter editor: it edits
// a new filter in the widget, stores what the editor hands back through the
// filters manager, reads the file back, and shows the editor in German.

#include <veskfiltereditorwidget.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTranslator>

#include <cstdio>
#include <memory>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *stack
        = filters->addStackFilter(QStringLiteral("ann"), VeskRosterFilter::RosterFilterAnd);

    VeskFilterEditorWidget editor;
    editor.setFilter(stack);
    auto *kind = editor.findChild<QComboBox *>(QStringLiteral("kind"));
    kind->setCurrentIndex(kind->findData(QStringLiteral("display")));
    editor.findChild<QPushButton *>(QStringLiteral("add"))->click();
    editor.findChild<QLineEdit *>(QStringLiteral("display_filter_regexp"))
        ->insert(QStringLiteral("Ann"));

    // The host's way of storing: the edited children go into the registered
    // stack, which writes its file.
    const std::unique_ptr<VeskRosterFiltersStack> edited(editor.editedFilter());
    const QList<VeskRosterFilter *> children = edited->getFilters();
    for (VeskRosterFilter *child : children) {
        edited->removeFilter(child);
        stack->appendFilter(child);
    }
    stack->setAdvancedMode(edited->isAdvancedMode());
    stack->writeFilterSettings();
    const VeskRosterFiltersStack readBack(
        QStringLiteral("ann"), VeskRosterFilter::RosterFilterDefault);
    std::printf("%s\n", readBack.display().toUtf8().constData());

    QTranslator german;
    if (argc < 2 || !german.load(QString::fromLocal8Bit(argv[1])))
        return 1;
    QCoreApplication::installTranslator(&german);
    VeskFilterEditorWidget translated;
    std::printf("%s\n",
        translated.findChild<QCheckBox *>(QStringLiteral("advanced"))->text().toUtf8().constData());
    return 0;
}
