#include "veskrosterfilter.h"

VeskRosterFilter::VeskRosterFilter()
    : node(QString(), QString(), nullptr)
    , parent(nullptr)
{ }

VeskRosterFilter::~VeskRosterFilter() = default;

QList<VeskField> VeskRosterFilter::getConfiguration() const
{
    return {};
}

void VeskRosterFilter::setConfiguration(const QList<VeskField> &) { }

VeskRosterFilter *VeskRosterFilter::getParent() const
{
    return parent;
}

void VeskRosterFilter::setParent(VeskRosterFilter *newParent)
{
    parent = newParent;
}

VeskXmlNode *VeskRosterFilter::getNode()
{
    return &node;
}

QString VeskRosterFilter::getSorter() const
{
    return sorter;
}

void VeskRosterFilter::setSorter(const QString &newSorter)
{
    sorter = newSorter;
}
