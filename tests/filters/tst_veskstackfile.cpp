// Stack files: what is written comes back after a restart, and no name and no
// file content can make the library touch anything outside its directory,
// lose a filter or crash.

#include <veskfiltertestenv.h>
#include <veskfiltertree.h>

#include <veskrosterfiltersmanager.h>
#include <veskrosterfiltersstack.h>

#include <QDir>
#include <QDirIterator>
#include <QDomDocument>
#include <QFileInfo>
#include <QtTest>

using namespace VeskFilterTree;

namespace {

const VeskRosterFilter::RosterFilterType AND = VeskRosterFilter::RosterFilterAnd;
const VeskRosterFilter::RosterFilterType OR = VeskRosterFilter::RosterFilterOr;

// Every entry under root, hidden ones included, as sorted relative paths; a
// symbolic link is marked with "@".
QStringList entriesUnder(const QString &root)
{
    QStringList entries;
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
        QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        entries.append(QDir(root).relativeFilePath(it.filePath())
            + (it.fileInfo().isSymLink() ? QLatin1String("@") : QLatin1String("")));
    }
    entries.sort();
    return entries;
}

// Tag and attributes of every element, nested: the shape of a stack file.
QString shapeOf(const QDomElement &element)
{
    QStringList attributes;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i)
        attributes.append(map.item(i).nodeName() + QLatin1Char('=') + map.item(i).nodeValue());
    attributes.sort();
    QString shape = element.tagName();
    if (!attributes.isEmpty())
        shape += QLatin1Char('{') + attributes.join(QLatin1Char(',')) + QLatin1Char('}');
    if (element.tagName() == QLatin1String("stack_filter")) {
        QStringList children;
        for (QDomElement child = element.firstChildElement(); !child.isNull();
             child = child.nextSiblingElement())
            children.append(shapeOf(child));
        shape += QLatin1Char('(') + children.join(QLatin1Char(' ')) + QLatin1Char(')');
    }
    return shape;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

// A stored stack with one presence leaf, as the library writes it.
QByteArray oneLeafFile()
{
    VeskRosterFiltersStack stack(QString(), AND);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.writeFilterSettings();
    return stack.getNode()->toByteArray();
}

} // namespace

class tst_VeskStackFile : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        env.reset(new VeskFilterTestEnv);
        addPresences();
    }
    void cleanup() { env.reset(); }

    void treeSurvivesARestart();
    void treeIsStoredAsNestedElements();
    void nestedStackKeepsNoSorterOrAdvancedMode();
    void writingTwiceReplacesTheFile();
    void readingTwiceDoesNotDuplicateChildren();
    void emptyStackKeepsItsConstructedTypeAfterARestart();
    void advancedModeIsOnOnlyForT_data();
    void advancedModeIsOnOnlyForT();
    void plainNamesAreTheirOwnFileNames_data();
    void plainNamesAreTheirOwnFileNames();

    void hostileNamesStayInsideTheDirectoryAndComeBack_data();
    void hostileNamesStayInsideTheDirectoryAndComeBack();
    void emptyTopLevelNameTouchesNoFile();
    void filesNotSpelledByTheLibraryAreNotListed();
    void hashedFileWhoseStoredNameDoesNotMatchIsNotListed();

    void hostileFilesLoadAsEmptyStacksBesideGoodOnes_data();
    void hostileFilesLoadAsEmptyStacksBesideGoodOnes();
    void deepestReadableTreeSurvivesARestart();
    void treeTooDeepToReadBackKeepsTheOldFile();

    void saveLeavesNoTemporaryFile();
    void failedSaveLeavesNoTemporaryFile();
    void temporaryFileOfAnInterruptedSaveIsNotAFilter();
    void saveReplacesAPlantedLinkInsteadOfWritingThroughIt();
    void removeDeletesAPlantedLinkNotItsTarget();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_VeskStackFile::treeSurvivesARestart()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *tree = manager->addStackFilter(QStringLiteral("tree"), AND);
    tree->appendFilter(presence(QStringLiteral("away"), false));
    tree->appendFilter(
        nested(OR, { presence(QStringLiteral("online")), presence(QStringLiteral("dnd")) }));
    tree->setSorter(QStringLiteral("by name"));
    tree->setAdvancedMode(true);
    tree->writeFilterSettings();

    manager = env->restart();
    QCOMPARE(describe(manager->getStackFilter(QStringLiteral("tree"))),
        QStringLiteral(
            "AND tree sort=by name advanced ["
            "presence{is_or_not=is not;presence_filter_presence=away}'presence is not Away', "
            "OR OR sort= ["
            "presence{is_or_not=is;presence_filter_presence=online}'presence is Online', "
            "presence{is_or_not=is;presence_filter_presence=dnd}'presence is Busy']]"));
}

