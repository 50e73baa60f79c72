#pragma once

// The benchmark runs as vesk-bench-report reads them, and the cells of the
// results table made from them.

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

class QTextStream;

struct Run
{
    double cpuNs = 0; // per iteration
    double realNs = 0;
    QJsonObject fields;
    QString error;
};

// The median of repeated runs, or the single run, by run name ("Filter/Library/1000").
QHash<QString, Run> collectRuns(const QJsonArray &benchmarks);

QString number(double value, int decimals);
QString grouped(qint64 value);
QString groupedCell(const std::optional<double> &value);
QString ratio(double value);
std::optional<double> divide(const std::optional<double> &a, const std::optional<double> &b);
QString ratioCell(const std::optional<double> &value);
QString verdict(bool met);
QString cpuModel();

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

inline const QList<int> rosterSizes = { 1000, 10000, 100000, 1000000 };
inline const QList<int> filterSizes = { 1000, 3000, 10000, 30000, 100000, 1000000 };
inline const QList<int> bulkSortSizes = { 10000, 100000, 1000000 };
inline const char *const selectivities[] = { "3%", "15%", "50%" };

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
inline const int targetSize = 100000;
inline const QList<int> growthSizes = { 100, 1000, 10000 };

// The sections of the results: the targets with their verdicts, then the
// tables every figure comes from.
void writeTargets(QTextStream &out, const Report &report);
void writeTables(QTextStream &out, const Report &report);
