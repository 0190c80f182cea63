// SPDX-License-Identifier: Apache-2.0
#include "common/LocaleDates.h"

#include <QList>
#include <QRegularExpression>

#include <algorithm>

namespace
{
constexpr QLocale::FormatType Formats[] = {QLocale::LongFormat, QLocale::ShortFormat};

/// A piece of one of Qt's date formats: a run of a format letter, or text that stands for itself.
struct FormatToken
{
    QChar Letter; ///< Null for literal text.
    QString Text;
};

QList<FormatToken> Tokens(const QString& format)
{
    static const QString letters = QStringLiteral("dMyhHmszaAtpP");
    QList<FormatToken> tokens;
    bool quoted = false;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QChar character = format.at(i);
        if (character == u'\'') {
            if (i + 1 < format.size() && format.at(i + 1) == u'\'') {
                tokens.append({QChar(), QStringLiteral("'")});
                ++i;
            } else {
                quoted = !quoted;
            }
        } else if (quoted || !letters.contains(character)) {
            tokens.append({QChar(), QString(character)});
        } else if (character.toLower() == u'a') {
            tokens.append({u'a', QString(character)});
        } else if (!tokens.isEmpty() &&
                   ((character.toLower() == u'p' && tokens.last().Letter == u'a') ||
                    (tokens.last().Letter == character && i > 0 && format.at(i - 1) == character))) {
            tokens.last().Text += character;
        } else {
            tokens.append({character, QString(character)});
        }
    }
    return tokens;
}

QString FormatOf(const QList<FormatToken>& tokens)
{
    QString format;
    for (const FormatToken& token : tokens) {
        const bool isLiteral = token.Letter.isNull();
        if (isLiteral && token.Text == u"'")
            format += QStringLiteral("''");
        else if (isLiteral && token.Text.front().isLetter())
            format += u'\'' + token.Text + u'\'';
        else
            format += token.Text;
    }
    return format;
}

/// Digits of every script as 0 to 9, marks of writing direction taken out, every kind of blank as one blank.
QString Plain(const QString& text)
{
    QString plain;
    plain.reserve(text.size());
    for (const uint point : text.toUcs4()) {
        if (QChar::digitValue(point) >= 0 && QChar::category(point) == QChar::Number_DecimalDigit)
            plain += QChar(u'0' + static_cast<char16_t>(QChar::digitValue(point)));
        else if (QChar::category(point) != QChar::Other_Format)
            plain += QString::fromUcs4(reinterpret_cast<const char32_t*>(&point), 1);
    }
    return plain.simplified();
}

/// What a locale calls a month, 1 to 12.
QStringList NamesOfMonth(const QLocale& locale, int month)
{
    QStringList names;
    for (const QLocale::FormatType type : Formats)
        names << Plain(locale.monthName(month, type)) << Plain(locale.standaloneMonthName(month, type));
    return names;
}

/// 1 to 12; 0 for no month. In the locale's words before the English ones: "may" is November in Basaa.
int MonthNamed(const QString& name, const QLocale& locale)
{
    for (const QLocale& names : {locale, QLocale::c()}) {
        for (int month = 1; month <= 12; ++month) {
            if (NamesOfMonth(names, month).contains(name, Qt::CaseInsensitive))
                return month;
        }
    }
    return 0;
}

/// The form in which stations hold moments as text, "22 Nov 2026 10:53:11". Each opening reads one, and making the
/// patterns for all forms takes as long as opening a file.
std::optional<LocaleDates::Moment> StoredMoment(const QString& plain, const QLocale& locale)
{
    const QStringList words = plain.split(u' ');
    if (words.size() != 4 || words.at(0).size() > 2 || words.at(2).size() != 4 || words.at(3).size() != 8)
        return std::nullopt;
    const auto isNumber = [](const QString& word) {
        return std::all_of(word.begin(), word.end(), [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
    };
    const QTime time = QTime::fromString(words.at(3), QStringLiteral("hh:mm:ss"));
    if (!isNumber(words.at(0)) || !isNumber(words.at(2)) || !time.isValid())
        return std::nullopt;
    const QDate date(words.at(2).toInt(), MonthNamed(words.at(1), locale), words.at(0).toInt());
    return date.isValid() ? std::optional(LocaleDates::Moment{date, time}) : std::nullopt;
}

/// The names as an alternation, longest first so that "June" is not read as "Jun"; names[i] means i + 1.
QString Alternation(QStringList names)
{
    names.removeAll(QString());
    names.removeDuplicates();
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) { return a.size() > b.size(); });
    for (QString& name : names)
        name = QRegularExpression::escape(name);
    return QStringLiteral("(?:") + names.join(u'|') + u')';
}

