#pragma once

#include <veskfield.h>

#include <QList>
#include <QWidget>

class VeskRosterFilter;

// The editors of one condition, made from the fields its filter describes:
// per field, in the filter's order, a combo box or a line edit (named after
// the field's id), between the field's caption and trailing text when it
// has them. Each edit goes to the filter at once.
class VeskConditionEditor : public QWidget
{
    Q_OBJECT
public:
    VeskConditionEditor(VeskRosterFilter *condition, QWidget *parent);

    // The field editors in tab order.
    QList<QWidget *> editors() const { return fieldEditors; }

Q_SIGNALS:
    void changed();

private:
    void setField(int field, const QString &value);

    VeskRosterFilter *condition;
    QList<QWidget *> fieldEditors;
};
