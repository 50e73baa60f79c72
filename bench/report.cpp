// Reads the JSON output of vesk-bench and writes the results table: ratios of
// the library against the hand-written code and against Qt's proxy model, each
// against its target. Usage: vesk-bench-report BENCH.json RESULTS.md [SECONDS]

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStringList>
#include <QTextStream>

#include <cmath>
#include <optional>

namespace {

struct Run
{
    double cpuNs = 0; // per iteration
    double realNs = 0;
    QJsonObject fields;
    QString error;
};

double toNanoseconds(double value, const QString &unit)
{
    if (unit == QLatin1String("us"))
        return value * 1e3;
    if (unit == QLatin1String("ms"))
        return value * 1e6;
    if (unit == QLatin1String("s"))
        return value * 1e9;
    return value;
}

// The median of repeated runs, or the single run, by run name ("Filter/Library/1000").
QHash<QString, Run> collectRuns(const QJsonArray &benchmarks)
{
    QHash<QString, Run> runs;
    QHash<QString, bool> fromMedian;
    for (const QJsonValue &value : benchmarks) {
        const QJsonObject object = value.toObject();
        // "Sort/ChatsName/Library/1000/repeats:3" and "StartUp/100/iterations:20/manual_time"
        // both name their run without the options.
        static const QRegularExpression options(
            QStringLiteral("/(repeats|iterations|min_time):[^/]*|/manual_time"));
        const QString name = object.value(QLatin1String("run_name")).toString().remove(options);
        const bool isMedian
            = object.value(QLatin1String("aggregate_name")).toString() == QLatin1String("median");
        const bool isAggregate
            = object.value(QLatin1String("run_type")).toString() == QLatin1String("aggregate");
        if (isAggregate && !isMedian)
            continue;
        if (fromMedian.value(name) && !isMedian)
            continue;
        Run run;
        const QString unit = object.value(QLatin1String("time_unit")).toString();
        run.cpuNs = toNanoseconds(object.value(QLatin1String("cpu_time")).toDouble(), unit);
        run.realNs = toNanoseconds(object.value(QLatin1String("real_time")).toDouble(), unit);
        run.fields = object;
        if (object.value(QLatin1String("error_occurred")).toBool())
            run.error = object.value(QLatin1String("error_message")).toString();
        // An error is kept over any later run of the same name.
        if (runs.contains(name) && !runs.value(name).error.isEmpty())
            continue;
        runs.insert(name, run);
        fromMedian.insert(name, isMedian);
    }
    return runs;
}

QString number(double value, int decimals)
{
    return QLocale::c().toString(value, 'f', decimals);
}

QString grouped(qint64 value)
{
    QString text = QString::number(value);
    for (int i = text.size() - 3; i > 0; i -= 3)
        text.insert(i, QLatin1Char(','));
    return text;
}

QString groupedCell(const std::optional<double> &value)
{
    return value ? grouped(qint64(std::llround(*value))) : QStringLiteral("–");
}

QString ratio(double value)
{
    return number(value, 2) + QStringLiteral("×");
}

class Report
{
public:
    explicit Report(const QHash<QString, Run> &runs)
        : runs(runs)
    { }

    std::optional<Run> run(const QString &name) const
    {
        const auto it = runs.constFind(name);
        if (it == runs.constEnd() || !it->error.isEmpty())
            return std::nullopt;
        return *it;
    }
    QString errorOf(const QString &name) const { return runs.value(name).error; }
    bool has(const QString &name) const { return runs.contains(name); }

