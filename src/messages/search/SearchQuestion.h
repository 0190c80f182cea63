// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "messages/search/SearchWords.h"

#include <QStringList>

#include <optional>

/// What somebody typed to find messages, understood. Plain words are looked for everywhere; a word with one of these in
/// front narrows: "from:", "to:", "in:" a folder, "before:", "after:" a date, "has:attachment", "is:unread", "is:read",
/// "is:sms", "is:email". A blank ends the word unless quotation marks hold it. Whatever is none of these, or has no
/// sense behind it, is looked for as it stands: nothing that is typed is an error. A value.
struct SearchQuestion
{
    enum class Reading
    {
        Finished, ///< Every word is whole.
        Typing    ///< The last one may go on.
    };

    static SearchQuestion Of(const QString& typed, Reading reading);

    QList<SearchWords::Alternatives> Words;
    QList<SearchWords::Alternatives> Sender;
    QList<SearchWords::Alternatives> Recipients;
    QStringList Folders; ///< Folded names or their beginnings; messages in one of those that any of them means.
    Date After;          ///< Local time, from this moment on; none for no bound.
    Date Before;         ///< Up to but not with this moment.
    std::optional<bool> IsUnread;
    std::optional<bool> IsSMS;
    bool HasFiles = false;
    bool IsCut = false; ///< More was typed than is looked for.
    /// Instead of words: the terms of which any has to be there, wherever it stands.
    QList<QByteArray> AnyOf;

    bool HasWords() const { return !Words.isEmpty() || !Sender.isEmpty() || !Recipients.isEmpty() || !AnyOf.isEmpty(); }
    /// Nothing is asked for.
    bool IsEmpty() const;
};

/// What may be typed in front, each with its colon; for completion. Those with a value that is one of a few are whole.
QStringList SearchPrefixes();
