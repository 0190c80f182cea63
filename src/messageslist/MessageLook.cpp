// SPDX-License-Identifier: Apache-2.0
#include "messageslist/MessageLook.h"

#include "database/RowValues.h"
#include "database/cTolvaDatabase.h"
#include "messages/OwnFolders.h"
#include "platform/mail/RawHeaders.h"
#include "platform/records/Recordset.h"

#include <algorithm>

using RowValues::LocalDate;
using RowValues::NumberOr;

namespace
{
/// Mails that came a short way have their header in the first; each that has a longer one doubles it, up to the last.
constexpr qsizetype FirstBeginning = 1024;
constexpr qsizetype LongestBeginning = 32 * FirstBeginning;

/// Of a message in that folder.
QList<QByteArray> HeaderNames(qint32 folder, LookDepth depth)
{
    QList<QByteArray> names = {"Subject", "From"};
    if (IsOwnFolder(folder))
        names.append("To");
    if (depth == LookDepth::NamesAndType)
        names.append("Content-Type");
    return names;
}

/// Most mails with files are of this kind, and those that are nothing but a file are of none of the others.
bool IsTypeWithFiles(const QByteArray& contentType)
{
    const QByteArray type = contentType.trimmed().toLower();
    return type.startsWith("multipart/mixed") ||
           (!type.isEmpty() && !type.startsWith("multipart/") && !type.startsWith("text/"));
}

void TakeHeader(MessageLook& look, const QList<QByteArray>& names, const QList<QByteArray>& values)
{
    look.Subject = values.at(0);
    look.From = values.at(1);
    look.To = values.value(names.indexOf("To"));
    look.HasAttachments = IsTypeWithFiles(values.value(names.indexOf("Content-Type")));
}
} // namespace

MessageLook StateOf(const cMessage& message)
{
    MessageLook look;
    look.Reference = message.Reference();
    look.MessageType = message.MessageType();
    look.Flags = message.Flags();
    look.Priority = message.Priority();
    look.PersonalToContact = message.PersonalToContact();
    look.HasHighlightWords = message.HasHighlightWords();
    look.Sent = message.Sent();
    look.Received = message.Received();
    return look;
}

MessageLook LookOf(const cMessage& message, LookDepth depth)
{
    MessageLook look = StateOf(message);
    const QList<QByteArray> names = HeaderNames(message.Category(), depth);
    TakeHeader(look, names, cdo::RawHeaders(message.CDOMessage()->Octets(), names, LongestCell));
    return look;
}

MessageLooks::MessageLooks(cTolvaDatabase& database, dao::Recordset& rows, LookDepth depth)
    : Database_(database),
      Rows_(rows),
      Reference_(rows[QStringLiteral("Reference")]),
      MessageType_(rows[QStringLiteral("MessageType")]),
      Flags_(rows[QStringLiteral("Flags")]),
      Priority_(rows[QStringLiteral("Priority")]),
      PersonalToContact_(rows[QStringLiteral("PersonalToContact")]),
      HasHighlightWords_(rows[QStringLiteral("HasHighlightWords")]),
      Sent_(rows[QStringLiteral("Sent")]),
      Received_(rows[QStringLiteral("Received")]),
      Category_(rows[QStringLiteral("Category")]),
      Message_(rows[QStringLiteral("Message")]),
      Depth_(depth),
      BeginningOctets_(FirstBeginning)
{
}

std::optional<MessageLook> MessageLooks::Read()
{
    MessageLook look;
    if (!ReadHeader(look)) {
        const cMessagePtr message = Database_.GetMessage(Rows_);
        return message ? std::optional(LookOf(*message, Depth_)) : std::nullopt;
    }
    look.Reference = NumberOr(Reference_.Value(), 0);
    look.MessageType = static_cast<enMsgType>(NumberOr(MessageType_.Value(), emtEmail));
    look.Flags = NumberOr(Flags_.Value(), 0);
    look.Priority = NumberOr(Priority_.Value(), 0);
    look.PersonalToContact = NumberOr(PersonalToContact_.Value(), 0);
    look.HasHighlightWords = NumberOr(HasHighlightWords_.Value(), 0) != 0;
    look.Sent = LocalDate(Sent_.Value());
    look.Received = LocalDate(Received_.Value());
    return look;
}

/// False where the beginning of the mail does not tell, or cannot be read: then the whole mail says what there is.
bool MessageLooks::ReadHeader(MessageLook& look)
{
    dao::MemoBeginning beginning;
    try {
        beginning = Message_.Beginning(BeginningOctets_);
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errRecordDeleted && error.Number() != dao::errFileDamaged)
            throw;
        return false;
    }
    const QList<QByteArray> names = HeaderNames(NumberOr(Category_.Value(), tmcInbox), Depth_);
    const auto values = cdo::RawHeadersOfBeginning(beginning.Utf8, beginning.IsWhole, names, LongestCell);
    if (!values) {
        BeginningOctets_ = std::min(BeginningOctets_ * 2, LongestBeginning);
        return false;
    }
    TakeHeader(look, names, *values);
    return true;
}
