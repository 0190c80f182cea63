// SPDX-License-Identifier: Apache-2.0
#include "messages/search/SearchIndex.h"

#include "messages/search/SearchFailure.h"
#include "platform/files/FileSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{
/// "TLVS" in the file's header, and the version of what stands in it.
constexpr int ApplicationId = 0x544C5653;
constexpr int FormatVersion = 4;
constexpr int OwnerAlone = 0600;

SearchFailure FailureOf(const FileStatus& status, const QString& file)
{
    const auto reason = status.IsDiskFailure() ? SearchFailure::Reason::Full : SearchFailure::Reason::NoAccess;
    return SearchFailure(reason, QStringLiteral("The search index %1 cannot be made: %2 The station itself is not "
                                                "concerned.")
                                     .arg(QDir::toNativeSeparators(file), status.Words()));
}

void MakeFolder(const QString& folder)
{
    if (QFileInfo(folder).isDir())
        return;
    if (!QDir().mkpath(folder)) {
        throw SearchFailure(SearchFailure::Reason::NoAccess,
                            QStringLiteral("The folder of the search index, %1, cannot be made: this account may not "
                                           "write there, or the disk is full. The station itself is not concerned.")
                                .arg(QDir::toNativeSeparators(folder)));
    }
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/// Empty, and its owner's alone before anything stands in it.
void MakeFile(const QString& file)
{
    FileStatus status;
    const auto handle = FileSystem::Current().Open(file, FileAccess::New, status);
    if (status.Error() == FileError::Exists)
        return; // another program was quicker
    if (!handle)
        throw FailureOf(status, file);
    FileAttributes attributes;
    attributes.Rights = OwnerAlone;
    handle->SetAttributes(attributes);
    status = handle->Close();
    if (!status.IsDone())
        throw FailureOf(status, file);
}

QByteArray Quoted(const QByteArray& text)
{
    return '\'' + QByteArray(text).replace('\'', "''") + '\'';
}

QByteArray NoteIn(IndexConnection& connection, std::string_view name)
{
    IndexStatement note(connection, "SELECT value FROM notes WHERE name = ?1");
    note.Bind(1, name);
    return note.Step() ? QByteArray(note.Text(0).data(), static_cast<qsizetype>(note.Text(0).size())) : QByteArray();
}

bool IsOfPlace(const QString& file, const QByteArray& place)
{
    try {
        IndexConnection connection(file);
        return NoteIn(connection, "place") == place;
    } catch (const SearchFailure&) {
        return false; // whose it was it does not say
    }
}
} // namespace

SearchIndex::SearchIndex(const QString& file, const QByteArray& station, const QByteArray& place)
    : File_(file), Station_(station)
{
    OpenOrMake();
    TakePlace(place);
}

SearchIndex::~SearchIndex() = default;

bool SearchIndex::Remove(const QString& file)
{
    bool isGone = true;
    for (const char* ending : {"-wal", "-shm", ""}) {
        const QString name = file + QLatin1String(ending);
        if (FileSystem::Current().KindOf(name) != FileKind::None)
            isGone = FileSystem::Current().Remove(name).IsDone() && isGone;
    }
    return isGone;
}

void SearchIndex::OpenOrMake()
{
    MakeFolder(QFileInfo(File_).absolutePath());
    const FileKind kind = FileSystem::Current().KindOf(File_);
    if (kind == FileKind::File) {
        try {
            Connection_ = std::make_unique<IndexConnection>(File_);
            if (IsOfUse())
                return;
        } catch (const SearchFailure& failure) {
            if (failure.Why() != SearchFailure::Reason::Damaged)
                throw;
        }
        Connection_.reset();
    }
    if (kind != FileKind::None && !Remove(File_))
        throw FailureOf(FileStatus(FileError::NoPermission), File_);
    MakeFile(File_);
    Connection_ = std::make_unique<IndexConnection>(File_);
    MakeStructure();
}

/// Of this version and this station, and whole as far as its first pages tell.
bool SearchIndex::IsOfUse()
{
    IndexConnection& connection = *Connection_;
    if (connection.Number("PRAGMA application_id") != ApplicationId ||
        connection.Number("PRAGMA user_version") != FormatVersion)
        return false;
    const qint64 size = QFileInfo(File_).size();
    if (size < connection.Number("PRAGMA page_size"))
        return false;
    return ReadNote("station") == Station_;
}

void SearchIndex::MakeStructure()
{
    IndexChange change(*Connection_);
    // Another program may have made it in the meantime.
    if (Connection_->Number("SELECT EXISTS (SELECT 1 FROM sqlite_schema WHERE name = 'notes')") != 0)
        return;
    Connection_->Execute("PRAGMA application_id=" + QByteArray::number(ApplicationId));
    Connection_->Execute("PRAGMA user_version=" + QByteArray::number(FormatVersion));
    Connection_->Execute("CREATE TABLE notes (name TEXT PRIMARY KEY, value TEXT) WITHOUT ROWID");
    Connection_->Execute(
        "CREATE TABLE shards (shard INTEGER PRIMARY KEY, documents INTEGER, changes INTEGER, proof INTEGER)");
    Connection_->Execute("CREATE TABLE messages (document INTEGER PRIMARY KEY, reference INTEGER UNIQUE, content "
                         "INTEGER, seconds INTEGER, category INTEGER, bits INTEGER, proof INTEGER)");
    // Of those the texts are compared.
    Connection_->Execute("CREATE INDEX drafts ON messages (category, reference) WHERE category = " +
                         QByteArray::number(tmcDrafts));
    Connection_->Execute("CREATE TABLE ranges (first INTEGER PRIMARY KEY, mark INTEGER)");
    Connection_->Execute("INSERT INTO notes VALUES ('station', " + Quoted(Station_) + ")");
    change.Commit();
}

qint64 SearchIndex::Count()
{
    return Connection_->Number("SELECT coalesce(sum(documents), 0) FROM shards");
}

qint64 SearchIndex::Changes()
{
    return Connection_->Number("SELECT coalesce(sum(changes), 0) FROM shards");
}

QByteArray SearchIndex::ReadNote(std::string_view name)
{
    return NoteIn(*Connection_, name);
}

void SearchIndex::WriteNote(std::string_view name, const QByteArray& value)
{
    if (ReadNote(name) == value)
        return;
    IndexStatement(*Connection_, "INSERT OR REPLACE INTO notes VALUES (?1, ?2)")
        .Bind(1, name)
        .Bind(2, std::string_view(value.constData(), static_cast<std::size_t>(value.size())))
        .Run();
}

/// What is erased from a station must not live on in the index of the state before.
void SearchIndex::TakePlace(const QByteArray& place)
{
    if (place.isEmpty() || ReadNote("place") == place)
        return;
    WriteNote("place", place);
    const QFileInfo own(File_);
    for (const QFileInfo& other : own.absoluteDir().entryInfoList({QStringLiteral("*.") + own.suffix()}, QDir::Files)) {
        if (other.fileName() != own.fileName() && IsOfPlace(other.absoluteFilePath(), place))
            Remove(other.absoluteFilePath());
    }
}

QByteArray SearchIndex::TableOf(qint64 shard)
{
    return "words_" + QByteArray::number(shard);
}
