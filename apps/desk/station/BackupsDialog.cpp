// SPDX-License-Identifier: Apache-2.0
#include "BackupsDialog.h"

#include "StationReplacing.h"
#include "Words.h"
#include "common/ClockHelper.h"
#include "common/FileHelper.h"
#include "common/ProfileHelper.h"
#include "common/UserInterface.h"

#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace
{
enum BackupColumn
{
    columnMade,
    columnBy,
    columnSize,
    columnState
};
} // namespace

BackupsDialog::BackupsDialog(const QString& file, bool mayRestore, QWidget* parent)
    : QDialog(parent),
      File_(file),
      MayRestore_(mayRestore),
      List_(new QTreeWidget(this)),
      Content_(new QLabel(this)),
      Check_(new QPushButton(tr("Chec&k"), this)),
      Restore_(new QPushButton(tr("&Restore..."), this))
{
    setObjectName(QStringLiteral("backupsDialog"));
    setWindowTitle(tr("Backups"));
    MakeParts();
    Rest_.setSingleShot(true);
    Rest_.setInterval(RestMilliseconds);
    connect(&Rest_, &QTimer::timeout, this, &BackupsDialog::LookInto);
    connect(List_, &QTreeWidget::currentItemChanged, this, &BackupsDialog::TakeSelection);
    connect(Check_, &QPushButton::clicked, this, &BackupsDialog::CheckSelected);
    connect(Restore_, &QPushButton::clicked, this, &BackupsDialog::Restore);
    Fill();
}

void BackupsDialog::MakeParts()
{
    auto* title = new QLabel(tr("&Backups of this station"), this);
    title->setBuddy(List_);
    List_->setObjectName(QStringLiteral("backups"));
    List_->setAccessibleName(tr("Backups of this station"));
    List_->setHeaderLabels({tr("Made"), tr("By"), tr("Size"), tr("State")});
    List_->setRootIsDecorated(false);
    List_->setUniformRowHeights(true);
    List_->setAlternatingRowColors(true);
    List_->setAllColumnsShowFocus(true);
    Content_->setObjectName(QStringLiteral("content"));
    Content_->setTextFormat(Qt::PlainText);
    Content_->setWordWrap(true);
    Content_->setMinimumHeight(2 * fontMetrics().lineSpacing());
    Content_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    Check_->setObjectName(QStringLiteral("check"));
    Check_->setToolTip(tr("Reads the whole backup"));
    Restore_->setObjectName(QStringLiteral("restore"));
    if (!MayRestore_)
        Restore_->setToolTip(tr("Needs the right to change settings"));
    auto* close = new QPushButton(tr("Close"), this);
    close->setObjectName(QStringLiteral("close"));
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    // A row of its own: in the toolkit's box the Tab key walks in circles between those that were put into it.
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton* button : {Check_, Restore_, close}) {
        // Enter in the list closes nothing and restores nothing.
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(List_, 1);
    layout->addWidget(Content_);
    if (!MayRestore_) {
        auto* note = new QLabel(tr("Restoring needs the right to change settings."), this);
        note->setObjectName(QStringLiteral("rightNote"));
        note->setWordWrap(true);
        layout->addWidget(note);
    }
    layout->addLayout(buttons);
    resize(620, 380);
}

/// Newest first; behind them what a clock that was wrong dated into the future, and last what was left behind by a
/// backup that did not end.
void BackupsDialog::Fill()
{
    const QString root = BackupFolders::RootOf(File_);
    const QString fileName = FileHelper::FileNameOf(File_);
    const Date now = ClockHelper::CurrentTime();
    for (const BackupFolders::Backup& backup : BackupFolders::List(root)) {
        Entry entry;
        entry.Backup = backup;
        entry.Copy = FileHelper::Join(backup.Folder, fileName);
        entry.By =
            ProfileHelper::ReadIniString(QStringLiteral("Details"), QStringLiteral("By"), QString(), backup.Details);
        entry.Size = FileHelper::FileSize(entry.Copy);
        entry.IsDamaged = entry.Size <= 0;
        entry.IsFromTheFuture = BackupFolders::IsFromTheFuture(backup, now);
        Entries_.append(entry);
    }
    std::stable_sort(Entries_.begin(), Entries_.end(), [](const Entry& a, const Entry& b) {
        return a.IsFromTheFuture != b.IsFromTheFuture ? b.IsFromTheFuture : a.Backup.CreatedDate > b.Backup.CreatedDate;
    });
    for (const QString& name : BackupFolders::Unfinished(root)) {
        Entry entry;
        entry.Backup.Name = name;
        entry.Backup.Folder = FileHelper::Join(root, name);
        entry.Copy = FileHelper::Join(entry.Backup.Folder, fileName);
        entry.Size = FileHelper::FileSize(entry.Copy);
        entry.IsUnfinished = true;
        Entries_.append(entry);
    }
    for (int i = 0; i < Entries_.size(); ++i) {
        auto* item = new QTreeWidgetItem(List_);
        item->setTextAlignment(columnSize, Qt::AlignRight | Qt::AlignVCenter);
        ShowEntry(i);
    }
    for (int column = columnMade; column < columnState; ++column)
        List_->resizeColumnToContents(column);
    if (Entries_.isEmpty())
        Content_->setText(
            tr("There is no backup yet. \u201CBack up now\u201D in the menu \u201CStation\u201D makes one."));
    else
        List_->setCurrentItem(List_->topLevelItem(0));
    EnableButtons();
}

