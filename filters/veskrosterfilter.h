#pragma once

#include "vesk_roster_filter_export.h"

#include <veskfield.h>
#include <veskxmlnode.h>

#include <QList>
#include <QString>

class VeskBuddy;

// The interface of every roster filter: the six leaf kinds, the stack filter
// and the default filter. The order of the virtual functions is part of the
// binary interface hosts compile against; keep it.
class VESK_ROSTER_FILTER_EXPORT VeskRosterFilter
{
public:
    enum RosterFilterType {
        RosterFilterAnd = 0,
        RosterFilterOr = 1,
        RosterFilterLeaf = 2,
        RosterFilterDefault = 3
    };

    VeskRosterFilter();
    virtual ~VeskRosterFilter();

    virtual RosterFilterType getType() const = 0;
    virtual QString id() const = 0;
    virtual QString name() const = 0;
    virtual QString display() const = 0;
    virtual bool filter(const VeskBuddy &buddy) const = 0;
    virtual QList<VeskField> getConfiguration() const;
    virtual void setConfiguration(const QList<VeskField> &fields);

    VeskRosterFilter *getParent() const;
    void setParent(VeskRosterFilter *parent);
    VeskXmlNode *getNode();
    QString getSorter() const;
    void setSorter(const QString &sorter);

private:
    Q_DISABLE_COPY(VeskRosterFilter)

    VeskXmlNode node;
    VeskRosterFilter *parent;
    QString sorter;
};
