#include "reportdata.h"

#include <QFile>
#include <QLocale>
#include <QRegularExpression>
#include <QStringList>

#include <cmath>

namespace {

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

} // namespace

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
