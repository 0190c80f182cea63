// SPDX-License-Identifier: Apache-2.0
#include "common/kvGeneral.h"

#include "common/FileHelper.h"
#include "common/UserInterface.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <cerrno>

namespace
{
#ifdef Q_OS_WIN
constexpr int HighestSystemError = 0xFFFF;
#else
constexpr int HighestSystemError = 133;
#endif
constexpr int TemporaryNameTries = 100;
constexpr auto ReadAndWriteForAll = QFileDevice::Permissions(0x6666); // less what the user's own mask takes away

QString TrimBlanks(QStringView text)
{
    while (text.startsWith(u' '))
        text = text.sliced(1);
    while (text.endsWith(u' '))
        text.chop(1);
    return text.toString();
}

/// Numbers of the record store are not the system's, though some are the same: where the error has words of its own
/// they count, and the system is asked only about a bare number.
QString DetailOf(int errorNumber, const QString& description)
{
    if (errorNumber == 0)
        return {};
    if (!description.isEmpty())
        return TrimBlanks(QStringView(description + QStringLiteral(" (") + QString::number(errorNumber) + u')'));
    return errorNumber > 0 && errorNumber <= HighestSystemError ? qt_error_string(errorNumber).trimmed() : QString();
}

void ShowBox(const QString& text, MessageBoxIcon icon)
{
    UserInterface::Current().MessageBox({text, QString(), MessageBoxButtons::OK, icon, MessageBoxAnswer::OK});
}

/// The program's title in upper case, without blanks and what no file name can hold.
QString TemporaryPrefix()
{
    QString title = QCoreApplication::applicationName();
    if (title.isEmpty())
        title = QStringLiteral("Tolva");
    static const QString unwanted = QStringLiteral(" /\\:*?\"<>|");
    title = title.toUpper();
    title.removeIf([](QChar character) { return character < u' ' || unwanted.contains(character); });
    return title;
}

/// Makes an empty file of a name that no other had; empty when the folder takes none.
QString MakeTemporaryFile(const QString& folder, const QString& prefix, QIODevice::OpenMode mode,
                          QFileDevice::Permissions permissions)
{
    for (int i = 0; i < TemporaryNameTries; ++i) {
        const QString unique = QString::number(QRandomGenerator::global()->generate(), 16).toUpper();
        QFile file(FileHelper::Join(folder, prefix + unique + QStringLiteral(".tmp")));
        if (file.open(mode | QIODevice::NewOnly, permissions))
            return file.fileName();
        if (!file.exists())
            break;
    }
    return {};
}
} // namespace

QString ReportProblem(const QString& text, int errorNumber, bool silent, const QString& description)
{
    const QString detail = DetailOf(errorNumber, description);
    QString whole = QStringLiteral("There was a problem ") + TrimBlanks(text);
    if (!detail.isEmpty())
        whole += QStringLiteral(" and the error's description was reported as : \n\n\"") + detail + u'"';
    if (!silent) {
        const DefaultPointer pointer;
        ShowBox(whole, MessageBoxIcon::Exclamation);
    }
    WriteDebugLog(whole, 5);
    return whole;
}

QString GetTempFile(const QString& folder, const QString& extension)
{
    WriteDebugLog(QStringLiteral("Start GetTempFile"), 5);
    // Others on this computer share the temporary folder; in any other folder the folder's owner decides who reads.
    const auto rights = folder.isEmpty() ? QFileDevice::ReadOwner | QFileDevice::WriteOwner : ReadAndWriteForAll;
    for (int i = 0; i < TemporaryNameTries; ++i) {
        WriteDebugLog(QStringLiteral("Assign a string"), -1);
        QString place = folder;
        if (place.isEmpty()) {
            WriteDebugLog(QStringLiteral("Get the user's temp path"), -1);
            place = QDir::tempPath();
            if (!FileHelper::FolderExists(place)) {
                ShowBox(QStringLiteral("Error getting a temporary file name :%1").arg(ENOENT), MessageBoxIcon::Stop);
                return {};
            }
        }
        WriteDebugLog(QStringLiteral("AlphaNum the app.title"), -1);
        const QString prefix = TemporaryPrefix();
        WriteDebugLog(QStringLiteral("Call GetTempFilename"), -1);
        QString name = MakeTemporaryFile(place, prefix, QIODevice::WriteOnly, rights);
        if (name.isEmpty())
            return {};
        WriteDebugLog(QStringLiteral("Process the return"), -1);
        if (!extension.isEmpty() && extension.toUpper() != u"TMP") {
            QFile::remove(name);
            name = name.chopped(3) + extension;
            if (QFile::exists(name))
                continue;
        }
        WriteDebugLog(QStringLiteral("End GetTempFile"), 5);
        return name;
    }
    return {};
}

bool RenameWithChecks(const QString& oldName, const QString& newName)
{
    const QString attempt =
        QStringLiteral("Could not rename '") + oldName + QStringLiteral("' to '") + newName + QStringLiteral("' as ");
    if (FileHelper::FileExists(newName) || FileHelper::FolderExists(newName)) {
        ShowBox(attempt + QStringLiteral("the destination file already exists.."), MessageBoxIcon::Exclamation);
        return false;
    }
    if (FileHelper::FolderOf(oldName).isEmpty() || FileHelper::FolderOf(newName).isEmpty()) {
        ShowBox(attempt + QStringLiteral("there was no folder path information included."),
                MessageBoxIcon::Exclamation);
        return false;
    }
    return FileHelper::RenameWithProgress(oldName, newName, QStringLiteral("Renaming File..."));
}
