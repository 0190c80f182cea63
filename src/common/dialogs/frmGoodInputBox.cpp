// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/frmGoodInputBox.h"

#include "platform/widgets/SystemColour.h"
#include "platform/widgets/Twips.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProxyStyle>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>
#include <QValidator>

#include <limits>

namespace
{
constexpr double BoxGap = 120; // twips, also below the buttons
constexpr double LeastBoxWidth = 5400;
constexpr double ListHeight = 2400;
constexpr int NoLimit = std::numeric_limits<int>::max();

/// The style in force, but for the character that stands for each one of a hidden text.
class MaskStyle final : public QProxyStyle
{
public:
    explicit MaskStyle(QChar mask) : QProxyStyle(QApplication::style()->name()), Mask_(mask) {}

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override
    {
        if (hint == SH_LineEdit_PasswordCharacter)
            return Mask_.unicode();
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }

private:
    QChar Mask_;
};

template <typename Control>
Control* MakeControl(QWidget* parent, const QString& name)
{
    auto* control = new Control(parent);
    control->setObjectName(name);
    return control;
}
} // namespace

/// While a text is longer than the limit, a change is taken only when it makes the text shorter. The line edit's own
/// limit cannot do that: it would cut the text when it is set.
class frmGoodInputBox::LengthLimit final : public QValidator
{
public:
    explicit LengthLimit(QLineEdit* edit) : QValidator(edit)
    {
        connect(edit, &QLineEdit::textChanged, this, [this](const QString& text) { Text_ = text; });
    }
    void SetLimit(int limit) { Limit_ = limit; }
    int Limit() const { return Limit_; }

    State validate(QString& input, int&) const override
    {
        const bool isFine = input.size() <= Limit_ || input.size() < Text_.size() || input == Text_;
        return isFine ? Acceptable : Invalid;
    }

private:
    int Limit_ = NoLimit;
    QString Text_;
};

frmGoodInputBox::frmGoodInputBox(QWidget* owner) : QDialog(owner)
{
    setObjectName(QStringLiteral("frmGoodInputBox"));
    setWindowFlag(Qt::WindowStaysOnTopHint);
    MakeControls();
    LayOut();
    ShowInput();
}

void frmGoodInputBox::MakeControls()
{
    lblCaption_ = MakeControl<QLabel>(this, QStringLiteral("lblCaption"));
    lblCaption_->setTextFormat(Qt::PlainText);
    lblCaption_->setWordWrap(true);
    Text1_ = MakeControl<QLineEdit>(this, QStringLiteral("Text1"));
    Limit_ = new LengthLimit(Text1_);
    Text1_->setMaxLength(NoLimit);
    Text1_->setValidator(Limit_);
    connect(Text1_, &QLineEdit::textChanged, this, &frmGoodInputBox::ApplyLimit);
    comboCombo_ = MakeControl<QComboBox>(this, QStringLiteral("comboCombo"));
    comboCombo_->setEditable(true);
    comboCombo_->setInsertPolicy(QComboBox::NoInsert);
    comboList_ = MakeControl<QComboBox>(this, QStringLiteral("comboList"));
    comboSortedList_ = MakeControl<QComboBox>(this, QStringLiteral("comboSortedList"));
    listMulti_ = MakeControl<QListWidget>(this, QStringLiteral("listMulti"));
    listMulti_->setSelectionMode(QAbstractItemView::MultiSelection);
    listMultiNonSel_ = MakeControl<QListWidget>(this, QStringLiteral("listMultiNonSel"));
    connect(listMultiNonSel_, &QListWidget::itemDoubleClicked, this, &frmGoodInputBox::OK);
    Text1_->installEventFilter(this);
    comboCombo_->installEventFilter(this);
    cmdOK_ = MakeControl<QPushButton>(this, QStringLiteral("cmdOK"));
    cmdOK_->setText(QStringLiteral("OK"));
    cmdOK_->setDefault(true);
    connect(cmdOK_, &QPushButton::clicked, this, &frmGoodInputBox::OK);
    cmdCancel_ = MakeControl<QPushButton>(this, QStringLiteral("cmdCancel"));
    cmdCancel_->setText(QStringLiteral("Cancel"));
    connect(cmdCancel_, &QPushButton::clicked, this, &frmGoodInputBox::Cancel);
}

void frmGoodInputBox::LayOut()
{
    const int gap = Twips::ToPixels(*this, BoxGap);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(gap, gap, gap, gap);
    column->setSpacing(gap);
    column->addWidget(lblCaption_);
    for (QWidget* input : std::initializer_list<QWidget*>{Text1_, comboCombo_, comboList_, comboSortedList_})
        column->addWidget(input);
    for (QListWidget* list : {listMulti_, listMultiNonSel_}) {
        list->setMinimumHeight(Twips::ToPixels(*this, ListHeight));
        column->addWidget(list, 1);
    }
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(gap);
    buttons->addStretch();
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdCancel_);
    column->addLayout(buttons);
    setMinimumWidth(Twips::ToPixels(*this, LeastBoxWidth));
}

QWidget* frmGoodInputBox::Input() const
{
    if (ComboMode_)
        return comboCombo_;
    if (ListMode_)
        return comboList_;
    if (SortedListMode_)
        return comboSortedList_;
    if (MultiMode_)
        return listMulti_;
    if (MultiNonSelMode_)
        return listMultiNonSel_;
    return Text1_;
}

void frmGoodInputBox::ShowInput()
{
    QWidget* const input = Input();
    for (QWidget* control : std::initializer_list<QWidget*>{Text1_, comboCombo_, comboList_, comboSortedList_,
                                                            listMulti_, listMultiNonSel_})
        control->setVisible(control == input);
    input->setAccessibleName(lblCaption_->text());
}

