// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// What the desk does with a file of a message besides saving it, by the type that the message gives. Whether a picture
/// is one its own octets tell, when it is read.
namespace AttachmentKinds
{
bool IsPicture(const QString& contentType);
/// The ending that a file of this kind of sound gets when the system is to play it; empty for what is no sound that is
/// known. Never the ending that the sender gave.
QString SoundEnding(const QString& contentType);
} // namespace AttachmentKinds
