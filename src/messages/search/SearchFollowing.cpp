// SPDX-License-Identifier: Apache-2.0
#include "messages/search/SearchFollowing.h"

#include "database/cTolvaDatabase.h"
#include "platform/records/DBEngine.h"

#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace
{
constexpr std::size_t MailsOfRead = 64;
/// Mails that are stored together: fewer cost more each, more have to be kept in memory.
constexpr std::size_t MailsOfWork = 256;
constexpr qsizetype OctetsOfWork = qsizetype{4} * 1024 * 1024;

qint32 RangeOf(qint32 reference)
{
    return (reference - 1) / SearchIndex::RangeSize * SearchIndex::RangeSize + 1;
}

/// As many as are read together.
std::vector<qint32> FirstOf(const std::deque<qint32>& references)
{
    const auto count = static_cast<std::ptrdiff_t>(std::min(references.size(), MailsOfRead));
    return {references.begin(), references.begin() + count};
}
} // namespace

std::vector<qint32> SearchWork::DoIn(SearchIndex& index)
{
    switch (Kind) {
    case SearchStep::End:
        index.EndAt(Last);
        break;
    case SearchStep::Look:
        return index.Differing(Marks);
    case SearchStep::Compare:
    case SearchStep::Confirm:
        return index.Compare(Range.Mark, Range.Rows);
    case SearchStep::Store: {
        std::vector<IndexedMessage> messages;
        messages.reserve(Mails.size());
        for (const SearchedMail& mail : Mails)
            messages.push_back({mail.State, ReadSearchText(mail.Octets)});
        index.Store(messages);
        break;
    }
    case SearchStep::Drafts:
        return index.Within(tmcDrafts);
    case SearchStep::Unlike:
        return index.Unlike(Drafts);
    case SearchStep::Finish:
        index.CondenseAfter(Stored);
        index.SetNote(Note);
        index.Tidy();
        index.CheckOneTable();
        break;
    default:
        break;
    }
    return {};
}

SearchFollowing::SearchFollowing(cTolvaDatabase& station) : Station_(station) {}

QByteArray SearchFollowing::IdentityOf(const cTolvaDatabase& station)
{
    const QString& file = station.Information().Path;
    const qint64 identity = dao::DBEngine::IdentityOf(file);
    if (identity != 0)
        return "station " + QByteArray::number(identity);
    // A file that carries no number is known by when it was made, where the file system tells, else by its place.
    const QFileInfo info(file);
    const QDateTime birth = info.fileTime(QFile::FileBirthTime);
    return birth.isValid() ? "file " + QByteArray::number(birth.toMSecsSinceEpoch())
                           : "place " + info.canonicalFilePath().toUtf8();
}

/// The stamp tells most changes; where a folder was emptied it stays, and there are fewer messages.
QByteArray SearchFollowing::CurrentNote()
{
    const Date stamp = Station_.LastMessageChanged();
    const auto rows =
        Station_.OpenSnapshot(QStringLiteral("SELECT COUNT(*) AS [Rows], MAX([Reference]) AS [Last] FROM [Messages]"));
    Total_ = rows->Collect(QStringLiteral("Rows")).toLongLong();
    Last_ = rows->Collect(QStringLiteral("Last")).toInt();
    return QByteArray::number(stamp.DayNumber(), 'g', 17) + ' ' + QByteArray::number(Total_) + ' ' +
           QByteArray::number(Last_);
}

void SearchFollowing::Look(const QByteArray& note)
{
    const QByteArray now = CurrentNote();
    if (now == note || (!IsDone_ && now == Note_))
        return;
    BeginAt(now);
}

void SearchFollowing::Begin()
{
    BeginAt(CurrentNote());
}

/// note: of before anything is read. What is stored meanwhile makes another one.
void SearchFollowing::BeginAt(const QByteArray& note)
{
    Note_ = note;
    Next_ = RangeOf(Last_);
    Handed_ = SearchStep::None;
    HasEnded_ = false;
    IsDone_ = false;
    HasDrafts_ = false;
    Looked_ = 0;
    Differing_.clear();
    Drafts_.clear();
    Unconfirmed_.clear();
    Missing_.clear();
    Mails_.clear();
    MailOctets_ = 0;
}

SearchWork SearchFollowing::Next(int milliseconds)
{
    // Of what was handed out last nothing was heard: it failed, and what it would have answered is not known.
    if (Handed_ != SearchStep::None)
        Begin();
    SearchWork work = NextWork(milliseconds);
    if (work.Kind != SearchStep::Pause)
        Handed_ = work.Kind;
    return work;
}