void tst_VeskStackFile::treeIsStoredAsNestedElements()
{
    VeskRosterFiltersStack tree(QStringLiteral("tree"), AND);
    tree.appendFilter(presence(QStringLiteral("away")));
    tree.appendFilter(nested(OR,
        { presence(QStringLiteral("online")), nested(AND, { presence(QStringLiteral("dnd")) }) }));
    tree.setSorter(QStringLiteral("s"));
    tree.writeFilterSettings();

    QDomDocument document;
    QVERIFY(document.setContent(readFile(env->filePath(QStringLiteral("tree")))));
    QCOMPARE(shapeOf(document.documentElement()),
        QStringLiteral("stack_filter{advanced=f,sort=s,type=AND}(presence "
                       "stack_filter{type=OR}(presence stack_filter{type=AND}(presence)))"));
}

void tst_VeskStackFile::nestedStackKeepsNoSorterOrAdvancedMode()
{
    VeskRosterFiltersStack *inner = nested(OR, { presence(QStringLiteral("online")) });
    inner->setSorter(QStringLiteral("inner sorter"));
    inner->setAdvancedMode(true);
    VeskRosterFiltersStack tree(QStringLiteral("tree"), AND);
    tree.appendFilter(inner);
    tree.writeFilterSettings();

    VeskRosterFiltersStack reread(QStringLiteral("tree"), VeskRosterFilter::RosterFilterDefault);
    QCOMPARE(describe(reread.getFilters().value(0)),
        QStringLiteral(
            "OR OR sort= "
            "[presence{is_or_not=is;presence_filter_presence=online}'presence is Online']"));
}

void tst_VeskStackFile::writingTwiceReplacesTheFile()
{
    VeskRosterFiltersStack stack(QStringLiteral("s"), AND);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.appendFilter(presence(QStringLiteral("away")));
    stack.writeFilterSettings();
    VeskRosterFilter *first = stack.getFilters().first();
    stack.removeFilter(first);
    delete first;
    stack.writeFilterSettings();
    const QByteArray second = readFile(env->filePath(QStringLiteral("s")));

    VeskRosterFiltersStack reread(QStringLiteral("s"), VeskRosterFilter::RosterFilterDefault);
    QCOMPARE(describe(&reread), describe(&stack));
    QCOMPARE(readFile(env->filePath(QStringLiteral("s"))), second);
}

void tst_VeskStackFile::readingTwiceDoesNotDuplicateChildren()
{
    VeskRosterFiltersStack stored(QStringLiteral("s"), OR);
    stored.appendFilter(presence(QStringLiteral("online")));
    stored.appendFilter(nested(AND, { presence(QStringLiteral("away")) }));
    stored.writeFilterSettings();

    VeskRosterFiltersStack reread(QStringLiteral("s"), VeskRosterFilter::RosterFilterDefault);
    QCOMPARE(reread.getFilters().size(), 2);
    reread.readFilterSettings();
    QCOMPARE(describe(&reread), describe(&stored));
}

void tst_VeskStackFile::emptyStackKeepsItsConstructedTypeAfterARestart()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *empty = manager->addStackFilter(QStringLiteral("empty"), OR);
    empty->setSorter(QStringLiteral("by presence"));
    empty->setAdvancedMode(true);
    empty->writeFilterSettings();

    manager = env->restart();
    QCOMPARE(describe(manager->getStackFilter(QStringLiteral("empty"))),
        QStringLiteral("DEFAULT empty sort=by presence advanced []"));
}

