#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

// Aligned columns for a person to read. Headings (a group name, a title) span
// the whole line and do not widen the columns; styles become colour only when
// the table is rendered for a terminal.
class VeskTextTable
{
public:
    enum Style { Plain, Bold, Dim, Green, Yellow, Red, Cyan };

    struct Cell
    {
        Cell(const QString &text = QString(), Style style = Plain)
            : text(text)
            , style(style)
        { }
        QString text;
        Style style;
        int columns = 0; // the terminal columns of text, once added
    };

    void setHeader(const QStringList &titles);
    void addHeading(const QString &text, Style style = Bold);
    void addRow(const QVector<Cell> &cells, int indent = 0);

    QString render(bool colour) const;

private:
    struct Line
    {
        bool heading = false;
        int indent = 0;
        QVector<Cell> cells;
    };
    QStringList header;
    QVector<Line> lines;
};
