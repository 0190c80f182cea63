// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/CharacterSets.h"

#include "platform/Ascii.h"
#include "platform/mail/GMimeSupport.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <cerrno>

namespace cdo
{

namespace
{

constexpr auto Utf8 = "utf-8";
constexpr auto Ascii = "us-ascii";
constexpr auto Windows1252 = "windows-1252";
constexpr qsizetype PieceOctets = 65536;
constexpr auto NativeUtf16 = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? "UTF-16LE" : "UTF-16BE";

class Converter
{
public:
    Converter(const char* to, const char* from)
    {
        ParserOptions(); // Text may be read before the first mail is.
        Handle_ = g_mime_iconv_open(to, from);
    }
    ~Converter()
    {
        if (IsValid())
            g_mime_iconv_close(Handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // iconv_open's failure is the pointer value -1.
    bool IsValid() const { return reinterpret_cast<qintptr>(Handle_) != -1; }

    enum class End
    {
        Whole,       ///< The input is used up,
        Unreadable,  ///< something in it cannot be converted,
        Interrupted, ///< or take said so.
    };
    using Take = std::function<bool(QByteArrayView piece)>;

    /// Converts in pieces of whole characters; input moves along.
    End Convert(QByteArrayView* input, const Take& take)
    {
        std::array<char, 16384> piece;
        char* in = const_cast<char*>(input->data());
        size_t inLeft = static_cast<size_t>(input->size());
        End end = End::Whole;
        for (bool isFlushing = inLeft == 0;;) {
            char* out = piece.data();
            size_t outLeft = piece.size();
            const size_t result = isFlushing ? iconv(Handle_, nullptr, nullptr, &out, &outLeft)
                                             : iconv(Handle_, &in, &inLeft, &out, &outLeft);
            const int error = errno;
            if (out != piece.data() && !take(QByteArrayView(piece.data(), out - piece.data()))) {
                end = End::Interrupted;
                break;
            }
            if (result != static_cast<size_t>(-1)) {
                if (isFlushing)
                    break;
                isFlushing = true;
            } else if (error != E2BIG) {
                end = End::Unreadable;
                break;
            }
        }
        *input = input->last(static_cast<qsizetype>(inLeft));
        return end;
    }

private:
    iconv_t Handle_;
};

/// What a name stands for in mail as it is really sent: the makers' larger sets, not the standards they are named
/// after.
QByteArray ConverterName(const QByteArray& declared)
{
    static const QHash<QByteArray, QByteArray> names = {
        {"shift_jis", "cp932"},
        {"shift-jis", "cp932"},
        {"x-sjis", "cp932"},
        {"sjis", "cp932"},
        {"ks_c_5601-1987", "cp949"},
        {"ks_c_5601", "cp949"},
        {"euc-kr", "cp949"},
        {"ksc5601", "cp949"},
        {"gb2312", "gb18030"},
        {"gbk", "gb18030"},
        {"utf8", Utf8},
        {"ascii", Ascii},
        {"latin1", "iso-8859-1"},
        {"iso8859-1", "iso-8859-1"},
        {"iso-8859-8-i", "iso-8859-8"},
        {"x-unknown", ""},
    };
    const QByteArray name = declared.trimmed().toLower();
    return names.value(name, name);
}

bool IsKnown(const QByteArray& name)
{
    // The converter's own syntax (options behind a slash, an empty name for the locale's) is not for senders.
    return !name.isEmpty() && !name.contains('/') && !name.contains('\0') &&
           Converter(NativeUtf16, name.constData()).IsValid();
}

bool HasControlsAbove7F(QByteArrayView octets)
{
    return std::any_of(octets.begin(), octets.end(),
                       [](char c) { return static_cast<uchar>(c) >= 0x80 && static_cast<uchar>(c) < 0xA0; });
}

/// Text cut off inside a character, or pasted together, is still UTF-8 for the most part.
bool IsMostlyUtf8(QByteArrayView octets)
{
    const QString text = QString::fromUtf8(octets);
    const auto isBad = [](QChar c) { return c == QChar::ReplacementCharacter; };
    const auto isWide = [](QChar c) { return c.unicode() >= 0x80; };
    const auto bad = std::count_if(text.begin(), text.end(), isBad);
    return std::count_if(text.begin(), text.end(), isWide) - bad > bad;
}

QString Shown(QString text)
{
    text.replace(QChar(u'\0'), QChar(QChar::ReplacementCharacter));
    return text;
}

/// Reads all of it, with U+FFFD for what cannot be read; isWhole says whether there was no such thing. False when take
/// said so.
bool ConvertAll(QByteArrayView octets, const QByteArray& name, bool* isWhole,
                const std::function<bool(QStringView)>& take)
{
    Converter converter(NativeUtf16, name.constData());
    const QChar replacement(QChar::ReplacementCharacter);
    const auto takeUnits = [&take](QByteArrayView piece) {
        return take({reinterpret_cast<const QChar*>(piece.data()), piece.size() / qsizetype(sizeof(QChar))});
    };
    *isWhole = true;
    for (;;) {
        const Converter::End end = converter.Convert(&octets, takeUnits);
        if (end != Converter::End::Unreadable)
            return end == Converter::End::Whole;
        *isWhole = false;
        if (!take(QStringView(&replacement, 1)))
            return false;
        octets = octets.sliced(qMin<qsizetype>(1, octets.size()));
    }
}

QString Converted(QByteArrayView octets, const QByteArray& name, bool* isWhole)
{
    QString text;
    ConvertAll(octets, name, isWhole, [&text](QStringView piece) {
        text += piece;
        return true;
    });
    return text;
}

/// The set of octets whose sender said nothing to go by.
QByteArray GuessedSet(QByteArrayView octets, const QByteArray& name)
{
    if (IsAscii(octets))
        return name.isEmpty() ? QByteArray(Ascii) : name;
    if (octets.isValidUtf8() || (name == Utf8 && IsMostlyUtf8(octets)))
        return Utf8;
    return name == "iso-8859-1" && !HasControlsAbove7F(octets) ? name : QByteArray(Windows1252);
}

/// The set to read octets in that claim to be in another, or in none.
QByteArray SetOf(QByteArrayView octets, const QByteArray& declared)
{
    QByteArray name = ConverterName(declared);
    if (!IsKnown(name))
        name.clear();
    const bool isGuessed =
        name.isEmpty() || name == Ascii || name == Utf8 || name == "iso-8859-1" || name == Windows1252;
    return isGuessed ? GuessedSet(octets, name) : name;
}

} // namespace

DecodedText Decode(QByteArrayView octets, const QByteArray& declared)
{
    const QByteArray name = SetOf(octets, declared);
    if (name == Utf8)
        return {Shown(QString::fromUtf8(octets)), name};
    bool isWhole = false;
    const QString text = Converted(octets, name, &isWhole);
    if (!isWhole && octets.isValidUtf8())
        return {Shown(QString::fromUtf8(octets)), Utf8};
    return {Shown(text), name};
}

bool DecodeInPieces(QByteArrayView octets, const QByteArray& declared,
                    const std::function<bool(const QString& piece)>& take)
{
    const QByteArray name = SetOf(octets, declared);
    bool isUtf8 = name == Utf8;
    if (!isUtf8 && name != Ascii && octets.isValidUtf8()) {
        bool isWhole = false;
        ConvertAll(octets, name, &isWhole, [](QStringView) { return true; });
        isUtf8 = !isWhole;
    }
    if (!isUtf8) {
        bool isWhole = false;
        return ConvertAll(octets, name, &isWhole, [&take](QStringView piece) { return take(Shown(piece.toString())); });
    }
    while (!octets.isEmpty()) {
        qsizetype length = qMin(octets.size(), PieceOctets);
        // Never within a character, which has three further octets at most.
        for (int i = 0; i < 3 && length < octets.size() && (static_cast<uchar>(octets[length]) & 0xC0) == 0x80; ++i)
            --length;
        if (!take(Shown(QString::fromUtf8(octets.first(length)))))
            return false;
        octets = octets.sliced(length);
    }
    return true;
}

std::optional<QByteArray> Encode(const QString& text, const QByteArray& characterSet)
{
    if (characterSet == Utf8)
        return text.toUtf8();
    Converter converter(characterSet.constData(), NativeUtf16);
    if (!converter.IsValid())
        return std::nullopt;
    QByteArrayView units(reinterpret_cast<const char*>(text.constData()), text.size() * qsizetype(sizeof(QChar)));
    QByteArray result;
    const auto append = [&result](QByteArrayView piece) {
        result.append(piece);
        return true;
    };
    if (converter.Convert(&units, append) != Converter::End::Whole)
        return std::nullopt;
    return result;
}

QString WithReferences(const QString& html, const QByteArray& characterSet)
{
    QHash<char32_t, bool> isHeld;
    QString result;
    result.reserve(html.size());
    for (qsizetype i = 0; i < html.size(); ++i) {
        const qsizetype length =
            i + 1 < html.size() && html[i].isHighSurrogate() && html[i + 1].isLowSurrogate() ? 2 : 1;
        const QString character = html.mid(i, length);
        const char32_t code = length == 2 ? QChar::surrogateToUcs4(html[i], html[i + 1]) : html[i].unicode();
        i += length - 1;
        bool held = code < 0x80;
        if (!held) {
            if (!isHeld.contains(code))
                isHeld.insert(code, Encode(character, characterSet).has_value());
            held = isHeld.value(code);
        }
        if (held)
            result.append(character);
        else
            result.append(QStringLiteral("&#%1;").arg(static_cast<uint>(code)));
    }
    return result;
}

QString WithPlainLineEnds(QString text)
{
    if (!text.contains(u'\r'))
        return text;
    // In place, since the text can be large and only ever gets shorter.
    QChar* const units = text.data();
    qsizetype kept = 0;
    qsizetype returns = 0;
    const auto keepReturns = [&] {
        std::fill_n(units + kept, returns, QChar(u'\r'));
        kept += returns;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = units[i];
        if (c == u'\r') {
            ++returns;
            continue;
        }
        if (c != u'\n')
            keepReturns();
        returns = 0;
        units[kept++] = c;
    }
    keepReturns();
    text.truncate(kept);
    return text;
}

} // namespace cdo
