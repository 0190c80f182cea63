// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/widgets/CategoryTreeView.h"
#include "platform/widgets/FindBox.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/OverlayPanel.h"
#include "prizes/controls/uPrizesList.h"
#include "support/StationTest.h"

#include <QAction>
#include <QTest>
#include <QTimer>

#include <functional>

/// A prizes list on a window of its own, with prizes in its station, a user who may do everything, and the other
/// computers that change the same file. Nothing is attached until Attach. It is Saturday, 14:05, winter time.
class PrizesListTest : public StationTest
{
protected:
    PrizesListTest();
    ~PrizesListTest() override;

    /// The reference of a prize saved with 5 supplied, after change altered it.
    qint32 Save(const QString& title, const std::function<void(cPrize&)>& change = {});
    /// "Prize 1" and so on, saved in one go; their references.
    QList<qint32> SaveMany(int count);
    /// Gives a unit of a prize to a contact.
    void Award(qint32 prizeReference, qint32 contact = 3);
    /// Changes the stored row behind the library's back.
    void ChangeRow(qint32 reference, const QString& field, const QVariant& value);
    /// Opens the station, shows the list and sets it, with this kind as the one that the user left.
    void Attach(enPrizeListCategory category = plcAllPrizes);

    /// Titles on show, without what the second line holds.
    QStringList Titles() const;
    /// Of the rows on show.
    QStringList SecondLines() const;
    QList<qint32> References() const;
    template <typename Control>
    Control& Child(const char* name) const
    {
        auto* control = List->findChild<Control*>(QLatin1String(name));
        if (!control)
            throw std::runtime_error(std::string("no control ") + name);
        return *control;
    }
    QAction& Entry(const char* name) const { return Child<QAction>(name); }
    QTimer& Timer() const { return Child<QTimer>("timerUpdateList"); }
    OverlayPanel& Loading() const { return Child<OverlayPanel>("picLoading"); }
    OverlayPanel& NoPrizes() const { return Child<OverlayPanel>("picNoPrizes"); }
    /// Types a find text and presses Enter.
    void Find(const QString& text);
    QPoint RowPosition(int row) const;
    void ClickRow(int row);
    QPoint NodePosition(int category) const;
    void ClickNode(int category);

    /// Another program's connection to the same file, made on the first call.
    cTolvaDatabase& OtherComputer();
    /// The polling timer fires once; whatever it finds is done on return.
    void Tick();
    /// How often the list was filled since the last call.
    int TakeFills() { return std::exchange(Fills_, 0); }
    /// References that PrizeSelected told since the last call, 0 for none.
    QList<qint32> TakeSelections() { return std::exchange(Selections_, {}); }
    /// Fires once at the n-th yield from now, 1 for the next.
    void AtYield(int n, const std::function<void()>& action);

    std::unique_ptr<uPrizesList> List;
    FlexGrid* Grid;
    CategoryTreeView* Tree;
    FindBox* Box;

private:
    std::unique_ptr<cTolvaDatabase> Other_;
    QList<qint32> Selections_;
    int Fills_ = 0;
};
