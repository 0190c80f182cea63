// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

class QWidget;

/// What the tour of the windows shows of pictures that come with a message.
namespace AttachmentPictures
{
/// Saves a window under a name, in so many times its size.
using Save = std::function<void(QWidget& widget, const char* name, int ratio)>;

/// Large, wide, tiny, transparent and turned ones, of a message that is stored nowhere. settle: runs events until
/// pictures are read.
void Take(const Save& save, const std::function<void()>& settle);
} // namespace AttachmentPictures
