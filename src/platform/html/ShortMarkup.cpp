// SPDX-License-Identifier: Apache-2.0
#include "platform/html/ShortMarkup.h"

namespace
{
/// A mark is two characters that are kept for private use, the number of its run in two digits of that many.
constexpr char16_t FirstDigit = 0xE000;
constexpr std::size_t Digits = 4096;
constexpr qsizetype MarkSize = 2;
/// Less is not worth its mark.
constexpr qsizetype ShortestRun = 12;

bool IsDigit(QChar character)
{
    return character.unicode() >= FirstDigit && character.unicode() < FirstDigit + Digits;
}

bool IsBlank(char16_t character)
{
    return character == u' ' || character == u'\n';
}

/// Whether the parser does the same with it as with a letter, wherever it reads text, a comment or a script.
bool IsPlain(char16_t character)
{
    if (character >= 0x80)
        return character > 0xA0 && character < 0xD800;
    switch (character) {
    case u'<':
    case u'>':
    case u'&':
    case u'-':
    case u'!':
    case u']':
    case 0x7F:
        return false;
    default:
        return character >= u' ' || character == u'\n';
    }
}

/// Of the reference "&#..." that the text begins with; -1 when it is none. Above all characters it ends somewhere: the
/// parser goes on and loses the upper digits.
int ReferredNumber(QStringView text)
{
    if (!text.startsWith(QLatin1String("&#")))
        return -1;
    const bool isHex = text.size() > 2 && (text[2] == u'x' || text[2] == u'X');
    qsizetype i = isHex ? 3 : 2;
    int number = 0;
    for (; i < text.size() && number <= QChar::LastValidCodePoint; ++i) {
        bool isNumeral = false;
        const int numeral = text.sliced(i, 1).toInt(&isNumeral, isHex ? 16 : 10);
        if (!isNumeral)
            break;
        number = number * (isHex ? 16 : 10) + numeral;
    }
    return number;
}

/// Whether the parser could make a text of what begins here that looks like a mark: out of a digit, out of a digit's
/// number, or out of an attribute of the one element that shows its own.
bool MayMislead(QStringView text)
{
    switch (text[0].unicode()) {
    case u'<':
        return text.sliced(1).startsWith(QLatin1String("isindex"), Qt::CaseInsensitive);
    case u'&': {
        const int number = ReferredNumber(text);
        return (number >= FirstDigit && number < FirstDigit + int(Digits)) || number > QChar::LastValidCodePoint;
    }
    default:
        return IsDigit(text[0]);
    }
}

qsizetype EndOfPlain(QStringView text, qsizetype position)
{
    while (position < text.size() && IsPlain(text[position].unicode()))
        ++position;
    return position;
}
} // namespace

ShortMarkup::ShortMarkup(const QString& markup, Runs runs) : Markup_(markup)
{
    if (runs == Runs::Marked)
        FindRuns();
    Left_ = Runs_.size();
    Utf8_ = Runs_.empty() ? Markup_.toUtf8() : Shortened().toUtf8();
}

/// A run begins behind a blank or a tag's end, so that it belongs to no reference, and ends with a word, since blanks
/// by themselves are another thing than text to the parser.
void ShortMarkup::FindRuns()
{
    const QStringView markup(Markup_);
    bool isText = true;
    bool mayBegin = true;
    for (qsizetype i = 0; i < markup.size(); ++i) {
        const char16_t character = markup[i].unicode();
        if (isText && mayBegin && !IsBlank(character) && IsPlain(character)) {
            const qsizetype end = EndOfPlain(markup, i);
            AddRun(markup.sliced(i, end - i), i);
            mayBegin = false;
            i = end - 1;
            continue;
        }
        if (MayMislead(markup.sliced(i))) {
            Runs_.clear();
            return;
        }
        isText = character == u'>' || (isText && character != u'<');
        mayBegin = character == u'>' || IsBlank(character);
    }
}

void ShortMarkup::AddRun(QStringView plain, qsizetype start)
{
    while (IsBlank(plain.back().unicode()))
        plain.chop(1);
    if (plain.size() >= ShortestRun && Runs_.size() < Digits * Digits)
        Runs_.push_back({start, plain.size(), false});
}

QString ShortMarkup::Shortened() const
{
    const QStringView markup(Markup_);
    QString shortened;
    qsizetype copied = 0;
    for (std::size_t number = 0; number < Runs_.size(); ++number) {
        const Run& run = Runs_[number];
        shortened += markup.sliced(copied, run.Start - copied);
        shortened += QChar(FirstDigit + char16_t(number / Digits));
        shortened += QChar(FirstDigit + char16_t(number % Digits));
        copied = run.Start + run.Size;
    }
    return shortened.append(markup.sliced(copied));
}

QString ShortMarkup::Restored(const char* text)
{
    const QString marked = QString::fromUtf8(text);
    if (Runs_.empty())
        return marked;
    QString restored;
    qsizetype copied = 0;
    for (qsizetype i = 0; i < marked.size(); ++i) {
        if (!IsDigit(marked[i]))
            continue;
        restored += QStringView(marked).sliced(copied, i - copied);
        restored += TakeRun(QStringView(marked).sliced(i).first(qMin(MarkSize, marked.size() - i)));
        i += MarkSize - 1;
        copied = i + 1;
    }
    return copied == 0 ? marked : restored.append(QStringView(marked).sliced(qMin(copied, marked.size())));
}

QStringView ShortMarkup::TakeRun(QStringView mark)
{
    const std::size_t number = mark.size() == MarkSize && IsDigit(mark[1])
                                   ? (mark[0].unicode() - FirstDigit) * Digits + (mark[1].unicode() - FirstDigit)
                                   : Runs_.size();
    if (number >= Runs_.size() || Runs_[number].IsBack) {
        IsStrange_ = true;
        return {};
    }
    Runs_[number].IsBack = true;
    --Left_;
    return QStringView(Markup_).sliced(Runs_[number].Start, Runs_[number].Size);
}
