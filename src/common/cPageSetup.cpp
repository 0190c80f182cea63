// SPDX-License-Identifier: Apache-2.0
#include "common/cPageSetup.h"

#include "common/UserInterface.h"

void cPageSetup::DisplayPageSetupLabels()
{
    UserInterface::Current().PageSetupLabels(*this);
}
