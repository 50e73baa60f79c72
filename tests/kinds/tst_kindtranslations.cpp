// The translation catalogue holds every text the library shows, under the
// comments that key it, and the German translation reaches the filters.

#include "kindsfixture.h"

#include <veskaccountfilter.h>
#include <veskdescriptionfilter.h>
#include <veskdisplayfilter.h>
#include <veskgroupfilter.h>
#include <veskpresencefilter.h>
#include <veskprotocolfilter.h>

#include <QDomDocument>
#include <QFile>
#include <QSet>
#include <QTranslator>
#include <QtTest>

#include <memory>

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
    QTest::addColumn<QString>("owner"); // where the text is translated

    const QString kinds = QStringLiteral("leaf filters");
    const QString presence = QStringLiteral("presence filter");
    const QString filtersManager = QStringLiteral("filters manager");
    const QString sortersManager = QStringLiteral("sorters manager");

    QTest::newRow("leaf name description") << "description"
                                           << "filter name" << kinds;
    QTest::newRow("leaf name display") << "display"
                                       << "filter name" << kinds;
    QTest::newRow("leaf name group, keyed like the kind names") << "group"
                                                                << "nc" << kinds;
    QTest::newRow("leaf name account") << "account"
                                       << "filter name" << kinds;
    QTest::newRow("leaf name protocol") << "protocol"
                                        << "filter name" << kinds;
    QTest::newRow("leaf name presence") << "presence"
                                        << "filter name" << presence;

    QTest::newRow("display text description") << "description %1"
                                              << "roster filter" << kinds;
    QTest::newRow("display text display") << "display %1"
                                          << "roster filter" << kinds;
    QTest::newRow("display text account") << "account %1 %2"
                                          << "roster filter" << kinds;
    QTest::newRow("display text protocol") << "protocol %1 %2"
                                           << "roster filter" << kinds;
    QTest::newRow("display text presence") << "presence %1 %2"
                                           << "roster filter" << presence;

    for (const char *condition :
        { "contains", "does not contain", "match exactly", "is not empty", "is", "is not" })
        QTest::addRow("condition %s", condition) << condition << "nc" << kinds;

    for (const char *kind :
        { "presence", "display", "protocol", "account", "description", "group" })
        QTest::addRow("kind name %s", kind) << kind << "nc" << filtersManager;

    for (const char *comparator : { "name", "presence", "presence priority", "chats count" })
        QTest::addRow("sorting method %s", comparator)
            << comparator << "sorting method" << sortersManager;
}

void tst_KindTranslations::catalogueHoldsText()
{
    QFETCH(QString, source);
    QFETCH(QString, comment);
    QFETCH(QString, owner);

    QVERIFY2(keys.contains(source + QLatin1Char('|') + comment),
        qPrintable(QStringLiteral("\"%1\" (%2) of the %3 missing; regenerate with the target "
                                  "vesk_update_translations")
                       .arg(source, comment, owner)));
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

    QTest::newRow("display") << "display"
                             << "contains"
                             << "bob"
                             << "Anzeigename / Anzeigename bob / enthält,enthält nicht,ist genau";
    QTest::newRow("description")
        << "description"
        << "is not empty"
        << "away"
        << "Beschreibung / Beschreibung away / enthält,enthält nicht,ist genau,ist nicht leer";
    QTest::newRow("group") << "group"
                           << "is not"
                           << "Friends"
                           << "Gruppe / ist nicht Friends / ist,ist nicht";
    QTest::newRow("account") << "account"
                             << "is"
                             << "bob@icq"
                             << "Konto / Konto ist bob@icq / ist,ist nicht";
    QTest::newRow("protocol") << "protocol"
                              << "is not"
                              << "icq"
                              << "Protokoll / Protokoll ist nicht icq / ist,ist nicht";
}

void tst_KindTranslations::germanTranslationReachesTheFilters()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, value);
    QFETCH(QString, expected);

    QTranslator german;
    QVERIFY(german.load(QStringLiteral(VESK_GERMAN_TRANSLATION)));
    QCoreApplication::installTranslator(&german);
    buildRoster();
    VeskStandIn::addProtocol(QStringLiteral("jabber"),
        { VeskStandIn::makePresence(QStringLiteral("away"), QStringLiteral("Away")) });

    std::unique_ptr<VeskRosterFilter> filter;
    if (kind == QLatin1String("display"))
        filter = std::make_unique<VeskDisplayFilter>();
    else if (kind == QLatin1String("description"))
        filter = std::make_unique<VeskDescriptionFilter>();
    else if (kind == QLatin1String("group"))
        filter = std::make_unique<VeskGroupFilter>();
    else if (kind == QLatin1String("account"))
        filter = std::make_unique<VeskAccountFilter>();
    else if (kind == QLatin1String("protocol"))
        filter = std::make_unique<VeskProtocolFilter>();
    else
        filter = std::make_unique<VeskPresenceFilter>();
    const QString valueField = kind
        + (filter->getConfiguration().at(1).getKind() == VeskField::LineEdit
                ? QLatin1String("_filter_regexp")
                : QLatin1String("_filter_presence"));
    configure(*filter, { { QStringLiteral("is_or_not"), condition }, { valueField, value } });

    const QString actual = filter->name() + QLatin1String(" / ") + filter->display()
        + QLatin1String(" / ")
        + filter->getConfiguration().at(0).getComboBoxLabels().join(QLatin1Char(','));
    QCoreApplication::removeTranslator(&german);
    QCOMPARE(actual, expected);
}

QTEST_GUILESS_MAIN(tst_KindTranslations)
#include "tst_kindtranslations.moc"
