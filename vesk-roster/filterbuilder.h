#pragma once

#include <veskrosterfilter.h>

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

class VeskRosterFiltersManager;
class VeskRosterFiltersStack;

// Builds filters the way a filter editor does: a leaf from the manager's
// factory, configured by setting named fields of its own getConfiguration()
// and handing the list back; a nested stack with its children. Everything it
// cannot build is refused before anything is attached or stored.
class VeskFilterBuilder
{
public:
    using Fields = QList<QPair<QString, QString>>; // field id, value
    using Warn = std::function<void(const QString &)>;

    VeskFilterBuilder(VeskRosterFiltersManager *manager, Warn warn);

    // Splits CONDITION arguments: each condition starts at an argument with no
    // "=" (the kind), and its FIELD=VALUE arguments follow.
    static QList<QStringList> splitConditions(const QStringList &args);

    std::unique_ptr<VeskRosterFilter> leaf(const QStringList &condition) const;
    std::unique_ptr<VeskRosterFilter> leaf(const QString &kind, const Fields &fields) const;
    std::unique_ptr<VeskRosterFiltersStack> nestedStack(VeskRosterFilter::RosterFilterType type,
        std::vector<std::unique_ptr<VeskRosterFilter>> children) const;

    // "and" or "or"; refuses anything else.
    static VeskRosterFilter::RosterFilterType parseType(const QString &text);
    static QString typeName(VeskRosterFilter::RosterFilterType type);

    // The leaf kinds, sorted.
    QStringList kinds() const;

private:
    void refuseField(
        const QString &kind, const QString &field, const QList<VeskField> &configuration) const;

    VeskRosterFiltersManager *manager;
    Warn warn;
};
