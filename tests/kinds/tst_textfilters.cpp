// The display and the description filters: which entries each condition
// passes, what a new filter passes, and how configuration is walked.

#include "kindsfixture.h"

#include <veskdescriptionfilter.h>
#include <veskdisplayfilter.h>

#include <QtTest>

#include <memory>

namespace {

std::unique_ptr<VeskRosterFilter> makeFilter(const QString &kind)
{
    if (kind == QLatin1String("display"))
        return std::make_unique<VeskDisplayFilter>();
    return std::make_unique<VeskDescriptionFilter>();
}

QString textFieldOf(const QString &kind)
{
    return kind + QLatin1String("_filter_regexp");
}

} // namespace

class tst_TextFilters : public QObject
{
    Q_OBJECT

private slots:
    void init() { entries = buildRoster(); }
    void cleanup() { VeskStandIn::resetRoster(); }

    void conditionPassesEntries_data();
    void conditionPassesEntries();
    void newFilterPassesOnlyEmptyTexts_data();
    void newFilterPassesOnlyEmptyTexts();
    void unknownConditionKeepsThePreviousTest_data();
    void unknownConditionKeepsThePreviousTest();
    void emptyFieldListChangesNothing_data();
    void emptyFieldListChangesNothing();
    void lastFieldOfAnIdWinsAndOtherIdsAreIgnored_data();
    void lastFieldOfAnIdWinsAndOtherIdsAreIgnored();
    void configurationShowsTheTextAsEntered_data();
    void configurationShowsTheTextAsEntered();

private:
    QList<LabelledEntry> entries;
};

void tst_TextFilters::conditionPassesEntries_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    const QString display = QStringLiteral("display");
    QTest::newRow("display contains bob") << display << "contains"
                                          << "bob"
                                          << "contact, temporary";
    QTest::newRow("display contains nothing passes everything")
        << display << "contains"
        << ""
        << "contact, temporary, group, invalid, no account, bare";
    QTest::newRow("display contains is case-sensitive") << display << "contains"
                                                        << "Bob"
                                                        << "contact, no account";
    QTest::newRow("display contains a.b literally") << display << "contains"
                                                    << "a.b"
                                                    << "invalid";
    QTest::newRow("display contains a.* literally") << display << "contains"
                                                    << "a.*"
                                                    << "";
    QTest::newRow("display does not contain bob") << display << "does not contain"
                                                  << "bob"
                                                  << "group, invalid, no account, bare";
    QTest::newRow("display does not contain nothing passes nothing")
        << display << "does not contain"
        << ""
        << "";
    QTest::newRow("display matches bob exactly") << display << "match exactly"
                                                 << "bob"
                                                 << "temporary";
    QTest::newRow("display matches Bobby exactly") << display << "match exactly"
                                                   << "Bobby"
                                                   << "no account";
    QTest::newRow("display matches nothing exactly") << display << "match exactly"
                                                     << ""
                                                     << "bare";

    const QString description = QStringLiteral("description");
    QTest::newRow("description contains away, contacts only") << description << "contains"
                                                              << "away"
                                                              << "contact";
    QTest::newRow("description contains nothing passes every contact")
        << description << "contains"
        << ""
        << "contact, no account, bare";
    QTest::newRow("description contains is case-sensitive") << description << "contains"
                                                            << "Away"
                                                            << "";
    QTest::newRow("description does not contain away") << description << "does not contain"
                                                       << "away"
                                                       << "no account, bare";
    QTest::newRow("description does not contain nothing passes nothing")
        << description << "does not contain"
        << ""
        << "";
    QTest::newRow("description matches away exactly") << description << "match exactly"
                                                      << "away"
                                                      << "contact";
    QTest::newRow("description matches part of away exactly") << description << "match exactly"
                                                              << "awa"
                                                              << "";
    QTest::newRow("description matches nothing exactly") << description << "match exactly"
                                                         << ""
                                                         << "no account, bare";
    QTest::newRow("description is not empty, whatever the text") << description << "is not empty"
                                                                 << "zzz"
                                                                 << "contact";
}

void tst_TextFilters::conditionPassesEntries()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, text);
    QFETCH(QString, expected);

    const auto filter = makeFilter(kind);
    configure(*filter, { { QStringLiteral("is_or_not"), condition }, { textFieldOf(kind), text } });
    QCOMPARE(passing(*filter, entries), expected);
}

void tst_TextFilters::newFilterPassesOnlyEmptyTexts_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("display");

    QTest::newRow("display") << "display"
                             << "bare"
                             << "display ";
    QTest::newRow("description") << "description"
                                 << "no account, bare"
                                 << "description ";
}

