// SPDX-License-Identifier: Apache-2.0
#include "intake/MailSources.h"

#include "Failure.h"
#include "Terminal.h"
#include "intake/Maildir.h"
#include "platform/files/FileSystem.h"

#include <QDir>

#include <algorithm>

namespace
{
const QString StandardInputName = QStringLiteral("-");

bool HasExtension(const QString& path, const QString& extension)
{
    return path.endsWith(extension, Qt::CaseInsensitive);
}

QString WhyNotRead(const FileStatus& status)
{
    switch (status.Error()) {
    case FileError::IsLink:
        return QStringLiteral("is a link, and only files are taken; name what it leads to, to file that");
    case FileError::IsFolder:
        return QStringLiteral(
            "is a folder, and only files are taken; name it, to file what is in it, and put it elsewhere");
    case FileError::NotSupported:
        return QStringLiteral("is no file; put it elsewhere");
    case FileError::NoPermission:
        return QStringLiteral("cannot be read: this account may not");
    default:
        return QStringLiteral("cannot be read: %1").arg(status.Words());
    }
}
} // namespace

MailSources::MailSources(const QStringList& paths, Purpose purpose) : Purpose_(purpose)
{
    for (const QString& path : paths)
        AddPath(path);
}

void MailSources::AddPath(const QString& path)
{
    if (path == StandardInputName) {
        Add({path, FileKind::StandardInput});
        return;
    }
    const QFileInfo information(path);
    if (!information.exists())
        throw Failure(exitNoInput, QStringLiteral("There is no file or folder %1. Nothing was filed.").arg(path));
    if (!information.isDir())
        Add({path, KindOf(path), false, information.size()});
    else if (IsMaildir(path))
        AddMaildir(path);
    else
        AddFolder(path);
}

/// The name decides where it says something, otherwise the first line does.
MailSources::FileKind MailSources::KindOf(const QString& path)
{
    if (HasExtension(path, QStringLiteral(".sms")))
        return FileKind::TextMessage;
    if (HasExtension(path, QStringLiteral(".eml")))
        return FileKind::Mail;
    return IsMboxFile(path) ? FileKind::Mbox : FileKind::Mail;
}

void MailSources::AddFolder(const QString& folder)
{
    int others = 0;
    QDir::Filters wanted = QDir::AllEntries | QDir::NoDotAndDotDot;
    // Pipes, and links that lead nowhere: what stays there is named.
    wanted.setFlag(QDir::System, Purpose_ == Purpose::Take);
    const QFileInfoList entries = QDir(folder).entryInfoList(wanted, QDir::Name);
    for (const QFileInfo& entry : entries) {
        const QString path = entry.filePath();
        if (entry.isDir())
            Skipped_.append(QStringLiteral("%1: folders within a folder are not read; name it to file it").arg(path));
        else if (HasExtension(path, QStringLiteral(".eml")) || HasExtension(path, QStringLiteral(".sms")))
            Add({path, KindOf(path), false, entry.size()});
        else if (entry.isFile())
            ++others;
    }
    if (others > 0) {
        Skipped_.append(QStringLiteral("%1: left out %2 neither in .eml nor in .sms")
                            .arg(folder, others == 1 ? QStringLiteral("1 file that ends")
                                                     : QStringLiteral("%1 files that end").arg(others)));
    }
}

void MailSources::AddMaildir(const QString& folder)
{
    // What stays there is named each time, since whoever watches over the folder sees that something is in it.
    const QList<MaildirFile> files =
        MaildirFiles(folder, Purpose_ == Purpose::Take ? MaildirEntries::Everything : MaildirEntries::Files);
    for (const MaildirFile& file : files)
        Add({file.Path, FileKind::Mail, file.IsSeen, QFileInfo(file.Path).size()});
}

void MailSources::Add(const SourceFile& file)
{
    Files_.append(file);
    Total_ += file.Size;
}

bool MailSources::Next(IncomingMessage& incoming)
{
    incoming = IncomingMessage();
    while (!NextOfMbox(incoming)) {
        if (NextFile_ == Files_.size())
            return false;
        const SourceFile& file = Files_.at(NextFile_++);
        if (file.Kind != FileKind::Mbox) {
            ReadWhole(file, incoming);
            Done_ += file.Size;
            return true;
        }
        OpenMbox(file, incoming);
        if (!incoming.Problem.isEmpty())
            return true;
    }
    return true;
}

void MailSources::OpenMbox(const SourceFile& file, IncomingMessage& incoming)
{
    MboxFile_.setFileName(file.Path);
    MboxNumber_ = 0;
    if (MboxFile_.open(QIODevice::ReadOnly)) {
        Mbox_ = std::make_unique<MboxReader>(MboxFile_);
        return;
    }
    incoming.Name = file.Path;
    incoming.Problem = QStringLiteral("cannot be read: %1").arg(MboxFile_.errorString());
}

bool MailSources::NextOfMbox(IncomingMessage& incoming)
{
    if (!Mbox_)
        return false;
    ++MboxNumber_;
    incoming.Name = QStringLiteral("%1, message %2").arg(MboxFile_.fileName()).arg(MboxNumber_);
    const bool isThere = Mbox_->Next(incoming.Octets);
    if (!isThere && Mbox_->HasFailed())
        incoming.Problem = QStringLiteral("cannot be read: %1").arg(MboxFile_.errorString());
    if (!isThere) {
        Done_ += MboxFile_.size();
        Mbox_.reset();
        MboxFile_.close();
    }
    return isThere || !incoming.Problem.isEmpty();
}

void MailSources::ReadWhole(const SourceFile& source, IncomingMessage& incoming) const
{
    incoming.IsRead = source.IsRead;
    incoming.Kind = source.Kind == FileKind::TextMessage ? IncomingKind::TextMessage : IncomingKind::Mail;
    if (source.Kind == FileKind::StandardInput) {
        incoming.Name = QStringLiteral("standard input");
        incoming.IsHandedOver = true;
        if (!Terminal::ReadInput(incoming.Octets))
            incoming.Problem = QStringLiteral("cannot be read");
        // Mail servers put it before what they hand over; of a file every octet is kept.
        RemoveEnvelopeLine(incoming.Octets);
    } else {
        incoming.Name = source.Path;
        incoming.File = source.Path;
        incoming.Problem = ReadFile(source.Path, incoming.Octets);
    }
}

/// The whole file in one block of memory. Why it cannot be read; empty when it was.
QString MailSources::ReadFile(const QString& name, QByteArray& octets) const
{
    FileStatus status;
    const auto access = Purpose_ == Purpose::Take ? FileAccess::ReadUnlinked : FileAccess::Read;
    const std::unique_ptr<FileHandle> file = FileSystem::Current().Open(name, access, status);
    if (!file)
        return WhyNotRead(status);
    octets = QByteArray(std::max<qint64>(file->Size(), 0), Qt::Uninitialized);
    qint64 count = 0;
    status = file->ReadAt(0, octets.data(), octets.size(), count);
    if (!status.IsDone())
        return WhyNotRead(status);
    octets.truncate(count); // it may have become shorter meanwhile
    return {};
}
