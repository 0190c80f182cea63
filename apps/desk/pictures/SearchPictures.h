// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

class MainWindow;
class QWidget;

/// The tour's pictures of the search window.
namespace SearchPictures
{
/// Saves a widget under a name, at a ratio of pixels.
using Save = std::function<void(QWidget&, const char*, int)>;
/// Waits until that holds, and all of it is painted.
using Settle = std::function<void(const std::function<bool()>&)>;

void Take(MainWindow& window, const Save& save, const Settle& settle);
} // namespace SearchPictures
