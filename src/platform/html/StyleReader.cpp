// SPDX-License-Identifier: Apache-2.0
#include "platform/html/StyleReader.h"

#include "platform/html/Colours.h"

#include <QHash>
#include <QStringList>

#include <cmath>

namespace
{
constexpr double PixelsPerPoint = 96.0 / 72;
constexpr double PointsPerEm = 12;
constexpr int LargestLength = 2000;

/// Without comments and with escapes resolved, in the way that a browser reads it.
QString Plain(const QString& text)
{
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == u'/' && text.mid(i, 2) == QLatin1String("/*")) {
            const qsizetype end = text.indexOf(QLatin1String("*/"), i + 2);
            i = end < 0 ? text.size() : end + 1;
            continue;
        }
        if (text.at(i) != u'\\') {
            plain += text.at(i);
            continue;
        }
        qsizetype end = i + 1;
        uint code = 0;
        while (end < text.size() && end - i <= 6 && text.at(end).isLetterOrNumber()) {
            bool isDigit = false;
            const uint digit = text.mid(end, 1).toUInt(&isDigit, 16);
            if (!isDigit)
                break;
            code = code * 16 + digit;
            ++end;
        }
        if (end > i + 1) {
            plain += code > 0x20 && code < 0xD800 ? QChar(code) : QChar(u' ');
            i = end < text.size() && text.at(end).isSpace() ? end : end - 1;
        }
    }
    return plain;
}

/// Splits where the separator stands outside quotes and parentheses.
QStringList Split(const QString& text, QChar separator)
{
    QStringList parts;
    QString part;
    QChar quote;
    int depth = 0;
    for (const QChar character : text) {
        if (!quote.isNull()) {
            quote = character == quote ? QChar() : quote;
        } else if (character == u'"' || character == u'\'') {
            quote = character;
        } else if (character == u'(') {
            ++depth;
        } else if (character == u')') {
            depth = std::max(depth - 1, 0);
        } else if (depth == 0 && (character == separator || (separator == u' ' && character.isSpace()))) {
            parts.append(part);
            part.clear();
            continue;
        }
        part += character;
    }
    parts.append(part);
    parts.removeAll(QString());
    return parts;
}

/// A number with its unit, in pixels; "%" is refused.
std::optional<double> ReadPixels(const QString& text, double emPixels = PointsPerEm * PixelsPerPoint)
{
    qsizetype end = 0;
    while (end < text.size() &&
           (text.at(end).isDigit() || text.at(end) == u'.' || text.at(end) == u'-' || text.at(end) == u'+'))
        ++end;
    bool isNumber = false;
    const double number = text.left(end).toDouble(&isNumber);
    if (!isNumber || !std::isfinite(number))
        return std::nullopt;
    const QString unit = text.mid(end).trimmed();
    static const QHash<QString, double> factors{{QString(), 1},
                                                {QStringLiteral("px"), 1},
                                                {QStringLiteral("pt"), PixelsPerPoint},
                                                {QStringLiteral("pc"), 16},
                                                {QStringLiteral("in"), 96},
                                                {QStringLiteral("cm"), 96 / 2.54},
                                                {QStringLiteral("mm"), 96 / 25.4}};
    if (unit == QLatin1String("em") || unit == QLatin1String("rem"))
        return number * emPixels;
    if (unit == QLatin1String("ex"))
        return number * emPixels / 2;
    const auto factor = factors.constFind(unit);
    if (factor == factors.constEnd())
        return std::nullopt;
    return number * *factor;
}

std::optional<int> ReadLength(const QString& text, int largest)
{
    const std::optional<double> pixels = ReadPixels(text);
    if (!pixels || *pixels < 0 || *pixels > LargestLength)
        return std::nullopt;
    return std::min(qRound(*pixels), largest);
}

void ReadSides(const QString& value, int largest, std::array<std::optional<int>, 4>* sides)
{
    const QStringList parts = Split(value, u' ');
    if (parts.isEmpty() || parts.size() > 4)
        return;
    // One value is for all sides, two are for top and right, and what is missing is as on the side across.
    const qsizetype count = parts.size();
    const std::array<qsizetype, 4> indices{0, count > 1 ? 1 : 0, count > 2 ? 2 : 0, count > 3 ? 3 : count > 1 ? 1 : 0};
    for (size_t i = 0; i < indices.size(); ++i)
        (*sides)[i] = ReadLength(parts.at(indices[i]), largest);
}

