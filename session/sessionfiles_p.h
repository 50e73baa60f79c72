#pragma once

#include <QString>

class VeskSettingsJournal;

// What the session's sources share about the settings directory's files:
// creating directories a refusal can take back, probing for writes, and
// why the library cannot read a stack file. Not API.
namespace VeskSessionFiles {

QString systemError(int error);
// Creates the missing directories of path, recording each one this process
// made, so that a refusal can take them away again.
bool createDirectories(const QString &path, VeskSettingsJournal *journal, QString *reason);
// Why nothing can be written into dir, or an empty text when a file can.
QString writeProblem(const QString &dir);
// Why the library reads the file at path as something else than what was
// stored, or an empty text when it reads it fully.
QString diagnose(const QString &path);

} // namespace VeskSessionFiles