QString BackupsDialog::StateOf(const Entry& entry) const
{
    if (entry.IsUnfinished)
        return tr("unfinished");
    if (entry.IsDamaged)
        return tr("damaged");
    const QString state = entry.IsSound ? tr("sound") : tr("not read yet");
    return entry.IsFromTheFuture ? tr("%1, from the future").arg(state) : state;
}

void BackupsDialog::ShowEntry(int index)
{
    const Entry& entry = Entries_.at(index);
    QTreeWidgetItem* item = List_->topLevelItem(index);
    const Date made = entry.Backup.CreatedDate;
    item->setText(columnMade, made.IsNone() ? entry.Backup.Name : made.Format(QStringLiteral("dddddd hh:nn")));
    item->setText(columnBy, entry.By.trimmed());
    item->setText(columnSize, entry.Size < 0
                                  ? QString()
                                  : QLocale().formattedDataSize(entry.Size, 1, QLocale::DataSizeTraditionalFormat));
    item->setText(columnState, StateOf(entry));
}

BackupsDialog::Entry* BackupsDialog::Selected()
{
    const int index = List_->indexOfTopLevelItem(List_->currentItem());
    return index < 0 ? nullptr : &Entries_[index];
}

void BackupsDialog::TakeSelection()
{
    const Entry* entry = Selected();
    if (entry && !entry->IsUnfinished && !entry->IsDamaged && entry->Content.isEmpty())
        Content_->setText(tr("Reading..."));
    EnableButtons();
    Rest_.start();
}

/// The selection rests: what the backup holds is counted, and a small one is read whole.
void BackupsDialog::LookInto()
{
    Entry* entry = Selected();
    if (!entry)
        return;
    if (!entry->IsUnfinished && !entry->IsDamaged && entry->Content.isEmpty()) {
        const BusyPointer busy;
        if (const auto counts = StationReplacing::CountsOf(entry->Copy))
            entry->Content = counts->Words();
        else
            entry->IsDamaged = true;
        if (!entry->IsDamaged && entry->Size <= LargestReadAtOnce)
            Read(*entry);
    }
    ShowEntry(static_cast<int>(entry - Entries_.data()));
    if (entry->IsUnfinished)
        Content_->setText(tr("This backup failed or was ended before it was whole. It cannot be restored."));
    else if (entry->IsDamaged)
        Content_->setText(tr("This backup is damaged. It cannot be restored."));
    else if (entry->IsSound)
        Content_->setText(tr("%1. It was read whole and is sound.").arg(entry->Content));
    else
        Content_->setText(tr("%1. \u201CCheck\u201D reads it whole.").arg(entry->Content));
    EnableButtons();
}

void BackupsDialog::Read(Entry& entry)
{
    const BusyPointer busy;
    entry.IsSound = BackupFolders::IsSound(entry.Copy);
    entry.IsDamaged = !entry.IsSound;
}

void BackupsDialog::CheckSelected()
{
    Entry* entry = Selected();
    if (!entry || entry->IsUnfinished)
        return;
    Read(*entry);
    LookInto();
}

void BackupsDialog::Restore()
{
    Entry* entry = Selected();
    if (!entry || entry->IsUnfinished)
        return;
    // It may have been read a while ago, and not at all when it is large.
    Read(*entry);
    LookInto();
    if (entry->IsDamaged) {
        Words::Warn(tr("The backup \u201C%1\u201D is damaged; nothing was changed.").arg(entry->Backup.Name));
        return;
    }
    const QString question =
        tr("Do you want to replace the station by the backup of %1 (%2)?\n\n"
           "What was filed or changed since then is not in it. The present file is kept beside it.\n\n"
           "Other computers may stay at work; they go on with the restored station by themselves.")
            .arg(List_->currentItem()->text(columnMade), entry->Content);
    if (!UserInterface::Confirm(question))
        return;
    Chosen_ = entry->Backup;
    accept();
}

void BackupsDialog::EnableButtons()
{
    const Entry* entry = Selected();
    Check_->setEnabled(entry && !entry->IsUnfinished);
    Restore_->setEnabled(MayRestore_ && entry && !entry->IsUnfinished && !entry->IsDamaged);
}
