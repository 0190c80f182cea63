// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"
#include "common/Enumerations.h"
#include "common/cPageSetup.h"
#include "common/clsFont.h"
#include "database/DatabaseInformation.h"
#include "database/LockingMode.h"
#include "database/watch/ChangeStamp.h"
#include "messages/MessageSaving.h"
#include "messages/cMessage.h"
#include "messages/cMessages.h"
#include "platform/Export.h"
#include "platform/directory/clsCategory.h"
#include "platform/records/Database.h"
#include "platform/records/Transaction.h"
#include "prizes/cPrize.h"

#include <QObject>
#include <QVariant>

#include <functional>
#include <optional>
#include <vector>

class BackupStore;
class FolderStore;
class HighlightSettings;
class ListViewObject;
class MessageStore;
class PrizeStore;
class SettingsStore;
class StationContext;
class StationDetails;
class StationWatch;
class WinnerStore;
class clsKVDirectory;

/// The one object through which a host and every control reach a station's database. The host owns it, sets
/// DirectoryDatabase, opens it on a folder and keeps it while controls use it; destroying it closes the file. All on
/// the user interface thread. Every change is on the disk when its operation returns, and nothing is cached between
/// calls but the folder tree and the highlight settings.
///
/// It forwards to stores, each of which owns its subject.
class TOLVA_EXPORT cTolvaDatabase : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Description READ Description)
    Q_PROPERTY(QString Location READ Location)
    Q_PROPERTY(bool SilentMode READ SilentMode WRITE SetSilentMode)
    Q_PROPERTY(bool RaiseEvents READ RaiseEvents WRITE SetRaiseEvents)

