// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/GMimeSupport.h"

#include <array>
#include <limits>

namespace cdo
{

namespace
{

GMimeParserOptions* MakeParserOptions()
{
    g_mime_init();
    GMimeParserOptions* options = g_mime_parser_options_new();
    std::array<const char*, 3> characterSets = {"utf-8", "windows-1252", nullptr};
    g_mime_parser_options_set_fallback_charsets(options, characterSets.data());
    g_mime_parser_options_set_allow_addresses_without_domain(options, TRUE);
    return options;
}

GMimeFormatOptions* MakeFormatOptions()
{
    ParserOptions();
    GMimeFormatOptions* options = g_mime_format_options_new();
    g_mime_format_options_set_newline_format(options, GMIME_NEWLINE_FORMAT_UNIX);
    return options;
}

/// Hands the filter's output over in pieces, so that a large part needs no second buffer of its size.
template <typename Take>
void ForEachFilteredPiece(QByteArrayView octets, GMimeFilter* filter, Take take)
{
    const OctetStream source(octets);
    const ObjectPointer<GMimeStream> stream(g_mime_stream_filter_new(source.Stream()));
    g_mime_stream_filter_add(GMIME_STREAM_FILTER(stream.get()), filter);
    std::array<char, 16384> piece;
    while (true) {
        const ssize_t length = g_mime_stream_read(stream.get(), piece.data(), piece.size());
        if (length > 0)
            take(QByteArrayView(piece.data(), length));
        else if (length < 0 || g_mime_stream_eos(stream.get()))
            break;
    }
}

} // namespace

GMimeParserOptions* ParserOptions()
{
    static GMimeParserOptions* const options = MakeParserOptions();
    return options;
}

GMimeFormatOptions* FormatOptions()
{
    static GMimeFormatOptions* const options = MakeFormatOptions();
    return options;
}

// GMime's memory stream only reads here, hence the cast; it counts octets in 32 bits, and what lies beyond is not read.
OctetStream::OctetStream(QByteArrayView octets)
    : Bytes_{reinterpret_cast<guint8*>(const_cast<char*>(octets.data())),
             static_cast<guint>(qMin<qint64>(octets.size(), std::numeric_limits<guint>::max()))}
{
    ParserOptions();
    Stream_.reset(g_mime_stream_mem_new_with_byte_array(&Bytes_));
    g_mime_stream_mem_set_owner(GMIME_STREAM_MEM(Stream_.get()), FALSE);
}

QByteArray Filtered(QByteArrayView octets, GMimeFilter* filter)
{
    QByteArray result;
    ForEachFilteredPiece(octets, filter, [&result](QByteArrayView piece) { result.append(piece); });
    return result;
}

qint64 FilteredSize(QByteArrayView octets, GMimeFilter* filter)
{
    qint64 size = 0;
    ForEachFilteredPiece(octets, filter, [&size](QByteArrayView piece) { size += piece.size(); });
    return size;
}

} // namespace cdo
