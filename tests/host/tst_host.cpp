// The stand-in host: what the filter library relies on from fields, XML
// nodes and the settings store.

#include <veskfield.h>
#include <vesksettingsmanager.h>
#include <veskstandin.h>
#include <veskxmlnode.h>

#include <QTemporaryDir>
#include <QtTest>

namespace {

VeskField line(const QString &id, const QString &text)
{
    return VeskField::lineEdit(QString(), id, text, 32767, QString());
}

VeskField list(const QString &id, const QStringList &ids)
{
    return VeskField::comboBox(QString(), id, ids, {}, QString(), QString());
}

} // namespace

class tst_Host : public QObject
{
    Q_OBJECT

private slots:
    void fieldsRoundTripThroughAFile_data();
    void fieldsRoundTripThroughAFile();
    void fromXmlTakesTheLastValueOfAnIdAndKeepsFieldsWithoutOne();
    void settingsAreReadBackByAFreshStore();
};

void tst_Host::fieldsRoundTripThroughAFile_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("markup") << QStringLiteral("<a href=\"x\">&amp;</a> ]]> '");
    QTest::newRow("newlines, tabs, blanks") << QStringLiteral("  one\ntwo\r\nthree\tfour\r ");
    QTest::newRow("control characters") << QString::fromUtf16(u"\u0001\u0000\u001f");
    QTest::newRow("non-ASCII") << QStringLiteral("Zoë Ærøskøbing 東京 🙂");
    QTest::newRow("lone surrogate, non-characters")
        << QString(QChar(0xD800)) + QChar(0xFFFE) + QChar(0xFFFF);
}

// Written into a node of one document, appended to a node of another,
// serialised and parsed again, as a stack file does.
void tst_Host::fieldsRoundTripThroughAFile()
{
    QFETCH(QString, text);
    VeskXmlNode root(QStringLiteral("stack_filter"), QString(), nullptr);
    root.appendChild(VeskField::toXml(
        { VeskField::comboBox(QString(), QStringLiteral("c"), { text }, { text }, text, QString()),
            line(text, text) }));
    VeskXmlNode reread(QString(), QString(), nullptr);
    QVERIFY(reread.setContent(root.toByteArray()));

    const QList<VeskField> restored
        = VeskField::fromXml({ list(QStringLiteral("c"), {}), line(text, QStringLiteral("old")) },
            reread.getChildNodes().value(0));
    QCOMPARE(QStringList({ restored.at(0).getSelectedId(), restored.at(1).getText() }),
        QStringList({ text, text }));
}

void tst_Host::fromXmlTakesTheLastValueOfAnIdAndKeepsFieldsWithoutOne()
{
    const VeskXmlNode stored
        = VeskField::toXml({ line(QStringLiteral("a"), QStringLiteral("first")),
            line(QStringLiteral("a"), QStringLiteral("last")) });
    const QList<VeskField> templ { line(QStringLiteral("a"), QStringLiteral("old a")),
        line(QStringLiteral("b"), QStringLiteral("old b")) };
    const auto texts = [](const QList<VeskField> &fields) {
        return fields.at(0).getText() + QLatin1Char('/') + fields.at(1).getText();
    };
    QCOMPARE(texts(VeskField::fromXml(templ, stored)), QStringLiteral("last/old b"));
    // An element with an id but no value stores nothing: the field keeps its value.
    VeskXmlNode noValue(QString(), QString(), nullptr);
    QVERIFY(noValue.setContent(QByteArrayLiteral(
        "<fields><field id=\"a\" value=\"set\"/><field id=\"a\"/><field id=\"b\"/></fields>")));
    QCOMPARE(texts(VeskField::fromXml(templ, noValue)), QStringLiteral("set/old b"));
    QCOMPARE(texts(VeskField::fromXml(templ, VeskXmlNode(QString(), QString(), nullptr))),
        QStringLiteral("old a/old b"));
}

void tst_Host::settingsAreReadBackByAFreshStore()
{
    QTemporaryDir dir;
    QTemporaryDir other;
    VeskStandIn::setSettingsDir(dir.path());
    QVERIFY(VeskSettingsManager::getInstance()->getSettingsDir().endsWith(QLatin1Char('/')));
    VeskSettingsManagerPrivate *store = VeskSettingsManagerPrivate::settingsMgrPrivInstance;
    // Any text comes back as written: a text format of the store once lost a
    // leading U+FEFF, which made a filter named so stop being current.
    const QString odd = QChar(0xFEFF) + QStringLiteral("b\n") + QChar(0xDC00);
    const QStringList order { QStringLiteral("default"), odd };
    VeskSettingsManager::getInstance()->writeGlobalSetting(list(QStringLiteral("filters"), order));
    store->writeGlobalSetting(line(QStringLiteral("roster_filter"), odd));
    store->writeGlobalSetting(list(QStringLiteral("sorter_x"), order));
    store->removeKey(QStringLiteral("sorter_x"));

    VeskStandIn::setSettingsDir(other.path());
    VeskStandIn::setSettingsDir(dir.path()); // a fresh load from the file
    VeskSettingsManager *settings = VeskSettingsManager::getInstance();
    const QStringList fallback { QStringLiteral("unset") };
    QCOMPARE(settings->readGlobalSetting(list(QStringLiteral("filters"), fallback)).getComboBoxIds()
            + settings->readGlobalSetting(list(QStringLiteral("sorter_x"), fallback))
                  .getComboBoxIds()
            + settings->readGlobalSetting(list(QStringLiteral("sorters"), fallback))
                  .getComboBoxIds(),
        order + fallback + fallback);
    QCOMPARE(
        settings->readGlobalSetting(line(QStringLiteral("roster_filter"), QString())).getText(),
        odd);
}

QTEST_GUILESS_MAIN(tst_Host)
#include "tst_host.moc"
