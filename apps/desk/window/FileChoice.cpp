// SPDX-License-Identifier: Apache-2.0
#include "FileChoice.h"

#include "common/FileDialog.h"
#include "common/UserInterface.h"
#include "platform/records/Error.h"

namespace
{
std::optional<QString> Choose(FileDialog& dialog, void (FileDialog::*show)())
{
    dialog.CancelError = true;
    try {
        (dialog.*show)();
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errCancelled)
            UserInterface::Current().RunTimeError(error);
        return std::nullopt;
    }
    return dialog.Filename.isEmpty() ? std::nullopt : std::optional(dialog.Filename);
}
} // namespace

std::optional<QString> FileChoice::ToOpen(FileDialog& dialog)
{
    return Choose(dialog, &FileDialog::ShowOpen);
}

std::optional<QString> FileChoice::ToSave(FileDialog& dialog)
{
    return Choose(dialog, &FileDialog::ShowSave);
}
