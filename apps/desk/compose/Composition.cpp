// SPDX-License-Identifier: Apache-2.0
#include "Composition.h"

#include "Addresses.h"
#include "DisplayText.h"
#include "MailPriority.h"
#include "TextOfHtml.h"
#include "common/ClockHelper.h"
#include "database/StationSettings.h"
#include "database/cTolvaDatabase.h"
#include "messages/TextMessage.h"
#include "platform/mail/MessageIdentities.h"

#include <QLocale>
#include <QMimeDatabase>
#include <QRegularExpression>
#include <QUrl>
#include <QUuid>

namespace
{
/// A thread's newest members are enough to find it; a header that grows for ever is refused on its way.
constexpr qsizetype MostReferences = 20;

QString WithoutPrefixes(const QString& subject, const QRegularExpression& prefixes)
{
    const QRegularExpressionMatch match = prefixes.match(subject);
    return (match.hasMatch() ? subject.mid(match.capturedEnd()) : subject).trimmed();
}

/// "20 November 2026 at 08:00"
QString DateInWords(Date date)
{
    const QDateTime time = date.ToDateTime();
    const QLocale english(QLocale::English, QLocale::UnitedKingdom);
    return english.toString(time, QStringLiteral("d MMMM yyyy 'at' HH:mm"));
}

QString Attribution(const cMessage& original)
{
    const QString sender = OneLine(Addresses::DisplayName(Addresses::Split(original.CDOMessage()->From()).value(0)));
    const QString who = sender.isEmpty() ? QStringLiteral("somebody") : sender;
    return original.Sent().IsNone() ? QStringLiteral("%1 wrote:").arg(who)
                                    : QStringLiteral("On %1, %2 wrote:").arg(DateInWords(original.Sent()), who);
}

void Thread(const cdo::Message& original, Composition& composition)
{
    const QStringList own = cdo::MessageIdentities(original.MessageID());
    if (own.isEmpty())
        return;
    QStringList references = cdo::MessageIdentities(original.Header("References"));
    if (references.isEmpty())
        references = cdo::MessageIdentities(original.Header("In-Reply-To")).mid(0, 1);
    references.removeAll(own.first());
    references.append(own.first());
    // The first begins the thread and stays.
    while (references.size() > MostReferences)
        references.removeAt(1);
    composition.InReplyTo = own.first();
    composition.References = references.join(u' ');
}

bool IsOwn(const cMessage& message, const Writer& writer)
{
    const QString from = Addresses::Bare(Addresses::Split(message.CDOMessage()->From()).value(0));
    const bool isFiledAsOwn =
        message.Category() == tmcSent || message.Category() == tmcOutbox || message.Category() == tmcDrafts;
    return isFiledAsOwn ||
           (!writer.EmailAddress.isEmpty() && from.compare(writer.EmailAddress, Qt::CaseInsensitive) == 0);
}

/// Whom an answer goes to.
QStringList Answered(const cMessage& original, const Writer& writer)
{
    const cdo::Message& mail = *original.CDOMessage();
    if (IsOwn(original, writer))
        return Addresses::Split(mail.To());
    const QStringList replyTo = Addresses::Split(mail.ReplyTo());
    return replyTo.isEmpty() ? Addresses::Split(mail.From()) : replyTo;
}

QString Joined(const QStringList& recipients)
{
    return recipients.join(QStringLiteral(", "));
}

Composition TextReply(const cMessage& original)
{
    Composition composition;
    composition.Type = emtSMS;
    composition.Answers = original.Reference();
    const cdo::Message& mail = *original.CDOMessage();
    composition.To = original.Category() == tmcSent || original.Category() == tmcOutbox ? mail.To() : mail.From();
    return composition;
}

/// A name for a file that came without one.
QString NameOf(const cdo::Attachment& attachment, int number)
{
    if (!attachment.FileName.trimmed().isEmpty())
        return attachment.FileName;
    if (attachment.ContentType == u"message/rfc822")
        return QStringLiteral("Message %1.eml").arg(number);
    const QString suffix = QMimeDatabase().mimeTypeForName(attachment.ContentType).preferredSuffix();
    const QString kind =
        attachment.ContentType.startsWith(u"image/") ? QStringLiteral("Image") : QStringLiteral("File");
    return QStringLiteral("%1 %2.%3").arg(kind).arg(number).arg(suffix.isEmpty() ? QStringLiteral("bin") : suffix);
}

QList<ComposedFile> FilesOf(const cdo::Message& mail)
{
    QList<ComposedFile> files;
    const QList<cdo::Attachment> attachments = mail.Attachments();
    for (int i = 0; i < attachments.size(); ++i) {
        files.append(
            {NameOf(attachments.at(i), i + 1), attachments.at(i).ContentType.toLatin1(), mail.AttachmentContent(i)});
    }
    return files;
}

QString ForwardedText(const cMessage& original)
{
    const cdo::Message& mail = *original.CDOMessage();
    QStringList lines = {Composing::ForwardedLine()};
    const auto add = [&lines](const QString& name, const QString& value) {
        if (!value.isEmpty())
            lines.append(QStringLiteral("%1: %2").arg(name, OneLine(value)));
    };
    add(QStringLiteral("From"), mail.From());
    if (!original.Sent().IsNone())
        add(QStringLiteral("Date"), DateInWords(original.Sent()));
    add(QStringLiteral("To"), mail.To());
    add(QStringLiteral("Cc"), mail.CC());
    if (original.MessageType() != emtSMS)
        add(QStringLiteral("Subject"), mail.Subject());
    return lines.join(u'\n');
}

/// A domain for the Message-ID: that of the writer's address. "invalid" is reserved for names that nobody has.
QString NewMessageID(const Writer& writer)
{
    const qsizetype at = writer.EmailAddress.lastIndexOf(u'@');
    const QString domain =
        at < 0 ? QStringLiteral("tolva.invalid") : QString::fromLatin1(QUrl::toAce(writer.EmailAddress.mid(at + 1)));
    return QStringLiteral("<%1@%2>").arg(QUuid::createUuid().toString(QUuid::WithoutBraces),
                                         domain.isEmpty() ? QStringLiteral("tolva.invalid") : domain);
}

std::shared_ptr<cdo::Message> MailOf(const Composition& composition, const Writer& writer, Date now)
{
    const auto mail = std::make_shared<cdo::Message>();
    mail->SetFrom(Addresses::Mailbox(writer.StationName, writer.EmailAddress));
    mail->SetTo(Joined(Addresses::Split(composition.To)));
    mail->SetCC(Joined(Addresses::Split(composition.CC)));
    mail->SetBCC(Joined(Addresses::Split(composition.BCC)));
    mail->SetSubject(composition.Subject.simplified());
    mail->SetSentOn(ClockHelper::LocalToUTC(now).ToDateTime(Qt::UTC));
    mail->SetHeader("Message-ID", NewMessageID(writer));
    mail->SetHeader("In-Reply-To", composition.InReplyTo);
    mail->SetHeader("References", composition.References);
    if (composition.IsUrgent) {
        // Mail programs go by one or the other.
        mail->SetHeader("X-Priority", QStringLiteral("1"));
        mail->SetHeader("Importance", QStringLiteral("high"));
    }
    mail->SetTextBody(composition.Body);
    for (const ComposedFile& file : composition.Files)
        mail->AddAttachment(file.FileName, file.ContentType, file.Content);
    return mail;
}
} // namespace

