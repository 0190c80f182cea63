// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "prizes/PrizeRows.h"

#include <QHash>
#include <QTimer>
#include <QTreeWidget>

class DeskStation;

/// The winners of one prize as they are stored, those that its count leaves out among them. The times ("12 minutes
/// ago") keep themselves right. The station outlives it.
class WinnersView : public QTreeWidget
{
    Q_OBJECT

public:
    explicit WinnersView(DeskStation& station, QWidget* parent = nullptr);

    /// 0 for none. Keeps the selected winner where it can.
    void Show(qint32 prize);
    /// Reads the winners again, item by item, so that the selection and the scroll position stay. What cannot be read
    /// now stays as it is.
    void Refresh();
    /// The selected winner; 0 for none.
    qint32 Selected() const;
    int Count() const { return topLevelItemCount(); }

    static constexpr int RefreshMilliseconds = 20000;

Q_SIGNALS:
    void OpenWinner(qint32 winner);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void Fill();
    QHash<qint32, QTreeWidgetItem*> TakeOutOthers(const QList<PrizeRows::Winner>& winners);
    void ShowWinner(QTreeWidgetItem& item, const PrizeRows::Winner& winner);

    DeskStation& Station_;
    qint32 Prize_ = 0;
    QTimer Timer_;
};
