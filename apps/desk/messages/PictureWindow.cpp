// SPDX-License-Identifier: Apache-2.0
#include "PictureWindow.h"

#include "AttachmentList.h"
#include "PictureLoader.h"
#include "platform/widgets/Icons.h"
#include "window/FileNames.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace
{
constexpr double Smallest = 0.05;
constexpr double Largest = 8;
const QSize FirstSize(900, 700);
} // namespace

/// Draws the picture at its scale as it is painted: a copy of that size would take gigabytes of a large one.
class PictureWindow::View final : public QWidget
{
public:
    using QWidget::QWidget;

    void SetPicture(const QPixmap& picture) { Picture_ = picture; }
    QSize PictureSize() const { return Picture_.size(); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(rect(), Picture_);
    }

private:
    QPixmap Picture_;
};

PictureWindow::PictureWindow(std::shared_ptr<cdo::Message> mail, const QList<int>& files, int first, QWidget* parent)
    : QDialog(parent),
      Mail_(std::move(mail)),
      Files_(files),
      Place_(static_cast<int>(std::max<qsizetype>(0, files.indexOf(first)))),
      Loader_(new PictureLoader(this)),
      View_(new View),
      Area_(new QScrollArea(this)),
      Caption_(new QLabel(this))
{
    setObjectName(QStringLiteral("pictureWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    const QList<cdo::Attachment> all = Mail_->Attachments();
    for (const int file : files)
        Names_.append(FileNames::Cleaned(all.value(file).FileName));
    Area_->setObjectName(QStringLiteral("pictureArea"));
    Area_->setWidget(View_);
    Area_->setAlignment(Qt::AlignCenter);
    Area_->setFocusPolicy(Qt::NoFocus);
    Caption_->setObjectName(QStringLiteral("pictureCaption"));
    Caption_->setTextFormat(Qt::PlainText);
    Caption_->setWordWrap(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(Caption_, 1);
    const auto add = [&](const char* name, const QString& words, void (PictureWindow::*slot)()) {
        auto* button = new QPushButton(words, this);
        button->setObjectName(QLatin1String(name));
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, slot);
        buttons->addWidget(button);
        return button;
    };
    for (QPushButton* button : {add("picturePrevious", tr("&Previous"), &PictureWindow::Previous),
                                add("pictureNext", tr("&Next"), &PictureWindow::Next)})
        button->setEnabled(Files_.size() > 1);
    add("pictureSmaller", tr("S&maller"), &PictureWindow::Smaller);
    add("pictureLarger", tr("&Larger"), &PictureWindow::Larger);
    add("pictureSave", tr("&Save as..."), &PictureWindow::Save);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Area_, 1);
    layout->addLayout(buttons);
    MakeKeys();
    connect(Loader_, &PictureLoader::Loaded, this, [this](int, const QImage& picture) {
        View_->SetPicture(QPixmap::fromImage(picture));
        Fit();
        ShowCaption();
    });
    connect(Loader_, &PictureLoader::Finished, this, [this] {
        if (View_->PictureSize().isEmpty())
            ShowCaption(tr("This file cannot be shown as a picture; it can be saved."));
    });
    resize(FirstSize);
    Show();
}

void PictureWindow::MakeKeys()
{
    const auto add = [this](const QList<QKeySequence>& keys, void (PictureWindow::*slot)()) {
        auto* action = new QAction(this);
        action->setShortcuts(keys);
        addAction(action);
        connect(action, &QAction::triggered, this, slot);
    };
    add({Qt::Key_Plus, Qt::Key_Equal}, &PictureWindow::Larger);
    add({Qt::Key_Minus}, &PictureWindow::Smaller);
    add({Qt::Key_Right}, &PictureWindow::Next);
    add({Qt::Key_Left}, &PictureWindow::Previous);
    add({Qt::CTRL | Qt::Key_S}, &PictureWindow::Save);
}

void PictureWindow::Go(int step)
{
    const auto count = static_cast<int>(Files_.size());
    if (count < 2)
        return;
    Place_ = (Place_ + step + count) % count;
    FitsWindow_ = true;
    Show();
}

void PictureWindow::Show()
{
    View_->SetPicture({});
    View_->resize(0, 0);
    setWindowTitle(Names_.value(Place_));
    ShowCaption(tr("Reading the picture..."));
    Loader_->Load(Mail_->Octets(), {File()}, {});
}

void PictureWindow::ShowCaption(const QString& words)
{
    const QSize size = View_->PictureSize();
    QStringList parts{Names_.value(Place_)};
    if (Files_.size() > 1)
        parts.append(tr("%1 of %2").arg(Place_ + 1).arg(Files_.size()));
    if (!words.isEmpty())
        parts.append(words);
    else if (!size.isEmpty())
        parts.append(tr("%1%").arg(qRound(Scale_ * 100)));
    Caption_->setText(parts.join(QStringLiteral(" \u00B7 ")));
    View_->setAccessibleName(Caption_->text());
}

/// Whole, and never larger than it is.
void PictureWindow::Fit()
{
    const QSize size = View_->PictureSize();
    if (!FitsWindow_ || size.isEmpty())
        return;
    const QSize room = Area_->maximumViewportSize();
    SetScale(std::min({1.0, double(room.width()) / size.width(), double(room.height()) / size.height()}));
    FitsWindow_ = true;
}

void PictureWindow::SetScale(double scale)
{
    if (View_->PictureSize().isEmpty())
        return;
    FitsWindow_ = false;
    Scale_ = std::clamp(scale, Smallest, Largest);
    View_->resize((QSizeF(View_->PictureSize()) * Scale_).toSize().expandedTo(QSize(1, 1)));
    View_->update();
    ShowCaption();
}

void PictureWindow::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    Fit();
}

void PictureWindow::Save()
{
    const QPointer<PictureWindow> self(this);
    const QString words = AttachmentList::Save(Mail_, File());
    if (self && !words.isEmpty())
        ShowCaption(words);
}
