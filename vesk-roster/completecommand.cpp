// complete: the candidates the shell completion offers, so that the
// completion script stays a few lines and never learns the commands, the
// kinds or the settings directory's layout.
//
// The script hands over the command line up to the cursor as one text. It is
// split here as the shell splits it (blanks, quotes, backslashes); candidates
// for the last word are printed one a line, quoted for the shell, and cut to
// what the shell replaces: the text after the last word-break character
// (--breaks, the shell's COMP_WORDBREAKS), or after an open quote.
#include "commands.h"
#include "commands_p.h"
#include "filterbuilder.h"
#include "librarysession.h"
#include "output.h"
#include "rosterfile.h"

#include <veskrosterfilter.h>
#include <veskrosterfiltersmanager.h>
#include <veskrostersortersmanager.h>
#include <veskstandin.h>

#include <QFile>

#include <memory>

namespace {

const QString defaultId = QStringLiteral("default");

// The line as the shell reads it.
struct ShellLine
{
    QStringList words; // unquoted; the last is the word being completed
    QString rawPrefix; // what the shell keeps of the last word (before the break or quote)
    int prefixLength = 0; // the unquoted length of rawPrefix, for an open quote
    QChar openQuote; // null unless the last word ends inside quotes
};

ShellLine split(const QString &line, const QString &breaks)
{
    ShellLine result;
    QString word;
    bool inWord = false;
    int wordStart = 0;
    int replaceStart = 0;
    QChar quote;
    for (int i = 0; i < line.size(); ++i) {
        const QChar c = line.at(i);
        if (quote.isNull() && (c == QLatin1Char(' ') || c == QLatin1Char('\t'))) {
            if (inWord)
                result.words.append(word);
            word.clear();
            inWord = false;
            wordStart = replaceStart = i + 1;
            continue;
        }
        inWord = true;
        if (!quote.isNull()) {
            if (c == quote) {
                quote = QChar();
            } else if (quote == QLatin1Char('"') && c == QLatin1Char('\\') && i + 1 < line.size()
                && QStringLiteral("$`\"\\").contains(line.at(i + 1))) {
                word += line.at(++i);
            } else {
                word += c;
            }
        } else if (c == QLatin1Char('\\')) {
            if (i + 1 < line.size())
                word += line.at(++i);
        } else if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            quote = c;
            result.prefixLength = word.size();
            replaceStart = i + 1;
        } else {
            word += c;
            if (breaks.contains(c))
                replaceStart = i + 1;
        }
    }
    result.words.append(word);
    result.openQuote = quote;
    result.rawPrefix = line.mid(wordStart, replaceStart - wordStart);
    return result;
}

QString shellEscaped(const QString &text)
{
    static const QString special = QStringLiteral(" \t\"'\\$`&|;<>()*?[]#!{}~");
    QString escaped;
    for (const QChar c : text) {
        if (special.contains(c))
            escaped += QLatin1Char('\\');
        escaped += c;
    }
    return escaped;
}

bool hasControl(const QString &text)
{
    for (const QChar c : text) {
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format
            || c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph)
            return true;
    }
    return false;
}

// Each candidate that extends the last word, as the shell must insert it.
QStringList shellCandidates(const ShellLine &line, const QStringList &candidates)
{
    const QString &current = line.words.constLast();
    QStringList shown;
    for (const QString &candidate : candidates) {
        if (!candidate.startsWith(current) || hasControl(candidate) || shown.contains(candidate))
            continue;
        QString text;
        if (line.openQuote == QLatin1Char('\'')) {
            if (candidate.contains(QLatin1Char('\'')))
                continue;
            text = candidate.mid(line.prefixLength);
        } else if (line.openQuote == QLatin1Char('"')) {
            for (const QChar c : candidate.mid(line.prefixLength)) {
                if (QStringLiteral("$`\"\\").contains(c))
                    text += QLatin1Char('\\');
                text += c;
            }
        } else {
            const QString escaped = shellEscaped(candidate);
            if (!escaped.startsWith(line.rawPrefix))
                continue;
            text = escaped.mid(line.rawPrefix.size());
        }
        shown.append(text);
    }
    return shown;
}

