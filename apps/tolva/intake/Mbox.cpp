// SPDX-License-Identifier: Apache-2.0
#include "intake/Mbox.h"

#include <QByteArrayView>

#include <cctype>
#include <cstring>

namespace
{
constexpr qint64 PieceSize = qint64{64} * 1024;
constexpr QByteArrayView FromWord = "From ";

/// The position behind one of seven or twelve names of three letters, -1 when none stands at position.
template <std::size_t Count>
qsizetype BehindName(QByteArrayView line, qsizetype position, const char (&names)[Count])
{
    if (position + 3 > line.size())
        return -1;
    for (std::size_t i = 0; i + 3 < Count; i += 3) {
        if (std::memcmp(line.data() + position, names + i, 3) == 0)
            return position + 3;
    }
    return -1;
}

/// "Mon Nov  9 18:30" or "Mon, 9 Nov 2026 18:30": a week day, and behind it a month and a time of day.
bool HoldsDate(QByteArrayView line)
{
    qsizetype weekDay = -1;
    for (qsizetype i = 4; i + 3 < line.size() && weekDay < 0; ++i) {
        if (line.at(i) == ' ')
            weekDay = BehindName(line, i + 1, "MonTueWedThuFriSatSun");
    }
    if (weekDay < 0)
        return false;
    bool hasMonth = false;
    for (qsizetype i = weekDay; i < line.size(); ++i) {
        if (line.at(i) == ' ' && BehindName(line, i + 1, "JanFebMarAprMayJunJulAugSepOctNovDec") > 0)
            hasMonth = true;
        const bool isTime = line.at(i) == ':' && i + 2 < line.size() && std::isdigit(uchar(line.at(i - 1))) != 0 &&
                            std::isdigit(uchar(line.at(i + 1))) != 0 && std::isdigit(uchar(line.at(i + 2))) != 0;
        if (isTime && hasMonth)
            return true;
    }
    return false;
}

/// The length of the ">" of a quoted "From " line, 0 when the line is none.
qint64 QuoteLength(const char* line, qint64 length)
{
    qint64 marks = 0;
    while (marks < length && line[marks] == '>')
        ++marks;
    return marks > 0 && QByteArrayView(line + marks, length - marks).startsWith(FromWord) ? marks : 0;
}

/// The blank line that stands before each separator and at the end of the archive.
void RemoveClosingBlankLine(QByteArray& octets)
{
    if (octets.endsWith("\n\r\n"))
        octets.chop(2);
    else if (octets.endsWith("\n\n") || octets == "\n")
        octets.chop(1);
}
} // namespace

bool IsMboxSeparator(const char* line, qint64 length)
{
    const QByteArrayView text(line, length);
    return text.startsWith(FromWord) && HoldsDate(text);
}

bool IsMboxFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray line = file.readLine(PieceSize);
    return IsMboxSeparator(line.constData(), line.size());
}

MboxReader::MboxReader(QFile& file) : File_(file), Buffer_(PieceSize, Qt::Uninitialized) {}

bool MboxReader::ReadPiece()
{
    StartsLine_ = Length_ == 0 || Buffer_.at(Length_ - 1) == '\n';
    // One octet stays free for the terminating zero.
    const qint64 count = File_.readLine(Buffer_.data(), Buffer_.size());
    if (count <= 0) {
        HasFailed_ = File_.error() != QFileDevice::NoError;
        return false;
    }
    Length_ = count;
    return true;
}

bool MboxReader::Next(QByteArray& octets)
{
    octets = QByteArray();
    if (HasFailed_)
        return false;
    if (!HasSeparator_) {
        do {
            if (!ReadPiece())
                return false;
        } while (!StartsLine_ || !IsMboxSeparator(Buffer_.constData(), Length_));
    }
    HasSeparator_ = false;
    bool isInSeparator = true; // which may be longer than a piece
    while (ReadPiece()) {
        isInSeparator = isInSeparator && !StartsLine_;
        if (isInSeparator)
            continue;
        const char* piece = Buffer_.constData();
        if (StartsLine_ && IsMboxSeparator(piece, Length_)) {
            HasSeparator_ = true;
            break;
        }
        const qint64 quote = StartsLine_ && QuoteLength(piece, Length_) > 0 ? 1 : 0;
        octets.append(piece + quote, Length_ - quote);
    }
    if (HasFailed_)
        return false;
    RemoveClosingBlankLine(octets);
    return true;
}
