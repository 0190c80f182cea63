// SPDX-License-Identifier: Apache-2.0
#include "messages/search/StationRows.h"

#include "database/RowCondition.h"
#include "database/RowValues.h"
#include "database/cTolvaDatabase.h"
#include "database/watch/RowChanges.h"
#include "platform/Ascii.h"
#include "platform/StableHash.h"
#include "platform/records/RowMark.h"

#include <algorithm>

using RowValues::NumberOr;

namespace
{
/// Most mails end within; the others are read a second time.
constexpr qsizetype UsualOctets = qsizetype{64} * 1024;

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

/// With those that others change beside the mail.
const QStringList& RowColumns()
{
    static const QStringList columns =
        ContentColumns() + QStringList{QStringLiteral("Flags"), QStringLiteral("Category")};
    return columns;
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

/// What another program deletes, or the disk withholds, while rows are read is no reason to end: the others are read.
/// Another error may be another one the next time, and is raised.
template <typename Read>
bool IsRead(Read&& read)
{
    try {
        read();
        return true;
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errFileDamaged && error.Number() != dao::errMemoDamaged &&
            error.Number() != dao::errRecordDeleted)
            throw;
        return false;
    }
}

/// A number made of the text of a draft.
quint64 TextMark(const dao::Field& field)
{
    quint64 mark = 0;
    IsRead([&] {
        const QByteArray octets = field.Beginning(UsualOctets).Utf8;
        mark = StableHash::Of({octets.constData(), static_cast<std::size_t>(octets.size())});
    });
    return mark;
}

QString ConditionOf(qint32 first)
{
    return QStringLiteral("[Reference]>=%1 AND [Reference]<=%2").arg(first).arg(first + SearchIndex::RangeSize - 1);
}

/// RowColumns and the mails of these messages, the highest reference first.
std::unique_ptr<dao::Recordset> OpenMails(const cTolvaDatabase& station, const std::vector<qint32>& references)
{
    return station.OpenMessageRows(RowColumns() + QStringList{MailColumn}, RowCondition::HasOneOf(references),
                                   QStringLiteral("[Reference] DESC"));
}

/// Somebody goes on writing a draft and changes nothing but its text: then the text itself has to tell.
void MixText(const dao::Field& mail, MessageState& state)
{
    if (state.Category == tmcDrafts)
        state.Content = StableHash::Mixed(state.Content, TextMark(mail));
}

void MixDrafts(const cTolvaDatabase& station, qint32 first, std::vector<MessageState>& rows)
{
    const auto drafts = station.OpenMessageRows(
        {QStringLiteral("Reference"), MailColumn},
        ConditionOf(first) + QStringLiteral(" AND [Category]=%1").arg(tmcDrafts), QStringLiteral("[Reference]"));
    auto row = rows.begin();
    for (; !drafts->AtEOF(); drafts->MoveNext()) {
        const qint32 reference = drafts->Collect(QStringLiteral("Reference")).toInt();
        row = std::find_if(row, rows.end(), [reference](const auto& state) { return state.Reference >= reference; });
        if (row != rows.end() && row->Reference == reference)
            MixText((*drafts)[MailColumn], *row);
    }
}
} // namespace

StationRange StationRows::ReadRange(const cTolvaDatabase& station, qint32 first)
{
    const auto rows = station.OpenMessageRows(RowColumns(), ConditionOf(first), QStringLiteral("[Reference]"));
    const StateReader reader(*rows);
    const LightColumns all(*rows, RowColumns());
    dao::RowMark mark;
    std::vector<MessageState> states;
    bool hasDrafts = false;
    for (; !rows->AtEOF(); rows->MoveNext()) {
        states.push_back(reader.Read());
        mark.Add(all.Read().Signature);
        hasDrafts = hasDrafts || states.back().Category == tmcDrafts;
    }
    if (hasDrafts)
        MixDrafts(station, first, states);
    return {{first, mark.Number()}, std::move(states)};
}

RangeMark StationRows::ReadMark(const cTolvaDatabase& station, qint32 first)
{
    return {first, station.MarkOfMessageRows(RowColumns(), ConditionOf(first), QStringLiteral("[Reference]"))};
}

std::vector<MessageState> StationRows::ReadDrafts(const cTolvaDatabase& station, const std::vector<qint32>& references)
{
    const auto rows = OpenMails(station, references);
    const StateReader reader(*rows);
    std::vector<MessageState> states;
    for (; !rows->AtEOF(); rows->MoveNext()) {
        states.push_back(reader.Read());
        MixText((*rows)[MailColumn], states.back());
    }
    std::reverse(states.begin(), states.end());
    return states;
}

bool StationRows::ReadMails(const cTolvaDatabase& station, const std::vector<qint32>& references,
                            const std::function<bool(SearchedMail&& mail)>& take)
{
    const auto rows = OpenMails(station, references);
    const StateReader reader(*rows);
    for (; !rows->AtEOF(); rows->MoveNext()) {
        SearchedMail mail{reader.Read(), {}};
        // Otherwise it is stored without words, and counts as changed whenever the station is gone through again.
        if (!IsRead([&] { mail.Octets = MailOf((*rows)[MailColumn]); }))
            mail.State.Content = ~mail.State.Content;
        else
            MixText((*rows)[MailColumn], mail.State);
        if (!take(std::move(mail)))
            return false;
    }
    return true;
}