/// A pattern with named groups: d day, b month name, m month, y year, h hour, n minute, s second, f fraction, p noon
/// text.
using Pattern = QRegularExpression;

Pattern Anchored(const QString& pattern)
{
    return Pattern(u'^' + pattern,
                   QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
}

/// Everything that reading a date in one locale needs, made once.
class Reader
{
public:
    explicit Reader(const QLocale& locale);

    const QLocale& Locale() const { return Locale_; }
    std::optional<LocaleDates::Moment> Read(const QString& plain) const;

private:
    QString PatternOf(const QString& format) const;
    void CollectNames();
    void CollectNoonTexts();
    QDate DateOf(const QRegularExpressionMatch& match) const;
    std::optional<QTime> TimeOf(const QRegularExpressionMatch& match) const;
    std::optional<QTime> ReadTime(const QString& text) const;

    QLocale Locale_;
    bool MonthFirst_ = false;
    QStringList DayNames_;
    QStringList MorningTexts_;
    QStringList NoonTexts_;
    QString MonthPattern_;
    QString DayNamePattern_;
    QString NoonPattern_;
    QList<Pattern> Dates_;
    QList<Pattern> Times_;
};

Reader::Reader(const QLocale& locale) : Locale_(locale)
{
    CollectNames();
    CollectNoonTexts();
    const QString shortDate = LocaleDates::ShortDateFormat(locale);
    MonthFirst_ = shortDate.indexOf(u'M') < shortDate.indexOf(u'd');

    const QString year = QStringLiteral("(?<y>\\d{4}|\\d{2})(?!\\d)");
    const QString dayName = QStringLiteral("(?:") + DayNamePattern_ + QStringLiteral("\\.?,? ?)?");
    Dates_.append(Anchored(PatternOf(shortDate) + QStringLiteral("(?!\\d)")));
    Dates_.append(Anchored(PatternOf(locale.dateFormat(QLocale::LongFormat)) + QStringLiteral("(?!\\d)")));
    Dates_.append(Anchored(QStringLiteral("(?<y>\\d{4})([-/.])(?<m>\\d{1,2})\\2(?<d>\\d{1,2})(?!\\d)")));
    Dates_.append(Anchored(dayName + QStringLiteral("(?<d>\\d{1,2})([-/.])(?<m>\\d{1,2})\\2") + year));
    Dates_.append(Anchored(dayName + QStringLiteral("(?<d>\\d{1,2})(?:st|nd|rd|th|\\.)?[ -]?(?<b>") + MonthPattern_ +
                           QStringLiteral(")\\.?,?[ -]?") + year));
    Dates_.append(Anchored(dayName + QStringLiteral("(?<b>") + MonthPattern_ +
                           QStringLiteral(")\\.? (?<d>\\d{1,2})(?:st|nd|rd|th)?,? ") + year));

    const QString noon = QStringLiteral("(?<p>") + NoonPattern_ + u')';
    for (const QLocale::FormatType type : Formats)
        Times_.append(Anchored(PatternOf(locale.timeFormat(type)) + u'$'));
    Times_.append(Anchored(PatternOf(LocaleDates::LongTimeFormat(locale)) + u'$'));
    Times_.append(Anchored(QStringLiteral("(?<h>\\d{1,2}):(?<n>\\d{2})(?::(?<s>\\d{2})(?:[.,](?<f>\\d{1,9}))?)?(?: ?") +
                           noon + QStringLiteral(")?$")));
    Times_.append(Anchored(QStringLiteral("(?<h>\\d{2}):(?<n>\\d{2})(?::(?<s>\\d{2})(?:[.,](?<f>\\d{1,9}))?)?"
                                          "(?:Z|[+-]\\d{2}:?\\d{2})$")));
    Times_.append(Anchored(QStringLiteral("(?<h>\\d{1,2}) ?") + noon + u'$'));
}

void Reader::CollectNames()
{
    QStringList months;
    for (const QLocale& locale : {Locale_, QLocale::c()}) {
        for (int month = 1; month <= 12; ++month)
            months += NamesOfMonth(locale, month);
        for (const QLocale::FormatType type : Formats) {
            for (int day = 1; day <= 7; ++day)
                DayNames_ << Plain(locale.dayName(day, type)) << Plain(locale.standaloneDayName(day, type));
        }
    }
    MonthPattern_ = Alternation(months);
    DayNamePattern_ = Alternation(DayNames_);
}

void Reader::CollectNoonTexts()
{
    MorningTexts_ << QStringLiteral("AM") << QStringLiteral("a.m.") << Plain(Locale_.amText());
    NoonTexts_ << QStringLiteral("PM") << QStringLiteral("p.m.") << Plain(Locale_.pmText());
    NoonPattern_ = Alternation(MorningTexts_ + NoonTexts_);
}

/// The regular expression for what a format of Qt's writes. The zone's name does not appear in it.
QString Reader::PatternOf(const QString& format) const
{
    QString pattern;
    QString seen;
    const auto group = [&](QChar name, const QString& body) {
        pattern += seen.contains(name) ? QStringLiteral("(?:") + body + u')'
                                       : QStringLiteral("(?<") + QString(name) + u'>' + body + u')';
        seen += name;
    };
    const QString digits = QStringLiteral("\\d{1,2}");
    for (const FormatToken& token : Tokens(format)) {
        switch (token.Letter.unicode()) {
        case u'y':
            group(u'y', QStringLiteral("\\d{4}|\\d{2}"));
            break;
        case u'M':
            token.Text.size() > 2 ? group(u'b', MonthPattern_) : group(u'm', digits);
            break;
        case u'd':
            if (token.Text.size() > 2)
                pattern += DayNamePattern_;
            else
                group(u'd', digits);
            break;
        case u'h':
        case u'H':
            group(u'h', digits);
            break;
        case u'm':
            group(u'n', digits);
            break;
        case u's':
            group(u's', digits);
            break;
        case u'z':
            group(u'f', QStringLiteral("\\d{1,9}"));
            break;
        case u'a':
            group(u'p', NoonPattern_);
            break;
        case 0: {
            const QString literal = Plain(token.Text);
            pattern += literal.isEmpty() ? QStringLiteral(" ?") : QRegularExpression::escape(literal);
            break;
        }
        default:
            break;
        }
    }
    return pattern;
}

QDate Reader::DateOf(const QRegularExpressionMatch& match) const
{
    const QString yearText = match.captured(u"y");
    int year = yearText.toInt();
    if (yearText.size() == 2)
        year += year < 30 ? 2000 : 1900;
    const int day = match.captured(u"d").toInt();
    if (!match.captured(u"b").isEmpty())
        return QDate(year, MonthNamed(match.captured(u"b"), Locale_), day);

    const int month = match.captured(u"m").toInt();
    const bool yearLast = match.capturedStart(u"y") > match.capturedStart(u"d");
    if (!yearLast)
        return QDate(year, month, day);
    // The first number is the day in the pattern of all orders; the locale says which is meant.
    const bool dayFirst = match.capturedStart(u"d") < match.capturedStart(u"m");
    const int first = dayFirst ? day : month;
    const int second = dayFirst ? month : day;
    const QDate usual = MonthFirst_ ? QDate(year, first, second) : QDate(year, second, first);
    const QDate other = MonthFirst_ ? QDate(year, second, first) : QDate(year, first, second);
    return usual.isValid() ? usual : other;
}

std::optional<QTime> Reader::TimeOf(const QRegularExpressionMatch& match) const
{
    int hour = match.captured(u"h").toInt();
    const QString noon = match.captured(u"p");
    if (!noon.isEmpty()) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (NoonTexts_.contains(noon, Qt::CaseInsensitive) ? 12 : 0);
    }
    const int milliseconds = match.captured(u"f").leftJustified(3, u'0').left(3).toInt();
    const QTime time(hour, match.captured(u"n").toInt(), match.captured(u"s").toInt(), milliseconds);
    return time.isValid() ? std::optional(time) : std::nullopt;
}

