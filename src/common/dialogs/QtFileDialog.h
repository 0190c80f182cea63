// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/FileDialog.h"
#include "platform/Export.h"

class QFileDialog;

/// FileDialog as a real one over the active window. A program installs it at start:
/// `FileDialog::SetFactory([] { return std::make_unique<QtFileDialog>(); });`
///
/// Of the flags 2 (ask before overwriting), 512 (several) and 4096 (the file must exist) count. A read-only box (4) is
/// never shown, and the folder of the process (8) never changes. A proposed Filename with wildcards proposes no name.
class TOLVA_EXPORT QtFileDialog final : public FileDialog
{
public:
    void ShowOpen() override;
    void ShowSave() override;

    /// The pairs of a filter as Qt writes them: "Databases|*.MDB" becomes "Databases (*.MDB)".
    static QStringList NameFilters(const QString& filter);

private:
    void Show(QFileDialog& dialog);
};
