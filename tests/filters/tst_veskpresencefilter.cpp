// The presence filter: its items, its test by entry kind, its text, and its
// labels after a stack file round trip.

#include <veskfiltertestenv.h>
#include <veskfiltertree.h>

#include <veskpresencefilter.h>

#include <QtTest>

using namespace VeskFilterTree;
using VeskStandIn::makePresence;

namespace {

const QString conditionId = QStringLiteral("is_or_not");
const QString presenceId = QStringLiteral("presence_filter_presence");

VeskField combo(const QString &id, const QString &selected, const QString &label = QString())
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
    void filterDecidesByEntryKind_data();
    void filterDecidesByEntryKind();
    void configurationTakesTheLastFieldOfEachKindAndOnlyExactlyIsMeansIs();
    void labelsComeFromTheCurrentItemsAfterReadingAFile();

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
    configure(filter,
        { { conditionId, QStringLiteral("is not") }, { presenceId, QStringLiteral("away") } });
    QCOMPARE(describe(filter.getConfiguration()),
        QStringLiteral("is_or_not=[is,is not|is,is not] is not; presence_filter_presence="
                       "[online,away,dnd,Online|Online,Away,Busy,ONLINE] away"));
    QCOMPARE(filter.display(), QStringLiteral("presence is not Away"));
}

void tst_VeskPresenceFilter::filterDecidesByEntryKind_data()
{
    QTest::addColumn<QString>("condition"); // empty: a new filter, which looks for ""
    QTest::addColumn<QString>("expected"); // the entries passed
    QTest::newRow("is away") << "is"
                             << "contact away, temporary away";
    QTest::newRow("is not away") << "is not"
                                 << "contact Away, contact online, temporary online, group, kind "
                                    "7, contact without presence";
    QTest::newRow("new filter") << ""
                                << "contact without presence";
}

void tst_VeskPresenceFilter::filterDecidesByEntryKind()
{
    QFETCH(QString, condition);
    const auto contact = [](const QString &presence) {
        VeskStandIn::ContactInfo info;
        info.presence = makePresence(presence);
        return info;
    };
    const QList<QPair<QString, VeskBuddy>> entries {
        { QStringLiteral("contact away"),
            VeskStandIn::addContact(contact(QStringLiteral("away"))) },
        { QStringLiteral("contact Away"),
            VeskStandIn::addContact(contact(QStringLiteral("Away"))) },
        { QStringLiteral("contact online"),
            VeskStandIn::addContact(contact(QStringLiteral("online"))) },
        { QStringLiteral("temporary away"),
            VeskStandIn::addTemporary(contact(QStringLiteral("away"))) },
        { QStringLiteral("temporary online"),
            VeskStandIn::addTemporary(contact(QStringLiteral("online"))) },
        { QStringLiteral("group"), VeskStandIn::addGroup(QStringLiteral("away"), 0) },
        { QStringLiteral("kind 7"), VeskStandIn::addEntry(7, QStringLiteral("away")) },
        { QStringLiteral("contact without presence"), VeskStandIn::addContact({}) },
    };
    VeskPresenceFilter filter;
    if (!condition.isEmpty())
        configure(filter, { { conditionId, condition }, { presenceId, QStringLiteral("away") } });
    QStringList passed;
    for (const auto &entry : entries) {
        if (filter.filter(entry.second))
            passed << entry.first;
    }
    QTEST(passed.join(QStringLiteral(", ")), "expected");
}

void tst_VeskPresenceFilter::configurationTakesTheLastFieldOfEachKindAndOnlyExactlyIsMeansIs()
{
    VeskPresenceFilter filter;
    filter.setConfiguration({ combo(conditionId, QStringLiteral("is")),
        combo(presenceId, QStringLiteral("away"), QStringLiteral("Away")),
        combo(conditionId, QStringLiteral("IS"), QStringLiteral("isn't")),
        // Any other field id is taken as the presence.
        combo(QStringLiteral("something else"), QStringLiteral("dnd"), QStringLiteral("Busy")) });
    const QString configured = describe(filter.getConfiguration()) + filter.display();
    filter.setConfiguration({});
    QCOMPARE(describe(filter.getConfiguration()) + filter.display(), configured);
    QCOMPARE(configured,
        QStringLiteral("is_or_not=[is,is not|is,is not] is not; "
                       "presence_filter_presence=[|] dndpresence isn't Busy"));
}

void tst_VeskPresenceFilter::labelsComeFromTheCurrentItemsAfterReadingAFile()
{
    VeskStandIn::addProtocol(
        QStringLiteral("p"), { makePresence(QStringLiteral("away"), QStringLiteral("Away")) });
    {
        VeskRosterFiltersStack stack(QStringLiteral("s"), VeskRosterFilter::RosterFilterAnd);
        auto *filter = new VeskPresenceFilter;
        configure(*filter,
            { { conditionId, QStringLiteral("is not") }, { presenceId, QStringLiteral("away") } });
        stack.appendFilter(filter);
        stack.writeFilterSettings();
    }
    VeskStandIn::resetRoster();
    VeskStandIn::addProtocol(
        QStringLiteral("p"), { makePresence(QStringLiteral("away"), QStringLiteral("Weg")) });
    VeskRosterFiltersStack reread(QStringLiteral("s"), VeskRosterFilter::RosterFilterDefault);
    QCOMPARE(reread.display(), QStringLiteral("(presence is not Weg)"));
}

QTEST_GUILESS_MAIN(tst_VeskPresenceFilter)
#include "tst_veskpresencefilter.moc"