Writer Composing::WriterOf(const cTolvaDatabase& database)
{
    const StationSettings::TextSetting& email = StationSettings::StationEmailAddress;
    return {database.StationName(), database.DatabaseSetting(email.Key, email.Default).toString().trimmed(),
            database.StationSMSPhoneNumber()};
}

Composition Composing::Reply(const cMessage& original, const Writer& writer)
{
    if (original.MessageType() == emtSMS)
        return TextReply(original);
    Composition composition;
    composition.Answers = original.Reference();
    const cdo::Message& mail = *original.CDOMessage();
    composition.To = Joined(Addresses::Without(Answered(original, writer), {}));
    composition.Subject = ReplySubject(mail.Subject());
    composition.Body = QStringLiteral("\n\n%1\n%2\n").arg(Attribution(original), Quoted(ReadableText(mail)));
    Thread(mail, composition);
    return composition;
}

Composition Composing::ReplyToAll(const cMessage& original, const Writer& writer)
{
    Composition composition = Reply(original, writer);
    if (original.MessageType() == emtSMS)
        return composition;
    const cdo::Message& mail = *original.CDOMessage();
    const QStringList own = writer.EmailAddress.isEmpty() ? QStringList() : QStringList{writer.EmailAddress};
    QStringList to = Addresses::Split(composition.To);
    // A list that holds the writer alone would leave nobody.
    const QStringList others = Addresses::Without(to, own);
    if (!others.isEmpty())
        to = others;
    composition.To = Joined(to);
    composition.CC = Joined(Addresses::Without(Addresses::Split(mail.To()) + Addresses::Split(mail.CC()), to + own));
    return composition;
}

