// SPDX-License-Identifier: Apache-2.0
#include "messages/controls/uMessageAddress.h"

#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"

#include <QEvent>
#include <QTextDocument>
#include <QTextOption>

namespace
{
const QString BackColourKey = QStringLiteral("BackColour");
const QString TextKey = QStringLiteral("Text");
const QString LinksKey = QStringLiteral("DisplayAddressLinks");
const QString Separator = QStringLiteral("; ");
constexpr qint32 LinkColour = 0xC00000;

QString Without(QString text, const char* characters)
{
    const QString all = QLatin1String(characters);
    return text.removeIf([&all](QChar c) { return all.contains(c); });
}
} // namespace

/// Set while a handler walks the selection.
class uMessageAddress::BusyMark
{
public:
    explicit BusyMark(RichTextBox& box) : Box_(box) { Box_.SetTag(QStringLiteral("1")); }
    ~BusyMark() { Box_.SetTag(QStringLiteral("0")); }
    BusyMark(const BusyMark&) = delete;
    BusyMark& operator=(const BusyMark&) = delete;

private:
    RichTextBox& Box_;
};

uMessageAddress::uMessageAddress(QWidget* parent) : QWidget(parent), rtfAddresses_(new RichTextBox(this))
{
    rtfAddresses_->setObjectName(QStringLiteral("rtfAddresses"));
    rtfAddresses_->setAccessibleName(tr("Addresses"));
    rtfAddresses_->setTabChangesFocus(true);
    rtfAddresses_->SetTag(QStringLiteral("0"));
    // Entries read from the left, whatever script a name is in; Left and Right go the way of the text then.
    QTextOption option = rtfAddresses_->document()->defaultTextOption();
    option.setTextDirection(Qt::LeftToRight);
    rtfAddresses_->document()->setDefaultTextOption(option);
    setFocusProxy(rtfAddresses_);
    SetBackColour(SystemColour::ButtonFace);
    rtfAddresses_->SetText(QStringLiteral("MessageAddress"));

    connect(rtfAddresses_, &RichTextBox::Change, this, &uMessageAddress::TextChanged);
    connect(rtfAddresses_, &RichTextBox::KeyDown, this, &uMessageAddress::KeyDown);
    connect(rtfAddresses_, &RichTextBox::MouseDown, this, [this] {
        if (rtfAddresses_->SelLength() > 0)
            rtfAddresses_->SetSelLength(0);
    });
    connect(rtfAddresses_, &RichTextBox::MouseUp, this, &uMessageAddress::MouseUp);
}

uMessageAddress::~uMessageAddress() = default;

void uMessageAddress::SetBackColour(qint32 colour)
{
    rtfAddresses_->SetBackColor(colour);
    ApplyColours();
    Q_EMIT PropertyChanged(BackColourKey);
}

void uMessageAddress::SetBorderStyle(RichTextBox::BorderStyles style)
{
    rtfAddresses_->SetBorderStyle(style);
    Q_EMIT PropertyChanged(QStringLiteral("BorderStyle"));
}

void uMessageAddress::SetEnabled(bool enabled)
{
    setEnabled(enabled);
    rtfAddresses_->setEnabled(enabled);
    Q_EMIT PropertyChanged(QStringLiteral("Enabled"));
}

void uMessageAddress::SetLocked(bool locked)
{
    rtfAddresses_->SetLocked(locked);
    Q_EMIT PropertyChanged(QStringLiteral("Locked"));
}

void uMessageAddress::Settext(const QString& text)
{
    rtfAddresses_->SetTextRTF(text);
    Q_EMIT PropertyChanged(TextKey);
}

void uMessageAddress::SetDisplayAddressLinks(bool display)
{
    DisplayAddressLinks_ = display;
    rtfAddresses_->SetMousePointer(display ? RichTextBox::CustomPointer : RichTextBox::DefaultPointer);
    {
        const RichTextBox::Hold hold(*rtfAddresses_);
        StepTo(0);
        rtfAddresses_->SetSelLength(TextLength());
        rtfAddresses_->SetSelColor(display ? LinkColour : SystemColour::WindowText);
        rtfAddresses_->SetSelLength(0);
    }
    Q_EMIT PropertyChanged(LinksKey);
}

int uMessageAddress::TextLength() const
{
    return rtfAddresses_->document()->characterCount() - 1;
}

void uMessageAddress::AddAddress(const QString& Name, const QString& Address)
{
    const QString name = Without(Name.trimmed(), "\"");
    const QString address = Without(Address.trimmed(), "<>");
    if (name.isEmpty() && address.isEmpty())
        return;
    const BusyMark busy(*rtfAddresses_);
    const RichTextBox::Hold hold(*rtfAddresses_);
    QString entry;
    if (!name.isEmpty())
        entry = u'"' + name + u'"';
    if (!address.isEmpty())
        entry += QStringLiteral(" <%1>").arg(address);

    RichTextBox& box = *rtfAddresses_;
    if (Caret() > 2 && !text().trimmed().isEmpty() && !text().left(Caret()).trimmed().endsWith(u';'))
        box.SetSelText(Separator);
    const int place = Caret();
    box.SetSelLength(0);
    box.SetSelText(entry);
    // As the box counts it: to it, the two characters that end a line are one.
    const int length = Caret() - place;
    StepTo(place);
    box.SetSelLength(length);
    box.SetSelProtected(true);
    StepTo(place + length);
    box.SetSelProtected(false);
    if (!text().mid(Caret()).trimmed().startsWith(u';'))
        box.SetSelText(Separator);
}

void uMessageAddress::TextChanged()
{
    if (text().trimmed().isEmpty())
        rtfAddresses_->SetTextRTF(QString());
    Q_EMIT Change();
}

