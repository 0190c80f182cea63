// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <functional>

namespace dao
{
class ContentExchange;
}

/// Putting another content into a database that others may have open, the old one kept as a copy.
namespace FileExchange
{

/// What the caller of InPlace decides.
struct Plan
{
    QString File;
    /// Whose content goes into the file.
    QString Replacement;
    /// Makes the replacement out of what the file holds, or adds to it what depends on that; called again whenever
    /// somebody wrote meanwhile.
    std::function<void(dao::ContentExchange&)> Make;
    /// A free name for the copy of the old content, asked for each time.
    std::function<QString()> KeepName;
};

/// Who may use the one file may use the other, and nobody else. dao::Error when that cannot be.
void GiveAccess(const QString& file, const QString& other);

/// Answers the keep name. Others go on working, but for the moment of the exchange; after two attempts in which
/// somebody wrote, writers are kept out from the beginning. dao::Error when nothing was changed: 3260 when others left
/// no moment for it.
QString InPlace(const Plan& plan);

/// Renames the replacement over the file, and the file, with what belongs to it, to the keep name; the file may be
/// missing. For a file that cannot be read any more. Everybody who has it open is kept out while it loses its name, and
/// told afterwards. dao::Error when nothing was changed. check: called when everybody is out; what it raises changes
/// nothing. It must not open the file.
void ByRename(const QString& file, const QString& replacement, const QString& keepName,
              const std::function<void()>& check = {});

/// The same for a file that stands for a database on a server, which was moved into the replacement.
void OverLink(const QString& file, const QString& replacement, const QString& keepName);

} // namespace FileExchange
