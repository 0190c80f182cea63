// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

class QWidget;

/// What becomes of changes that are not stored when their window closes, or shows something else.
namespace ClosingQuestion
{

enum class Choice
{
    Save,
    Discard,
    Cancel
};

/// Asks in a box over the window. save: the first button, by which Enter saves; Esc cancels.
Choice Ask(QWidget& window, const QString& title, const QString& question, const QString& save);
/// The same with the button "Save".
Choice Ask(QWidget& window, const QString& title, const QString& question);

} // namespace ClosingQuestion
