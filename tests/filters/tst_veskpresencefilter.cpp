// The presence filter: its items, its test by entry kind, its text, and its
// settings after a stack file round trip.

#include <veskfiltertestenv.h>

#include <standin/veskstandin.h>
#include <veskfield.h>
#include <veskpresencefilter.h>
#include <veskrosterfiltersstack.h>

#include <QtTest>

namespace {

using VeskStandIn::makePresence;

// Every field as id, item ids, item labels and selected id.
QString describe(const QList<VeskField> &fields)
{
    QStringList parts;
    for (const VeskField &field : fields)
        parts.append(field.getId() + QLatin1String(": [")
            + field.getComboBoxIds().join(QLatin1Char(',')) + QLatin1String("] [")
            + field.getComboBoxLabels().join(QLatin1Char(',')) + QLatin1String("] ")
            + field.getSelectedId());
    return parts.join(QLatin1String(" | "));
}

void configure(VeskRosterFilter *filter, const QString &condition, const QString &presenceId)
{
    QList<VeskField> fields = filter->getConfiguration();
    fields[0].setSelectedId(condition);
    fields[1].setSelectedId(presenceId);
    filter->setConfiguration(fields);
}

VeskField combo(const QString &id, const QString &selected, const QString &label)
{
    return VeskField::comboBox(QString(), id, { selected }, { label }, selected, QString());
}

} // namespace

class tst_VeskPresenceFilter : public QObject
{
    Q_OBJECT

private slots:
    void init() { env.reset(new VeskFilterTestEnv); }
    void cleanup() { env.reset(); }

    void itemsAreUniqueByIdWithTheFirstProtocolsLabelAndPlace();
    void withoutProtocolsThereAreNoItemsButTheSelectionStays();
    void filterDecidesByEntryKind_data();
    void filterDecidesByEntryKind();
    void newFilterPassesOnlyAnEmptyPresenceAndShowsTwoBlanks();
    void displayShowsConditionAndPresenceLabels();
    void setConfigurationTakesTheLastFieldOfEachKind();
    void setConfigurationWithAnEmptyListChangesNothing();
    void anythingButExactlyIsMeansIsNot_data();
    void anythingButExactlyIsMeansIsNot();
    void labelsComeFromTheCurrentItemsAfterReadingAFile();
    void vanishedPresenceIsStillSelectedAndCompared();

private:
    QScopedPointer<VeskFilterTestEnv> env;
};

void tst_VeskPresenceFilter::itemsAreUniqueByIdWithTheFirstProtocolsLabelAndPlace()
{
    VeskStandIn::addProtocol(QStringLiteral("first"),
        { makePresence(QStringLiteral("online"), QStringLiteral("Online")),
            makePresence(QStringLiteral("away"), QStringLiteral("Away")) });
    VeskStandIn::addProtocol(QStringLiteral("empty"), {});
    VeskStandIn::addProtocol(QStringLiteral("second"),
        { makePresence(QStringLiteral("dnd"), QStringLiteral("Busy")),
            makePresence(QStringLiteral("away"), QStringLiteral("Gone")),
            makePresence(QStringLiteral("Online"), QStringLiteral("ONLINE")),
            makePresence(QStringLiteral("dnd"), QStringLiteral("Busy again")) });
    VeskPresenceFilter filter;
    configure(&filter, QStringLiteral("is not"), QStringLiteral("away"));
    QCOMPARE(describe(filter.getConfiguration()),
        QStringLiteral("is_or_not: [is,is not] [is,is not] is not | "
                       "presence_filter_presence: [online,away,dnd,Online] "
                       "[Online,Away,Busy,ONLINE] away"));
}

void tst_VeskPresenceFilter::withoutProtocolsThereAreNoItemsButTheSelectionStays()
{
    VeskPresenceFilter filter;
    filter.setConfiguration({ combo(QStringLiteral("presence_filter_presence"),
        QStringLiteral("gone"), QStringLiteral("Gone")) });
    QCOMPARE(describe(filter.getConfiguration()),
        QStringLiteral("is_or_not: [is,is not] [is,is not] is | "
                       "presence_filter_presence: [] [] gone"));
}

