// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/PictureReader.h"

#include <QBuffer>
#include <QImageReader>

namespace
{
constexpr int LongestSide = 3000;

bool IsRaster(const QByteArray& format)
{
    for (const char* name : {"png", "jpeg", "jpg", "gif", "bmp", "webp"}) {
        if (format == name)
            return true;
    }
    return false;
}

/// The size that the header gives; invalid for what is not to be read.
QSize SafeSize(QImageReader* reader, const QByteArray& octets)
{
    if (octets.isEmpty() || octets.size() > PictureReader::LargestFile || !IsRaster(reader->format()))
        return {};
    const QSize size = reader->size();
    const bool isSane =
        size.isValid() && !size.isEmpty() && qint64{size.width()} * size.height() <= PictureReader::MostPixels;
    return isSane ? size : QSize();
}
} // namespace

qint64 PictureReader::Pixels(const QByteArray& octets)
{
    QBuffer buffer;
    buffer.setData(octets);
    QImageReader reader(&buffer);
    const QSize size = SafeSize(&reader, octets);
    return size.isValid() ? qint64{size.width()} * size.height() : 0;
}

QImage PictureReader::Read(const QByteArray& octets)
{
    QBuffer buffer;
    buffer.setData(octets);
    QImageReader reader(&buffer);
    const QSize size = SafeSize(&reader, octets);
    if (!size.isValid())
        return {};
    if (size.width() > LongestSide || size.height() > LongestSide)
        reader.setScaledSize(size.scaled(LongestSide, LongestSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    reader.setAutoTransform(true);
    return reader.read();
}
