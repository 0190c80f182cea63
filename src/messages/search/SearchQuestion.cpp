// SPDX-License-Identifier: Apache-2.0
#include "messages/search/SearchQuestion.h"

#include "common/ClockHelper.h"
#include "common/SearchFold.h"

#include <QDate>
#include <QRegularExpression>

#include <algorithm>

namespace
{
/// Nobody types more; what is pasted beyond it is left out.
constexpr qsizetype LongestQuestion = 1000;
constexpr qsizetype MostWords = 32;

/// One word as it was typed.
struct Typed
{
    QString Text;   ///< With its prefix.
    QString Prefix; ///< In lower case, without its colon; empty for none.
    QString Value;  ///< Without its quotation marks.
    bool IsLast = false;
};

bool IsQuotationMark(QChar character)
{
    return SearchFold::KeyboardMark(character) == u'"';
}

/// Behind the word that begins here; quotation marks behind a colon keep blanks together.
qsizetype EndOfWord(const QString& typed, qsizetype begin)
{
    bool isQuoted = false;
    for (qsizetype i = begin; i < typed.size(); ++i) {
        const QChar character = typed.at(i);
        if (isQuoted && IsQuotationMark(character))
            return i + 1;
        if (!isQuoted && i > begin && typed.at(i - 1) == u':' && IsQuotationMark(character))
            isQuoted = true;
        else if (!isQuoted && character.isSpace())
            return i;
    }
    return typed.size();
}

Typed WordAt(const QString& typed, qsizetype begin, qsizetype end)
{
    Typed word;
    word.Text = typed.mid(begin, end - begin);
    word.IsLast = end == typed.size();
    const qsizetype colon = word.Text.indexOf(u':');
    if (colon > 0) {
        word.Prefix = word.Text.left(colon).toLower();
        word.Value = word.Text.mid(colon + 1);
        if (word.Value.size() > 1 && IsQuotationMark(word.Value.front()) && IsQuotationMark(word.Value.back())) {
            word.Value = word.Value.mid(1, word.Value.size() - 2);
            word.IsLast = false;
        } else if (!word.Value.isEmpty() && IsQuotationMark(word.Value.front())) {
            word.Value.remove(0, 1);
        }
    }
    return word;
}

/// When a day, month or year begins; none for what is none.
Date BeginOf(const QString& text)
{
    static const QRegularExpression parts(QStringLiteral("^(\\d{4})(?:-(\\d{1,2}))?$"));
    const QRegularExpressionMatch match = parts.match(text);
    QDate day;
    if (match.hasMatch())
        day = QDate(match.captured(1).toInt(), match.captured(2).isEmpty() ? 1 : match.captured(2).toInt(), 1);
    else if (text == u"today" || text == u"yesterday")
        day = ClockHelper::CurrentTime().ToDateTime().date().addDays(text == u"today" ? 0 : -1);
    else if (const std::optional<Date> read = Date::Parse(text); read && read->DayNumber() >= 1)
        day = read->ToDateTime().date();
    return day.isValid() ? Date(day.year(), day.month(), day.day()) : Date();
}

bool TakeState(const QString& value, SearchQuestion& question)
{
    if (value == u"unread" || value == u"read")
        question.IsUnread = value == u"unread";
    else if (value == u"sms" || value == u"email")
        question.IsSMS = value == u"sms";
    else
        return false;
    return true;
}

bool TakeDate(const Typed& word, SearchQuestion& question)
{
    const bool isAfter = word.Prefix == u"after";
    const Date date = BeginOf(word.Value.trimmed().toLower());
    if (date.IsNone())
        return false;
    (isAfter ? question.After : question.Before) = date;
    return true;
}

bool TakePeople(const Typed& word, bool isTyping, SearchQuestion& question)
{
    const QList<SearchWords::Alternatives> people = SearchWords::Wanted(word.Value, isTyping && word.IsLast);
    (word.Prefix == u"from" ? question.Sender : question.Recipients) += people;
    return !people.isEmpty();
}

/// Whether the word narrows; otherwise it is one that is looked for.
bool TakeNarrowing(const Typed& word, bool isTyping, SearchQuestion& question)
{
    const QString& prefix = word.Prefix;
    if (prefix == u"from" || prefix == u"to")
        return TakePeople(word, isTyping, question);
    if (prefix == u"before" || prefix == u"after")
        return TakeDate(word, question);
    if (prefix == u"is")
        return TakeState(word.Value.toLower(), question);
    if (prefix == u"has" && (word.Value.toLower() == u"attachment" || word.Value.toLower() == u"attachments")) {
        question.HasFiles = true;
        return true;
    }
    const QString folder = SearchFold::Folded(word.Value).remove(u' ');
    if (prefix == u"in" && !folder.isEmpty()) {
        question.Folders.append(folder);
        return true;
    }
    return false;
}
} // namespace

SearchQuestion SearchQuestion::Of(const QString& typed, Reading reading)
{
    const bool isTyping = reading == Reading::Typing;
    const QString text = typed.left(LongestQuestion);
    SearchQuestion question;
    question.IsCut = typed.size() > text.size();
    QString plain;
    bool isLastPlain = false;
    for (qsizetype begin = 0; begin < text.size();) {
        if (text.at(begin).isSpace()) {
            isLastPlain = false;
            ++begin;
            continue;
        }
        const qsizetype end = EndOfWord(text, begin);
        const Typed word = WordAt(text, begin, end);
        isLastPlain = !TakeNarrowing(word, isTyping, question);
        if (isLastPlain)
            plain += (plain.isEmpty() ? QString() : QStringLiteral(" ")) + word.Text;
        begin = end;
    }
    question.Words = SearchWords::Wanted(plain, isTyping && isLastPlain);
    question.IsCut = question.IsCut || question.Words.size() >= MostWords;
    return question;
}

bool SearchQuestion::IsEmpty() const
{
    return !HasWords() && Folders.isEmpty() && After.IsNone() && Before.IsNone() && !IsUnread && !IsSMS && !HasFiles;
}

QStringList SearchPrefixes()
{
    return {QStringLiteral("from:"),     QStringLiteral("to:"),     QStringLiteral("in:"),
            QStringLiteral("before:"),   QStringLiteral("after:"),  QStringLiteral("has:attachment"),
            QStringLiteral("is:unread"), QStringLiteral("is:read"), QStringLiteral("is:sms"),
            QStringLiteral("is:email")};
}
