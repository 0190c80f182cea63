// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/cTolvaDatabase.h"

#include <QByteArray>

/// A mail of about 3 KB as listeners write them; number makes it one of its own.
QByteArray SampleMail(int number);
/// The sender of that mail.
QString SampleSender(int number);

/// A station of that many messages in the folder, which is made. The rows are stored in a few transactions, which is
/// not what is measured. engine: in whose format; empty for the usual one.
void MakeStation(const QString& folder, int messages, const QString& engine = QString());
/// The same of mails as they come: about 5 KB each, with subjects from one word to three lines, in several scripts.
void MakeMixedStation(const QString& folder, int messages);
/// One of its mails.
QByteArray MixedMail(int number);

/// The station opened, or the run ends.
std::unique_ptr<cTolvaDatabase> OpenStation(const QString& folder);
