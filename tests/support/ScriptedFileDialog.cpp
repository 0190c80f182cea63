// SPDX-License-Identifier: Apache-2.0
#include "support/ScriptedFileDialog.h"

#include "platform/records/Error.h"

#include <gtest/gtest.h>

namespace
{
const char* Words(ScriptedFileDialog::Kind kind)
{
    return kind == ScriptedFileDialog::Kind::Open ? "a dialog to open a file" : "a dialog to save a file";
}
} // namespace

class ScriptedFileDialog::Dialog final : public FileDialog
{
public:
    explicit Dialog(ScriptedFileDialog& owner) : Owner_(owner) {}
    void ShowOpen() override { Owner_.Answer(*this, Kind::Open); }
    void ShowSave() override { Owner_.Answer(*this, Kind::Save); }

private:
    ScriptedFileDialog& Owner_;
};

ScriptedFileDialog::ScriptedFileDialog()
    : Before_(FileDialog::SetFactory([this] { return std::make_unique<Dialog>(*this); }))
{
}

ScriptedFileDialog::~ScriptedFileDialog()
{
    FileDialog::SetFactory(Before_);
    for (const Expectation& expectation : std::as_const(Expected_))
        ADD_FAILURE() << "did not come: " << Words(expectation.Shown);
}

void ScriptedFileDialog::Answer(FileDialog& dialog, Kind kind)
{
    Requests_.append({kind, dialog.Filter, dialog.FilterIndex, dialog.DialogTitle, dialog.Flags, dialog.CancelError,
                      dialog.InitDir, dialog.Filename, dialog.DefaultExt});
    bool isCancelled = true;
    if (Expected_.isEmpty() || Expected_.first().Shown != kind) {
        ADD_FAILURE() << "not expected now: " << Words(kind) << ", " << qPrintable(dialog.DialogTitle);
    } else {
        const Expectation expected = Expected_.takeFirst();
        isCancelled = expected.Cancelled;
        if (!isCancelled) {
            dialog.Filename = expected.Choice;
            dialog.Filenames = expected.Choices.isEmpty() ? QStringList(expected.Choice) : expected.Choices;
        }
    }
    if (isCancelled && dialog.CancelError)
        throw dao::Error(dao::errCancelled, QStringLiteral("Cancel was selected."));
}