std::optional<QTime> Reader::ReadTime(const QString& text) const
{
    for (const Pattern& pattern : Times_) {
        if (const auto match = pattern.match(text); match.hasMatch()) {
            if (const auto time = TimeOf(match))
                return time;
        }
    }
    return std::nullopt;
}

std::optional<LocaleDates::Moment> Reader::Read(const QString& plain) const
{
    static const QRegularExpression between(QStringLiteral("^(?:T(?=\\d)|,? )"));
    for (const Pattern& pattern : Dates_) {
        const auto match = pattern.match(plain);
        if (!match.hasMatch())
            continue;
        const QDate date = DateOf(match);
        if (!date.isValid())
            continue;
        const QString rest = plain.mid(match.capturedEnd());
        if (rest.isEmpty())
            return LocaleDates::Moment{date, QTime(0, 0)};
        const auto gap = between.match(rest);
        if (!gap.hasMatch())
            continue;
        if (const auto time = ReadTime(rest.mid(gap.capturedEnd())))
            return LocaleDates::Moment{date, *time};
    }
    if (const auto time = ReadTime(plain))
        return LocaleDates::Moment{QDate(), *time};
    return std::nullopt;
}
QString MakeShortDateFormat(const QLocale& locale)
{
    QList<FormatToken> tokens = Tokens(locale.dateFormat(QLocale::ShortFormat));
    for (FormatToken& token : tokens) {
        if (token.Letter == u'y')
            token.Text = QStringLiteral("yyyy");
    }
    return FormatOf(tokens);
}

