// SPDX-License-Identifier: Apache-2.0
#include "messages/search/SearchFollowing.h"

#include "database/RowValues.h"
#include "database/cTolvaDatabase.h"
#include "database/watch/RowChanges.h"
#include "platform/Ascii.h"
#include "platform/StableHash.h"
#include "platform/records/DBEngine.h"

#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <optional>
#include <utility>

using RowValues::NumberOr;

namespace
{
/// References of a step; the rows of one are read in some milliseconds.
constexpr qint32 RowsOfStep = 2000;
constexpr qsizetype MailsOfRead = 64;
/// Mails that are stored together: fewer cost more each, more have to be kept in memory.
constexpr std::size_t MailsOfWork = 256;
constexpr qsizetype OctetsOfWork = 4 * 1024 * 1024;
/// Most mails end within; the others are read a second time.
constexpr qsizetype UsualOctets = 64 * 1024;

const QString MailColumn = QStringLiteral("Message");

/// By which a mail that was changed is known: what is saved with it. The key first.
const QStringList& ContentColumns()
{
    static const QStringList columns = {QStringLiteral("Reference"), QStringLiteral("Subject"),
                                        QStringLiteral("FromKey"),   QStringLiteral("ToKey"),
                                        QStringLiteral("CcKey"),     QStringLiteral("Sent"),
                                        QStringLiteral("Received"),  QStringLiteral("MessageType")};
    return columns;
}

QStringList RowColumns()
{
    return ContentColumns() + QStringList{QStringLiteral("Flags"), QStringLiteral("Category")};
}

/// Reads rows whose columns are looked up once for all of them.
class StateReader
{
public:
    /// rows: outlives this.
    explicit StateReader(const dao::Recordset& rows)
        : Content_(rows, ContentColumns()),
          Sent_(rows[QStringLiteral("Sent")]),
          Received_(rows[QStringLiteral("Received")]),
          Category_(rows[QStringLiteral("Category")]),
          Type_(rows[QStringLiteral("MessageType")]),
          Flags_(rows[QStringLiteral("Flags")])
    {
    }

    MessageState Read() const
    {
        const ReadRow row = Content_.Read();
        MessageState state;
        state.Reference = row.Reference;
        state.Content = row.Signature;
        state.Seconds = Seconds();
        state.Category = NumberOr(Category_.Value(), tmcInbox);
        state.IsSMS = NumberOr(Type_.Value(), emtEmail) == emtSMS;
        state.IsUnread = (NumberOr(Flags_.Value(), 0) & mfRead) == 0;
        return state;
    }

private:
    qint64 Seconds() const
    {
        constexpr double FirstDay = 25569; // 1 January 1970
        constexpr double SecondsOfDay = 86400;
        const double sent = Sent_.Value().toDouble();
        const double day = sent > 0 ? sent : Received_.Value().toDouble();
        return day > FirstDay ? qRound64((day - FirstDay) * SecondsOfDay) : 0;
    }

    LightColumns Content_;
    const dao::Field& Sent_;
    const dao::Field& Received_;
    const dao::Field& Category_;
    const dao::Field& Type_;
    const dao::Field& Flags_;
};

QByteArray OctetsOf(const QByteArray& utf8)
{
    return IsAscii(utf8) ? utf8 : QString::fromUtf8(utf8).toLatin1();
}

/// A mail, or as much of it as is searched. What was changed on the disk is read as it is: its words are found.
QByteArray MailOf(const dao::Field& field)
{
    const dao::MemoBeginning usual = field.Beginning(UsualOctets);
    return OctetsOf(usual.IsWhole ? usual.Utf8 : field.Beginning(MostSearchedOctets).Utf8);
}

/// The same; nothing where the disk withholds it. Another error may be another one the next time, and is raised.
std::optional<QByteArray> MailIfReadable(const dao::Field& field)
{
    try {
        return MailOf(field);
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errFileDamaged && error.Number() != dao::errMemoDamaged)
            throw;
        return std::nullopt;
    }
}

QString ConditionBetween(qint32 first, qint32 last)
{
    return QStringLiteral("[Reference]>=%1 AND [Reference]<=%2").arg(first).arg(last);
}

quint64 Mixed(quint64 number, const QByteArray& octets)
{
    const std::string_view view(octets.constData(), static_cast<std::size_t>(octets.size()));
    return StableHash::Mixed(number, StableHash::Of(view));
}
} // namespace

