// SPDX-License-Identifier: Apache-2.0
#include "common/FileDialog.h"

#include "platform/records/Error.h"

#include <utility>

namespace
{
/// For a host that has installed nothing: nobody chooses a file.
class CancelledFileDialog final : public FileDialog
{
public:
    void ShowOpen() override { Cancel(); }
    void ShowSave() override { Cancel(); }

private:
    void Cancel() const
    {
        if (CancelError)
            throw dao::Error(dao::errCancelled, QStringLiteral("Cancel was selected."));
    }
};

FileDialog::Factory& CurrentFactory()
{
    static FileDialog::Factory factory;
    return factory;
}
} // namespace

std::unique_ptr<FileDialog> FileDialog::Create()
{
    if (const Factory& factory = CurrentFactory())
        return factory();
    return std::make_unique<CancelledFileDialog>();
}

FileDialog::Factory FileDialog::SetFactory(Factory factory)
{
    return std::exchange(CurrentFactory(), std::move(factory));
}
