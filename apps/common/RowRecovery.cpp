// SPDX-License-Identifier: Apache-2.0
#include "RowRecovery.h"

#include "StationPlace.h"
#include "common/FileHelper.h"
#include "platform/records/DBEngine.h"

#include <algorithm>
#include <iterator>

namespace
{
using RowRecovery::Kind;

/// The rows of a kind: where they are, which of their columns are long texts, and which tell one row from another that
/// got its number.
struct RowForm
{
    QString Name;
    QString Table;
    QStringList Texts; ///< In the order of the alphabet.
    QStringList Identity;
};

const RowForm& FormOf(Kind kind)
{
    static const RowForm message{QStringLiteral("message"),
                                 QStringLiteral("Messages"),
                                 {QStringLiteral("Message")},
                                 {QStringLiteral("Received"), QStringLiteral("MessageType"), QStringLiteral("FromKey"),
                                  QStringLiteral("Subject")}};
    static const RowForm prize{QStringLiteral("prize"),
                               QStringLiteral("Prizes"),
                               {QStringLiteral("Notes"), QStringLiteral("NotesToSupplier"), QStringLiteral("Script")},
                               // What a prize is called and when it may go out is edited.
                               {QStringLiteral("AddedDate"), QStringLiteral("AddedByReference")}};
    static const RowForm winner{
        QStringLiteral("winner"),
        QStringLiteral("PrizeWinners"),
        {QStringLiteral("Notes"), QStringLiteral("NotesToSupplier")},
        {QStringLiteral("PrizeReference"), QStringLiteral("WinnerReference"), QStringLiteral("WonDate")}};
    switch (kind) {
    case Kind::Message:
        return message;
    case Kind::Prize:
        return prize;
    case Kind::Winner:
        break;
    }
    return winner;
}

/// A row in a database file.
class RowInFile
{
public:
    enum class Access
    {
        Read,
        Write
    };

    RowInFile(const QString& file, Kind kind, qint32 reference, Access access)
        : Form_(FormOf(kind)),
          Database_(dao::DBEngine::OpenDatabase(file, 0, access == Access::Read)),
          Rows_(Database_->OpenRecordset(Form_.Table, dao::dbOpenTable))
    {
        Rows_->SetIndex(QStringLiteral("Main"));
        Rows_->Seek(dao::SeekComparison::Equal, {reference});
    }

    bool IsThere() const { return !Rows_->NoMatch(); }
    dao::Recordset& Row() { return *Rows_; }
    QVariantList Identity() const
    {
        QVariantList identity;
        for (const QString& column : Form_.Identity)
            identity.append(Rows_->Collect(column));
        return identity;
    }
    QStringList DamagedTexts() const
    {
        QStringList damaged;
        std::copy_if(Form_.Texts.begin(), Form_.Texts.end(), std::back_inserter(damaged),
                     [this](const QString& column) { return IsDamaged(column); });
        return damaged;
    }
    const QStringList& Texts() const { return Form_.Texts; }
    /// What stands there, whatever was saved: a query's expressions see it so.
    QString AsStored(const QString& column) const
    {
        const auto rows = Database_->OpenRecordset(
            QStringLiteral("SELECT [%1] & '' AS [Text] FROM [%2] WHERE [Reference]=%3")
                .arg(column, Form_.Table, Rows_->Collect(QStringLiteral("Reference")).toString()),
            dao::dbOpenSnapshot);
        return rows->Collect(QStringLiteral("Text")).toString();
    }

private:
    bool IsDamaged(const QString& column) const
    {
        try {
            static_cast<void>(Rows_->Collect(column));
            return false;
        } catch (const dao::Error& error) {
            if (error.Number() != dao::errMemoDamaged && error.Number() != dao::errFileDamaged)
                throw;
            return true;
        }
    }

    const RowForm& Form_;
    std::unique_ptr<dao::Database> Database_;
    std::unique_ptr<dao::Recordset> Rows_;
};

QList<BackupFolders::Backup> NewestFirst(const QString& file)
{
    QList<BackupFolders::Backup> backups = BackupFolders::List(BackupFolders::RootOf(file));
    std::stable_sort(
        backups.begin(), backups.end(),
        [](const BackupFolders::Backup& a, const BackupFolders::Backup& b) { return a.CreatedDate > b.CreatedDate; });
    return backups;
}

/// What is looked for in a backup.
struct Wanted
{
    QStringList Texts;
    bool AreDamaged;
    QVariantList Identity;
};

/// These texts of that row in a backup; nothing when it is not there, is another one or is damaged there too.
std::optional<QVariantMap> TextsIn(const QString& copy, Kind kind, qint32 reference, const Wanted& wanted)
{
    try {
        RowInFile row(copy, kind, reference, RowInFile::Access::Read);
        if (!row.IsThere() || row.Identity() != wanted.Identity)
            return std::nullopt;
        QVariantMap texts;
        for (const QString& column : wanted.Texts)
            texts.insert(column, row.Row().Collect(column));
        // Each message has a mail.
        if (kind == Kind::Message && !texts.first().isValid())
            return std::nullopt;
        return texts;
    } catch (const dao::Error&) {
        return std::nullopt;
    }
}

std::optional<Wanted> WantedFrom(const QString& file, Kind kind, qint32 reference)
{
    try {
        const RowInFile row(file, kind, reference, RowInFile::Access::Read);
        if (!row.IsThere())
            return std::nullopt;
        const QStringList damaged = row.DamagedTexts();
        return Wanted{damaged.isEmpty() ? row.Texts() : damaged, !damaged.isEmpty(), row.Identity()};
    } catch (const dao::Error&) {
        return std::nullopt;
    }
}
} // namespace

