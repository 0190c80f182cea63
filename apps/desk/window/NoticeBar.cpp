// SPDX-License-Identifier: Apache-2.0
#include "NoticeBar.h"

#include "platform/widgets/Icons.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace
{
/// How much of the accent is mixed into the window's own colour.
constexpr double Strength = 0.16;
const QColor Accent(0xE3, 0xAB, 0x3F);

QColor Mixed(const QColor& ground, const QColor& accent)
{
    const auto mix = [](int a, int b) { return qRound(a + (b - a) * Strength); };
    return {mix(ground.red(), accent.red()), mix(ground.green(), accent.green()), mix(ground.blue(), accent.blue())};
}
} // namespace

NoticeBar::NoticeBar(const QString& icon, const QString& button, QWidget* parent)
    : QFrame(parent), Icon_(icon), Picture_(new QLabel(this)), Text_(new QLabel(this)), Button_(new QPushButton(this))
{
    Text_->setObjectName(QStringLiteral("noticeText"));
    // It may quote what a listener wrote.
    Text_->setTextFormat(Qt::PlainText);
    Text_->setWordWrap(true);
    Button_->setObjectName(QStringLiteral("noticeButton"));
    SetButton(button);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 3, 8, 3);
    layout->addWidget(Picture_);
    layout->addWidget(Text_, 1);
    layout->addWidget(Button_);
    connect(Button_, &QPushButton::clicked, this, &NoticeBar::ButtonClicked);
    DrawPicture();
    hide();
}

void NoticeBar::Show(const QString& text)
{
    Text_->setText(text);
    Text_->setAccessibleName(text);
    setVisible(!text.isEmpty());
}

void NoticeBar::SetButton(const QString& text)
{
    Button_->setText(text);
    Button_->setAccessibleName(QString(text).remove(u'&'));
    Button_->setVisible(!text.isEmpty());
}

void NoticeBar::ShowButton(bool isShown)
{
    Button_->setVisible(isShown && !Button_->text().isEmpty());
}

QString NoticeBar::Text() const
{
    return isHidden() ? QString() : Text_->text();
}

void NoticeBar::changeEvent(QEvent* event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange)
        DrawPicture();
}

/// The window's own colours with some accent, whatever they are at this moment.
void NoticeBar::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.fillRect(rect(), Mixed(palette().color(QPalette::Window), Accent));
    QFrame::paintEvent(event);
}

void NoticeBar::DrawPicture()
{
    Picture_->setPixmap(Icons::Get(Icon_).pixmap(QSize(Icons::SmallSide, Icons::SmallSide), devicePixelRatioF()));
}
