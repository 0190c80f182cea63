// SPDX-License-Identifier: Apache-2.0
#include "AttachmentList.h"

#include "AttachmentKinds.h"
#include "PictureLoader.h"
#include "PictureWindow.h"
#include "Words.h"
#include "common/FileDialog.h"
#include "common/UserInterface.h"
#include "platform/files/WholeFile.h"
#include "platform/mail/MessageReader.h"
#include "platform/widgets/Icons.h"
#include "window/FileChoice.h"
#include "window/FileNames.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMimeDatabase>
#include <QPainter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>

namespace
{
constexpr int MostRowsShown = 3;
/// Among which the files to list are looked for; thousands would take seconds.
constexpr int MostParts = 500;
constexpr int KindColumn = 2;
constexpr int LettersWithKind = 45;
/// Points; and how many of them a mail gets.
constexpr int SmallPicture = 40;
constexpr qsizetype MostSmallPictures = 50;

std::function<bool(const QString&)>& SoundPlayer()
{
    static std::function<bool(const QString&)> player;
    return player;
}

/// The picture in the middle of a square, so that all rows are of one height.
QIcon SquareIcon(const QImage& picture, double ratio)
{
    const int side = qRound(SmallPicture * ratio);
    QPixmap square(side, side);
    square.fill(Qt::transparent);
    QPainter(&square).drawImage((side - picture.width()) / 2, (side - picture.height()) / 2, picture);
    square.setDevicePixelRatio(ratio);
    return QIcon(square);
}

/// For sound that the system plays: of this account alone, and gone with the program.
const QTemporaryDir& SoundFolder()
{
    static const QTemporaryDir folder;
    return folder;
}

/// What the type is called, such as "PNG image"; the type itself where the system has no word for it.
QString KindOf(const QString& contentType)
{
    const QMimeType type = QMimeDatabase().mimeTypeForName(contentType);
    return type.isValid() && !type.isDefault() && !type.comment().isEmpty() ? type.comment() : contentType;
}

QString ShownName(const cdo::Attachment& attachment)
{
    return FileNames::Cleaned(attachment.FileName);
}

/// A narrow list keeps the names and sizes.
class FileTable final : public QTreeWidget
{
public:
    using QTreeWidget::QTreeWidget;

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QTreeWidget::resizeEvent(event);
        setColumnHidden(KindColumn, width() < fontMetrics().averageCharWidth() * LettersWithKind);
    }
};
} // namespace

AttachmentList::AttachmentList(QWidget* parent)
    : QWidget(parent),
      Caption_(new QLabel(this)),
      List_(new FileTable(this)),
      Loader_(new PictureLoader(this)),
      Open_(new QPushButton(tr("&Open"), this)),
      SaveAs_(new QPushButton(Icons::Get(QStringLiteral("save")), tr("Save &as..."), this)),
      SaveAll_(new QPushButton(tr("Save a&ll..."), this))
{
    setObjectName(QStringLiteral("attachments"));
    Caption_->setObjectName(QStringLiteral("attachmentsCaption"));
    Caption_->setBuddy(List_);

    List_->setObjectName(QStringLiteral("attachmentsList"));
    List_->setAccessibleName(tr("Attachments"));
    List_->setColumnCount(3);
    List_->setHeaderLabels({tr("Name"), tr("Size"), tr("Type")});
    List_->setHeaderHidden(true);
    List_->setRootIsDecorated(false);
    List_->setUniformRowHeights(true);
    List_->setTextElideMode(Qt::ElideMiddle);
    List_->setTabKeyNavigation(false);
    List_->header()->setStretchLastSection(false);
    List_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    List_->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    List_->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);

    Open_->setObjectName(QStringLiteral("attachmentOpen"));
    SaveAs_->setObjectName(QStringLiteral("attachmentSaveAs"));
    SaveAs_->setAccessibleName(tr("Save the selected attachment as"));
    SaveAll_->setObjectName(QStringLiteral("attachmentSaveAll"));
    SaveAll_->setAccessibleName(tr("Save all attachments into a folder"));

    auto* buttons = new QVBoxLayout;
    buttons->setSpacing(4);
    buttons->addWidget(Open_);
    buttons->addWidget(SaveAs_);
    buttons->addWidget(SaveAll_);
    buttons->addStretch();
    auto* row = new QHBoxLayout;
    row->addWidget(List_, 1);
    row->addLayout(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 4, 6, 6);
    layout->setSpacing(4);
    layout->addWidget(Caption_);
    layout->addLayout(row);

    connect(Open_, &QPushButton::clicked, this, &AttachmentList::OpenSelected);
    connect(Loader_, &PictureLoader::Loaded, this, [this](int file, const QImage& picture) {
        if (QTreeWidgetItem* item = List_->topLevelItem(file))
            item->setIcon(0, SquareIcon(picture, devicePixelRatioF()));
    });
    connect(SaveAs_, &QPushButton::clicked, this, &AttachmentList::SaveSelected);
    connect(SaveAll_, &QPushButton::clicked, this, &AttachmentList::SaveAll);
    connect(List_, &QTreeWidget::itemActivated, this, &AttachmentList::Activate);
    connect(List_, &QTreeWidget::itemSelectionChanged, this, &AttachmentList::UpdateButtons);
    hide();
}

