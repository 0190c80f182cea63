// SPDX-License-Identifier: Apache-2.0
#include "WinnersView.h"

#include "platform/widgets/TextDelegate.h"
#include "prizes/RelativeTime.h"
#include "station/DeskStation.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QSet>

namespace
{
constexpr int WinnerRole = Qt::UserRole;
enum WinnerColumn
{
    NameColumn,
    ContactColumn,
    WonColumn,
    SentColumn,
    ColumnCount
};

qint32 ReferenceOf(const QTreeWidgetItem* item)
{
    return item ? item->data(NameColumn, WinnerRole).toInt() : 0;
}
} // namespace

WinnersView::WinnersView(DeskStation& station, QWidget* parent) : QTreeWidget(parent), Station_(station)
{
    setObjectName(QStringLiteral("winners"));
    setAccessibleName(tr("Winners"));
    setColumnCount(ColumnCount);
    setItemDelegate(new TextDelegate(this));
    setHeaderLabels({tr("Name"), tr("Contact"), tr("Won"), tr("Sent")});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setAllColumnsShowFocus(true);
    setTextElideMode(Qt::ElideRight);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    header()->setSectionResizeMode(ContactColumn, QHeaderView::Stretch);
    header()->setSectionResizeMode(WonColumn, QHeaderView::ResizeToContents);
    header()->setSectionResizeMode(SentColumn, QHeaderView::ResizeToContents);
    connect(this, &QTreeWidget::itemDoubleClicked, this, [this] { Q_EMIT OpenWinner(Selected()); });
    Timer_.setInterval(RefreshMilliseconds);
    connect(&Timer_, &QTimer::timeout, this, &WinnersView::Refresh);
}

void WinnersView::Show(qint32 prize)
{
    if (prize != Prize_)
        clear();
    Prize_ = prize;
    Refresh();
}

void WinnersView::Refresh()
{
    try {
        Fill();
    } catch (const dao::Error&) {
        // The desk's own window says that the station cannot be reached.
    }
}

void WinnersView::Fill()
{
    const bool hasPrize = Prize_ > 0 && Station_.Database().IsOpen();
    const QList<PrizeRows::Winner> winners =
        hasPrize ? PrizeRows::WinnersOf(Station_, Prize_) : QList<PrizeRows::Winner>();
    const qint32 selected = Selected();
    QHash<qint32, QTreeWidgetItem*> items = TakeOutOthers(winners);
    for (int row = 0; row < winners.size(); ++row) {
        const PrizeRows::Winner& winner = winners.at(row);
        QTreeWidgetItem*& item = items[winner.Reference];
        if (!item) {
            item = new QTreeWidgetItem;
            item->setData(NameColumn, WinnerRole, winner.Reference);
        }
        if (topLevelItem(row) != item) {
            takeTopLevelItem(indexOfTopLevelItem(item)); // a corrected moment of the win moves it
            insertTopLevelItem(row, item);
        }
        ShowWinner(*item, winner);
    }
    // Who is gone leaves nobody selected, rather than a neighbour who would be opened instead.
    if (Selected() != selected)
        setCurrentItem(items.value(selected));
    if (winners.isEmpty())
        Timer_.stop();
    else
        Timer_.start();
}

/// Removes the items of all but these; the others stay, and with them the selection and the scroll position.
QHash<qint32, QTreeWidgetItem*> WinnersView::TakeOutOthers(const QList<PrizeRows::Winner>& winners)
{
    QSet<qint32> stored;
    for (const PrizeRows::Winner& winner : winners)
        stored.insert(winner.Reference);
    QHash<qint32, QTreeWidgetItem*> items;
    for (int row = topLevelItemCount() - 1; row >= 0; --row) {
        const qint32 reference = ReferenceOf(topLevelItem(row));
        if (stored.contains(reference))
            items.insert(reference, topLevelItem(row));
        else
            delete takeTopLevelItem(row);
    }
    return items;
}

void WinnersView::ShowWinner(QTreeWidgetItem& item, const PrizeRows::Winner& winner)
{
    const clsKVContactPtr contact =
        winner.WinnerReference > 0 ? Station_.Directory().GetContact(winner.WinnerReference) : nullptr;
    item.setText(NameColumn, contact ? contact->Name.simplified() : tr("<Missing Contact>"));
    item.setText(ContactColumn, contact ? PrizeRows::DetailOf(*contact) : QString());
    item.setText(WonColumn, winner.WonDate.IsNone() ? QString() : TolvaControlsFN::RelativeTimeText(winner.WonDate));
    item.setText(SentColumn, winner.SentDate.IsNone() ? QString() : PrizeRows::DayWords(winner.SentDate));
    item.setToolTip(NameColumn, item.text(NameColumn));
    item.setToolTip(ContactColumn, item.text(ContactColumn));
}

qint32 WinnersView::Selected() const
{
    return ReferenceOf(currentItem());
}

void WinnersView::keyPressEvent(QKeyEvent* event)
{
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && Selected() != 0)
        Q_EMIT OpenWinner(Selected());
    else
        QTreeWidget::keyPressEvent(event);
}

void WinnersView::resizeEvent(QResizeEvent* event)
{
    QTreeWidget::resizeEvent(event);
    // A narrow list keeps who and when.
    setColumnHidden(ContactColumn, width() < fontMetrics().averageCharWidth() * 70);
}
