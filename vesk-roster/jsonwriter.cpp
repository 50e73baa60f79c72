#include "jsonwriter.h"

void VeskJsonWriter::newline()
{
    out += '\n';
    out += QByteArray(levels.size() * 2, ' ');
}

void VeskJsonWriter::beforeValue()
{
    if (afterKey) {
        afterKey = false;
        return;
    }
    if (levels.isEmpty())
        return;
    if (levels.last().count++)
        out += ',';
    newline();
}

void VeskJsonWriter::beginObject()
{
    beforeValue();
    out += '{';
    levels.append(Level { true, 0 });
}

void VeskJsonWriter::endObject()
{
    const bool empty = levels.takeLast().count == 0;
    if (!empty)
        newline();
    out += '}';
}

void VeskJsonWriter::beginArray()
{
    beforeValue();
    out += '[';
    levels.append(Level { false, 0 });
}

void VeskJsonWriter::endArray()
{
    const bool empty = levels.takeLast().count == 0;
    if (!empty)
        newline();
    out += ']';
}

void VeskJsonWriter::key(const char *name)
{
    beforeValue();
    appendString(QString::fromUtf8(name));
    out += ": ";
    afterKey = true;
}

void VeskJsonWriter::value(const QString &text)
{
    beforeValue();
    appendString(text);
}

void VeskJsonWriter::value(const char *text)
{
    value(QString::fromUtf8(text));
}

void VeskJsonWriter::value(int number)
{
    beforeValue();
    out += QByteArray::number(number);
}

void VeskJsonWriter::value(bool flag)
{
    beforeValue();
    out += flag ? "true" : "false";
}

void VeskJsonWriter::null()
{
    beforeValue();
    out += "null";
}

void VeskJsonWriter::appendString(const QString &text)
{
    static const char hex[] = "0123456789abcdef";
    const QByteArray utf8 = text.toUtf8();
    out += '"';
    for (const char c : utf8) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            if (uchar(c) < 0x20) {
                out += "\\u00";
                out += hex[uchar(c) >> 4];
                out += hex[uchar(c) & 0xF];
            } else {
                out += c;
            }
        }
    }
    out += '"';
}

QByteArray VeskJsonWriter::toJson() const
{
    return out + '\n';
}
