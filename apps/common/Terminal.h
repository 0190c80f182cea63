// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

class QJsonObject;

/// The three streams of a command line program. Results go to standard output, all else to standard error; text is
/// UTF-8 on both, whatever the locale. Every text passes common/HarmlessText.h on its way, so that nothing that others
/// wrote reaches a terminal as an order to it.
namespace Terminal
{

/// A text of several lines, with its line ends and tabs.
void Print(const QString& text);
/// One line; line ends and tabs in it become blanks.
void PrintLine(const QString& line);
/// One line that programs read.
void PrintJson(const QJsonObject& object);
/// What was asked for octet by octet. A terminal shows it as text, in the form of Print.
void PrintOctets(const QByteArray& octets);
/// Hands over what was printed so far. False once anything printed could not be written.
bool Flush();

/// The program's name, a colon and the words on one line of standard error.
void Complain(const QString& words);
/// Sends what Qt has to tell through Complain from now on.
void TakeMessagesOfQt();

bool InputIsTerminal();
bool OutputIsTerminal();
/// Whether there is somebody to ask: standard input and standard error are terminals.
bool CanAsk();
/// Columns of the terminal that standard output is, 80 when it is none.
int Width();

/// All of standard input, in one block of memory. False when reading fails.
bool ReadInput(QByteArray& octets);

} // namespace Terminal
