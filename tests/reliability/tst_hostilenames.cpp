// Hostile identifiers: whatever name the user gives a filter, its file lies
// inside the stack-file directory, distinct names get distinct files, and the
// filter comes back under the same identifier after a restart. Symbolic
// links planted in the directory never lead a write or a removal outside it.

#include "reliabilitysupport.h"

#include <veskfiltertestenv.h>
#include <veskfiltertree.h>

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QtTest>

using namespace VeskReliability;

namespace {

QString fromUtf16(const char16_t *text, int size)
{
    return QString(reinterpret_cast<const QChar *>(text), size);
}

struct NamedCase
{
    const char *row;
    QString name;
};

QList<NamedCase> hostileNames()
{
    return {
        { "a dot", QStringLiteral(".") },
        { "two dots", QStringLiteral("..") },
        { "three dots", QStringLiteral("...") },
        { "a leading dot", QStringLiteral(".hidden") },
        { "two leading dots", QStringLiteral("..x") },
        { "parent directory", QStringLiteral("../victim") },
        { "grandparent directory", QStringLiteral("../../victim") },
        { "a slash", QStringLiteral("a/b") },
        { "only a slash", QStringLiteral("/") },
        { "a trailing slash", QStringLiteral("friends/") },
        { "an absolute path", QStringLiteral("/etc/passwd") },
        { "a backslash", QStringLiteral("a\\b") },
        { "a backslash path", QStringLiteral("..\\..\\victim") },
        { "a tab and a newline", QStringLiteral("a\tb\nc") },
        { "a carriage return", QStringLiteral("a\rb") },
        { "control characters", fromUtf16(u"\u0001\u001f\u007f", 3) },
        { "a NUL", fromUtf16(u"a\u0000b", 3) },
        { "only a NUL", fromUtf16(u"\u0000", 1) },
        { "1000 letters", QString(1000, QLatin1Char('a')) },
        { "1000 accented letters", QString(1000, QChar(0xE9)) },
        { "1000 slashes", QString(1000, QLatin1Char('/')) },
        { "1000 dots", QString(1000, QLatin1Char('.')) },
        { "capitalised", QStringLiteral("Friends") },
        { "lower case", QStringLiteral("friends") },
        { "upper case", QStringLiteral("FRIENDS") },
        { "non-ASCII", QStringLiteral("Zoë Ærøskøbing") },
        { "CJK", QStringLiteral("東京の友達") },
        { "an emoji", QStringLiteral("🙂 pals") },
        { "a lone surrogate", fromUtf16(u"a\xD800", 2) },
        { "a byte-order mark", fromUtf16(u"\uFEFFbom", 4) },
        { "CON", QStringLiteral("CON") },
        { "nul", QStringLiteral("nul") },
        { "COM1", QStringLiteral("COM1") },
        { "LPT1.txt", QStringLiteral("LPT1.txt") },
        { "aux", QStringLiteral("aux") },
        { "Windows forbidden characters", QStringLiteral("a<b>c:d\"e|f?g*h") },
        { "a trailing dot", QStringLiteral("friends.") },
        { "a trailing blank", QStringLiteral("friends ") },
        { "a leading blank", QStringLiteral(" friends") },
        { "a percent sign", QStringLiteral("100%") },
        { "a percent escape", QStringLiteral("a%2Fb") },
        { "an escaped dot", QStringLiteral("%2E") },
        { "a tilde", QStringLiteral("~") },
        { "like a temporary file", QStringLiteral("friends.abc123") },
        { "like a hidden temporary file", QStringLiteral(".friends.tmp") },
        { "Default", QStringLiteral("Default") },
        { "settings file", QStringLiteral("../settings.dat") },
    };
}

// Names built from the characters that file systems and encodings trip over.
QStringList generatedNames(int count, quint32 seed)
{
    static const QString alphabet = QStringLiteral("./\\%:*?\"<>|~ _-+=#aAzZ09éÉ東")
        + fromUtf16(u"\u0000\u0001\n\u007f\u00a0\u200b", 6);
    QRandomGenerator random(seed);
    QStringList names;
    while (names.size() < count) {
        QString name;
        const int length
            = random.bounded(100) < 5 ? 300 + random.bounded(400) : 1 + random.bounded(24);
        for (int i = 0; i < length; ++i) {
            if (random.bounded(30) == 0)
                name += QStringLiteral("🙂");
            else
                name += alphabet.at(random.bounded(alphabet.size()));
        }
        if (name != QLatin1String("default") && !names.contains(name))
            names.append(name);
    }
    return names;
}

// A leaf that carries the name, so that a mix-up of files shows.
void addNamedLeaf(VeskRosterFiltersStack *stack, const QString &name)
{
    VeskRosterFilter *leaf = VeskRosterFiltersManager::getInstance()->createFilter(
        QStringLiteral("display"), VeskRosterFilter::RosterFilterLeaf);
    VeskFilterTree::configure(*leaf, { { QStringLiteral("display_filter_regexp"), name } });
    stack->appendFilter(leaf);
}

// A stack the manager no longer holds belongs to the test.
void deleteIfUnregistered(VeskRosterFiltersStack *stack)
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    const QStringList ids = manager->getFilterNames();
    for (const QString &id : ids) {
        if (manager->getStackFilter(id) == stack)
            return;
    }
    delete stack;
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

} // namespace

