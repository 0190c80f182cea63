// SPDX-License-Identifier: Apache-2.0
#include "PreviewPane.h"

#include "AttachmentList.h"
#include "messages/controls/uMessageBasic.h"
#include "platform/widgets/SystemColour.h"
#include "window/NoticeBar.h"

#include <QLabel>
#include <QStackedLayout>
#include <QVBoxLayout>

PreviewPane::PreviewPane(QWidget* parent)
    : QWidget(parent),
      Stack_(new QStackedLayout(this)),
      Empty_(new QLabel(tr("Select a message to read it here."), this)),
      Page_(new QWidget(this)),
      Stored_(new NoticeBar(QStringLiteral("warning"), QString(), Page_)),
      Damage_(new NoticeBar(QStringLiteral("warning"), QString(), Page_)),
      View_(new uMessageBasic(Page_)),
      Attachments_(new AttachmentList(Page_))
{
    setObjectName(QStringLiteral("preview"));
    setAccessibleName(tr("Message"));
    Stored_->setObjectName(QStringLiteral("paneNotice"));
    Damage_->setObjectName(QStringLiteral("damageNotice"));
    View_->setObjectName(QStringLiteral("viewer"));
    connect(View_, &uMessageBasic::TextSizeChanged, this, &PreviewPane::TextSizeChanged);
    View_->SetBackColour(SystemColour::ButtonFace);
    View_->SetForeColour(SystemColour::WindowText);
    View_->SetUsesFreeWidth(true);
    Empty_->setObjectName(QStringLiteral("previewEmpty"));
    Empty_->setAlignment(Qt::AlignCenter);
    Empty_->setForegroundRole(QPalette::PlaceholderText);
    auto* layout = new QVBoxLayout(Page_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Stored_);
    layout->addWidget(Damage_);
    layout->addWidget(View_, 1);
    layout->addWidget(Attachments_);
    Stack_->setContentsMargins(0, 0, 0, 0);
    Stack_->addWidget(Empty_);
    Stack_->addWidget(Page_);

    RestTimer_.setSingleShot(true);
    RestTimer_.setInterval(RestMilliseconds);
    ReadTimer_.setSingleShot(true);
    ReadTimer_.setInterval(ReadMilliseconds);
    connect(&RestTimer_, &QTimer::timeout, this, &PreviewPane::Load);
    connect(&ReadTimer_, &QTimer::timeout, this, &PreviewPane::TakeReadTime);
}

void PreviewPane::Select(const cMessagePtr& message)
{
    const bool isSame = message && Selected_ && message->Reference() == Selected_->Reference();
    Stored_->Show(QString());
    // The list's own marking saves the message, and each save marks its highlight words anew: that is nothing to jump
    // to the top of the page for.
    const bool isOnlyRead = isSame && (message->Flags() ^ Selected_->Flags()) == mfRead;
    if (isSame && Shown_ == Selected_ &&
        (isOnlyRead || message->CDOMessage()->Octets() == Selected_->CDOMessage()->Octets())) {
        Shown_ = Selected_ = message;
        return;
    }
    Selected_ = message;
    if (!isSame) {
        ReadTimer_.stop();
        Chosen_ = 0;
    }
    RestTimer_.start();
}

void PreviewPane::Load()
{
    const bool isOther = !Shown_ || !Selected_ || Shown_->Reference() != Selected_->Reference();
    Shown_ = Selected_;
    View_->SetMessage(Shown_);
    Damage_->Show(DamageWords());
    Attachments_->SetMessage(Shown_);
    Stack_->setCurrentWidget(Shown_ ? Page_ : Empty_);
    // In a window of its own the message is read by the keys at once.
    if (Shown_ && !window()->focusWidget())
        FocusTarget()->setFocus();
    if (Shown_ && isOther && (!ReportsOnlyChosen_ || Chosen_ == Shown_->Reference()))
        ReadTimer_.start();
}

void PreviewPane::Choose(qint32 reference)
{
    Chosen_ = reference;
    if (Shown_ && Shown_ == Selected_ && Shown_->Reference() == reference && (Shown_->Flags() & mfRead) == 0)
        ReadTimer_.start();
}

void PreviewPane::Tell(const QString& words)
{
    Stored_->Show(words);
}

QString PreviewPane::DamageWords() const
{
    if (!Shown_ || !Shown_->IsDamaged())
        return QString();
    const QString words = tr("This message is damaged: what is left of it is not what was saved.");
    return DamageAdvice_ ? words + u' ' + DamageAdvice_(Shown_->Reference()) : words;
}

void PreviewPane::TakeReadTime()
{
    if (!Shown_ || Shown_ != Selected_)
        return;
    // Nobody reads in a window that is behind another: it counts again from when it is looked at.
    if (window()->isActiveWindow())
        Q_EMIT WasRead(Shown_->Reference());
    else
        ReadTimer_.start();
}

void PreviewPane::SetShowsSentDate(bool shows)
{
    View_->SetShowsSentDate(shows);
}

void PreviewPane::SetMarker(std::function<QList<std::pair<qsizetype, qsizetype>>(const QString& text)> marker)
{
    View_->SetMarker(std::move(marker));
}

void PreviewPane::SetTextSize(int steps)
{
    View_->SetTextSize(steps);
}

QWidget* PreviewPane::FocusTarget() const
{
    return &View_->BodyPane();
}
