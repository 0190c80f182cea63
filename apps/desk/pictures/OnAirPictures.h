// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

class MainWindow;
class QWidget;

/// What the tour of the windows shows of the running order, and of who is answering.
namespace OnAirPictures
{
/// Saves a window under a name, in so many times its size.
using Save = std::function<void(QWidget& widget, const char* name, int ratio)>;

/// Puts some messages of the station on the order on the way.
void Take(MainWindow& window, const Save& save, const std::function<void()>& settle);
} // namespace OnAirPictures
