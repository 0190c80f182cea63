// SPDX-License-Identifier: Apache-2.0
#include "DeskUserInterface.h"

#include "common/dialogs/QtFileDialog.h"

DeskUserInterface::DeskUserInterface() : Before_(UserInterface::Current())
{
    SetCurrent(this);
    FactoryBefore_ = FileDialog::SetFactory([] { return std::make_unique<QtFileDialog>(); });
}

DeskUserInterface::~DeskUserInterface()
{
    FileDialog::SetFactory(FactoryBefore_);
    SetCurrent(&Before_);
}