void frmGoodInputBox::SetMode(bool& mode, bool value)
{
    mode = value;
    ShowInput();
}

void frmGoodInputBox::SetComboMode(bool mode)
{
    SetMode(ComboMode_, mode);
}

void frmGoodInputBox::SetListMode(bool mode)
{
    SetMode(ListMode_, mode);
}

void frmGoodInputBox::SetSortedListMode(bool mode)
{
    SetMode(SortedListMode_, mode);
}

void frmGoodInputBox::SetMultiMode(bool mode)
{
    SetMode(MultiMode_, mode);
}

void frmGoodInputBox::SetMultiNonSelMode(bool mode)
{
    SetMode(MultiNonSelMode_, mode);
}

void frmGoodInputBox::SetItems(const QStringList& items)
{
    QStringList shown = items;
    if (Input() == comboSortedList_)
        shown.sort(Qt::CaseInsensitive);
    if (auto* const list = qobject_cast<QListWidget*>(Input())) {
        list->clear();
        list->addItems(shown);
    } else if (auto* const combo = qobject_cast<QComboBox*>(Input())) {
        combo->clear();
        combo->addItems(shown);
    }
}

void frmGoodInputBox::SetPrompt(const QString& prompt)
{
    lblCaption_->setText(prompt);
    Input()->setAccessibleName(prompt);
}

void frmGoodInputBox::SetText(const QString& text)
{
    Text1_->setMaxLength(NoLimit);
    Text1_->setText(text);
    ApplyLimit();
}

void frmGoodInputBox::SetTLength(const QString& length)
{
    TLength_ = length;
    ApplyLimit();
}

void frmGoodInputBox::ApplyLimit()
{
    const int number = TLength_.trimmed().toInt();
    const int limit = number > 0 ? number : NoLimit;
    Limit_->SetLimit(limit);
    // The line edit's own limit puts in as much of a longer text as there is room for.
    const int longest = qMax(limit, static_cast<int>(Text1_->text().size()));
    if (Text1_->maxLength() != longest)
        Text1_->setMaxLength(longest);
}

void frmGoodInputBox::SetPasswordChar(const QString& character)
{
    Text1_->setEchoMode(character.isEmpty() ? QLineEdit::Normal : QLineEdit::Password);
    if (character.isEmpty())
        return;
    auto* style = new MaskStyle(character.at(0));
    style->setParent(Text1_);
    Text1_->setStyle(style);
}

void frmGoodInputBox::SetBackColour(const QVariant& colour)
{
    QColor background;
    if (colour.typeId() == QMetaType::QColor)
        background = colour.value<QColor>();
    else if (colour.canConvert<qint32>())
        background = SystemColour::ToColour(colour.toInt(), palette());
    if (!background.isValid())
        return;
    QPalette changed = palette();
    changed.setColor(QPalette::Window, background);
    // The prompt must be readable on it.
    changed.setColor(QPalette::WindowText, qGray(background.rgb()) < 128 ? Qt::white : Qt::black);
    setPalette(changed);
}

void frmGoodInputBox::Activate()
{
    QWidget* const input = Input();
    if (input == Text1_)
        ApplyLimit();
    if (input->isVisible())
        input->setFocus(Qt::OtherFocusReason);
}

bool frmGoodInputBox::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        Activate();
    return QDialog::event(event);
}

bool frmGoodInputBox::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        // Back from a menu or another window the selection is what the user left.
        if (reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason) {
            if (watched == Text1_)
                Text1_->selectAll();
            else if (watched == comboCombo_)
                comboCombo_->lineEdit()->selectAll();
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmGoodInputBox::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (event->spontaneous())
        return;
    Pointer_.emplace();
    adjustSize();
    const QScreen* const screen = parentWidget() ? parentWidget()->screen() : QGuiApplication::primaryScreen();
    if (screen)
        move(screen->availableGeometry().center() - rect().center());
    Activate();
    Text1_->selectAll();
    comboCombo_->lineEdit()->selectAll();
}

void frmGoodInputBox::hideEvent(QHideEvent* event)
{
    QDialog::hideEvent(event);
    if (event->spontaneous())
        return;
    Pointer_.reset();
    Q_EMIT Hidden();
}

void frmGoodInputBox::closeEvent(QCloseEvent* event)
{
    event->ignore();
    hide();
}

void frmGoodInputBox::reject()
{
    Cancel();
}

void frmGoodInputBox::OK()
{
    CancelL_ = QStringLiteral("0");
    if (TakeResult())
        hide();
}

/// False when there is none yet, which the user has been told.
bool frmGoodInputBox::TakeResult()
{
    QWidget* const input = Input();
    if (auto* const combo = qobject_cast<QComboBox*>(input)) {
        Tag_ = combo->currentText();
    } else if (auto* const list = qobject_cast<QListWidget*>(input)) {
        QStringList numbers;
        for (int i = 0; i < list->count(); ++i) {
            if (list->item(i)->isSelected())
                numbers.append(QString::number(i + 1));
        }
        if (list == listMultiNonSel_ && numbers.isEmpty()) {
            UserInterface::Current().MessageBox({QStringLiteral("You must select an item before clicking 'OK'"),
                                                 QString(), MessageBoxButtons::OK, MessageBoxIcon::Exclamation,
                                                 MessageBoxAnswer::OK});
            return false;
        }
        Tag_ = numbers.join(u',');
    } else {
        Tag_ = Text1_->text();
    }
    return true;
}

void frmGoodInputBox::Cancel()
{
    CancelL_ = QStringLiteral("1");
    Tag_.clear();
    hide();
}
