// Reads the JSON output of vesk-bench and writes the results table: ratios of
// the library against the hand-written code and against Qt's proxy model, each
// against its target. Usage: vesk-bench-report BENCH.json RESULTS.md [SECONDS]

#include "reportdata.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStringList>
#include <QTextStream>

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
    writeTargets(out, report);
    writeTables(out, report);

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
