// SPDX-License-Identifier: Apache-2.0
#include "messages/controls/uMessageBasic.h"

#include "common/MachineSettings.h"
#include "messages/controls/ValueLabel.h"
#include "platform/mail/MessageReader.h"
#include "platform/widgets/Contrast.h"
#include "platform/widgets/Panel3.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/Twips.h"
#include "platform/widgets/WebBrowser.h"

#include <QEvent>

namespace
{
constexpr qint32 DefaultBackColour = 0xD1A89F;
constexpr qint32 PersonalColour = 0x9CE4FF;

/// Characters of a body that are decoded at once; the pane shows less of them.
constexpr qsizetype LongestPage = 1'000'000;
/// In which the bodies and pictures that show at once are looked for; each takes some 50 microseconds.
constexpr int MostParts = 500;

// Twips.
constexpr double SmallestWidth = 4000;
constexpr double SmallestHeight = 3000;
constexpr double PersonalMargin = 150;
constexpr double MessageGap = 120;
constexpr double BodyOffset = 60;

enum Row
{
    DateRow,
    FromRow,
    ToRow,
    SubjectRow
};
} // namespace

uMessageBasic::uMessageBasic(QWidget* parent)
    : QWidget(parent), pnlMain_(new Panel3(this)), pnlPersonal_(new Panel3(pnlMain_)), Font_(font())
{
    pnlMain_->setObjectName(QStringLiteral("pnlMain"));
    pnlMain_->SetBackColour(DefaultBackColour);
    Values_[DateRow] = AddRow("lblDate", QStringLiteral("Date:"));
    Values_[FromRow] = AddRow("lblFrom", QStringLiteral("From:"));
    Values_[ToRow] = AddRow("lblTo", QStringLiteral("To:"));
    Values_[SubjectRow] = AddRow("lblSubject", QStringLiteral("Subject"));

    pnlPersonal_->setObjectName(QStringLiteral("pnlPersonal"));
    pnlPersonal_->SetCaption(QStringLiteral("Personal Message"));
    pnlPersonal_->SetBackColour(PersonalColour);
    pnlPersonal_->SetBorderStyle(Panel3::FixedSingle);
    picBody_ = new QFrame(pnlMain_);
    picBody_->setObjectName(QStringLiteral("picBody"));
    picBody_->setFrameStyle(QFrame::NoFrame);
    wbBody_ = new WebBrowser(picBody_);
    wbBody_->setObjectName(QStringLiteral("wbBody"));
    connect(wbBody_, &WebBrowser::Zoomed, this, &uMessageBasic::TextSizeChanged);
    picBody_->installEventFilter(this);
    setFocusProxy(wbBody_);

    ApplyColours();
    resize(sizeHint());
    PlaceRows();
    SetMessage(nullptr);
}

uMessageBasic::~uMessageBasic() = default;

int uMessageBasic::TextSize() const
{
    return wbBody_->ZoomSteps();
}

void uMessageBasic::SetTextSize(int steps)
{
    wbBody_->SetZoomSteps(steps);
}

ValueLabel* uMessageBasic::AddRow(const char* name, const QString& caption)
{
    const auto row = static_cast<size_t>(std::find(Captions_.begin(), Captions_.end(), nullptr) - Captions_.begin());
    const QString valueName = QLatin1String(name);
    auto* description = new QLabel(caption, pnlMain_);
    description->setObjectName(valueName + QStringLiteral("Desc"));
    description->setTextFormat(Qt::PlainText);
    QFont captionFont = font();
    captionFont.setFamily(QStringLiteral("Tahoma"));
    description->setFont(captionFont);
    description->setAutoFillBackground(true);
    auto* value = new ValueLabel(pnlMain_);
    value->setObjectName(valueName);
    value->setAccessibleName(QString(caption).remove(u':'));
    value->setAutoFillBackground(true);
    description->setBuddy(value);
    Captions_.at(row) = description;
    return value;
}

qint32 uMessageBasic::BackColour() const
{
    return pnlMain_->BackColour();
}

void uMessageBasic::SetBackColour(qint32 colour)
{
    pnlMain_->SetBackColour(colour);
    ApplyColours();
}

