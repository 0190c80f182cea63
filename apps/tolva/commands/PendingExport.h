// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ExitCode.h"
#include "messages/cMessage.h"
#include "sending/SendingLedger.h"

#include <QString>

/// The folder through which messages that wait to be sent reach a mailer. Each is a file named after its number:
/// "27.eml", the mail octet by octet, or "27.sms", a text message: a line "To: NUMBER" for each
/// recipient, an empty line, the text in UTF-8. The mailer renames it to "27.sending" before it hands it over and to
/// "27.sent" afterwards; a message with one of these is not written again, because it may have gone out already.
class PendingExport
{
public:
    /// Failure (cannot create) when there is no such folder. force: replaces files that hold something else. ledger:
    /// where each is noted, so that tolva send does not send it as well; it outlives this object.
    PendingExport(const QString& folder, bool force, SendingLedger& ledger);

    /// Writes one message durably and prints its path; a file that holds the same already stays as it is. What keeps a
    /// message from being written is told on standard error and remembered in Result. Failure (input/output) when the
    /// disk refuses, dao::Error where the ledger cannot be written.
    void Write(const cMessage& message);
    /// exitOK, or why not all could be written.
    ExitCode Result() const { return Result_; }

private:
    bool MayBeSentAlready(qint32 reference);
    bool NoteHandedOut(const cMessage& message);
    void Refuse(ExitCode code, const QString& words);

    QString Folder_;
    bool Force_;
    SendingLedger& Ledger_;
    ExitCode Result_ = exitOK;
};
