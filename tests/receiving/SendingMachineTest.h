// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MachineTest.h"

#include <QHash>

/// Messages of the station that wait to be sent, and sending them as the service does.
class SendingMachineTest : public MachineTest
{
protected:
    struct Run
    {
        int Code;
        QHash<QString, QString> Words; ///< Of each message that has an outcome, "refused: words", by its recipients.
        QByteArray Said;
    };

    /// Files one message, with further words for tolva file.
    void File(const QString& words, const QByteArray& octets) const;
    /// Marks all of the Inbox to be sent, as a desk does.
    void MarkToBeSent() const;
    /// How the service sends, as the account that it runs under.
    static QString AsTheService();
    /// What a command that ends with --json says it did.
    Run Send(const QString& command = AsTheService()) const;
};
