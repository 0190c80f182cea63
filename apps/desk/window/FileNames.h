// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileStatus.h"

#include <QByteArray>
#include <QString>

/// Names that came with mail, made fit for this machine's disk, and files written under them.
namespace FileNames
{
/// A plain file name: no path, no control or direction-changing characters, nothing that a common system reserves, no
/// leading dot, at most 120 characters with the extension kept; "Attachment" where nothing is left.
QString Cleaned(const QString& name);
/// The name with " (2)" and so on before its extension. number: from 2.
QString Numbered(const QString& name, int number);
/// Writes a new file into the folder under the name or, where it is taken, the next numbered one, and puts it on the
/// disk. An existing file is never touched. The path of the file; empty when it could not be written, for what status
/// says.
QString WriteNew(const QString& folder, const QString& name, const QByteArray& content, FileStatus& status);
/// "1.4 MB", in the locale.
QString SizeInWords(qint64 octets);
} // namespace FileNames
