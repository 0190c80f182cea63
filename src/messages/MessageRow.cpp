// SPDX-License-Identifier: Apache-2.0

// A message's row in the table Messages: cMessage's reading and writing.

#include "common/ClockHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/clsFont.h"
#include "common/kvGeneral.h"
#include "database/RowValues.h"
#include "messages/AddressKey.h"
#include "messages/HighlightMarking.h"
#include "messages/cMessage.h"
#include "platform/mail/MessageReader.h"
#include "platform/records/Recordset.h"

using RowValues::LocalDate;
using RowValues::NumberOr;

namespace
{
const QString MainIndex = QStringLiteral("Main");

/// The columns that are read and written, as texts that cost nothing to hand around: a list reads them for each row.
namespace Column
{
const QString Reference = QStringLiteral("Reference");
const QString FromKey = QStringLiteral("FromKey");
const QString ToKey = QStringLiteral("ToKey");
const QString CcKey = QStringLiteral("CcKey");
const QString Received = QStringLiteral("Received");
const QString Sent = QStringLiteral("Sent");
const QString SendAfter = QStringLiteral("SendAfter");
const QString MessageType = QStringLiteral("MessageType");
const QString Category = QStringLiteral("Category");
const QString HasHighlightWords = QStringLiteral("HasHighlightWords");
const QString Priority = QStringLiteral("Priority");
const QString PersonalToContact = QStringLiteral("PersonalToContact");
const QString Flags = QStringLiteral("Flags");
const QString Subject = QStringLiteral("Subject");
const QString Message = QStringLiteral("Message");
const QString MultiPartMessage = QStringLiteral("MultiPartMessage");
const QString SourceIndex = QStringLiteral("SourceIndex");
} // namespace Column

QVariant UniversalDay(Date local)
{
    return local.IsNone() ? QVariant() : QVariant(ClockHelper::LocalToUTC(local).DayNumber());
}

/// The mail's octets. Text that other software wrote into the field need not be octets; it is taken as UTF-8 then. Of a
/// damaged mail what there is of it.
QByteArray MailOctets(const dao::Field& field, bool& isDamaged)
{
    try {
        return field.Octets();
    } catch (const dao::Error& error) {
        switch (error.Number()) {
        case dao::errTypeMismatch:
            return field.Value().toString().toUtf8();
        case dao::errMemoDamaged:
            isDamaged = true;
            return field.Octets(dao::MemoTrust::AsStored);
        case dao::errFileDamaged:
            // The rest of the row was read.
            isDamaged = true;
            return {};
        default:
            throw;
        }
    }
}

/// Blanks at both ends go and nothing else. Shares the octets where there are none.
QByteArray Trimmed(const QByteArray& octets)
{
    qsizetype begin = 0;
    qsizetype end = octets.size();
    while (begin < end && octets.at(begin) == ' ')
        ++begin;
    while (end > begin && octets.at(end - 1) == ' ')
        --end;
    return octets.mid(begin, end - begin);
}

struct KeyColumn
{
    QString Name;
    QString Addresses;
};

/// The addresses of a field as far as a key can hold them and far beyond; never half an address.
QString Addresses(const cdo::MessageReader& reader, const char* field)
{
    constexpr qsizetype LongestList = 100'000;
    bool isWhole = true;
    const QString list = reader.Header(field, LongestList, &isWhole);
    return isWhole ? list : list.left(qMax(list.lastIndexOf(u','), qsizetype{0}));
}

QList<KeyColumn> KeyColumns(const cdo::Message& mail)
{
    const cdo::MessageReader reader(mail);
    return {{Column::FromKey, Addresses(reader, "From")},
            {Column::ToKey, Addresses(reader, "To")},
            {Column::CcKey, Addresses(reader, "Cc")}};
}

/// The key as it fits into its column.
QString KeyFor(const dao::Field& field, const KeyColumn& column, enMsgType type, const QString& country)
{
    const QString key = MakeAddressKey(column.Addresses, type, country);
    const QString fitting = FitAddressKey(key, field.Size() == 0 ? 255 : field.Size());
    if (fitting.size() < key.size()) {
        WriteDebugLog(QStringLiteral("%1 cut from %2 to %3 characters: not all addresses fit")
                          .arg(column.Name)
                          .arg(key.size())
                          .arg(fitting.size()));
    }
    return fitting;
}

/// A text cut to a field's size, never between the two halves of a character.
QString Cut(const QString& text, int size)
{
    const int limit = size == 0 ? 255 : size;
    if (text.size() <= limit)
        return text;
    return text.left(text.at(limit - 1).isHighSurrogate() ? limit - 1 : limit);
}

/// Begins to change the row of that number, or a new one when there is none; the number of the row.
qint32 BeginRow(dao::Recordset& recordset, qint32 reference)
{
    if (reference > 0) {
        WriteDebugLog(QStringLiteral("Seek for existing Message record"));
        recordset.Seek(dao::SeekComparison::Equal, {reference});
        if (!recordset.NoMatch()) {
            recordset.Edit();
            return reference;
        }
    }
    WriteDebugLog(QStringLiteral("Create new Message record"));
    recordset.AddNew();
    return recordset.Collect(Column::Reference).toInt();
}
} // namespace

