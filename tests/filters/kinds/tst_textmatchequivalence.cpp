// The display and the description filters answer without a regular
// expression; their answers must be exactly those of the patterns the
// conditions stand for (escaped text, case-sensitive, whole-string match).
// This checks them against QRegExp itself on a generated set of texts and
// names full of what a regular expression treats specially.

#include "kindsfixture.h"

#include <QRegExp>
#include <QtTest>

#include <random>

namespace {

// Pieces that regular expressions, escaping or UTF-16 make special.
QStringList pieces()
{
    QStringList pieces { QString(QChar(0)), QString(QChar(0xD83D)), QString(QChar(0xDE42)),
        QString(QChar(0xFFFF)) };
    for (const char *piece : { "a", "b", "A", "ab", ".", "*", "\\", "\\\\", "(", ")", "[", "]", "?",
             "+", "^", "$", "{", "}", "|", "-", "(?!", ".*", "\\d", "\\1", "{2}", "[^a]", "\n",
             "\r\n", "\t", " ", "é", "É", "東", "🙂", "😀" })
        pieces << QString::fromUtf8(piece);
    return pieces;
}

QString randomText(std::mt19937 &random, const QStringList &from, int maxPieces)
{
    QString text;
    const int count = std::uniform_int_distribution<int>(0, maxPieces)(random);
    for (int i = 0; i < count; ++i)
        text += from.at(std::uniform_int_distribution<int>(0, from.size() - 1)(random));
    return text;
}

// A failure message must show the text whatever it holds: NULs, lone
// surrogates and newlines included.
QString codeUnits(const QString &text)
{
    QStringList units;
    for (const QChar c : text)
        units << QString::number(c.unicode(), 16);
    return QLatin1Char('[') + units.join(QLatin1Char(' ')) + QLatin1Char(']');
}

} // namespace

class tst_TextMatchEquivalence : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { VeskStandIn::resetRoster(); }

    void filterAnswersAsTheRegularExpression_data();
    void filterAnswersAsTheRegularExpression();

private:
    QStringList texts;
    QStringList names;
    QList<VeskBuddy> contacts; // one per name, named and described by it
};

void tst_TextMatchEquivalence::initTestCase()
{
    std::mt19937 random(20261123);
    const QStringList from = pieces();

    texts << QString() << from;
    while (texts.size() < 300)
        texts << randomText(random, from, 4);

    // Random names rarely contain a given text, so most names are made from
    // the texts: the text itself, the text inside other text, and the text cut
    // short by one code unit, which splits surrogate pairs.
    names << QString();
    for (const QString &text : qAsConst(texts)) {
        names << text << randomText(random, from, 2) + text + randomText(random, from, 2);
        if (!text.isEmpty())
            names << text.left(text.size() - 1);
    }
    while (names.size() < 1000)
        names << randomText(random, from, 6);
    // Texts at every place of names longer than one block of eight places,
    // and names too long for the short-name scan.
    for (int i = 1; i <= 12; ++i) {
        const QString &text = texts.at(texts.size() - i);
        for (int before = 0; before < 18; ++before)
            names << QString(before, QLatin1Char('a')) + text + QString(3, QLatin1Char('b'));
        names << QString(300, QLatin1Char('a')) + text;
    }
    // A place where only the first and the last code units of the text
    // match, just before the text itself.
    int decoys = 0;
    for (const QString &text : qAsConst(texts)) {
        if (text.size() < 3 || text.size() > 7 || ++decoys > 40)
            continue;
        QString decoy = text;
        decoy[1] = QChar(decoy.at(1).unicode() ^ 1);
        names << decoy + text + QString(8, QLatin1Char('b'));
    }

    VeskStandIn::resetRoster();
    for (const QString &name : qAsConst(names)) {
        VeskStandIn::ContactInfo info;
        info.display = name;
        info.presence = VeskStandIn::makePresence(QStringLiteral("online"), QString(), name);
        contacts << VeskStandIn::addContact(info);
    }
    qInfo("%d texts x %d names", int(texts.size()), int(names.size()));
}

void tst_TextMatchEquivalence::filterAnswersAsTheRegularExpression_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("condition"); // empty: a new filter, never configured
    QTest::addColumn<QString>("pattern"); // %1 stands for the escaped text
    QTest::addColumn<bool>("negated");
    const auto row
        = [](const char *kind, const char *condition, const char *pattern, bool negated) {
              QTest::addRow("%s %s", kind, *condition ? condition : "new filter")
                  << QString::fromLatin1(kind) << QString::fromLatin1(condition)
                  << QString::fromLatin1(pattern) << negated;
          };
    for (const char *kind : { "display", "description" }) {
        row(kind, "", "", false);
        row(kind, "contains", ".*%1.*", false);
        row(kind, "match exactly", "%1", false);
        row(kind, "does not contain", ".*%1.*", true); // what contains does not pass
    }
    row("description", "is not empty", ".+", false);
}

void tst_TextMatchEquivalence::filterAnswersAsTheRegularExpression()
{
    QFETCH(QString, kind);
    QFETCH(QString, condition);
    QFETCH(QString, pattern);
    QFETCH(bool, negated);
    const bool usesText = !condition.isEmpty() && condition != QLatin1String("is not empty");
    const QStringList tried = usesText ? texts : QStringList { QStringLiteral("a.b") };

    QStringList mismatches;
    for (const QString &text : tried) {
        const auto filter = makeFilter(kind);
        if (!condition.isEmpty())
            configure(*filter,
                { { QStringLiteral("is_or_not"), condition }, { valueFieldOf(kind), text } });
        QRegExp expression(
            pattern.contains(QLatin1String("%1")) ? pattern.arg(QRegExp::escape(text)) : pattern,
            Qt::CaseSensitive, QRegExp::RegExp);
        QVERIFY(expression.isValid());

        for (int i = 0; i < names.size(); ++i) {
            const bool expected = expression.exactMatch(names.at(i)) != negated;
            if (filter->filter(contacts.at(i)) != expected && mismatches.size() < 10) {
                mismatches << QStringLiteral("text %1, name %2: expected %3")
                                  .arg(codeUnits(text), codeUnits(names.at(i)),
                                      expected ? QStringLiteral("pass")
                                               : QStringLiteral("no pass"));
            }
        }
    }
    QVERIFY2(mismatches.isEmpty(), qPrintable(mismatches.join(QLatin1Char('\n'))));
}

QTEST_GUILESS_MAIN(tst_TextMatchEquivalence)
#include "tst_textmatchequivalence.moc"