void tst_VeskStackFile::advancedModeIsOnOnlyForT_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("advanced");
    QTest::newRow("t") << QByteArray("t") << true;
    QTest::newRow("f") << QByteArray("f") << false;
    QTest::newRow("true") << QByteArray("true") << false;
    QTest::newRow("upper-case T") << QByteArray("T") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void tst_VeskStackFile::advancedModeIsOnOnlyForT()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, advanced);
    writeFile(env->filePath(QStringLiteral("s")),
        "<stack_filter type=\"AND\" sort=\"x\" advanced=\"" + value + "\"/>");
    VeskRosterFiltersStack stack(QStringLiteral("s"), AND);
    stack.setAdvancedMode(!advanced);
    stack.readFilterSettings();
    QCOMPARE(stack.isAdvancedMode(), advanced);
}

void tst_VeskStackFile::plainNamesAreTheirOwnFileNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("friends") << QStringLiteral("friends");
    QTest::newRow("blanks and punctuation") << QStringLiteral("work & play (2), v1.0!");
    QTest::newRow("looks like a temporary file") << QStringLiteral("friends.abc123");
    QTest::newRow("trailing dot") << QStringLiteral("x.");
    QTest::newRow("non-ASCII") << QStringLiteral("Zoë 東京");
}

void tst_VeskStackFile::plainNamesAreTheirOwnFileNames()
{
    QFETCH(QString, name);
    VeskRosterFiltersStack stack(name, AND);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.writeFilterSettings();
    QCOMPARE(entriesUnder(env->filtersDir()), QStringList { name });
}

void tst_VeskStackFile::hostileNamesStayInsideTheDirectoryAndComeBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("parent directory") << QStringLiteral("..");
    QTest::newRow("current directory") << QStringLiteral(".");
    QTest::newRow("climbs out") << QStringLiteral("../x");
    QTest::newRow("climbs out twice") << QStringLiteral("../../x");
    QTest::newRow("subdirectory") << QStringLiteral("a/b");
    QTest::newRow("absolute path") << QStringLiteral("/etc/passwd");
    QTest::newRow("leading dot hides") << QStringLiteral(".hidden");
    QTest::newRow("looks like the temporary files") << QStringLiteral(".vesk-save-abcdef");
    QTest::newRow("backslash") << QStringLiteral("a\\b");
    QTest::newRow("NUL") << QString::fromUtf16(u"a\u0000b", 3);
    QTest::newRow("newline and tab") << QStringLiteral("a\nb\tc");
    QTest::newRow("DEL and escape") << QStringLiteral("\x7f\x1b[0m");
    QTest::newRow("percent escapes") << QStringLiteral("%2E%2F%u0041%");
    QTest::newRow("looks hashed") << QStringLiteral("%h0123");
    QTest::newRow("lone surrogate") << QString(QChar(0xD800)) + QStringLiteral("x");
    QTest::newRow("non-characters") << QString(QChar(0xFFFE)) + QString(QChar(0xFFFF));
    QTest::newRow("300 ASCII letters") << QString(300, QLatin1Char('n'));
    QTest::newRow("200 two-byte letters") << QString(200, QChar(0xE9));
    QTest::newRow("long with slashes") << QString(100, QLatin1Char('/')) + QStringLiteral("..");
    QTest::newRow("at the length limit") << QString(128, QLatin1Char('m'));
    QTest::newRow("one past the length limit") << QString(129, QLatin1Char('m'));
}