void uMessageBasic::SetForeColour(qint32 colour)
{
    ForeColour_ = colour;
    ApplyColours();
}

void uMessageBasic::ApplyColours()
{
    const QColor background = SystemColour::ToColour(BackColour(), palette());
    const QColor text = Contrast::Readable(SystemColour::ToColour(ForeColour_, palette()), background);
    const auto paint = [&](QWidget* label) {
        QPalette colours = label->palette();
        colours.setColor(QPalette::Window, background);
        colours.setColor(QPalette::WindowText, text);
        colours.setColor(QPalette::Text, text);
        label->setPalette(colours);
    };
    for (QLabel* label : Captions_)
        paint(label);
    for (ValueLabel* label : Values_)
        paint(label);
}

void uMessageBasic::SetFont(const QFont& font)
{
    Font_ = font;
    for (QLabel* label : Captions_)
        label->setFont(font);
    for (ValueLabel* label : Values_)
        label->setFont(font);
    PlaceRows();
}

void uMessageBasic::SetShowBodyBorder(bool show)
{
    ShowBodyBorder_ = show;
    picBody_->setFrameStyle(show ? QFrame::Box | QFrame::Plain : QFrame::NoFrame);
    PlaceBody();
}

void uMessageBasic::SetShowsSentDate(bool shows)
{
    ShowsSentDate_ = shows;
    if (Message_)
        Values_[DateRow]->SetValue(DateText());
}

void uMessageBasic::SetUsesFreeWidth(bool uses)
{
    UsesFreeWidth_ = uses;
    PlaceParts();
}

QString uMessageBasic::DateText() const
{
    const bool isSent = ShowsSentDate_ && !Message_->Sent().IsNone();
    return isSent ? Message_->SentString() : Message_->ReceivedString();
}

void uMessageBasic::SetMessage(const cMessagePtr& message)
{
    Message_ = message;
    pnlPersonal_->SetVisible(message != nullptr && message->PersonalToContact() != 0);
    if (UsesFreeWidth_)
        PlaceParts();
    if (message == nullptr) {
        for (ValueLabel* label : Values_)
            label->SetValue(QString());
        wbBody_->ClearPage();
        wbBody_->SetContentLoader({});
        return;
    }
    const cdo::Message& mail = *message->CDOMessage();
    const cdo::MessageReader reader(mail);
    const bool isMasked = message->MessageType() == emtSMS && MachineSettings::MasksPhoneNumbers();
    const QString mask = QStringLiteral("0XXX-XXXXXX");
    Values_[DateRow]->SetValue(DateText());
    Values_[ToRow]->SetValue(isMasked ? mask : reader.Header("To"));
    Values_[FromRow]->SetValue(isMasked ? mask : reader.Header("From"));
    Values_[SubjectRow]->SetValue(reader.Header("Subject"));
    ShowBody();
}

void uMessageBasic::ShowBody()
{
    const std::shared_ptr<cdo::Message> mail = Message_->CDOMessage();
    cdo::MessageReader reader(*mail, MostParts);
    const auto pictures = reader.HasMoreParts() ? std::make_shared<cdo::Message>(reader.Octets()) : mail;
    wbBody_->SetContentLoader([pictures](const QString& contentID, QString* contentType) {
        return pictures->ContentByID(contentID, contentType);
    });
    bool isWhole = true;
    const QString html = reader.HtmlBeginning(LongestPage, &isWhole);
    if (!html.isEmpty()) {
        if (!isWhole)
            wbBody_->SetWhole([mail] { return mail->HTMLBody(); });
        return wbBody_->ShowHTML(html);
    }
    const QString text = reader.TextBeginning(LongestPage, &isWhole);
    if (!isWhole)
        wbBody_->SetWhole([mail] { return mail->TextBody(); });
    wbBody_->ShowText(text);
}

void uMessageBasic::SetMarker(std::function<QList<std::pair<qsizetype, qsizetype>>(const QString& text)> marker)
{
    wbBody_->SetMarker(std::move(marker));
}