std::optional<RowRecovery::Kind> RowRecovery::KindOf(const QString& table)
{
    for (const Kind kind : {Kind::Message, Kind::Prize, Kind::Winner}) {
        if (FormOf(kind).Table == table)
            return kind;
    }
    return std::nullopt;
}

QString RowRecovery::NameOf(Kind kind)
{
    return FormOf(kind).Name;
}

QString RowRecovery::TextName(const QString& column)
{
    if (column == u"Message")
        return QStringLiteral("mail");
    return column == u"NotesToSupplier" ? QStringLiteral("notes to the supplier") : column.toLower();
}

RowRecovery::State RowRecovery::StateOf(const QString& folder, Kind kind, qint32 reference)
{
    const RowInFile row(StationPlace::FileIn(folder), kind, reference, RowInFile::Access::Read);
    if (!row.IsThere())
        return State::NotThere;
    return row.DamagedTexts().isEmpty() ? State::Sound : State::Damaged;
}

std::optional<RowRecovery::Source> RowRecovery::Find(const QString& folder, Kind kind, qint32 reference,
                                                     const QString& name)
{
    const QString file = StationPlace::FileIn(folder);
    const std::optional<Wanted> wanted = WantedFrom(file, kind, reference);
    if (!wanted)
        return std::nullopt;
    for (const BackupFolders::Backup& backup : NewestFirst(file)) {
        if (!name.isEmpty() && backup.Name != name)
            continue;
        const QString copy = FileHelper::Join(backup.Folder, FileHelper::FileNameOf(file));
        if (const std::optional<QVariantMap> texts = TextsIn(copy, kind, reference, *wanted))
            return Source{backup, *texts, wanted->AreDamaged, wanted->Identity};
    }
    return std::nullopt;
}

std::optional<RowRecovery::Source> RowRecovery::AsStored(const QString& folder, Kind kind, qint32 reference)
{
    const RowInFile row(StationPlace::FileIn(folder), kind, reference, RowInFile::Access::Read);
    if (kind == Kind::Message || !row.IsThere())
        return std::nullopt;
    Source source{{}, {}, true, row.Identity()};
    for (const QString& column : row.DamagedTexts())
        source.Texts.insert(column, row.AsStored(column));
    return source.Texts.isEmpty() ? std::nullopt : std::optional(source);
}

QString RowRecovery::Advice(const QString& folder, Kind kind, qint32 reference)
{
    const std::optional<Source> source = Find(folder, kind, reference);
    const QString what = kind == Kind::Message ? QString() : NameOf(kind) + u' ';
    const QString none = QStringLiteral("No backup has it sound.");
    if (!source && kind == Kind::Message)
        return none;
    if (!source)
        return none + QStringLiteral(" What is left of it is kept with: tolva recover %1 %2%3 --as-stored")
                          .arg(folder, what)
                          .arg(reference);
    return QStringLiteral("The backup \"%1\" has it sound; fetch it from there with: tolva recover %2 %3%4")
        .arg(source->Backup.Name, folder, what)
        .arg(reference);
}

void RowRecovery::PutBack(const QString& folder, Kind kind, qint32 reference, const Source& source)
{
    RowInFile row(StationPlace::FileIn(folder), kind, reference, RowInFile::Access::Write);
    if (!row.IsThere())
        throw dao::Error(dao::errRecordDeleted, QStringLiteral("Record is deleted."));
    const bool isMended = source.AreDamaged && row.DamagedTexts() != source.Texts.keys();
    if (isMended || row.Identity() != source.Identity)
        throw dao::Error(dao::errChangedByAnother,
                         QStringLiteral("The %1 was changed by another user.").arg(NameOf(kind)));
    row.Row().Edit();
    for (auto text = source.Texts.begin(); text != source.Texts.end(); ++text)
        row.Row().SetCollect(text.key(), text.value());
    row.Row().Update();
}
