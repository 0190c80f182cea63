// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

#include <gmime/gmime.h>

#include <memory>

/// GMime in C++ terms: owners for what it hands out, its options, and streams over octets that are not copied.
/// For the sources of this folder only.
namespace cdo
{

struct ObjectRelease
{
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Type>
using ObjectPointer = std::unique_ptr<Type, ObjectRelease>;

struct TextRelease
{
    void operator()(char* text) const { g_free(text); }
};
using TextPointer = std::unique_ptr<char, TextRelease>;

struct DateRelease
{
    void operator()(GDateTime* date) const { g_date_time_unref(date); }
};
using DatePointer = std::unique_ptr<GDateTime, DateRelease>;

/// The options under which all mail is read; the first call initialises GMime, from whatever thread it comes. Mail is
/// read loosely, an address needs no domain (a phone number, a sender's name), and 8-bit text without a name is UTF-8
/// or else windows-1252. Valid for the life of the process.
GMimeParserOptions* ParserOptions();

/// The same for writing: line ends are "\n".
GMimeFormatOptions* FormatOptions();

/// A seekable stream over octets that stay where they are: neither it nor the streams that GMime cuts from it copy
/// them. The octets, and this object, must outlive those streams.
class OctetStream
{
public:
    explicit OctetStream(QByteArrayView octets);
    OctetStream(const OctetStream&) = delete;
    OctetStream& operator=(const OctetStream&) = delete;

    GMimeStream* Stream() const { return Stream_.get(); }

private:
    GByteArray Bytes_;
    ObjectPointer<GMimeStream> Stream_;
};

/// Everything that comes out of octets when the filter has been at them.
QByteArray Filtered(QByteArrayView octets, GMimeFilter* filter);

/// How many octets Filtered() would give, without keeping them.
qint64 FilteredSize(QByteArrayView octets, GMimeFilter* filter);

} // namespace cdo