void tst_VeskPresenceFilter::filterDecidesByEntryKind_data()
{
    QTest::addColumn<QString>("condition");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("entryPresence");
    QTest::addColumn<bool>("passes");

    const QString is = QStringLiteral("is");
    const QString isNot = QStringLiteral("is not");
    const QString away = QStringLiteral("away");
    const QString online = QStringLiteral("online");
    const int contact = VeskBuddy::TypeContact;
    const int temporary = VeskBuddy::TypeTemporary;
    QTest::newRow("is: contact with it") << is << contact << away << true;
    QTest::newRow("is: contact with another") << is << contact << online << false;
    QTest::newRow("is: contact differing in case")
        << is << contact << QStringLiteral("Away") << false;
    QTest::newRow("is: temporary with it") << is << temporary << away << true;
    QTest::newRow("is: temporary with another") << is << temporary << online << false;
    QTest::newRow("is: group") << is << int(VeskBuddy::TypeGroup) << QString() << false;
    QTest::newRow("is: kind 0") << is << 0 << QString() << false;
    QTest::newRow("is not: contact with it") << isNot << contact << away << false;
    QTest::newRow("is not: contact with another") << isNot << contact << online << true;
    QTest::newRow("is not: temporary with it") << isNot << temporary << away << false;
    QTest::newRow("is not: temporary with another") << isNot << temporary << online << true;
    QTest::newRow("is not: group") << isNot << int(VeskBuddy::TypeGroup) << QString() << true;
    QTest::newRow("is not: kind 7") << isNot << 7 << QString() << true;
}

void tst_VeskPresenceFilter::filterDecidesByEntryKind()
{
    QFETCH(QString, condition);
    QFETCH(int, kind);
    QFETCH(QString, entryPresence);
    QFETCH(bool, passes);

    VeskStandIn::ContactInfo info;
    info.presence = makePresence(entryPresence, QStringLiteral("label"));
    VeskBuddy entry;
    if (kind == VeskBuddy::TypeContact)
        entry = VeskStandIn::addContact(info);
    else if (kind == VeskBuddy::TypeTemporary)
        entry = VeskStandIn::addTemporary(info);
    else if (kind == VeskBuddy::TypeGroup)
        entry = VeskStandIn::addGroup(QStringLiteral("away"), 0);
    else
        entry = VeskStandIn::addEntry(kind, QStringLiteral("away"));

    VeskPresenceFilter filter;
    configure(&filter, condition, QStringLiteral("away"));
    QCOMPARE(filter.filter(entry), passes);
}

void tst_VeskPresenceFilter::newFilterPassesOnlyAnEmptyPresenceAndShowsTwoBlanks()
{
    VeskStandIn::ContactInfo none;
    VeskStandIn::ContactInfo online;
    online.presence = makePresence(QStringLiteral("online"));
    VeskPresenceFilter filter;
    const QVector<bool> answers { filter.filter(VeskStandIn::addContact(none)),
        filter.filter(VeskStandIn::addTemporary(none)),
        filter.filter(VeskStandIn::addContact(online)),
        filter.filter(VeskStandIn::addGroup(QString(), 0)) };
    QCOMPARE(answers, (QVector<bool> { true, true, false, false }));
    QCOMPARE(filter.display(), QStringLiteral("presence  "));
}

void tst_VeskPresenceFilter::displayShowsConditionAndPresenceLabels()
{
    VeskStandIn::addProtocol(QStringLiteral("p"),
        { makePresence(QStringLiteral("dnd"), QStringLiteral("Do %1 disturb")) });
    VeskPresenceFilter filter;
    configure(&filter, QStringLiteral("is not"), QStringLiteral("dnd"));
    QCOMPARE(filter.display(), QStringLiteral("presence is not Do %1 disturb"));
}

