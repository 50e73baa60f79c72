#pragma once

// What the vesk-roster end-to-end tests share: the program run as a separate
// process on a temporary settings directory, as a user would run it, and a
// fixture of rosters, definitions and settings built once per test program.

#include <QJsonObject>
#include <QList>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using Commands = QList<QStringList>;
Q_DECLARE_METATYPE(Commands)

QStringList A(std::initializer_list<const char *> args);
QJsonObject parse(const QString &json);
void writeFile(const QString &path, const QByteArray &content);

struct Result
{
    int status = -1;
    QString out;
    QString err;
};

// "Group: a, b | Other: c | -: d" from `show --json`, one string for one comparison.
QString shownRoster(const QJsonObject &show);

// Every file and directory under `dir` with the hash of its bytes.
QString fingerprint(const QString &dir);
void copyDirectory(const QString &from, const QString &to);

// A definition as export prints it: `nesting` stack levels, each holding
// `conditions` display conditions with `text` and, but the innermost, the
// next level as its last child.
QByteArray definition(const QString &name, int nesting, const QString &text, int conditions = 1);

// "NAME/1/1/.../1": the innermost stack of a definition() of that nesting.
QString innermost(const QString &name, int nesting);
bool hasControlCharacters(const QString &text);

#define RUN_OK(result, ...)                                                                        \
    const Result result = run(__VA_ARGS__);                                                        \
    QVERIFY2(result.status == 0, qPrintable(result.err))

// The program and its fixture, for a test class to inherit beside QObject:
// setUpFixture() from initTestCase(), newSettings() from init().
class VeskRosterRunner
{
public:
    void setUpFixture();
    void newSettings();

    Result program(const QStringList &args, const QByteArray &input = QByteArray(),
        const QProcessEnvironment &extra = QProcessEnvironment(),
        const QStringList &wrapper = QStringList()) const;
    Result run(const QStringList &args, const QByteArray &input = QByteArray()) const
    {
        return program(QStringList { QStringLiteral("--settings"), settings }
                + A({ "--roster", "roster.json" }) + args,
            input);
    }
    void runAll(const Commands &commands) const;
    QString shown() const { return shownRoster(parse(run(A({ "--json", "show" })).out)); }
    // "default *work single": the filters in display order, the current one marked.
    QString filterList() const;
    void useFixture() const
    {
        copyDirectory(fixture.filePath(QStringLiteral("settings")), settings);
    }

    // The deepest nesting of stacks a stored filter can have: the library
    // reads no deeper file.
    static const int deepest = 253;

    QTemporaryDir fixture; // the roster, and settings with filters and a method, built once
    std::unique_ptr<QTemporaryDir> temp;
    QString settings;
};
