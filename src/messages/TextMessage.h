// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QString>

/// One SMS: what a listener sent by telephone.
struct TextMessage
{
    QString From; ///< Number, short code or sender's name as the network gave it.
    QString To;   ///< Empty: nobody in particular.
    QString Text;
    Date Received; ///< Local time; none for now.
};

/// The octets as text: UTF-8, or Latin-1 where they are not. Line ends become "\n", and one at the end goes.
QString DecodeTextMessage(const QByteArray& octets);

/// Reads the file form: "From:", "To:" and "Received: yyyy-mm-dd hh:mm:ss" (local time) in any order, an empty line,
/// and the text. Why it is none in problem, which is empty on success.
TextMessage ReadTextMessageFile(const QByteArray& octets, QString& problem);

/// The unsaved message of the station for it: the text as the text body and, escaped, as the HTML body, and on one line
/// as the subject.
cMessagePtr MakeMessage(const TextMessage& text);
