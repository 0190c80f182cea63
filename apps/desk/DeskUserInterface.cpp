#include "DeskUserInterface.h"

#include "common/dialogs/QtFileDialog.h"

DeskUserInterface::DeskUserInterface()
{
    SetCurrent(this);
    FileDialog::SetFactory([] { return std::make_unique<QtFileDialog>(); });
}

DeskUserInterface::~DeskUserInterface()
{
    FileDialog::SetFactory({});
    SetCurrent(nullptr);
}