class tst_HostileNames : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { env.reset(); }

    void aFilterUnderAnyNameLivesInsideTheDirectoryAndSurvivesARestartAsCurrent_data();
    void aFilterUnderAnyNameLivesInsideTheDirectoryAndSurvivesARestartAsCurrent();
    void distinctNamesNeverShareAFile();
    void plainNamesKeepTheirFileName();
    void anEmptyNameTouchesNoFile();
    void aSymlinkInTheDirectoryNeverLeadsOutside_data();
    void aSymlinkInTheDirectoryNeverLeadsOutside();

private:
    // Everything in the sandbox but the stack-file directory and the
    // settings file.
    QStringList outsideTheDirectory() const;

    QScopedPointer<VeskFilterTestEnv> env;
    QString stackDir;
};

void tst_HostileNames::init()
{
    env.reset(new VeskFilterTestEnv);
    buildSmallRoster();
    stackDir = env->filtersDir();
    QVERIFY(QDir().mkpath(stackDir));
    // Victims where a naive use of a name as a path would land.
    QVERIFY(writeFile(env->sandbox() + QLatin1String("/victim"), "victim one"));
    QVERIFY(writeFile(env->path() + QLatin1String("/victim"), "victim two"));
}

QStringList tst_HostileNames::outsideTheDirectory() const
{
    const QString settingsFile
        = QDir(env->sandbox()).relativeFilePath(VeskStandIn::settingsFilePath());
    QStringList result;
    const QStringList all = snapshotTree(env->sandbox());
    for (const QString &line : all) {
        const QString path = line.mid(2);
        if (!path.startsWith(QLatin1String("settings/roster_filters"))
            && !path.startsWith(settingsFile + QLatin1Char(' ')))
            result.append(line);
    }
    return result;
}

void tst_HostileNames::aFilterUnderAnyNameLivesInsideTheDirectoryAndSurvivesARestartAsCurrent_data()
{
    QTest::addColumn<QString>("name");
    for (const NamedCase &hostile : hostileNames())
        QTest::newRow(hostile.row) << hostile.name;
    const QStringList generated = generatedNames(150, 8);
    for (int i = 0; i < generated.size(); ++i)
        QTest::addRow("generated %d", i) << generated.at(i);
}

void tst_HostileNames::aFilterUnderAnyNameLivesInsideTheDirectoryAndSurvivesARestartAsCurrent()
{
    QFETCH(QString, name);
    const QStringList outsideBefore = outsideTheDirectory();
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *stack
        = manager->addStackFilter(name, VeskRosterFilter::RosterFilterAnd);
    addNamedLeaf(stack, name);
    stack->writeFilterSettings();
    manager->setCurrentFilter(name);
    const QString written = describe(stack, false);

    const QStringList files
        = QDir(stackDir).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    QCOMPARE(files.size(), 1);
    const QFileInfo file(stackDir + QLatin1Char('/') + files.constFirst());
    QVERIFY(file.isFile() && !file.isSymLink());
    QCOMPARE(file.canonicalPath(), QFileInfo(stackDir).canonicalFilePath());
    QVERIFY2(!file.fileName().startsWith(QLatin1Char('.')), "a hidden file is never listed");

    manager = env->restart();
    QCOMPARE(QStringList({ manager->getCurrentFilterName(),
                 describe(manager->getStackFilter(name), false) })
            + manager->getFilterNames(),
        QStringList({ name, written, QStringLiteral("default"), name }));

    QScopedPointer<VeskRosterFiltersStack> restored(manager->getStackFilter(name));
    manager->setCurrentFilter(QStringLiteral("default"));
    manager->removeStackFilter(name);
    QCOMPARE(QDir(stackDir).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList());
    QCOMPARE(outsideTheDirectory(), outsideBefore);
}

void tst_HostileNames::distinctNamesNeverShareAFile()
{
    QStringList names;
    for (const NamedCase &hostile : hostileNames())
        names.append(hostile.name);
    names += generatedNames(150, 21);
    names.removeDuplicates(); // a short generated name may be a listed one
    QHash<QString, QString> written;
    for (const QString &name : qAsConst(names)) {
        VeskRosterFiltersStack *stack = VeskRosterFiltersManager::getInstance()->addStackFilter(
            name, VeskRosterFilter::RosterFilterOr);
        addNamedLeaf(stack, name);
        stack->writeFilterSettings();
        written.insert(name, describe(stack, false));
    }
    QCOMPARE(QDir(stackDir).entryList(QDir::Files | QDir::Hidden).size(), names.size());

    VeskRosterFiltersManager *manager = env->restart();
    QCOMPARE(sorted(manager->getFilterNames()),
        sorted(names + QStringList { QStringLiteral("default") }));
    QStringList mixedUp;
    for (const QString &name : qAsConst(names)) {
        if (describe(manager->getStackFilter(name), false) != written.value(name))
            mixedUp.append(name);
    }
    QCOMPARE(mixedUp, QStringList());
}

