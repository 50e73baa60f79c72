// The translation catalogue holds every text the library shows, under the
// comments that key it, and the German translation reaches the filters.

#include "kindsfixture.h"

#include <QDomDocument>
#include <QFile>
#include <QSet>
#include <QTranslator>
#include <QtTest>

namespace {

// "source|comment" of every live message of the context "translation".
QSet<QString> catalogueKeys(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QDomDocument document;
    document.setContent(&file);
    QSet<QString> keys;
    const QDomNodeList contexts = document.elementsByTagName(QStringLiteral("context"));
    for (int i = 0; i < contexts.size(); ++i) {
        const QDomElement context = contexts.at(i).toElement();
        if (context.firstChildElement(QStringLiteral("name")).text()
            != QLatin1String("translation"))
            continue;
        for (QDomElement message = context.firstChildElement(QStringLiteral("message"));
             !message.isNull(); message = message.nextSiblingElement(QStringLiteral("message"))) {
            const QString type = message.firstChildElement(QStringLiteral("translation"))
                                     .attribute(QStringLiteral("type"));
            if (type == QLatin1String("obsolete") || type == QLatin1String("vanished"))
                continue;
            keys.insert(message.firstChildElement(QStringLiteral("source")).text()
                + QLatin1Char('|') + message.firstChildElement(QStringLiteral("comment")).text());
        }
    }
    return keys;
}

} // namespace

class tst_KindTranslations : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { VeskStandIn::resetRoster(); }

    void catalogueHoldsText_data();
    void catalogueHoldsText();
    void groupDisplayIsNotTranslated();
    void germanTranslationReachesTheFilters_data();
    void germanTranslationReachesTheFilters();

private:
    QSet<QString> keys;
};

void tst_KindTranslations::initTestCase()
{
    keys = catalogueKeys(QStringLiteral(VESK_SOURCE_CATALOGUE));
    QVERIFY2(!keys.isEmpty(), VESK_SOURCE_CATALOGUE " holds no message");
}

void tst_KindTranslations::catalogueHoldsText_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("comment");
    const auto rows = [](const char *comment, std::initializer_list<const char *> sources) {
        for (const char *source : sources)
            QTest::addRow("\"%s\" (%s)", source, comment) << source << comment;
    };
    // "group" is keyed like the kind names; the group's display text is not
    // translated at all.
    rows("filter name", { "description", "display", "account", "protocol", "presence" });
    rows("roster filter",
        { "description %1", "display %1", "account %1 %2", "protocol %1 %2", "presence %1 %2" });
    rows("nc", { "contains", "does not contain", "match exactly", "is not empty", "is", "is not" });
    rows("nc", { "presence", "display", "protocol", "account", "description", "group" });
    rows("sorting method", { "name", "presence", "presence priority", "chats count" });
}

void tst_KindTranslations::catalogueHoldsText()
{
    QFETCH(QString, source);
    QFETCH(QString, comment);
    QVERIFY2(keys.contains(source + QLatin1Char('|') + comment),
        "missing; regenerate with the target vesk_update_translations");
}

void tst_KindTranslations::groupDisplayIsNotTranslated()
{
    for (const QString &key : qAsConst(keys))
        QVERIFY2(!key.startsWith(QLatin1String("%1 %2|")), qPrintable(key));
}

void tst_KindTranslations::germanTranslationReachesTheFilters_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected"); // name / display / condition labels
    QTest::newRow("display")
        << QStringLiteral("display") << QStringLiteral("contains") << QStringLiteral("bob")
        << QStringLiteral("Anzeigename / Anzeigename bob / enthält,enthält nicht,ist genau");
    QTest::newRow("description")
        << QStringLiteral("description") << QStringLiteral("is not empty") << QStringLiteral("away")
        << QStringLiteral(
               "Beschreibung / Beschreibung away / enthält,enthält nicht,ist genau,ist nicht leer");
    QTest::newRow("group") << QStringLiteral("group") << QStringLiteral("is not")
                           << QStringLiteral("Friends")
                           << QStringLiteral("Gruppe / ist nicht Friends / ist,ist nicht");
    QTest::newRow("account") << QStringLiteral("account") << QStringLiteral("is")
                             << QStringLiteral("bob@icq")
                             << QStringLiteral("Konto / Konto ist bob@icq / ist,ist nicht");
    QTest::newRow("protocol") << QStringLiteral("protocol") << QStringLiteral("is not")
                              << QStringLiteral("icq")
                              << QStringLiteral(
                                     "Protokoll / Protokoll ist nicht icq / ist,ist nicht");
}

void tst_KindTranslations::germanTranslationReachesTheFilters()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, value);
    QTranslator german;
    QVERIFY(german.load(QStringLiteral(VESK_GERMAN_TRANSLATION)));
    QCoreApplication::installTranslator(&german);
    buildRoster();
    const auto filter = makeFilter(kind);
    configure(
        *filter, { { QStringLiteral("is_or_not"), condition }, { valueFieldOf(kind), value } });
    const QString actual = filter->name() + QLatin1String(" / ") + filter->display()
        + QLatin1String(" / ")
        + filter->getConfiguration().at(0).getComboBoxLabels().join(QLatin1Char(','));
    QCoreApplication::removeTranslator(&german);
    QTEST(actual, "expected");
}

QTEST_GUILESS_MAIN(tst_KindTranslations)
#include "tst_kindtranslations.moc"
