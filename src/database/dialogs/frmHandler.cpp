// SPDX-License-Identifier: Apache-2.0
#include "database/dialogs/frmHandler.h"

#include "platform/widgets/Contrast.h"
#include "platform/widgets/Panel3.h"
#include "platform/widgets/Twips.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScreen>

namespace
{
constexpr double FromRight = 60;        // twips
constexpr double FromBottom = 60 + 350; // the second is room for a task bar
constexpr double OKWidth = 900;
constexpr qint64 LongestWait = 500; // milliseconds
} // namespace

frmHandler::frmHandler()
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus)
{
    setObjectName(QStringLiteral("frmHandler"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    const QString text = QStringLiteral("Tolva is automatically creating a backup of your database");
    setWindowTitle(text);
    lblBackingUpDesc_ = new QLabel(text, this);
    lblBackingUpDesc_->setObjectName(QStringLiteral("lblBackingUpDesc"));
    pnlOK_ = new Panel3(this);
    pnlOK_->setObjectName(QStringLiteral("pnlOK"));
    pnlOK_->SetCaption(QStringLiteral("OK"));
    pnlOK_->SetBevel(Panel3::RaisedBevel);
    pnlOK_->setMinimumWidth(Twips::ToPixels(*this, OKWidth));
    connect(pnlOK_, &Panel3::MouseDown, this, [this](Qt::MouseButton button) {
        if (button == Qt::LeftButton)
            PressOK();
    });
    connect(pnlOK_, &Panel3::MouseUp, this, [this](Qt::MouseButton button, QPointF twips) {
        if (button == Qt::LeftButton)
            ReleaseOK(twips);
    });
    auto* row = new QHBoxLayout(this);
    row->addWidget(lblBackingUpDesc_, 1);
    row->addWidget(pnlOK_);
    row->setSizeConstraint(QLayout::SetFixedSize);
}

void frmHandler::Place()
{
    ensurePolished();
    adjustSize();
    const QRect screen = this->screen()->geometry();
    move(screen.x() + screen.width() - width() - Twips::ToPixels(*this, FromRight),
         screen.y() + screen.height() - height() - Twips::ToPixels(*this, FromBottom));
}

void frmHandler::ShowNotice()
{
    pnlOK_->SetBevel(Panel3::RaisedBevel);
    if (!isVisible()) {
        IsPainted_ = false;
        Place();
        show();
    }
    raise();
    QElapsedTimer waiting;
    waiting.start();
    while (isVisible() && !IsPainted_ && !waiting.hasExpired(LongestWait))
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 5);
}

void frmHandler::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(Contrast::Blend(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.4));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    IsPainted_ = true;
}

void frmHandler::PressOK()
{
    pnlOK_->SetBevel(Panel3::InsetBevel);
}

void frmHandler::ReleaseOK(const QPointF& twips)
{
    pnlOK_->SetBevel(Panel3::RaisedBevel);
    // Let go elsewhere, it was not meant.
    if (QRectF(pnlOK_->rect()).contains(twips / Twips::PerPixel(*pnlOK_)))
        hide();
}
