// SPDX-License-Identifier: Apache-2.0
#include "database/HTMLTemplates.h"

#include "common/FileHelper.h"
#include "common/LibraryFolder.h"
#include "common/ProfileHelper.h"
#include "common/kvGeneral.h"
#include "platform/files/FileSystem.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace
{
const QString TemplateFolder = QStringLiteral("HTMLDocs");
const QString Extension = QStringLiteral(".htm");
const QString CopyCaption = QStringLiteral("Copying HTML Template...");

QString TemplatesBeside(const QString& location)
{
    return LibraryFolder::ExistingSubfolder(location, TemplateFolder);
}

/// As file systems keep it that keep the least: an unchanged copy must not look older than what it was copied from.
qint64 FileDate(const QString& file)
{
    return QFileInfo(file).lastModified().toSecsSinceEpoch();
}

void RefreshTemplate(const QString& source, const QString& folder)
{
    const QString target = ProfileHelper::ExistingFile(FileHelper::Join(folder, FileHelper::FileNameOf(source)));
    // Whoever may write to a shared folder must not thereby choose what gets overwritten elsewhere.
    if (QFileInfo(target).isSymLink()) {
        WriteDebugLog(QStringLiteral("HTML template '%1' is a link and stays as it is").arg(target), 5);
        return;
    }
    if (FileHelper::FileExists(target) && FileDate(source) <= FileDate(target))
        return;
    if (!FileHelper::CopyWithProgress(source, FileHelper::FileExists(target) ? target : folder, CopyCaption)) {
        WriteDebugLog(QStringLiteral("HTML template '%1' could not be copied").arg(target), 5);
        return;
    }
    // The installed set may be read-only; the station's own is there to be edited.
    const QFileDevice::Permissions permissions = QFile::permissions(target);
    if ((permissions & QFileDevice::WriteOwner) == 0)
        QFile::setPermissions(target, permissions | QFileDevice::WriteOwner);
}

/// Whether a name can be anything but that of a file in the folder it is put behind.
bool IsPlainName(const QString& name)
{
    return std::none_of(name.begin(), name.end(), [](QChar character) {
        return character < u' ' || character == u'/' || character == u'\\' || character == u':';
    });
}

QString PrefixPart(const QString& prefix)
{
    return prefix.isEmpty() ? QString() : prefix + u'-';
}
} // namespace

void HTMLTemplates::Refresh(const QString& location)
{
    const QString folder = TemplatesBeside(location);
    if (FileSystem::Current().KindOf(folder) == FileKind::Link) {
        WriteDebugLog(QStringLiteral("The folder of HTML templates '%1' is a link and stays as it is").arg(folder), 5);
        return;
    }
    if (!FileHelper::CreateFolder(folder))
        return;
    const QString library = LibraryFolder::Current();
    if (QDir::cleanPath(library).toUpper() == QDir::cleanPath(location).toUpper())
        return;
    const QString installed = TemplatesBeside(library);
    if (!FileHelper::FolderExists(installed))
        return;
    for (const QString& name : QDir(installed).entryList(QDir::Files, QDir::Name | QDir::IgnoreCase))
        RefreshTemplate(FileHelper::Join(installed, name), folder);
}

QString HTMLTemplates::FolderOf(const QString& location)
{
    return location.isEmpty() ? QString() : TemplatesBeside(location);
}

QStringList HTMLTemplates::References(const QString& location, const QString& prefix)
{
    const QString start = PrefixPart(prefix);
    QStringList references;
    for (const QString& name : QDir(TemplatesBeside(location)).entryList(QDir::Files, QDir::Name | QDir::IgnoreCase)) {
        if (name.startsWith(start, Qt::CaseInsensitive) && name.endsWith(Extension, Qt::CaseInsensitive) &&
            name.size() >= start.size() + Extension.size() && IsPlainName(name))
            references.append(name.sliced(start.size()).chopped(Extension.size()));
    }
    return references;
}

QString HTMLTemplates::FileName(const QString& location, const QString& prefix, const QString& reference)
{
    const QString name = PrefixPart(prefix) + reference + Extension;
    if (!IsPlainName(name))
        return {};
    return ProfileHelper::ExistingFile(FileHelper::Join(TemplatesBeside(location), name));
}
