// SPDX-License-Identifier: Apache-2.0
#include "platform/directory/EmbeddedDirectory.h"

#include "platform/directory/DirectoryTables.h"
#include "platform/directory/EmbeddedDirectoryUser.h"
#include "platform/records/LockPatience.h"
#include "platform/records/Transaction.h"

#include <QDir>

#include <utility>

namespace
{
const QString contactsTable = QStringLiteral("Contacts");
const QString mainIndex = QStringLiteral("Main");
constexpr qint64 patienceOfLogMilliseconds = 30;

clsKVContactPtr ReadContact(const dao::Recordset& row)
{
    auto contact = std::make_shared<clsKVContact>();
    contact->Reference = row.Collect(QStringLiteral("Reference")).toInt();
    contact->Name = row.Collect(QStringLiteral("Name")).toString();
    contact->Mobile = row.Collect(QStringLiteral("Mobile")).toString();
    contact->Telephone = row.Collect(QStringLiteral("Telephone")).toString();
    contact->Email = row.Collect(QStringLiteral("Email")).toString();
    contact->SecondEmail = row.Collect(QStringLiteral("SecondEmail")).toString();
    contact->Other = row.Collect(QStringLiteral("Other")).toString();
    return contact;
}

void WriteContact(dao::Recordset& row, const clsKVContact& contact)
{
    row.SetCollect(QStringLiteral("Name"), contact.Name);
    row.SetCollect(QStringLiteral("Mobile"), contact.Mobile);
    row.SetCollect(QStringLiteral("Telephone"), contact.Telephone);
    row.SetCollect(QStringLiteral("Email"), contact.Email);
    row.SetCollect(QStringLiteral("SecondEmail"), contact.SecondEmail);
    row.SetCollect(QStringLiteral("Other"), contact.Other);
}

DirectoryLogEntry ReadLogEntry(const dao::Recordset& row)
{
    DirectoryLogEntry entry;
    entry.Reference = row.Collect(QStringLiteral("Reference")).toInt();
    entry.When = DirectoryTables::Moment(row.Collect(QStringLiteral("When")).toDouble());
    entry.UserReference = row.Collect(QStringLiteral("UserReference")).toInt();
    entry.ClassNumber = row.Collect(QStringLiteral("ClassNumber")).toInt();
    entry.Kind = row.Collect(QStringLiteral("Kind")).toInt();
    entry.Title = row.Collect(QStringLiteral("Title")).toString();
    entry.Text = row.Collect(QStringLiteral("Text")).toString();
    entry.Code = row.Collect(QStringLiteral("Code")).toInt();
    entry.EventReference = row.Collect(QStringLiteral("EventReference")).toInt();
    return entry;
}

/// A log must not fail for a title's length. A character of two units is not cut in half.
QString Fit(const QString& title, const dao::Field& field)
{
    const qsizetype room = field.Size();
    if (title.size() <= room)
        return title;
    return title.left(title.at(room - 1).isHighSurrogate() ? room - 1 : room);
}

void AddLogEntry(dao::Recordset& rows, const DirectoryLogEntry& entry)
{
    rows.AddNew();
    rows.SetCollect(QStringLiteral("When"), DirectoryTables::DayNumber(entry.When));
    rows.SetCollect(QStringLiteral("UserReference"), entry.UserReference);
    rows.SetCollect(QStringLiteral("ClassNumber"), entry.ClassNumber);
    rows.SetCollect(QStringLiteral("Kind"), entry.Kind);
    dao::Field& title = rows[QStringLiteral("Title")];
    title.SetValue(Fit(entry.Title, title));
    rows.SetCollect(QStringLiteral("Text"), entry.Text);
    rows.SetCollect(QStringLiteral("Code"), entry.Code);
    rows.SetCollect(QStringLiteral("EventReference"), entry.EventReference);
    rows.Update();
}

QList<clsKVContactPtr> ReadContacts(dao::Recordset& rows)
{
    QList<clsKVContactPtr> contacts;
    for (; !rows.AtEOF(); rows.MoveNext())
        contacts.append(ReadContact(rows));
    return contacts;
}

} // namespace

EmbeddedDirectory::EmbeddedDirectory() : UtcNow_(&QDateTime::currentDateTimeUtc)
{
    constexpr int againMilliseconds = 300;
    LogTimer_.setSingleShot(true);
    QObject::connect(&LogTimer_, &QTimer::timeout, &LogTimer_, [this] {
        StoreLogUnlessLocked();
        if (!WaitingLog_.isEmpty())
            LogTimer_.start(againMilliseconds);
    });
}

