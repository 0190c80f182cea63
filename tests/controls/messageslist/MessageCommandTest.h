// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messageslist/FolderTest.h"

#include <QList>

/// A messages list whose user gives commands for messages; what the host is handed is kept.
class MessageCommandTest : public FolderTest
{
protected:
    MessageCommandTest();

    /// Selects a row, shows the messages' menu there and chooses from it by the keyboard.
    void ChooseForRow(int row, const char* entry);
    /// The raw headers and text of a stored message.
    QByteArray StoredOctets(qint32 reference) const { return Station->GetMessage(reference)->CDOMessage()->Octets(); }
    bool IsBold(int row) const { return Grid->CellFontBold(row, 2); }
    /// Stores a message that has a date, so that it is bold until it is read.
    qint32 SaveDated(const QString& subject, enTolvaMessageCategories category = tmcInbox);

    QList<cMessagePtr> New;
    QList<cMessagePtr> Opened;
    QList<cMessagePtr> Printed;
};