QString MakeLongTimeFormat(const QLocale& locale)
{
    static const QString brackets = QStringLiteral("()[] ");
    QList<FormatToken> tokens = Tokens(locale.timeFormat(QLocale::LongFormat));
    for (qsizetype i = 0; i < tokens.size(); ++i) {
        if (tokens.at(i).Letter != u't')
            continue;
        tokens.removeAt(i);
        while (i < tokens.size() && tokens.at(i).Letter.isNull() && brackets.contains(tokens.at(i).Text))
            tokens.removeAt(i);
        while (i > 0 && tokens.at(i - 1).Letter.isNull() && brackets.contains(tokens.at(i - 1).Text))
            tokens.removeAt(--i);
        break;
    }
    return FormatOf(tokens);
}

/// Both take long to make, and a list asks for them with each of its rows.
struct DateFormats
{
    explicit DateFormats(const QLocale& locale)
        : Locale(locale), ShortDate(MakeShortDateFormat(locale)), LongTime(MakeLongTimeFormat(locale))
    {
    }

    QLocale Locale;
    QString ShortDate;
    QString LongTime;
    // The day that was written last: lists are sorted by it.
    QDate Day;
    QString DayText;
};

DateFormats& FormatsOf(const QLocale& locale)
{
    thread_local std::optional<DateFormats> formats;
    if (!formats || formats->Locale != locale)
        formats.emplace(locale);
    return *formats;
}
} // namespace

QString LocaleDates::ShortDateFormat(const QLocale& locale)
{
    return FormatsOf(locale).ShortDate;
}

QString LocaleDates::LongTimeFormat(const QLocale& locale)
{
    return FormatsOf(locale).LongTime;
}

QString LocaleDates::ShortDate(QDate date, const QLocale& locale)
{
    DateFormats& formats = FormatsOf(locale);
    if (formats.Day != date) {
        formats.Day = date;
        formats.DayText = locale.toString(date, formats.ShortDate);
    }
    return formats.DayText;
}

std::optional<LocaleDates::Moment> LocaleDates::Parse(const QString& text, const QLocale& locale)
{
    thread_local std::optional<Reader> reader;
    const QString plain = Plain(text);
    if (plain.isEmpty())
        return std::nullopt;
    if (const auto stored = StoredMoment(plain, locale))
        return stored;
    if (!reader || reader->Locale() != locale)
        reader.emplace(locale);
    return reader->Read(plain);
}
