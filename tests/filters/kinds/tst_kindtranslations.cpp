// Every text a person reads is looked up under its own key (the context
// "translation", its source text and its comment), and the German
// translation reaches the filters and both managers. Checked on what the code
// produces at run time, so a lookup under a wrong key fails here.

#include "kindsfixture.h"

#include <veskfiltertestenv.h>

#include <QTranslator>
#include <QtTest>

namespace {

// Answers "[source|comment]" for the context "translation" and nothing for
// any other, so every text shows the key it was looked up by.
class KeyTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(
        const char *context, const char *source, const char *comment, int = -1) const override
    {
        if (qstrcmp(context, "translation") != 0)
            return QString();
        return QLatin1Char('[') + QString::fromUtf8(source) + QLatin1Char('|')
            + QString::fromUtf8(comment) + QLatin1Char(']');
    }
};

// Installed for the lifetime of the object; the managers translate their
// tables when they are created, so the environment starts them afresh.
struct Translated
{
    explicit Translated(QTranslator *translator)
        : translator(translator)
    {
        QCoreApplication::installTranslator(translator);
    }
    ~Translated() { QCoreApplication::removeTranslator(translator); }
    QTranslator *translator;
};

// name / display / condition labels of a configured leaf.
QString leafTexts(const QString &kind, const QString &condition, const QString &value)
{
    const auto filter = makeFilter(kind);
    configure(
        *filter, { { QStringLiteral("is_or_not"), condition }, { valueFieldOf(kind), value } });
    return filter->name() + QLatin1String(" / ") + filter->display() + QLatin1String(" / ")
        + filter->getConfiguration().at(0).getComboBoxLabels().join(QLatin1Char(','));
}

// The kind names and the sorting labels the two managers offer, in id order.
QString managerTexts()
{
    VeskRosterFiltersManager *filters = VeskRosterFiltersManager::getInstance();
    VeskRosterSortersManager *sorters = VeskRosterSortersManager::getInstance();
    QStringList texts;
    QStringList kinds = filters->getAvailableFilters();
    kinds.sort();
    for (const QString &kind : qAsConst(kinds))
        texts << kind + QLatin1Char('=') + filters->getFilterName(kind) + QLatin1Char('=')
                + filters->getFilterId(filters->getFilterName(kind));
    QStringList methods = sorters->getAvailableSorters();
    methods.sort();
    for (const QString &method : qAsConst(methods))
        texts << method + QLatin1Char('=') + sorters->getSorterDisplay(method) + QLatin1Char('=')
                + sorters->getSorterName(sorters->getSorterDisplay(method));
    return texts.join(QLatin1String("; "));
}

} // namespace

class tst_KindTranslations : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        env.reset(new VeskFilterTestEnv);
        buildRoster();
    }
    void cleanup() { env.reset(); }

    void leafTextsAreLookedUpUnderTheirKeys_data();
    void leafTextsAreLookedUpUnderTheirKeys();
    void managerTextsAreLookedUpUnderTheirKeys();
    void germanTranslationReachesTheFiltersAndTheManagers();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_KindTranslations::leafTextsAreLookedUpUnderTheirKeys_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected"); // name / display / condition labels
    const auto row = [](const char *kind, const char *condition, const char *value,
                         const char *texts, const char *labels) {
        QTest::newRow(kind) << QString::fromUtf8(kind) << QString::fromUtf8(condition)
                            << QString::fromUtf8(value)
                            << QString::fromUtf8(texts) + QLatin1String(" / ")
                + QString::fromUtf8(labels);
    };
    const char *textLabels = "[contains|nc],[does not contain|nc],[match exactly|nc]";
    const char *choiceLabels = "[is|nc],[is not|nc]";
    row("display", "contains", "bob", "[display|filter name] / [display bob|roster filter]",
        textLabels);
    row("description", "is not empty", "x",
        "[description|filter name] / [description x|roster filter]",
        "[contains|nc],[does not contain|nc],[match exactly|nc],[is not empty|nc]");
    // The group's display text is the condition and the group's own name.
    row("group", "is not", "Friends", "[group|nc] / [is not|nc] Friends", choiceLabels);
    row("account", "is", "bob@icq",
        "[account|filter name] / [account [is|nc] bob@icq|roster filter]", choiceLabels);
    row("protocol", "is not", "icq",
        "[protocol|filter name] / [protocol [is not|nc] icq|roster filter]", choiceLabels);
    row("presence", "is", "away", "[presence|filter name] / [presence [is|nc] Away|roster filter]",
        choiceLabels);
}

void tst_KindTranslations::leafTextsAreLookedUpUnderTheirKeys()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, value);
    KeyTranslator keys;
    const Translated translated(&keys);
    QTEST(leafTexts(kind, condition, value), "expected");
}

void tst_KindTranslations::managerTextsAreLookedUpUnderTheirKeys()
{
    KeyTranslator keys;
    const Translated translated(&keys);
    env->restart();
    QCOMPARE(managerTexts(),
        QStringLiteral("account=[account|nc]=account; description=[description|nc]=description; "
                       "display=[display|nc]=display; group=[group|nc]=group; "
                       "presence=[presence|nc]=presence; protocol=[protocol|nc]=protocol; "
                       "chats_count=[chats count|sorting method]=chats_count; "
                       "name=[name|sorting method]=name; "
                       "presence=[presence|sorting method]=presence; "
                       "presence_priority=[presence priority|sorting method]=presence_priority"));
}

void tst_KindTranslations::germanTranslationReachesTheFiltersAndTheManagers()
{
    QTranslator german;
    QVERIFY(german.load(QStringLiteral(VESK_GERMAN_TRANSLATION)));
    const Translated translated(&german);
    env->restart();
    QCOMPARE(QStringList({ leafTexts(QStringLiteral("presence"), QStringLiteral("is not"),
                               QStringLiteral("away")),
                 leafTexts(QStringLiteral("description"), QStringLiteral("contains"),
                     QStringLiteral("x")),
                 managerTexts() }),
        QStringList({ QStringLiteral("Status / Status ist nicht Away / ist,ist nicht"),
            QStringLiteral("Beschreibung / Beschreibung x / enthält,enthält nicht,ist "
                           "genau,ist nicht leer"),
            QStringLiteral("account=Konto=account; description=Beschreibung=description; "
                           "display=Anzeigename=display; group=Gruppe=group; "
                           "presence=Status=presence; protocol=Protokoll=protocol; "
                           "chats_count=Anzahl der Chats=chats_count; name=Name=name; "
                           "presence=Status=presence; "
                           "presence_priority=Statuspriorität=presence_priority") }));
}

QTEST_GUILESS_MAIN(tst_KindTranslations)
#include "tst_kindtranslations.moc"
