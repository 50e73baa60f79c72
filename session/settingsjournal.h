#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

// What one run changed in a settings directory: each file as it was before
// the run first touched it, and the directories the run created. A refusal
// puts back exactly these and nothing else, so it can never undo what
// another run stored.
class VeskSettingsJournal
{
public:
    // Records the file's bytes, or its absence, unless already recorded.
    void recordFile(const QString &path);
    // Records every missing directory from path upwards, before the run
    // (or the library, for it) creates them.
    void recordMissingDirectories(const QString &path);
    // Records a directory the run has just created.
    void recordCreatedDirectory(const QString &path);

    // Puts every recorded file back and removes the recorded directories;
    // false, with the files that could not be put back, when some failed.
    bool restore(QString *error) const;
    // Forgets everything recorded: the changes are kept.
    void clear();

private:
    enum State { Absent, Present, Unknown };
    struct File
    {
        QString path;
        State state = Unknown;
        QByteArray bytes;
    };
    QVector<File> files;
    QStringList createdDirectories; // innermost first
};
