// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/TabStrip.h"

#include "platform/widgets/SystemColour.h"

#include <QApplication>
#include <QEvent>
#include <QTabBar>

#include <functional>
#include <utility>

namespace
{
/// A hidden bar asks nobody for room when it gets a tab, so it tells its strip.
class Bar : public QTabBar
{
public:
    Bar(QWidget* parent, std::function<void()> changed) : QTabBar(parent), Changed_(std::move(changed)) {}

protected:
    void tabInserted(int) override { Changed_(); }
    void tabRemoved(int) override { Changed_(); }

private:
    std::function<void()> Changed_;
};
} // namespace

TabStrip::TabStrip(QWidget* parent)
    : QFrame(parent),
      Tabs_(new Bar(this, [this] { LayOut(); })),
      Page_(new QWidget(this)),
      BackColour_(SystemColour::ButtonFace)
{
    Tabs_->setDocumentMode(true);
    Tabs_->setDrawBase(false);
    Tabs_->setExpanding(false);
    Tabs_->addTab(QStringLiteral(" "));
    setAutoFillBackground(true);
    connect(Tabs_, &QTabBar::currentChanged, this, &TabStrip::TabClick);
    connect(Tabs_, &QTabBar::tabBarClicked, this, [this](int index) {
        if (SingleTabShown_ && index >= 0 && Tabs_->count() == 1)
            Q_EMIT TabClick(index);
    });
}

void TabStrip::ShowSingleTab(const QString& caption)
{
    SingleTabShown_ = true;
    Tabs_->setTabText(0, caption);
    // There is nothing to choose by the keys.
    Tabs_->setFocusPolicy(Qt::NoFocus);
    LayOut();
}

int TabStrip::Tab() const
{
    return Tabs_->currentIndex();
}

void TabStrip::SetTab(int index)
{
    Tabs_->setCurrentIndex(index);
}

void TabStrip::SetBackColour(qint32 colour)
{
    BackColour_ = colour;
    ApplyColour();
}

void TabStrip::ApplyColour()
{
    QPalette own = palette();
    own.setColor(QPalette::Window, SystemColour::ToColour(BackColour_, QApplication::palette()));
    if (own != palette())
        setPalette(own);
}

void TabStrip::resizeEvent(QResizeEvent*)
{
    LayOut();
}

void TabStrip::changeEvent(QEvent* event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange)
        ApplyColour();
}

/// The bar grows with its captions.
bool TabStrip::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest)
        LayOut();
    return QFrame::event(event);
}

void TabStrip::LayOut()
{
    const bool shown = SingleTabShown_ || Tabs_->count() > 1;
    Tabs_->setVisible(shown);
    const int height = shown ? Tabs_->sizeHint().height() : 0;
    Tabs_->setGeometry(0, 0, width(), height);
    const QRect page(0, height, width(), qMax(0, this->height() - height));
    if (Page_->geometry() == page)
        return;
    Page_->setGeometry(page);
    Q_EMIT PageResized();
}
