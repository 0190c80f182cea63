// SPDX-License-Identifier: Apache-2.0
#include "commands/PendingExport.h"

#include "FileOutput.h"
#include "Terminal.h"
#include "common/FileHelper.h"
#include "sending/OutgoingIdentity.h"
#include "sending/OutgoingState.h"
#include "sending/TextRecipients.h"

#include <QFile>
#include <QFileInfo>

namespace
{
QByteArray TextFile(const QStringList& numbers, const cdo::Message& mail)
{
    QString text;
    for (const QString& number : numbers)
        text += QStringLiteral("To: %1\n").arg(number);
    return (text + u'\n' + TextOfTextMessage(mail) + u'\n').toUtf8();
}

bool Holds(const QString& path, const QByteArray& octets)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.size() == octets.size() && file.readAll() == octets;
}
} // namespace

PendingExport::PendingExport(const QString& folder, bool force, SendingLedger& ledger)
    : Folder_(folder), Force_(force), Ledger_(ledger)
{
    if (!QFileInfo(folder).isDir())
        throw Failure(exitCannotCreate, QStringLiteral("There is no folder %1.").arg(folder));
}

void PendingExport::Refuse(ExitCode code, const QString& words)
{
    Terminal::Complain(words);
    if (Result_ == exitOK)
        Result_ = code;
}

bool PendingExport::MayBeSentAlready(qint32 reference)
{
    const QString name = FileHelper::Join(Folder_, QString::number(reference));
    // Handed over and about to be marked.
    if (QFileInfo::exists(name + QStringLiteral(".sent")))
        return true;
    const QString sending = name + QStringLiteral(".sending");
    if (!QFileInfo::exists(sending))
        return false;
    Refuse(
        exitCannotCreate,
        QStringLiteral("Message %1 was being sent when the sending was interrupted, so it may have gone out; "
                       "it is held back. Find out, then rename %2 to %1.sent if it went, or delete it to send again.")
            .arg(QString::number(reference), sending));
    return true;
}

/// Before the file is there: a run of tolva send at this moment has the message, or leaves it.
bool PendingExport::NoteHandedOut(const cMessage& message)
{
    const QString place = QFileInfo(Folder_).absoluteFilePath();
    SendingRecord record;
    if (Ledger_.NoteHandedOut(message.Reference(), OutgoingIdentity(message),
                              QStringLiteral("handed out as a file in %1").arg(place), record))
        return true;
    Refuse(exitData, QStringLiteral("Message %1 is not handed out, because tolva send has it: %2.")
                         .arg(message.Reference())
                         .arg(InWords(StateOf(message, Ledger_))));
    return false;
}

void PendingExport::Write(const cMessage& message)
{
    const qint32 reference = message.Reference();
    if (MayBeSentAlready(reference))
        return;
    if (message.IsDamaged()) {
        Refuse(exitData,
               QStringLiteral("Message %1 is damaged and is not sent. What to do: tolva check").arg(reference));
        return;
    }
    const cdo::Message& mail = *message.CDOMessage();
    const bool isText = message.MessageType() == emtSMS;
    const QStringList numbers = isText ? TextRecipients(mail) : QStringList();
    if (isText && numbers.isEmpty()) {
        Refuse(exitData, QStringLiteral("Message %1 has no telephone number to go to.").arg(reference));
        return;
    }
    if (!NoteHandedOut(message))
        return;
    const QByteArray octets = isText ? TextFile(numbers, mail) : mail.Octets();
    const QString path = FileHelper::Join(Folder_, QString::number(reference) +
                                                       (isText ? QStringLiteral(".sms") : QStringLiteral(".eml")));
    if (!Holds(path, octets)) {
        if (QFileInfo::exists(path) && !Force_) {
            Refuse(exitCannotCreate,
                   QStringLiteral("%1 exists and holds something else; --force replaces it.").arg(path));
            return;
        }
        FileOutput::Write(path, octets, Force_ ? IfThere::Replace : IfThere::Refuse);
    }
    Terminal::PrintLine(path);
}