bool cMessage::ReadFromRecordSet(qint32 reference, dao::Recordset* recordset)
{
    if (!recordset)
        return false;
    if (reference != 0) {
        recordset->SetIndex(MainIndex);
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        if (recordset->NoMatch())
            return false;
    }
    const auto column = [recordset](const QString& name) { return recordset->Collect(name); };
    SetReference(NumberOr(column(Column::Reference), 0));
    SetMessageType(static_cast<enMsgType>(NumberOr(column(Column::MessageType), emtEmail)));
    SetCategory(static_cast<enTolvaMessageCategories>(NumberOr(column(Column::Category), tmcInbox)));
    SetPriority(NumberOr(column(Column::Priority), 0));
    SetReceived(LocalDate(column(Column::Received)));
    SetSent(LocalDate(column(Column::Sent)));
    SetSendAfter(LocalDate(column(Column::SendAfter)));
    SetFlags(NumberOr(column(Column::Flags), 0));
    SetMultiPartMessage(static_cast<qint16>(NumberOr(column(Column::MultiPartMessage), 0)));
    SetHasHighlightWords(NumberOr(column(Column::HasHighlightWords), 0) != 0);
    SetPersonalToContact(NumberOr(column(Column::PersonalToContact), 0));
    SetSourceIndex(static_cast<qint16>(NumberOr(column(Column::SourceIndex), 0)));
    bool isDamaged = false;
    const QByteArray octets = MailOctets((*recordset)[Column::Message], isDamaged);
    if (!octets.isNull())
        CDOMessage_->SetOctets(octets);
    IsDamaged_ = isDamaged;
    SetEdited(false);
    return true;
}

