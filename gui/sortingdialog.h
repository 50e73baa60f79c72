#pragma once

#include <QDialog>

class QLabel;
class VeskLibrarySession;
class VeskRosterLibrary;
class VeskSorterEditorWidget;

// The roster window's sorting editor: the sorting-method editor stored
// through the session. Nothing is stored before OK, and OK stores everything
// or nothing; a renamed method takes the filters that sort by it along.
class VeskSorterEditor : public QDialog
{
    Q_OBJECT
public:
    VeskSorterEditor(VeskRosterLibrary *library, QWidget *parent = nullptr);
    ~VeskSorterEditor() override;

    // The message of the last refusal; empty while there is none.
    QString message() const;

public Q_SLOTS:
    void accept() override;

private:
    bool store(VeskLibrarySession &session, QString *error);

    VeskRosterLibrary *library;
    QString openedDefault;
    VeskSorterEditorWidget *editor = nullptr;
    QLabel *messageLabel = nullptr;
};
