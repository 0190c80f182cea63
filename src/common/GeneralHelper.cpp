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

qint64 GeneralHelper::Limit(qint64 value, qint64 lowest, qint64 highest)
{
    return qMax(lowest, qMin(value, highest));
}

qint64 GeneralHelper::Maximum(qint64 a, qint64 b)
{
    return qMax(a, b);
}