void tst_VeskStackFile::hostileNamesStayInsideTheDirectoryAndComeBack()
{
    QFETCH(QString, name);
    const QString settingsFile
        = QDir(env->sandbox()).relativeFilePath(VeskStandIn::settingsFilePath());
    QStringList before = entriesUnder(env->sandbox());
    before.removeAll(settingsFile);

    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFiltersStack *stack = manager->addStackFilter(name, AND);
    stack->appendFilter(presence(QStringLiteral("away")));
    stack->writeFilterSettings();
    const QString stored = describe(stack);

    // One file, directly in the directory, and nothing new anywhere else.
    const QStringList files = entriesUnder(env->filtersDir());
    QCOMPARE(files.size(), 1);
    QVERIFY(!files.first().startsWith(QLatin1Char('.')));
    QVERIFY(QFileInfo(env->filePath(files.first())).isFile());
    QStringList after = entriesUnder(env->sandbox());
    after.removeAll(settingsFile);
    after.removeAll(QLatin1String("settings/roster_filters"));
    after.removeAll(QLatin1String("settings/roster_filters/") + files.first());
    QCOMPARE(after, before);

    manager = env->restart();
    QCOMPARE(manager->getFilterNames(), (QStringList { QStringLiteral("default"), name }));
    QCOMPARE(describe(manager->getStackFilter(name)), stored);

    VeskRosterFiltersStack *reloaded = manager->getStackFilter(name);
    manager->removeStackFilter(name);
    delete reloaded;
    QCOMPARE(entriesUnder(env->filtersDir()), QStringList());
}

void tst_VeskStackFile::emptyTopLevelNameTouchesNoFile()
{
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    writeFile(env->filePath(QStringLiteral("bystander")), oneLeafFile());
    const QStringList before = entriesUnder(env->path());

    VeskRosterFiltersStack *unnamed = manager->addStackFilter(QString(), AND);
    unnamed->appendFilter(presence(QStringLiteral("away")));
    unnamed->writeFilterSettings();
    unnamed->readFilterSettings();
    manager->removeStackFilter(QString());
    delete unnamed;

    QCOMPARE(entriesUnder(env->path()), before);
}

void tst_VeskStackFile::filesNotSpelledByTheLibraryAreNotListed()
{
    // "%41" would decode to "A", which the library spells "A"; "50%off" and
    // "x%u12" are no spelling of the library at all.
    for (const char *name : { "A", "%41", "50%off", "x%u12", "%2e" })
        writeFile(env->filePath(QString::fromLatin1(name)), oneLeafFile());
    VeskRosterFiltersManager *manager = env->restart();
    QCOMPARE(manager->getFilterNames(),
        (QStringList { QStringLiteral("default"), QStringLiteral("A") }));
}

void tst_VeskStackFile::hashedFileWhoseStoredNameDoesNotMatchIsNotListed()
{
    const QString longName(300, QLatin1Char('x'));
    const QString otherName(300, QLatin1Char('y'));
    {
        VeskRosterFiltersStack stack(longName, AND);
        stack.appendFilter(presence(QStringLiteral("away")));
        stack.writeFilterSettings();
    }
    const QStringList files = entriesUnder(env->filtersDir());
    QCOMPARE(files.size(), 1);
    // The same content under the file name of another long name.
    {
        VeskRosterFiltersStack stack(otherName, AND);
        stack.appendFilter(presence(QStringLiteral("away")));
        stack.writeFilterSettings();
    }
    const QStringList both = entriesUnder(env->filtersDir());
    QCOMPARE(both.size(), 2);
    const QString otherFile = both.at(both.first() == files.first() ? 1 : 0);
    writeFile(env->filePath(otherFile), readFile(env->filePath(files.first())));

    VeskRosterFiltersManager *manager = env->restart();
    QCOMPARE(manager->getFilterNames(), (QStringList { QStringLiteral("default"), longName }));
}

