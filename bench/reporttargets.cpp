// The targets of the results table, each with what was measured and whether
// it was met.
#include "reportdata.h"

#include <QTextStream>

#include <algorithm>

void writeTargets(QTextStream &out, const Report &report)
{
    const QString size = QString::number(targetSize);
    out << "## Targets\n\n";
    out << "Filter and sort ratios come from the paired runs (library and rivals back to back "
           "in every iteration); the separate runs below give the same ratios with more noise.\n\n";
    out << "| Target | Measured | Verdict |\n|---|---|---|\n";
    {
        // Every size and selectivity; the worst cell decides.
        Worst fastest, leaf;
        for (const int contacts : filterSizes) {
            for (const char *selectivity : selectivities) {
                const QString name = QStringLiteral("Paired/Filter/%1/%2")
                                         .arg(QLatin1String(selectivity))
                                         .arg(contacts);
                const QString cell = QStringLiteral("%1 contacts, %2")
                                         .arg(grouped(contacts), QLatin1String(selectivity));
                fastest.take(report.counter(name, "library_per_fastest"), cell);
                leaf.take(report.counter(name, "library_per_leaf"), cell);
            }
        }
        out << QString::fromUtf8(
            "| `filter` at most 1.15 × the fastest hand-written predicate, at every "
            "size and selectivity | worst ")
            << (fastest.known ? ratio(fastest.value) + QStringLiteral(" (") + fastest.where
                           + QLatin1Char(')')
                              : QStringLiteral("–"))
            << " | " << (fastest.known ? verdict(fastest.value <= 1.15) : QStringLiteral("–"))
            << " |\n";
        out << QString::fromUtf8(
            "| `filter` at most 1.05 × the leaf-by-leaf predicate, at every size "
            "and selectivity | worst ")
            << (leaf.known
                       ? ratio(leaf.value) + QStringLiteral(" (") + leaf.where + QLatin1Char(')')
                       : QStringLiteral("–"))
            << " | " << (leaf.known ? verdict(leaf.value <= 1.05) : QStringLiteral("–")) << " |\n";
    }
    {
        Worst keys;
        double fewestTimesFaster = 0;
        bool knownFaster = false;
        for (const char *method : { "PresenceName", "ChatsName" }) {
            for (const int contacts : { 100000, 1000000 }) {
                const QString name = QStringLiteral("Paired/BulkSort/%1/%2")
                                         .arg(QLatin1String(method))
                                         .arg(contacts);
                keys.take(report.counter(name, "bulk_per_keys"),
                    QStringLiteral("%1 at %2").arg(QLatin1String(method), grouped(contacts)));
                if (contacts == 100000) {
                    if (const auto faster = report.counter(name, "less_per_bulk")) {
                        fewestTimesFaster
                            = knownFaster ? std::min(fewestTimesFaster, *faster) : *faster;
                        knownFaster = true;
                    }
                }
            }
        }
        out << QString::fromUtf8(
            "| bulk sort at most 1.3 × the hand-written sort over collation keys "
            "(keys built on both sides) at 100,000 and 1,000,000 | worst ")
            << (keys.known
                       ? ratio(keys.value) + QStringLiteral(" (") + keys.where + QLatin1Char(')')
                       : QStringLiteral("–"))
            << " | " << (keys.known ? verdict(keys.value <= 1.3) : QStringLiteral("–")) << " |\n";
        out << QString::fromUtf8("| bulk sort at least 5 × faster than `std::stable_sort` with "
                                 "`lessThan` at 100,000 | ")
            << (knownFaster ? number(fewestTimesFaster, 1)
                           + QStringLiteral(" × faster (the slower method)")
                            : QStringLiteral("–"))
            << " | " << (knownFaster ? verdict(fewestTimesFaster >= 5) : QStringLiteral("–"))
            << " |\n";
    }
    for (const char *method : { "PresenceName", "ChatsName" }) {
        const QString paired = QStringLiteral("Paired/Sort/%1/").arg(QLatin1String(method)) + size;
        const QString label = QLatin1String(method) == QLatin1String("PresenceName")
            ? QStringLiteral("[presence, name]")
            : QStringLiteral("[chats_count, name]");
        const auto hand = report.counter(paired, "library_per_hand");
        const auto proxy = report.counter(paired, "library_per_proxy");
        const QString library = report.cell(report.counter(paired, "library_ms"), 0);
        out << QStringLiteral("| sort %1 with `lessThan` at most 1.15 × the hand-written "
                              "comparator | %2 (%3 ms against %4 ms) | %5 |\n")
                   .arg(label, ratioCell(hand), library,
                       report.cell(report.counter(paired, "hand_ms"), 0),
                       hand ? verdict(*hand <= 1.15) : QStringLiteral("–"));
        out << QStringLiteral("| sort %1 with `lessThan` faster than `QSortFilterProxyModel::sort` "
                              "| %2 of the proxy's time (%3 ms against %4 ms) | %5 |\n")
                   .arg(label, ratioCell(proxy), library,
                       report.cell(report.counter(paired, "proxy_ms"), 0),
                       proxy ? verdict(*proxy < 1.0) : QStringLiteral("–"));
    }
    {
        QStringList measured;
        bool met = true;
        bool known = true;
        for (const char *kind : { "display", "group", "account", "protocol", "presence" }) {
            const QString base = QStringLiteral("Leaf/%1/").arg(QLatin1String(kind));
            const auto library
                = report.counter(base + QStringLiteral("Library/") + size, "allocs_per_call");
            const auto hand
                = report.counter(base + QStringLiteral("HandWritten/") + size, "allocs_per_call");
            if (!library || !hand) {
                known = false;
                measured << QStringLiteral("%1 –").arg(QLatin1String(kind));
                continue;
            }
            met = met && *library <= *hand + 1e-9;
            measured << QStringLiteral("%1 %2 (host %3)")
                            .arg(QLatin1String(kind), number(*library, 2), number(*hand, 2));
        }
        double mostPerCall = 0;
        bool anyPaired = false;
        for (const int contacts : filterSizes) {
            for (const char *selectivity : selectivities) {
                const auto perCall = report.counter(QStringLiteral("Paired/Filter/%1/%2")
                                                        .arg(QLatin1String(selectivity))
                                                        .arg(contacts),
                    "library_allocs_per_call");
                if (perCall) {
                    mostPerCall = std::max(mostPerCall, *perCall);
                    anyPaired = true;
                }
            }
        }
        if (anyPaired) {
            measured << QStringLiteral("whole filters, every size and selectivity: at most %1")
                            .arg(number(mostPerCall, 2));
            met = met && mostPerCall == 0;
        }
        out << "| no heap allocation per `filter` call beyond the host's own (allocations per "
               "call) | "
            << measured.join(QStringLiteral("; ")) << " | "
            << (known ? verdict(met) : QStringLiteral("–")) << " |\n";
    }
    for (const char *family : { "StartUp", "Save" }) {
        const QString name = QLatin1String(family);
        QStringList perUnit;
        std::optional<double> previous;
        double worstGrowth = 0;
        bool known = true;
        for (const int units : growthSizes) {
            const auto ms = report.cpuMs(name + QLatin1Char('/') + QString::number(units));
            if (!ms) {
                known = false;
                continue;
            }
            const double micros = *ms * 1000.0 / units;
            perUnit << number(micros, 1);
            if (previous)
                worstGrowth = std::max(worstGrowth, micros / *previous);
            previous = micros;
        }
        const QString label = name == QLatin1String("StartUp")
            ? QStringLiteral("start-up grows linearly (µs per stack file of 10 leaves at 100 / "
                             "1,000 / 10,000 files)")
            : QStringLiteral("save grows linearly (µs per leaf at 100 / 1,000 / 10,000 leaves)");
        // Linear: ten times the filters cost at most fifteen times the time.
        out << "| " << label << " | " << perUnit.join(QStringLiteral(" / ")) << " | "
            << (known ? verdict(worstGrowth <= 1.5) : QStringLiteral("–")) << " |\n";
    }
}