void tst_VeskPresenceFilter::setConfigurationTakesTheLastFieldOfEachKind()
{
    VeskPresenceFilter filter;
    filter.setConfiguration({
        combo(QStringLiteral("is_or_not"), QStringLiteral("is"), QStringLiteral("is")),
        combo(QStringLiteral("presence_filter_presence"), QStringLiteral("away"),
            QStringLiteral("Away")),
        combo(QStringLiteral("is_or_not"), QStringLiteral("is not"), QStringLiteral("isn't")),
        // Any other field id is taken as the presence.
        combo(QStringLiteral("something else"), QStringLiteral("dnd"), QStringLiteral("Busy")),
    });
    QCOMPARE(filter.display(), QStringLiteral("presence isn't Busy"));
    QCOMPARE(filter.getConfiguration().at(1).getSelectedId(), QStringLiteral("dnd"));
}

void tst_VeskPresenceFilter::setConfigurationWithAnEmptyListChangesNothing()
{
    VeskStandIn::addProtocol(
        QStringLiteral("p"), { makePresence(QStringLiteral("away"), QStringLiteral("Away")) });
    VeskPresenceFilter filter;
    configure(&filter, QStringLiteral("is not"), QStringLiteral("away"));
    const QString before = describe(filter.getConfiguration()) + filter.display();
    filter.setConfiguration({});
    QCOMPARE(describe(filter.getConfiguration()) + filter.display(), before);
}

void tst_VeskPresenceFilter::anythingButExactlyIsMeansIsNot_data()
{
    QTest::addColumn<QString>("selected");
    QTest::newRow("empty") << QString();
    QTest::newRow("upper case") << QStringLiteral("IS");
    QTest::newRow("trailing blank") << QStringLiteral("is ");
    QTest::newRow("other") << QStringLiteral("maybe");
}

void tst_VeskPresenceFilter::anythingButExactlyIsMeansIsNot()
{
    QFETCH(QString, selected);
    VeskPresenceFilter filter;
    filter.setConfiguration({ combo(QStringLiteral("is_or_not"), selected, QString()) });
    QCOMPARE(filter.getConfiguration().first().getSelectedId(), QStringLiteral("is not"));
    QVERIFY(filter.filter(VeskStandIn::addGroup(QString(), 0)));
}

void tst_VeskPresenceFilter::labelsComeFromTheCurrentItemsAfterReadingAFile()
{
    VeskStandIn::addProtocol(
        QStringLiteral("p"), { makePresence(QStringLiteral("away"), QStringLiteral("Away")) });
    {
        VeskRosterFiltersStack stack(QStringLiteral("s"), VeskRosterFilter::RosterFilterAnd);
        auto *filter = new VeskPresenceFilter;
        configure(filter, QStringLiteral("is not"), QStringLiteral("away"));
        stack.appendFilter(filter);
        stack.writeFilterSettings();
    }
    VeskStandIn::resetRoster();
    VeskStandIn::addProtocol(
        QStringLiteral("p"), { makePresence(QStringLiteral("away"), QStringLiteral("Weg")) });

    VeskRosterFiltersStack reread(QStringLiteral("s"), VeskRosterFilter::RosterFilterDefault);
    QCOMPARE(reread.display(), QStringLiteral("(presence is not Weg)"));
}

void tst_VeskPresenceFilter::vanishedPresenceIsStillSelectedAndCompared()
{
    VeskStandIn::addProtocol(
        QStringLiteral("p"), { makePresence(QStringLiteral("old"), QStringLiteral("Old")) });
    VeskPresenceFilter filter;
    configure(&filter, QStringLiteral("is"), QStringLiteral("old"));
    VeskStandIn::resetRoster();
    VeskStandIn::ContactInfo info;
    info.presence = makePresence(QStringLiteral("old"));

    QCOMPARE(filter.getConfiguration().at(1).getSelectedId(), QStringLiteral("old"));
    QVERIFY(filter.filter(VeskStandIn::addContact(info)));
}

QTEST_GUILESS_MAIN(tst_VeskPresenceFilter)
#include "tst_veskpresencefilter.moc"