bool ReadFontSize(const QString& value, PageStyle* style)
{
    static const QHash<QString, double> words{{QStringLiteral("xx-small"), 7}, {QStringLiteral("x-small"), 7.5},
                                              {QStringLiteral("small"), 10},   {QStringLiteral("medium"), 12},
                                              {QStringLiteral("large"), 13.5}, {QStringLiteral("x-large"), 18},
                                              {QStringLiteral("xx-large"), 24}};
    const auto word = words.constFind(value);
    if (word != words.constEnd()) {
        style->FontPoints = *word;
        return true;
    }
    if (value == QLatin1String("larger") || value == QLatin1String("smaller")) {
        style->FontTimes = value == QLatin1String("larger") ? 1.2 : 1 / 1.2;
        return true;
    }
    if (value.endsWith(u'%')) {
        bool isNumber = false;
        const double number = value.left(value.size() - 1).toDouble(&isNumber);
        if (isNumber && std::isfinite(number) && number > 0)
            style->FontTimes = number / 100;
        return isNumber;
    }
    const bool isRelative = value.endsWith(QLatin1String("em")) && !value.endsWith(QLatin1String("rem"));
    const std::optional<double> pixels = ReadPixels(value, isRelative ? 1 : PointsPerEm * PixelsPerPoint);
    // A bare number is no size of a font but 0, and 0 hides.
    if (!pixels || *pixels <= 0 || value.back().isDigit())
        return false;
    if (isRelative)
        style->FontTimes = *pixels;
    else
        style->FontPoints = *pixels / PixelsPerPoint;
    return true;
}

void ReadFontWeight(const QString& value, PageStyle* style)
{
    bool isNumber = false;
    const int weight = value.toInt(&isNumber);
    if (isNumber)
        style->Bold = weight >= 600;
    else if (value == QLatin1String("bold") || value == QLatin1String("bolder"))
        style->Bold = true;
    else if (value == QLatin1String("normal") || value == QLatin1String("lighter"))
        style->Bold = false;
}

/// "italic bold 12px/1.5 Arial, sans-serif"
void ReadFont(const QString& value, PageStyle* style)
{
    const QStringList parts = Split(value, u' ');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const QString part = parts.at(i).toLower();
        if (part == QLatin1String("italic") || part == QLatin1String("oblique")) {
            style->Italic = true;
        } else if (part == QLatin1String("bold")) {
            style->Bold = true;
        } else if (ReadFontSize(part.section(u'/', 0, 0), style)) {
            style->FontFamily = ReadFontFamily(QStringList(parts.mid(i + 1)).join(u' '));
            return;
        }
    }
}

void ReadBorder(const QString& value, PageStyle* style)
{
    for (const QString& part : Split(value, u' ')) {
        const QString word = part.toLower();
        if (word == QLatin1String("none") || word == QLatin1String("hidden"))
            style->BorderWidth = 0;
        else if (const std::optional<int> width = ReadLength(word, 8))
            style->BorderWidth = width;
        else if (const std::optional<quint32> colour = Colours::Read(word))
            style->BorderColour = colour;
        else if (word == QLatin1String("solid") && !style->BorderWidth)
            style->BorderWidth = 1;
    }
}

QString OneOf(const QString& value, std::initializer_list<const char*> words)
{
    for (const char* word : words) {
        if (value == QLatin1String(word))
            return value;
    }
    return {};
}

void ReadDecoration(const QString& value, PageStyle* style)
{
    const QStringList words = Split(value, u' ');
    style->Underline = words.contains(QLatin1String("underline"));
    style->StrikeOut = words.contains(QLatin1String("line-through"));
}

using Reader = void (*)(const QString& value, PageStyle* style);

template <PageStyle::Side side>
void ReadMarginSide(const QString& value, PageStyle* style)
{
    style->Margin[side] = ReadLength(value, 100);
}

template <PageStyle::Side side>
void ReadPaddingSide(const QString& value, PageStyle* style)
{
    style->Padding[side] = ReadLength(value, 60);
}

void ReadBackground(const QString& value, PageStyle* style)
{
    for (const QString& part : Split(value, u' ')) {
        if (const std::optional<quint32> colour = Colours::Read(part))
            style->Background = colour;
    }
}

