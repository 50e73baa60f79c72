#include "output.h"

#include "text_p.h"

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
} // namespace

VeskOutput::VeskOutput()
{
    const char *term = std::getenv("TERM");
    const char *noColour = std::getenv("NO_COLOR");
    colour = isatty(fileno(stdout)) && !(noColour && *noColour)
        && !(term && std::strcmp(term, "dumb") == 0);
}

void VeskOutput::print(const QString &text) const
{
    write(stdout, text.toUtf8());
}

void VeskOutput::printBytes(const QByteArray &bytes) const
{
    write(stdout, bytes);
}

void VeskOutput::warn(const QString &message) const
{
    write(stderr, vtr("vesk-roster: warning: %1\n").arg(message).toUtf8());
}

void VeskOutput::error(const QString &message) const
{
    write(stderr, vtr("vesk-roster: %1\n").arg(message).toUtf8());
}