void uMessageBasic::ReadProperties(const PropertyBag& bag)
{
    SetBackColour(bag.ReadProperty(QStringLiteral("BackColour"), pnlMain_->BackColour()).toInt());
    SetForeColour(bag.ReadProperty(QStringLiteral("ForeColour"), 0).toInt());
    const QVariant stored = bag.ReadProperty(QStringLiteral("Font"), QVariant::fromValue(font()));
    if (stored.canConvert<QFont>())
        SetFont(stored.value<QFont>());
    SetShowBodyBorder(bag.ReadProperty(QStringLiteral("ShowBodyBorder"), false).toBool());
}

void uMessageBasic::WriteProperties(PropertyBag& bag) const
{
    bag.WriteProperty(QStringLiteral("BackColour"), BackColour(), DefaultBackColour);
    bag.WriteProperty(QStringLiteral("ForeColour"), ForeColour_, 0);
    bag.WriteProperty(QStringLiteral("Font"), QVariant::fromValue(Font_), QVariant::fromValue(font()));
    bag.WriteProperty(QStringLiteral("ShowBodyBorder"), ShowBodyBorder_, false);
}

QWidget& uMessageBasic::BodyPane() const
{
    return *wbBody_;
}

QSize uMessageBasic::minimumSizeHint() const
{
    return {Twips::ToPixels(*this, SmallestWidth), Twips::ToPixels(*this, SmallestHeight)};
}

QSize uMessageBasic::sizeHint() const
{
    return {Twips::ToPixels(*this, 9000), Twips::ToPixels(*this, 7000)};
}

void uMessageBasic::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const QSize smallest = minimumSizeHint();
    // Each of these resizes again.
    if (width() < smallest.width())
        return resize(smallest.width(), height());
    if (height() < smallest.height())
        return resize(width(), smallest.height());
    PlaceParts();
}

void uMessageBasic::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColours();
}

bool uMessageBasic::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == picBody_ && event->type() == QEvent::Resize)
        PlaceBody();
    return QWidget::eventFilter(watched, event);
}

/// The rows under each other, as high as their text, and the body below them.
void uMessageBasic::PlaceRows()
{
    const int margin = Twips::ToPixels(*this, MessageGap);
    int captionWidth = 0;
    for (const QLabel* label : Captions_)
        captionWidth = std::max(captionWidth, label->sizeHint().width());
    int top = margin;
    for (size_t row = 0; row < Captions_.size(); ++row) {
        const int height =
            std::max(Captions_.at(row)->sizeHint().height(), Values_.at(row)->fontMetrics().height()) + 2;
        Captions_.at(row)->setGeometry(margin, top, captionWidth, height);
        Values_.at(row)->setGeometry(margin + captionWidth + margin, top, Values_.at(row)->width(), height);
        top += height;
    }
    pnlPersonal_->resize(pnlPersonal_->sizeHint());
    pnlPersonal_->move(pnlPersonal_->x(), margin);
    picBody_->move(margin, top + margin);
    PlaceParts();
}

void uMessageBasic::PlaceParts()
{
    const auto pixels = [this](double twips) { return Twips::ToPixels(*this, twips); };
    pnlMain_->setGeometry(rect());
    pnlPersonal_->move(pnlMain_->width() - pixels(PersonalMargin) - pnlPersonal_->width(), pnlPersonal_->y());
    const bool isFree = UsesFreeWidth_ && pnlPersonal_->isHidden();
    const int right = (isFree ? pnlMain_->width() : pnlPersonal_->x()) - pixels(MessageGap);
    for (ValueLabel* label : Values_)
        label->resize(std::max(right - label->x(), 0), label->height());
    picBody_->resize(std::max(pnlMain_->width() - pixels(MessageGap) - picBody_->x(), 0),
                     std::max(pnlMain_->height() - pixels(MessageGap) - picBody_->y(), 0));
}

void uMessageBasic::PlaceBody()
{
    const int offset = ShowBodyBorder_ ? Twips::ToPixels(*this, BodyOffset) : 0;
    wbBody_->setGeometry(picBody_->contentsRect().adjusted(offset, offset, -offset, -offset));
}
