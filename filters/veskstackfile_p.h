#pragma once

// Where and how a top-level stack filter is kept on disk: one XML file per
// stack in the directory "roster_filters" of the host's settings directory.
//
// File names: a stack's identifier is the user's text, so it is mapped to a
// file name that can never leave the directory or be hidden from the
// directory listing. Plain names stay as they are; '%' starts an escape
// ("%2F" for one code unit below 256, "%uD83D" for any other), used for '/',
// '\', '%', control characters, a leading '.' and whatever the file system's
// encoding cannot hold. A name whose file name would still be too long is
// stored under "%h" followed by a hash, with the name itself kept in the
// file's root attribute "name". Temporary files of a save start with a dot,
// so the listing never takes them for filters.
//
// The session both programs store through finds a filter's file and keeps
// the library's bounds with the functions marked as private exports below.

#include "vesk_roster_filter_private_export_p.h"

#include <QByteArray>
#include <QString>

class VeskXmlNode;

namespace VeskStackFile {

// Bounds checked before a DOM is built from a file (and before one is
// written, so that whatever is written can be read back).
constexpr qint64 MaxFileSize = 1024 * 1024;
constexpr int MaxDepth = 256;
// Longer file names (in the file system's encoding) are hashed.
constexpr int MaxPlainFileNameBytes = 128;

VESK_ROSTER_FILTER_PRIVATE_EXPORT QString directory();

// Temporary files of a save start with this hidden prefix; those older than
// StaleTemporaryAge seconds are left over from a crash and removed at start-up.
QString temporaryPrefix();
constexpr int StaleTemporaryAge = 60 * 60;
void removeStaleTemporaries();

VESK_ROSTER_FILTER_PRIVATE_EXPORT QString escapeName(const QString &name, bool asciiOnly);
bool unescapeName(const QString &escaped, QString *name);

// The file name of a stack; empty for the empty name, which has no file.
VESK_ROSTER_FILTER_PRIVATE_EXPORT QString fileName(const QString &id);
// The identifier stored in the file of the directory called fileName, when
// it is the file of a stack: fileName(*id) == fileName afterwards.
VESK_ROSTER_FILTER_PRIVATE_EXPORT bool idForFile(const QString &fileName, QString *id);

// Whether bytes form a stack file that may be handed to the DOM: within the
// bounds, well formed, without a DTD and with the root "stack_filter".
// storedName receives the root's "name" attribute.
VESK_ROSTER_FILTER_PRIVATE_EXPORT bool isAcceptable(
    const QByteArray &bytes, QString *storedName = nullptr);

enum Status { Missing, Unacceptable, Acceptable };
struct ReadResult
{
    Status status = Missing;
    QByteArray bytes;
};
ReadResult read(const QString &id);

// Stores node (whose root attribute "name" is set when the file name is
// hashed) in place of the stack's file, atomically. Does nothing for the
// empty name or a document that would not be read back.
bool write(const QString &id, VeskXmlNode *node);
bool remove(const QString &id);
// Moves the file of oldId to newId's, replacing what is there.
bool move(const QString &oldId, const QString &newId);

} // namespace VeskStackFile
