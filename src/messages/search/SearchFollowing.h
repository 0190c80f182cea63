// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/search/SearchIndex.h"

#include <deque>
#include <vector>

class cTolvaDatabase;

namespace dao
{
class Recordset;
}

/// A mail that was read for the index.
struct SearchedMail
{
    MessageState State;
    QByteArray Octets; ///< Its beginning.
};

/// What the index is to do next, with all that it needs of the station: it may be done on another thread.
struct SearchWork
{
    enum class Kind
    {
        None,    ///< Nothing is left: the index says what the station says.
        Pause,   ///< More is to be read before there is something to do.
        End,     ///< SearchIndex::EndAt(Last).
        Compare, ///< SearchIndex::Compare.
        Store,   ///< SearchIndex::Store.
        Finish   ///< All is compared and stored: Note is what the station was then, Stored how many mails it took.
    };

    enum Kind Kind = Kind::None;
    qint32 First = 0;
    qint32 Last = 0;
    std::vector<MessageState> Rows;
    std::vector<SearchedMail> Mails;
    QByteArray Note;
    qint64 Stored = 0;

    /// Does it; the references of mails that are to be read, for SearchFollowing::Take. SearchFailure.
    std::vector<qint32> DoIn(SearchIndex& index);
};

/// Keeps a search index in line with its station, in steps that are as small as wanted: it goes through the light
/// columns of all messages, the newest first, and reads the mails that the index lacks. It stops where it stands and
/// goes on there, in another process too, for the index itself says what it has. Reads the station on its thread; the
/// work may be done on any. dao::Error for what cannot be read: the same step may be tried again.
class SearchFollowing
{
public:
    /// The station outlives this.
    explicit SearchFollowing(cTolvaDatabase& station);

    /// Looks whether the station has changed since the index said note; begins to go through it then. Costs little.
    void Look(const QByteArray& note);
    /// Goes through it whatever it looks like.
    void Begin();
    /// Reads for at most about so long, one mail at least.
    SearchWork Next(int milliseconds);
    /// What the work of the last step answered.
    void Take(const std::vector<qint32>& references);
    bool IsDone() const { return IsDone_; }

    /// Messages that the station had when it was looked at.
    qint64 Total() const { return Total_; }

    /// What tells this station from any other, by whatever name it is opened. Empty for one that has nothing of the
    /// kind, which has no index.
    static QByteArray IdentityOf(const cTolvaDatabase& station);

private:
    std::vector<MessageState> ReadRows(qint32 first, qint32 last) const;
    void MixDrafts(qint32 first, qint32 last, std::vector<MessageState>& rows) const;
    void ReadMails(int milliseconds);
    SearchWork StoreWork();
    QByteArray CurrentNote();

    cTolvaDatabase& Station_;
    QByteArray Note_;
    bool IsDone_ = true;
    bool HasEnded_ = false;
    qint32 Last_ = 0; ///< The highest reference when it was looked at.
    qint32 Next_ = 0; ///< The highest one that is not compared yet.
    qint64 Total_ = 0;
    qint64 Stored_ = 0; ///< Handed out to be stored since it was last done.
    std::deque<qint32> Missing_;
    std::vector<SearchedMail> Mails_; ///< Read, but not handed out yet.
    qsizetype MailOctets_ = 0;
};

/// Does all that is left. advance is told how many messages of how many are in the index, and ends it early by
/// answering false: then false. dao::Error and SearchFailure.
bool BringUpToDate(SearchFollowing& following, SearchIndex& index,
                   const std::function<bool(qint64 done, qint64 total)>& advance = {});