void AttachmentList::SetMessage(const cMessagePtr& message)
{
    Message_ = message;
    List_->clear();
    QList<cdo::Attachment> files;
    bool hasMore = false;
    Listed_.reset();
    if (message) {
        cdo::MessageReader reader(*message->CDOMessage(), MostParts);
        files = reader.Files();
        hasMore = reader.HasMoreParts();
        Listed_ = hasMore ? std::make_shared<cdo::Message>(reader.Octets()) : message->CDOMessage();
    }
    LoadPictures(files);
    for (const cdo::Attachment& file : files) {
        auto* item =
            new QTreeWidgetItem(List_, {ShownName(file), FileNames::SizeInWords(file.Size), KindOf(file.ContentType)});
        item->setIcon(0, Icons::Get(QStringLiteral("attach")));
        item->setToolTip(0, ShownName(file));
        item->setTextAlignment(1, Qt::AlignRight | Qt::AlignVCenter);
    }
    if (hasMore)
        Caption_->setText(tr("The first %1 of many attachments; \"Save all\" saves them all").arg(files.size()));
    else
        Caption_->setText(files.size() == 1 ? tr("1 attachment") : tr("%1 attachments").arg(files.size()));
    if (!files.isEmpty()) {
        List_->setCurrentItem(List_->topLevelItem(0));
        const int rows = qBound(2, static_cast<int>(files.size()), MostRowsShown);
        List_->setFixedHeight(rows * qMax(List_->sizeHintForRow(0), 20) + 2 * List_->frameWidth() + 2);
    }
    setVisible(!files.isEmpty() || hasMore);
    UpdateButtons();
}

/// Behind the rows, on another thread.
void AttachmentList::LoadPictures(const QList<cdo::Attachment>& files)
{
    Pictures_.clear();
    Types_.clear();
    Loader_->Stop();
    bool hasSound = false;
    for (int i = 0; i < files.size(); ++i) {
        Types_.append(files.at(i).ContentType);
        if (AttachmentKinds::IsPicture(files.at(i).ContentType))
            Pictures_.append(i);
        hasSound = hasSound || !AttachmentKinds::SoundEnding(files.at(i).ContentType).isEmpty();
    }
    Open_->setVisible(hasSound || !Pictures_.isEmpty());
    const int side = Pictures_.isEmpty() ? Icons::SmallSide : SmallPicture;
    List_->setIconSize(QSize(side, side));
    if (!Pictures_.isEmpty()) {
        const int pixels = qRound(SmallPicture * devicePixelRatioF());
        Loader_->Load(Listed_->Octets(), Pictures_.mid(0, MostSmallPictures), QSize(pixels, pixels));
    }
}

QString AttachmentList::SelectedType() const
{
    return Types_.value(SelectedIndex().value_or(-1));
}

std::optional<int> AttachmentList::SelectedIndex() const
{
    const QList<QTreeWidgetItem*> selected = List_->selectedItems();
    if (!Message_ || selected.isEmpty())
        return std::nullopt;
    return List_->indexOfTopLevelItem(selected.first());
}

void AttachmentList::UpdateButtons()
{
    SaveAs_->setEnabled(SelectedIndex().has_value());
    SaveAll_->setEnabled(Message_ != nullptr);
    const QString type = SelectedType();
    const bool isSound = !AttachmentKinds::SoundEnding(type).isEmpty();
    Open_->setEnabled(isSound || AttachmentKinds::IsPicture(type));
    Open_->setText(isSound ? tr("&Play...") : tr("S&how"));
    Open_->setAccessibleName(isSound ? tr("Play the selected sound") : tr("Show the selected picture"));
}

