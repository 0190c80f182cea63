// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

class MainWindow;
class QWidget;

/// The part of the tour for pictures that shows prizes.
namespace PrizePictures
{
/// Files sample prizes in the window's station, goes through its page and windows, and hands each to save under a name,
/// drawn with that many dots a point. settle: runs events until the window is at rest.
void Take(MainWindow& window, const std::function<void(QWidget& widget, const char* name, int ratio)>& save,
          const std::function<void()>& settle);
} // namespace PrizePictures
