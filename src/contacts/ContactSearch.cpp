// SPDX-License-Identifier: Apache-2.0
#include "contacts/ContactSearch.h"

#include "common/GeneralHelper.h"
#include "common/SearchFold.h"
#include "contacts/PhoneDigits.h"

#include <algorithm>

namespace
{
/// A word of digits and of what stands between them in a number.
bool IsPartOfNumber(const QString& word)
{
    return std::all_of(word.begin(), word.end(), [](QChar character) {
        return character.isDigit() || QStringLiteral("+-()./").contains(character);
    });
}

/// Digits that were typed with blanks between them are one number. A whole one counts without its country code, so that
/// it finds its other ways of writing.
QString NumberTyped(const QStringList& words)
{
    if (words.isEmpty() || !std::all_of(words.begin(), words.end(), IsPartOfNumber))
        return QString();
    QString digits = GeneralHelper::PhoneNumberKey(words.join(u' '));
    if (digits.isEmpty())
        digits = PhoneDigits(words.join(QString()));
    while (digits.startsWith(u'0'))
        digits.remove(0, 1);
    return digits;
}

bool BeginsAWord(const QString& text, const QString& word)
{
    for (qsizetype at = text.indexOf(word); at >= 0; at = text.indexOf(word, at + 1)) {
        if (at == 0 || !text.at(at - 1).isLetterOrNumber())
            return true;
    }
    return false;
}
} // namespace

ContactSearch::ContactSearch(const QList<clsKVContactPtr>& contacts) : Contacts_(contacts)
{
    Entries_.reserve(contacts.size());
    for (const clsKVContactPtr& contact : contacts) {
        const QStringList details{contact->Name,  contact->Mobile,      contact->Telephone,
                                  contact->Email, contact->SecondEmail, contact->Other};
        Entries_.append({SearchFold::Folded(contact->Name), SearchFold::Folded(details.join(u'\n')),
                         PhoneDigits(contact->Mobile) + u'\n' + PhoneDigits(contact->Telephone) + u'\n' +
                             PhoneDigits(contact->Other)});
    }
}

QList<clsKVContactPtr> ContactSearch::Find(const QString& text, int limit) const
{
    const QStringList words = SearchFold::Folded(text).simplified().split(u' ', Qt::SkipEmptyParts);
    const QString number = NumberTyped(words);
    QList<clsKVContactPtr> first;
    QList<clsKVContactPtr> others;
    for (qsizetype i = 0; i < Entries_.size(); ++i) {
        const Entry& entry = Entries_.at(i);
        const bool fits = std::all_of(words.begin(), words.end(),
                                      [&entry](const QString& word) { return entry.Details.contains(word); });
        if (!fits && (number.size() < 3 || !entry.Numbers.contains(number)))
            continue;
        if (words.isEmpty() || BeginsAWord(entry.Name, words.first()))
            first.append(Contacts_.at(i));
        else
            others.append(Contacts_.at(i));
        if (limit >= 0 && first.size() >= limit)
            break;
    }
    first.append(others);
    return limit >= 0 ? first.mid(0, limit) : first;
}
