#include "veskxmlnode.h"

#include <QTextStream>

VeskXmlNode::VeskXmlNode(const QString &tagName, const QString &text, VeskXmlNode *parent)
{
    if (parent && !parent->element.isNull())
        document = parent->document;
    if (tagName.isEmpty())
        return;
    element = document.createElement(tagName);
    if (!text.isEmpty())
        element.appendChild(document.createTextNode(text));
    if (parent && !parent->element.isNull())
        parent->element.appendChild(element);
    else
        document.appendChild(element);
}

VeskXmlNode::VeskXmlNode(const QDomElement &element, const QDomDocument &document)
    : element(element)
    , document(document)
{ }

VeskXmlNode::VeskXmlNode(const VeskXmlNode &other) = default;
VeskXmlNode &VeskXmlNode::operator=(const VeskXmlNode &other) = default;
VeskXmlNode::~VeskXmlNode() = default;

bool VeskXmlNode::isNull() const
{
    return element.isNull();
}

bool VeskXmlNode::hasChildNodes() const
{
    return element.hasChildNodes();
}

QList<VeskXmlNode> VeskXmlNode::getChildNodes() const
{
    QList<VeskXmlNode> children;
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling())
        children.append(VeskXmlNode(child.toElement(), document));
    return children;
}

QString VeskXmlNode::name() const
{
    return element.tagName();
}

QString VeskXmlNode::getAttribute(const QString &name, const QString &defaultValue) const
{
    return element.attribute(name, defaultValue);
}

void VeskXmlNode::setAttribute(const QString &name, const QString &value, const QString &)
{
    element.setAttribute(name, value);
}

VeskXmlNode VeskXmlNode::addChild(const QString &tagName, const QString &text)
{
    if (element.isNull())
        return VeskXmlNode(QString(), QString(), nullptr);
    QDomElement child = document.createElement(tagName);
    if (!text.isEmpty())
        child.appendChild(document.createTextNode(text));
    element.appendChild(child);
    return VeskXmlNode(child, document);
}

void VeskXmlNode::appendChild(const VeskXmlNode &node)
{
    if (element.isNull() || node.element.isNull())
        return;
    if (node.document == document)
        element.appendChild(node.element);
    else
        element.appendChild(document.importNode(node.element, true));
}

bool VeskXmlNode::setContent(const QByteArray &bytes)
{
    document = QDomDocument();
    const bool parsed = document.setContent(bytes);
    element = parsed ? document.documentElement() : QDomElement();
    return parsed;
}

QByteArray VeskXmlNode::toByteArray() const
{
    if (element.isNull())
        return QByteArray();
    if (element == document.documentElement())
        return document.toByteArray(1);
    // Through a QString, whose stream needs no codec under either Qt.
    QString text;
    QTextStream stream(&text);
    element.save(stream, 1);
    stream.flush();
    return text.toUtf8();
}
