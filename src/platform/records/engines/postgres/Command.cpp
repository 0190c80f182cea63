// SPDX-License-Identifier: Apache-2.0
#include "platform/records/engines/postgres/Command.h"

#include <QtEndian>

#include <bit>
#include <numeric>

namespace dao::postgres
{

namespace
{

template <typename Number>
void Append(std::string& octets, Number value)
{
    char text[sizeof(Number)];
    qToBigEndian(value, text);
    octets.append(text, sizeof text);
}

template <typename Number>
std::string OctetsOf(Number value)
{
    std::string octets;
    Append(octets, value);
    return octets;
}

} // namespace

void Parameters::AddPlace(Kind kind, std::string octets)
{
    Types_.push_back(static_cast<Oid>(kind));
    AreNull_.push_back(false);
    Octets_.push_back(std::move(octets));
}

void Parameters::AddInteger(qint64 value)
{
    AddPlace(Kind::Integer, OctetsOf(value));
}

void Parameters::AddReal(double value)
{
    AddPlace(Kind::Real, OctetsOf(std::bit_cast<quint64>(value)));
}

void Parameters::AddOctets(std::string_view octets)
{
    AddPlace(Kind::Octets, std::string(octets));
}

void Parameters::AddIntegers(std::span<const qint64> values)
{
    // The server's form of an array: dimensions, whether there are Nulls, the kind of the elements, and of each
    // dimension its size and lowest place.
    std::string octets;
    Append(octets, qint32{values.empty() ? 0 : 1});
    Append(octets, qint32{0});
    Append(octets, static_cast<quint32>(Kind::Integer));
    if (!values.empty()) {
        Append(octets, static_cast<qint32>(values.size()));
        Append(octets, qint32{1});
    }
    for (const qint64 value : values) {
        Append(octets, static_cast<qint32>(sizeof value));
        Append(octets, value);
    }
    AddPlace(Kind::Integers, std::move(octets));
}

void Parameters::AddNull(Kind kind)
{
    AddPlace(kind, {});
    AreNull_.back() = true;
}

void Parameters::Add(const StoredValue& value, Kind kind)
{
    if (const auto* whole = std::get_if<qint64>(&value)) {
        if (kind == Kind::Real)
            AddReal(static_cast<double>(*whole));
        else
            AddInteger(*whole);
    } else if (const auto* real = std::get_if<double>(&value)) {
        if (kind == Kind::Integer)
            AddInteger(static_cast<qint64>(*real));
        else
            AddReal(*real);
    } else if (const auto* text = std::get_if<QByteArray>(&value)) {
        AddOctets({text->constData(), static_cast<std::size_t>(text->size())});
    } else {
        AddNull(kind);
    }
}

void Parameters::Truncate(int count)
{
    const auto size = static_cast<std::size_t>(count);
    Types_.resize(size);
    AreNull_.resize(size);
    Octets_.resize(size);
}

qint64 Parameters::Octets() const
{
    return std::accumulate(Octets_.begin(), Octets_.end(), qint64{0},
                           [](qint64 sum, const std::string& octets) { return sum + std::ssize(octets); });
}

std::vector<const char*> Parameters::Values() const
{
    std::vector<const char*> values;
    values.reserve(Octets_.size());
    for (std::size_t i = 0; i < Octets_.size(); ++i)
        values.push_back(AreNull_[i] ? nullptr : Octets_[i].c_str());
    return values;
}

std::vector<int> Parameters::Lengths() const
{
    std::vector<int> lengths;
    lengths.reserve(Octets_.size());
    for (const std::string& octets : Octets_)
        lengths.push_back(static_cast<int>(octets.size()));
    return lengths;
}

qint64 Result::Integer(int row, int column) const
{
    // Whole numbers come in the size of their kind.
    const char* const octets = PQgetvalue(Result_.get(), row, column);
    switch (PQgetlength(Result_.get(), row, column)) {
    case 1:
        return *octets;
    case 2:
        return qFromBigEndian<qint16>(octets);
    case 4:
        return qFromBigEndian<qint32>(octets);
    default:
        return qFromBigEndian<qint64>(octets);
    }
}

double Result::Real(int row, int column) const
{
    return std::bit_cast<double>(qFromBigEndian<quint64>(PQgetvalue(Result_.get(), row, column)));
}

std::string_view Result::Octets(int row, int column) const
{
    return {PQgetvalue(Result_.get(), row, column), static_cast<std::size_t>(PQgetlength(Result_.get(), row, column))};
}

qint64 Result::ChangedRows() const
{
    return QByteArray(PQcmdTuples(Result_.get())).toLongLong();
}

} // namespace dao::postgres
