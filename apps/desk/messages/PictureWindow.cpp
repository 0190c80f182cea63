// SPDX-License-Identifier: Apache-2.0
#include "PictureWindow.h"

#include "AttachmentList.h"
#include "PictureLoader.h"
#include "platform/widgets/Icons.h"
#include "window/FileNames.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace
{
constexpr double Smallest = 0.05;
constexpr double Largest = 8;
const QSize FirstSize(900, 700);
/// Of the squares behind a picture that one sees through: whatever its colours, they are seen on one of the two.
constexpr int SquareSide = 8;
const QColor SquareColours[] = {QColor(0xFF, 0xFF, 0xFF), QColor(0xD0, 0xD0, 0xD0)};
/// Of what is on show, that a key moves the picture by.
constexpr int MovesInWindow = 4;
const QString Separator = QStringLiteral(" \u00B7 ");

QBrush Squares()
{
    QPixmap tile(2 * SquareSide, 2 * SquareSide);
    tile.fill(SquareColours[0]);
    QPainter painter(&tile);
    painter.fillRect(0, 0, SquareSide, SquareSide, SquareColours[1]);
    painter.fillRect(SquareSide, SquareSide, SquareSide, SquareSide, SquareColours[1]);
    return QBrush(tile);
}

/// Moves a bar so that the same point of the picture stays in the middle.
void KeepMiddle(QScrollBar* bar, double middle)
{
    bar->setValue(qRound(middle * (bar->maximum() + bar->pageStep()) - bar->pageStep() / 2.0));
}

double MiddleOf(const QScrollBar* bar)
{
    return (bar->value() + bar->pageStep() / 2.0) / (bar->maximum() + bar->pageStep());
}
} // namespace

/// Draws the picture at its scale as it is painted: a copy of that size would take gigabytes of a large one.
class PictureWindow::View final : public QWidget
{
public:
    using QWidget::QWidget;

    void SetPicture(const QPixmap& picture) { Picture_ = picture; }
    /// In place of a picture.
    void SetWords(const QString& words)
    {
        Words_ = words;
        update();
    }
    QSize PictureSize() const { return Picture_.size(); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        if (Picture_.isNull()) {
            painter.setPen(palette().color(QPalette::WindowText));
            painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, Words_);
            return;
        }
        if (Picture_.hasAlphaChannel())
            painter.fillRect(rect(), Squares());
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(rect(), Picture_);
    }

private:
    QPixmap Picture_;
    QString Words_;
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
    Area_->installEventFilter(this);
    Caption_->installEventFilter(this);
    connect(Loader_, &PictureLoader::Loaded, this, [this](int, const QImage& picture) {
        Area_->setWidgetResizable(false);
        View_->SetPicture(QPixmap::fromImage(picture));
        Fit();
        ShowCaption();
    });
    connect(Loader_, &PictureLoader::Finished, this, [this] {
        if (View_->PictureSize().isEmpty())
            ShowWords(tr("This file cannot be shown as a picture; it can be saved."));
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
    add({Qt::Key_0}, &PictureWindow::Whole);
    add({Qt::Key_Up}, &PictureWindow::MoveUp);
    add({Qt::Key_Down}, &PictureWindow::MoveDown);
    add({Qt::SHIFT | Qt::Key_Left}, &PictureWindow::MoveLeft);
    add({Qt::SHIFT | Qt::Key_Right}, &PictureWindow::MoveRight);
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
    Caption_->setMinimumHeight(0);
    setWindowTitle(Names_.value(Place_));
    ShowWords(tr("Reading the picture..."));
    Loader_->Load(Mail_->Octets(), {File()}, {});
}

/// Where the picture would be.
void PictureWindow::ShowWords(const QString& words)
{
    View_->SetWords(words);
    Area_->setWidgetResizable(true);
    ShowCaption();
    View_->setAccessibleName(Caption_->text() + Separator + words);
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
    Caption_->setText(parts.join(Separator));
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
    QScrollBar* across = Area_->horizontalScrollBar();
    QScrollBar* down = Area_->verticalScrollBar();
    const double middleAcross = MiddleOf(across);
    const double middleDown = MiddleOf(down);
    View_->resize((QSizeF(View_->PictureSize()) * Scale_).toSize().expandedTo(QSize(1, 1)));
    KeepMiddle(across, middleAcross);
    KeepMiddle(down, middleDown);
    View_->update();
    ShowCaption();
}

void PictureWindow::Whole()
{
    FitsWindow_ = true;
    Fit();
}

void PictureWindow::Move(QScrollBar* bar, int direction)
{
    bar->setValue(bar->value() + direction * bar->pageStep() / MovesInWindow);
}

void PictureWindow::MoveUp()
{
    Move(Area_->verticalScrollBar(), -1);
}

void PictureWindow::MoveDown()
{
    Move(Area_->verticalScrollBar(), 1);
}

void PictureWindow::MoveLeft()
{
    Move(Area_->horizontalScrollBar(), isRightToLeft() ? 1 : -1);
}

void PictureWindow::MoveRight()
{
    Move(Area_->horizontalScrollBar(), isRightToLeft() ? -1 : 1);
}

/// Its room changes with the window, and with the lines of the caption.
bool PictureWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == Area_ && event->type() == QEvent::Resize)
        Fit();
    // No lower while the same picture is on show in the same window: fewer lines make room for a larger picture, whose
    // caption may need the line again.
    if (watched == Caption_ && event->type() == QEvent::Resize)
        Caption_->setMinimumHeight(Caption_->height());
    return QDialog::eventFilter(watched, event);
}

void PictureWindow::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    Caption_->setMinimumHeight(0);
}

void PictureWindow::Save()
{
    const QPointer<PictureWindow> self(this);
    const QString words = AttachmentList::Save(Mail_, File());
    if (self && !words.isEmpty())
        ShowCaption(words);
}
