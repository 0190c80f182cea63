// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "answering/SongQuestion.h"
#include "messages/cMessage.h"
#include "platform/Export.h"
#include "platform/records/Database.h"

#include <optional>

class cTolvaDatabase;

/// Answers text messages that ask for the song that plays ("SMS.CurrentSong", "SMS.BuyCurrentSong"): puts an automatic
/// message to their sender into the Outbox, from where it goes out like any other. A number gets one in five minutes,
/// whichever computers take its texts, and only a mobile number of the station's country that is none of the station's
/// gets any. On the stack of whoever files texts; station and directory outlive it.
class TOLVA_EXPORT SongAnswers
{
public:
    enum class Outcome
    {
        NotAsked,  ///< It is no text message, or asks nothing.
        Answered,  ///< The answer waits in the Outbox.
        NotRecent, ///< It did not come within the last five minutes: the song that it asks for has ended.
        OwnNumber, ///< A number of the station sent it.
        NotMobile, ///< Its sender is no mobile number.
        Abroad,    ///< Its sender's number is of another country.
        Repeated,  ///< Its number was answered within the last five minutes.
        NoWords,   ///< The station's template for it is empty: it wants no answer.
        Failed     ///< Problem says why.
    };
    struct Result
    {
        Outcome What = Outcome::NotAsked;
        qint32 Answer = 0; ///< The number of the message that answers.
        QString Problem;   ///< Also beside an answer, whose mark on the text could not be stored.
    };

    SongAnswers(cTolvaDatabase& station, dao::Database& directoryFile) : Station_(station), Directory_(directoryFile) {}

    /// text: a text message that is stored, with its number where that is known. dao::Error when the answer could not
    /// be stored; then the number counts as not answered. The same text may come again, from whomever: it is answered
    /// once, because its number is left alone for as long as it is recent.
    /// The key words are those of the first call.
    Result Answer(const cMessage& text);

private:
    struct KeyWords
    {
        QString Song;
        QString Buy;
    };
    SongQuestion QuestionOf(const cMessage& text);
    Outcome WhyNot(const cMessage& text) const;
    QString Words(SongQuestion question, Result& result) const;
    cMessagePtr Store(const QString& recipient, const QString& words);
    QString NoteAnswered(const cMessage& text, const cMessage& answer);

    cTolvaDatabase& Station_;
    dao::Database& Directory_;
    std::optional<KeyWords> KeyWords_;
};
