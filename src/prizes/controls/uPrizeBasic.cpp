// SPDX-License-Identifier: Apache-2.0
#include "prizes/controls/uPrizeBasic.h"

#include "common/ClockHelper.h"
#include "platform/directory/clsKVDirectory.h"
#include "platform/widgets/EventHandler.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/ListView.h"
#include "platform/widgets/Named.h"
#include "platform/widgets/PropertyBag.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/TabStrip.h"
#include "platform/widgets/TextBoxes.h"
#include "platform/widgets/Twips.h"
#include "prizes/RelativeTime.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QEvent>
#include <QFontMetrics>
#include <QLabel>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>
#include <QTextDocumentFragment>
#include <QTimer>

#include <array>
#include <limits>
#include <utility>

namespace
{
constexpr int RefreshMilliseconds = 20000;
/// An item's tag during a refresh, until its winner is met.
constexpr qint32 REMOVE = 1;

// Twips.
constexpr double TextColumnWidth = 2000;
constexpr double DateMargin = 600;
constexpr double ListMargin = 90;
constexpr double ScrollBarWidth = 225;
constexpr double PrizeMargin = 90;

enum WinnerColumn
{
    colReference,
    colName,
    colContact,
    colWonDate,
    columnCount
};

/// What the texts of a winner's line are made of.
struct WinnerSource
{
    qint16 Slot;
    clsKVContactPtr Contact; ///< None when the directory has it no more.
    Date Won;
};

/// What the widths of the columns depend on, in twips.
struct WinnersSpace
{
    double Half; ///< Of what the date leaves.
    double Date;
};

/// In the directory's order; empty when there is none.
QString FirstDetail(const clsKVContact& contact)
{
    const std::array details{&contact.Mobile, &contact.Telephone, &contact.Email, &contact.SecondEmail, &contact.Other};
    for (const QString* detail : details) {
        if (!detail->isEmpty())
            return *detail;
    }
    return {};
}

QString ContactName(const WinnerSource& winner)
{
    return winner.Contact ? winner.Contact->Name : QStringLiteral("<Missing Contact>");
}

QVariant TextOrder(const WinnerSource&)
{
    return {};
}

/// The columns of the winners, in the order of WinnerColumn.
constexpr struct
{
    const char* Key;
    const char* Caption;
    double FirstTwips; ///< Before the list has its size.
    double (*Width)(const WinnersSpace& space);
    QString (*Text)(const WinnerSource& winner);
    QVariant (*Order)(const WinnerSource& winner); ///< What it is sorted by; none: by its text.
} Columns[] = {
    {"REFERENCE", "#", 0, [](const WinnersSpace&) { return 0.0; },
     [](const WinnerSource& winner) { return QString::number(winner.Slot); }, TextOrder},
    {"NAME", "Name", TextColumnWidth, [](const WinnersSpace& space) { return space.Half; }, ContactName, TextOrder},
    {"CONTACT", "Contact", 0, [](const WinnersSpace& space) { return space.Half; },
     [](const WinnerSource& winner) { return winner.Contact ? FirstDetail(*winner.Contact) : QString(); }, TextOrder},
    {"WONDATE", "Won", TextColumnWidth, [](const WinnersSpace& space) { return space.Date; },
     [](const WinnerSource& winner) {
         return winner.Won.IsNone() ? QString() : TolvaControlsFN::RelativeTimeText(winner.Won);
     },
     [](const WinnerSource& winner) { return winner.Won.IsNone() ? QVariant() : QVariant(winner.Won.DayNumber()); }},
};
static_assert(std::size(Columns) == columnCount);

QString ItemKey(const cPrizeWinner& winner)
{
    return QLatin1Char('w') + QString::number(winner.Reference());
}
} // namespace

uPrizeBasic::uPrizeBasic(QWidget* parent) : QWidget(parent), BackColour_(SystemColour::ButtonFace)
{
    MakeControls();
    MakeWinners();
    LayOut();
    ConnectControls();
    ApplyBackColour();
    SetPrize(nullptr);
}

uPrizeBasic::~uPrizeBasic()
{
    tmrRefresh_->stop();
}

void uPrizeBasic::MakeControls()
{
    setAutoFillBackground(true);
    tbsDetails_ = Named(new TabStrip(this), "tbsDetails");
    QWidget& page = tbsDetails_->Page();
    txtTitle_ = Named(new TextBox(&page), "txtTitle");
    txtTitle_->setAccessibleName(tr("Title"));
    txtScript_ = Named(new TextArea(&page), "txtScript");
    txtScript_->setAccessibleName(tr("Script"));
    picWinners_ = Named(new QWidget(&page), "picWinners");
    picWinners_->installEventFilter(this);
}

