// SPDX-License-Identifier: Apache-2.0
#pragma once

class QWidget;

namespace DialogSize
{
/// Makes a window that has a layout, and is not up yet, as large as its contents want to be. Left to itself it takes
/// two thirds of the screen at most, and on a small or much enlarged screen that squeezes its controls.
void FitContents(QWidget& window);
} // namespace DialogSize
