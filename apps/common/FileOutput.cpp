// SPDX-License-Identifier: Apache-2.0
#include "FileOutput.h"

#include "platform/files/FileSystem.h"

namespace
{
FileStatus WriteToDevice(const QString& name, const QByteArray& content)
{
    FileStatus status;
    const auto device = FileSystem::Current().Open(name, FileAccess::WriteToDevice, status);
    if (!device)
        return status;
    status = device->Append(content.constData(), content.size());
    if (status.IsDone())
        status = device->Sync();
    const FileStatus closed = device->Close();
    return status.IsDone() ? closed : status;
}
} // namespace

void FileOutput::Write(const QString& name, const QByteArray& content, IfThere ifThere)
{
    const bool isDevice = FileSystem::Current().KindOf(name) == FileKind::Other;
    const FileStatus status = isDevice ? WriteToDevice(name, content) : WholeFile::Write(name, content, ifThere);
    if (!status.IsDone())
        throw FailureOf(name, status);
}

Failure FileOutput::FailureOf(const QString& name, const FileStatus& status)
{
    if (status.Error() == FileError::Exists)
        return Failure(exitCannotCreate, QStringLiteral("%1 exists; --force replaces it.").arg(name));
    return Failure(status.IsDiskFailure() ? exitInputOutput : exitCannotCreate,
                   QStringLiteral("%1 could not be written: %2").arg(name, status.Words()));
}
