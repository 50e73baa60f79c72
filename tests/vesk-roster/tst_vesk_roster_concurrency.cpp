// vesk-roster runs that overlap or die: several processes on one settings
// directory lose none of each other's changes, and a run killed at any moment
// leaves every filter as it was or as it was meant to become.

#include <librarysession.h>
#include <vesksettingslock.h>

#include <veskfield.h>
#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>
#include <veskrostersortersmanager.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <csignal>
#include <sys/types.h>

namespace {

struct Run
{
    QStringList args;
    int status = -1;
    QString out;
    QString err;
};

Run runProgram(const QString &settings, const QStringList &args, const QByteArray &input = {})
{
    QProcess process;
    process.start(QStringLiteral(VESK_ROSTER_PROGRAM),
        QStringList { QStringLiteral("--settings"), settings } + args);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(120000);
    Run run;
    run.args = args;
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

QStringList words(const QString &text)
{
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QJsonObject parse(const QString &json)
{
    return QJsonDocument::fromJson(json.toUtf8()).object();
}

// What a worker's reported changes add up to: its filters in display order
// with their number of conditions, and its sorting methods.
struct Model
{
    QList<QPair<QString, int>> filters;
    QMap<QString, QString> methods; // name -> "id id:desc"

    int indexOf(const QString &name) const
    {
        for (int i = 0; i < filters.size(); ++i) {
            if (filters.at(i).first == name)
                return i;
        }
        return -1;
    }

    void apply(const QStringList &args)
    {
        const QString &command = args.at(0);
        if (command == QLatin1String("new"))
            filters.append({ args.at(1), 1 });
        else if (command == QLatin1String("add"))
            ++filters[indexOf(args.at(1))].second;
        else if (command == QLatin1String("rename"))
            filters[indexOf(args.at(1))].first = args.at(2);
        else if (command == QLatin1String("remove"))
            filters.removeAt(indexOf(args.at(1)));
        else if (command == QLatin1String("sorter"))
            methods.insert(args.at(1), args.mid(2).join(QLatin1Char(' ')));
    }
};

// Worker w's 25 commands: five rounds of new, add, sorter, and a rename,
// remove or use; some of them name a filter an earlier command renamed or
// removed, and are refused.
QList<QStringList> workerCommands(int w)
{
    QList<QStringList> commands;
    auto f = [w](const char *kind, int j) {
        return QStringLiteral("w%1%2%3").arg(w).arg(QLatin1String(kind)).arg(j);
    };
    for (int j = 0; j < 5; ++j) {
        commands.append({ QStringLiteral("new"), f("f", j), QStringLiteral("and"),
            QStringLiteral("display"), QStringLiteral("is_or_not=contains"),
            QStringLiteral("display_filter_regexp=") + f("f", j) });
        commands.append({ QStringLiteral("add"), f("f", j), QStringLiteral("display"),
            QStringLiteral("is_or_not=contains"), QStringLiteral("display_filter_regexp=more") });
        commands.append(j % 2
                ? QStringList { QStringLiteral("sorter"), f("m", j),
                    QStringLiteral("chats_count:desc"), QStringLiteral("name") }
                : QStringList { QStringLiteral("sorter"), f("m", j), QStringLiteral("presence") });
        if (j % 2)
            commands.append({ QStringLiteral("rename"), f("f", j - 1), f("r", j - 1) });
        else
            commands.append({ QStringLiteral("use"), f("f", j) });
        if (j == 2 || j == 4)
            commands.append({ QStringLiteral("remove"), f("r", j - 1) });
        else
            commands.append({ QStringLiteral("add"), f("r", j - 1), QStringLiteral("display") });
    }
    return commands;
}

// The first word a writing command prints once its change is stored.
bool reportsDone(const Run &run)
{
    static const QStringList reports = { QStringLiteral("created"), QStringLiteral("using"),
        QStringLiteral("renamed"), QStringLiteral("removed"), QStringLiteral("stored") };
    const QString first = words(run.out).value(0);
    return run.status == 0
        && (reports.contains(first) || first.endsWith(QLatin1String(":"))
            || run.out.contains(QLatin1String(" is now: ")));
}

} // namespace

class tst_VeskRosterConcurrency : public QObject
{
    Q_OBJECT

private slots:
    void parallelRunsLoseNothing();
    void killedRunsLeaveEveryFilterOldOrNew();
};

void tst_VeskRosterConcurrency::parallelRunsLoseNothing()
{
    QTemporaryDir temp;
    QVERIFY(temp.isValid());
    const QString settings = temp.filePath(QStringLiteral("settings"));
    const int workers = 4;
    QVector<QVector<Run>> logs(workers);
    QVector<Run> readerLog;
    QAtomicInt running(workers);

    QList<QThread *> threads;
    for (int w = 0; w < workers; ++w) {
        threads.append(QThread::create([&, w] {
            for (const QStringList &command : workerCommands(w))
                logs[w].append(runProgram(settings, command));
            running.fetchAndAddOrdered(-1);
        }));
    }
    // Refusals (after start-up, before it, and past a bound) and reads, in a
    // loop beside the writers.
    threads.append(QThread::create([&] {
        const QList<QStringList> loop = { { QStringLiteral("use"), QStringLiteral("nope") },
            { QStringLiteral("new"), QStringLiteral("x"), QStringLiteral("and"),
                QStringLiteral("colour") },
            { QStringLiteral("--json"), QStringLiteral("filters") },
            { QStringLiteral("import"), QStringLiteral("-"), QStringLiteral("--as"),
                QStringLiteral("big") },
            { QStringLiteral("--json"), QStringLiteral("show") } };
        const QByteArray big = QByteArray(R"({"type": "and", "children": [{"kind": "display",
            "fields": {"display_filter_regexp": ")")
            + QByteArray(1100000, 'x') + "\"}}]}";
        for (int i = 0; running.loadAcquire() > 0; ++i) {
            const QStringList &command = loop.at(i % loop.size());
            readerLog.append(runProgram(
                settings, command, command.at(0) == QLatin1String("import") ? big : QByteArray()));
        }
    }));
    for (QThread *thread : qAsConst(threads))
        thread->start();
    for (QThread *thread : qAsConst(threads)) {
        QVERIFY(thread->wait(600000));
        delete thread;
    }

    // Every run either reported its change, or was refused and said why.
    int reported = 0;
    QVector<Model> models(workers);
    for (int w = 0; w < workers; ++w) {
        for (const Run &run : qAsConst(logs.at(w))) {
            const QString line = run.args.join(QLatin1Char(' ')) + QLatin1String(": ") + run.err;
            QVERIFY2(run.status == 0 || run.status == 2, qPrintable(line));
            QVERIFY2((run.status == 0) == reportsDone(run), qPrintable(line + run.out));
            QVERIFY2(
                run.status == 0 || (run.out.isEmpty() && !run.err.isEmpty()), qPrintable(line));
            if (run.status == 0) {
                ++reported;
                models[w].apply(run.args);
            }
        }
    }
    int refusals = 0;
    int reads = 0;
    for (const Run &run : qAsConst(readerLog)) {
        const bool read = run.args.contains(QStringLiteral("--json"));
        QVERIFY2(
            run.status == (read ? 0 : 2), qPrintable(run.args.join(QLatin1Char(' ')) + run.err));
        if (read)
            QVERIFY2(!parse(run.out).isEmpty(), qPrintable(run.out));
        (read ? reads : refusals) += 1;
    }

    // A fresh start lists exactly what was reported, in each worker's order.
    const Run filters
        = runProgram(settings, { QStringLiteral("--json"), QStringLiteral("filters") });
    const Run sorters
        = runProgram(settings, { QStringLiteral("--json"), QStringLiteral("sorters") });
    QVERIFY2(filters.status == 0 && sorters.status == 0 && filters.err.isEmpty(),
        qPrintable(filters.err + sorters.err));
    QVector<QStringList> listed(workers);
    QSet<QString> listedMethods;
    for (const QJsonValue &filter : parse(filters.out)[QLatin1String("filters")].toArray()) {
        const QString id = filter[QLatin1String("id")].toString();
        if (id == QLatin1String("default"))
            continue;
        const int w = id.mid(1, 1).toInt();
        QVERIFY2(id.startsWith(QLatin1Char('w')) && w < workers, qPrintable(id));
        const int conditions
            = filter[QLatin1String("display")].toString().count(QLatin1String("(display"));
        listed[w].append(QStringLiteral("%1:%2").arg(id).arg(conditions));
    }
    for (const QJsonValue &method : parse(sorters.out)[QLatin1String("methods")].toArray()) {
        const QString name = method[QLatin1String("name")].toString();
        QStringList ids;
        for (const QJsonValue &comparator : method[QLatin1String("comparators")].toArray()) {
            ids.append(comparator[QLatin1String("id")].toString()
                + (comparator[QLatin1String("ascending")].toBool() ? QString()
                                                                   : QStringLiteral(":desc")));
        }
        const int w = name.mid(1, 1).toInt();
        QVERIFY2(models[w].methods.value(name) == ids.join(QLatin1Char(' ')), qPrintable(name));
        listedMethods.insert(name);
    }
    for (int w = 0; w < workers; ++w) {
        QStringList expected;
        for (const auto &filter : qAsConst(models.at(w).filters))
            expected.append(QStringLiteral("%1:%2").arg(filter.first).arg(filter.second));
        QCOMPARE(listed.at(w), expected);
        const QStringList methods = models.at(w).methods.keys();
        for (const QString &method : methods)
            QVERIFY2(listedMethods.contains(method), qPrintable(method));
    }

    // Each reported change, looked up in the fresh listing on its own: a
    // filter's name followed through the worker's later reported renames.
    int found = 0;
    int uses = 0;
    for (int w = 0; w < workers; ++w) {
        QVector<Run> done;
        for (const Run &run : qAsConst(logs.at(w))) {
            if (run.status == 0)
                done.append(run);
        }
        auto fate = [&](QString name, int after) {
            for (int i = after + 1; i < done.size(); ++i) {
                const QStringList &args = done.at(i).args;
                if (args.value(1) != name)
                    continue;
                if (args.at(0) == QLatin1String("rename"))
                    name = args.at(2);
                else if (args.at(0) == QLatin1String("remove"))
                    return QString();
            }
            return name;
        };
        auto isListed = [&](const QString &name) {
            for (const QString &entry : listed.at(w)) {
                if (entry.startsWith(name + QLatin1Char(':')))
                    return true;
            }
            return false;
        };
        for (int i = 0; i < done.size(); ++i) {
            const QStringList &args = done.at(i).args;
            const QString &command = args.at(0);
            if (command == QLatin1String("use")) {
                ++uses; // only the last one anywhere stays current
                continue;
            }
            if (command == QLatin1String("sorter")) {
                found += listedMethods.contains(args.at(1)) ? 1 : 0;
            } else if (command == QLatin1String("remove")) {
                found += isListed(args.at(1)) ? 0 : 1;
            } else {
                const QString name = command == QLatin1String("rename") ? args.at(2) : args.at(1);
                const QString now = fate(name, i);
                const bool gone = command == QLatin1String("rename") && isListed(args.at(1));
                found += !gone && (now.isEmpty() ? !isListed(name) : isListed(now)) ? 1 : 0;
            }
        }
    }
    reported -= uses;
    qInfo("stress: %d writing runs: %d changes reported (and %d uses), %d found; %d refusals and "
          "%d reads beside",
        workers * 25, reported, uses, found, refusals, reads);
    QCOMPARE(found, reported);
    QVERIFY2(reported >= 60, "too few changes got through to test anything");
}

namespace {

// The settings as a fresh start reads them, read in this process under the
// lock: "name:conditions" per filter in display order, then the method's
// comparators.
QString stateOf(const QString &settings, QString *error)
{
    VeskLibrarySession session;
    if (!session.open(settings, VeskLibrarySession::ReadOnly, error, 0))
        return QString();
    QStringList state;
    for (const QString &id : session.filters()->getFilterNames()) {
        if (id == QLatin1String("default"))
            continue;
        VeskRosterFiltersStack *stack = session.stack(id);
        QStringList texts;
        for (VeskRosterFilter *child : stack->getFilters()) {
            for (const VeskField &field : child->getConfiguration()) {
                if (field.getId() == QLatin1String("display_filter_regexp"))
                    texts.append(field.getText());
            }
        }
        state.append(id + QLatin1Char(':') + texts.join(QLatin1Char(',')));
    }
    state.append(QStringLiteral("m:")
        + session.sorters()->getSorters(QStringLiteral("m")).join(QLatin1Char(',')));
    for (const VeskLibrarySession::Unreadable &file : session.unreadableFilters())
        state.append(QStringLiteral("unreadable:") + file.path);
    return state.join(QLatin1Char(' '));
}

} // namespace

void tst_VeskRosterConcurrency::killedRunsLeaveEveryFilterOldOrNew()
{
    QTemporaryDir temp;
    QVERIFY(temp.isValid());
    const QString settings = temp.filePath(QStringLiteral("settings"));
    const QString one = temp.filePath(QStringLiteral("one.json"));
    const QString two = temp.filePath(QStringLiteral("two.json"));
    auto writeDefinition = [](const QString &path, const char *text) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(
            QByteArray(
                R"({"type": "or", "children": [{"kind": "display", "fields": {"display_filter_regexp": ")")
            + text + "\"}}]}");
    };
    writeDefinition(one, "one");
    writeDefinition(two, "two");
    for (const QStringList &command : QList<QStringList> {
             { QStringLiteral("new"), QStringLiteral("grow"), QStringLiteral("and"),
                 QStringLiteral("display"), QStringLiteral("display_filter_regexp=g") },
             { QStringLiteral("import"), one, QStringLiteral("--as"), QStringLiteral("swap") },
             { QStringLiteral("new"), QStringLiteral("c"), QStringLiteral("and"),
                 QStringLiteral("display"), QStringLiteral("display_filter_regexp=c") },
             { QStringLiteral("sorter"), QStringLiteral("m"), QStringLiteral("name") } }) {
        const Run run = runProgram(settings, command);
        QVERIFY2(run.status == 0, qPrintable(run.err));
    }

    // Each command turns one filter (or the method) into its next self; the
    // kill may come before, during or after the change.
    auto command = [&](int i) -> QStringList {
        switch (i % 5) {
        case 0:
            return { QStringLiteral("add"), QStringLiteral("grow"), QStringLiteral("display"),
                QStringLiteral("display_filter_regexp=g") };
        case 1:
            return { QStringLiteral("import"), (i / 5) % 2 ? one : two, QStringLiteral("--as"),
                QStringLiteral("swap"), QStringLiteral("--replace") };
        case 2:
            return (i / 5) % 2
                ? QStringList { QStringLiteral("rename"), QStringLiteral("d"), QStringLiteral("c") }
                : QStringList { QStringLiteral("rename"), QStringLiteral("c"),
                      QStringLiteral("d") };
        case 3:
            return { QStringLiteral("sorter"), QStringLiteral("m"),
                (i / 5) % 2 ? QStringLiteral("name") : QStringLiteral("chats_count") };
        default:
            return (i / 5) % 2
                ? QStringList { QStringLiteral("remove"), QStringLiteral("e") }
                : QStringList { QStringLiteral("new"), QStringLiteral("e"), QStringLiteral("or"),
                      QStringLiteral("display"), QStringLiteral("display_filter_regexp=e") };
        }
    };
    // Is `after` the state `before` or the one the command leads to?
    auto oldOrNew = [](const QStringList &args, const QString &before, const QString &after) {
        if (after == before)
            return true;
        QString next = before;
        const QString &verb = args.at(0);
        if (verb == QLatin1String("add")) {
            next.replace(
                QRegularExpression(QStringLiteral("(grow:[g,]*)")), QStringLiteral("\\1,g"));
        } else if (verb == QLatin1String("import")) {
            const QString text = args.at(1).endsWith(QLatin1String("one.json"))
                ? QStringLiteral("one")
                : QStringLiteral("two");
            next.replace(
                QRegularExpression(QStringLiteral("swap:\\w+")), QStringLiteral("swap:") + text);
        } else if (verb == QLatin1String("rename")) {
            next.replace(args.at(1) + QLatin1String(":c"), args.at(2) + QLatin1String(":c"));
        } else if (verb == QLatin1String("sorter")) {
            next.replace(
                QRegularExpression(QStringLiteral("m:\\w*")), QStringLiteral("m:") + args.at(2));
        } else if (verb == QLatin1String("remove")) {
            next.remove(QStringLiteral(" e:e"));
        } else {
            next.replace(QStringLiteral(" m:"), QStringLiteral(" e:e m:"));
        }
        return after == next;
    };

    const int runs = qEnvironmentVariableIsSet("VESK_KILL_RUNS")
        ? qEnvironmentVariableIntValue("VESK_KILL_RUNS")
        : 200;
    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    // How long a whole run takes here; kills fall anywhere in it.
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(runProgram(settings,
                 { QStringLiteral("sorter"), QStringLiteral("m"), QStringLiteral("name") })
                 .status,
        0);
    const int span = int(timer.elapsed()) + 20;

    QString error;
    QString state = stateOf(settings, &error);
    QVERIFY2(!state.isEmpty(), qPrintable(error));
    int changed = 0;
    for (int i = 0; i < runs; ++i) {
        const QStringList args = command(i);
        QProcess process;
        process.start(QStringLiteral(VESK_ROSTER_PROGRAM),
            QStringList { QStringLiteral("--settings"), settings } + args);
        QVERIFY(process.waitForStarted());
        QThread::msleep(random.bounded(span));
        ::kill(pid_t(process.processId()), SIGKILL);
        QVERIFY(process.waitForFinished());
        // The lock is free at once, and the next start reads every filter.
        VeskSettingsLock lock;
        QVERIFY2(lock.lock(settings, VeskSettingsLock::Exclusive, 0, &error), qPrintable(error));
        lock.unlock();
        const QString after = stateOf(settings, &error);
        QVERIFY2(oldOrNew(args, state, after),
            qPrintable(QStringLiteral("seed %1, run %2 (%3):\n%4\n%5")
                           .arg(seed)
                           .arg(i)
                           .arg(args.join(QLatin1Char(' ')), state, after)));
        changed += after != state;
        state = after;
    }
    qInfo("kill: %d runs killed (seed %u), %d had stored their change, every filter old or new",
        runs, seed, changed);
}

QTEST_GUILESS_MAIN(tst_VeskRosterConcurrency)
#include "tst_vesk_roster_concurrency.moc"
