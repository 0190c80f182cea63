// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "common/Enumerations.h"
#include "platform/Export.h"
#include "platform/mail/Message.h"

#include <QMap>
#include <QObject>

#include <memory>

struct clsFont;
class cMessage;
class PendingError;

namespace dao
{
class Recordset;
}

/// Messages are shared by hosts, events and collections.
using cMessagePtr = std::shared_ptr<cMessage>;

/// One e-mail or SMS in memory: the flat properties that lists sort and filter on, and CDOMessage, the mail itself. Any
/// host makes one and saves it through cTolvaDatabase. Dates are local time here and universal time in the table; none
/// for "no date".
///
/// Every setter but SetCDOMessage marks the object as edited. Changing the mail does not, so who changes it sets
/// Edited.
class TOLVA_EXPORT cMessage : public QObject
{
    Q_OBJECT

public:
    cMessage();
    ~cMessage() override;

    /// The row's key; 0 until it is saved.
    qint32 Reference() const { return Reference_; }
    void SetReference(qint32 reference);
    /// The folder: a fixed one, or the reference of a user's.
    enTolvaMessageCategories Category() const { return Category_; }
    void SetCategory(enTolvaMessageCategories category);
    bool Edited() const { return Edited_; }
    /// Raises MessageEdited every time.
    void SetEdited(bool edited);

    /// Never null.
    const std::shared_ptr<cdo::Message>& CDOMessage() const { return CDOMessage_; }
    /// Takes the mail and reads priority and dates from its header. Null is ignored.
    void SetCDOMessage(const std::shared_ptr<cdo::Message>& message);

    /// Whether the mail is not what was saved: it was changed on the disk, or cannot be read. CDOMessage holds what
    /// there is of it then, if anything, and the message is not saved until SetCDOMessage gives it another mail. Its
    /// copies are damaged as well.
    bool IsDamaged() const { return IsDamaged_; }

    /// The directory contact to whom the message is personal; 0 for nobody.
    qint32 PersonalToContact() const { return PersonalToContact_; }
    /// Marks only when the value differs; so does SetSourceIndex.
    void SetPersonalToContact(qint32 contact);
    qint16 SourceIndex() const { return SourceIndex_; }
    void SetSourceIndex(qint16 index);
    /// Whether the body held a highlight word at the last save.
    bool HasHighlightWords() const { return HasHighlightWords_; }
    void SetHasHighlightWords(bool has);

    Date Received() const { return Received_; }
    void SetReceived(Date date);
    Date Sent() const { return Sent_; }
    void SetSent(Date date);
    Date SendAfter() const { return SendAfter_; }
    void SetSendAfter(Date date);
    /// General Date, empty for none. The setters ignore text that is no date.
    QString ReceivedString() const { return Received_.GeneralDate(); }
    void SetReceivedString(const QString& text);
    QString SentString() const { return Sent_.GeneralDate(); }
    void SetSentString(const QString& text);
    QString SendAfterString() const { return SendAfter_.GeneralDate(); }
    void SetSendAfterString(const QString& text);

    /// enMsgFlags, added up.
    qint32 Flags() const { return Flags_; }
    void SetFlags(qint32 flags);
    qint16 MultiPartMessage() const { return MultiPartMessage_; }
    void SetMultiPartMessage(qint16 part);
    qint32 Priority() const { return Priority_; }
    void SetPriority(qint32 priority);
    enMsgType MessageType() const { return MessageType_; }
    void SetMessageType(enMsgType type);

    /// The template filled from this message: every tag of docs/templates.md replaced by its value. flags:
    /// eMsgProcessHTMLTags, added up.
    QString ProcessHTMLTags(const QString& strTemplate, qint32 flags = 0) const;

    /// A new unsaved message with the same properties and the same mail.
    cMessagePtr Copy() const;

Q_SIGNALS:
    void MessageEdited(bool Edited);

private:
    friend class MessageStore;

    /// Reads the row with this reference, or the current row for 0. False when it is not there; the object is then
    /// untouched.
    bool ReadFromRecordSet(qint32 reference, dao::Recordset* recordset);
    /// Writes the row, adding one when there is none with this reference. country: in whose form the keys of a text
    /// message hold its numbers. False when the update failed, with the error
    /// in pending; dao::Error for what fails before it.
    bool WriteToRecordSet(dao::Recordset* recordset, const QString& highlightWords, const clsFont& highlightFont,
                          const QString& country, PendingError& pending);
    QByteArray OctetsToStore(const QString& highlightWords, const clsFont& highlightFont) const;
    void MarkHighlightWords(const QString& highlightWords, const clsFont& highlightFont);
    void WriteAddressKeys(dao::Recordset& recordset, const QString& country) const;
    /// The key columns of a row in which stands something else than a save of its mail would write, with what belongs
    /// there.
    static QMap<QString, QString> WrongAddressKeys(const dao::Recordset& row, const QString& country);
    void ReadHeaderFields();
    Date HeaderDate(const QDateTime& universal) const;

    qint32 Reference_ = 0;
    enTolvaMessageCategories Category_ = tmcDrafts;
    bool Edited_ = false;
    bool IsDamaged_ = false;
    std::shared_ptr<cdo::Message> CDOMessage_;
    qint32 PersonalToContact_ = 0;
    qint16 SourceIndex_ = 0;
    bool HasHighlightWords_ = false;
    Date Received_;
    Date Sent_;
    Date SendAfter_;
    qint32 Flags_ = 0;
    qint16 MultiPartMessage_ = 0;
    qint32 Priority_ = 0;
    enMsgType MessageType_ = emtEmail;
};
