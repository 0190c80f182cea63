// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDirIterator>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

/// Takes the right to write in a folder from this process while it lives. Root may write everything, so that the
/// process is somebody else's then.
class WithoutRights
{
public:
    explicit WithoutRights(const QString& folder)
    {
        ::chmod(QFile::encodeName(QFileInfo(folder).path()).constData(), 0777);
        Change(folder, 0555);
        QDirIterator all(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (all.hasNext()) {
            const QString path = all.next();
            Change(path, all.fileInfo().isDir() ? 0555 : 0444);
        }
        if (::geteuid() == 0)
            IsOther_ = ::seteuid(65534) == 0;
    }
    ~WithoutRights()
    {
        if (IsOther_) {
            EXPECT_EQ(::seteuid(0), 0);
        }
        for (const QString& path : std::as_const(Changed_))
            ::chmod(QFile::encodeName(path).constData(), 0755);
    }
    WithoutRights(const WithoutRights&) = delete;
    WithoutRights& operator=(const WithoutRights&) = delete;

private:
    void Change(const QString& path, mode_t rights)
    {
        ::chmod(QFile::encodeName(path).constData(), rights);
        Changed_.append(path);
    }

    QStringList Changed_;
    bool IsOther_ = false;
};