bool cMessage::WriteToRecordSet(dao::Recordset* recordset, const QString& highlightWords, const clsFont& highlightFont,
                                const QString& country, PendingError& pending)
{
    WriteDebugLog(QStringLiteral("Started cMessage:WriteToRecordSet"));
    if (!recordset)
        return false;
    if (IsDamaged_) {
        // A save would give what is left of the mail the mark of a sound one.
        pending.Set(dao::errMemoDamaged, QStringLiteral("The mail is damaged: it is not what was saved."));
        return false;
    }
    recordset->SetIndex(MainIndex);
    const BusyPointer busy;

    if (Received_.IsNone())
        SetReceived(ClockHelper::CurrentTime());
    const qint32 reference = BeginRow(*recordset, Reference_);
    if (!highlightWords.isEmpty())
        MarkHighlightWords(highlightWords, highlightFont);

    const auto setColumn = [recordset](const QString& name, const QVariant& value) {
        recordset->SetCollect(name, value);
    };
    setColumn(Column::MessageType, MessageType_);
    WriteDebugLog(QStringLiteral("Setting Keys"));
    WriteAddressKeys(*recordset, country);
    WriteDebugLog(QStringLiteral("Setting Subject"));
    dao::Field& subject = (*recordset)[Column::Subject];
    subject.SetValue(Cut(cdo::HeaderBeginning(*CDOMessage_, "Subject"), subject.Size()));
    WriteDebugLog(QStringLiteral("Setting Category"));
    setColumn(Column::Category, Category_);
    setColumn(Column::MessageType, MessageType_);
    setColumn(Column::Priority, Priority_);
    setColumn(Column::Received, UniversalDay(Received_));
    setColumn(Column::Sent, UniversalDay(Sent_));
    setColumn(Column::SendAfter, UniversalDay(SendAfter_));
    setColumn(Column::Flags, Flags_);
    setColumn(Column::MultiPartMessage, MultiPartMessage_);
    const QByteArray octets = Trimmed(CDOMessage_->Octets());
    (*recordset)[Column::Message].SetOctets(octets.isEmpty() ? QByteArray() : octets);
    WriteDebugLog(QStringLiteral("Setting HighlightWords"));
    setColumn(Column::HasHighlightWords, HasHighlightWords_ ? -1 : 0);
    setColumn(Column::PersonalToContact, PersonalToContact_);
    setColumn(Column::SourceIndex, SourceIndex_);

    WriteDebugLog(QStringLiteral("Saving Message in database (Recordset.Update)"));
    const bool saved = pending.Try([recordset] { recordset->Update(); });
    if (saved) {
        // A number that stood for a vanished row stays: the caller's events carry it.
        if (Reference_ == 0)
            SetReference(reference);
        SetEdited(false);
    } else {
        WriteDebugLog(QStringLiteral("Couldn't save Message - ") + pending.Description());
    }
    WriteDebugLog(QStringLiteral("Finished WriteToRecordSet"));
    return saved;
}

QByteArray cMessage::OctetsToStore(const QString& highlightWords, const clsFont& highlightFont) const
{
    if (highlightWords.isEmpty())
        return Trimmed(CDOMessage_->Octets());
    const cMessagePtr copy = Copy();
    copy->MarkHighlightWords(highlightWords, highlightFont);
    return Trimmed(copy->CDOMessage()->Octets());
}

void cMessage::WriteAddressKeys(dao::Recordset& recordset, const QString& country) const
{
    for (const KeyColumn& column : KeyColumns(*CDOMessage_)) {
        dao::Field& field = recordset[column.Name];
        field.SetValue(KeyFor(field, column, MessageType_, country));
    }
}

QMap<QString, QString> cMessage::WrongAddressKeys(const dao::Recordset& row, const QString& country)
{
    bool isDamaged = false;
    const cdo::Message mail(MailOctets(row[Column::Message], isDamaged));
    if (isDamaged)
        return {}; // what its keys were made from is not there any more
    const auto type = static_cast<enMsgType>(NumberOr(row.Collect(Column::MessageType), emtEmail));
    QMap<QString, QString> wrong;
    for (const KeyColumn& column : KeyColumns(mail)) {
        const dao::Field& field = row[column.Name];
        const QString key = KeyFor(field, column, type, country);
        if (field.Value().toString() != key)
            wrong.insert(column.Name, key);
    }
    return wrong;
}

void cMessage::MarkHighlightWords(const QString& highlightWords, const clsFont& highlightFont)
{
    WriteDebugLog(QStringLiteral("Checking for Highlight words"));
    QString body = CDOMessage_->HTMLBody();
    const HighlightTags tags = MakeHighlightTags(highlightFont);
    const QStringList words = highlightWords.split(QLatin1Char('|'));
    SetHasHighlightWords(false);
    WriteDebugLog(QStringLiteral("Checking for %1 words").arg(words.size()));
    for (const QString& word : words) {
        HighlightResult result = HighlightResult::NotFound;
        if (MessageType_ != emtSMS)
            result = MarkHighlightWord(body, word, tags);
        else if (HoldsHighlightWord(body, word))
            result = HighlightResult::Found;
        if (result != HighlightResult::NotFound)
            SetHasHighlightWords(true);
        if (result == HighlightResult::TooLarge) {
            WriteDebugLog(QStringLiteral("Stopped: the highlights would make the message too large"));
            break;
        }
    }
    WriteDebugLog(QStringLiteral("Setting Message body with new highlit text"));
    if (MessageType_ != emtSMS)
        CDOMessage_->SetHTMLBody(body);
}
