// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/sqlite/SqlFunctions.h"

#include "platform/records/Types.h"
#include "platform/records/engines/sqlite/MemoCheck.h"
#include "platform/records/jetsql/CaseFolding.h"

#include <sqlite3.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

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

/// The text form of a number in a buffer of its own. Fifteen digits, so that 0.1 is "0.1" and 5.0 is "5".
class NumberText
{
public:
    explicit NumberText(sqlite3_value* value)
    {
        char* const end = Buffer_ + sizeof Buffer_;
        const std::to_chars_result result =
            sqlite3_value_type(value) == SQLITE_INTEGER
                ? std::to_chars(Buffer_, end, sqlite3_value_int64(value))
                : std::to_chars(Buffer_, end, sqlite3_value_double(value), std::chars_format::general, 15);
        Size_ = static_cast<std::size_t>(result.ptr - Buffer_);
    }
    std::string_view View() const { return {Buffer_, Size_}; }

private:
    char Buffer_[40];
    std::size_t Size_ = 0;
};

bool IsNumber(sqlite3_value* value)
{
    const int type = sqlite3_value_type(value);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

/// Runs a function's body; no exception may pass through SQLite.
template <typename Body>
void Guarded(sqlite3_context* context, Body body) noexcept
{
    try {
        body();
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    } catch (const std::exception& problem) {
        sqlite3_result_error(context, problem.what(), -1);
    }
}

void DeletePattern(void* pattern)
{
    delete static_cast<SharedPattern*>(pattern);
}

QString ToUtf16(std::string_view text)
{
    QString result;
    result.reserve(static_cast<qsizetype>(text.size()));
    for (jetsql::Utf8Reader reader(text); !reader.AtEnd();) {
        const char32_t character = reader.Next();
        if (character >= jetsql::firstInvalid)
            result.append(QChar::ReplacementCharacter);
        else if (character > 0xFFFF)
            result.append(QChar::highSurrogate(character)).append(QChar::lowSurrogate(character));
        else
            result.append(QChar(static_cast<char16_t>(character)));
    }
    return result;
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
    const QString text = IsNumber(argument) ? ToUtf16(NumberText(argument).View()) : ToUtf16(OctetsOf(argument));
    auto compiled = std::make_unique<SharedPattern>(std::make_shared<const jetsql::LikePattern>(text));
    const jetsql::LikePattern* result = compiled->get();
    sqlite3_set_auxdata(context, 0, compiled.release(), DeletePattern);
    // SQLite may drop what it is given at once when memory is short.
    return sqlite3_get_auxdata(context, 0) == nullptr ? nullptr : result;
}

enum class Truth
{
    False,
    True,
    Unknown
};

Truth IsLike(const jetsql::LikePattern& pattern, sqlite3_value* text)
{
    switch (sqlite3_value_type(text)) {
    case SQLITE_NULL:
        return Truth::Unknown;
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
        return pattern.MatchesUtf8(NumberText(text).View()) ? Truth::True : Truth::False;
    default:
        return pattern.MatchesUtf8(OctetsOf(text)) ? Truth::True : Truth::False;
    }
}

void Like(sqlite3_context* context, int count, sqlite3_value** arguments)
{
    Guarded(context, [&] {
        const jetsql::LikePattern* const pattern = PatternOf(context, arguments[0]);
        if (pattern == nullptr)
            return;
        Truth result = Truth::False;
        for (int i = 1; i < count && result != Truth::True; ++i) {
            const Truth one = IsLike(*pattern, arguments[i]);
            if (one != Truth::False)
                result = one;
        }
        if (result != Truth::Unknown)
            sqlite3_result_int(context, result == Truth::True ? 1 : 0);
    });
}

void Text(sqlite3_context* context, int, sqlite3_value** arguments)
{
    if (!IsNumber(arguments[0])) {
        sqlite3_result_value(context, arguments[0]);
        return;
    }
    const NumberText number(arguments[0]);
    sqlite3_result_text(context, number.View().data(), static_cast<int>(number.View().size()), SQLITE_TRANSIENT);
}

/// jet_concatenate(left, right): Null counts as the empty text unless both are.
void Concatenate(sqlite3_context* context, int, sqlite3_value** arguments)
{
    Guarded(context, [&] {
        std::string joined;
        bool isNull = true;
        for (sqlite3_value* const value : {arguments[0], arguments[1]}) {
            if (sqlite3_value_type(value) == SQLITE_NULL)
                continue;
            isNull = false;
            if (IsNumber(value))
                joined += NumberText(value).View();
            else
                joined += OctetsOf(value);
        }
        if (!isNull)
            sqlite3_result_text64(context, joined.data(), joined.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    });
}

void Refuse(sqlite3_context* context, ErrorNumber number, const char* description)
{
    const std::string message = errorMark + std::to_string(static_cast<int>(number)) + ": " + description;
    sqlite3_result_error(context, message.c_str(), static_cast<int>(message.size()));
}

/// Whole numbers as a column of the type holds them; rounding goes to the even neighbour.
void StoreWhole(sqlite3_context* context, double value, double lowest, double highest)
{
    const double rounded = std::nearbyint(value);
    if (!(rounded >= lowest && rounded <= highest)) {
        Refuse(context, errOverflow, "The number is too large for the field.");
        return;
    }
    sqlite3_result_int64(context, static_cast<sqlite3_int64>(rounded));
}

void StoreNumber(sqlite3_context* context, double value, int type)
{
    switch (type) {
    case dbBoolean:
        sqlite3_result_int(context, value != 0 ? -1 : 0);
        return;
    case dbByte:
        StoreWhole(context, value, 0, 255);
        return;
    case dbInteger:
        StoreWhole(context, value, std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max());
        return;
    case dbLong:
        StoreWhole(context, value, std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max());
        return;
    case dbSingle:
        if (std::isfinite(value) && std::abs(value) > static_cast<double>(std::numeric_limits<float>::max()))
            Refuse(context, errOverflow, "The number is too large for the field.");
        else
            sqlite3_result_double(context, static_cast<double>(static_cast<float>(value)));
        return;
    default:
        sqlite3_result_double(context, value);
        return;
    }
}

std::optional<double> NumberIn(std::string_view text)
{
    const auto isBlank = [](char octet) { return octet == ' ' || (octet >= '\t' && octet <= '\r'); };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    double number = 0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() || !std::isfinite(number))
        return std::nullopt;
    return number;
}

qsizetype Utf16Size(std::string_view text)
{
    qsizetype units = 0;
    for (jetsql::Utf8Reader reader(text); !reader.AtEnd(); ++units) {
        const char32_t character = reader.Next();
        units += character > 0xFFFF && character < jetsql::firstInvalid ? 1 : 0;
    }
    return units;
}

void StoreText(sqlite3_context* context, std::string_view text, int type, int size, bool allowZeroLength)
{
    if (text.empty() && !allowZeroLength)
        return;
    if (type == dbText && size > 0 && Utf16Size(text) > size) {
        Refuse(context, errFieldTooSmall, "The text is too long for the field.");
        return;
    }
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

/// jet_store(value, type, size, allow zero length)
void Store(sqlite3_context* context, int, sqlite3_value** arguments)
{
    Guarded(context, [&] {
        sqlite3_value* const value = arguments[0];
        const int type = sqlite3_value_int(arguments[1]);
        if (sqlite3_value_type(value) == SQLITE_NULL)
            return;
        if (type == dbText || type == dbMemo) {
            const int size = sqlite3_value_int(arguments[2]);
            const bool allowZeroLength = sqlite3_value_int(arguments[3]) != 0;
            if (IsNumber(value))
                StoreText(context, NumberText(value).View(), type, size, allowZeroLength);
            else
                StoreText(context, OctetsOf(value), type, size, allowZeroLength);
        } else if (IsNumber(value)) {
            StoreNumber(context, sqlite3_value_double(value), type);
        } else if (const std::optional<double> number = NumberIn(OctetsOf(value))) {
            StoreNumber(context, *number, type);
        } else {
            Refuse(context, errDataTypeConversion, "The text cannot be converted to the field's type.");
        }
    });
}

/// jet_check(memo, row id)
void Check(sqlite3_context* context, int, sqlite3_value** arguments)
{
    Guarded(context, [&] {
        if (sqlite3_value_type(arguments[0]) != SQLITE_NULL)
            sqlite3_result_int64(context, MemoCheck(sqlite3_value_int64(arguments[1]), OctetsOf(arguments[0])));
    });
}

int Collate(void*, int leftSize, const void* left, int rightSize, const void* right)
{
    return CompareText({static_cast<const char*>(left), static_cast<std::size_t>(leftSize)},
                       {static_cast<const char*>(right), static_cast<std::size_t>(rightSize)});
}
} // namespace

int CompareText(std::string_view left, std::string_view right)
{
    const std::size_t common = std::min(left.size(), right.size());
    std::size_t same = 0;
    for (; same < common; ++same) {
        const unsigned char leftOctet = static_cast<unsigned char>(left[same]);
        const unsigned char rightOctet = static_cast<unsigned char>(right[same]);
        if ((leftOctet | rightOctet) >= 0x80)
            break;
        const int difference = jetsql::FoldAscii(leftOctet) - jetsql::FoldAscii(rightOctet);
        if (difference != 0)
            return difference;
    }
    jetsql::Utf8Reader leftReader(left.substr(same));
    jetsql::Utf8Reader rightReader(right.substr(same));
    while (!leftReader.AtEnd() && !rightReader.AtEnd()) {
        const char32_t leftCharacter = jetsql::Fold(leftReader.Next());
        const char32_t rightCharacter = jetsql::Fold(rightReader.Next());
        if (leftCharacter != rightCharacter)
            return leftCharacter < rightCharacter ? -1 : 1;
    }
    return static_cast<int>(rightReader.AtEnd()) - static_cast<int>(leftReader.AtEnd());
}

void RegisterSqlFunctions(sqlite3* connection)
{
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    int result = sqlite3_create_collation_v2(connection, CollationName, SQLITE_UTF8, nullptr, Collate, nullptr);
    if (result == SQLITE_OK)
        result =
            sqlite3_create_function_v2(connection, "jet_like", -1, flags, nullptr, Like, nullptr, nullptr, nullptr);
    if (result == SQLITE_OK)
        result = sqlite3_create_function_v2(connection, "jet_text", 1, flags, nullptr, Text, nullptr, nullptr, nullptr);
    if (result == SQLITE_OK)
        result = sqlite3_create_function_v2(connection, "jet_concatenate", 2, flags, nullptr, Concatenate, nullptr,
                                            nullptr, nullptr);
    if (result == SQLITE_OK)
        result =
            sqlite3_create_function_v2(connection, "jet_store", 4, flags, nullptr, Store, nullptr, nullptr, nullptr);
    if (result == SQLITE_OK)
        result =
            sqlite3_create_function_v2(connection, "jet_check", 2, flags, nullptr, Check, nullptr, nullptr, nullptr);
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
