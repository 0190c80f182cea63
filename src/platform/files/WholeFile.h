// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/files/FileStatus.h"

#include <QByteArray>

enum class IfThere
{
    Refuse, ///< FileError::Exists where anything bears the name.
    Replace ///< A plain file is replaced; FileError::IsLink for a link.
};

/// Files that appear whole. Each is made new under a name of its own beside its place, written, put on the disk and
/// closed, and only then gets its name; every step is looked at. After a failure what was there before is there, and
/// nothing else.
namespace WholeFile
{

/// Writes a file with that content. One that is replaced hands its rights on.
FileStatus Write(const QString& name, const QByteArray& content, IfThere ifThere);

/// A name in the folder that nothing has: what begins with ".unfinished-" is being made, or left behind.
QString UnfinishedNameIn(const QString& folder);

} // namespace WholeFile

/// The first part of a path below a folder that is a link, such as "Backups" of "/srv/fm/Backups/Tolva" below
/// "/srv/fm"; its whole path, empty when there is none. What the folder itself lies behind is its owner's affair.
QString LinkBelow(const QString& folder, const QString& path);
