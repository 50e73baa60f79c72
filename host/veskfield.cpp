#include "veskfield.h"

#include "veskxmlnode.h"

#include <QHash>

namespace {

const QString fieldsTag = QStringLiteral("fields");
const QString fieldTag = QStringLiteral("field");

// Text that an XML attribute cannot carry as it is (control characters, which
// XML 1.0 forbids or normalises, lone surrogates, non-characters) is stored as
// base64 of its UTF-16 code units instead; everything else stays readable.
bool needsEncoding(const QString &text)
{
    const int n = text.size();
    for (int i = 0; i < n; ++i) {
        const ushort c = text.at(i).unicode();
        if (c < 0x20 || c == 0xFFFE || c == 0xFFFF)
            return true;
        if (QChar::isHighSurrogate(c)) {
            if (i + 1 >= n || !QChar::isLowSurrogate(text.at(i + 1).unicode()))
                return true;
            ++i;
        } else if (QChar::isLowSurrogate(c)) {
            return true;
        }
    }
    return false;
}

void storeText(VeskXmlNode &node, const QString &attribute, const QString &text)
{
    if (!needsEncoding(text)) {
        node.setAttribute(attribute, text, QString());
        return;
    }
    const QByteArray raw(reinterpret_cast<const char *>(text.utf16()), text.size() * 2);
    node.setAttribute(
        attribute + QLatin1String("64"), QString::fromLatin1(raw.toBase64()), QString());
}

QString loadText(const VeskXmlNode &node, const QString &attribute, bool *found)
{
    const QString marker = QStringLiteral("\x01");
    const QString encoded = node.getAttribute(attribute + QLatin1String("64"), marker);
    if (encoded != marker) {
        *found = true;
        const QByteArray raw = QByteArray::fromBase64(encoded.toLatin1());
        // Not fromUtf16(): it would take a leading U+FFFE for a byte-order mark.
        return QString(reinterpret_cast<const QChar *>(raw.constData()), raw.size() / 2);
    }
    const QString plain = node.getAttribute(attribute, marker);
    *found = plain != marker;
    return *found ? plain : QString();
}

} // namespace

VeskField::VeskField()
    : kind(LineEdit)
    , maxLength(0)
{ }

VeskField VeskField::lineEdit(const QString &caption, const QString &id, const QString &text,
    int maxLength, const QString &trailing)
{
    VeskField field;
    field.kind = LineEdit;
    field.caption = caption;
    field.id = id;
    field.text = text;
    field.maxLength = maxLength;
    field.trailing = trailing;
    return field;
}

VeskField VeskField::comboBox(const QString &caption, const QString &id, const QStringList &ids,
    const QStringList &labels, const QString &selectedId, const QString &trailing)
{
    VeskField field;
    field.kind = ComboBox;
    field.caption = caption;
    field.id = id;
    field.itemIds = ids;
    field.itemLabels = labels;
    field.selectedId = selectedId;
    field.trailing = trailing;
    return field;
}

QString VeskField::getId() const
{
    return id;
}

QString VeskField::getText() const
{
    return text;
}

QString VeskField::getSelectedId() const
{
    return selectedId;
}

QString VeskField::getSelectedLabel() const
{
    const int index = itemIds.indexOf(selectedId);
    return index >= 0 ? itemLabels.value(index) : QString();
}

QStringList VeskField::getComboBoxIds() const
{
    return itemIds;
}

void VeskField::setComboBoxItems(const QStringList &ids, const QStringList &labels)
{
    itemIds = ids;
    itemLabels = labels;
}

VeskXmlNode VeskField::toXml(const QList<VeskField> &fields)
{
    VeskXmlNode root(fieldsTag, QString(), nullptr);
    for (const VeskField &field : fields) {
        VeskXmlNode child = root.addChild(fieldTag, QString());
        storeText(child, QStringLiteral("id"), field.id);
        storeText(
            child, QStringLiteral("value"), field.kind == ComboBox ? field.selectedId : field.text);
    }
    return root;
}

QList<VeskField> VeskField::fromXml(const QList<VeskField> &fields, const VeskXmlNode &node)
{
    QList<VeskField> result = fields;
    if (node.isNull() || node.name() != fieldsTag)
        return result;

    // The last stored value of an id wins, as it would in setConfiguration().
    QHash<QString, QString> stored;
    const QList<VeskXmlNode> children = node.getChildNodes();
    for (const VeskXmlNode &child : children) {
        if (child.isNull() || child.name() != fieldTag)
            continue;
        bool hasId = false;
        bool hasValue = false;
        const QString id = loadText(child, QStringLiteral("id"), &hasId);
        const QString value = loadText(child, QStringLiteral("value"), &hasValue);
        if (hasId && hasValue)
            stored.insert(id, value);
    }
    for (VeskField &field : result) {
        const auto it = stored.constFind(field.id);
        if (it == stored.constEnd())
            continue;
        if (field.kind == ComboBox)
            field.selectedId = *it;
        else
            field.text = *it;
    }
    return result;
}

VeskField::Kind VeskField::getKind() const
{
    return kind;
}

QString VeskField::getCaption() const
{
    return caption;
}

QString VeskField::getTrailing() const
{
    return trailing;
}

int VeskField::getMaxLength() const
{
    return maxLength;
}

QStringList VeskField::getComboBoxLabels() const
{
    return itemLabels;
}

void VeskField::setText(const QString &value)
{
    text = value;
}

void VeskField::setSelectedId(const QString &value)
{
    selectedId = value;
}