void tst_VeskStackFile::hostileFilesLoadAsEmptyStacksBesideGoodOnes_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("children");

    const QByteArray leaf = oneLeafFile();
    const int leafStart = leaf.indexOf("<presence");
    const int leafEnd = leaf.indexOf("</presence>") + int(qstrlen("</presence>"));
    const QByteArray presenceElement = leaf.mid(leafStart, leafEnd - leafStart);
    const QByteArray open = "<stack_filter type=\"AND\" sort=\"\" advanced=\"f\">";
    const QByteArray close = "</stack_filter>";

    QTest::newRow("a good file, for comparison") << leaf << 1;
    QTest::newRow("empty file") << QByteArray() << 0;
    QTest::newRow("truncated XML") << leaf.left(leaf.size() / 2) << 0;
    QTest::newRow("wrong root") << QByteArray(leaf).replace("stack_filter", "filter_stack") << 0;
    QByteArray junk(4096, '\0');
    for (int i = 0; i < junk.size(); ++i)
        junk[i] = char((i * 131 + 7) % 256);
    QTest::newRow("binary junk") << junk << 0;
    QTest::newRow("100,000 nested elements") << QByteArray("<stack_filter>")
            + QByteArray("<a>").repeated(100000) + QByteArray("</a>").repeated(100000)
            + close << 0;
    QTest::newRow("100,000 nested stacks")
        << open.repeated(100000) + presenceElement + close.repeated(100000) << 0;
    QTest::newRow("larger than 1 MiB")
        << open + presenceElement + "<!--" + QByteArray(1024 * 1024, 'x') + "-->" + close << 0;
    QTest::newRow("entity expansion")
        << QByteArray("<!DOCTYPE s [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;\">]>")
            + open + "<presence>&b;</presence>" + presenceElement + close
        << 0;
    QTest::newRow("external entity")
        << QByteArray("<!DOCTYPE s [<!ENTITY e SYSTEM \"file:///etc/passwd\">]>") + open
            + "<presence>&e;</presence>" + close
        << 0;
    QTest::newRow("unknown tags are skipped")
        << open + "<bogus><x/></bogus>" + presenceElement + "<Presence><x/></Presence>" + close
        << 1;
    QTest::newRow("leaf without its fields node")
        << open + "<presence/>" + presenceElement + close << 1;
    QTest::newRow("leaf with text instead of fields")
        << open + "<presence>text</presence>" + close << 1;
    QTest::newRow("empty nested stack") << open + "<stack_filter type=\"OR\"/>" + close << 0;
    QTest::newRow("root element only") << QByteArray("<stack_filter/>") << 0;
    QTest::newRow("UTF-16 with a byte-order mark") << QByteArray("\xff\xfe", 2)
            + QByteArray(reinterpret_cast<const char *>(QString::fromUtf8(leaf).utf16()),
                leaf.size() * 2) << 1;
}

void tst_VeskStackFile::hostileFilesLoadAsEmptyStacksBesideGoodOnes()
{
    QFETCH(QByteArray, content);
    QFETCH(int, children);
    writeFile(env->filePath(QStringLiteral("hostile")), content);
    writeFile(env->filePath(QStringLiteral("good")), oneLeafFile());

    VeskRosterFiltersManager *manager = env->restart();
    QCOMPARE(manager->getFilterNames().size(), 3);
    QCOMPARE(manager->getStackFilter(QStringLiteral("good"))->getFilters().size(), 1);
    QCOMPARE(manager->getStackFilter(QStringLiteral("hostile"))->getFilters().size(), children);
}

void tst_VeskStackFile::deepestReadableTreeSurvivesARestart()
{
    // Root, 252 nested stacks and a leaf whose fields take three levels:
    // 256 levels of elements.
    VeskRosterFiltersManager *manager = VeskRosterFiltersManager::getInstance();
    VeskRosterFilter *chain = presence(QStringLiteral("online"));
    for (int i = 0; i < 252; ++i)
        chain = nested(i % 2 ? AND : OR, { chain });
    VeskRosterFiltersStack *deep = manager->addStackFilter(QStringLiteral("deep"), AND);
    deep->appendFilter(chain);
    deep->writeFilterSettings();
    const QString stored = describe(deep);

    manager = env->restart();
    QCOMPARE(describe(manager->getStackFilter(QStringLiteral("deep"))), stored);
}