void tst_HostileNames::plainNamesKeepTheirFileName()
{
    const QStringList plain { QStringLiteral("friends"), QStringLiteral("Work 2"),
        QStringLiteral("family_and-pets"), QStringLiteral("work & play (2), v1.0!"),
        QStringLiteral("friends.abc123"), QStringLiteral("Zoë 東京"),
        QString(128, QLatin1Char('m')) };
    for (const QString &name : plain) {
        VeskRosterFiltersManager::getInstance()
            ->addStackFilter(name, VeskRosterFilter::RosterFilterAnd)
            ->writeFilterSettings();
    }
    QCOMPARE(sorted(QDir(stackDir).entryList(QDir::Files | QDir::Hidden)), sorted(plain));
}

void tst_HostileNames::anEmptyNameTouchesNoFile()
{
    const QStringList before = snapshotTree(env->sandbox());
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *stack
        = manager->addStackFilter(QString(), VeskRosterFilter::RosterFilterAnd);
    addNamedLeaf(stack, QStringLiteral("empty"));
    stack->writeFilterSettings();
    manager->removeStackFilter(QString());
    QCOMPARE(snapshotTree(env->sandbox()).filter(QStringLiteral("roster_filters")),
        before.filter(QStringLiteral("roster_filters")));
    deleteIfUnregistered(stack);
}

void tst_HostileNames::aSymlinkInTheDirectoryNeverLeadsOutside_data()
{
    QTest::addColumn<QString>("linkName");
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("operations");
    const QString outside = QStringLiteral("@OUTSIDE@");
    const QString file = outside + QStringLiteral("/secret");
    const QString dangling = outside + QStringLiteral("/created");
    const QString all = QStringLiteral("write rename write remove");
    QTest::newRow("a link to a file, named like the filter: save, rename, remove")
        << QStringLiteral("evil") << file << all;
    QTest::newRow("a link to a file, named like the filter: remove")
        << QStringLiteral("evil") << file << QStringLiteral("remove");
    QTest::newRow("a link to a file, named like the filter: rename")
        << QStringLiteral("evil") << file << QStringLiteral("rename");
    QTest::newRow("a dangling link, named like the filter: save, rename, remove")
        << QStringLiteral("evil") << dangling << all;
    QTest::newRow("a dangling link, named like the filter: rename")
        << QStringLiteral("evil") << dangling << QStringLiteral("rename");
    QTest::newRow("a link to a directory, named like the filter: save, rename, remove")
        << QStringLiteral("evil") << outside << all;
    QTest::newRow("a dangling link, named like the new name of a rename")
        << QStringLiteral("renamed") << dangling << QStringLiteral("write rename write remove");
    const QStringList temporaryNames { QStringLiteral(".evil"), QStringLiteral(".evil.tmp"),
        QStringLiteral("evil.tmp"), QStringLiteral("evil.new"), QStringLiteral("evil~"),
        QStringLiteral(".evil.new"), QStringLiteral("evil.part"), QStringLiteral(".#evil"),
        QStringLiteral(".evil.swp"), QStringLiteral("evil.bak"), QStringLiteral(".evil.bak"),
        QStringLiteral(".vesk-save-XXXXXX") };
    for (const QString &temporary : temporaryNames) {
        QTest::addRow("a dangling link where a temporary file could go: %s", qPrintable(temporary))
            << temporary << dangling << all;
    }
}

void tst_HostileNames::aSymlinkInTheDirectoryNeverLeadsOutside()
{
    QFETCH(QString, linkName);
    QFETCH(QString, target);
    QFETCH(QString, operations);
    const QString outside = env->sandbox() + QLatin1String("/outside");
    QVERIFY(QDir().mkpath(outside));
    QVERIFY(writeFile(outside + QLatin1String("/secret"), "not the library's"));
    target.replace(QStringLiteral("@OUTSIDE@"), outside);
    QVERIFY(QFile::link(target, stackDir + QLatin1Char('/') + linkName));
    const QStringList before = snapshotTree(outside);

    VeskRosterFiltersManager *manager = env->restart();
    const QString name = QStringLiteral("evil");
    VeskRosterFiltersStack *stack = manager->getStackFilter(name);
    if (!stack)
        stack = manager->addStackFilter(name, VeskRosterFilter::RosterFilterAnd);
    addNamedLeaf(stack, name);
    const QStringList steps = operations.split(QLatin1Char(' '));
    for (const QString &step : steps) {
        if (step == QLatin1String("write"))
            stack->writeFilterSettings();
        else if (step == QLatin1String("rename"))
            manager->rename(stack->id(), QStringLiteral("renamed"));
        else if (step == QLatin1String("remove"))
            manager->removeStackFilter(stack->id());
        QVERIFY2(snapshotTree(outside) == before, qPrintable(QLatin1String("after ") + step));
    }
    manager->removeStackFilter(linkName);
    QCOMPARE(snapshotTree(outside), before);
    deleteIfUnregistered(stack);
}

QTEST_GUILESS_MAIN(tst_HostileNames)
#include "tst_hostilenames.moc"
