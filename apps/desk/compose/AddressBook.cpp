// SPDX-License-Identifier: Apache-2.0
#include "AddressBook.h"

#include "common/SearchFold.h"

#include <algorithm>
#include <utility>

namespace
{
/// The words of a folded text: what stands between characters that are neither letters nor digits, and the text from
/// each of its blanks on, so that "ann.s" and "o'n" find what they look like.
QStringList WordsOf(const QString& folded)
{
    QStringList words;
    bool isWithin = false;
    for (qsizetype i = 0; i < folded.size(); ++i) {
        const QChar character = folded.at(i);
        const bool isLetter = character.isLetterOrNumber() || character.isSurrogate() || character.isMark();
        if (isLetter && !isWithin) {
            const qsizetype blank = folded.indexOf(u' ', i);
            words.append(folded.mid(i, blank < 0 ? -1 : blank - i));
        }
        isWithin = isLetter;
    }
    return words;
}

QString DigitsOf(const QString& text)
{
    QString digits;
    for (const QChar character : text) {
        if (character.isDigit())
            digits += character;
    }
    return digits;
}

bool IsNumber(const QString& text)
{
    return !DigitsOf(text).isEmpty() && std::none_of(text.begin(), text.end(), [](QChar c) { return c.isLetter(); });
}
} // namespace

AddressBook::AddressBook(const QList<clsKVContactPtr>& contacts, enMsgType type) : Type_(type)
{
    for (const clsKVContactPtr& contact : contacts)
        Take(*contact);
    Sort();
}

void AddressBook::Take(const clsKVContact& contact)
{
    if (Type_ == emtSMS) {
        Add(contact.Name, contact.Mobile);
        return;
    }
    Add(contact.Name, contact.Email);
    if (contact.SecondEmail.compare(contact.Email, Qt::CaseInsensitive) != 0)
        Add(contact.Name, contact.SecondEmail);
}

void AddressBook::Add(const QString& name, const QString& address)
{
    if (address.trimmed().isEmpty())
        return;
    Row row;
    row.Shown = {name.simplified(), address.trimmed()};
    row.Name = SearchFold::Folded(row.Shown.Name);
    row.Words = WordsOf(row.Name);
    if (Type_ == emtSMS)
        row.Digits = DigitsOf(address);
    else
        row.Words += WordsOf(SearchFold::Folded(row.Shown.Address));
    Rows_.append(std::move(row));
}

void AddressBook::Sort()
{
    std::stable_sort(Rows_.begin(), Rows_.end(),
                     [](const Row& one, const Row& other) { return one.Name < other.Name; });
}

QList<AddressBook::Entry> AddressBook::Matching(const QString& typed, int limit) const
{
    const QStringList wanted = SearchFold::Folded(typed).simplified().split(u' ', Qt::SkipEmptyParts);
    const QString digits = IsNumber(typed) ? DigitsOf(typed) : QString();
    const bool canMatch =
        std::any_of(typed.begin(), typed.end(), [](QChar c) { return c.isLetterOrNumber() || c.isSurrogate(); });
    QList<Entry> found;
    for (const Row& row : Rows_) {
        if (!canMatch || found.size() >= limit)
            break;
        const bool matches = std::all_of(wanted.begin(), wanted.end(), [&row](const QString& word) {
            return std::any_of(row.Words.begin(), row.Words.end(),
                               [&word](const QString& known) { return known.startsWith(word); });
        });
        if (matches || (!digits.isEmpty() && row.Digits.startsWith(digits)))
            found.append(row.Shown);
    }
    return found;
}
