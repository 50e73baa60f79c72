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
    // Control characters, bidirectional controls, the line and paragraph
    // separators and unpaired surrogates are written as \u escapes, so the
    // document holds no byte a terminal obeys and loses no code unit.
    static const char hex[] = "0123456789abcdef";
    out += '"';
    int plainFrom = 0;
    auto flushPlain = [&](int upTo) {
        if (upTo > plainFrom)
            out += text.mid(plainFrom, upTo - plainFrom).toUtf8();
    };
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const ushort unit = c.unicode();
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        const bool escape = unit < 0x20 || unit == '"' || unit == '\\'
            || (unit >= 0x7f && unit <= 0x9f) || (unit >= 0x2028 && unit <= 0x202e)
            || (unit >= 0x2066 && unit <= 0x2069) || c.isSurrogate();
        if (!escape)
            continue;
        flushPlain(i);
        plainFrom = i + 1;
        switch (unit) {
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
            out += "\\u";
            out += hex[(unit >> 12) & 0xF];
            out += hex[(unit >> 8) & 0xF];
            out += hex[(unit >> 4) & 0xF];
            out += hex[unit & 0xF];
        }
    }
    flushPlain(text.size());
    out += '"';
}

QByteArray VeskJsonWriter::toJson() const
{
    return out + '\n';
}
