// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "database/cTolvaDatabase.h"
#include "platform/directory/clsKVDirectory.h"
#include "support/FixedClock.h"
#include "support/ScriptedRegistry.h"
#include "support/ScriptedUserInterface.h"
#include "support/TestServer.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

/// One entry that the library wrote into a user log.
struct AuditEntry
{
    int ClassNumber;
    int Kind;
    QString Title;
    QString Text;
    int Code;
    int Reference;

    friend bool operator==(const AuditEntry&, const AuditEntry&) = default;
};

/// A signed-in user whose rights the test sets and whose log it reads.
class FakeUser : public clsKVUser
{
public:
    qint32 Reference() const override { return 7; }
    QString Name() const override { return QStringLiteral("Petra"); }
    bool HasRight(DirectoryRight right) const override { return (Rights & static_cast<int>(right)) != 0; }
    QVariant Preference(const QString& name, const QVariant& defaultValue) const override
    {
        return Preferences.value(name, defaultValue);
    }
    bool SetPreference(const QString& name, const QVariant& value) override
    {
        if (Preferences.value(name) != value) {
            Preferences.insert(name, value);
            Q_EMIT PreferencesChanged(32, name);
        }
        return true;
    }
    bool LogEvent(int classNumber, int kind, const QString& title, const QString& text, int code,
                  int reference) override
    {
        Log.append({classNumber, kind, title, text, code, reference});
        return true;
    }

    int Rights = 31;
    QList<AuditEntry> Log;
    QVariantMap Preferences;
};

class FakeDirectory : public clsKVDirectory
{
public:
    clsKVUser* CurrentUser() const override { return SignedIn; }
    clsKVContactPtr GetContact(qint32, int, int) const override { return nullptr; }

    FakeUser User;
    clsKVUser* SignedIn = &User;
};

/// A station in a folder of its own, with a scripted user, a clock that stands still, an empty registry, no installed
/// page templates and a directory whose user may do everything.
class StationTest : public testing::Test
{
protected:
    StationTest();
    ~StationTest() override;

    QString FileName() const { return Folder.filePath(QStringLiteral("Tolva.mdb")); }
    /// Opens the station, made on the first call, with everything filled in. The user log is empty afterwards. With
    /// TOLVA_TEST_STATION=server in the environment it is made on a server.
    void OpenStation();
    /// Before the first OpenStation: it will be made on a server.
    void PutOnServer();
    /// The texts of the user log, "KIND TITLE: TEXT (CODE)".
    QStringList Audit() const;
    /// A new e-mail with these headers, not saved.
    static cMessagePtr MakeMessage(const QString& subject,
                                   const QString& from = QStringLiteral("Ann <ann@example.com>"));
    /// The reference of a message saved into a folder.
    qint32 SaveNew(const QString& subject, enTolvaMessageCategories category = tmcInbox);
    std::unique_ptr<dao::Recordset> OpenTable(const QString& name) const;

    QTemporaryDir Folder;
    TestServer::Schema Schema; ///< Of a station on a server.
    ScriptedUserInterface Ui;
    FixedClock Now;
    ScriptedRegistry Machine;
    FakeDirectory Directory;
    std::unique_ptr<cTolvaDatabase> Station;

private:
    mutable std::unique_ptr<dao::Database> Second_;
};

/// What the user is told when details are missing.
MessageBoxRequest StationDetailsBox();
