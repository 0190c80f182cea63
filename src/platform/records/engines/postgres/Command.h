// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/RowFormat.h"

#include <QByteArray>

#include <libpq-fe.h>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// A statement for the server with its values, and what comes back. All values travel in binary form.
namespace dao::postgres
{

/// The kinds of values that statements take, by the server's own numbers.
enum class Kind : Oid
{
    Octets = 17,
    Integer = 20,
    Real = 701,
    Integers = 1016
};

/// The values of a statement, $1 first.
class Parameters
{
public:
    void AddInteger(qint64 value);
    void AddReal(double value);
    void AddOctets(std::string_view octets);
    void AddIntegers(std::span<const qint64> values);
    void AddNull(Kind kind);
    /// A number is turned into the kind that the place takes.
    void Add(const StoredValue& value, Kind kind);

    /// Forgets all but the first ones.
    void Truncate(int count);
    int Count() const { return static_cast<int>(Types_.size()); }
    /// Of all values together.
    qint64 Octets() const;
    const std::vector<Oid>& Types() const { return Types_; }
    /// As libpq takes them; they live until the next Add.
    std::vector<const char*> Values() const;
    std::vector<int> Lengths() const;

private:
    void AddPlace(Kind kind, std::string octets);

    std::vector<Oid> Types_;
    std::vector<bool> AreNull_;
    std::vector<std::string> Octets_;
};

struct Command
{
    QByteArray Text;
    Parameters Values{};
    /// Worth being kept by the server: it will come again.
    bool IsPrepared = true;
};

class Result
{
public:
    explicit Result(PGresult* result) : Result_(result) {}

    PGresult* Get() const { return Result_.get(); }
    int Rows() const { return PQntuples(Result_.get()); }
    bool IsNull(int row, int column) const { return PQgetisnull(Result_.get(), row, column) != 0; }
    qint64 Integer(int row, int column) const;
    double Real(int row, int column) const;
    bool Truth(int row, int column) const { return *PQgetvalue(Result_.get(), row, column) != 0; }
    /// Lives as long as the result.
    std::string_view Octets(int row, int column) const;
    /// Of an UPDATE, INSERT or DELETE.
    qint64 ChangedRows() const;

private:
    struct Clear
    {
        void operator()(PGresult* result) const { PQclear(result); }
    };
    std::unique_ptr<PGresult, Clear> Result_;
};

} // namespace dao::postgres