void AttachmentList::Activate()
{
    if (Open_->isEnabled())
        OpenSelected();
    else
        SaveSelected();
}

void AttachmentList::SetSoundPlayer(std::function<bool(const QString& path)> player)
{
    SoundPlayer() = std::move(player);
}

void AttachmentList::OpenSelected()
{
    const std::optional<int> index = SelectedIndex();
    if (!index)
        return;
    const QString ending = AttachmentKinds::SoundEnding(SelectedType());
    if (!ending.isEmpty())
        return Play(*index, ending);
    if (Pictures_.contains(*index))
        (new PictureWindow(Listed_, Pictures_, *index, this))->show();
}

/// The file gets a name of ours: the sender's says nothing of what it is, and the system goes by it.
void AttachmentList::Play(int index, const QString& ending)
{
    const std::shared_ptr<cdo::Message> mail = Listed_;
    const QString name = ShownName(mail->Attachments().at(index));
    if (!UserInterface::Confirm(tr("\"%1\" came with a message. Do you want the program that this computer has for "
                                   "sound to play it?")
                                    .arg(name)))
        return;
    static int sounds = 0;
    const QString path = SoundFolder().filePath(QStringLiteral("sound-%1.%2").arg(++sounds).arg(ending));
    const FileStatus status = WholeFile::Write(path, mail->AttachmentContent(index), IfThere::Replace);
    if (!status.IsDone())
        return Words::Warn(tr("\"%1\" could not be handed over to be played: %2").arg(name, status.Words()));
    const bool plays = SoundPlayer() ? SoundPlayer()(path) : QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    if (!plays)
        Words::Warn(tr("This computer has no program that plays \"%1\". Save it to play it elsewhere.").arg(name));
}

void AttachmentList::SaveSelected()
{
    const std::optional<int> index = SelectedIndex();
    if (!index)
        return;
    if (const QString words = Save(Listed_, *index); !words.isEmpty())
        Q_EMIT Saved(words);
}

QString AttachmentList::Save(const std::shared_ptr<cdo::Message>& given, int index)
{
    // Held: the list may show another one, or the window be gone, while the dialog is open.
    const std::shared_ptr<cdo::Message> mail = given; // NOLINT(performance-unnecessary-copy-initialization)
    const cdo::Attachment file = mail->Attachments().at(index);
    const auto dialog = FileDialog::Create();
    dialog->DialogTitle = tr("Save attachment as...");
    dialog->Filter = QStringLiteral("All Files (*.*)|*.*");
    dialog->Flags = FileDialog::OverwritePrompt | FileDialog::HideReadOnly | FileDialog::KeepFolder;
    dialog->InitDir = FileChoice::StartFolder();
    dialog->Filename = ShownName(file);
    const std::optional<QString> path = FileChoice::ToSave(*dialog);
    if (!path)
        return {};
    const FileStatus status = WholeFile::Write(*path, mail->AttachmentContent(index), IfThere::Replace);
    if (status.IsDone())
        return tr("Saved %1").arg(*path);
    Words::Warn(tr("The attachment could not be saved as %1: %2").arg(*path, status.Words()));
    return {};
}

void AttachmentList::SaveAll()
{
    const cMessagePtr message = Message_;
    if (!message)
        return;
    const QString folder = FileChoice::Folder(this, tr("Save all attachments in..."), FileChoice::StartFolder());
    if (folder.isEmpty())
        return;
    const QList<cdo::Attachment> files = message->CDOMessage()->Attachments();
    int saved = 0;
    FileStatus failure;
    for (int i = 0; i < files.size(); ++i) {
        FileStatus status;
        FileNames::WriteNew(folder, files.at(i).FileName, message->CDOMessage()->AttachmentContent(i), status);
        if (status.IsDone())
            ++saved;
        else
            failure = status;
    }
    if (saved < files.size()) {
        Words::Warn(tr("%1 of %2 attachments could be saved in %3: %4")
                        .arg(saved)
                        .arg(files.size())
                        .arg(folder, failure.Words()));
    }
    if (saved > 0)
        Q_EMIT Saved(saved == 1 ? tr("Saved 1 attachment in %1").arg(folder)
                                : tr("Saved %1 attachments in %2").arg(saved).arg(folder));
}