    // CPU time per iteration divided by the entries the iteration handled.
    std::optional<double> nsPerEntry(const QString &name) const
    {
        const std::optional<Run> r = run(name);
        if (!r)
            return std::nullopt;
        const double entries = r->fields.value(QLatin1String("entries")).toDouble();
        return entries > 0 ? std::optional<double>(r->cpuNs / entries) : std::nullopt;
    }
    std::optional<double> counter(const QString &name, const char *key) const
    {
        const std::optional<Run> r = run(name);
        if (!r || !r->fields.contains(QLatin1String(key)))
            return std::nullopt;
        return r->fields.value(QLatin1String(key)).toDouble();
    }
    std::optional<double> cpuMs(const QString &name) const
    {
        const std::optional<Run> r = run(name);
        return r ? std::optional<double>(r->cpuNs / 1e6) : std::nullopt;
    }
    std::optional<double> realMs(const QString &name) const
    {
        const std::optional<Run> r = run(name);
        return r ? std::optional<double>(r->realNs / 1e6) : std::nullopt;
    }

    QString cell(
        const std::optional<double> &value, int decimals, const QString &name = QString()) const
    {
        if (value)
            return number(*value, decimals);
        const QString error = errorOf(name);
        return error.isEmpty() ? QStringLiteral("–") : QStringLiteral("error: ") + error;
    }

private:
    QHash<QString, Run> runs;
};

std::optional<double> divide(const std::optional<double> &a, const std::optional<double> &b)
{
    if (!a || !b || *b == 0)
        return std::nullopt;
    return *a / *b;
}

QString ratioCell(const std::optional<double> &value)
{
    return value ? ratio(*value) : QStringLiteral("–");
}

QString verdict(bool met)
{
    return met ? QStringLiteral("**met**") : QStringLiteral("**missed**");
}

QString cpuModel()
{
    QFile file(QStringLiteral("/proc/cpuinfo"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        if (line.startsWith(QLatin1String("model name")))
            return line.section(QLatin1Char(':'), 1).trimmed();
    }
    return QString();
}

const QList<int> rosterSizes = { 1000, 10000, 100000, 1000000 };
const QList<int> filterSizes = { 1000, 3000, 10000, 30000, 100000, 1000000 };
const QList<int> bulkSortSizes = { 10000, 100000, 1000000 };
const char *const selectivities[] = { "3%", "15%", "50%" };

// The worst of a ratio over the cells that have it, and where it is.
struct Worst
{
    double value = 0;
    QString where;
    bool known = false;
    void take(const std::optional<double> &candidate, const QString &cell)
    {
        if (!candidate)
            return;
        if (!known || *candidate > value) {
            value = *candidate;
            where = cell;
        }
        known = true;
    }
};
const int targetSize = 100000;
const QList<int> growthSizes = { 100, 1000, 10000 };

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3) {
        QTextStream(stderr) << "usage: vesk-bench-report BENCH.json RESULTS.md [SECONDS]\n";
        return 2;
    }
    QFile input(args.at(1));
    if (!input.open(QIODevice::ReadOnly)) {
        QTextStream(stderr) << "vesk-bench-report: cannot read " << args.at(1) << '\n';
        return 1;
    }
    // The coefficient of variation of an all-zero counter comes out as NaN,
    // which JSON has no word for.
    QString json = QString::fromUtf8(input.readAll());
    json.replace(QRegularExpression(QStringLiteral(":\\s*-?(NaN|nan|inf|Infinity)\\b")),
        QStringLiteral(": null"));
    QJsonParseError parseError;
    const QJsonObject document = QJsonDocument::fromJson(json.toUtf8(), &parseError).object();
    if (parseError.error != QJsonParseError::NoError) {
        QTextStream(stderr) << "vesk-bench-report: " << args.at(1) << ": "
                            << parseError.errorString() << " at offset " << parseError.offset
                            << '\n';
        return 1;
    }
    const QJsonObject context = document.value(QLatin1String("context")).toObject();
    const Report report(collectRuns(document.value(QLatin1String("benchmarks")).toArray()));