void tst_VeskStackFile::treeTooDeepToReadBackKeepsTheOldFile()
{
    VeskRosterFiltersStack stack(QStringLiteral("deep"), AND);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.writeFilterSettings();
    const QByteArray old = readFile(env->filePath(QStringLiteral("deep")));

    VeskRosterFilter *chain = presence(QStringLiteral("away"));
    for (int i = 0; i < 253; ++i)
        chain = nested(AND, { chain });
    stack.appendFilter(chain);
    stack.writeFilterSettings();
    QCOMPARE(readFile(env->filePath(QStringLiteral("deep"))), old);
}

void tst_VeskStackFile::saveLeavesNoTemporaryFile()
{
    VeskRosterFiltersStack stack(QStringLiteral("s"), AND);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.writeFilterSettings();
    stack.writeFilterSettings();
    QCOMPARE(entriesUnder(env->filtersDir()), QStringList { QStringLiteral("s") });
}

void tst_VeskStackFile::failedSaveLeavesNoTemporaryFile()
{
    // A directory in the way makes the final rename fail.
    QVERIFY(QDir().mkpath(env->filePath(QStringLiteral("s"))));
    VeskRosterFiltersStack stack(QStringLiteral("s"), AND);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.writeFilterSettings();
    QCOMPARE(entriesUnder(env->filtersDir()), QStringList { QStringLiteral("s") });
    QVERIFY(QFileInfo(env->filePath(QStringLiteral("s"))).isDir());
}

void tst_VeskStackFile::temporaryFileOfAnInterruptedSaveIsNotAFilter()
{
    VeskRosterFiltersStack stack(QStringLiteral("friends"), AND);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.writeFilterSettings();
    const QStringList saved = entriesUnder(env->filtersDir());
    // What a crash between writing and renaming leaves behind, beside a
    // filter whose name only looks like a temporary file.
    writeFile(env->filePath(QStringLiteral(".vesk-save-Ab12Cd")), oneLeafFile());
    writeFile(env->filePath(QStringLiteral("friends.Ab12Cd")), oneLeafFile());

    VeskRosterFiltersManager *manager = env->restart();
    QStringList names = manager->getFilterNames();
    names.sort();
    QCOMPARE(names,
        (QStringList { QStringLiteral("default"), QStringLiteral("friends"),
            QStringLiteral("friends.Ab12Cd") }));
    QCOMPARE(saved, QStringList { QStringLiteral("friends") });
}

void tst_VeskStackFile::saveReplacesAPlantedLinkInsteadOfWritingThroughIt()
{
    const QString outside = env->path() + QLatin1String("/outside");
    writeFile(outside, "precious");
    QDir().mkpath(env->filtersDir());
    QVERIFY(QFile::link(outside, env->filePath(QStringLiteral("friends"))));

    VeskRosterFiltersStack stack(QStringLiteral("friends"), AND);
    stack.appendFilter(presence(QStringLiteral("online")));
    stack.writeFilterSettings();

    QCOMPARE(readFile(outside), QByteArray("precious"));
    QVERIFY(!QFileInfo(env->filePath(QStringLiteral("friends"))).isSymLink());
    VeskRosterFiltersStack reread(QStringLiteral("friends"), VeskRosterFilter::RosterFilterDefault);
    QCOMPARE(describe(&reread), describe(&stack));
}

void tst_VeskStackFile::removeDeletesAPlantedLinkNotItsTarget()
{
    const QString outside = env->path() + QLatin1String("/outside");
    writeFile(outside, oneLeafFile());
    QDir().mkpath(env->filtersDir());
    QVERIFY(QFile::link(outside, env->filePath(QStringLiteral("friends"))));

    VeskRosterFiltersManager *manager = env->restart();
    VeskRosterFiltersStack *friends = manager->getStackFilter(QStringLiteral("friends"));
    QVERIFY(friends);
    manager->removeStackFilter(QStringLiteral("friends"));
    delete friends;

    QCOMPARE(entriesUnder(env->filtersDir()), QStringList());
    QCOMPARE(readFile(outside), oneLeafFile());
}

QTEST_GUILESS_MAIN(tst_VeskStackFile)
#include "tst_veskstackfile.moc"
