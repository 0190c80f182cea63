// SPDX-License-Identifier: Apache-2.0
#include "StartDialog.h"

#include "DeskSettings.h"
#include "StationPlace.h"
#include "platform/widgets/Icons.h"

#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

namespace
{
StartDialog::FolderChooser& FolderChooserInForce()
{
    static StartDialog::FolderChooser chooser;
    return chooser;
}
} // namespace

void StartDialog::SetFolderChooser(FolderChooser chooser)
{
    FolderChooserInForce() = std::move(chooser);
}

QString StartDialog::ChooseFolder(QWidget* parent)
{
    if (FolderChooserInForce())
        return FolderChooserInForce()(parent);
    return QFileDialog::getExistingDirectory(parent, tr("The folder of the station"));
}

StartDialog::StartDialog(DeskSettings& settings, QWidget* parent)
    : QDialog(parent),
      Settings_(settings),
      List_(new QListWidget(this)),
      Open_(new QPushButton(tr("&Open"), this)),
      Forget_(new QPushButton(tr("&Remove from list"), this))
{
    setObjectName(QStringLiteral("startDialog"));
    setWindowTitle(tr("Tolva"));
    setWindowIcon(Icons::Get(QStringLiteral("tolva")));
    auto* picture = new QLabel(this);
    picture->setPixmap(windowIcon().pixmap(QSize(40, 40), devicePixelRatioF()));
    auto* question = new QLabel(tr("Which &station do you want to open?"), this);
    question->setBuddy(List_);
    auto* choose = new QPushButton(tr("&Choose folder..."), this);
    auto* cancel = new QPushButton(tr("Cancel"), this);
    List_->setObjectName(QStringLiteral("recentList"));
    List_->setAccessibleName(tr("Recent stations"));
    List_->setTextElideMode(Qt::ElideMiddle);
    List_->setIconSize(QSize(16, 16));
    Open_->setObjectName(QStringLiteral("open"));
    Open_->setDefault(true);
    choose->setObjectName(QStringLiteral("chooseFolder"));
    Forget_->setObjectName(QStringLiteral("forget"));
    cancel->setObjectName(QStringLiteral("cancel"));

    auto* layout = new QGridLayout(this);
    layout->setColumnStretch(1, 1);
    layout->addWidget(picture, 0, 0);
    layout->addWidget(question, 0, 1, 1, 3);
    layout->addWidget(List_, 1, 0, 1, 4);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(choose);
    buttons->addWidget(Forget_);
    buttons->addStretch();
    buttons->addWidget(Open_);
    buttons->addWidget(cancel);
    layout->addLayout(buttons, 2, 0, 1, 4);
    setTabOrder(List_, choose);
    setTabOrder(choose, Forget_);
    setTabOrder(Forget_, Open_);
    setTabOrder(Open_, cancel);

    connect(Open_, &QPushButton::clicked, this, &StartDialog::OpenChosen);
    connect(List_, &QListWidget::itemActivated, this, &StartDialog::OpenChosen);
    connect(choose, &QPushButton::clicked, this, &StartDialog::Choose);
    connect(Forget_, &QPushButton::clicked, this, &StartDialog::Forget);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    Fill();
    resize(560, 320);
}

void StartDialog::Fill()
{
    List_->clear();
    for (const QString& folder : Settings_.RecentStations()) {
        auto* item = new QListWidgetItem(Icons::Get(QStringLiteral("smallclosedfolder")),
                                         QDir::toNativeSeparators(folder), List_);
        item->setData(Qt::UserRole, folder);
        item->setToolTip(item->text());
    }
    List_->setCurrentRow(0);
    Open_->setEnabled(List_->count() > 0);
    Forget_->setEnabled(List_->count() > 0);
}

void StartDialog::OpenChosen()
{
    if (!List_->currentItem())
        return;
    Folder_ = List_->currentItem()->data(Qt::UserRole).toString();
    accept();
}

void StartDialog::Choose()
{
    const QString folder = ChooseFolder(this);
    if (folder.isEmpty())
        return;
    Folder_ = folder;
    accept();
}

void StartDialog::Forget()
{
    if (!List_->currentItem())
        return;
    Settings_.ForgetStation(List_->currentItem()->data(Qt::UserRole).toString());
    Fill();
}
