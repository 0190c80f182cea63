// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Where this library is installed: the folder that what came with it stands in, such as the folder "HTMLDocs" of page
/// templates.
namespace LibraryFolder
{

/// The folder that the environment variable TOLVA_LIBRARY_FOLDER names; or the folder of this library's own file (the
/// program's, for one that is linked with it) when "HTMLDocs" stands in it, as in a build; or "share/tolva" beside the
/// folders "bin" and "lib" when "HTMLDocs" stands in that, as in an installation. Without any of them the folder of the
/// library's own file.
QString Current();
/// For tests and hosts that know better. Empty goes back to what was found.
void SetCurrent(const QString& folder);

/// The sub-folder of that name, or the one whose name differs in case alone; the name as it stands when there is
/// neither.
QString ExistingSubfolder(const QString& folder, const QString& name);

} // namespace LibraryFolder
