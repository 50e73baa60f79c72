#pragma once

#include <QDialog>
#include <QStringList>

#include <vector>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class VeskLibrarySession;
class VeskRosterLibrary;

// Edits the sorting methods: each a named chain of comparators, each
// comparator ascending or descending; one method is the default. Nothing is
// stored before OK, and OK stores everything or nothing.
class VeskSorterEditor : public QDialog
{
    Q_OBJECT
public:
    VeskSorterEditor(VeskRosterLibrary *library, QWidget *parent = nullptr);
    ~VeskSorterEditor() override;

    QString message() const;

public Q_SLOTS:
    void accept() override;

private:
    struct Method
    {
        QString original; // the name on disk; empty for a new method
        QString name;
        QStringList ids;
        QList<bool> ascending;
        bool dirty = false;
    };

    Method *method();
    void showMethod();
    void showComparators(int select);
    void comparatorText(QListWidgetItem *item, const QString &id, bool ascending);
    void changed();
    void newMethod();
    void removeMethod();
    void addComparator();
    void removeComparator();
    void moveComparator(int delta);

    bool store(VeskLibrarySession &session, QString *error);

    VeskRosterLibrary *library;
    std::vector<Method> methods;
    QStringList openedWith;
    QString defaultMethod;
    QString openedDefault;

    QListWidget *methodList = nullptr;
    QLineEdit *nameEdit = nullptr;
    QCheckBox *defaultBox = nullptr;
    QListWidget *comparatorList = nullptr;
    QComboBox *comparatorCombo = nullptr;
    QWidget *editArea = nullptr;
    QLabel *messageLabel = nullptr;
};