std::vector<qint32> SearchWork::DoIn(SearchIndex& index)
{
    switch (Kind) {
    case Kind::End:
        index.EndAt(Last);
        break;
    case Kind::Compare:
        return index.Compare(First, Last, Rows);
    case Kind::Store: {
        std::vector<IndexedMessage> messages;
        messages.reserve(Mails.size());
        for (const SearchedMail& mail : Mails)
            messages.push_back({mail.State, ReadSearchText(mail.Octets)});
        index.Store(messages);
        break;
    }
    case Kind::Finish:
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
    Begin();
}

void SearchFollowing::Begin()
{
    // Before anything is read: what is stored meanwhile makes another note.
    Note_ = CurrentNote();
    Next_ = Last_;
    HasEnded_ = false;
    IsDone_ = false;
    Missing_.clear();
    Mails_.clear();
    MailOctets_ = 0;
}

SearchWork SearchFollowing::Next(int milliseconds)
{
    SearchWork work;
    if (IsDone_)
        return work;
    if (!Missing_.empty())
        ReadMails(milliseconds);
    const bool isBatch = Mails_.size() >= MailsOfWork || MailOctets_ >= OctetsOfWork;
    if (isBatch || (Missing_.empty() && !Mails_.empty() && Next_ < 1))
        return StoreWork();
    if (!Missing_.empty()) {
        work.Kind = SearchWork::Kind::Pause;
    } else if (!HasEnded_) {
        work.Kind = SearchWork::Kind::End;
        work.Last = Last_;
        HasEnded_ = true;
    } else if (Next_ > 0) {
        work.Kind = SearchWork::Kind::Compare;
        work.First = std::max(1, Next_ - RowsOfStep + 1);
        work.Last = Next_;
        work.Rows = ReadRows(work.First, work.Last);
        Next_ = work.First - 1;
    } else {
        work.Kind = SearchWork::Kind::Finish;
        work.Note = Note_;
        work.Stored = std::exchange(Stored_, 0);
        IsDone_ = true;
    }
    return work;
}

SearchWork SearchFollowing::StoreWork()
{
    SearchWork work;
    work.Kind = SearchWork::Kind::Store;
    Stored_ += static_cast<qint64>(Mails_.size());
    work.Mails = std::move(Mails_);
    Mails_.clear();
    MailOctets_ = 0;
    return work;
}

void SearchFollowing::Take(const std::vector<qint32>& references)
{
    Missing_.insert(Missing_.end(), references.rbegin(), references.rend());
}

std::vector<MessageState> SearchFollowing::ReadRows(qint32 first, qint32 last) const
{
    const auto rows =
        Station_.OpenMessageRows(RowColumns(), ConditionBetween(first, last), QStringLiteral("[Reference]"));
    const StateReader reader(*rows);
    std::vector<MessageState> states;
    bool hasDrafts = false;
    for (; !rows->AtEOF(); rows->MoveNext()) {
        states.push_back(reader.Read());
        hasDrafts = hasDrafts || states.back().Category == tmcDrafts;
    }
    if (hasDrafts)
        MixDrafts(first, last, states);
    return states;
}

/// Somebody goes on writing a draft and changes nothing but its text: then the text itself has to tell.
void SearchFollowing::MixDrafts(qint32 first, qint32 last, std::vector<MessageState>& rows) const
{
    const auto drafts =
        Station_.OpenMessageRows({QStringLiteral("Reference"), MailColumn},
                                 ConditionBetween(first, last) + QStringLiteral(" AND [Category]=%1").arg(tmcDrafts),
                                 QStringLiteral("[Reference]"));
    auto row = rows.begin();
    for (; !drafts->AtEOF(); drafts->MoveNext()) {
        const qint32 reference = drafts->Collect(QStringLiteral("Reference")).toInt();
        row = std::find_if(row, rows.end(), [reference](const auto& state) { return state.Reference >= reference; });
        if (row != rows.end() && row->Reference == reference)
            row->Content = Mixed(row->Content, (*drafts)[MailColumn].Beginning(UsualOctets).Utf8);
    }
}

void SearchFollowing::ReadMails(int milliseconds)
{
    QElapsedTimer time;
    time.start();
    QStringList references;
    const auto count = static_cast<std::ptrdiff_t>(std::min<std::size_t>(Missing_.size(), MailsOfRead));
    for (auto reference = Missing_.begin(); reference != Missing_.begin() + count; ++reference)
        references.append(QString::number(*reference));
    const auto rows = Station_.OpenMessageRows(RowColumns() + QStringList{MailColumn},
                                               QStringLiteral("[Reference] IN (%1)").arg(references.join(u',')),
                                               QStringLiteral("[Reference] DESC"));
    const StateReader reader(*rows);
    qint32 read = Missing_.front() + 1;
    bool isWhole = true;
    for (; !rows->AtEOF(); rows->MoveNext()) {
        MessageState state = reader.Read();
        const std::optional<QByteArray> mail = MailIfReadable((*rows)[MailColumn]);
        const QByteArray octets = mail.value_or(QByteArray());
        // It is stored without words, and counts as changed whenever the station is gone through again.
        if (!mail)
            state.Content = ~state.Content;
        else if (state.Category == tmcDrafts)
            state.Content = Mixed(state.Content, (*rows)[MailColumn].Beginning(UsualOctets).Utf8);
        read = state.Reference;
        MailOctets_ += octets.size();
        Mails_.push_back({state, octets});
        if (time.elapsed() >= milliseconds || MailOctets_ >= OctetsOfWork) {
            isWhole = false;
            break;
        }
    }
    // Those that the station has no more are passed over.
    if (isWhole)
        Missing_.erase(Missing_.begin(), Missing_.begin() + count);
    else
        while (!Missing_.empty() && Missing_.front() >= read)
            Missing_.pop_front();
}

bool BringUpToDate(SearchFollowing& following, SearchIndex& index,
                   const std::function<bool(qint64 done, qint64 total)>& advance)
{
    constexpr int Milliseconds = 100;
    following.Look(index.Note());
    while (!following.IsDone()) {
        following.Take(following.Next(Milliseconds).DoIn(index));
        if (advance && !advance(std::min(index.Count(), following.Total()), following.Total()))
            return false;
    }
    return true;
}
