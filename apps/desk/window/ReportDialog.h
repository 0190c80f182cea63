// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

/// The outcome of longer work, to be read at leisure: one line that says it, and below it the details as text that can
/// be selected and copied.
class ReportDialog : public QDialog
{
    Q_OBJECT

public:
    ReportDialog(const QString& title, const QString& headline, const QString& details, QWidget* parent = nullptr);
};
