#include "output.h"

#include "inerttext.h"
#include "sessiontext_p.h"
#include "texttable.h"

#include <QStringList>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {
void write(FILE *stream, const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
    std::fflush(stream);
}

QString escapedLines(const QString &text)
{
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = VeskInertText::escaped(line);
    return lines.join(QLatin1Char('\n'));
}
} // namespace

VeskOutput::VeskOutput()
{
    const char *term = std::getenv("TERM");
    const char *noColour = std::getenv("NO_COLOR");
    colour = isatty(fileno(stdout)) && !(noColour && *noColour)
        && !(term && std::strcmp(term, "dumb") == 0);
}

void VeskOutput::out(const QByteArray &bytes) const
{
    if (held)
        kept += bytes;
    else
        write(stdout, bytes);
}

void VeskOutput::print(const QString &text) const
{
    out(escapedLines(text).toUtf8());
}

void VeskOutput::printTable(const VeskTextTable &table) const
{
    out(table.render(colour).toUtf8());
}

void VeskOutput::printBytes(const QByteArray &bytes) const
{
    out(bytes);
}

void VeskOutput::warn(const QString &message) const
{
    write(stderr, vtr("vesk-roster: warning: %1\n").arg(VeskInertText::escaped(message)).toUtf8());
}

void VeskOutput::error(const QString &message) const
{
    write(stderr, vtr("vesk-roster: %1\n").arg(VeskInertText::escaped(message)).toUtf8());
}

void VeskOutput::hold()
{
    held = true;
}

void VeskOutput::release()
{
    held = false;
    if (!kept.isEmpty())
        write(stdout, kept);
    kept.clear();
}

void VeskOutput::discard()
{
    held = false;
    kept.clear();
}

QByteArray VeskOutput::takeHeld()
{
    QByteArray bytes;
    bytes.swap(kept);
    return bytes;
}
