// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/search/StationRows.h"

#include <deque>
#include <vector>

/// Steps in which an index is kept in line.
enum class SearchStep
{
    None,    ///< Nothing is left: the index says what the station says.
    Pause,   ///< More is to be read before there is something to do.
    End,     ///< SearchIndex::EndAt(Last).
    Look,    ///< SearchIndex::Differing of Marks.
    Compare, ///< SearchIndex::Compare of Range.
    Store,   ///< SearchIndex::Store.
    Drafts,  ///< SearchIndex::Within the folder of drafts.
    Unlike,  ///< SearchIndex::Unlike of Drafts.
    Confirm, ///< SearchIndex::Compare again, behind what was stored of the range.
    Finish   ///< All is compared and stored: Note is what the station was then, Stored how many mails it took.
};

/// What the index is to do next, with all that it needs of the station: it may be done on another thread.
struct SearchWork
{
    SearchStep Kind = SearchStep::None;
    qint32 Last = 0;
    std::vector<RangeMark> Marks;
    StationRange Range;
    std::vector<MessageState> Drafts;
    std::vector<SearchedMail> Mails;
    QByteArray Note;
    qint64 Stored = 0;

    /// Does it; the references that it answers are for SearchFollowing::Take. SearchFailure.
    std::vector<qint32> DoIn(SearchIndex& index);
};

/// Keeps a search index in line with its station, in steps that are as small as wanted: it goes through ranges of
/// references, the newest first, compares the rows of those whose mark is not the one that the index knows, then the
/// texts of drafts, and reads the mails that the index lacks. It stops where it stands and goes on there, in another
/// process too, for the index itself says what it has. Reads the station on its thread; the work may be done on any.
/// dao::Error for what cannot be read: the same step may be tried again. Work that failed need not be told: without its
/// answer the next step is the first one.
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

    /// What tells this station from any other, and from another state of it, by whatever name it is opened. Of a
    /// station on a server the server is asked. dao::Error.
    static QByteArray IdentityOf(const cTolvaDatabase& station);

private:
    void BeginAt(const QByteArray& note);
    void ReadMails(int milliseconds);
    SearchWork NextWork(int milliseconds);
    SearchWork LookWork(int milliseconds);
    SearchWork CompareWork(SearchStep kind, std::deque<qint32>& ranges);
    SearchWork StoreWork();
    SearchWork DraftsWork();
    SearchWork FinishWork();
    QByteArray CurrentNote();

    cTolvaDatabase& Station_;
    QByteArray Note_;
    bool IsDone_ = true;
    bool HasEnded_ = false;
    SearchStep Handed_ = SearchStep::None; ///< What Take has to hear of; None for nothing.
    qint32 Last_ = 0;                      ///< The highest reference when it was looked at.
    qint32 Next_ = 0;                      ///< The range to be looked at next; below 1 when all are.
    std::size_t Looked_ = 0;               ///< How many were looked at together.
    std::deque<qint32> Differing_;         ///< Ranges that are to be compared.
    qint32 Compared_ = 0;                  ///< The last one that was.
    bool HasDrafts_ = false;               ///< Whether Drafts_ was asked for.
    std::deque<qint32> Drafts_;            ///< Those whose text is to be compared.
    std::deque<qint32> Unconfirmed_;       ///< Those of which mails are stored.
    qint64 Total_ = 0;
    qint64 Stored_ = 0; ///< Handed out to be stored since it was last done.
    std::deque<qint32> Missing_;
    std::vector<SearchedMail> Mails_; ///< Read, but not handed out yet.
    qsizetype MailOctets_ = 0;
};

enum class Looking
{
    AtNote, ///< Nothing is left to do when the station looks as the index's note says.
    AtAll
};

/// Does all that is left. advance is told how many messages of how many are in the index, and ends it early by
/// answering false: then false. dao::Error and SearchFailure.
bool BringUpToDate(SearchFollowing& following, SearchIndex& index,
                   const std::function<bool(qint64 done, qint64 total)>& advance = {},
                   Looking looking = Looking::AtNote);
