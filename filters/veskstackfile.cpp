#include "veskstackfile_p.h"

#include <vesksettingsmanager.h>
#include <veskxmlnode.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#else
#include <QSaveFile>
#endif

namespace VeskStackFile {

namespace {

    const QLatin1String hashedPrefix("%h");

    bool survivesFileSystemEncoding(const QString &text)
    {
        return QFile::decodeName(QFile::encodeName(text)) == text;
    }

    void appendEscape(QString *out, ushort unit)
    {
        if (unit < 0x100)
            *out += QLatin1Char('%')
                + QStringLiteral("%1").arg(unit, 2, 16, QLatin1Char('0')).toUpper();
        else
            *out += QLatin1String("%u")
                + QStringLiteral("%1").arg(unit, 4, 16, QLatin1Char('0')).toUpper();
    }

    int hexValue(QChar c)
    {
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            return c.unicode() - '0';
        if (c >= QLatin1Char('A') && c <= QLatin1Char('F'))
            return c.unicode() - 'A' + 10;
        return -1;
    }

    bool readHex(const QString &text, int at, int digits, ushort *unit)
    {
        if (at + digits > text.size())
            return false;
        int value = 0;
        for (int i = at; i < at + digits; ++i) {
            const int digit = hexValue(text.at(i));
            if (digit < 0)
                return false;
            value = value * 16 + digit;
        }
        *unit = ushort(value);
        return true;
    }

    QString hashedFileName(const QString &id)
    {
        // The code units in a fixed byte order: a lone surrogate hashes like any
        // other unit, which a conversion to UTF-8 would not guarantee.
        QByteArray units;
        units.reserve(id.size() * 2);
        for (const QChar c : id) {
            units.append(char(c.unicode() >> 8));
            units.append(char(c.unicode() & 0xff));
        }
        return hashedPrefix
            + QString::fromLatin1(
                QCryptographicHash::hash(units, QCryptographicHash::Sha256).toHex());
    }

    QString filePath(const QString &name)
    {
        return directory() + QLatin1Char('/') + name;
    }

    QByteArray readBounded(const QString &path, Status *status)
    {
        // Only regular files (or links to them): a FIFO or a device would block
        // or never end.
        const QFileInfo info(path);
        *status = Missing;
        if (!info.isFile())
            return QByteArray();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return QByteArray();
        const QByteArray bytes = file.read(MaxFileSize + 1);
        *status = isAcceptable(bytes) ? Acceptable : Unacceptable;
        return bytes;
    }

#ifdef Q_OS_UNIX
    bool writeAll(int fd, const QByteArray &bytes)
    {
        const char *data = bytes.constData();
        qint64 left = bytes.size();
        while (left > 0) {
            const ssize_t written = ::write(fd, data, size_t(left));
            if (written < 0) {
                if (errno == EINTR)
                    continue;
                return false;
            }
            data += written;
            left -= written;
        }
        return true;
    }

    // Writes a hidden temporary file next to the target, syncs it and renames it
    // over the target: a crash leaves the old content or the new one. rename()
    // replaces a symbolic link planted under the target's name instead of writing
    // through it.
    bool replaceFile(const QString &name, const QByteArray &bytes)
    {
        const QByteArray dir = QFile::encodeName(directory());
        QByteArray temporary = dir + '/' + QFile::encodeName(temporaryPrefix()) + "XXXXXX";
        const int fd = ::mkstemp(temporary.data());
        if (fd < 0)
            return false;
        bool ok = writeAll(fd, bytes);
        ok = ::fsync(fd) == 0 && ok;
        ok = ::close(fd) == 0 && ok;
        const QByteArray target = dir + '/' + QFile::encodeName(name);
        if (!ok || ::rename(temporary.constData(), target.constData()) != 0) {
            ::unlink(temporary.constData());
            return false;
        }
        const int dirFd = ::open(dir.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (dirFd >= 0) {
            ::fsync(dirFd);
            ::close(dirFd);
        }
        return true;
    }

    bool renameOver(const QString &from, const QString &to)
    {
        return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData())
            == 0;
    }
#else
    bool renameOver(const QString &from, const QString &to)
    {
        return QFile::rename(from, to) || (QFile::remove(to) && QFile::rename(from, to));
    }