Composition Composing::Forward(const cMessage& original)
{
    Composition composition;
    const cdo::Message& mail = *original.CDOMessage();
    composition.Subject = ForwardSubject(mail.Subject());
    composition.Body = QStringLiteral("\n\n%1\n\n%2\n").arg(ForwardedText(original), Quoted(ReadableText(mail)));
    composition.Files = FilesOf(mail);
    Thread(mail, composition);
    // It starts a conversation with somebody else.
    composition.InReplyTo.clear();
    return composition;
}

Composition Composing::Copy(const cMessage& original)
{
    Composition composition = Continue(original);
    composition.InReplyTo.clear();
    composition.References.clear();
    return composition;
}

Composition Composing::Continue(const cMessage& draft)
{
    Composition composition;
    const cdo::Message& mail = *draft.CDOMessage();
    composition.Type = draft.MessageType();
    composition.To = mail.To();
    composition.CC = mail.CC();
    composition.BCC = mail.BCC();
    composition.Subject = draft.MessageType() == emtSMS ? QString() : mail.Subject();
    composition.Body = ReadableText(mail);
    composition.Files = draft.MessageType() == emtSMS ? QList<ComposedFile>() : FilesOf(mail);
    composition.IsUrgent = draft.Priority() == UrgentPriority || MailPriority(mail) == UrgentPriority;
    composition.InReplyTo = cdo::MessageIdentities(mail.Header("In-Reply-To")).value(0);
    composition.References = cdo::MessageIdentities(mail.Header("References")).join(u' ');
    return composition;
}

QString Composing::WhyNotSendable(const Composition& composition)
{
    const QString problem =
        Addresses::WhyNotSendable(composition.To, composition.CC, composition.BCC, composition.Type);
    if (!problem.isEmpty())
        return problem;
    if (composition.Type == emtSMS && composition.Body.trimmed().isEmpty())
        return QStringLiteral("The text message is empty.");
    return QString();
}

void Composing::Write(const Composition& composition, const Writer& writer, Filing filing, Date now, cMessage& message)
{
    if (composition.Type == emtSMS) {
        TextMessage text;
        text.From = writer.SMSNumber.isEmpty() ? writer.StationName : writer.SMSNumber;
        text.To = composition.To.simplified();
        text.Text = composition.Body;
        text.Received = now;
        message.SetCDOMessage(MakeMessage(text)->CDOMessage());
    } else {
        message.SetCDOMessage(MailOf(composition, writer, now));
    }
    if (composition.IsUrgent != (message.Priority() == UrgentPriority))
        message.SetPriority(composition.IsUrgent ? UrgentPriority : 0);
    message.SetMessageType(composition.Type);
    message.SetCategory(filing == Filing::Draft ? tmcDrafts : tmcOutbox);
    // What a person wrote is read.
    const qint32 kept = (message.Flags() & ~mfSendPending) | mfRead;
    message.SetFlags(filing == Filing::Outgoing ? kept | mfSendPending : kept);
    message.SetSent(now);
    if (message.Received().IsNone())
        message.SetReceived(now);
}

QString Composing::ForwardedLine()
{
    return QStringLiteral("---- Forwarded message ----");
}

QString Composing::ReplySubject(const QString& subject)
{
    static const QRegularExpression prefixes(QStringLiteral("^(?:\\s*re\\s*(?:\\[\\d+\\])?\\s*:)+"),
                                             QRegularExpression::CaseInsensitiveOption);
    return QStringLiteral("RE: ") + WithoutPrefixes(subject, prefixes);
}

QString Composing::ForwardSubject(const QString& subject)
{
    static const QRegularExpression prefixes(QStringLiteral("^(?:\\s*fwd?\\s*:)+"),
                                             QRegularExpression::CaseInsensitiveOption);
    return QStringLiteral("FW: ") + WithoutPrefixes(subject, prefixes);
}

QString Composing::Quoted(const QString& text)
{
    QString plain = text;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    // Whatever else begins a line where the text is read must not begin one without a mark.
    for (const char16_t lineEnd : {u'\r', u'\v', u'\f', u'\u0085', u'\u2028', u'\u2029'})
        plain.replace(QChar(lineEnd), u'\n');
    QStringList lines = plain.split(u'\n');
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty())
        lines.removeLast();
    for (QString& line : lines)
        line.prepend(line.startsWith(u'>') || line.isEmpty() ? QStringLiteral(">") : QStringLiteral("> "));
    return lines.join(u'\n');
}

QString Composing::ReadableText(const cdo::Message& mail)
{
    const QString text = mail.TextBody();
    return text.trimmed().isEmpty() ? TextOfHtml(mail.HTMLBody()) : text;
}
