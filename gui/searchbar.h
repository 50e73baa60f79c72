#pragma once

#include <QStyledItemDelegate>
#include <QTimer>
#include <QWidget>

class QCheckBox;
class QLineEdit;
class VeskRosterProxyModel;

// The quick search above the roster: a text field that narrows the view as
// the user types (Escape clears it) and a box that widens the search from
// the current filter's entries to every entry. It keeps nothing: the search
// is gone with the window.
class VeskSearchBar : public QWidget
{
    Q_OBJECT
public:
    VeskSearchBar(VeskRosterProxyModel *proxy, QWidget *parent = nullptr);

    QLineEdit *field() const { return edit; }
    QString text() const;
    // Whether the texts the search looks at are still being read.
    bool isPreparing() const { return preparing.isActive(); }
    // Puts the cursor in the field with its text selected (Ctrl+F).
    void focusField();

Q_SIGNALS:
    // The view shows what the new search gives.
    void searchChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void apply();

    VeskRosterProxyModel *proxy;
    QLineEdit *edit;
    QCheckBox *everyEntry;
    QTimer preparing;
};

// Paints the part of a member's name that the search matched on a highlight,
// found the way the search folds case and accents.
class VeskSearchHighlightDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    // Where `needle` (not folded) matches `text` once both are folded, in
    // characters of `text`: *start and *length; false when it does not.
    static bool matchIn(const QString &text, const QString &needle, int *start, int *length);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
        const QModelIndex &index) const override;
};