EmbeddedDirectory::~EmbeddedDirectory()
{
    StoreWaitingLog(WhereLocked::GiveUp);
}

void EmbeddedDirectory::Open(const QString& folder)
{
    Close();
    if (folder.isEmpty() || !QDir().mkpath(folder))
        throw dao::Error(dao::errNotAValidPath, QStringLiteral("'%1' is not a valid path.").arg(folder));
    std::unique_ptr<dao::Database> database =
        DirectoryTables::OpenFile(QDir(folder).filePath(QStringLiteral("Directory.mdb")));
    DirectoryTables::AddMissing(*database);
    Database_ = std::move(database);
}

void EmbeddedDirectory::Close()
{
    StoreWaitingLog(WhereLocked::GiveUp);
    LogTimer_.stop();
    User_.reset();
    LogRows_.reset();
    // Closed for this object even when the store's own closing fails.
    const std::unique_ptr<dao::Database> database = std::move(Database_);
    if (database)
        database->Close();
}

bool EmbeddedDirectory::IsOpen() const
{
    return Database_ != nullptr;
}

dao::Database& EmbeddedDirectory::Opened() const
{
    if (!Database_)
        throw dao::Error(dao::errObjectInvalid, QStringLiteral("The directory is not open."));
    return *Database_;
}

void EmbeddedDirectory::SignOut()
{
    User_.reset();
}

clsKVUser* EmbeddedDirectory::CurrentUser() const
{
    return User_.get();
}

clsKVContactPtr EmbeddedDirectory::GetContact(qint32 reference, int, int) const
{
    const auto rows = DirectoryTables::OpenTable(Opened(), contactsTable, mainIndex);
    rows->Seek(dao::SeekComparison::Equal, {reference});
    return rows->NoMatch() ? nullptr : ReadContact(*rows);
}

QList<clsKVContactPtr> EmbeddedDirectory::Contacts() const
{
    const auto rows = Opened().OpenRecordset(QStringLiteral("SELECT * FROM [Contacts] ORDER BY [Name], [Reference]"),
                                             dao::dbOpenSnapshot);
    return ReadContacts(*rows);
}

QList<clsKVContactPtr> EmbeddedDirectory::ContactsAfter(qint32 reference, int limit) const
{
    QList<clsKVContactPtr> contacts;
    const auto rows = DirectoryTables::OpenTable(Opened(), contactsTable, mainIndex);
    rows->Seek(dao::SeekComparison::Greater, {reference});
    if (rows->NoMatch())
        return contacts;
    for (; contacts.size() < limit && !rows->AtEOF(); rows->MoveNext())
        contacts.append(ReadContact(*rows));
    return contacts;
}

QList<clsKVContactPtr> EmbeddedDirectory::ContactsByAddress(const QString& address) const
{
    dao::Database& database = Opened();
    if (address.isEmpty())
        return {};
    const auto query = database.CreateQueryDef(
        QString(), QStringLiteral("SELECT * FROM [Contacts] WHERE [Email]=[WantedAddress] OR "
                                  "[SecondEmail]=[WantedAddress] ORDER BY [Name], [Reference]"));
    query->Parameters().Item(QStringLiteral("WantedAddress")).SetValue(address);
    const auto rows = query->OpenRecordset(dao::dbOpenSnapshot);
    return ReadContacts(*rows);
}

void EmbeddedDirectory::SaveContact(clsKVContact& contact)
{
    const auto rows = DirectoryTables::OpenTable(Opened(), contactsTable, mainIndex);
    const qint32 reference =
        DirectoryTables::BeginSave(*rows, contact.Reference, QStringLiteral("The contact has been deleted."));
    WriteContact(*rows, contact);
    rows->Update();
    contact.Reference = reference;
}

void EmbeddedDirectory::ChangeContact(const clsKVContact& before, const clsKVContact& after)
{
    const QString changedWords = QStringLiteral("Somebody else has changed the contact meanwhile.");
    const auto rows = DirectoryTables::OpenTable(Opened(), contactsTable, mainIndex);
    rows->Seek(dao::SeekComparison::Equal, {before.Reference});
    if (rows->NoMatch())
        throw dao::Error(dao::errRecordDeleted, QStringLiteral("The contact has been deleted."));
    rows->Edit();
    if (*ReadContact(*rows) != before)
        throw dao::Error(dao::errChangedByAnother, changedWords);
    WriteContact(*rows, after);
    try {
        rows->Update();
    } catch (const dao::Error& error) {
        if (error.Number() == dao::errChangedByAnother)
            throw dao::Error(error.Number(), changedWords);
        throw;
    }
}

