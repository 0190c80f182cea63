// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>

/// Pictures that came with a mail. They are a stranger's, so that only plain raster formats are read, and their
/// dimensions are judged before anything is decoded.
namespace PictureReader
{
constexpr qsizetype LargestFile = qsizetype{25} * 1024 * 1024;
constexpr qint64 MostPixels = 40'000'000; ///< In a picture, as its header says.

/// The pixels that the file says it has; 0 for what is no PNG, JPEG, GIF, BMP or WebP, or is too large.
qint64 Pixels(const QByteArray& octets);
/// The (first) picture in the file, made smaller when it is larger than any screen; null when it cannot be read.
QImage Read(const QByteArray& octets);
} // namespace PictureReader
