// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>

/// The keys of the desk, all of them, as a table to read.
class ShortcutsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ShortcutsDialog(QWidget* parent);
};
