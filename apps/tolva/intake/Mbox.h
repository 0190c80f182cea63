// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QFile>

/// Reads the messages of an mbox file one after the other; no more than one of them is in memory.
///
/// A message begins behind a line "From ", with a sender and a date in the form of asctime, and ends before the next
/// such line; "From " lines of other forms belong to the text. The blank line before a separator belongs to the
/// archive. Of a line that begins with any number of ">" and then "From " one ">" is taken away (the mboxrd rule;
/// in an archive of the older form that marks only "From " itself the same rule is right for everything but a
/// line that its sender began with ">From ").
class MboxReader
{
public:
    /// The caller opens the file and keeps it while the reader is used.
    explicit MboxReader(QFile& file);

    /// The next message's octets; false at the end of the archive, and when reading failed (HasFailed).
    bool Next(QByteArray& octets);
    bool HasFailed() const { return HasFailed_; }

private:
    bool ReadPiece();

    QFile& File_;
    QByteArray Buffer_;
    qint64 Length_ = 0;         ///< Octets of the buffer that are a line, or a piece of a long one.
    bool StartsLine_ = true;    ///< The piece in the buffer begins a line.
    bool HasSeparator_ = false; ///< The separator of the next message has been read.
    bool HasFailed_ = false;
};

/// Whether a line is the separator of an mbox file.
bool IsMboxSeparator(const char* line, qint64 length);
/// Whether the file begins as an mbox does.
bool IsMboxFile(const QString& path);
