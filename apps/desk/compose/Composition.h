// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Enumerations.h"
#include "messages/cMessage.h"

#include <QByteArray>
#include <QList>
#include <QString>

class cTolvaDatabase;

/// A file that goes with a message.
struct ComposedFile
{
    QString FileName;
    QByteArray ContentType; ///< "image/png"
    QByteArray Content;

    friend bool operator==(const ComposedFile&, const ComposedFile&) = default;
};

/// A message while it is being written: plain text and files. Without any widget, so that what goes out is decided and
/// tested here. A value.
struct Composition
{
    enMsgType Type = emtEmail;
    QString To;
    QString CC;
    QString BCC; ///< Only of a draft that had one.
    QString Subject;
    QString Body; ///< Line ends are "\n".
    QList<ComposedFile> Files;
    bool IsUrgent = false; ///< Says so in its header, and in the list.
    QString InReplyTo;     ///< Message-IDs with their angle brackets.
    QString References;    ///< The same, divided by blanks.
    qint32 Answers = 0;    ///< The stored message that this answers, while the desk knows; 0 for none.

    friend bool operator==(const Composition&, const Composition&) = default;
};

/// Who writes: what the station's settings say at that moment.
struct Writer
{
    QString StationName;
    QString EmailAddress; ///< The setting "Station.EmailAddress"; empty when there is none.
    QString SMSNumber;
};

/// Making compositions of messages and messages of compositions. Nothing is fetched: HTML gives its words, and the
/// files are the octets that the original message holds.
namespace Composing
{
/// The writer as the open station's settings have it now.
Writer WriterOf(const cTolvaDatabase& database);

/// An answer to the sender: to Reply-To, else From; to an own message's recipients. The original is quoted below.
/// An SMS is answered with an SMS, without a quotation.
Composition Reply(const cMessage& original, const Writer& writer);
/// The same to all who had the original, but the writer and nobody twice.
Composition ReplyToAll(const cMessage& original, const Writer& writer);
/// To nobody yet, with the original quoted under its own header lines, and all its files, inline images too.
Composition Forward(const cMessage& original);
/// A new message with everything that this one says.
Composition Copy(const cMessage& original);
/// A draft as it was left.
Composition Continue(const cMessage& draft);

/// Why the composition cannot go out, as a sentence for the writer; empty when it can.
QString WhyNotSendable(const Composition& composition);

enum class Filing
{
    Draft,   ///< tmcDrafts
    Outgoing ///< tmcOutbox and pending, for the mailer to take.
};

/// Writes the composition into message: its mail, its type, folder, flags and date. What a composition does not hold
/// (to whom it is personal, a low priority, when to send it) stays. now: local time, which becomes Sent and the Date
/// header, so that lists show when it was filed.
void Write(const Composition& composition, const Writer& writer, Filing filing, Date now, cMessage& message);

/// "RE: " and "FW: " in front of the subject, in place of those that stand there.
QString ReplySubject(const QString& subject);
QString ForwardSubject(const QString& subject);
/// Every line with "> " in front; no blank is added to lines that are quotations already.
QString Quoted(const QString& text);
/// The line behind which a forwarded message follows.
QString ForwardedLine();
/// The text of a mail for a person to read: the text body, or the words of the HTML one.
QString ReadableText(const cdo::Message& mail);
} // namespace Composing
