// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/SqlFunctions.h"

#include "platform/records/RowMark.h"
#include "platform/records/TextCodec.h"
#include "platform/records/engines/MemoCheck.h"
#include "platform/records/query/Arithmetic.h"
#include "platform/records/query/StoredValues.h"

#include <sqlite3.h>

#include <charconv>
#include <cstring>

namespace dao::sqlite
{
namespace
{
constexpr char patternType[] = "dao LIKE pattern";
constexpr char errorMark[] = "dao error ";

using SharedPattern = std::shared_ptr<const jetsql::LikePattern>;

std::string_view OctetsOf(sqlite3_value* value)
{
    const char* octets = static_cast<const char*>(sqlite3_value_blob(value));
    return {octets == nullptr ? "" : octets, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

/// A view of the octets, which live as long as the call.
StoredValue ViewOf(sqlite3_value* value)
{
    switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_INTEGER:
        return static_cast<qint64>(sqlite3_value_int64(value));
    case SQLITE_FLOAT:
        return sqlite3_value_double(value);
    default:
        return query::TextView(OctetsOf(value));
    }
}

/// The same as a cell of a row.
CellView CellIn(sqlite3_value* value)
{
    switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_INTEGER:
        return {CellView::Kind::Integer, sqlite3_value_int64(value), 0, {}};
    case SQLITE_FLOAT:
        return {CellView::Kind::Real, 0, sqlite3_value_double(value), {}};
    default:
        return {CellView::Kind::Text, 0, 0, OctetsOf(value)};
    }
}

void Answer(sqlite3_context* context, const StoredValue& value)
{
    if (const auto* whole = std::get_if<qint64>(&value))
        sqlite3_result_int64(context, *whole);
    else if (const auto* real = std::get_if<double>(&value))
        sqlite3_result_double(context, *real);
    else if (const auto* text = std::get_if<QByteArray>(&value))
        sqlite3_result_text64(context, text->constData(), static_cast<sqlite3_uint64>(text->size()), SQLITE_TRANSIENT,
                              SQLITE_UTF8);
}

/// Runs a function's body; no exception may pass through SQLite.
template <typename Body>
void Guarded(sqlite3_context* context, Body body) noexcept
{
    try {
        body();
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    } catch (const Error& error) {
        const QByteArray message = errorMark + QByteArray::number(error.Number()) + ": " + error.Description().toUtf8();
        sqlite3_result_error(context, message.constData(), static_cast<int>(message.size()));
    } catch (const std::exception& problem) {
        sqlite3_result_error(context, problem.what(), -1);
    }
}

void DeletePattern(void* pattern)
{
    delete static_cast<SharedPattern*>(pattern);
}

/// The pattern of a jet_like call: bound, kept from an earlier row, or compiled and kept while the argument stays.
const jetsql::LikePattern* PatternOf(sqlite3_context* context, sqlite3_value* argument)
{
    if (const void* bound = sqlite3_value_pointer(argument, patternType))
        return static_cast<const SharedPattern*>(bound)->get();
    if (sqlite3_value_type(argument) == SQLITE_NULL)
        return nullptr;
    if (const void* kept = sqlite3_get_auxdata(context, 0))
        return static_cast<const SharedPattern*>(kept)->get();
    const StoredValue text = query::AsText(ViewOf(argument));
    auto compiled =
        std::make_unique<SharedPattern>(std::make_shared<const jetsql::LikePattern>(TextFromUtf8(query::TextIn(text))));
    const jetsql::LikePattern* result = compiled->get();
    sqlite3_set_auxdata(context, 0, compiled.release(), DeletePattern);
    // SQLite may drop what it is given at once when memory is short.
    return sqlite3_get_auxdata(context, 0) == nullptr ? nullptr : result;
}

void Like(sqlite3_context* context, int count, sqlite3_value** arguments)
{
    Guarded(context, [&] {
        const jetsql::LikePattern* const pattern = PatternOf(context, arguments[0]);
        if (pattern == nullptr)
            return;
        bool isUnknown = false;
        for (int i = 1; i < count; ++i) {
            const std::optional<bool> meets = query::IsLike(*pattern, ViewOf(arguments[i]));
            if (meets == true) {
                sqlite3_result_int(context, 1);
                return;
            }
            isUnknown = isUnknown || !meets;
        }
        if (!isUnknown)
            sqlite3_result_int(context, 0);
    });
}

/// jet_concatenate(left, right): Null counts as the empty text unless both are.
void Concatenate(sqlite3_context* context, int, sqlite3_value** arguments)
{
    Guarded(context, [&] { Answer(context, query::Concatenation(ViewOf(arguments[0]), ViewOf(arguments[1]))); });
}

/// jet_store(value, type, size, allow zero length)
void Store(sqlite3_context* context, int, sqlite3_value** arguments)
{
    Guarded(context, [&] {
        engine::Column column;
        column.Type = static_cast<DataTypeEnum>(sqlite3_value_int(arguments[1]));
        column.Size = sqlite3_value_int(arguments[2]);
        column.AllowZeroLength = sqlite3_value_int(arguments[3]) != 0;
        Answer(context, query::AsHeldBy(column, ViewOf(arguments[0])));
    });
}

/// jet_check(memo, row id)
void Check(sqlite3_context* context, int, sqlite3_value** arguments)
{
    Guarded(context, [&] {
        if (sqlite3_value_type(arguments[0]) != SQLITE_NULL)
            sqlite3_result_int64(context, engine::MemoCheck(sqlite3_value_int64(arguments[1]), OctetsOf(arguments[0])));
    });
}

/// jet_mark(value...)
void Mark(sqlite3_context* context, int count, sqlite3_value** arguments)
{
    RowMark mark;
    for (int i = 0; i < count; ++i)
        mark.Add(HashOf(CellIn(arguments[i])));
    sqlite3_result_int64(context, static_cast<sqlite3_int64>(mark.Number()));
}

int Collate(void*, int leftSize, const void* left, int rightSize, const void* right)
{
    return query::CompareText({static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                              {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}
} // namespace

void RegisterSqlFunctions(sqlite3* connection)
{
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    int result = sqlite3_create_collation_v2(connection, CollationName, SQLITE_UTF8, nullptr, Collate, nullptr);
    if (result == SQLITE_OK)
        result =
            sqlite3_create_function_v2(connection, "jet_like", -1, flags, nullptr, Like, nullptr, nullptr, nullptr);
    if (result == SQLITE_OK)
        result = sqlite3_create_function_v2(connection, "jet_concatenate", 2, flags, nullptr, Concatenate, nullptr,
                                            nullptr, nullptr);
    if (result == SQLITE_OK)
        result =
            sqlite3_create_function_v2(connection, "jet_store", 4, flags, nullptr, Store, nullptr, nullptr, nullptr);
    if (result == SQLITE_OK)
        result =
            sqlite3_create_function_v2(connection, "jet_check", 2, flags, nullptr, Check, nullptr, nullptr, nullptr);
    if (result == SQLITE_OK)
        result =
            sqlite3_create_function_v2(connection, "jet_mark", -1, flags, nullptr, Mark, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
        throw Error(errFileDamaged, QString::fromUtf8(sqlite3_errmsg(connection)));
}

int BindLikePattern(sqlite3_stmt* statement, int index, std::shared_ptr<const jetsql::LikePattern> pattern)
{
    // SQLite calls the deleter also when binding fails.
    return sqlite3_bind_pointer(statement, index, new SharedPattern(std::move(pattern)), patternType, DeletePattern);
}

std::optional<Error> StoredValueError(const char* message)
{
    if (message == nullptr || std::strncmp(message, errorMark, sizeof errorMark - 1) != 0)
        return std::nullopt;
    const char* const digits = message + sizeof errorMark - 1;
    const char* const end = digits + std::strlen(digits);
    int number = 0;
    const std::from_chars_result result = std::from_chars(digits, end, number);
    if (result.ec != std::errc() || std::strncmp(result.ptr, ": ", 2) != 0)
        return std::nullopt;
    return Error(number, QString::fromUtf8(result.ptr + 2));
}

} // namespace dao::sqlite
