// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QtEndian>

#include <exception>

namespace dao::jet
{

/// What is wrong with a file's content, in words that stand behind "The database is damaged: ". Whoever knows the file
/// makes an error or a finding of it; it never leaves the engine.
class Fault : public std::exception
{
public:
    explicit Fault(const QString& what) : Words_(what), What_(what.toUtf8()) {}

    const QString& Words() const { return Words_; }
    const char* what() const noexcept override { return What_.constData(); }

private:
    QString Words_;
    QByteArray What_;
};

/// Octets out of a file, which must live longer. Numbers in them are little-endian. Whatever lies outside is a Fault,
/// so that no read of a damaged page goes astray.
class OctetView
{
public:
    OctetView() = default;
    OctetView(const char* data, qsizetype size) : Data_(data), Size_(size) {}
    explicit OctetView(const QByteArray& octets) : Data_(octets.constData()), Size_(octets.size()) {}

    const char* Data() const { return Data_; }
    qsizetype Size() const { return Size_; }

    OctetView Part(qsizetype at, qsizetype size) const
    {
        Require(at, size);
        return {Data_ + at, size};
    }
    OctetView From(qsizetype at) const { return Part(at, Size_ - at); }
    template <typename Number>
    Number Read(qsizetype at) const
    {
        Require(at, static_cast<qsizetype>(sizeof(Number)));
        return qFromLittleEndian<Number>(Data_ + at);
    }
    quint8 U8(qsizetype at) const { return Read<quint8>(at); }
    quint16 U16(qsizetype at) const { return Read<quint16>(at); }
    quint32 U32(qsizetype at) const { return Read<quint32>(at); }
    QByteArray Copy() const { return {Data_, Size_}; }

private:
    void Require(qsizetype at, qsizetype size) const
    {
        if (at < 0 || size < 0 || at > Size_ || size > Size_ - at)
            throw Fault(QStringLiteral("a place outside of what is stored is named"));
    }

    const char* Data_ = nullptr;
    qsizetype Size_ = 0;
};

/// Writes a number little-endian among octets that are there, or behind them.
template <typename Number>
void Put(QByteArray& octets, qsizetype at, Number number)
{
    qToLittleEndian(number, octets.data() + at);
}
template <typename Number>
void Append(QByteArray& octets, Number number)
{
    octets.resize(octets.size() + static_cast<qsizetype>(sizeof(Number)));
    Put(octets, octets.size() - static_cast<qsizetype>(sizeof(Number)), number);
}

/// Where a row stands: what the format calls a pointer.
struct RowPlace
{
    quint32 Page = 0;
    quint8 Row = 0;

    static RowPlace FromPointer(quint32 pointer) { return {pointer >> 8, static_cast<quint8>(pointer & 0xFF)}; }
    quint32 Pointer() const { return Page << 8 | Row; }
    bool operator==(const RowPlace&) const = default;
    auto operator<=>(const RowPlace&) const = default;
};

} // namespace dao::jet
