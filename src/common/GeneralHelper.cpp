// SPDX-License-Identifier: Apache-2.0
#include "common/GeneralHelper.h"

#include <QDir>

namespace
{
int debugMode = 0;
QString debugPath;

/// A value with the top bit names a system colour, whose parts only the screen knows.
int ColourByte(qint32 colour, int shift)
{
    return colour < 0 ? 0 : (colour >> shift) & 0xFF;
}
} // namespace

int GeneralHelper::DebugMode()
{
    return debugMode;
}

void GeneralHelper::SetDebugMode(int level)
{
    debugMode = level;
}

QString GeneralHelper::DebugPath()
{
    return debugPath;
}

void GeneralHelper::SetDebugPath(const QString& folder)
{
    debugPath = folder;
    if (!folder.isEmpty() && !folder.endsWith(u'/') && !folder.endsWith(QDir::separator()))
        debugPath += QDir::separator();
}

QString GeneralHelper::NextToken(const QString& text, qsizetype start, const QString& delimiter, qsizetype& next,
                                 bool trimLeft, bool trimRight)
{
    next = -1;
    if (start < 0 || start >= text.size())
        return {};
    const qsizetype end = delimiter.isEmpty() ? -1 : text.indexOf(delimiter, start);
    if (end >= 0)
        next = end + delimiter.size();
    QStringView token = QStringView(text).sliced(start, (end < 0 ? text.size() : end) - start);
    while (trimLeft && token.startsWith(u' '))
        token = token.sliced(1);
    while (trimRight && token.endsWith(u' '))
        token.chop(1);
    return token.toString();
}

int GeneralHelper::RedOf(qint32 colour)
{
    return ColourByte(colour, 0);
}

int GeneralHelper::GreenOf(qint32 colour)
{
    return ColourByte(colour, 8);
}

int GeneralHelper::BlueOf(qint32 colour)
{
    return ColourByte(colour, 16);
}

int GeneralHelper::FilterNumericKey(int key, int mode)
{
    const bool isEditing = key > 0 && key < ' ';
    const bool isDigit = key >= '0' && key <= '9';
    const bool isSignOrPoint = mode != 1 && (key == '-' || key == '.');
    return isEditing || isDigit || isSignOrPoint ? key : 0;
}

bool GeneralHelper::PointsAreClose(double x1, double y1, double x2, double y2, double distance)
{
    return qAbs(x1 - x2) <= distance && qAbs(y1 - y2) <= distance;
}

QString GeneralHelper::FitTextToWidth(const std::function<double(const QString&)>& measure, const QString& text,
                                      double width)
{
    if (measure(text) <= width)
        return text;
    const QString ellipsis(QChar(0x2026));
    const auto shortened = [&](qsizetype length) {
        if (length > 0 && text.at(length - 1).isHighSurrogate())
            --length;
        return text.left(length) + ellipsis;
    };
    qsizetype fitting = -1;
    qsizetype tooLong = text.size();
    while (tooLong - fitting > 1) {
        const qsizetype length = (fitting + tooLong) / 2;
        (measure(shortened(length)) <= width ? fitting : tooLong) = length;
    }
    return fitting < 0 ? QString() : shortened(fitting);
}

qint64 GeneralHelper::Limit(qint64 value, qint64 lowest, qint64 highest)
{
    return qMax(lowest, qMin(value, highest));
}

qint64 GeneralHelper::Maximum(qint64 a, qint64 b)
{
    return qMax(a, b);
}
