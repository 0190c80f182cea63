// SPDX-License-Identifier: Apache-2.0
#include "common/LibraryFolder.h"

#include "common/FileHelper.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#else
#include <dlfcn.h>
#endif

namespace
{
const QString TemplateFolder = QStringLiteral("HTMLDocs");

QString& Chosen()
{
    static QString folder;
    return folder;
}

/// The file that this function is in.
QString OwnFile()
{
#ifdef Q_OS_WIN
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&OwnFile), &module);
    wchar_t name[32768];
    return QString::fromWCharArray(name, static_cast<int>(GetModuleFileNameW(module, name, 32768)));
#else
    Dl_info information = {};
    QString file;
    if (dladdr(reinterpret_cast<const void*>(&OwnFile), &information) != 0)
        file = QFile::decodeName(information.dli_fname);
    // The program itself has the name that it was started by, which says nothing once the working folder changes.
    if (!QFileInfo(file).isAbsolute() || !FileHelper::FileExists(file))
        file = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    const QString canonical = QFileInfo(file).canonicalFilePath();
    return canonical.isEmpty() ? file : canonical;
#endif
}

bool HasTemplates(const QString& folder)
{
    return FileHelper::FolderExists(LibraryFolder::ExistingSubfolder(folder, TemplateFolder));
}

QString Found()
{
    const QString own = FileHelper::FolderOf(QDir::fromNativeSeparators(OwnFile()));
    if (HasTemplates(own))
        return own;
    // A library may stand in a folder of its kind of machine: lib/x86_64-linux-gnu.
    for (const char* beside : {"../share/tolva", "../../share/tolva"}) {
        const QString shared = QDir::cleanPath(FileHelper::Join(own, QLatin1String(beside)));
        if (HasTemplates(shared))
            return shared;
    }
    return own;
}
} // namespace

QString LibraryFolder::Current()
{
    if (!Chosen().isEmpty())
        return Chosen();
    const QString environment = qEnvironmentVariable("TOLVA_LIBRARY_FOLDER");
    return environment.isEmpty() ? Found() : environment;
}

void LibraryFolder::SetCurrent(const QString& folder)
{
    Chosen() = folder;
}

QString LibraryFolder::ExistingSubfolder(const QString& folder, const QString& name)
{
    const QString exact = FileHelper::Join(folder, name);
    if (folder.isEmpty() || FileHelper::FolderExists(exact))
        return exact;
    for (const QString& other : QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (other.compare(name, Qt::CaseInsensitive) == 0)
            return FileHelper::Join(folder, other);
    }
    return exact;
}
