// SPDX-License-Identifier: Apache-2.0
#include "platform/records/LockPatience.h"
#include "platform/records/engines/sqlite/ChangeLog.h"
#include "platform/records/engines/sqlite/ContentReplacement.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

namespace dao::sqlite
{

ContentLock::ContentLock(const QString& file)
{
    sqlite3_vfs* vfs = sqlite3_vfs_find(LoggingVfsName());
    Memory_ = QByteArray(vfs->szOsFile, '\0');
    const QByteArray name = file.toUtf8();
    Name_ = sqlite3_create_filename(name.constData(), (name + "-journal").constData(), (name + "-wal").constData(), 0,
                                    nullptr);
    File_ = reinterpret_cast<sqlite3_file*>(Memory_.data());
    int flags = 0;
    const int opened = vfs->xOpen(vfs, Name_, File_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_MAIN_DB, &flags);
    int code = opened;
    const QDeadlineTimer deadline(LockPatience::UsualMilliseconds);
    if (code == SQLITE_OK) {
        while ((code = TryLock()) == SQLITE_BUSY && !deadline.hasExpired())
            QThread::msleep(1);
    }
    if (code != SQLITE_OK) {
        Close();
        throw ErrorOf(code, QString::fromUtf8(sqlite3_errstr(code)), file);
    }
}

ContentLock::~ContentLock()
{
    Close();
}

int ContentLock::TryLock()
{
    // The order in which SQLite itself climbs. What was got stays: it keeps newcomers out while the others finish.
    for (const int level : {SQLITE_LOCK_SHARED, SQLITE_LOCK_RESERVED, SQLITE_LOCK_EXCLUSIVE}) {
        const int code = File_->pMethods->xLock(File_, level);
        if (code == SQLITE_OK)
            continue;
        // A reader's lock that stays while another writer waits for the readers would keep both waiting.
        if (level != SQLITE_LOCK_EXCLUSIVE)
            File_->pMethods->xUnlock(File_, SQLITE_LOCK_NONE);
        return code;
    }
    return SQLITE_OK;
}

void ContentLock::Close()
{
    if (File_->pMethods != nullptr) {
        File_->pMethods->xUnlock(File_, SQLITE_LOCK_NONE);
        File_->pMethods->xClose(File_);
    }
    sqlite3_free_filename(Name_);
}

} // namespace dao::sqlite
