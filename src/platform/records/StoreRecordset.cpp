// SPDX-License-Identifier: Apache-2.0
#include "platform/records/StoreRecordset.h"

#include "platform/StableHash.h"
#include "platform/records/TextCodec.h"
#include "platform/records/Values.h"

namespace dao
{

engine::Store& StoreRecordset::Open() const
{
    if (!IsOpen_)
        throw Error(errObjectInvalid, QStringLiteral("Object invalid or no longer set: the recordset is closed."));
    return Session_->Required();
}

void StoreRecordset::RaiseNoCurrentRecord()
{
    throw Error(errNoCurrentRecord, QStringLiteral("No current record."));
}

void StoreRecordset::RaiseDeleted()
{
    throw Error(errRecordDeleted, QStringLiteral("Record is deleted."));
}

void StoreRecordset::RaiseNotSupported()
{
    throw Error(errNotSupported, QStringLiteral("Operation is not supported for this type of object."));
}

void StoreRecordset::AddField(const engine::Column& column)
{
    auto field = std::make_unique<Field>(column.Name, column.Type, column.Size);
    field->SetAttributes(column.Attributes);
    field->SetAllowZeroLength(column.AllowZeroLength);
    Bind(*field, Fields_.Count());
    Fields_.Append(std::move(field));
}

void StoreRecordset::DropBuffer()
{
    Mode_ = EditMode::None;
    Buffer_.clear();
}

bool StoreRecordset::NoMatch() const
{
    Open();
    return NoMatch_;
}

QString StoreRecordset::Index() const
{
    Open();
    RaiseNotSupported();
}

void StoreRecordset::SetIndex(const QString&)
{
    Open();
    RaiseNotSupported();
}

void StoreRecordset::Seek(SeekComparison, std::initializer_list<QVariant>)
{
    Open();
    RaiseNotSupported();
}

void StoreRecordset::FindFirst(const QString&)
{
    Open();
    RaiseNotSupported();
}

void StoreRecordset::Close()
{
    if (!IsOpen_)
        return;
    DropBuffer();
    Release();
    IsOpen_ = false;
    Session_.reset();
}

void StoreRecordset::RequireUpdatable() const
{
    const engine::Store& store = Open();
    if (!EditedTable())
        RaiseNotSupported();
    if (!store.Updatable())
        throw Error(errReadOnly, QStringLiteral("Cannot update: the database is read only."));
}

void StoreRecordset::AddNew()
{
    RequireUpdatable();
    const engine::TablePtr table = EditedTable();
    std::vector<std::optional<StoredValue>> buffer(static_cast<std::size_t>(Fields_.Count()));
    for (int ordinal = 0; ordinal < Fields_.Count(); ++ordinal) {
        if (table->CounterColumn() >= 0 && EditedColumn(ordinal) == table->CounterColumn())
            buffer[static_cast<std::size_t>(ordinal)].emplace(Open().DrawCounter(table));
    }
    Buffer_ = std::move(buffer);
    Mode_ = EditMode::Adding;
}

void StoreRecordset::Edit()
{
    RequireUpdatable();
    const Row& row = RowForEdit();
    EditedId_ = row.Id;
    EditedVersion_ = row.Version;
    Buffer_.assign(static_cast<std::size_t>(Fields_.Count()), std::nullopt);
    Mode_ = EditMode::Editing;
}

void StoreRecordset::CancelUpdate()
{
    Open();
    if (Mode_ == EditMode::None)
        throw Error(errUpdateWithoutEdit, QStringLiteral("Update or CancelUpdate without AddNew or Edit."));
    DropBuffer();
}

void StoreRecordset::Update()
{
    engine::Store& store = Open();
    if (Mode_ == EditMode::None)
        throw Error(errUpdateWithoutEdit, QStringLiteral("Update or CancelUpdate without AddNew or Edit."));
    const engine::TablePtr table = EditedTable();
    std::vector<engine::Assignment> values;
    StoredValue counter;
    bool hasCounter = table->CounterColumn() < 0;
    for (int ordinal = 0; ordinal < Fields_.Count(); ++ordinal) {
        const auto& value = Buffer_[static_cast<std::size_t>(ordinal)];
        if (!value)
            continue;
        hasCounter = hasCounter || EditedColumn(ordinal) == table->CounterColumn();
        values.push_back({EditedColumn(ordinal), &*value});
    }
    if (Mode_ == EditMode::Editing) {
        store.Update(table, EditedId_, EditedVersion_, values);
        DropBuffer();
        RowWasChanged();
        return;
    }
    // A query that does not show the counter still needs one.
    if (!hasCounter) {
        counter = store.DrawCounter(table);
        values.push_back({table->CounterColumn(), &counter});
    }
    const qint64 id = store.Insert(table, values);
    DropBuffer();
    RowWasAdded(id);
}

const std::optional<StoredValue>* StoreRecordset::Buffered(int ordinal) const
{
    return Mode_ == EditMode::None ? nullptr : &Buffer_[static_cast<std::size_t>(ordinal)];
}

QVariant StoreRecordset::ValueOf(int ordinal) const
{
    Open();
    if (const auto* buffered = Buffered(ordinal)) {
        if (buffered->has_value())
            return FromStoredValue(**buffered, ColumnAt(ordinal).Type);
        if (Mode_ == EditMode::Adding)
            return {};
    }
    return StoredValueAt(ordinal);
}

std::optional<StoredValue>& StoreRecordset::BufferFor(int ordinal)
{
    Open();
    if (Mode_ == EditMode::None)
        throw Error(errUpdateWithoutEdit, QStringLiteral("Update or CancelUpdate without AddNew or Edit."));
    if (ColumnAt(ordinal).IsCounter()) {
        throw Error(errNotSupported,
                    QStringLiteral("The automatic counter '%1' cannot be changed.").arg(ColumnAt(ordinal).Name));
    }
    return Buffer_[static_cast<std::size_t>(ordinal)];
}

void StoreRecordset::SetValueOf(int ordinal, const QVariant& value)
{
    auto& buffered = BufferFor(ordinal);
    buffered = ToStoredValue(value, ColumnAt(ordinal));
}

engine::StoredMemo StoreRecordset::Accepted(const engine::StoredMemo& memo, int ordinal, MemoTrust trust) const
{
    if (!memo.HasRow)
        RaiseDeleted();
    if (memo.IsDamaged && trust == MemoTrust::Verified) {
        throw Error(errMemoDamaged, QStringLiteral("The content of the field '%1' is damaged: it was changed on the "
                                                   "disk since it was saved.")
                                        .arg(ColumnAt(ordinal).Name));
    }
    return memo;
}

engine::StoredMemo StoreRecordset::MemoOf(std::string_view utf8)
{
    // An empty text is not Null, and QByteArray tells the two apart by its pointer.
    QByteArray text =
        utf8.empty() ? QByteArrayLiteral("") : QByteArray(utf8.data(), static_cast<qsizetype>(utf8.size()));
    return {.HasRow = true, .IsDamaged = false, .Utf8 = std::move(text), .Octets = {}};
}

QVariant StoreRecordset::TextOf(const engine::StoredMemo& memo)
{
    if (!memo.Octets.isNull())
        return QString::fromLatin1(memo.Octets);
    const QByteArray& utf8 = memo.Utf8;
    return utf8.isNull() ? QVariant() : TextFromUtf8({utf8.constData(), static_cast<std::size_t>(utf8.size())});
}

QByteArray StoreRecordset::OctetsOf(int ordinal, MemoTrust trust) const
{
    Open();
    if (!ColumnAt(ordinal).IsMemo()) {
        const QVariant value = ValueOf(ordinal);
        return value.isValid() ? OctetsFromUtf8(TextToUtf8(value.toString())) : QByteArray();
    }
    if (const auto* buffered = Buffered(ordinal)) {
        if (buffered->has_value()) {
            const auto* text = std::get_if<QByteArray>(&**buffered);
            return text != nullptr ? OctetsFromUtf8(*text) : QByteArray();
        }
        if (Mode_ == EditMode::Adding)
            return {};
    }
    const engine::StoredMemo memo = StoredMemoAt(ordinal, trust);
    if (!memo.Octets.isNull())
        return memo.Octets;
    return trust == MemoTrust::AsStored ? OctetsFromAnything(memo.Utf8) : OctetsFromUtf8(memo.Utf8);
}

MemoBeginning StoreRecordset::StoredBeginningAt(int ordinal, qsizetype mostOctets) const
{
    return engine::BeginningOf(StoredMemoAt(ordinal, MemoTrust::AsStored), mostOctets);
}

MemoBeginning StoreRecordset::BeginningOf(int ordinal, qsizetype mostOctets) const
{
    Open();
    if (ColumnAt(ordinal).IsMemo() && Mode_ == EditMode::None)
        return StoredBeginningAt(ordinal, mostOctets);
    const QVariant value = ValueOf(ordinal);
    return value.isValid() ? engine::BeginningOf(MemoOf(TextToUtf8(value.toString()).toStdString()), mostOctets)
                           : MemoBeginning{{}, true};
}

quint64 StoreRecordset::HashOf(int ordinal) const
{
    const QVariant value = ValueOf(ordinal);
    return value.isValid() ? StableHash::Of(TextToUtf8(value.toString()).toStdString()) : 0;
}

void StoreRecordset::SetOctetsOf(int ordinal, const QByteArray& octets)
{
    auto& buffered = BufferFor(ordinal);
    const engine::Column& column = ColumnAt(ordinal);
    if (!column.IsMemo()) {
        buffered = ToStoredValue(octets.isNull() ? QVariant() : QString::fromLatin1(octets), column);
        return;
    }
    if (octets.isNull() || (octets.isEmpty() && !column.AllowZeroLength))
        buffered.emplace();
    else
        buffered.emplace(OctetsToUtf8(octets));
}

} // namespace dao
