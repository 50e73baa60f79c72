#pragma once

#include "vesk_host_export.h"

#include <QByteArray>
#include <QDomDocument>
#include <QDomElement>
#include <QList>
#include <QString>

// An element of an XML document, held as the element and the document that
// owns it. Copies share both handles.
class VESK_HOST_EXPORT VeskXmlNode
{
public:
    // An empty tag name makes a blank node: a fresh document without an
    // element yet, ready for setContent().
    VeskXmlNode(const QString &tagName = QString(), const QString &text = QString(),
        VeskXmlNode *parent = nullptr);
    VeskXmlNode(const VeskXmlNode &other);
    VeskXmlNode &operator=(const VeskXmlNode &other);
    ~VeskXmlNode();

    bool isNull() const;
    bool hasChildNodes() const;
    QList<VeskXmlNode> getChildNodes() const;
    QString name() const;
    QString getAttribute(const QString &name, const QString &defaultValue) const;
    void setAttribute(const QString &name, const QString &value, const QString &ns);
    VeskXmlNode addChild(const QString &tagName, const QString &text);
    // Accepts a node of any document; the node is copied into this one.
    void appendChild(const VeskXmlNode &node);
    // Parses a whole document; afterwards this node is its root element (a
    // null node when the bytes do not parse).
    bool setContent(const QByteArray &bytes);
    QByteArray toByteArray() const;

private:
    VeskXmlNode(const QDomElement &element, const QDomDocument &document);

    QDomElement element;
    QDomDocument document;
};
