#include "sessionfiles_p.h"

#include "librarysession.h"
#include "sessiontext_p.h"
#include "settingsjournal.h"

#include <veskstackfile_p.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace VeskSessionFiles {

QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

bool createDirectories(const QString &path, VeskSettingsJournal *journal, QString *reason)
{
    QStringList missing;
    for (QString dir = path; !QFileInfo::exists(dir) && !QFileInfo(dir).isSymLink();) {
        missing.prepend(dir);
        const QString parent = QFileInfo(dir).path();
        if (parent == dir)
            break;
        dir = parent;
    }
    for (const QString &dir : qAsConst(missing)) {
        if (::mkdir(QFile::encodeName(dir).constData(), 0777) == 0) {
            journal->recordCreatedDirectory(dir);
        } else if (errno != EEXIST) {
            *reason = systemError(errno);
            return false;
        }
    }
    return true;
}

QString writeProblem(const QString &dir)
{
    QString target = dir;
    while (!QFileInfo::exists(target) && QFileInfo(target).path() != target)
        target = QFileInfo(target).path();
    if (!QFileInfo(target).isDir())
        return systemError(ENOTDIR);
    QByteArray probe = QFile::encodeName(target) + "/.vesk-probe-XXXXXX";
    const int fd = ::mkstemp(probe.data());
    if (fd < 0)
        return systemError(errno);
    ::close(fd);
    ::unlink(probe.constData());
    return QString();
}

QString diagnose(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isFile())
        return vtr("it is not a regular file");
    if (info.size() > VeskStackFile::MaxFileSize) {
        return vtr("it is too big: %1 bytes, and the bound is %2 bytes")
            .arg(info.size())
            .arg(VeskStackFile::MaxFileSize);
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return vtr("it cannot be read: %1").arg(file.errorString());
    QXmlStreamReader reader(file.read(VeskStackFile::MaxFileSize + 1));
    int depth = 0;
    bool rootSeen = false;
    QString type;
    int conditions = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::EntityReference:
            return vtr("it holds a document type declaration or an entity reference, which "
                       "are never read");
        case QXmlStreamReader::StartElement:
            if (!rootSeen) {
                if (reader.name() != QLatin1String("stack_filter")) {
                    return vtr("its root element is \"%1\", not \"stack_filter\"")
                        .arg(reader.name().toString());
                }
                rootSeen = true;
                type = reader.attributes().value(QLatin1String("type")).toString();
            } else if (depth == 1) {
                ++conditions;
            }
            if (++depth > VeskStackFile::MaxDepth) {
                return vtr("it nests deeper than the bound of %1 stack levels")
                    .arg(VeskLibrarySession::maximumNesting());
            }
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    if (reader.hasError()) {
        return vtr("it is not well-formed XML: %1 (line %2, column %3)")
            .arg(reader.errorString())
            .arg(reader.lineNumber())
            .arg(reader.columnNumber());
    }
    if (!rootSeen)
        return vtr("it is empty");
    if (type != QLatin1String("AND") && type != QLatin1String("OR"))
        return vtr("its type is \"%1\", neither AND nor OR").arg(type);
    if (conditions == 0)
        return vtr("it holds no conditions");
    return QString();
}

QString nearestExisting(const QString &path)
{
    QString dir = path;
    while (!QFileInfo::exists(dir) && !QFileInfo(dir).isSymLink()) {
        const QString parent = QFileInfo(dir).path();
        if (parent == dir)
            break;
        dir = parent;
    }
    return dir;
}

void removeSettingsLeftovers(const QString &dir)
{
    // The settings are saved through a temporary file named after the
    // settings file ("settings.dat.XXXXXX") that replaces it when complete.
    const QFileInfoList leftovers = QDir(dir).entryInfoList({ QStringLiteral("settings.dat.*") },
        QDir::Files | QDir::Hidden | QDir::System, QDir::NoSort);
    for (const QFileInfo &leftover : leftovers) {
        if (leftover.isFile() && !leftover.isSymLink())
            QFile::remove(leftover.filePath());
    }
}

} // namespace VeskSessionFiles