void uPrizeBasic::MakeWinners()
{
    lblWinners_ = Named(new QLabel(picWinners_), "lblWinners");
    lblWinners_->setTextFormat(Qt::PlainText);
    lvwWinners_ = Named(new ListView(picWinners_), "lvwWinners");
    lvwWinners_->setAccessibleName(tr("Winners"));
    for (const auto& column : Columns)
        lvwWinners_->AddColumn(QLatin1String(column.Caption), column.FirstTwips, Qt::AlignLeft | Qt::AlignVCenter,
                               QLatin1String(column.Key));
    lvwWinners_->viewport()->installEventFilter(this);
    const auto button = [this](const char* name, const QString& icon, const QString& caption, const QString& tip) {
        auto* made = Named(new QPushButton(Icons::Get(icon), caption, picWinners_), name);
        made->setToolTip(tip);
        made->setAutoDefault(false);
        return made;
    };
    cmdAddWinner_ =
        button("cmdAddWinner", QStringLiteral("newwinner"), tr("&Add Winner"), QStringLiteral("Add a winner"));
    cmdShowWinner_ = button("cmdShowWinner", QStringLiteral("open"), tr("Show &Winner"),
                            QStringLiteral("Display the details of the selected winner"));
    tmrRefresh_ = Named(new QTimer(this), "tmrRefresh");
    tmrRefresh_->setInterval(RefreshMilliseconds);
}

void uPrizeBasic::LayOut()
{
    QWidget& page = tbsDetails_->Page();
    const int margin = Twips::ToPixels(*this, PrizeMargin);
    const auto caption = [&page](const char* name, const QString& text, QWidget* buddy) {
        auto* label = Named(new QLabel(text, &page), name);
        label->setBuddy(buddy);
        return label;
    };
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->addWidget(tbsDetails_);

    auto* winnersBar = new QHBoxLayout;
    winnersBar->addWidget(lblWinners_, 1);
    winnersBar->addWidget(cmdAddWinner_);
    winnersBar->addWidget(cmdShowWinner_);
    auto* winners = new QVBoxLayout(picWinners_);
    winners->setContentsMargins(0, 0, 0, 0);
    winners->addLayout(winnersBar);
    winners->addWidget(lvwWinners_, 1);

    auto* column = new QVBoxLayout(&page);
    column->setContentsMargins(margin, margin, margin, margin);
    column->addWidget(caption("lblTitleDesc", tr("&Title:"), txtTitle_));
    column->addWidget(txtTitle_);
    column->addWidget(caption("lblScriptDesc", tr("Sc&ript:"), txtScript_));
    column->addWidget(txtScript_, 1);
    column->addWidget(picWinners_, 2);
    const int lines = txtScript_->fontMetrics().lineSpacing();
    txtScript_->setMinimumHeight(3 * lines);
    lvwWinners_->setMinimumHeight(4 * lines);
    setMinimumSize(page.minimumSizeHint());
    for (const auto& [first, second] : {std::pair<QWidget*, QWidget*>{txtTitle_, txtScript_},
                                        {txtScript_, cmdAddWinner_},
                                        {cmdAddWinner_, cmdShowWinner_},
                                        {cmdShowWinner_, lvwWinners_}})
        setTabOrder(first, second);
}

void uPrizeBasic::ConnectControls()
{
    connect(txtScript_, &TextArea::textChanged, this, [this] {
        if (!Loading_ && Prize_)
            Prize_->SetEdited(true);
    });
    connect(lvwWinners_, &ListView::ItemClick, this, &uPrizeBasic::TakeItemClick);
    // What the host does in these events may fail.
    const auto showWinner = [this] {
        RunEventHandler(QStringLiteral("uPrizeBasic.cmdShowWinner_Click"), [this] { TakeShowWinner(); });
    };
    connect(lvwWinners_, &ListView::ItemActivated, this, showWinner);
    connect(cmdAddWinner_, &QPushButton::clicked, this,
            [this] { RunEventHandler(QStringLiteral("uPrizeBasic.cmdAddWinner_Click"), [this] { TakeAddWinner(); }); });
    connect(cmdShowWinner_, &QPushButton::clicked, this, showWinner);
    connect(tmrRefresh_, &QTimer::timeout, this,
            [this] { RunEventHandler(QStringLiteral("uPrizeBasic.tmrRefresh"), [this] { ShowWinners(); }); });
}

