#include "veskrosterrunner.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

QStringList A(std::initializer_list<const char *> args)
{
    QStringList list;
    for (const char *arg : args)
        list.append(QString::fromUtf8(arg));
    return list;
}

QJsonObject parse(const QString &json)
{
    return QJsonDocument::fromJson(json.toUtf8()).object();
}

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(content);
}

// "Group: a, b | Other: c | -: d" from `show --json`, one string for one comparison.
QString shownRoster(const QJsonObject &show)
{
    auto names = [](const QJsonValue &entries) {
        QStringList list;
        for (const QJsonValue &entry : entries.toArray())
            list.append(entry[QLatin1String("display")].toString());
        return list.join(QLatin1String(", "));
    };
    QStringList parts;
    for (const QJsonValue &group : show.value(QLatin1String("groups")).toArray()) {
        parts.append(group[QLatin1String("name")].toString() + QLatin1String(": ")
            + names(group[QLatin1String("entries")]));
    }
    if (!show.value(QLatin1String("ungrouped")).toArray().isEmpty())
        parts.append(QLatin1String("-: ") + names(show.value(QLatin1String("ungrouped"))));
    return parts.join(QLatin1String(" | "));
}

// Every file and directory under `dir` with the hash of its bytes.
QString fingerprint(const QString &dir)
{
    if (!QDir(dir).exists())
        return QStringLiteral("(no directory)");
    QStringList lines;
    QDirIterator it(
        dir, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        file.open(QIODevice::ReadOnly);
        lines.append(QDir(dir).relativeFilePath(file.fileName()) + QLatin1Char(' ')
            + QString::fromLatin1(
                QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex()));
    }
    lines.sort();
    return lines.join(QLatin1Char('\n'));
}

void copyDirectory(const QString &from, const QString &to)
{
    QDir().mkpath(to);
    QDirIterator it(
        from, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString target = to + QLatin1Char('/') + QDir(from).relativeFilePath(path);
        if (it.fileInfo().isDir())
            QDir().mkpath(target);
        else
            QFile::copy(path, target);
    }
}

// A definition as export prints it: `nesting` stack levels, each holding
// `conditions` display conditions with `text` and, but the innermost, the
// next level as its last child.
QByteArray definition(const QString &name, int nesting, const QString &text, int conditions)
{
    QJsonObject display { { QStringLiteral("kind"), QStringLiteral("display") },
        { QStringLiteral("fields"),
            QJsonObject { { QStringLiteral("is_or_not"), QStringLiteral("contains") },
                { QStringLiteral("display_filter_regexp"), text } } } };
    QJsonObject level;
    for (int i = nesting; i >= 1; --i) {
        QJsonArray children;
        for (int c = 0; c < conditions; ++c)
            children.append(display);
        if (i < nesting)
            children.append(level);
        level = QJsonObject { { QStringLiteral("kind"), QStringLiteral("stack_filter") },
            { QStringLiteral("type"), QStringLiteral("and") },
            { QStringLiteral("children"), children } };
    }
    level.remove(QStringLiteral("kind"));
    level.insert(QStringLiteral("name"), name);
    return QJsonDocument(level).toJson(QJsonDocument::Compact);
}

// "NAME/1/1/.../1": the innermost stack of a definition() of that nesting.
QString innermost(const QString &name, int nesting)
{
    QString path = name;
    for (int i = 1; i < nesting; ++i)
        path += QLatin1String("/1");
    return path;
}

bool hasControlCharacters(const QString &text)
{
    for (const QChar c : text) {
        const ushort u = c.unicode();
        if ((u < 0x20 && u != '\n') || (u >= 0x7f && u <= 0x9f) || (u >= 0x202a && u <= 0x202e)
            || (u >= 0x2066 && u <= 0x2069) || c.isSurrogate())
            return true;
    }
    return false;
}

namespace {

// Small enough to order by hand. Groups are listed against their positions,
// and the chats counts, presences and name case all disagree with each other.
const char roster[] = R"({
  "protocols": [{"name": "jabber"}, {"name": "icq"}],
  "accounts": [{"uid": "me@example.org", "protocol": "jabber"}, {"uid": "123", "protocol": "icq"}],
  "groups": [{"name": "Work", "pos": 2}, {"name": "Friends", "pos": 1}],
  "contacts": [
    {"display": "Carol", "group": "Work", "account": 0, "chats_count": 9,
     "presence": {"id": "online", "description": "at lunch"}},
    {"display": "Adam", "group": "Work", "account": 1, "chats_count": 7,
     "presence": {"id": "offline", "flag": 5}},
    {"display": "alice", "group": "Work", "account": 0, "chats_count": 5, "presence": {"id": "away"}},
    {"display": "Bob", "group": "Friends", "account": 0, "chats_count": "7", "presence": {"id": "online"}},
    {"display": "Tim", "group": "Friends", "temporary": true, "chats_count": 4, "presence": {"id": "online"}},
    {"display": "Eve", "group": "Friends", "account": 0, "subscription": 2, "chats_count": 1,
     "presence": {"id": "away"}},
    {"display": "Dave", "presence": {"id": "offline", "flag": 5}}
  ]
})";

