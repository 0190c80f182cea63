// SPDX-License-Identifier: Apache-2.0
#include "sending/GammuHandOver.h"

#include "messages/TextParts.h"

#include <QFile>
#include <QRegularExpression>

namespace
{
using Kind = HandOverResult::Kind;

/// Of one text; what is behind them the program leaves out without a word.
constexpr int MostParts = 50;

/// Its exit codes: words that it does not know, settings that it cannot read, a message that it could not store.
Kind MeaningOfGammusExitCode(int code, const QString&)
{
    switch (code) {
    case 0:
        return Kind::Accepted;
    case 1:
    case 2:
    case 3:
    case 126: // of shells: it is not there
    case 127:
    case 255:
        return Kind::SetUp;
    default:
        return Kind::Unknown;
    }
}

/// What it says without what it always says.
QString WithoutHabits(QString words)
{
    static const QRegularExpression habits(
        QStringLiteral("[^\\s\\[]+\\[[0-9]+\\]: (?:Warning: No PIN code in rc file ?)?|\\b[0-9]+ / [0-9]+ "));
    return words.remove(habits);
}

/// Where the daemon's service with files keeps it; other services name a number.
QString FileOf(const QString& words)
{
    static const QRegularExpression place(QStringLiteral(" ID (/.+)$"));
    return place.match(words).captured(1);
}

/// A file that is not there any more was taken by the daemon. One that is there ends with a line break when it is
/// whole.
bool IsWhole(const QString& path)
{
    QFile file(path);
    if (!file.exists())
        return true;
    char last = 0;
    return file.open(QIODevice::ReadOnly) && file.size() > 0 && file.seek(file.size() - 1) && file.getChar(&last) &&
           last == '\n';
}

/// The program lets its own account alone write the file, and a daemon of another one that cannot note in it that it
/// went out sends it again and again.
void LetDaemonWrite(const QString& path)
{
    QFile::setPermissions(path, QFile::permissions(path) | QFile::ReadGroup | QFile::WriteGroup);
}

/// What could not be stored whole goes away again. When the daemon got at it before, nobody knows what it sent of it.
HandOverResult TakeBack(const QString& path)
{
    const bool isEmpty = QFile(path).size() == 0;
    const bool isGone = QFile::remove(path);
    return {isEmpty || isGone ? Kind::SetUp : Kind::Unknown,
            QStringLiteral("The text is not whole in %1, as on a full disk.").arg(path)};
}
} // namespace

HandOverResult HandOverToGammu(const QStringList& program, const QString& number, const QString& text, int seconds)
{
    if (text.isEmpty())
        return {Kind::Refused, QStringLiteral("It has no text.")};
    const int parts = CountTextParts(text).Parts;
    if (parts > MostParts) {
        return {Kind::Refused, QStringLiteral("It is too long for a text message: it would be divided into %1, and %2 "
                                              "go out at most.")
                                   .arg(parts)
                                   .arg(MostParts)};
    }
    ProgramHabits habits;
    habits.SaysOnOutput = true;
    habits.Meaning = MeaningOfGammusExitCode;
    // In any other one it cuts the text at the first letter that is none of ASCII.
    habits.Locale = QStringLiteral("C.UTF-8");
    HandOverResult result = HandOver(program + QStringList{QStringLiteral("TEXT"), number, QStringLiteral("-autolen"),
                                                           QString::number(text.size()), QStringLiteral("-text"), text},
                                     QByteArray(), seconds, habits);
    const QString path = result.What == Kind::Accepted ? FileOf(result.Words) : QString();
    if (!path.isEmpty())
        LetDaemonWrite(path);
    if (!path.isEmpty() && !IsWhole(path))
        return TakeBack(path);
    result.Words = WithoutHabits(result.Words);
    return result;
}
