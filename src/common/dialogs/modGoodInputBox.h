// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QVariant>

class QWidget;

/// Asks the user for one line of text and waits for the answer.
///
/// Prompt is plain text. Default is shown whole and selected, also where it is longer than MaxLength; MaxLength is a
/// number as text, 0 or empty for no limit. PasswordChar: when not empty its first character masks the text.
/// OwnerForm gives the icon (unless IconForm is given), owns the box when it is modal, and comes to the front
/// afterwards. Modal false: the other windows stay usable while this waits. BackColour: a colour as the records hold
/// it, or a QColor; invalid for the theme's.
///
/// 0 with the text in Result, or -1 with Result empty when cancelled. The close box ends the box like OK, with an empty
/// Result.
qint32 GoodInputBox(const QString& Prompt, const QString& Title, const QString& Default, const QString& MaxLength,
                    QString& Result, QWidget* OwnerForm = nullptr, const QString& PasswordChar = QString(),
                    bool Modal = true, const QVariant& BackColour = QVariant(), QWidget* IconForm = nullptr);
