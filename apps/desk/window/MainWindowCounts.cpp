// SPDX-License-Identifier: Apache-2.0

// The numbers that the main window shows: messages of the folder on show, unread ones of all folders, the last look.

#include "MainWindow.h"
#include "answering/ShortWait.h"
#include "common/ClockHelper.h"
#include "messages/ArrivalCue.h"
#include "messageslist/uMessagesList.h"
#include "platform/records/LockPatience.h"

#include <QLabel>
#include <QLocale>

namespace
{
QString TimeNow()
{
    return ClockHelper::CurrentTime().Format(QStringLiteral("hh:nn:ss"));
}
} // namespace

/// When the desk looked last whether there is something new, be there something or not. A file that was taken away or
/// replaced still answers through the one that is open here.
void MainWindow::TakeLook()
{
    if (!MustReopen_)
        Updated_->setText(tr("Updated %1").arg(TimeNow()));
}

/// The counts of the folder on show. Only the unread ones are asked of the file; the others are the rows of the list.
void MainWindow::ShowCounts()
{
    if (!Station_->Database().IsOpen())
        return;
    try {
        // Odd numbers are read: the lowest bit of the flags says so.
        QString condition = ListCondition_;
        condition += condition.isEmpty() ? QString() : QStringLiteral(" AND ");
        const auto unread = Station_->Database().OpenMessageRows({QStringLiteral("Reference")},
                                                                 condition + QStringLiteral("[Flags] IN (0,2,4,6)"));
        const QLocale locale;
        const int all = List_->NumberItems();
        const QString messages = all == 1 ? tr("1 message") : tr("%1 messages").arg(locale.toString(all));
        Counts_->setText(List_->IsFiltered() || List_->IsFilling()
                             ? messages
                             : tr("%1, %2 unread").arg(messages, locale.toString(unread->RecordCount())));
        ShowUser();
        ShowUnreadCounts();
        ShowTitle();
    } catch (const dao::Error& error) {
        ShowConnectionProblem(error.Number());
    }
}

/// By the last known name, where somebody has the directory locked.
void MainWindow::ShowUser()
{
    const dao::LockPatience patience(ShortWait::Milliseconds);
    const clsKVUser* user = Station_->Directory().CurrentUser();
    User_->setText(user ? user->Name() : QString());
}

/// Of each folder behind its name, and of the Inbox in the title: a window that is covered tells of new mail there.
void MainWindow::ShowUnreadCounts()
{
    const clsKVUser* user = Station_->Directory().CurrentUser();
    const auto rows = Station_->Database().OpenMessageRows(
        {QStringLiteral("Category")},
        QStringLiteral("[Flags] IN (0,2,4,6) AND ([PersonalToContact]=0 or [PersonalToContact] is NULL or "
                       "[PersonalToContact]=%1)")
            .arg(user ? user->Reference() : 0));
    QHash<qint32, int> counts;
    for (; !rows->AtEOF(); rows->MoveNext())
        ++counts[rows->Collect(QStringLiteral("Category")).toInt()];
    // What waits to be sent, or was thrown away, is nobody's to read.
    for (const qint32 folder : {tmcOutbox, tmcSent, tmcDeleted, tmcDrafts})
        counts.remove(folder);
    UnreadInInbox_ = counts.value(tmcInbox);
    List_->SetUnreadCounts(counts);
    Arrivals_->TakeUnread(UnreadInInbox_);
}

void MainWindow::ShowTitle()
{
    const QString title = tr("%1 \u2013 Tolva").arg(Station_->Name());
    setWindowTitle(UnreadInInbox_ > 0 ? QStringLiteral("(%1) %2").arg(QLocale().toString(UnreadInInbox_), title)
                                      : title);
}
