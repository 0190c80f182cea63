// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"
#include "prizes/HoursText.h"

#include <QTableView>

class WeekHoursModel;

/// A week of 7 days by 24 hours to paint a prize's hours in. A drag of the left button paints all it meets to the
/// opposite of its first hour; a heading turns its whole day, or its hour of every day, on, or off when it is all on.
/// Keys: the arrows, Home and End move, with Shift they extend the selection, Ctrl+A selects the week, Space turns the
/// selection to the opposite of the current hour. It holds a model of its own; do not set another. On the user
/// interface thread.
class TOLVA_EXPORT WeekHours : public QTableView
{
    Q_OBJECT
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly)

public:
    explicit WeekHours(QWidget* parent = nullptr);

    /// Monday first; any texts, read as cPrize reads them. HoursChanged is not raised. At first the week is all on.
    void SetHours(const WeekOfHours& hours);
    /// Hours that nobody changed are as they were set.
    WeekOfHours Hours() const;
    /// The same in words (HoursText).
    QString Words() const { return HoursText::InWords(Hours()); }
    /// The user can look, and not change.
    bool ReadOnly() const { return ReadOnly_; }
    void SetReadOnly(bool readOnly);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// By the user's doing, once for each stroke of the mouse and each key.
    void HoursChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyboardSearch(const QString& search) override;
    void changeEvent(QEvent* event) override;

private:
    void SizeSections();
    QSize SizeFor(int cellWidth, int cellHeight) const;
    void PaintTo(const QModelIndex& cell);
    void ToggleSelection();
    /// The opposite of "all are available", for all of them.
    void Toggle(const QModelIndexList& cells);
    void SetAll(const QModelIndexList& cells, bool available);
    void TellChange();
    void TellScreenReader();

    WeekHoursModel* Model_;
    QPersistentModelIndex LastPainted_; ///< Valid while a drag paints.
    bool PaintsAvailable_ = false;
    bool ReadOnly_ = false;
};
