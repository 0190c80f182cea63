// SPDX-License-Identifier: Apache-2.0
#include "SentAnswers.h"

#include "common/Enumerations.h"
#include "compose/Addresses.h"
#include "database/RowCondition.h"
#include "database/RowValues.h"
#include "messages/AddressKey.h"
#include "messages/OwnFolders.h"
#include "platform/StableHash.h"
#include "platform/mail/MessageIdentities.h"
#include "platform/mail/RawHeaders.h"
#include "platform/records/Recordset.h"
#include "station/DeskStation.h"
#include "station/StoredSetting.h"

#include <QScopeGuard>

namespace
{
/// What is moved into Sent keeps its number; it is found with the next look at all of it.
constexpr qint64 AllMilliseconds = 60'000;
constexpr qsizetype MailsOfAStep = 50;
constexpr int RestMilliseconds = 4;
/// Octets in which most headers end.
constexpr qsizetype Beginning = 8192;
constexpr qsizetype LongestHeader = 8000;

const QStringList Columns = {QStringLiteral("Reference"), QStringLiteral("Category"), QStringLiteral("MessageType"),
                             QStringLiteral("FromKey"),   QStringLiteral("ToKey"),    QStringLiteral("Received"),
                             QStringLiteral("Sent"),      QStringLiteral("Flags"),    QStringLiteral("Message")};

quint64 KeyOf(const char* kind, const QString& text)
{
    const QByteArray octets = kind + text.toUtf8();
    return StableHash::Of({octets.constData(), static_cast<std::size_t>(octets.size())});
}

/// By their places; empty where the mail has no such field, or an endless header.
QStringList HeadersOf(const dao::Recordset& row, const QList<QByteArray>& names)
{
    const dao::MemoBeginning beginning = row[QStringLiteral("Message")].Beginning(Beginning);
    auto values = cdo::RawHeadersOfBeginning(beginning.Utf8, beginning.IsWhole, names, LongestHeader);
    if (!values)
        values = cdo::RawHeaders(row[QStringLiteral("Message")].Octets(dao::MemoTrust::AsStored), names, LongestHeader);
    QStringList texts;
    for (qsizetype i = 0; i < names.size(); ++i)
        texts.append(cdo::DecodedHeader(names.at(i), values->at(i), LongestHeader));
    return texts;
}

/// A mail that a disk changed, or that goes at this moment, answers nothing and was not answered; others are read.
template <typename Work>
void PassOverDamage(Work&& work)
{
    try {
        std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errRecordDeleted && error.Number() != dao::errFileDamaged)
            throw;
    }
}

/// What lies in Sent, and what the station sent from its own address or number and put into Saved or a folder of its
/// own. Mail in the Inbox may bear any sender. dao::Error where these cannot be read: without them
/// answers would be missing.
QString ConditionOfSent(const cTolvaDatabase& station)
{
    const QString sent = QStringLiteral("[Category]=%1").arg(tmcSent);
    QStringList senders;
    const auto stored = [&](const StationSettings::TextSetting& setting) {
        return StoredSetting::Read(station, setting).trimmed();
    };
    for (QString key :
         {MakeAddressKey(stored(StationSettings::StationEmailAddress), emtEmail),
          MakeAddressKey(stored(StationSettings::StationSMSPhoneNumber), emtSMS, station.StationCountry())}) {
        if (!key.isEmpty())
            senders.append(QStringLiteral("[FromKey]='%1'").arg(key.replace(u'\'', QStringLiteral("''"))));
    }
    return senders.isEmpty() ? sent
                             : QStringLiteral("%1 OR ((%2) AND ([Category]=%3 OR [Category]>%4))")
                                   .arg(sent, senders.join(QStringLiteral(" OR ")), QString::number(tmcSaved),
                                        QString::number(tmcAutomatic));
}

bool IsText(const dao::Recordset& row)
{
    return row.Collect(QStringLiteral("MessageType")).toInt() == emtSMS;
}
} // namespace

SentAnswers::SentAnswers(DeskStation& station, QObject* parent) : QObject(parent), Station_(station)
{
    ReadTimer_.setInterval(RestMilliseconds);
    connect(&ReadTimer_, &QTimer::timeout, this, &SentAnswers::ReadSome);
    LookUpTimer_.setSingleShot(true);
    LookUpTimer_.setInterval(0);
    connect(&LookUpTimer_, &QTimer::timeout, this, &SentAnswers::LookUp);
}

void SentAnswers::Forget()
{
    Answers_.clear();
    Identities_.clear();
    Sent_.clear();
    ToRead_.clear();
    Last_ = 0;
    Stamp_ = Date();
    SinceAll_.invalidate();
}

void SentAnswers::Refresh()
{
    cTolvaDatabase& database = Station_.Database();
    if (!database.IsOpen())
        return;
    // Also what a reading that failed has left.
    const auto reading = qScopeGuard([this] {
        if (!ToRead_.isEmpty())
            ReadTimer_.start();
    });
    try {
        if (const int opening = database.Openings(); opening != Opening_) {
            Forget();
            Opening_ = opening;
        }
        const Date stamp = database.LastMessageChanged();
        if (SinceAll_.isValid() && stamp == Stamp_)
            return;
        const bool isAll = !SinceAll_.isValid() || SinceAll_.elapsed() > AllMilliseconds;
        if (isAll)
            Condition_ = ConditionOfSent(database);
        const QString condition =
            isAll ? Condition_ : QStringLiteral("(%1) AND [Reference]>%2").arg(Condition_, QString::number(Last_));
        const auto rows = database.OpenMessageRows({QStringLiteral("Reference")}, condition);
        for (; !rows->AtEOF(); rows->MoveNext()) {
            const qint32 reference = rows->Collect(QStringLiteral("Reference")).toInt();
            if (Sent_.contains(reference))
                continue;
            Sent_.insert(reference);
            ToRead_.append(reference);
            Last_ = std::max(Last_, reference);
        }
        Stamp_ = stamp;
        if (isAll)
            SinceAll_.start();
    } catch (const dao::Error&) {
        // Looked for again with the next update; the window says when the station cannot be reached.
    }
}

