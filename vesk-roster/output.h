#pragma once

#include <QByteArray>
#include <QString>

class VeskTextTable;

// Where the program writes: UTF-8 on stdout and stderr, whatever the locale,
// and colour only when stdout is a terminal that wants it. Nothing reaches
// the terminal as a control character but the program's own newlines and
// colours: messages and lines are escaped here, table cells by the table.
class VeskOutput
{
public:
    VeskOutput();

    bool useColour() const { return colour; }

    // A line or lines of text; any control character but '\n' is escaped.
    void print(const QString &text) const;
    void printTable(const VeskTextTable &table) const;
    // A document that escapes its own text (JSON), or a roster file.
    void printBytes(const QByteArray &bytes) const;
    void warn(const QString &message) const;
    void error(const QString &message) const;

    // While held, standard output is kept back: a writing command's report
    // is printed only once its changes are read back from disk.
    void hold();
    void release();
    void discard();
    // What was kept back so far, which is then forgotten; output stays held.
    QByteArray takeHeld();

private:
    void out(const QByteArray &bytes) const;

    bool colour;
    bool held = false;
    mutable QByteArray kept;
};
