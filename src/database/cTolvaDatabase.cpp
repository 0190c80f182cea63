// SPDX-License-Identifier: Apache-2.0
#include "database/cTolvaDatabase.h"

#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "common/MachineHelper.h"
#include "common/PendingError.h"
#include "common/UserInterface.h"
#include "database/watch/StationWatch.h"
#include "platform/directory/clsKVDirectory.h"

#include <QPointer>

namespace
{
/// This library's number in the class column of a directory's user log.
constexpr int UserLogClass = 32;
} // namespace

cTolvaDatabase::cTolvaDatabase()
    : MessageCategories_(std::make_unique<clsCategory>()), Watch_(std::make_unique<StationWatch>(*this))
{
    MessageCategories_->SetReference(0);
    MessageCategories_->SetParentReference(0);
    MessageCategories_->SetDescription(QStringLiteral("All Categories"));
    SetLabelDefaults(AddressLabelsPageSetup_);
    MachineName_ = MachineHelper::ComputerName();
}

cTolvaDatabase::~cTolvaDatabase()
{
    if (Database_)
        CloseTolvaDatabase();
    UnloadBackupTimer();
}

void cTolvaDatabase::SetLabelDefaults(cPageSetup& pageSetup)
{
    pageSetup.SetNumberColumns(2);
    pageSetup.SetNumberRows(4);
    pageSetup.SetColumnWidth(104);
    pageSetup.SetRowHeight(68);
    pageSetup.SetTopMargin(20);
    pageSetup.SetLeftMargin(20);
}

int cTolvaDatabase::DebugMode()
{
    return GeneralHelper::DebugMode();
}

void cTolvaDatabase::SetDebugMode(int level)
{
    GeneralHelper::SetDebugMode(level);
}

QString cTolvaDatabase::DatabaseReference() const
{
    return FileHelper::WithoutExtension(Information_.FileName);
}

bool cTolvaDatabase::DisplaySettings()
{
    const clsKVUser* user = CurrentUser();
    if (user && !user->ChangeSettings()) {
        UserInterface::Current().MessageBox(
            {QStringLiteral("You are not allowed to use or alter the Tolva Database's Settings"), QString(),
             MessageBoxButtons::OK, MessageBoxIcon::Exclamation, MessageBoxAnswer::OK});
        return false;
    }
    return UserInterface::Current().DatabaseSettings(*this);
}

dao::Database& cTolvaDatabase::OpenedDatabase() const
{
    if (!Database_)
        throw dao::Error(dao::errObjectInvalid, QStringLiteral("No Tolva Database has been opened."));
    return *Database_;
}

clsKVUser* cTolvaDatabase::CurrentUser() const
{
    return DirectoryDatabase_ ? DirectoryDatabase_->CurrentUser() : nullptr;
}

/// Without a directory or a signed-in user there is no log to write to. In a transaction the entry follows the commit:
/// it lies in another file, whose failure is not the change's.
bool cTolvaDatabase::LogDatabaseEvent(int kind, const QString& title, const QString& text, int code) const
{
    if (!CurrentUser())
        return false;
    const auto isLogged = std::make_shared<bool>(true);
    dao::Transaction::AfterCommit([self = QPointer<const cTolvaDatabase>(this), isLogged, kind, title, text, code] {
        // Whatever the host's log meets, the change that it tells of stands.
        PendingError ignored;
        ignored.Try([&] {
            clsKVUser* user = self ? self->CurrentUser() : nullptr;
            *isLogged = user && user->LogEvent(UserLogClass, kind, title, text, code, 0);
        });
    });
    return *isLogged;
}

void cTolvaDatabase::KeepLastError(const PendingError& pending)
{
    LastErrorNumber_ = pending.Number();
    LastErrorDescription_ = pending.Description();
}