void tst_TextFilters::newFilterPassesOnlyEmptyTexts()
{
    QFETCH(QString, kind);
    QFETCH(QString, expected);
    QFETCH(QString, display);

    const auto filter = makeFilter(kind);
    QCOMPARE(passing(*filter, entries), expected);
    QCOMPARE(filter->display(), display);
}

void tst_TextFilters::unknownConditionKeepsThePreviousTest_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("contained");
    QTest::addColumn<QString>("unknown");
    QTest::addColumn<QString>("expected");

    QTest::newRow("display knows no is not empty") << "display"
                                                   << "bob"
                                                   << "is not empty"
                                                   << "contact, temporary";
    QTest::newRow("display, empty condition") << "display"
                                              << "bob"
                                              << ""
                                              << "contact, temporary";
    QTest::newRow("description, condition in another case") << "description"
                                                            << "way"
                                                            << "Contains"
                                                            << "contact";
}

void tst_TextFilters::unknownConditionKeepsThePreviousTest()
{
    QFETCH(QString, kind);
    QFETCH(QString, contained);
    QFETCH(QString, unknown);
    QFETCH(QString, expected);

    const auto filter = makeFilter(kind);
    const QString conditionId = QStringLiteral("is_or_not");
    configure(
        *filter, { { conditionId, QStringLiteral("contains") }, { textFieldOf(kind), contained } });
    configure(
        *filter, { { conditionId, unknown }, { textFieldOf(kind), QStringLiteral("Bobby") } });

    QCOMPARE(passing(*filter, entries), expected);
    // What the user entered is kept and shown all the same.
    QCOMPARE(filter->getConfiguration().at(0).getSelectedId(), unknown);
    QCOMPARE(filter->display(), kind + QLatin1String(" Bobby"));
}

void tst_TextFilters::emptyFieldListChangesNothing_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("display") << "display";
    QTest::newRow("description") << "description";
}

void tst_TextFilters::emptyFieldListChangesNothing()
{
    QFETCH(QString, kind);

    const auto filter = makeFilter(kind);
    configure(*filter,
        { { QStringLiteral("is_or_not"), QStringLiteral("does not contain") },
            { textFieldOf(kind), QStringLiteral("o") } });
    const QString before
        = passing(*filter, entries) + QLatin1Char('/') + describe(filter->getConfiguration());
    filter->setConfiguration({});
    QCOMPARE(passing(*filter, entries) + QLatin1Char('/') + describe(filter->getConfiguration()),
        before);
}

void tst_TextFilters::lastFieldOfAnIdWinsAndOtherIdsAreIgnored_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("expected");
    QTest::newRow("display") << "display"
                             << "invalid";
    QTest::newRow("description") << "description"
                                 << "contact";
}

void tst_TextFilters::lastFieldOfAnIdWinsAndOtherIdsAreIgnored()
{
    QFETCH(QString, kind);
    QFETCH(QString, expected);

    const auto filter = makeFilter(kind);
    const QString conditionId = QStringLiteral("is_or_not");
    const QStringList conditions { QStringLiteral("match exactly"), QStringLiteral("contains") };
    auto condition = [&](const QString &id) {
        return VeskField::comboBox(QString(), conditionId, conditions, conditions, id, QString());
    };
    auto line = [](const QString &id, const QString &text) {
        return VeskField::lineEdit(QString(), id, text, 32767, QString());
    };
    filter->setConfiguration({
        condition(conditions.at(0)),
        line(textFieldOf(kind), QStringLiteral("x")),
        condition(conditions.at(1)),
        line(textFieldOf(kind), QStringLiteral("a")),
        line(QStringLiteral("other"), QStringLiteral("Bobby")),
    });
    QCOMPARE(passing(*filter, entries), expected);
}

void tst_TextFilters::configurationShowsTheTextAsEntered_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("conditions");
    QTest::newRow("display") << "display"
                             << "contains,does not contain,match exactly";
    QTest::newRow("description") << "description"
                                 << "contains,does not contain,match exactly,is not empty";
}

void tst_TextFilters::configurationShowsTheTextAsEntered()
{
    QFETCH(QString, kind);
    QFETCH(QString, conditions);

    const auto filter = makeFilter(kind);
    const QString text = QStringLiteral("a.b\\ (?!x)");
    configure(*filter,
        { { QStringLiteral("is_or_not"), QStringLiteral("contains") },
            { textFieldOf(kind), text } });
    QCOMPARE(describe(filter->getConfiguration()),
        QStringLiteral("is_or_not=[%1|%1] contains; %2=%3")
            .arg(conditions, textFieldOf(kind), text));
    QCOMPARE(filter->display(), kind + QLatin1Char(' ') + text);
}

QTEST_GUILESS_MAIN(tst_TextFilters)
#include "tst_textfilters.moc"
