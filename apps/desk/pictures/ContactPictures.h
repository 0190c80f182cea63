// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

class DeskStation;
class QWidget;

/// What the tour of the windows shows of contacts: none, many, long and right-to-left names, dark and large.
namespace ContactPictures
{
/// Saves a window under a name, in so many times its size.
using Save = std::function<void(QWidget& widget, const char* name, int ratio)>;

/// Fills the station's directory on the way.
void Take(DeskStation& station, const Save& save);
} // namespace ContactPictures
