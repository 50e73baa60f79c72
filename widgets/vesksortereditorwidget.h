#pragma once

#include "vesk_roster_widgets_export.h"

#include <QHash>
#include <QList>
#include <QStringList>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class VeskRosterSortersManager;

// A sorting method as the editor holds it.
struct VeskSortingMethod
{
    QString name;
    // The name it had when the editor got it; empty for a method made in the editor.
    QString original;
    QStringList comparators; // comparator ids, the first one deciding first
    QList<bool> ascending; // one per comparator
    bool modified = false; // its comparators or directions were edited
};

// Edits the sorting methods on a working copy: each a named chain of
// comparators, each comparator ascending or descending, and which method is
// the default. Nothing is stored; methods() and defaultMethod() hand back the
// edited state, and setMethods() or loadMethods() start again.
//
// Keys (active in the whole window): Ctrl+N adds a method and puts the
// cursor in its name, Ctrl+Del removes the current one; Ins adds the
// comparator chosen in "Comparator" (Alt+C), Delete in the list removes the
// selected one, Ctrl+Up/Ctrl+Down move it and Space switches its direction;
// Alt+M goes to the methods and, pressed again, to the name; Alt+D switches
// "default", Alt+P goes to the comparators.
class VESK_ROSTER_WIDGETS_EXPORT VeskSorterEditorWidget : public QWidget
{
    Q_OBJECT
public:
    explicit VeskSorterEditorWidget(QWidget *parent = nullptr);
    ~VeskSorterEditorWidget() override;

    // The stored methods, the default one and the comparators on offer, as
    // the sorters manager has them; the widget keeps no pointer to it.
    void loadMethods(const VeskRosterSortersManager *sorters);
    // The comparators on offer: id and translated name.
    void setComparators(const QStringList &ids, const QStringList &names);
    void setMethods(const QList<VeskSortingMethod> &methods, const QString &defaultMethod);

    QList<VeskSortingMethod> methods() const;
    // Empty: no default method, the built-in order.
    QString defaultMethod() const;
    // The originals of the methods removed since the last setMethods().
    QStringList removedMethods() const;
    bool isModified() const;
    QString currentMethod() const;

Q_SIGNALS:
    void changed();

private:
    VeskSortingMethod *method();
    void showMethod();
    void showComparators(int select);
    void comparatorText(QListWidgetItem *item, const QString &id, bool ascending);
    void edited(bool chain);
    void newMethod();
    void removeMethod();
    void addComparator();
    void removeComparator();
    void moveComparator(int delta);

    QList<VeskSortingMethod> working;
    QStringList removed;
    QString defaultName;
    bool modified = false;
    QHash<QString, QString> comparatorNames;

    QListWidget *methodList = nullptr;
    QLineEdit *nameEdit = nullptr;
    QCheckBox *defaultBox = nullptr;
    QListWidget *comparatorList = nullptr;
    QComboBox *comparatorCombo = nullptr;
    QWidget *editArea = nullptr;
};