public:
    cTolvaDatabase();
    ~cTolvaDatabase() override;

    /// Opens "Tolva.mdb" in the folder, making a missing file, and brings its structure up to date; closes what was
    /// open before. connect: empty for a local file. 0 when open and configured, otherwise -1 or an error number
    /// (negated when the file failed its validation). With -1 for incomplete settings the database stays open until it
    /// is closed; so it does with the error number of settings or folders that cannot be read, whose words
    /// LastErrorDescription holds. dao::Error for one thing, which has no number of its own: the Settings table cannot
    /// be opened by its index, or the file itself could not be opened once its information had been read.
    qint32 OpenTolvaDatabase(const QString& location, const QString& connect = QString());
    /// Always 0; does nothing on a closed object.
    qint32 CloseTolvaDatabase();
    /// Creates or completes all tables of a file. It opens the file by itself. 0 or an error number, which the user has
    /// been told.
    qint16 ValidateTolvaDatabase(const QString& fileName);
    bool IsOpen() const;
    /// How often this object has opened a file: what was read before belongs to another opening, and may be another
    /// file's.
    int Openings() const;
    /// Through which the lists of this object hear of what other computers change.
    StationWatch& Watch() const { return *Watch_; }
    /// The settings dialog, unless the user lacks the right. True when it was confirmed.
    bool DisplaySettings();

    /// Level of the diagnostics log of this process (GeneralHelper::DebugMode).
    static int DebugMode();
    static void SetDebugMode(int level);

    const QString& Description() const;
    const QString& Location() const;
    const DatabaseInformation& Information() const;
    /// The file's name without its extension.
    QString DatabaseReference() const;
    /// What is in force now; Unknown when nothing is open.
    LockingMode DatabaseLockingMode() const;

    /// Without message boxes for failures; the log is written all the same.
    bool SilentMode() const;
    void SetSilentMode(bool silent);
    /// False stops the four events of this object. Starts true.
    bool RaiseEvents() const;
    void SetRaiseEvents(bool raise);

    /// The host's directory, which the host owns; null for none.
    clsKVDirectory* DirectoryDatabase() const;
    void SetDirectoryDatabase(clsKVDirectory* directory);

    /// Why the last operation that answered false or nothing did so: an error number of dao::ErrorNumber, and its
    /// words. 0 when no error stood behind it.
    int LastErrorNumber() const;
    const QString& LastErrorDescription() const;

    /// A transaction of the caller's that has the writer's lock of the station from the beginning: what is read in it
    /// stays as it is read until it ends, and all operations in it become durable in its commit. Events are raised as
    /// they come, the user log follows the commit. Nothing may wait for the user in it. dao::Error: 3260 when another
    /// computer has the lock for too long, 3420 on a closed object.
    dao::Transaction BeginChange() const;

    // Settings: named values that all computers share.

    /// The stored text, or defaultValue when it is absent or cannot be read. Never fails.
    QVariant DatabaseSetting(const QString& itemName, const QVariant& defaultValue) const;
    /// Stores the value in its text form at once; a value equal to the default deletes the row. A failure is shown to
    /// the user.
    void SetDatabaseSetting(const QString& itemName, const QVariant& value, const QVariant& defaultValue);
    /// Reads what this object keeps in memory, refreshes the fixed folders and the folder tree. False when the folders
    /// could not be read or put right (LastErrorNumber), and on a closed object.
    bool ReadDatabaseSettings();
    /// Stores the backup options, the highlight font and words, and the label geometry. Always true.
    bool WriteDatabaseSettings();

    bool EnableAutoBackup() const;
    void SetEnableAutoBackup(bool enable);
    /// Minutes: 60 or 1440.
    qint32 BackupInterval() const;
    void SetBackupInterval(qint32 minutes);
    /// Days; 0 keeps every backup.
    qint16 BackupExpiryDays() const;
    void SetBackupExpiryDays(qint16 days);

    /// Copies the database into a dated folder beside it. forceBackup: on the user's request, who is told of a failure;
    /// otherwise only when its time has come and no other computer is at it, and a failure is silent (LastErrorNumber
    /// tells it). True when the backup was made and recorded. An object makes one backup in its life, whatever comes of
    /// it; from then on, and on a closed object, the answer is false. dao::Error for a failure outside the copy. The
    /// object must outlive the call, which shows progress and may run window events.
    bool BackupDatabase(bool forceBackup);
    /// False: this object makes no backup by itself, whatever the station's setting says. For stations in the making
    /// and for tools that open one for a moment. Counts from the next reading of the settings. Starts true.
    bool MakesAutomaticBackups() const;
    void SetMakesAutomaticBackups(bool makes);
    /// True: moving and deleting a message, emptying a folder and deleting a prize move the change stamp as saving
    /// does, so that other computers see it at once. It is stored together with the change. Starts false.
    bool StampsEveryChange() const;
    void SetStampsEveryChange(bool stamps);

    QString StationName() const;
    void SetStationName(const QString& name);
    QString StationAddress() const;
    void SetStationAddress(const QString& address);
    QString StationPhoneNumber() const;
    void SetStationPhoneNumber(const QString& number);
    QString StationSMSPhoneNumber() const;
    void SetStationSMSPhoneNumber(const QString& number);
    QString StationCompanyNumber() const;
    void SetStationCompanyNumber(const QString& number);
    QString StationVATNumber() const;
    void SetStationVATNumber(const QString& number);
    /// Two-letter code (ISO 3166) of the country in whose form telephone numbers without a country code are read. Until
    /// one is stored, by the first text message that is saved at the latest, this machine's default.
    QString StationCountry() const;
    /// What is no country's code is not stored. The keys of messages that stand already keep their form until
    /// RewriteMessageKeys.
    void SetStationCountry(const QString& country);
    /// The address on one line, its lines joined by the separator and a blank.
    QString StationAddressString(const QString& separator = QStringLiteral(",")) const;
    /// What is playing, from the ".oar" file beside the database, which other software writes too.
    QString CurrentSongFullName() const;
    void SetCurrentSongFullName(const QString& song);

    clsFont& MessageHighlightFont();
    /// The font with its words, for the dialog that changes both.
    HighlightSettings& Highlights() { return *Highlights_; }
    cPageSetup& AddressLabelsPageSetup() { return AddressLabelsPageSetup_; }
    /// What a station's label sheet measures until it is changed.
    static void SetLabelDefaults(cPageSetup& pageSetup);

    // Messages.

    /// Null when there is no such message, for reference 0 and on a closed object, and when it cannot be read
    /// (LastErrorNumber).
    cMessagePtr GetMessage(qint32 reference);
    /// The same for callers to whom a message that cannot be read is another thing than one that is gone: dao::Error
    /// for what cannot be read.
    cMessagePtr ReadMessage(qint32 reference);
    /// The message of the current row of a snapshot of all columns; null when it was deleted since the snapshot. For
    /// lists: one statement serves all rows. dao::Error for what cannot be read.
    cMessagePtr GetMessage(dao::Recordset& row);
    /// The messages that a condition selects, read whole; an empty query selects all. Null on an error, which is
    /// errOverflow for more messages than a collection holds (32,767).
    std::unique_ptr<cMessages> GetMessages(const QString& sqlQuery);
    /// A snapshot of these columns of the messages that meet a condition (as after WHERE; empty for all), in an order
    /// (as after ORDER BY; empty for none). For lists and counts: however many messages there are, a mail's text is
    /// read only where its value is asked for. dao::Error: 3075 and 3061 for what is no condition, 3420 on a closed
    /// object.
    std::unique_ptr<dao::Recordset> OpenMessageRows(const QStringList& columns, const QString& condition = QString(),
                                                    const QString& order = QString()) const;
    /// A number made of what these rows say, memos apart: the same in every process as long as they say the same. Takes
    /// a part of the time that reading them does. dao::Error as above.
    quint64 MarkOfMessageRows(const QStringList& columns, const QString& condition, const QString& order) const;
    /// A snapshot of any SELECT. dao::Error as above.
    std::unique_ptr<dao::Recordset> OpenSnapshot(const QString& sql) const;
    /// The opened file, for stores that keep a table of their own in it, until it is closed. dao::Error 3420 on a
    /// closed object.
    dao::Database& File() const;
    /// As dao::Database has them, for the watch; false while the station is closed.
    bool BeginBeingTold() const;
    bool TakeChanges() const;
    /// Stores a new or changed message; it is on the disk when this returns true. Otherwise LastErrorNumber tells why
    /// (locked by another computer: 3260).
    bool SaveMessage(const cMessagePtr& message);
    /// Stores messages in one step: all that are answered for are on the disk when this returns. Their rows and one
    /// change stamp are one transaction of the station, which is locked for as long; behind it come their entries in
    /// the user log, in one transaction of the directory, and then the events. Before each message but the first goesOn
    /// is asked; the messages from the first refusal on are left alone and have no answer. A message whose own values
    /// cannot be stored takes no other with it. dao::Error for all else, such as 3260: then nothing is stored, and the
    /// messages have the numbers that they came with; the marks of highlight words stay in their mails. Messages that
    /// keep new numbers may be stored: the disk failed in the last step of the commit.
    std::vector<MessageSaving> SaveMessages(const std::vector<cMessagePtr>& messages,
                                            const std::function<bool()>& goesOn);
    /// The mail's octets as saving the message would store them now: with the marks of the highlight words.
    QByteArray OctetsToStore(const cMessage& message) const;
    /// These three need the right to edit messages; without it they answer false.
    bool CopyMessage(qint32 reference, enTolvaMessageCategories newCategory);
    bool MoveMessage(qint32 reference, enTolvaMessageCategories newCategory);
    bool DeleteMessage(qint32 reference, bool deletePermanently);
    /// Sets and clears bits of enMsgFlags in the stored row and leaves the rest of the row, the mail included, as it is
    /// at that moment on whatever computer. Moves the change stamp, like a save. Needs the right to edit the message.
    bool ChangeMessageFlags(qint32 reference, qint32 set, qint32 clear);
    /// Takes a message that waits to be sent, in the Outbox and marked, to Sent and clears the mark, in one step; sent
    /// (local time) becomes its date of sending where it has none. The mail stays as it is. Moves the change stamp, and
    /// needs the right to edit the message. False, with LastErrorNumber 0, also for a message that does not wait.
    bool MarkMessageSent(qint32 reference, Date sent);
    /// Writes the search keys of the messages with references from first to last anew where they are not what a save
    /// would write: in one transaction, with the change stamp. A message that is deleted meanwhile is passed over. The
    /// number of rows that changed. dao::Error when it cannot be done; then none of them changed.
    int RewriteMessageKeys(qint32 first, qint32 last);
    /// Erases all messages of a folder, all or none of them. Raises no event, writes no audit entry and leaves the
    /// change stamp alone; rights are the caller's concern. False when it failed.
    bool DeleteMessagesOfCategory(enTolvaMessageCategories category);
    /// Announce a change that the caller made itself, whatever RaiseEvents holds.
    void RaiseSaveMessageEvent(const cMessagePtr& message, bool edited) { Q_EMIT MessageSaved(message, edited); }
    void RaiseDeleteMessageEvent(const cMessagePtr& message) { Q_EMIT MessageDeleted(message); }
    /// Universal time of the last save on any computer; none when there was no save.
    Date LastMessageChanged() const;
    void SetLastMessageChanged(Date changeDate);
    /// How the save that MessageSaved tells of moved the stamp; of nothing when it did not, and outside the event.
    const StampMove& ToldMessageMove() const;

    // Folders.

    /// Root of the tree as it was last loaded. Held nodes go stale at UpdateCategoryTree.
    clsCategory& MessageCategories();
    // Folders that cannot be read or stored are a dao::Error of these, DeleteMessageCategory apart; on a closed object
    // they answer nothing.

    /// One folder with all below it, freshly from the table; null for a reference that no folder can have (0 or less,
    /// above 32,767).
    std::unique_ptr<clsCategory> GetMessageCategory(qint32 reference);
    /// Adds (Reference below 1, filled afterwards) or changes a folder. updateSubCategories: the stored children are
    /// replaced by those of the object. The tree is not refreshed. dao::Error on a failure, also when no number up to
    /// 32,767 is left (6).
    bool SaveMessageCategory(clsCategory& category, bool updateSubCategories = true);
    /// False for a folder with sub-folders or messages, and for a reference that no folder can have. An absent one
    /// counts as deleted.
    bool DeleteMessageCategory(qint32 reference);
    void UpdateCategoryTree();
    /// Loads the tree where the stored one differs from it, by whatever computer; true then. Otherwise held nodes stay
    /// good.
    bool RefreshCategoryTree();
    /// The highest reference in use, 0 for none.
    qint16 LastMessageCategoryReference() const;

    /// Fills the host's list with every message to or from a contact, the newest sent first. emailAddresses and
    /// phoneNumbers: "|" between the entries; with neither, every message, with numbers alone that are none, no
    /// message. The columns' keys are fields of Messages, or, behind the first, FOLDER, or SENT; a cell of another key
    /// stays empty. Items have the keys "m" + a message's reference. The list stays as it is when no database is open,
    /// it has no columns, or it is no list view. Messages that cannot be read are missing, and LastErrorNumber tells
    /// why.
    void FillMessagesListView(ListViewObject* lvwMessages, const QString& emailAddresses, const QString& phoneNumbers);

    // Prizes.

    /// Universal time of the last save of a prize on any computer; none when there was no save.
    Date LastPrizeChanged() const;
    void SetLastPrizeChanged(Date changeDate);
    /// As ToldMessageMove, for PrizeSaved.
    const StampMove& ToldPrizeMove() const;
    /// Null when there is no such prize, for reference 0 and on a closed object, and when it cannot be read
    /// (LastErrorNumber). getWinners: fills its slots too.
    cPrizePtr GetPrize(qint32 prizeReference, bool getWinners);
    /// The prize, without its winners, of the current row of a snapshot of all columns; null when it was deleted since
    /// the snapshot. For lists: one statement serves all rows. dao::Error for what cannot be read.
    cPrizePtr GetPrize(dao::Recordset& row);
    cPrizeWinnerPtr GetPrizeWinner(qint32 reference);
    /// Fills the prize's slots, the earliest winner first, and takes its count from the row. False when it has no row.
    bool GetPrizeWinners(const cPrizePtr& prize);
    /// Stores a new or changed prize; it is on the disk when this returns true.
    bool SavePrize(const cPrizePtr& prize);
    /// Removes a prize, then its winners, all in one transaction. Needs the right to manage prizes; without it false.
    /// An error that stands after true (LastErrorNumber) is that of a winner who stayed.
    bool DeletePrize(qint32 reference);
    /// A blank winner of a prize with stock left, otherwise null. Nothing is stored.
    cPrizeWinnerPtr GetNewPrizeWinner(const cPrizePtr& prize);
    /// Stores a winner; a new one takes a unit of its prize, which must have one left. True: the winner, the prize's
    /// count and the change stamp are on the disk, all three together. However many computers award at once, no prize
    /// has more winners than units. The prize's event tells of it.
    bool SavePrizeWinner(const cPrizeWinnerPtr& prizeWinner);
    /// Gives the unit back, together with the deletion or not at all. An absent winner counts as deleted.
    bool DeletePrizeWinner(qint32 reference);
    /// The winners that are stored for a prize, which its NumberWinners should count. -1 when they cannot be counted
    /// (LastErrorNumber).
    qint32 StoredWinners(qint32 prizeReference);
    /// Raises a prize's count to the winners that are stored, where other software stored a winner without counting
    /// him, and its last won date to the last of theirs. Never lowers it. False when it could not be raised, or the
    /// prize is gone.
    bool CountStoredWinners(qint32 prizeReference);
    /// The same, and lowers the count as well. Not while software awards prizes elsewhere that counts a winner after
    /// storing him: he would count twice.
    bool RecountWinners(qint32 prizeReference);
    /// Fills the host's list with every prize that a contact won, awarded or supplied (all prizes for 0). The columns'
    /// keys are fields of the query (Prizes.Reference, Title, PrizeWinners.*, SupplierReference), or FOLDER for the
    /// contact's role. Items have the keys "w" + a winner's reference, or "p" + a prize's.
    void FillPrizesListView(ListViewObject* lvwPrizes, qint32 contactReference);
    /// -1 for no contact, on a closed object, and when they cannot be counted (LastErrorNumber).
    qint32 GetNumberWinsForContact(qint32 contactReference);

    // The hotlists. Settings that cannot be opened are a dao::Error of both.

    /// The hours that the user chose from the hotlists, in the form in which they were saved; empty when none was
    /// chosen. parentForm: the window that the dialog belongs to, or null.
    QString LoadAvailableHoursHotlist(QObject* parentForm);
    /// Saves hours under a name that the user gives. False when he gave none, and when they could not be stored.
    bool SaveAvailableHoursHotlist(const QString& availableHours, QObject* parentForm);

    // Page templates: files beside the database that all computers share.

    /// The folder; empty on a closed object.
    QString HTMLTemplatesLocation() const;
    /// The references of the templates of a prefix (all of them, prefixes included, for an empty one), by name. Empty
    /// for none. Like the file's name below without regard to case.
    QStringList GetHTMLTemplateReferences(const QString& prefix) const;
    /// The file's whole name, whether there is such a file or not. Empty on a closed object, and for what cannot be the
    /// name of a file in that folder: one with a path separator, a colon or a control character.
    QString GetHTMLTemplateFileName(const QString& prefix, const QString& reference) const;

Q_SIGNALS:
    void MessageSaved(const cMessagePtr& Message, bool Edited);
    void MessageDeleted(const cMessagePtr& Message);
    /// Edited: what the prize said before it was written.
    void PrizeSaved(const cPrizePtr& Prize, bool Edited);
    void PrizeDeleted(const cPrizePtr& Prize);

private:
    bool InsistOnStationDetails(bool settingsRead);

    std::unique_ptr<StationContext> Station_;
    std::unique_ptr<SettingsStore> Settings_;
    std::unique_ptr<StationDetails> Details_;
    std::unique_ptr<HighlightSettings> Highlights_;
    std::unique_ptr<FolderStore> Folders_;
    std::unique_ptr<MessageStore> Messages_;
    std::unique_ptr<PrizeStore> Prizes_;
    std::unique_ptr<WinnerStore> Winners_;
    std::unique_ptr<BackupStore> Backups_;
    std::unique_ptr<StationWatch> Watch_;
    cPageSetup AddressLabelsPageSetup_;
};
