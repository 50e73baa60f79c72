#pragma once

// The roster as a proxy shows it and as `vesk-roster show` lists it, each as
// one string: "Group: a, b | -: c".

#include <rosterview.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterproxymodel.h>
#include <veskrosterquicksearch.h>
#include <veskrostersortersmanager.h>
#include <veskstandin.h>

#include <QAbstractItemModel>
#include <QStringList>

namespace VeskRosterShown {

// "Group: a, b | -: c", in the proxy's row order: a run of top-level members
// is one "-" part.
inline QString shown(const QAbstractItemModel &proxy)
{
    QStringList parts;
    QStringList members;
    auto endRun = [&] {
        if (!members.isEmpty())
            parts.append(QLatin1String("-: ") + members.join(QLatin1String(", ")));
        members.clear();
    };
    for (int row = 0; row < proxy.rowCount(); ++row) {
        const QModelIndex index = proxy.index(row, 0);
        if (index.data(VeskRosterProxyModel::BuddyRole).value<VeskBuddy>().getType()
            != VeskBuddy::TypeGroup) {
            members.append(index.data().toString());
            continue;
        }
        endRun();
        for (int member = 0; member < proxy.rowCount(index); ++member)
            members.append(proxy.index(member, 0, index).data().toString());
        parts.append(
            index.data().toString() + QLatin1String(": ") + members.join(QLatin1String(", ")));
        members.clear();
    }
    endRun();
    return parts.join(QLatin1String(" | "));
}

// With a search: the view as the filters manager answers it with the search.
inline QString reference(const VeskRosterQuickSearch *search = nullptr)
{
    const VeskRosterView view(VeskStandIn::entries(), VeskRosterFiltersManager::getInstance(),
        VeskRosterSortersManager::getInstance(), search);
    QStringList parts;
    auto names = [](const QVector<VeskRosterView::Entry> &entries) {
        QStringList list;
        for (const VeskRosterView::Entry &entry : entries)
            list.append(entry.display);
        return list.join(QLatin1String(", "));
    };
    for (const VeskRosterView::Group &group : view.groups)
        parts.append(group.name + QLatin1String(": ") + names(group.entries));
    if (!view.ungrouped.isEmpty())
        parts.append(QLatin1String("-: ") + names(view.ungrouped));
    return parts.join(QLatin1String(" | "));
}

} // namespace VeskRosterShown
