#pragma once

#include "vesk_host_export.h"

#include <QList>
#include <QString>
#include <QStringList>

class VeskXmlNode;

// One field of a form: a line edit or a combo box, recognised by its field id.
// Also the form in which global settings are read and written.
class VESK_HOST_EXPORT VeskField
{
public:
    enum Kind { LineEdit, ComboBox };

    static VeskField lineEdit(const QString &caption, const QString &id, const QString &text,
        int maxLength, const QString &trailing);
    static VeskField comboBox(const QString &caption, const QString &id, const QStringList &ids,
        const QStringList &labels, const QString &selectedId, const QString &trailing);

    QString getId() const;
    QString getText() const;
    QString getSelectedId() const;
    // The label at the selected id's position among the item ids; empty when
    // the selected id is not among them.
    QString getSelectedLabel() const;
    QStringList getComboBoxIds() const;
    void setComboBoxItems(const QStringList &ids, const QStringList &labels);

    // One node holding every field's id and value; fromXml() puts the values
    // back into a copy of the template. Lossless for any text.
    static VeskXmlNode toXml(const QList<VeskField> &fields);
    static QList<VeskField> fromXml(const QList<VeskField> &fields, const VeskXmlNode &node);

    // What the host's form editors use; the filter library never calls these.
    Kind getKind() const;
    QString getCaption() const;
    QString getTrailing() const;
    int getMaxLength() const;
    QStringList getComboBoxLabels() const;
    void setText(const QString &text);
    void setSelectedId(const QString &id);

private:
    VeskField();

    Kind kind;
    QString caption;
    QString id;
    QString text;
    int maxLength;
    QStringList itemIds;
    QStringList itemLabels;
    QString selectedId;
    QString trailing;
};
