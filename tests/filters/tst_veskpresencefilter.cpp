// The presence filter: its items, its configuration walk and its labels after
// a stack file round trip (which entries it passes is in the leaf-filter table).

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