SearchWork SearchFollowing::NextWork(int milliseconds)
{
    if (IsDone_)
        return {};
    if (!Missing_.empty())
        ReadMails(milliseconds);
    const bool isBatch = Mails_.size() >= MailsOfWork || MailOctets_ >= OctetsOfWork;
    // Before older ranges are looked at: how soon new mail is found is no matter of how much there is besides.
    const bool isCompared = Missing_.empty() && Differing_.empty() && Drafts_.empty();
    if (isBatch || (isCompared && !Mails_.empty()))
        return StoreWork();
    SearchWork work;
    if (!Missing_.empty()) {
        work.Kind = SearchStep::Pause;
    } else if (!HasEnded_) {
        work.Kind = SearchStep::End;
        work.Last = Last_;
        HasEnded_ = true;
    } else if (!Differing_.empty()) {
        work = CompareWork(SearchStep::Compare, Differing_);
    } else if (Next_ > 0) {
        work = LookWork(milliseconds);
    } else if (!HasDrafts_) {
        work.Kind = SearchStep::Drafts;
        HasDrafts_ = true;
    } else if (!Drafts_.empty()) {
        work = DraftsWork();
    } else if (!Unconfirmed_.empty()) {
        work = CompareWork(SearchStep::Confirm, Unconfirmed_);
    } else {
        work = FinishWork();
    }
    return work;
}

SearchWork SearchFollowing::LookWork(int milliseconds)
{
    QElapsedTimer time;
    time.start();
    SearchWork work;
    work.Kind = SearchStep::Look;
    qint32 next = Next_;
    // The newest one alone, which mostly is all that has changed; then twice as many each time.
    const std::size_t most = std::max(std::size_t{1}, 2 * Looked_);
    do {
        work.Marks.push_back(StationRows::ReadMark(Station_, next));
        next -= SearchIndex::RangeSize;
    } while (next > 0 && work.Marks.size() < most && time.elapsed() < milliseconds);
    Next_ = next;
    Looked_ = work.Marks.size();
    return work;
}

SearchWork SearchFollowing::CompareWork(SearchStep kind, std::deque<qint32>& ranges)
{
    SearchWork work;
    work.Kind = kind;
    work.Range = StationRows::ReadRange(Station_, ranges.front());
    Compared_ = ranges.front();
    ranges.pop_front();
    return work;
}

SearchWork SearchFollowing::DraftsWork()
{
    const std::vector<qint32> references = FirstOf(Drafts_);
    SearchWork work;
    work.Kind = SearchStep::Unlike;
    work.Drafts = StationRows::ReadDrafts(Station_, references);
    Drafts_.erase(Drafts_.begin(), Drafts_.begin() + static_cast<std::ptrdiff_t>(references.size()));
    return work;
}

SearchWork SearchFollowing::StoreWork()
{
    SearchWork work;
    work.Kind = SearchStep::Store;
    Stored_ += static_cast<qint64>(Mails_.size());
    work.Mails = std::move(Mails_);
    Mails_.clear();
    MailOctets_ = 0;
    return work;
}

SearchWork SearchFollowing::FinishWork()
{
    SearchWork work;
    work.Kind = SearchStep::Finish;
    work.Note = Note_;
    work.Stored = std::exchange(Stored_, 0);
    IsDone_ = true;
    return work;
}

void SearchFollowing::Take(const std::vector<qint32>& references)
{
    const auto handed = std::exchange(Handed_, SearchStep::None);
    if (handed == SearchStep::Look) {
        Differing_.assign(references.begin(), references.end());
    } else if (handed == SearchStep::Drafts) {
        Drafts_.assign(references.begin(), references.end());
    } else if (handed == SearchStep::Unlike) {
        Missing_.assign(references.rbegin(), references.rend());
    } else if (handed == SearchStep::Compare && !references.empty()) {
        Missing_.assign(references.rbegin(), references.rend());
        Unconfirmed_.push_back(Compared_);
    }
}

void SearchFollowing::ReadMails(int milliseconds)
{
    QElapsedTimer time;
    time.start();
    const std::vector<qint32> references = FirstOf(Missing_);
    qint32 read = references.front() + 1;
    const bool isWhole = StationRows::ReadMails(Station_, references, [&](SearchedMail&& mail) {
        read = mail.State.Reference;
        MailOctets_ += mail.Octets.size();
        Mails_.push_back(std::move(mail));
        return time.elapsed() < milliseconds && MailOctets_ < OctetsOfWork;
    });
    const qint32 last = isWhole ? references.back() : read;
    while (!Missing_.empty() && Missing_.front() >= last)
        Missing_.pop_front();
}

bool BringUpToDate(SearchFollowing& following, SearchIndex& index,
                   const std::function<bool(qint64 done, qint64 total)>& advance, Looking looking)
{
    constexpr int Milliseconds = 100;
    if (looking == Looking::AtNote)
        following.Look(index.Note());
    else
        following.Begin();
    while (!following.IsDone()) {
        following.Take(following.Next(Milliseconds).DoIn(index));
        if (advance && !advance(std::min(index.Count(), following.Total()), following.Total()))
            return false;
    }
    return true;
}
