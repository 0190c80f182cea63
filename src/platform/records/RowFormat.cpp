// SPDX-License-Identifier: Apache-2.0
#include "platform/records/RowFormat.h"

#include <limits>

namespace dao
{

namespace
{

template <typename Number>
Number Take(const char*& at)
{
    Number value;
    std::memcpy(&value, at, sizeof(Number));
    at += sizeof(Number);
    return value;
}

template <typename Number>
bool Fits(qint64 value)
{
    return value >= std::numeric_limits<Number>::min() && value <= std::numeric_limits<Number>::max();
}

} // namespace

void RowPacker::AddInteger(qint64 value)
{
    if (Fits<qint8>(value))
        AddFixed(Tag::Integer8, static_cast<qint8>(value));
    else if (Fits<qint16>(value))
        AddFixed(Tag::Integer16, static_cast<qint16>(value));
    else if (Fits<qint32>(value))
        AddFixed(Tag::Integer32, static_cast<qint32>(value));
    else
        AddFixed(Tag::Integer64, value);
}

void RowPacker::AddText(std::string_view utf8)
{
    if (utf8.size() <= std::numeric_limits<quint8>::max())
        AddFixed(Tag::ShortText, static_cast<quint8>(utf8.size()));
    else
        AddFixed(Tag::Text, static_cast<quint32>(utf8.size()));
    Row_.append(utf8);
}

CellView RowReader::Next()
{
    using Tag = RowPacker::Tag;
    CellView cell;
    std::size_t length = 0;
    switch (static_cast<Tag>(*At_++)) {
    case Tag::Null:
        return cell;
    case Tag::Deferred:
        cell.CellKind = CellView::Kind::Deferred;
        return cell;
    case Tag::Integer8:
        cell.CellKind = CellView::Kind::Integer;
        // NOLINTNEXTLINE(bugprone-signed-char-misuse): a number, no character.
        cell.Integer = Take<qint8>(At_);
        return cell;
    case Tag::Integer16:
        cell.CellKind = CellView::Kind::Integer;
        cell.Integer = Take<qint16>(At_);
        return cell;
    case Tag::Integer32:
        cell.CellKind = CellView::Kind::Integer;
        cell.Integer = Take<qint32>(At_);
        return cell;
    case Tag::Integer64:
        cell.CellKind = CellView::Kind::Integer;
        cell.Integer = Take<qint64>(At_);
        return cell;
    case Tag::Real:
        cell.CellKind = CellView::Kind::Real;
        cell.Real = Take<double>(At_);
        return cell;
    case Tag::ShortText:
        length = Take<quint8>(At_);
        break;
    case Tag::Text:
        length = Take<quint32>(At_);
        break;
    }
    cell.CellKind = CellView::Kind::Text;
    cell.Text = {At_, length};
    At_ += length;
    return cell;
}

CellView RowReader::At(const char* row, int place)
{
    RowReader reader(row);
    for (int i = 0; i < place; ++i)
        reader.Next();
    return reader.Next();
}

} // namespace dao
