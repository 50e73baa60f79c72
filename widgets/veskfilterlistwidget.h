#pragma once

#include "vesk_roster_widgets_export.h"

#include <QStringList>
#include <QWidget>

class QLineEdit;
class QListWidget;
class QPushButton;

// The list of a user's filters as an editor shows it: "default" first and
// fixed, then the user's filters in display order, one of them current.
// New, rename, remove and up/down edit a working list; nothing is stored.
// Each row remembers the name it was given by setFilters() (its original),
// empty for a filter made here, so that a caller can tell a renamed filter
// from a new one.
//
// Keys (active in the whole window): Ctrl+N adds a filter and puts the
// cursor in its name, F2 goes to the name of the current filter, Ctrl+Del
// removes it, Alt+Up/Alt+Down move it; Alt+F goes to the list, Alt+M to the
// name.
class VESK_ROSTER_WIDGETS_EXPORT VeskFilterListWidget : public QWidget
{
    Q_OBJECT
public:
    explicit VeskFilterListWidget(QWidget *parent = nullptr);
    ~VeskFilterListWidget() override;

    // Starts a new working list; "default" is put first whether it is
    // listed or not. The first filter after it becomes current.
    void setFilters(const QStringList &names);
    // The rows' names and originals, in order, "default" first.
    QStringList filters() const;
    QStringList originals() const;
    // The originals of the filters removed since setFilters().
    QStringList removedFilters() const;

    int count() const;
    QString name(int row) const;
    QString original(int row) const;
    int currentRow() const;
    void setCurrentRow(int row);
    QString currentFilter() const;
    void setCurrentFilter(const QString &name);

    // The name a new filter gets: "filter N" with the first N not in use.
    QString unusedName() const;

public Q_SLOTS:
    void newFilter();
    void removeFilter();
    void moveFilter(int delta);

Q_SIGNALS:
    // Another row became current (-1: none).
    void currentRowChanged(int row);
    // A row was added (at the end), or is about to be removed.
    void filterAdded(int row);
    void filterAboutToBeRemoved(int row);
    // Two neighbouring rows changed places; `to` is current now.
    void filterMoved(int from, int to);
    void filterRenamed(int row, const QString &name);
    // After every edit of the working list.
    void changed();

private:
    void showCurrent();
    static bool isFixed(int row);

    QStringList names;
    QStringList originalNames;
    QStringList removed;

    QListWidget *list = nullptr;
    QLineEdit *nameEdit = nullptr;
    QPushButton *removeButton = nullptr;
    QPushButton *upButton = nullptr;
    QPushButton *downButton = nullptr;
};
