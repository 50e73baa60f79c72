#pragma once

#include "vesk_roster_widgets_export.h"
#include "veskfilterkinds.h"

#include <QWidget>

#include <memory>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;
class VeskConditionEditor;
class VeskRosterFilter;
class VeskRosterFiltersStack;

// Edits one filter: its tree of AND/OR stacks and conditions, each
// condition through editors made from the fields the condition describes,
// nested stacks, the advanced flag, and the text the filter displays, which
// follows every edit. The widget works on a copy: the filter it was given is
// never touched, editedFilter() hands the edited tree back and discard()
// returns to the filter as it was given. It stores nothing; what happens to
// the edited tree is the caller's business.
//
// Controls a client may look up by object name: "conditions" (the tree),
// "kind", "join", "advanced", "display", the buttons "add", "addStack",
// "remove", "up", "down", and each field editor under its field's id.
//
// Keys (active in the whole window): Ins adds a condition of the kind chosen
// in "Kind" (Alt+K), Ctrl+Ins a nested stack, Ctrl+Up/Ctrl+Down move the
// selected node; Delete in the tree removes it; Alt+J chooses AND or OR for
// the selected stack, Alt+C goes to the tree, Alt+V switches the advanced flag.
class VESK_ROSTER_WIDGETS_EXPORT VeskFilterEditorWidget : public QWidget
{
    Q_OBJECT
public:
    explicit VeskFilterEditorWidget(QWidget *parent = nullptr);
    ~VeskFilterEditorWidget() override;

    // The kinds offered for new conditions: the library's, and a client's
    // own once registered (see VeskFilterKinds::registerKind()).
    bool registerKind(
        const QString &kindId, const QString &name, const VeskFilterKinds::Factory &create);
    const VeskFilterKinds &kinds() const;

    // Starts editing a copy of `filter`, which the caller keeps. Null shows
    // nothing to edit (the default filter, say) with the placeholder text.
    void setFilter(const VeskRosterFiltersStack *filter);
    void setPlaceholderText(const QString &text);
    bool hasFilter() const;
    // The working copy, as edited so far; null when there is none.
    const VeskRosterFiltersStack *filter() const;
    // A copy of the edited tree with its advanced flag and sorting method,
    // owned by the caller; null when there is nothing to edit.
    VeskRosterFiltersStack *editedFilter() const;
    // Whether anything was edited since setFilter() or discard().
    bool isModified() const;
    // What the filter shows, as the library words it.
    QString displayText() const;

    // The node selected in the tree; null when none is.
    const VeskRosterFilter *selectedNode() const;

public Q_SLOTS:
    // Back to the filter as setFilter() gave it.
    void discard();

Q_SIGNALS:
    // After every edit of the working copy (and after discard()).
    void changed();

private:
    VeskRosterFilter *selected() const;
    VeskRosterFiltersStack *targetStack() const;
    void startFrom(const VeskRosterFiltersStack *filter);
    void rebuildTree(VeskRosterFilter *select);
    void addItems(QTreeWidgetItem *parent, VeskRosterFilter *filter, VeskRosterFilter *select);
    void showNode();
    void updateTexts();
    void edited();
    void fillKinds();

    void addCondition();
    void addStack();
    void removeNode();
    void moveNode(int delta);
    void setJoin(int index);

    VeskFilterKinds filterKinds;
    std::unique_ptr<VeskRosterFiltersStack> original;
    std::unique_ptr<VeskRosterFiltersStack> working;
    bool modified = false;
    QString placeholder;

    QCheckBox *advancedBox = nullptr;
    QTreeWidget *tree = nullptr;
    QComboBox *kindCombo = nullptr;
    QComboBox *joinCombo = nullptr;
    QLabel *joinLabel = nullptr;
    QFormLayout *fieldLayout = nullptr;
    QLabel *displayLabel = nullptr;
    VeskConditionEditor *conditionEditor = nullptr;
    QList<QPushButton *> treeButtons;
};
