// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/search/WordSet.h"

#include <QByteArray>

/// Octets of a mail that are searched; what lies behind them is not. Nobody writes so much, and nobody has the memory.
inline constexpr qsizetype MostSearchedOctets = qsizetype{16} * 1024 * 1024;
/// A text that is attached counts up to this size.
inline constexpr qsizetype LargestSearchedFile = qsizetype{1024} * 1024;

/// What is searched of one message. A value.
struct SearchText
{
    WordSet Sender;
    WordSet Recipients;
    WordSet Subject;
    WordSet Body; ///< Bodies as shown, names of attachments, texts that are attached.
    bool HasFiles = false;
};

/// Of a mail's octets, or their beginning. Broken mail gives what can be read of it.
SearchText ReadSearchText(const QByteArray& octets);

/// What finds the messages that go with one: its sender, its conversation, its subject. A value.
struct Kinship
{
    QByteArray Sender;       ///< A term; empty for none.
    QByteArray Recipient;    ///< Of the first one; the same.
    QByteArray Subject;      ///< The same.
    QList<QByteArray> Mails; ///< Terms of the mail and of those that it answers.
};

Kinship KinshipOf(const QByteArray& octets);
