// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

class DeskStation;
class QLineEdit;
class QPushButton;

/// One contact by name, with buttons to choose another and to have none. The station outlives it.
class ContactBox : public QWidget
{
    Q_OBJECT

public:
    ContactBox(DeskStation& station, const QString& name, const QString& accessibleName, QWidget* parent = nullptr);

    qint32 Reference() const { return Reference_; }
    void SetReference(qint32 reference);
    void SetReadOnly(bool readOnly);

Q_SIGNALS:
    void Changed();

private:
    void Choose();

    DeskStation& Station_;
    qint32 Reference_ = 0;
    bool IsReadOnly_ = false;
    QLineEdit* Name_;
    QPushButton* Choose_;
    QPushButton* Clear_;
};