void uPrizeBasic::SetPrize(const cPrizePtr& prize)
{
    const QPointer<uPrizeBasic> self(this);
    Loading_ = true;
    const auto loaded = qScopeGuard([self] {
        if (self)
            self->Loading_ = false;
    });
    tmrRefresh_->stop();
    Prize_ = prize;
    txtTitle_->setText(prize ? prize->Title() : QString());
    txtScript_->setPlainText(prize ? prize->Script() : QString());
    if (!prize)
        lblWinners_->clear();
    UpdateWinners();
}

void uPrizeBasic::UpdateWinners()
{
    RunEventHandler(QStringLiteral("uPrizeBasic.UpdateWinners"), [this] { ShowWinners(); });
}

void uPrizeBasic::ShowWinners()
{
    tmrRefresh_->stop();
    if (!Prize_ || !Prize_->WinnersRead()) {
        ClearWinners();
        return;
    }
    // Also when the directory does not answer: the next time it may.
    const auto restart = qScopeGuard([this] { tmrRefresh_->start(); });
    lblWinners_->setText(StatusLine());
    const QStringList before = lvwWinners_->Keys();
    for (const QString& key : before)
        lvwWinners_->SetTag(key, REMOVE);
    for (qint32 slot = 1; slot <= Prize_->NumberWinners() && slot <= std::numeric_limits<qint16>::max(); ++slot) {
        if (const cPrizeWinnerPtr winner = Prize_->PrizeWinner(static_cast<qint16>(slot)))
            ShowWinner(static_cast<qint16>(slot), *winner);
    }
    // NOLINTNEXTLINE(modernize-loop-convert): reversed views do not compile with clang 14.
    for (auto key = before.crbegin(); key != before.crend(); ++key) {
        if (lvwWinners_->Tag(*key) == REMOVE)
            lvwWinners_->RemoveItem(*key);
    }
    TakeItemClick(lvwWinners_->SelectedKey());
}

void uPrizeBasic::ClearWinners()
{
    lvwWinners_->Clear();
    TakeItemClick(QString());
    lblWinners_->clear();
}

QString uPrizeBasic::StatusLine() const
{
    const qint64 supplied = Prize_->NumberSupplied();
    const qint64 left = supplied - Prize_->NumberWinners();
    if (left > 0)
        return QStringLiteral("%1 Prize%2 Left")
            .arg(QString::number(left), left == 1 ? QString() : QStringLiteral("s"));
    if (supplied == 1)
        return QStringLiteral("The Prize has been won");
    return QStringLiteral("All %1 Prizes have been won").arg(supplied);
}

void uPrizeBasic::ShowWinner(qint16 slot, const cPrizeWinner& winner)
{
    const QString key = ItemKey(winner);
    if (!lvwWinners_->HasItem(key))
        lvwWinners_->AddItem(key, {QString(), QString(), QString(), QString()});
    lvwWinners_->SetTag(key, 0);
    // Winners move up when one before them goes, and the number is how the item's winner is found.
    const WinnerSource source{slot,
                              DirectoryDatabase_ && winner.WinnerReference() > 0
                                  ? DirectoryDatabase_->GetContact(winner.WinnerReference(), 0, 0)
                                  : nullptr,
                              winner.WonDate()};
    for (int column = 0; column < columnCount; ++column) {
        const QString text = Columns[column].Text(source);
        // A contact without a detail leaves the one that it had.
        if (column == colContact && text.isEmpty())
            continue;
        lvwWinners_->SetSubItem(key, column, text);
        lvwWinners_->SetSortValue(key, column, Columns[column].Order(source));
    }
}

/// key: empty for none.
void uPrizeBasic::TakeItemClick(const QString& key)
{
    const bool isStored = Prize_ && Prize_->Reference() >= 1;
    cmdAddWinner_->setEnabled(isStored);
    cmdShowWinner_->setEnabled(isStored && !key.isEmpty());
}

void uPrizeBasic::TakeAddWinner()
{
    if (!Prize_)
        return;
    if (Prize_->NumberSupplied() <= 0)
        UserInterface::Warn(
            QStringLiteral("You cannot add any Winners to this Prize because no Prize Items have been supplied "
                           "('Number Supplied' is zero)!"));
    else if (Prize_->NumberWinners() >= Prize_->NumberSupplied())
        UserInterface::Warn(
            QStringLiteral("You cannot add any more Winners to this Prize because it has been fully allocated!"));
    else
        Q_EMIT AddWinner();
}

