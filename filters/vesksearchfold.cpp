#include "vesksearchfold_p.h"

#include <atomic>
#include <memory>

namespace VeskSearchFold {

namespace {

    // The fold of one character of the Basic Multilingual Plane, worked out once
    // per block of 256 characters the first time a text holds one of them (a
    // block costs 256 normalisations, well under a millisecond), then looked up.
    struct Page
    {
        // Where each character's fold starts in `folds`, and how long it is.
        quint32 at[256];
        quint8 length[256];
        QString folds;
    };

    std::atomic<Page *> pages[256];

    // Letters whose accent or stroke Unicode writes into the letter itself.
    const char *byHand(char16_t c)
    {
        switch (c) {
        case 0x0131: // ı
            return "i";
        case 0x00D8: // Ø
        case 0x00F8:
            return "o";
        case 0x0110: // Đ
        case 0x0111:
            return "d";
        case 0x0141: // Ł
        case 0x0142:
            return "l";
        case 0x0126: // Ħ
        case 0x0127:
            return "h";
        case 0x00DF: // ß
        case 0x1E9E:
            return "ss";
        case 0x00C6: // Æ
        case 0x00E6:
            return "ae";
        case 0x0152: // Œ
        case 0x0153:
            return "oe";
        default:
            return nullptr;
        }
    }

    bool isMark(QChar c)
    {
        switch (c.category()) {
        case QChar::Mark_NonSpacing:
        case QChar::Mark_SpacingCombining:
        case QChar::Mark_Enclosing:
            return true;
        default:
            return false;
        }
    }

    QString withoutMarks(const QString &text)
    {
        QString result;
        for (const QChar c : text) {
            if (!isMark(c))
                result.append(c);
        }
        return result;
    }

    QString foldOne(char16_t c)
    {
        if (const char *hand = byHand(c))
            return QString::fromLatin1(hand);
        // Surrogate halves stay as they are; appendFolded() handles pairs.
        if (QChar::isSurrogate(c))
            return QString(QChar(c));
        QString text = withoutMarks(QString(QChar(c)).normalized(QString::NormalizationForm_KD));
        for (QChar &letter : text)
            letter = letter.toCaseFolded();
        // A case-folded letter may decompose again (the Ångström sign folds to å).
        text = withoutMarks(text.normalized(QString::NormalizationForm_KD));
        QString result;
        for (const QChar letter : qAsConst(text)) {
            const char *hand = byHand(letter.unicode());
            if (hand)
                result += QString::fromLatin1(hand);
            else
                result += letter;
        }
        return result;
    }

    const Page *page(int block)
    {
        Page *found = pages[block].load(std::memory_order_acquire);
        if (found)
            return found;
        auto made = std::make_unique<Page>();
        for (int low = 0; low < 256; ++low) {
            const QString fold = foldOne(char16_t(block << 8 | low));
            made->at[low] = quint32(made->folds.size());
            made->length[low] = quint8(fold.size());
            made->folds += fold;
        }
        // Two threads may make the same block; the first to publish it wins and
        // the other's copy is dropped. Published blocks live as long as the
        // program.
        if (pages[block].compare_exchange_strong(found, made.get(), std::memory_order_acq_rel))
            return made.release();
        return found;
    }

} // namespace

void appendFolded(const QString &text, QString *into)
{
    const QChar *from = text.constData();
    const int size = int(text.size());
    into->reserve(into->size() + size);
    for (int i = 0; i < size; ++i) {
        const char16_t c = from[i].unicode();
        if (c < 0x80) {
            into->append(QChar(c >= 'A' && c <= 'Z' ? char16_t(c + 0x20) : c));
        } else if (QChar::isHighSurrogate(c) && i + 1 < size && from[i + 1].isLowSurrogate()) {
            const uint folded
                = QChar::toCaseFolded(QChar::surrogateToUcs4(c, from[i + 1].unicode()));
            into->append(QChar(QChar::highSurrogate(folded)));
            into->append(QChar(QChar::lowSurrogate(folded)));
            ++i;
        } else {
            const Page *block = page(c >> 8);
            const int low = c & 0xFF;
            into->append(block->folds.constData() + block->at[low], block->length[low]);
        }
    }
}

} // namespace VeskSearchFold
