// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <functional>
#include <optional>

class FileDialog;
class QWidget;

/// Shows a file dialog that has been set up; the chosen path, or nothing when the user cancels or the dialog fails,
/// which is reported.
namespace FileChoice
{
std::optional<QString> ToOpen(FileDialog& dialog);
std::optional<QString> ToSave(FileDialog& dialog);

/// Asks for a folder over the window, beginning in start; empty when the user cancels.
QString Folder(QWidget* window, const QString& title, const QString& start);
/// Answers instead of the user, for tests: a start folder in, the choice out. An empty one asks the user again.
void SetFolderChooser(std::function<QString(const QString& start)> chooser);
/// Where people expect files that they saved: their downloads, or their own folder.
QString StartFolder();
} // namespace FileChoice
