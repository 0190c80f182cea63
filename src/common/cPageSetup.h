// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QtGlobal>

/// Geometry of a sheet of address labels: counts, and lengths in millimetres. Owned by the database object, whose
/// settings keep it; LabelSheet prints by it.
class TOLVA_EXPORT cPageSetup
{
public:
    qint32 TopMargin() const { return TopMargin_; }
    void SetTopMargin(qint32 value) { TopMargin_ = value; }
    qint32 BottomMargin() const { return BottomMargin_; }
    void SetBottomMargin(qint32 value) { BottomMargin_ = value; }
    qint32 LeftMargin() const { return LeftMargin_; }
    void SetLeftMargin(qint32 value) { LeftMargin_ = value; }
    qint32 RightMargin() const { return RightMargin_; }
    void SetRightMargin(qint32 value) { RightMargin_ = value; }
    qint32 NumberColumns() const { return NumberColumns_; }
    void SetNumberColumns(qint32 value) { NumberColumns_ = value; }
    qint32 NumberRows() const { return NumberRows_; }
    void SetNumberRows(qint32 value) { NumberRows_ = value; }
    qint32 ColumnWidth() const { return ColumnWidth_; }
    void SetColumnWidth(qint32 value) { ColumnWidth_ = value; }
    qint32 RowHeight() const { return RowHeight_; }
    void SetRowHeight(qint32 value) { RowHeight_ = value; }

    /// Shows the dialog of these values and waits for it. What the user confirmed is stored by the next
    /// cTolvaDatabase::WriteDatabaseSettings, not here.
    void DisplayPageSetupLabels();

private:
    qint32 TopMargin_ = 10;
    qint32 BottomMargin_ = 10;
    qint32 LeftMargin_ = 10;
    qint32 RightMargin_ = 10;
    qint32 NumberColumns_ = 2;
    qint32 NumberRows_ = 4;
    qint32 ColumnWidth_ = 100;
    qint32 RowHeight_ = 70;
};
