// PLACEHOLDER: the roster loader and generator of vesk-roster replace this.
#include "rosterfile.h"

namespace VeskRosterFile {
bool load(const QByteArray &, QString *error)
{
    if (error)
        *error = QStringLiteral("not implemented yet");
    return false;
}
QByteArray sampleRoster()
{
    return QByteArray();
}
QByteArray generate(int, quint32)
{
    return QByteArray();
}
} // namespace VeskRosterFile
