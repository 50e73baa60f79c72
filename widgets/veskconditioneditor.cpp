#include "veskconditioneditor_p.h"

#include <veskrosterfilter.h>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

VeskConditionEditor::VeskConditionEditor(VeskRosterFilter *filter, QWidget *parent)
    : QWidget(parent)
    , condition(filter)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    const QList<VeskField> fields = condition->getConfiguration();
    for (int i = 0; i < fields.size(); ++i) {
        const VeskField &field = fields.at(i);
        if (!field.getCaption().isEmpty())
            layout->addWidget(new QLabel(field.getCaption(), this));
        QWidget *editor = nullptr;
        if (field.getKind() == VeskField::ComboBox) {
            auto *combo = new QComboBox(this);
            const QStringList ids = field.getComboBoxIds();
            const QStringList labels = field.getComboBoxLabels();
            for (int item = 0; item < ids.size(); ++item) {
                const QString label = labels.value(item);
                combo->addItem(label.isEmpty() ? ids.at(item) : label, ids.at(item));
            }
            combo->setCurrentIndex(ids.indexOf(field.getSelectedId()));
            connect(combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
                [this, combo, i](int index) { setField(i, combo->itemData(index).toString()); });
            editor = combo;
        } else {
            auto *edit = new QLineEdit(field.getText(), this);
            if (field.getMaxLength() > 0)
                edit->setMaxLength(field.getMaxLength());
            connect(edit, &QLineEdit::textEdited, this,
                [this, i](const QString &text) { setField(i, text); });
            editor = edit;
        }
        editor->setObjectName(field.getId());
        // The caption says what the field is; without one, the condition's
        // name and the field's id do.
        editor->setAccessibleName(field.getCaption().isEmpty()
                ? condition->name() + QLatin1String(": ") + field.getId()
                : field.getCaption());
        layout->addWidget(editor, 1);
        fieldEditors.append(editor);
        if (!field.getTrailing().isEmpty())
            layout->addWidget(new QLabel(field.getTrailing(), this));
    }
    for (int i = 1; i < fieldEditors.size(); ++i)
        QWidget::setTabOrder(fieldEditors.at(i - 1), fieldEditors.at(i));
    if (!fieldEditors.isEmpty())
        setFocusProxy(fieldEditors.first());
}

void VeskConditionEditor::setField(int field, const QString &value)
{
    QList<VeskField> fields = condition->getConfiguration();
    if (field >= fields.size())
        return;
    if (fields.at(field).getKind() == VeskField::ComboBox)
        fields[field].setSelectedId(value);
    else
        fields[field].setText(value);
    condition->setConfiguration(fields);
    Q_EMIT changed();
}
