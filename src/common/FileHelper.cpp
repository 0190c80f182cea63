// SPDX-License-Identifier: Apache-2.0
#include "common/FileHelper.h"

#include "platform/files/FileSystem.h"
#include "platform/files/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace
{
bool IsSeparator(QChar character)
{
#ifdef Q_OS_WIN
    return character == u'\\' || character == u'/' || character == u':';
#else
    return character == u'/';
#endif
}

/// Where the file's name begins within its path.
qsizetype NameStart(const QString& file)
{
    qsizetype start = file.size();
    while (start > 0 && !IsSeparator(file.at(start - 1)))
        --start;
    return start;
}

/// Where the extension's dot stands, or the end of the path. A dot in front of a name makes no extension.
qsizetype ExtensionStart(const QString& file)
{
    const qsizetype dot = file.lastIndexOf(u'.');
    return dot > NameStart(file) ? dot : file.size();
}
} // namespace

bool FileHelper::FolderExists(const QString& folder)
{
    return !folder.isEmpty() && QFileInfo(folder).isDir();
}

bool FileHelper::FileExists(const QString& file)
{
    const QFileInfo information(file);
    return information.exists() && !information.isDir();
}

qint64 FileHelper::FileSize(const QString& file)
{
    return FileExists(file) ? QFileInfo(file).size() : -1;
}

bool FileHelper::CreateFolder(const QString& folder)
{
    if (folder.isEmpty())
        return false;
    QStringList missing; // lowest first
    for (QString part = QDir::cleanPath(folder); !part.isEmpty() && !QFileInfo::exists(part);) {
        missing.prepend(part);
        const QString parent = FolderOf(part);
        if (parent == part)
            break;
        part = parent;
    }
    FileSystem& files = FileSystem::Current();
    for (const QString& part : std::as_const(missing)) {
        const FileStatus made = files.MakeFolder(part);
        // Another process may have made it since. Its name must reach the disk before what is put into it.
        if ((!made.IsDone() && made.Error() != FileError::Exists) || !files.SyncFolder(FolderOf(part)).IsDone())
            return false;
    }
    return FolderExists(folder);
}

QString FileHelper::FolderOf(const QString& file)
{
    const qsizetype start = NameStart(file);
    if (start <= 1) // the root keeps its separator, it has no other name
        return file.first(start);
#ifdef Q_OS_WIN
    if (file.at(start - 1) == u':' || file.at(start - 2) == u':')
        return file.first(start);
#endif
    return file.first(start - 1);
}

QString FileHelper::FileNameOf(const QString& file)
{
    return file.sliced(NameStart(file));
}

QString FileHelper::BaseNameOf(const QString& file)
{
    const qsizetype start = NameStart(file);
    return file.sliced(start, ExtensionStart(file) - start);
}

QString FileHelper::WithoutExtension(const QString& file)
{
    return file.first(ExtensionStart(file));
}

QString FileHelper::Join(const QString& folder, const QString& name)
{
    if (folder.isEmpty())
        return name;
    QStringView end = name;
    while (!end.isEmpty() && IsSeparator(end.front()))
        end = end.sliced(1);
    return (IsSeparator(folder.back()) ? folder : folder + QDir::separator()) + end.toString();
}

QString FileHelper::DecodeText(const QByteArray& bytes)
{
    const auto marked = QStringConverter::encodingForData(bytes);
    if (marked)
        return QStringDecoder(*marked)(bytes);
    return bytes.isValidUtf8() ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

QString FileHelper::ReadTextFile(const QString& file)
{
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = source.readAll();
    return source.error() == QFileDevice::NoError ? DecodeText(bytes) : QString();
}

bool FileHelper::WriteTextFile(const QString& file, const QString& text)
{
    return ReplaceFile(file, text.toUtf8());
}

bool FileHelper::ReplaceFile(const QString& file, const QByteArray& bytes)
{
    return WholeFile::Write(file, bytes, IfThere::Replace).IsDone();
}
