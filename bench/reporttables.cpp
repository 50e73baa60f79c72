// The tables of the results: every figure the targets are judged on.
#include "reportdata.h"

#include <QTextStream>

void writeTables(QTextStream &out, const Report &report)
{
    const QString size = QString::number(targetSize);
    out << "\n## Filtering every entry\n\n"
           "Three filters of one shape, AND[display contains T, OR[presence is P1, presence is "
           "P2], "
           "group is not \"Blocked\"], letting about 3 % (T = \"an\", P = online, away), 15 % "
           "(T = \"i\", P = online, away) and 50 % (T = \" \", P = offline, xa) of the entries "
           "through: `VeskRosterFiltersManager::filter` with the filter current; the fastest "
           "predicate a person would write for the condition (each piece of the entry read once, "
           "the presence once for both presence tests); and the same checks made leaf by leaf. "
           "The three are checked equal on every entry, then timed back to back in every "
           "iteration, in rotating order; the median of three repetitions. Nanoseconds per "
           "entry (CPU time).\n\n";
    out << "| Contacts | Entries | Filter | Passing | Library | Fastest | Leaf by leaf | Library / "
           "fastest | Library / leaf by leaf | Allocations per call (library / fastest) |\n";
    out << "|---:|---:|---|---:|---:|---:|---:|---:|---:|---:|\n";
    for (const int contacts : filterSizes) {
        for (const char *selectivity : selectivities) {
            const QString name = QStringLiteral("Paired/Filter/%1/%2")
                                     .arg(QLatin1String(selectivity))
                                     .arg(contacts);
            if (!report.has(name))
                continue;
            out << "| " << grouped(contacts) << " | "
                << groupedCell(report.counter(name, "entries")) << QString::fromUtf8(" | ≈")
                << selectivity << " | " << groupedCell(report.counter(name, "passed")) << " | "
                << report.cell(report.counter(name, "library_ns"), 1, name) << " | "
                << report.cell(report.counter(name, "fastest_ns"), 1, name) << " | "
                << report.cell(report.counter(name, "leaf_ns"), 1, name) << " | "
                << ratioCell(report.counter(name, "library_per_fastest")) << " | "
                << ratioCell(report.counter(name, "library_per_leaf")) << " | "
                << report.cell(report.counter(name, "library_allocs_per_call"), 2) << " / "
                << report.cell(report.counter(name, "fastest_allocs_per_call"), 2) << " |\n";
        }
    }
    out << QString::fromUtf8(
        "\nAgainst a `QSortFilterProxyModel` (fixed-string filter plus a `filterAcceptsRow` "
        "override) over a `QStandardItemModel`, timed until `rowCount()` is known, for the "
        "≈3 % filter; the library's figure is the paired one above.\n\n");
    out << "| Contacts | Proxy | Library | Library / proxy |\n|---:|---:|---:|---:|\n";
    for (const int contacts : rosterSizes) {
        const QString proxy = QStringLiteral("Filter/Proxy/") + QString::number(contacts);
        const QString paired = QStringLiteral("Paired/Filter/3%/") + QString::number(contacts);
        if (!report.has(proxy))
            continue;
        out << "| " << grouped(contacts) << " | " << report.cell(report.nsPerEntry(proxy), 1, proxy)
            << " | " << report.cell(report.counter(paired, "library_ns"), 1, paired) << " | "
            << ratioCell(divide(report.counter(paired, "library_ns"), report.nsPerEntry(proxy)))
            << " |\n";
    }

    out << "\n## Each leaf kind alone (" << grouped(targetSize)
        << " contacts)\n\n"
           "One configured leaf's `filter` against its hand-written twin. Nanoseconds per "
           "entry.\n\n";
    out << "| Kind | Library | Hand-written | Library / hand | Allocations per call (library / "
           "hand) |\n";
    out << "|---|---:|---:|---:|---:|\n";
    for (const char *kind :
        { "display", "group", "account", "protocol", "presence", "description" }) {
        const QString base = QStringLiteral("Leaf/%1/").arg(QLatin1String(kind));
        const QString library = base + QStringLiteral("Library/") + size;
        const QString hand = base + QStringLiteral("HandWritten/") + size;
        out << "| " << kind << " | " << report.cell(report.nsPerEntry(library), 1, library) << " | "
            << report.cell(report.nsPerEntry(hand), 1, hand) << " | "
            << ratioCell(divide(report.nsPerEntry(library), report.nsPerEntry(hand))) << " | "
            << report.cell(report.counter(library, "allocs_per_call"), 2) << " / "
            << report.cell(report.counter(hand, "allocs_per_call"), 2) << " |\n";
    }

    out << "\n## Sorting every entry\n\n"
           "`std::stable_sort` with `VeskRosterSortersManager::lessThan` (methods [presence, "
           "name] and [chats_count, name], every comparator descending: contacts that are not "
           "offline first, most chats first, names A to Z), with the hand-written comparator, "
           "`QSortFilterProxyModel::sort` "
           "(`setSortLocaleAware(true)`, case-insensitive; a `lessThan` override compares the "
           "first key from a role, then calls the proxy's own comparison), and, for information "
           "only, `std::stable_sort` over precomputed `QCollatorSortKey`s (building the keys is "
           "not timed; it is shown apart). Milliseconds per sort.\n\n";
    out << "| Method | Contacts | Library | Hand-written | Proxy | Collation keys (+ building "
           "them) | Library / hand | Library / proxy | Allocations per `lessThan` (library / hand) "
           "|\n";
    out << "|---|---:|---:|---:|---:|---:|---:|---:|---:|\n";
    for (const char *method : { "PresenceName", "ChatsName" }) {
        for (const int contacts : rosterSizes) {
            const QString base = QStringLiteral("Sort/%1/").arg(QLatin1String(method));
            const QString n = QString::number(contacts);
            const QString library = base + QStringLiteral("Library/") + n;
            const QString hand = base + QStringLiteral("HandWritten/") + n;
            const QString proxy = base + QStringLiteral("Proxy/") + n;
            const QString keys = base + QStringLiteral("CollationKeys/") + n;
            if (!report.has(library))
                continue;
            out << "| "
                << (QLatin1String(method) == QLatin1String("PresenceName") ? "[presence, name]"
                                                                           : "[chats_count, name]")
                << " | " << grouped(contacts) << " | "
                << report.cell(report.cpuMs(library), 1, library) << " | "
                << report.cell(report.cpuMs(hand), 1, hand) << " | "
                << report.cell(report.cpuMs(proxy), 1, proxy) << " | "
                << report.cell(report.cpuMs(keys), 1, keys) << " (+"
                << report.cell(report.counter(keys, "key_build_ms"), 1) << ") | "
                << ratioCell(divide(report.cpuMs(library), report.cpuMs(hand))) << " | "
                << ratioCell(divide(report.cpuMs(library), report.cpuMs(proxy))) << " | "
                << report.cell(report.counter(library, "allocs_per_call"), 2) << " / "
                << report.cell(report.counter(hand, "allocs_per_call"), 2) << " |\n";
        }
    }

    out << "\n## Sorting a whole list at once\n\n"
           "Every contact and temporary contact of the roster as one list (what a view sorts "
           "together), by [presence, name] and [chats_count, name], every comparator descending: "
           "`VeskRosterSortersManager::sortedOrder`; a hand-written sort as a person would write "
           "it (a rank and a `QCollatorSortKey` of the lowered name per entry, then "
           "`std::stable_sort` of indices; building the keys is timed on both sides); and "
           "`std::stable_sort` with `lessThan` (up to 100,000 contacts). The three orders are "
           "checked equal before timing; the three run back to back in every iteration, in "
           "rotating order. Milliseconds per sort (CPU time).\n\n";
    out << "| Method | Contacts | Entries | Bulk | Hand-written keys | `lessThan` | Bulk / keys | "
           "`lessThan` / bulk |\n";
    out << "|---|---:|---:|---:|---:|---:|---:|---:|\n";
    for (const char *method : { "PresenceName", "ChatsName" }) {
        for (const int contacts : bulkSortSizes) {
            const QString name
                = QStringLiteral("Paired/BulkSort/%1/%2").arg(QLatin1String(method)).arg(contacts);
            if (!report.has(name))
                continue;
            out << "| "
                << (QLatin1String(method) == QLatin1String("PresenceName") ? "[presence, name]"
                                                                           : "[chats_count, name]")
                << " | " << grouped(contacts) << " | "
                << groupedCell(report.counter(name, "entries")) << " | "
                << report.cell(report.counter(name, "bulk_ms"), 1, name) << " | "
                << report.cell(report.counter(name, "keys_ms"), 1, name) << " | "
                << report.cell(report.counter(name, "less_ms"), 1) << " | "
                << ratioCell(report.counter(name, "bulk_per_keys")) << " | "
                << ratioCell(report.counter(name, "less_per_bulk")) << " |\n";
        }
    }

    out << "\n## Start-up and save\n\n"
           "Start-up: `VeskRosterFiltersManager::getInstance()` on a settings directory holding "
           "that many stack files of ten leaves each. Save: `writeFilterSettings()` of one stack "
           "with that many leaves. Growth is judged on CPU time; wall time adds the disk's "
           "flushes of the settings and stack files, a constant per call, and whatever the other "
           "processes on the machine cost.\n\n";
    out << QStringLiteral("| | Count | CPU ms | Wall ms | CPU µs per unit | CPU time growth for "
                          "ten times the count |\n");
    out << "|---|---:|---:|---:|---:|---:|\n";
    for (const char *family : { "StartUp", "Save" }) {
        std::optional<double> previous;
        for (const int units : growthSizes) {
            const QString name = QLatin1String(family) + QLatin1Char('/') + QString::number(units);
            const auto ms = report.cpuMs(name);
            out << "| "
                << (QLatin1String(family) == QLatin1String("StartUp") ? "start-up, stack files"
                                                                      : "save, leaves")
                << " | " << grouped(units) << " | " << report.cell(ms, 2, name) << " | "
                << report.cell(report.realMs(name), 2, name) << " | "
                << report.cell(ms ? std::optional<double>(*ms * 1000.0 / units) : std::nullopt, 1)
                << " | " << ratioCell(divide(ms, previous)) << " |\n";
            previous = ms;
        }
    }
}