void uPrizeBasic::TakeShowWinner()
{
    const QString key = lvwWinners_->SelectedKey();
    if (!Prize_ || key.isEmpty())
        return;
    if (const cPrizeWinnerPtr winner = Prize_->PrizeWinner(lvwWinners_->SubItem(key, colReference).toShort()))
        Q_EMIT DisplayWinner(winner);
}

void uPrizeBasic::Cut()
{
    Copy();
    DELETE();
}

void uPrizeBasic::Copy()
{
    const QWidget* const active = focusWidget();
    if (active != txtTitle_ && active != txtScript_)
        return;
    QGuiApplication::clipboard()->clear();
    QGuiApplication::clipboard()->setText(active == txtTitle_ ? txtTitle_->selectedText()
                                                              : txtScript_->textCursor().selection().toPlainText());
}

void uPrizeBasic::DELETE()
{
    const QWidget* const active = focusWidget();
    if (active == txtTitle_)
        txtTitle_->insert(QString());
    else if (active == txtScript_)
        txtScript_->insertPlainText(QString());
}

void uPrizeBasic::Paste()
{
    const QWidget* const active = focusWidget();
    const QString text = QGuiApplication::clipboard()->text();
    if (active == txtTitle_)
        txtTitle_->insert(text);
    else if (active == txtScript_)
        txtScript_->insertPlainText(text);
}

void uPrizeBasic::SetBackColour(qint32 colour)
{
    BackColour_ = colour;
    ApplyBackColour();
}

void uPrizeBasic::ApplyBackColour()
{
    QPalette own = palette();
    own.setColor(QPalette::Window, SystemColour::ToColour(BackColour_, QApplication::palette()));
    if (own != palette())
        setPalette(own);
    tbsDetails_->SetBackColour(BackColour_);
}

void uPrizeBasic::SetFont(const QFont& font)
{
    setFont(font);
    for (QWidget* part : std::initializer_list<QWidget*>{txtTitle_, txtScript_, lblWinners_, lvwWinners_})
        part->setFont(font);
    SizeColumns();
}

void uPrizeBasic::ReadProperties(const PropertyBag& bag)
{
    const QFont inherited = parentWidget() ? parentWidget()->font() : QApplication::font();
    SetFont(bag.ReadProperty(QStringLiteral("Font"), inherited).value<QFont>());
    SetBackColour(bag.ReadProperty(QStringLiteral("BackColour"), SystemColour::ButtonFace).toInt());
}

void uPrizeBasic::WriteProperties(PropertyBag& bag) const
{
    bag.WriteProperty(QStringLiteral("Font"), Font(), parentWidget() ? parentWidget()->font() : QApplication::font());
    bag.WriteProperty(QStringLiteral("BackColour"), BackColour_, SystemColour::ButtonFace);
}

/// The moment of the longest text stands for all of them.
void uPrizeBasic::SizeColumns()
{
    const QString now = ClockHelper::CurrentTime().GeneralDate();
    const double date = Twips::FromPixels(*this, fontMetrics().horizontalAdvance(now)) + DateMargin;
    const double list = Twips::FromPixels(*this, lvwWinners_->width());
    const double half = qMax(0.0, (list - ListMargin - ScrollBarWidth - date) / 2);
    const WinnersSpace space{half, date};
    for (const int column : {colName, colContact, colWonDate})
        lvwWinners_->SetColumnTwips(column, Columns[column].Width(space));
}

bool uPrizeBasic::eventFilter(QObject* watched, QEvent* event)
{
    if (!tmrRefresh_)
        return false; // still being made
    if (watched == picWinners_ && (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)) {
        if (QLayout* layout = picWinners_->layout())
            layout->activate();
        SizeColumns();
    } else if (watched == lvwWinners_->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto* release = static_cast<QMouseEvent*>(event);
        TakeItemClick(lvwWinners_->HitTest(release->position().toPoint()));
    }
    return QWidget::eventFilter(watched, event);
}

void uPrizeBasic::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (!tmrRefresh_)
        return; // still being made
    if (event->type() == QEvent::ApplicationPaletteChange)
        ApplyBackColour();
    else if (event->type() == QEvent::FontChange)
        SizeColumns();
}