const QHash<QString, Reader>& Readers()
{
    static const QHash<QString, Reader> readers{
        {QStringLiteral("color"), [](auto& value, auto* style) { style->Colour = Colours::Read(value); }},
        {QStringLiteral("background"), ReadBackground},
        {QStringLiteral("background-color"), ReadBackground},
        {QStringLiteral("font"), ReadFont},
        {QStringLiteral("font-size"), [](auto& value, auto* style) { ReadFontSize(value, style); }},
        {QStringLiteral("font-family"), [](auto& value, auto* style) { style->FontFamily = ReadFontFamily(value); }},
        {QStringLiteral("font-weight"), ReadFontWeight},
        {QStringLiteral("font-style"), [](auto& value, auto* style) { style->Italic = value != u"normal"; }},
        {QStringLiteral("text-decoration"), ReadDecoration},
        {QStringLiteral("text-decoration-line"), ReadDecoration},
        {QStringLiteral("text-align"),
         [](auto& value, auto* style) {
             style->Align = OneOf(value, {"left", "right", "center", "justify"});
         }},
        {QStringLiteral("vertical-align"),
         [](auto& value, auto* style) {
             style->VerticalAlign = OneOf(value, {"top", "middle", "bottom", "sub", "super"});
         }},
        {QStringLiteral("margin"), [](auto& value, auto* style) { ReadSides(value, 100, &style->Margin); }},
        {QStringLiteral("margin-top"), ReadMarginSide<PageStyle::Top>},
        {QStringLiteral("margin-right"), ReadMarginSide<PageStyle::Right>},
        {QStringLiteral("margin-bottom"), ReadMarginSide<PageStyle::Bottom>},
        {QStringLiteral("margin-left"), ReadMarginSide<PageStyle::Left>},
        {QStringLiteral("padding"), [](auto& value, auto* style) { ReadSides(value, 60, &style->Padding); }},
        {QStringLiteral("padding-top"), ReadPaddingSide<PageStyle::Top>},
        {QStringLiteral("padding-right"), ReadPaddingSide<PageStyle::Right>},
        {QStringLiteral("padding-bottom"), ReadPaddingSide<PageStyle::Bottom>},
        {QStringLiteral("padding-left"), ReadPaddingSide<PageStyle::Left>},
        {QStringLiteral("width"), [](auto& value, auto* style) { style->Width = ReadWidth(value); }},
        {QStringLiteral("border"), ReadBorder},
        {QStringLiteral("border-width"), ReadBorder},
        {QStringLiteral("border-style"), ReadBorder},
        {QStringLiteral("border-color"), ReadBorder},
        {QStringLiteral("list-style"),
         [](auto& value, auto* style) {
             style->ListStyle = OneOf(value, {"none", "disc", "circle", "square", "decimal", "lower-alpha",
                                              "upper-alpha", "lower-roman", "upper-roman"});
         }},
        {QStringLiteral("white-space"),
         [](auto& value, auto* style) { style->KeepsBlanks = value.startsWith(QLatin1String("pre")); }},
        {QStringLiteral("display"), [](auto& value, auto* style) { style->IsHidden = value == u"none"; }},
        {QStringLiteral("direction"), [](auto& value, auto* style) { style->RightToLeft = value == u"rtl"; }},
    };
    return readers;
}

bool Fetches(const QString& plain)
{
    for (const char* word : {"url(", "image(", "image-set(", "@import", "src("}) {
        if (plain.contains(QLatin1String(word)))
            return true;
    }
    return false;
}

bool Runs(const QString& plain)
{
    for (const char* word : {"expression(", "javascript:", "vbscript:", "behavior:", "-moz-binding"}) {
        if (plain.contains(QLatin1String(word)))
            return true;
    }
    return false;
}
} // namespace

PageStyle ReadStyle(const QString& declarations)
{
    constexpr qsizetype Longest = 20000;
    PageStyle style;
    const QString plain = Plain(declarations);
    QString compact = plain.toLower();
    compact.remove(u' ').remove(u'\t').remove(u'\n').remove(u'\r').remove(u'\f');
    style.HasRemoteContent = Fetches(compact);
    style.HasActiveContent = Runs(compact);
    if (plain.size() > Longest)
        return style;
    for (const QString& declaration : Split(plain, u';')) {
        const qsizetype colon = declaration.indexOf(u':');
        QString name = declaration.left(std::max(colon, qsizetype{0})).trimmed().toLower();
        QString value = declaration.mid(colon + 1);
        value = value.section(u'!', 0, 0).trimmed();
        if (name == QLatin1String("list-style-type"))
            name = QStringLiteral("list-style");
        if (const Reader reader = value.isEmpty() ? nullptr : Readers().value(name))
            reader(name == QLatin1String("font") ? value : value.toLower(), &style);
    }
    return style;
}

bool NamesRemoteContent(const QString& styleSheet)
{
    QString plain = Plain(styleSheet).toLower();
    return Fetches(plain.remove(u' '));
}

QString ReadWidth(const QString& text)
{
    QString number = text.trimmed().toLower();
    const bool isPercentage = number.endsWith(u'%');
    if (isPercentage) {
        bool isNumber = false;
        const double value = number.chopped(1).toDouble(&isNumber);
        return isNumber && value >= 1 && value <= 100 ? QStringLiteral("%1%").arg(qRound(value)) : QString();
    }
    const std::optional<int> pixels = ReadLength(number, LargestLength);
    return pixels && *pixels > 0 ? QString::number(*pixels) : QString();
}

QString ReadFontFamily(const QString& text)
{
    constexpr qsizetype MostNames = 8;
    constexpr qsizetype LongestName = 40;
    QStringList names;
    for (QString name : Split(text, u',')) {
        name = name.remove(u'"').remove(u'\'').simplified();
        const bool isName =
            !name.isEmpty() && name.size() <= LongestName && std::all_of(name.begin(), name.end(), [](QChar character) {
                return character.isLetterOrNumber() || character == u' ' || character == u'-' || character == u'_';
            });
        if (isName && names.size() < MostNames)
            names.append(QStringLiteral("'%1'").arg(name));
    }
    return names.join(QStringLiteral(", "));
}
