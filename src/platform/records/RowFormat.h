// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <cstring>
#include <string>
#include <string_view>
#include <variant>

/// Rows as engines hand them over: the cells of one row packed one behind the other, a tag octet and the value in as
/// few octets as it needs. A hundred thousand rows of a list take a few dozen octets each this way, where a QVariant a
/// cell would take ten times that.
namespace dao
{

/// A value as it is stored. Text is UTF-8.
using StoredValue = std::variant<std::monostate, qint64, double, QByteArray>;

/// A cell read in place; Text points into the row.
struct CellView
{
    enum class Kind
    {
        Null,
        Integer,
        Real,
        Text,
        Deferred ///< A memo that was not read with its row.
    };
    Kind CellKind = Kind::Null;
    qint64 Integer = 0;
    double Real = 0;
    std::string_view Text;
};

/// Appends cells to a row.
class RowPacker
{
public:
    explicit RowPacker(std::string& row) : Row_(row) {}

    void AddNull() { Row_.push_back(static_cast<char>(Tag::Null)); }
    void AddDeferred() { Row_.push_back(static_cast<char>(Tag::Deferred)); }
    void AddInteger(qint64 value);
    void AddReal(double value) { AddFixed(Tag::Real, value); }
    void AddText(std::string_view utf8);

private:
    friend class RowReader;
    enum class Tag : char
    {
        Null,
        Integer8,
        Integer16,
        Integer32,
        Integer64,
        Real,
        ShortText, ///< Length in one octet.
        Text,      ///< Length in four octets.
        Deferred
    };

    template <typename Number>
    void AddFixed(Tag tag, Number value)
    {
        char octets[1 + sizeof(Number)];
        octets[0] = static_cast<char>(tag);
        std::memcpy(octets + 1, &value, sizeof(Number));
        Row_.append(octets, sizeof(octets));
    }

    std::string& Row_;
};

/// Walks the cells of a packed row.
class RowReader
{
public:
    explicit RowReader(const char* row) : At_(row) {}

    CellView Next();
    /// The cell at a place counted from 0.
    static CellView At(const char* row, int place);
    const char* Position() const { return At_; }

private:
    const char* At_;
};

/// One row of a table. Version differs after every change of the row, and between a row and another that
/// later takes its Id.
struct Row
{
    qint64 Id = 0;
    qint64 Version = 0;
    std::string Cells;
};

} // namespace dao
