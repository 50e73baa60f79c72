#include "texttable.h"

#include "inerttext.h"

#include <algorithm>

namespace {
QString styled(const QString &text, VeskTextTable::Style style, bool colour)
{
    if (!colour || style == VeskTextTable::Plain || text.isEmpty())
        return text;
    const char *code = "";
    switch (style) {
    case VeskTextTable::Bold:
        code = "1";
        break;
    case VeskTextTable::Dim:
        code = "2";
        break;
    case VeskTextTable::Green:
        code = "32";
        break;
    case VeskTextTable::Yellow:
        code = "33";
        break;
    case VeskTextTable::Red:
        code = "31";
        break;
    case VeskTextTable::Cyan:
        code = "36";
        break;
    case VeskTextTable::Plain:
        break;
    }
    return QLatin1String("\x1b[") + QLatin1String(code) + QLatin1Char('m') + text
        + QLatin1String("\x1b[0m");
}
} // namespace

void VeskTextTable::setHeader(const QStringList &titles)
{
    header.clear();
    for (const QString &title : titles)
        header.append(VeskInertText::escaped(title));
}

void VeskTextTable::addHeading(const QString &text, Style style)
{
    Line line;
    line.heading = true;
    line.cells.append(Cell(VeskInertText::escaped(text), style));
    lines.append(line);
}

void VeskTextTable::addRow(const QVector<Cell> &cells, int indent)
{
    // Cells hold roster data and names: escaped here, so that no table
    // shows a control character, and measured in terminal columns.
    Line line;
    line.indent = indent;
    line.cells = cells;
    for (Cell &cell : line.cells) {
        cell.text = VeskInertText::escaped(cell.text);
        cell.columns = VeskInertText::cellWidth(cell.text);
    }
    lines.append(line);
}

QString VeskTextTable::render(bool colour) const
{
    // Indentation counts towards the first column, so indented rows line up
    // with unindented ones.
    QVector<int> widths(header.size());
    for (int i = 0; i < header.size(); ++i)
        widths[i] = VeskInertText::cellWidth(header.at(i));
    for (const Line &line : lines) {
        if (line.heading)
            continue;
        if (widths.size() < line.cells.size())
            widths.resize(line.cells.size());
        for (int i = 0; i < line.cells.size(); ++i)
            widths[i] = std::max(widths[i], line.cells.at(i).columns + (i ? 0 : line.indent));
    }

    QString out;
    auto emitRow = [&](const QVector<Cell> &cells, int indent) {
        QString row(indent, QLatin1Char(' '));
        int pending = 0; // padding owed before the next non-empty cell
        for (int i = 0; i < cells.size(); ++i) {
            const Cell &cell = cells.at(i);
            const int width = widths.at(i) - (i ? 0 : indent);
            if (!cell.text.isEmpty()) {
                row += QString(pending, QLatin1Char(' '));
                pending = 0;
                row += styled(cell.text, cell.style, colour);
            }
            pending += width - cell.columns + 2;
        }
        out += row;
        out += QLatin1Char('\n');
    };
    if (!header.isEmpty()) {
        QVector<Cell> titles;
        for (const QString &title : header) {
            titles.append(Cell(title, Dim));
            titles.last().columns = VeskInertText::cellWidth(title);
        }
        emitRow(titles, 0);
    }
    for (const Line &line : lines) {
        if (line.heading) {
            out += styled(line.cells.first().text, line.cells.first().style, colour);
            out += QLatin1Char('\n');
        } else {
            emitRow(line.cells, line.indent);
        }
    }
    return out;
}
