// SPDX-License-Identifier: Apache-2.0
#include "BareLibraries.h"
#include "BenchStation.h"
#include "Measure.h"
#include "Subjects.h"
#include "platform/directory/EmbeddedDirectory.h"

#include <QDir>

namespace
{
constexpr int MessagesARound = 20;

/// The same durable writes as one save: the message's row and the change stamp in one file, the audit entry in another.
class BareStore
{
public:
    explicit BareStore(const QString& folder)
        : Station_(folder + QStringLiteral("/bare-station.db")), Log_(folder + QStringLiteral("/bare-log.db"))
    {
        for (BareDatabase* database : {&Station_, &Log_}) {
            database->Execute("PRAGMA journal_mode=TRUNCATE");
            database->Execute("PRAGMA synchronous=FULL");
        }
        Station_.Execute(
            "CREATE TABLE Messages (Reference INTEGER PRIMARY KEY, FromKey TEXT, ToKey TEXT, CcKey TEXT, "
            "Received REAL, Sent REAL, SendAfter REAL, MessageType INTEGER, Category INTEGER, "
            "MessageStatus INTEGER, HasHighlightWords INTEGER, Priority INTEGER, PersonalToContact INTEGER, "
            "Flags INTEGER, Subject TEXT, MultiPartMessage INTEGER, SourceIndex INTEGER, Message TEXT)");
        Station_.Execute("CREATE TABLE Settings (Item TEXT PRIMARY KEY, Value TEXT)");
        Log_.Execute("CREATE TABLE UserLog (Reference INTEGER PRIMARY KEY, At REAL, UserReference INTEGER, "
                     "ClassNumber INTEGER, Kind INTEGER, Title TEXT, Text TEXT, Code INTEGER, EventReference INTEGER)");
        Insert_ = Station_.Prepare(
            "INSERT INTO Messages (FromKey, ToKey, CcKey, Received, Sent, MessageType, Category, "
            "HasHighlightWords, Priority, PersonalToContact, Flags, Subject, MultiPartMessage, "
            "SourceIndex, Message) VALUES (?1, ?2, '', 46000.5, 46000.5, 1, 1, 0, 0, 0, 0, ?3, 0, 0, ?4)");
        Stamp_ = Station_.Prepare("INSERT OR REPLACE INTO Settings VALUES ('Messages.LastChanged', ?1)");
        Audit_ = Log_.Prepare("INSERT INTO UserLog (At, UserReference, ClassNumber, Kind, Title, Text, Code, "
                              "EventReference) VALUES (46000.5, 1, 32, 6, 'Message Added', ?1, 1, 0)");
    }

    void Save(int number, const QByteArray& mail)
    {
        const QByteArray sender = SampleSender(number).toUtf8();
        const QByteArray subject = "Request number " + QByteArray::number(number);
        Bind(Insert_, 1, sender);
        Bind(Insert_, 2, "|studio@harbourfm.example.org|");
        Bind(Insert_, 3, subject);
        Bind(Insert_, 4, mail);
        Run(Insert_);
        Bind(Stamp_, 1, QByteArray::number(46000.5 + number * 1e-8, 'f', 8));
        Run(Stamp_);
        Bind(Audit_, 1, subject);
        Run(Audit_);
    }

private:
    static void Bind(sqlite3_stmt* statement, int index, const QByteArray& text)
    {
        sqlite3_bind_text(statement, index, text.constData(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
    }
    static void Run(sqlite3_stmt* statement)
    {
        Require(sqlite3_step(statement) == SQLITE_DONE, "the bare write failed");
        sqlite3_reset(statement);
    }

    BareDatabase Station_;
    BareDatabase Log_;
    sqlite3_stmt* Insert_ = nullptr;
    sqlite3_stmt* Stamp_ = nullptr;
    sqlite3_stmt* Audit_ = nullptr;
};
} // namespace

void CompareSaving(const Comparison& comparison, const QString& folder,
                   const std::function<void(int number, const QByteArray& mail)>& saveBare)
{
    EmbeddedDirectory directory;
    directory.Open(folder + QStringLiteral("/Directory"));
    DirectoryUser user{0, QStringLiteral("Bench"), 31};
    directory.SaveUser(user);
    Require(directory.SignIn(user.Name), "the user cannot sign in");
    const auto station = OpenStation(folder);
    station->SetDirectoryDatabase(&directory);
    int floorNumber = 0;
    int number = 0;
    Compare(
        comparison,
        [&] {
            for (int i = 0; i < comparison.OperationsARound; ++i, ++floorNumber) {
                const QByteArray mail = SampleMail(floorNumber);
                Require(ParseMail(mail) > 0, "the mail was not parsed");
                saveBare(floorNumber, mail);
            }
        },
        [&] {
            for (int i = 0; i < comparison.OperationsARound; ++i, ++number) {
                const auto message = std::make_shared<cMessage>();
                message->SetCDOMessage(std::make_shared<cdo::Message>(SampleMail(number)));
                message->SetCategory(tmcInbox);
                Require(station->SaveMessage(message), "a message was not saved");
            }
        });
    station->CloseTolvaDatabase();
}

void BenchSaving(const QString& folder, int rounds)
{
    MakeStation(folder, 0);
    BareStore bare(folder);
    CompareSaving({"SaveMessage, durable, one by one", "bare SQLite: the same three durable writes, and a GMime parse",
                   1.5, rounds, MessagesARound},
                  folder, [&](int number, const QByteArray& mail) { bare.Save(number, mail); });
}