void EmbeddedDirectory::InOneStep(const std::function<void()>& work)
{
    Opened();
    dao::Transaction transaction;
    work();
    transaction.Commit();
}

void EmbeddedDirectory::DeleteContact(qint32 reference)
{
    DirectoryTables::DeleteRow(Opened(), contactsTable, reference);
}

bool EmbeddedDirectory::Log(const DirectoryLogEntry& entry)
{
    constexpr qint64 longestWaitMilliseconds = 1000;
    if (!CollectsLog_ && !LogGivesWay_)
        return !StoreLog({entry});
    if (WaitingLog_.isEmpty())
        WaitingSince_.start();
    WaitingLog_.append(entry);
    if (CollectsLog_) {
        if (WaitingSince_.elapsed() < longestWaitMilliseconds)
            return true;
        WaitingSince_.start();
        return StoreWaitingLog(WhereLocked::Keep);
    }
    // Not here, in the midst of somebody's transaction: its commit is the one that meets the lock, and waits for it.
    if (!LogTimer_.isActive())
        LogTimer_.start(0);
    return true;
}

void EmbeddedDirectory::StoreLogUnlessLocked() const
{
    const dao::LockPatience patience(patienceOfLogMilliseconds);
    StoreWaitingLog(WhereLocked::Keep);
}

/// In one transaction, the numbers of the entries included. Why it could not be done.
std::optional<dao::Error> EmbeddedDirectory::StoreLog(const QList<DirectoryLogEntry>& entries) const
{
    try {
        dao::Transaction transaction;
        if (!LogRows_)
            LogRows_ = Opened().OpenRecordset(QStringLiteral("UserLog"), dao::dbOpenTable);
        for (const DirectoryLogEntry& entry : entries)
            AddLogEntry(*LogRows_, entry);
        transaction.Commit();
        return std::nullopt;
    } catch (const dao::Error& error) {
        LogRows_.reset();
        return error;
    } catch (const std::exception& error) {
        LogRows_.reset();
        return dao::Error(dao::errOutOfMemory, QString::fromUtf8(error.what()));
    }
}

bool EmbeddedDirectory::StoreWaitingLog(WhereLocked whereLocked) const
{
    if (WaitingLog_.isEmpty())
        return true;
    const QList<DirectoryLogEntry> entries = std::exchange(WaitingLog_, {});
    const std::optional<dao::Error> failure = StoreLog(entries);
    if (!failure)
        return true;
    if (failure->Number() == dao::errLocked && whereLocked == WhereLocked::Keep) {
        WaitingLog_ = entries;
        return true;
    }
    if (LogProblemHandler_) {
        LogProblemHandler_(QStringLiteral("Entries of the user log that could not be stored: %1. %2")
                               .arg(entries.size())
                               .arg(failure->Description()));
    }
    return false;
}

void EmbeddedDirectory::SetCollectsLog(bool collects)
{
    CollectsLog_ = collects;
    if (!collects)
        StoreWaitingLog(WhereLocked::GiveUp);
}

void EmbeddedDirectory::SetLogProblemHandler(std::function<void(const QString&)> handler)
{
    LogProblemHandler_ = std::move(handler);
}

QList<DirectoryLogEntry> EmbeddedDirectory::LogEntries(int limit) const
{
    if (LogGivesWay_)
        StoreLogUnlessLocked();
    else
        StoreWaitingLog(WhereLocked::Keep);
    // By time: each computer draws its references from a range of its own, so these do not tell the order.
    const auto rows = DirectoryTables::OpenTable(Opened(), QStringLiteral("UserLog"), QStringLiteral("When"));
    QList<DirectoryLogEntry> entries;
    if (rows->AtEOF())
        return entries;
    for (rows->MoveLast(); !rows->AtBOF() && entries.size() < limit; rows->MovePrevious())
        entries.append(ReadLogEntry(*rows));
    return entries;
}

void EmbeddedDirectory::SetClock(std::function<QDateTime()> utcNow)
{
    UtcNow_ = std::move(utcNow);
}
