#pragma once

#include <veskrosterfilter.h>

#include <QDialog>
#include <QStringList>

#include <memory>
#include <vector>

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;
class QWidget;
class VeskRosterFiltersStack;
class VeskLibrarySession;
class VeskRosterLibrary;

// Edits every filter at once: the list of filters (new, rename, remove,
// reorder) and, for the selected one, its tree of AND/OR stacks and
// conditions. Each condition is edited through the fields that the filter
// itself describes. Nothing is stored before OK, and OK stores everything
// or, when the library refuses or a filter does not read back as edited,
// nothing.
class VeskFilterEditor : public QDialog
{
    Q_OBJECT
public:
    VeskFilterEditor(VeskRosterLibrary *library, QWidget *parent = nullptr);
    ~VeskFilterEditor() override;

    // The message of the last refusal; empty while there is none.
    QString message() const;

public Q_SLOTS:
    void accept() override;

private:
    struct Draft
    {
        QString original; // the identifier on disk; empty for a new filter
        QString name;
        bool advanced = false;
        QString sorter;
        std::unique_ptr<VeskRosterFiltersStack> root; // null for "default"
        bool dirty = false;
    };

    void buildWidgets();
    void loadDrafts();
    Draft *draft() const;
    VeskRosterFilter *selectedFilter() const;
    VeskRosterFiltersStack *targetStack() const;

    void showDraft();
    void rebuildTree(VeskRosterFilter *select);
    void addItems(QTreeWidgetItem *parent, VeskRosterFilter *filter, VeskRosterFilter *select);
    void showNode();
    void updateTexts();
    void changed();

    void newFilter();
    void removeFilter();
    void moveFilter(int delta);
    void addCondition();
    void addStack();
    void removeNode();
    void moveNode(int delta);
    void setJoin(int index);
    void setField(int field, const QString &value);

    // Why the filters cannot be stored as they are; empty when they can.
    QString check() const;
    bool store(VeskLibrarySession &session, QString *error);

    VeskRosterLibrary *library;
    std::vector<std::unique_ptr<Draft>> drafts;
    QStringList openedWith; // the filters on disk when the editor opened

    QListWidget *filterList = nullptr;
    QLineEdit *nameEdit = nullptr;
    QCheckBox *advancedBox = nullptr;
    QTreeWidget *tree = nullptr;
    QComboBox *kindCombo = nullptr;
    QComboBox *joinCombo = nullptr;
    QLabel *joinLabel = nullptr;
    QWidget *fieldPanel = nullptr;
    QFormLayout *fieldLayout = nullptr;
    QLabel *displayLabel = nullptr;
    QLabel *messageLabel = nullptr;
    QWidget *editArea = nullptr;
    QPushButton *removeFilterButton = nullptr;
    QPushButton *upFilterButton = nullptr;
    QPushButton *downFilterButton = nullptr;
    QDialogButtonBox *buttons = nullptr;
    QList<QWidget *> fieldEditors;
};
