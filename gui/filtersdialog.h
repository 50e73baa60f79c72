#pragma once

#include <QDialog>

#include <memory>
#include <vector>

class QLabel;
class VeskFilterEditorWidget;
class VeskFilterListWidget;
class VeskLibrarySession;
class VeskRosterFiltersStack;
class VeskRosterLibrary;

// The roster window's filter editor: the list of filters beside the editor
// of the selected one. Nothing is stored before OK, and OK stores every
// filter through the session or, when the library refuses or a filter does
// not read back as edited, nothing; the refusal stays in the dialog.
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
    // What the user made of one row of the list; null for "default".
    struct Draft
    {
        std::unique_ptr<VeskRosterFiltersStack> root;
        bool dirty = false;
    };

    void load();
    void showRow(int row);
    void edited();
    // Why the filters cannot be stored as they are; empty when they can.
    QString check() const;
    bool store(VeskLibrarySession &session, QString *error);
    bool storeOrder(VeskLibrarySession &session, QString *error);

    VeskRosterLibrary *library;
    std::vector<Draft> drafts; // one per row of the list
    int shownRow = -1;

    VeskFilterListWidget *filterList = nullptr;
    VeskFilterEditorWidget *editor = nullptr;
    QLabel *messageLabel = nullptr;
};
