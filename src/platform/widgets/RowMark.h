// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QIcon>
#include <QString>

/// A small icon on a row of a FlexGrid that says what the row is.
struct RowMark
{
    QIcon Icon;
    QString Name; ///< What a screen reader says of it; empty where the row says it already.
};
