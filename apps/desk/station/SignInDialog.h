// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>
#include <QStringList>

class QListWidget;

/// Asks which of the station's users sits here.
class SignInDialog : public QDialog
{
    Q_OBJECT

public:
    /// proposed: the name that is selected at first.
    SignInDialog(const QStringList& users, const QString& proposed, QWidget* parent = nullptr);

    QString User() const;

private:
    QListWidget* List_;
};
