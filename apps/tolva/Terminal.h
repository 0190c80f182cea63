#pragma once

#include <QByteArray>
#include <QString>

/// The program's three streams. Results go to standard output, all else to standard error; text is UTF-8 on both,
/// whatever the locale.
namespace Terminal
{

void Print(const QString& text);
void PrintLine(const QString& line);
void PrintOctets(const QByteArray& octets);
/// Hands over what was printed so far. False once anything printed could not be written.
bool Flush();

/// "tolva: " and the words on one line of standard error.
void Complain(const QString& words);

bool InputIsTerminal();
bool OutputIsTerminal();
/// Whether there is somebody to ask: standard input and standard error are terminals.
bool CanAsk();
/// Columns of the terminal that standard output is, 80 when it is none.
int Width();

/// All of standard input, in one block of memory. False when reading fails.
bool ReadInput(QByteArray& octets);

} // namespace Terminal
