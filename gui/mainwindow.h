#pragma once

#include <QMainWindow>
#include <QRandomGenerator>
#include <QTimer>
#include <QVector>

#include <veskpresence.h>

class QAction;
class QComboBox;
class QLabel;
class QTreeView;
class VeskRosterLibrary;
class VeskRosterProxyModel;
class VeskRosterTreeModel;
class VeskSearchBar;

// The roster window: the roster as the current filter and sorting method
// show it, choosers for both, the two editors and a simulation of a roster
// that changes while it is shown.
class VeskRosterWindow : public QMainWindow
{
    Q_OBJECT
public:
    // The roster is the stand-in's, loaded before; the library is open.
    explicit VeskRosterWindow(VeskRosterLibrary *library, QWidget *parent = nullptr);
    ~VeskRosterWindow() override;

    QTreeView *view() const { return tree; }
    VeskRosterProxyModel *proxy() const { return proxyModel; }
    VeskRosterTreeModel *model() const { return rosterModel; }
    VeskRosterLibrary *library() const { return rosterLibrary; }
    QString statusText() const;
    VeskSearchBar *searchBar() const { return search; }

public Q_SLOTS:
    // Opens an editor (window-modal, without blocking) and keeps what it stores.
    void editFilters();
    void editSorters();
    // One step of the simulation: a few contacts change presence and chats.
    void simulateStep();

private:
    // The library is gone (see VeskRosterLibrary::lost): detach everything
    // that would ask it, say why and quit. Nothing unstored is lost, since
    // every change is stored when it is made.
    void giveUp(const QString &error);

    void refresh();
    void fillChoosers();
    void chooseFilter(int index);
    void chooseSorter(int index);
    void scheduleCount();
    void countShown();
    void expandGroups(int first, int last);
    void showError(const QString &error);

    VeskRosterLibrary *rosterLibrary;
    VeskRosterTreeModel *rosterModel;
    VeskRosterProxyModel *proxyModel;
    QTreeView *tree;
    VeskSearchBar *search;
    QComboBox *filterCombo;
    QComboBox *sorterCombo;
    QLabel *statusLabel;
    QAction *simulateAction;
    QTimer simulation;
    QTimer countTimer;
    QRandomGenerator random;
    QVector<VeskPresence> presences; // the presences seen in the roster
};
