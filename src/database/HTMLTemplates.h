// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

/// The page templates beside a database, in the station's folder location. Nothing here throws.
namespace HTMLTemplates
{

/// Brings them up to date from the installed set. What cannot be copied is logged.
void Refresh(const QString& location);

/// Their folder; empty for no location.
QString FolderOf(const QString& location);
/// As cTolvaDatabase::GetHTMLTemplateReferences.
QStringList References(const QString& location, const QString& prefix);
/// As cTolvaDatabase::GetHTMLTemplateFileName.
QString FileName(const QString& location, const QString& prefix, const QString& reference);

} // namespace HTMLTemplates