// Every text of it is hostile; the accounts are listed in an order that no
// sorting gives, and a CJK name stands beside a Latin one.
const char hostileRoster[] = R"({
  "protocols": [{"name": "jabber"}, {"name": "icq"}],
  "accounts": [{"uid": "zed", "protocol": "jabber"}, {"uid": "amy", "protocol": "icq"},
    {"uid": "mid\u202eevil", "protocol": "jabber"}, {"uid": "bob", "protocol": "icq"},
    {"uid": "kim", "protocol": "jabber"}],
  "groups": [{"name": "G\u0007r\rp", "pos": 1}],
  "contacts": [
    {"display": "\u001b]0;pwned\u0007Evil\u001b[2J", "group": "G\u0007r\rp", "account": 2,
     "presence": {"id": "online", "description": "one\ntwo"}},
    {"display": "\u5f20\u4f1f", "group": "G\u0007r\rp", "account": 0, "presence": {"id": "away"}},
    {"display": "Bob", "group": "G\u0007r\rp", "account": 1, "presence": {"id": "away"}}
  ]
})";

} // namespace

// `extra` adds to the environment (an empty value removes the variable);
// `wrapper` runs the program through another command (setpriv, prlimit).
Result VeskRosterRunner::program(const QStringList &args, const QByteArray &input,
    const QProcessEnvironment &extra, const QStringList &wrapper) const
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // Never the real user's configuration, even by accident.
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), temp ? temp->path() : fixture.path());
    const QStringList keys = extra.keys();
    for (const QString &key : keys) {
        if (extra.value(key).isEmpty())
            environment.remove(key);
        else
            environment.insert(key, extra.value(key));
    }
    process.setProcessEnvironment(environment);
    // Rows name the fixture's files relative to it.
    process.setWorkingDirectory(fixture.path());
    if (wrapper.isEmpty())
        process.start(QStringLiteral(VESK_ROSTER_PROGRAM), args);
    else
        process.start(wrapper.first(),
            wrapper.mid(1) + QStringList(QStringLiteral(VESK_ROSTER_PROGRAM)) + args);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(60000);
    Result result;
    result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

void VeskRosterRunner::runAll(const Commands &commands) const
{
    for (const QStringList &command : commands) {
        const Result result = run(command);
        QVERIFY2(result.status == 0, qPrintable(command.join(QLatin1Char(' ')) + result.err));
    }
}

QString VeskRosterRunner::filterList() const
{
    const QJsonObject filters = parse(run(A({ "--json", "filters" })).out);
    QStringList ids;
    for (const QJsonValue &filter : filters.value(QLatin1String("filters")).toArray()) {
        const QString id = filter[QLatin1String("id")].toString();
        ids.append(id == filters[QLatin1String("current")].toString() ? QLatin1Char('*') + id : id);
    }
    return ids.join(QLatin1Char(' '));
}

void VeskRosterRunner::setUpFixture()
{
    QVERIFY(fixture.isValid());
    writeFile(fixture.filePath(QStringLiteral("roster.json")), roster);
    settings = fixture.filePath(QStringLiteral("settings"));
    runAll({
        A({ "new", "work", "and", "group", "is_or_not=is", "group_filter_presence=Work" }),
        A({ "add", "work", "stack_filter", "or", "presence", "is_or_not=is",
            "presence_filter_presence=online", "presence", "is_or_not=is",
            "presence_filter_presence=away" }),
        A({ "new", "single", "or", "display", "is_or_not=contains", "display_filter_regexp=e" }),
        A({ "new", "nested-single", "and", "display", "is_or_not=contains",
            "display_filter_regexp=e" }),
        A({ "add", "nested-single", "stack_filter", "or", "presence", "is_or_not=is",
            "presence_filter_presence=online" }),
        A({ "sorter", "byname", "name" }),
        A({ "use", "work" }),
    });
    writeFile(fixture.filePath(QStringLiteral("single.json")),
        run(A({ "export", "single" })).out.toUtf8());
    writeFile(fixture.filePath(QStringLiteral("hostile.json")), hostileRoster);

    // A definition past the size bound, one just below it, and the deepest
    // nesting there is, and one level more.
    const QString kb120(120000, QLatin1Char('x'));
    writeFile(fixture.filePath(QStringLiteral("huge.json")),
        definition(QStringLiteral("huge"), 1, QString(5000000, QLatin1Char('x'))));
    writeFile(fixture.filePath(QStringLiteral("near.json")),
        definition(QStringLiteral("near"), 1, kb120, 8));
    writeFile(fixture.filePath(QStringLiteral("deepest.json")),
        definition(QStringLiteral("deep"), deepest, QStringLiteral("d")));
    writeFile(fixture.filePath(QStringLiteral("deeper.json")),
        definition(QStringLiteral("deep"), deepest + 1, QStringLiteral("d")));
}

void VeskRosterRunner::newSettings()
{
    temp = std::make_unique<QTemporaryDir>();
    QVERIFY(temp->isValid());
    settings = temp->filePath(QStringLiteral("settings"));
}
