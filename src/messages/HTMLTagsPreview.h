// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// The first two lines of a mail, for lists. Text, not markup; the lines are parted by LF.
namespace HTMLTagsPreview
{
/// Of a text body: an empty line ends it.
QString OfText(const QString& textBody);
/// Of an HTML body: the first line of each of the first two elements P, UL, OL and FONT that begin with text. Such an
/// element within another counts by itself.
QString OfHTML(const QString& htmlBody);
} // namespace HTMLTagsPreview
