// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/directory/clsKVContact.h"

class QWidget;

/// Two computers changed one contact at the same time.
namespace ContactConflict
{
enum class Choice
{
    Combine, ///< The own changes over theirs.
    TakeTheirs,
    SaveAsNew, ///< Where theirs was deleted.
    Cancel
};

/// Shows both changes, in words, and asks. theirs: null when it was deleted.
Choice Ask(const clsKVContact& before, const clsKVContact& mine, const clsKVContactPtr& theirs, QWidget* parent);

/// Theirs with the details that mine has changed since before.
clsKVContact Combined(const clsKVContact& before, const clsKVContact& mine, const clsKVContact& theirs);
} // namespace ContactConflict