void SentAnswers::ReadSome()
{
    const QList<qint32> some = ToRead_.mid(std::max<qsizetype>(0, ToRead_.size() - MailsOfAStep));
    if (some.isEmpty() || !Station_.Database().IsOpen() || Station_.Database().Openings() != Opening_) {
        ReadTimer_.stop();
        return;
    }
    try {
        const auto rows = Station_.Database().OpenMessageRows(Columns, RowCondition::HasOneOf(some));
        for (; !rows->AtEOF(); rows->MoveNext())
            PassOverDamage([&] { TakeSent(*rows); });
    } catch (const dao::Error&) {
        // A station that does not answer is asked again with the next update.
        ReadTimer_.stop();
        return;
    }
    ToRead_.resize(ToRead_.size() - some.size());
    if (!ToRead_.isEmpty())
        return;
    ReadTimer_.stop();
    if (std::exchange(HasNew_, false))
        Q_EMIT Changed();
}

void SentAnswers::TakeSent(dao::Recordset& row)
{
    // What a machine wrote answers the one text that asked for it, and none that its sender wrote before to people.
    if ((row.Collect(QStringLiteral("Flags")).toInt() & mfAutomatic) != 0)
        return;
    Answer answer;
    answer.When = RowValues::UniversalDate(row.Collect(QStringLiteral("Sent")));
    if (answer.When.IsNone())
        answer.When = RowValues::UniversalDate(row.Collect(QStringLiteral("Received")));
    if (IsText(row)) {
        const QString key = row.Collect(QStringLiteral("ToKey")).toString();
        return key.isEmpty() ? void() : TakeAnswer(KeyOf("text:", key), answer);
    }
    const QStringList headers = HeadersOf(row, {"In-Reply-To", "References", "From"});
    QStringList answered = cdo::MessageIdentities(headers.at(0));
    // The last one is the mail that it answers; those before it are what that one answered.
    if (const QStringList references = cdo::MessageIdentities(headers.at(1));
        answered.isEmpty() && !references.isEmpty())
        answered.append(references.last());
    answer.Name = Addresses::DisplayName(Addresses::Split(headers.at(2)).value(0));
    for (const QString& identity : std::as_const(answered))
        TakeAnswer(KeyOf("mail:", identity), answer);
}

void SentAnswers::TakeAnswer(quint64 key, const Answer& answer)
{
    const auto before = Answers_.constFind(key);
    if (before != Answers_.constEnd() && answer.When <= before->When)
        return;
    Answers_.insert(key, answer);
    HasNew_ = true;
}

std::optional<FiledAnswer> SentAnswers::Of(qint32 message)
{
    if (Answers_.isEmpty() || message <= 0)
        return std::nullopt;
    const auto identity = Identities_.constFind(message);
    if (identity == Identities_.constEnd()) {
        Wanted_.insert(message);
        LookUpTimer_.start();
        return std::nullopt;
    }
    const auto answer = Answers_.constFind(identity->Key);
    // A text message is answered by what went to its number afterwards.
    if (answer == Answers_.constEnd() || (identity->IsText && answer->When < identity->Arrived))
        return std::nullopt;
    return FiledAnswer{{message, identity->Arrived}, answer->Name, answer->When};
}

SentAnswers::Identity SentAnswers::IdentityOf(dao::Recordset& row)
{
    Identity identity;
    identity.Arrived = RowValues::UniversalDate(row.Collect(QStringLiteral("Received")));
    identity.IsText = IsText(row);
    // What the station wrote itself waits for no answer of its own.
    if (IsOwnFolder(row.Collect(QStringLiteral("Category")).toInt()))
        return identity;
    const QString number = row.Collect(QStringLiteral("FromKey")).toString();
    if (identity.IsText && !number.isEmpty())
        identity.Key = KeyOf("text:", number);
    if (identity.IsText)
        return identity;
    const QStringList own = cdo::MessageIdentities(HeadersOf(row, {"Message-ID"}).first());
    if (!own.isEmpty())
        identity.Key = KeyOf("mail:", own.first());
    return identity;
}

/// Behind the painting that asked.
void SentAnswers::LookUp()
{
    const QSet<qint32> wanted = std::exchange(Wanted_, {});
    if (wanted.isEmpty() || !Station_.Database().IsOpen() || Station_.Database().Openings() != Opening_)
        return;
    bool hasAnswered = false;
    try {
        const auto rows = Station_.Database().OpenMessageRows(Columns, RowCondition::HasOneOf(wanted));
        for (; !rows->AtEOF(); rows->MoveNext()) {
            const qint32 reference = rows->Collect(QStringLiteral("Reference")).toInt();
            Identity identity;
            PassOverDamage([&] { identity = IdentityOf(*rows); });
            Identities_.insert(reference, identity);
            hasAnswered = hasAnswered || Of(reference).has_value();
        }
    } catch (const dao::Error&) {
        // Asked for again when the rows are painted next.
    }
    if (hasAnswered)
        Q_EMIT Changed();
}
