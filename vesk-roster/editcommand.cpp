// edit: a filter's definition in the user's editor, stored as import
// --replace stores it.
//
// No lock is held while the editor is open: a person may take minutes, and
// every other run (the window's too) would wait for them. Instead the
// definition is exported again under the exclusive lock just before storing,
// and when it is no longer what the editor was given, another run changed the
// filter meanwhile and nothing is stored, so that its change is not lost.
#include "commands.h"
#include "commands_p.h"
#include "output.h"
#include "program.h"
#include "refusal.h"
#include "sessiontext_p.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

QString editorCommand()
{
    for (const char *variable : { "VISUAL", "EDITOR" }) {
        const QString value = QString::fromLocal8Bit(qgetenv(variable));
        if (!value.trimmed().isEmpty())
            return value;
    }
    return QStringLiteral("vi");
}

// The editor may be a command with arguments ("emacs -nw"), as shells and
// other programs take it; the file goes in as a separate argument.
void runEditor(const QString &path)
{
    const QString editor = editorCommand();
    QProcess process;
    process.setProgram(QStringLiteral("/bin/sh"));
    process.setArguments(
        { QStringLiteral("-c"), editor + QLatin1String(" \"$1\""), QStringLiteral("sh"), path });
    process.setProcessChannelMode(QProcess::ForwardedChannels);
    process.setInputChannelMode(QProcess::ForwardedInputChannel);
    process.start();
    if (!process.waitForStarted(-1))
        refuse(vtr("cannot start the editor \"%1\": %2").arg(editor, process.errorString()));
    process.waitForFinished(-1);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        refuse(vtr("the editor \"%1\" failed (exit status %2)")
                   .arg(editor)
                   .arg(process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1));
    }
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        refuse(vtr("cannot read \"%1\": %2").arg(path, file.errorString()));
    return file.readAll();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size()
        || !file.flush())
        refuse(vtr("cannot write \"%1\": %2").arg(path, file.errorString()));
}

// What export prints for the filter, under the session that is open.
QByteArray exported(VeskCommandContext &context, const QString &id)
{
    const QStringList args = context.args;
    context.args = QStringList { id };
    context.out->hold();
    QByteArray bytes;
    try {
        VeskCommands::exportFilter(context);
    } catch (...) {
        context.args = args;
        throw;
    }
    bytes = context.out->takeHeld();
    context.args = args;
    return bytes;
}

// The definition's "name" must stay the filter's: renaming is rename's, and
// import --as would quietly ignore it. Text that does not parse is left to
// the import, which says where it breaks.
void checkName(const QByteArray &text, const QString &id)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (!document.isObject())
        return;
    const QJsonValue name = document.object().value(QLatin1String("name"));
    if (!name.isUndefined() && name.toString() != id) {
        refuse(vtr("the \"name\" cannot change in edit (\"%1\" is not \"%2\"); rename the filter "
                   "with \"rename\"")
                   .arg(name.toString(), shownName(id)));
    }
}

bool onTerminal()
{
    return isatty(STDIN_FILENO) && isatty(STDERR_FILENO);
}

// Asks on the terminal, as crontab -e does; anything but yes is no.
bool askEditAgain()
{
    for (;;) {
        std::fputs(vtr("edit again? [y/n] ").toLocal8Bit().constData(), stderr);
        std::fflush(stderr);
        char answer[64];
        if (!std::fgets(answer, sizeof answer, stdin))
            return false;
        const QByteArray reply = QByteArray(answer).trimmed().toLower();
        if (reply == "y" || reply == "yes")
            return true;
        if (reply == "n" || reply == "no")
            return false;
    }
}

} // namespace

namespace VeskCommands {

void edit(VeskCommandContext &context)
{
    context.expectArgs(1, 1);
    QString id;
    QByteArray base;
    VeskRosterProgram::runInSession(context, false, [&] {
        id = typedFilterName(*context.session, context.args.at(0));
        base = exported(context, id);
    });

    QTemporaryDir dir(QDir::tempPath() + QLatin1String("/vesk-roster-edit-XXXXXX"));
    if (!dir.isValid())
        refuse(vtr("cannot make a temporary directory for the editor: %1").arg(dir.errorString()));
    const QString path = dir.filePath(QStringLiteral("filter.json"));
    writeFile(path, base);

    for (;;) {
        QByteArray text;
        try {
            runEditor(path);
            text = readFile(path);
        } catch (const VeskRefusal &refusal) {
            // Whatever the editor left is the user's: keep it when it is theirs.
            if (QFile::exists(path) && readFile(path) != base) {
                dir.setAutoRemove(false);
                refuse(vtr("%1; nothing stored, your text is kept in %2")
                           .arg(refusal.message(), path));
            }
            refuse(vtr("%1; nothing stored").arg(refusal.message()));
        }
        if (text == base) {
            context.out->print(vtr("%1: unchanged, nothing stored\n").arg(shownName(id)));
            return;
        }

        QByteArray current;
        try {
            VeskRosterProgram::runInSession(context, true, [&] {
                current = exported(context, id);
                if (current != base) {
                    refuse(vtr("the filter \"%1\" was changed by another run while it was being "
                               "edited")
                               .arg(shownName(id)));
                }
                checkName(text, id);
                context.args
                    = QStringList { path, QStringLiteral("--as"), id, QStringLiteral("--replace") };
                VeskCommands::importFilter(context);
            });
            return;
        } catch (const VeskRefusal &refusal) {
            if (!onTerminal()) {
                dir.setAutoRemove(false);
                refuse(vtr("%1; nothing stored, your text is kept in %2")
                           .arg(refusal.message(), path));
            }
            context.out->error(refusal.message());
            if (!current.isEmpty() && current != base) {
                // Editing again merges by hand into what the other run stored,
                // which is what the next save is compared with.
                const QString stored = dir.filePath(QStringLiteral("stored.json"));
                writeFile(stored, current);
                context.out->error(vtr("what is stored now is in %1").arg(stored));
                base = current;
            }
            if (!askEditAgain()) {
                dir.setAutoRemove(false);
                refuse(vtr("nothing stored, your text is kept in %1").arg(path));
            }
        }
    }
}

} // namespace VeskCommands