    QString text;
    QTextStream out(&text);
    out << "# Benchmark results\n\n";
    out << "Written by `./run bench` (bench/run-bench.sh); every figure below comes from one "
           "run.\n\n";
    QStringList loads;
    const QJsonArray loadAverage = context.value(QLatin1String("load_avg")).toArray();
    for (const QJsonValue &value : loadAverage)
        loads << number(value.toDouble(), 2);
    QStringList caches;
    const QJsonArray cacheList = context.value(QLatin1String("caches")).toArray();
    for (const QJsonValue &value : cacheList) {
        const QJsonObject cache = value.toObject();
        caches << QStringLiteral("L%1 %2 %3 KiB")
                      .arg(cache.value(QLatin1String("level")).toInt())
                      .arg(cache.value(QLatin1String("type")).toString())
                      .arg(cache.value(QLatin1String("size")).toInt() / 1024);
    }
    out << "| | |\n|---|---|\n";
    out << "| Date | " << context.value(QLatin1String("date")).toString() << " |\n";
    out << "| Machine | " << cpuModel() << ", " << context.value(QLatin1String("num_cpus")).toInt()
        << " CPUs at " << context.value(QLatin1String("mhz_per_cpu")).toInt() << " MHz; "
        << caches.join(QStringLiteral(", ")) << " |\n";
    out << "| Load average at start | " << loads.join(QStringLiteral(" ")) << " |\n";
    out << "| Qt | " << context.value(QLatin1String("qt_version")).toString() << " |\n";
    out << "| Collation locale | " << context.value(QLatin1String("collation_locale")).toString()
        << " |\n";
    out << "| Build | " << context.value(QLatin1String("build")).toString()
        << "; Google Benchmark library built as "
        << context.value(QLatin1String("library_build_type")).toString() << " |\n";
    if (args.size() > 3)
        out << "| Duration | " << args.at(3) << " s for the benchmarks, without the build |\n";
    out << "\nRosters come from `VeskRosterFile::generate(contacts, 20261123)`. Times are the "
           "CPU time of the benchmark thread, which other processes on a shared machine disturb "
           "less than wall time: the median of three repetitions, a single run at 1,000,000 "
           "contacts. Before timing, the library's and the hand-written answers are compared on "
           "every entry (filters) and on four pairs per entry (comparators); a disagreement "
           "shows as an error instead of a figure. Allocations count every malloc, calloc and "
           "realloc of the thread, Qt's included.\n\n";

    // Targets.
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

    // bench/run-load.sh keeps its section of the results between markers;
    // it measures other builds, so it survives this rewrite as it stands.
    {
        QFile previous(args.at(2));
        const QString kept = previous.open(QIODevice::ReadOnly)
            ? QString::fromUtf8(previous.readAll())
            : QString();
        const int from = kept.indexOf(QLatin1String("<!-- roster-load -->"));
        const QLatin1String endMarker("<!-- /roster-load -->");
        const int to = kept.indexOf(endMarker);
        if (from >= 0 && to > from)
            out << '\n' << kept.mid(from, to - from + endMarker.size()) << '\n';
    }

    // What a run cannot measure by itself (figures before a change, whole
    // program runs) is kept by hand in NOTES.md beside the results.
    QFile notes(QFileInfo(args.at(2)).dir().filePath(QStringLiteral("NOTES.md")));
    if (notes.open(QIODevice::ReadOnly)) {
        out.flush();
        text += QLatin1Char('\n') + QString::fromUtf8(notes.readAll());
    }

    QSaveFile output(args.at(2));
    if (!output.open(QIODevice::WriteOnly)) {
        QTextStream(stderr) << "vesk-bench-report: cannot write " << args.at(2) << '\n';
        return 1;
    }
    out.flush();
    output.write(text.toUtf8());
    if (!output.commit()) {
        QTextStream(stderr) << "vesk-bench-report: cannot write " << args.at(2) << '\n';
        return 1;
    }
    QFile console;
    console.open(stdout, QIODevice::WriteOnly);
    console.write(text.toUtf8());
    return 0;
}
