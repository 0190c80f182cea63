#include "WinnersView.h"

#include "DeskStation.h"
#include "prizes/PrizeRows.h"
#include "prizes/RelativeTime.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace
{
constexpr int ReferenceRole = Qt::UserRole;
enum Column
{
    NameColumn,
    ContactColumn,
    WonColumn,
    SentColumn,
    ColumnCount
};
} // namespace

WinnersView::WinnersView(DeskStation& station, QWidget* parent) : QTreeWidget(parent), Station_(station)
{
    setObjectName(QStringLiteral("winners"));
    setAccessibleName(tr("Winners"));
    setColumnCount(ColumnCount);
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
    while (topLevelItemCount() > winners.size())
        delete takeTopLevelItem(topLevelItemCount() - 1);
    const qint32 selected = Selected();
    for (int row = 0; row < winners.size(); ++row) {
        const PrizeRows::Winner& winner = winners.at(row);
        QTreeWidgetItem* item = topLevelItem(row);
        if (!item)
            item = new QTreeWidgetItem(this);
        const clsKVContactPtr contact =
            winner.WinnerReference > 0 ? Station_.Directory().GetContact(winner.WinnerReference) : nullptr;
        item->setData(NameColumn, ReferenceRole, winner.Reference);
        item->setText(NameColumn, contact ? contact->Name.simplified() : tr("<Missing Contact>"));
        item->setText(ContactColumn, contact ? PrizeRows::DetailOf(*contact) : QString());
        item->setText(WonColumn,
                      winner.WonDate.IsNone() ? QString() : TolvaControlsFN::RelativeTimeText(winner.WonDate));
        item->setText(SentColumn, winner.SentDate.IsNone() ? QString() : PrizeRows::DayWords(winner.SentDate));
        item->setToolTip(NameColumn, item->text(NameColumn));
        item->setToolTip(ContactColumn, item->text(ContactColumn));
        if (winner.Reference == selected)
            setCurrentItem(item);
    }
    if (winners.isEmpty())
        Timer_.stop();
    else
        Timer_.start();
}

qint32 WinnersView::Selected() const
{
    const QTreeWidgetItem* item = currentItem();
    return item ? item->data(NameColumn, ReferenceRole).toInt() : 0;
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
