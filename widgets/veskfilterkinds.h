#pragma once

#include "vesk_roster_widgets_export.h"

#include <veskrosterfilter.h>

#include <QHash>
#include <QString>
#include <QStringList>

#include <functional>

class VeskRosterFiltersStack;

// The kinds of condition a filter editor offers, and the factory it makes
// and copies filters with: the library's leaf kinds, made by the filters
// manager, and kinds a client registers for its own conditions. The
// manager's factory knows only the library's kinds, so a filter holding a
// client's kind can be edited here but is not read back from a stack file.
class VESK_ROSTER_WIDGETS_EXPORT VeskFilterKinds
{
public:
    // Makes a new leaf of one kind, owned by the caller; its id() is the kind.
    using Factory = std::function<VeskRosterFilter *()>;

    VeskFilterKinds();
    ~VeskFilterKinds();

    // Adds a kind of the client's own. False, and nothing changes, for an
    // empty id, "stack_filter", one of the library's kinds or a null factory.
    bool registerKind(const QString &kindId, const QString &name, const Factory &create);
    bool isRegistered(const QString &kindId) const;

    // Every kind on offer, ordered by name as the user reads it.
    QStringList kinds() const;
    // The translated name of a kind; empty for a kind nobody offers.
    QString name(const QString &kindId) const;

    // A new leaf of the kind, owned by the caller; null for an unknown kind.
    VeskRosterFilter *createLeaf(const QString &kindId) const;
    // A new stack without a name or children, owned by the caller.
    VeskRosterFiltersStack *createStack(VeskRosterFilter::RosterFilterType type) const;
    // A copy of a leaf (kind and configuration) or of a stack with all its
    // children (type, advanced mode, sorting method; no name), owned by the
    // caller. Children of a kind nobody offers are left out; null for such a
    // leaf itself.
    VeskRosterFilter *copy(const VeskRosterFilter *filter) const;
    VeskRosterFiltersStack *copyStack(const VeskRosterFiltersStack *stack) const;

private:
    struct Kind
    {
        QString name;
        Factory create;
    };
    QHash<QString, Kind> own;
};