QStringList listedCommands()
{
    QStringList names;
    for (const VeskCommand &command : VeskCommands::all()) {
        if (command.summary)
            names.append(QString::fromUtf8(command.name));
    }
    return names;
}

// The settings directory and roster a completed command would run on. Any
// failure (no directory yet, a lock held too long) completes nothing.
class Settings
{
public:
    Settings(const QString &settingsDir, const QString &rosterFile)
    {
        QByteArray document = VeskRosterFile::sampleRoster();
        if (!rosterFile.isEmpty() && rosterFile != QLatin1String("-")) {
            QFile file(rosterFile);
            document = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
        QString error;
        QString dir = settingsDir;
        if (dir.isEmpty())
            dir = VeskLibrarySession::defaultSettingsDir(&error);
        if (!dir.isEmpty() && VeskRosterFile::load(document, &error))
            session.open(dir, VeskLibrarySession::ReadOnly, &error, 1000);
    }
    ~Settings()
    {
        session.close();
        VeskStandIn::resetRoster();
    }

    QStringList filterNames(bool withDefault) const
    {
        QStringList names = session.isOpen() ? session.filters()->getFilterNames() : QStringList();
        if (!withDefault)
            names.removeAll(defaultId);
        return names;
    }
    QStringList methods() const
    {
        return session.isOpen() ? session.sorters()->getSorters() : QStringList();
    }
    QStringList comparators() const
    {
        return session.isOpen() ? session.sorters()->getAvailableSorters() : QStringList();
    }
    QStringList kinds() const
    {
        if (!session.isOpen())
            return {};
        return VeskFilterBuilder(session.filters(), [](const QString &) {}).kinds();
    }
    QList<VeskField> fields(const QString &kind) const
    {
        if (!session.isOpen())
            return {};
        std::unique_ptr<VeskRosterFilter> filter(
            session.filters()->createFilter(kind, VeskRosterFilter::RosterFilterDefault));
        return filter ? filter->getConfiguration() : QList<VeskField>();
    }

private:
    VeskLibrarySession session;
};

// After "new NAME and|or" or "add NAME": kinds, and after a kind its fields
// (FIELD=) and a combo box's values (FIELD=VALUE).
QStringList conditionCandidates(
    const Settings &settings, const QStringList &before, const QString &current)
{
    const QStringList kinds = settings.kinds();
    QString kind;
    for (const QString &word : before) {
        if (kinds.contains(word))
            kind = word;
    }
    const int equals = current.indexOf(QLatin1Char('='));
    QStringList candidates;
    const QList<VeskField> fields = kind.isEmpty() ? QList<VeskField>() : settings.fields(kind);
    if (equals >= 0) {
        const QString id = current.left(equals);
        for (const VeskField &field : fields) {
            if (field.getId() != id || field.getKind() != VeskField::ComboBox)
                continue;
            const QStringList items = field.getComboBoxIds();
            for (const QString &item : items)
                candidates.append(id + QLatin1Char('=') + item);
        }
        return candidates;
    }
    for (const VeskField &field : fields)
        candidates.append(field.getId() + QLatin1Char('='));
    return candidates + kinds;
}

QStringList candidates(const QStringList &words)
{
    const QString &current = words.constLast();
    const int last = words.size() - 1;
    QString settingsDir;
    QString rosterFile;
    int i = 0;
    for (;
         i < last && words.at(i).startsWith(QLatin1Char('-')) && words.at(i) != QLatin1String("-");
         ++i) {
        const QString &word = words.at(i);
        if (word == QLatin1String("--settings") || word == QLatin1String("--roster")) {
            if (i + 1 == last)
                return {}; // a file or directory: the shell's own completion
            (word == QLatin1String("--settings") ? settingsDir : rosterFile) = words.at(++i);
        } else if (word.startsWith(QLatin1String("--settings="))) {
            settingsDir = word.mid(11);
        } else if (word.startsWith(QLatin1String("--roster="))) {
            rosterFile = word.mid(9);
        }
    }
    if (i == last) {
        if (current.startsWith(QLatin1Char('-'))) {
            return { QStringLiteral("--settings"), QStringLiteral("--roster"),
                QStringLiteral("--json"), QStringLiteral("--help"), QStringLiteral("--version") };
        }
        return listedCommands();
    }

    const QString command = words.at(i);
    const QStringList args = words.mid(i + 1, last - i - 1);
    const int k = args.size();
    const auto is = [&command](const char *name) {
        return command == QLatin1String(name);
    };
    if (is("help"))
        return k == 0 ? listedCommands() : QStringList();
    if (is("show") || is("filters") || is("kinds") || is("sorters"))
        return { QStringLiteral("--json") };
    if (is("generate"))
        return { QStringLiteral("--seed") };
    if (is("import")) {
        if (current.startsWith(QLatin1Char('-')))
            return { QStringLiteral("--as"), QStringLiteral("--replace") };
        if (k == 0 || args.constLast() != QLatin1String("--as"))
            return {}; // a file
    }

    const Settings settings(settingsDir, rosterFile);
    if (is("import"))
        return settings.filterNames(false);
    if (is("use"))
        return k == 0 ? settings.filterNames(true) : QStringList();
    if (is("remove") || is("export") || is("edit") || is("up") || is("down") || is("rename")
        || is("drop"))
        return k == 0 ? settings.filterNames(false) : QStringList();
    if (is("advanced")) {
        if (k == 0)
            return settings.filterNames(false);
        return k == 1 ? QStringList { QStringLiteral("on"), QStringLiteral("off") } : QStringList();
    }
    const QStringList joins = { QStringLiteral("and"), QStringLiteral("or") };
    if (is("new")) {
        if (k == 1)
            return joins;
        return k >= 2 ? conditionCandidates(settings, args.mid(2), current) : QStringList();
    }
    if (is("add")) {
        if (k == 0)
            return settings.filterNames(false);
        if (k >= 2 && args.at(1) == QLatin1String("stack_filter")) {
            if (k == 2)
                return joins;
            return conditionCandidates(settings, args.mid(3), current);
        }
        QStringList found = conditionCandidates(settings, args.mid(1), current);
        if (k == 1)
            found.append(QStringLiteral("stack_filter"));
        return found;
    }
    if (is("sort") || is("sorter-remove"))
        return k == 0 ? settings.methods() : QStringList();
    if (is("sorter-default")) {
        return k == 0 ? settings.methods() + QStringList { QStringLiteral("--none") }
                      : QStringList();
    }
    if (is("sorter")) {
        if (k == 0)
            return settings.methods();
        QStringList found;
        const QStringList ids = settings.comparators();
        for (const QString &id : ids) {
            found.append(id);
            if (current.contains(QLatin1Char(':'))) {
                found.append(id + QLatin1String(":asc"));
                found.append(id + QLatin1String(":desc"));
            }
        }
        return found;
    }
    return {};
}

} // namespace

namespace VeskCommands {

void complete(VeskCommandContext &context)
{
    QStringList args = context.args;
    QString breaks;
    if (args.size() >= 2 && args.at(0) == QLatin1String("--breaks")) {
        breaks = args.at(1);
        args = args.mid(2);
    }
    context.args = args;
    context.expectArgs(1, 1);
    // The words after the program's name: its own may be a path with blanks.
    ShellLine line = split(args.at(0), breaks);
    if (line.words.size() < 2)
        return;
    line.words.removeFirst();
    const QStringList shown = shellCandidates(line, candidates(line.words));
    for (const QString &candidate : shown)
        context.out->print(candidate + QLatin1Char('\n'));
}

} // namespace VeskCommands