void uMessageAddress::KeyDown(int& key)
{
    switch (key) {
    case Qt::Key_Left:
        return LeftKey(key);
    case Qt::Key_Right:
        return RightKey(key);
    case Qt::Key_Backspace:
        return BackspaceKey();
    case Qt::Key_Delete:
        return DeleteKey();
    case Qt::Key_Home:
    case Qt::Key_End:
        return;
    default:
        if (Locked())
            return;
        // A run loses its protection whole or not at all.
        rtfAddresses_->WidenSelection();
        rtfAddresses_->SetSelProtected(false);
    }
}

void uMessageAddress::LeftKey(int& key)
{
    if (rtfAddresses_->SelProtected() != true)
        return;
    const RichTextBox::Hold hold(*rtfAddresses_);
    while (Caret() > 0) {
        StepTo(Caret() - 1);
        if (rtfAddresses_->SelProtected() == false)
            break;
    }
    key = 0;
}

void uMessageAddress::RightKey(int& key)
{
    const RichTextBox::Hold hold(*rtfAddresses_);
    // The state is that of the character before the caret: this looks at the one behind it.
    if (Caret() > 0 && rtfAddresses_->SelProtected() == false)
        StepTo(rtfAddresses_->PlaceBehind(Caret()));
    if (rtfAddresses_->SelProtected() == true) {
        while (Caret() < TextLength()) {
            StepTo(rtfAddresses_->PlaceBehind(Caret()));
            if (rtfAddresses_->SelProtected() == false)
                break;
        }
    }
    key = 0;
}

void uMessageAddress::BackspaceKey()
{
    const BusyMark busy(*rtfAddresses_);
    if (rtfAddresses_->SelProtected() == false)
        return;
    const RichTextBox::Hold hold(*rtfAddresses_);
    const int place = Caret();
    if (Caret() > 0)
        StepTo(Caret() - 1);
    while (Caret() > 0) {
        StepTo(Caret() - 1);
        if (rtfAddresses_->SelProtected() != true)
            break;
    }
    rtfAddresses_->SetSelLength(place - Caret());
}

void uMessageAddress::DeleteKey()
{
    const BusyMark busy(*rtfAddresses_);
    RichTextBox& box = *rtfAddresses_;
    const RichTextBox::Hold hold(box);
    // A place is a whole character: half of one is not left behind.
    if (Caret() > 0 && box.SelProtected() == false)
        StepTo(box.PlaceBehind(Caret()));
    if (box.SelProtected() == false)
        return;
    if (!box.SelProtected().has_value() && Caret() > 0)
        StepTo(Caret() - 1);
    while (Caret() + box.SelLength() < TextLength()) {
        box.SetSelLength(box.PlaceBehind(Caret() + box.SelLength()) - Caret());
        if (box.SelProtected() != true)
            break;
    }
}

void uMessageAddress::MouseUp(Qt::MouseButton button)
{
    const int caret = Caret();
    if (rtfAddresses_->SelProtected() == false || caret == 0 || caret == TextLength() ||
        rtfAddresses_->Tag().toDouble() == 1)
        return;
    SelectRun();
    if (button == Qt::LeftButton && rtfAddresses_->SelLength() > 0)
        ReportClick();
}

/// The caret lies in the run, or right behind it.
void uMessageAddress::SelectRun()
{
    const BusyMark busy(*rtfAddresses_);
    RichTextBox& box = *rtfAddresses_;
    const RichTextBox::Hold hold(box);
    for (int place = Caret(); box.SelProtected() != false && place >= 1; --place) {
        StepTo(Caret() - 1);
        if (box.SelProtected() == false)
            break;
    }
    box.SetSelLength(0);
    while (Caret() + box.SelLength() < TextLength()) {
        box.SetSelLength(box.SelLength() + 1);
        if (box.SelProtected() != true) {
            box.SetSelLength(box.SelLength() - 1);
            break;
        }
    }
}

void uMessageAddress::ReportClick()
{
    const QString selected = rtfAddresses_->SelText();
    const qsizetype bracket = selected.indexOf(u'<') + 1;
    QString name;
    QString email = selected;
    if (bracket >= 2) {
        name = selected.left(bracket - 1).trimmed();
        email = selected.mid(bracket - 1).trimmed();
    }
    Q_EMIT AddressClicked(Without(name, "\"<>"), Without(email, "\"<>"));
}

void uMessageAddress::ReadProperties(const PropertyBag& bag)
{
    SetBackColour(bag.ReadProperty(BackColourKey, SystemColour::ButtonFace).toInt());
    Settext(bag.ReadProperty(TextKey, QString()).toString());
    SetDisplayAddressLinks(bag.ReadProperty(LinksKey, false).toBool());
}

void uMessageAddress::WriteProperties(PropertyBag& bag) const
{
    bag.WriteProperty(BackColourKey, BackColour(), SystemColour::ButtonFace);
    bag.WriteProperty(TextKey, text(), QString());
    bag.WriteProperty(LinksKey, DisplayAddressLinks_, false);
}

void uMessageAddress::ApplyColours()
{
    const QColor ground = SystemColour::ToColour(BackColour(), palette());
    if (palette().color(QPalette::Window) == ground)
        return;
    QPalette own = palette();
    own.setColor(QPalette::Window, ground);
    setPalette(own);
}

void uMessageAddress::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColours();
}

QSize uMessageAddress::sizeHint() const
{
    return {rtfAddresses_->fontMetrics().averageCharWidth() * 40, rtfAddresses_->fontMetrics().lineSpacing() + 12};
}

void uMessageAddress::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    rtfAddresses_->setGeometry(rect());
}
