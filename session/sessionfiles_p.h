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
// The nearest directory on the way up from path that exists (or the first
// path that is there without being a directory): where a writer creates the
// settings directory, and what it locks while it does.
QString nearestExisting(const QString &path);
// Removes what a run killed while it saved the settings leaves behind: the
// save's temporary file beside the settings file. Only for a run that holds
// the exclusive lock, under which no other run is saving.
void removeSettingsLeftovers(const QString &dir);
// Why nothing can be written into dir, or an empty text when a file can.
QString writeProblem(const QString &dir);
// Why the library reads the file at path as something else than what was
// stored, or an empty text when it reads it fully.
QString diagnose(const QString &path);

} // namespace VeskSessionFiles
