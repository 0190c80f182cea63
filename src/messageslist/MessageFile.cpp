// SPDX-License-Identifier: Apache-2.0
#include "messageslist/MessageFile.h"

#include "common/FileHelper.h"
#include "platform/files/WholeFile.h"
#include "platform/records/Error.h"
#include "platform/records/FileTools.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace
{
constexpr qsizetype Looked = 4096;
/// Octets. Nobody's mail is as large, and the memory would have to hold it several times.
constexpr qint64 LargestMail = 256LL << 20;

/// Whether octets may be a mail: they begin with a header line (RFC 5322, 2.2), or at least with text. A picture or a
/// program does neither.
bool MayBeMail(const QByteArray& octets)
{
    const QByteArrayView begin(octets.constData(), std::min(Looked, octets.size()));
    const qsizetype colon = begin.indexOf(':');
    const auto isNameCharacter = [](char c) { return c > ' ' && c <= '~'; };
    if (colon > 0 && std::all_of(begin.begin(), begin.begin() + colon, isNameCharacter))
        return true;
    return !begin.contains('\0');
}
} // namespace

void SaveMessageAsEml(const cMessagePtr& message, const QString& fileName)
{
    if (!message || fileName.isEmpty() || !FileHelper::FolderExists(FileHelper::FolderOf(fileName)))
        return;
    const FileStatus status = WholeFile::Write(fileName, message->CDOMessage()->Octets(), IfThere::Replace);
    if (!status.IsDone())
        // Not the number of a database that cannot be opened: that one's words are of the station.
        throw dao::Error(status.Error() == FileError::Full ? dao::errDiskFull : dao::errDiskError,
                         QStringLiteral("The file %1 could not be written: %2").arg(fileName, status.Words()));
}

cMessagePtr LoadMessageFromEml(const QString& fileName)
{
    const qint64 size = fileName.isEmpty() ? 0 : FileHelper::FileSize(fileName);
    if (size <= 0 || size > LargestMail)
        return nullptr;
    QFile file(fileName);
    if (!QFileInfo(file).isFile() || !file.open(QIODevice::ReadOnly))
        return nullptr;
    const QByteArray octets = file.readAll();
    if (octets.isEmpty() || file.error() != QFileDevice::NoError || !MayBeMail(octets))
        return nullptr;
    const auto mail = std::make_shared<cdo::Message>(octets);
    auto message = std::make_shared<cMessage>();
    message->SetCDOMessage(mail);
    return message;
}
