#include "inerttext.h"

#include <algorithm>
#include <iterator>

namespace {

bool needsEscape(char32_t c)
{
    return c < 0x20 || (c >= 0x7f && c <= 0x9f) || (c >= 0x202a && c <= 0x202e)
        || (c >= 0x2066 && c <= 0x2069) || (c >= 0xd800 && c <= 0xdfff);
}

void appendHex(QString *out, char32_t value, int digits)
{
    *out += QStringLiteral("%1").arg(uint(value), digits, 16, QLatin1Char('0'));
}

QString escape(const QString &text, bool name)
{
    // Most text needs nothing: handed back shared, without a copy.
    bool plain = true;
    for (const QChar c : text) {
        const char16_t unit = c.unicode();
        if (needsEscape(unit) || (name && unit == '\\')) {
            plain = false;
            break;
        }
    }
    if (plain)
        return text;
    QString out;
    out.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        // A well-formed pair is one ordinary character.
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            out += c;
            out += text.at(++i);
            continue;
        }
        const char32_t unit = c.unicode();
        if (name && unit == '\\') {
            out += QLatin1String("\\\\");
        } else if (!needsEscape(unit)) {
            out += c;
        } else if (unit == 0x1b) {
            out += QLatin1String("\\e");
        } else if (unit == '\n') {
            out += QLatin1String("\\n");
        } else if (unit == '\r') {
            out += QLatin1String("\\r");
        } else if (unit == '\t') {
            out += QLatin1String("\\t");
        } else if (unit <= 0xff) {
            out += QLatin1String("\\x");
            appendHex(&out, unit, 2);
        } else {
            out += QLatin1String("\\u");
            appendHex(&out, unit, 4);
        }
    }
    return out;
}

bool readHex(const QString &text, int at, int digits, char32_t *value)
{
    if (at + digits > text.size())
        return false;
    bool ok = false;
    *value = text.mid(at, digits).toUInt(&ok, 16);
    return ok;
}

struct Range
{
    char32_t first;
    char32_t last;
};

// East Asian Wide (W) and Fullwidth (F) blocks that terminals draw two
// columns wide.
const Range wide[] = {
    { 0x1100, 0x115f },
    { 0x231a, 0x231b },
    { 0x2329, 0x232a },
    { 0x23e9, 0x23ec },
    { 0x23f0, 0x23f0 },
    { 0x23f3, 0x23f3 },
    { 0x25fd, 0x25fe },
    { 0x2614, 0x2615 },
    { 0x2648, 0x2653 },
    { 0x267f, 0x267f },
    { 0x2693, 0x2693 },
    { 0x26a1, 0x26a1 },
    { 0x26aa, 0x26ab },
    { 0x26bd, 0x26be },
    { 0x26c4, 0x26c5 },
    { 0x26ce, 0x26ce },
    { 0x26d4, 0x26d4 },
    { 0x26ea, 0x26ea },
    { 0x26f2, 0x26f3 },
    { 0x26f5, 0x26f5 },
    { 0x26fa, 0x26fa },
    { 0x26fd, 0x26fd },
    { 0x2705, 0x2705 },
    { 0x270a, 0x270b },
    { 0x2728, 0x2728 },
    { 0x274c, 0x274c },
    { 0x274e, 0x274e },
    { 0x2753, 0x2755 },
    { 0x2757, 0x2757 },
    { 0x2795, 0x2797 },
    { 0x27b0, 0x27b0 },
    { 0x27bf, 0x27bf },
    { 0x2b1b, 0x2b1c },
    { 0x2b50, 0x2b50 },
    { 0x2b55, 0x2b55 },
    { 0x2e80, 0x303e },
    { 0x3041, 0x33ff },
    { 0x3400, 0x4dbf },
    { 0x4e00, 0x9fff },
    { 0xa000, 0xa4cf },
    { 0xa960, 0xa97f },
    { 0xac00, 0xd7a3 },
    { 0xf900, 0xfaff },
    { 0xfe10, 0xfe19 },
    { 0xfe30, 0xfe6f },
    { 0xff00, 0xff60 },
    { 0xffe0, 0xffe6 },
    { 0x16fe0, 0x16fe4 },
    { 0x17000, 0x18cff },
    { 0x1b000, 0x1b2ff },
    { 0x1f004, 0x1f004 },
    { 0x1f0cf, 0x1f0cf },
    { 0x1f18e, 0x1f18e },
    { 0x1f191, 0x1f19a },
    { 0x1f200, 0x1f251 },
    { 0x1f300, 0x1f64f },
    { 0x1f680, 0x1f6ff },
    { 0x1f7e0, 0x1f7eb },
    { 0x1f90c, 0x1f9ff },
    { 0x1fa70, 0x1faff },
    { 0x20000, 0x2fffd },
    { 0x30000, 0x3fffd },
};

int charWidth(char32_t c)
{
    switch (QChar::category(c)) {
    case QChar::Mark_NonSpacing:
    case QChar::Mark_Enclosing:
    case QChar::Other_Format:
        return 0;
    default:
        break;
    }
    if (c >= 0x1160 && c <= 0x11ff) // Hangul medial vowels and final consonants
        return 0;
    const auto range = std::lower_bound(std::begin(wide), std::end(wide), c,
        [](const Range &r, char32_t value) { return r.last < value; });
    return range != std::end(wide) && c >= range->first ? 2 : 1;
}

} // namespace

namespace VeskInertText {

QString escaped(const QString &text)
{
    return escape(text, false);
}

QString escapedName(const QString &name)
{
    return escape(name, true);
}

bool unescapeName(const QString &typed, QString *name)
{
    QString out;
    out.reserve(typed.size());
    for (int i = 0; i < typed.size(); ++i) {
        if (typed.at(i) != QLatin1Char('\\')) {
            out += typed.at(i);
            continue;
        }
        if (++i >= typed.size())
            return false;
        const QChar kind = typed.at(i);
        char32_t value = 0;
        if (kind == QLatin1Char('\\'))
            out += QLatin1Char('\\');
        else if (kind == QLatin1Char('e'))
            out += QChar(0x1b);
        else if (kind == QLatin1Char('n'))
            out += QLatin1Char('\n');
        else if (kind == QLatin1Char('r'))
            out += QLatin1Char('\r');
        else if (kind == QLatin1Char('t'))
            out += QLatin1Char('\t');
        else if (kind == QLatin1Char('x') && readHex(typed, i + 1, 2, &value))
            out += QChar(char16_t(value));
        else if (kind == QLatin1Char('u') && readHex(typed, i + 1, 4, &value))
            out += QChar(char16_t(value));
        else
            return false;
        if (kind == QLatin1Char('x'))
            i += 2;
        else if (kind == QLatin1Char('u'))
            i += 4;
    }
    *name = out;
    return true;
}

int cellWidth(const QString &text)
{
    int width = 0;
    for (int i = 0; i < text.size(); ++i) {
        char32_t c = text.at(i).unicode();
        if (c >= 0x20 && c < 0x7f) {
            ++width;
            continue;
        }
        if (text.at(i).isHighSurrogate() && i + 1 < text.size()
            && text.at(i + 1).isLowSurrogate()) {
            c = QChar::surrogateToUcs4(text.at(i), text.at(i + 1));
            ++i;
        }
        width += charWidth(c);
    }
    return width;
}

} // namespace VeskInertText
