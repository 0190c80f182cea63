// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <optional>

class FileDialog;

/// Shows a file dialog that has been set up; the chosen path, or nothing when the user cancels or the dialog fails,
/// which is reported.
namespace FileChoice
{
std::optional<QString> ToOpen(FileDialog& dialog);
std::optional<QString> ToSave(FileDialog& dialog);
} // namespace FileChoice