    bool replaceFile(const QString &name, const QByteArray &bytes)
    {
        QSaveFile file(filePath(name));
        if (!file.open(QIODevice::WriteOnly))
            return false;
        if (file.write(bytes) != bytes.size()) {
            file.cancelWriting();
            return false;
        }
        return file.commit();
    }
#endif

} // namespace

QString directory()
{
    return VeskSettingsManager::getInstance()->getSettingsDir() + QLatin1String("roster_filters");
}

QString temporaryPrefix()
{
    return QStringLiteral(".vesk-save-");
}

void removeStaleTemporaries()
{
    // A save interrupted by a crash leaves its temporary file behind. Only old
    // ones go: a young one may belong to a save another client instance is
    // making right now.
    const QDir dir(directory());
    const QDateTime staleBefore = QDateTime::currentDateTimeUtc().addSecs(-StaleTemporaryAge);
    const QFileInfoList leftovers = dir.entryInfoList({ temporaryPrefix() + QLatin1Char('*') },
        QDir::Files | QDir::Hidden | QDir::System, QDir::NoSort);
    for (const QFileInfo &leftover : leftovers) {
        if (leftover.lastModified().toUTC() < staleBefore)
            QFile::remove(leftover.filePath());
    }
}

QString escapeName(const QString &name, bool asciiOnly)
{
    QString out;
    out.reserve(name.size());
    for (int i = 0; i < name.size(); ++i) {
        const QChar c = name.at(i);
        const ushort unit = c.unicode();
        if (c.isHighSurrogate() && i + 1 < name.size() && name.at(i + 1).isLowSurrogate()) {
            const QString pair = name.mid(i, 2);
            if (asciiOnly || !survivesFileSystemEncoding(pair)) {
                appendEscape(&out, unit);
                appendEscape(&out, name.at(i + 1).unicode());
            } else {
                out += pair;
            }
            ++i;
        } else if (c.isSurrogate() || unit < 0x20 || unit == 0x7f || c == QLatin1Char('/')
            || c == QLatin1Char('\\') || c == QLatin1Char('%') || (i == 0 && c == QLatin1Char('.'))
            || (unit >= 0x80 && (asciiOnly || !survivesFileSystemEncoding(QString(c))))) {
            appendEscape(&out, unit);
        } else {
            out += c;
        }
    }
    return out;
}

bool unescapeName(const QString &escaped, QString *name)
{
    QString out;
    out.reserve(escaped.size());
    for (int i = 0; i < escaped.size(); ++i) {
        if (escaped.at(i) != QLatin1Char('%')) {
            out += escaped.at(i);
            continue;
        }
        ushort unit = 0;
        if (i + 1 < escaped.size() && escaped.at(i + 1) == QLatin1Char('u')) {
            if (!readHex(escaped, i + 2, 4, &unit))
                return false;
            i += 5;
        } else {
            if (!readHex(escaped, i + 1, 2, &unit))
                return false;
            i += 2;
        }
        out += QChar(unit);
    }
    *name = out;
    return true;
}

QString fileName(const QString &id)
{
    if (id.isEmpty())
        return QString();
    const QString escaped = escapeName(id, false);
    if (QFile::encodeName(escaped).size() > MaxPlainFileNameBytes)
        return hashedFileName(id);
    return escaped;
}

bool idForFile(const QString &name, QString *id)
{
    QString candidate;
    if (name.startsWith(hashedPrefix)) {
        Status status;
        const QByteArray bytes = readBounded(filePath(name), &status);
        QString stored;
        if (status != Acceptable || !isAcceptable(bytes, &stored)
            || !unescapeName(stored, &candidate))
            return false;
    } else if (!unescapeName(name, &candidate)) {
        return false;
    }
    // Only the one spelling that the library itself writes is a stack file;
    // this also keeps two files from claiming one identifier.
    if (candidate.isEmpty() || fileName(candidate) != name)
        return false;
    *id = candidate;
    return true;
}

bool isAcceptable(const QByteArray &bytes, QString *storedName)
{
    if (bytes.size() > MaxFileSize)
        return false;
    // QXmlStreamReader keeps its own stack of open elements, so this scan
    // does not recurse however deep the document is, unlike the DOM parser.
    QXmlStreamReader reader(bytes);
    int depth = 0;
    bool rootSeen = false;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::EntityReference:
            return false;
        case QXmlStreamReader::StartElement:
            if (!rootSeen) {
                if (reader.name() != QLatin1String("stack_filter"))
                    return false;
                rootSeen = true;
                if (storedName)
                    *storedName = reader.attributes().value(QLatin1String("name")).toString();
            }
            if (++depth > MaxDepth)
                return false;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    return rootSeen && !reader.hasError();
}

ReadResult read(const QString &id)
{
    ReadResult result;
    if (id.isEmpty())
        return result;
    result.bytes = readBounded(filePath(fileName(id)), &result.status);
    return result;
}

bool write(const QString &id, VeskXmlNode *node)
{
    const QString name = fileName(id);
    if (name.isEmpty())
        return false;
    if (name.startsWith(hashedPrefix))
        node->setAttribute(QStringLiteral("name"), escapeName(id, true), QString());
    const QByteArray bytes = node->toByteArray();
    // A document that could not be read back would lose the user's filter at
    // the next start; the old file is worth more.
    if (!isAcceptable(bytes))
        return false;
    QDir().mkpath(directory());
    return replaceFile(name, bytes);
}

bool remove(const QString &id)
{
    const QString name = fileName(id);
    return !name.isEmpty() && QFile::remove(filePath(name));
}

bool move(const QString &oldId, const QString &newId)
{
    const QString oldName = fileName(oldId);
    const QString newName = fileName(newId);
    if (oldName.isEmpty() || newName.isEmpty() || oldName == newName)
        return false;
    const QString oldPath = filePath(oldName);
    const QFileInfo info(oldPath);
    if (!info.exists() && !info.isSymLink())
        return false;

    // A hashed file name carries the name inside the file, so the document
    // is rewritten with the new one rather than renamed.
    if (newName.startsWith(hashedPrefix)) {
        Status status;
        const QByteArray bytes = readBounded(oldPath, &status);
        if (status == Acceptable) {
            VeskXmlNode node(QString(), QString(), nullptr);
            node.setContent(bytes);
            if (!node.isNull() && write(newId, &node))
                return QFile::remove(oldPath);
        }
    }
    return renameOver(oldPath, filePath(newName));
}

} // namespace VeskStackFile
