// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/RunTimeErrorText.h"

namespace
{
/// Empty for a number that has no words of its own.
QString Words(int number)
{
    switch (number) {
    case dao::errLocked:
        return QStringLiteral("The station's database is locked by another computer.\n\n"
                              "Nothing was changed. Try again in a moment.");
    case dao::errCannotOpen:
    case dao::errNotAValidPath:
    case dao::errFileNotFound:
        return QStringLiteral("The station's database cannot be reached.\n\n"
                              "Check that this computer is connected to the network and that the station's folder is "
                              "there, then try again. If it stays away, tell your technician.");
    case dao::errFileDamaged:
        return QStringLiteral("The station's database is damaged.\n\n"
                              "Close it on all computers and tell your technician, who can compact and repair it or "
                              "put the newest backup in its place.");
    case dao::errSyntax:
        return QStringLiteral("The text to find cannot be used.\n\n"
                              "Text to find cannot hold a double quote, and a [ needs its ].");
    case dao::errChangedByAnother:
        return QStringLiteral("This was changed on another computer in the meantime.\n\n"
                              "Nothing was stored here, so that the other change is not lost. Look at it again, then "
                              "make your change once more.");
    case dao::errRecordDeleted:
        return QStringLiteral("This was deleted on another computer in the meantime.\n\n"
                              "Nothing was stored here.");
    case dao::errDiskFull:
        return QStringLiteral("The disk with the station's database is full.\n\n"
                              "Nothing was stored. Make room on that disk, then try again.");
    case dao::errReadOnly:
        return QStringLiteral("The station's database can be read here and not be changed.\n\n"
                              "Nothing was stored.");
    default:
        return QString();
    }
}
} // namespace

QString RunTimeErrorText(const dao::Error& error)
{
    const QString words = Words(error.Number());
    return QStringLiteral("%1\n\n(Run-time error %2)")
        .arg(words.isEmpty() ? error.Description() : words, QString::number(error.Number()));
}
