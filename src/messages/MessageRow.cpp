// A message's row in the table Messages: cMessage's reading and writing.

#include "common/ClockHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "common/clsFont.h"
#include "common/kvGeneral.h"
#include "messages/AddressKey.h"
#include "messages/HighlightMarking.h"
#include "messages/cMessage.h"
#include "platform/records/Recordset.h"

namespace
{
const QString MainIndex = QStringLiteral("Main");

qint32 NumberOr(const QVariant& value, qint32 whenNull)
{
    return value.isValid() ? value.toInt() : whenNull;
}

Date LocalDate(const QVariant& value)
{
    return ClockHelper::UTCToLocal(Date(value.isValid() ? value.toDouble() : 0.0));
}

QVariant UniversalDay(Date local)
{
    return local.IsNone() ? QVariant() : QVariant(ClockHelper::LocalToUTC(local).DayNumber());
}

/// The mail's octets. Text that other software wrote into the field need not be octets; it is taken as UTF-8 then.
QByteArray MailOctets(const dao::Field& field)
{
    try {
        return field.Octets();
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errTypeMismatch)
            throw;
        return field.Value().toString().toUtf8();
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

/// A text cut to a field's size, never between the two halves of a character.
QString Cut(const QString& text, int size)
{
    const int limit = size == 0 ? 255 : size;
    if (text.size() <= limit)
        return text;
    return text.left(text.at(limit - 1).isHighSurrogate() ? limit - 1 : limit);
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
    const auto column = [recordset](const char16_t* name) { return recordset->Collect(QString::fromUtf16(name)); };
    SetReference(NumberOr(column(u"Reference"), 0));
    SetMessageType(static_cast<enMsgType>(NumberOr(column(u"MessageType"), emtEmail)));
    SetCategory(static_cast<enTolvaMessageCategories>(NumberOr(column(u"Category"), tmcInbox)));
    SetPriority(NumberOr(column(u"Priority"), 0));
    SetReceived(LocalDate(column(u"Received")));
    SetSent(LocalDate(column(u"Sent")));
    SetSendAfter(LocalDate(column(u"SendAfter")));
    SetFlags(NumberOr(column(u"Flags"), 0));
    SetMultiPartMessage(static_cast<qint16>(NumberOr(column(u"MultiPartMessage"), 0)));
    SetHasHighlightWords(NumberOr(column(u"HasHighlightWords"), 0) != 0);
    SetPersonalToContact(NumberOr(column(u"PersonalToContact"), 0));
    SetSourceIndex(static_cast<qint16>(NumberOr(column(u"SourceIndex"), 0)));
    const QByteArray octets = MailOctets((*recordset)[QStringLiteral("Message")]);
    if (!octets.isNull())
        CDOMessage_->SetOctets(octets);
    SetEdited(false);
    return true;
}

bool cMessage::WriteToRecordSet(dao::Recordset* recordset, const QString& highlightWords, const clsFont& highlightFont,
                                PendingError& pending)
{
    WriteDebugLog(QStringLiteral("Started cMessage:WriteToRecordSet"));
    if (!recordset)
        return false;
    recordset->SetIndex(MainIndex);
    const BusyPointer busy;

    qint32 reference = Reference_;
    if (Received_.IsNone())
        SetReceived(ClockHelper::CurrentTime());
    if (reference > 0) {
        WriteDebugLog(QStringLiteral("Seek for existing Message record"));
        recordset->Seek(dao::SeekComparison::Equal, {reference});
        if (recordset->NoMatch())
            reference = 0;
        else
            recordset->Edit();
    }
    if (reference <= 0) {
        WriteDebugLog(QStringLiteral("Create new Message record"));
        recordset->AddNew();
        reference = recordset->Collect(QStringLiteral("Reference")).toInt();
    }
    if (!highlightWords.isEmpty())
        MarkHighlightWords(highlightWords, highlightFont);

    const auto setColumn = [recordset](const char16_t* name, const QVariant& value) {
        recordset->SetCollect(QString::fromUtf16(name), value);
    };
    setColumn(u"MessageType", MessageType_);
    WriteDebugLog(QStringLiteral("Setting Keys"));
    WriteAddressKeys(*recordset);
    WriteDebugLog(QStringLiteral("Setting Subject"));
    dao::Field& subject = (*recordset)[QStringLiteral("Subject")];
    subject.SetValue(Cut(CDOMessage_->Subject(), subject.Size()));
    WriteDebugLog(QStringLiteral("Setting Category"));
    setColumn(u"Category", Category_);
    setColumn(u"MessageType", MessageType_);
    setColumn(u"Priority", Priority_);
    setColumn(u"Received", UniversalDay(Received_));
    setColumn(u"Sent", UniversalDay(Sent_));
    setColumn(u"SendAfter", UniversalDay(SendAfter_));
    setColumn(u"Flags", Flags_);
    setColumn(u"MultiPartMessage", MultiPartMessage_);
    const QByteArray octets = Trimmed(CDOMessage_->Octets());
    (*recordset)[QStringLiteral("Message")].SetOctets(octets.isEmpty() ? QByteArray() : octets);
    WriteDebugLog(QStringLiteral("Setting HighlightWords"));
    setColumn(u"HasHighlightWords", HasHighlightWords_ ? -1 : 0);
    setColumn(u"PersonalToContact", PersonalToContact_);
    setColumn(u"SourceIndex", SourceIndex_);

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

void cMessage::WriteAddressKeys(dao::Recordset& recordset) const
{
    const auto write = [&](const QString& name, const QString& addresses) {
        dao::Field& field = recordset[name];
        const QString key = MakeAddressKey(addresses, MessageType_);
        const QString fitting = FitAddressKey(key, field.Size() == 0 ? 255 : field.Size());
        if (fitting.size() < key.size()) {
            WriteDebugLog(QStringLiteral("%1 cut from %2 to %3 characters: not all addresses fit")
                              .arg(name)
                              .arg(key.size())
                              .arg(fitting.size()));
        }
        field.SetValue(fitting);
    };
    write(QStringLiteral("FromKey"), CDOMessage_->From());
    write(QStringLiteral("ToKey"), CDOMessage_->To());
    write(QStringLiteral("CcKey"), CDOMessage_->CC());
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
