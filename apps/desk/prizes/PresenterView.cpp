// SPDX-License-Identifier: Apache-2.0
#include "PresenterView.h"

#include "DeskSettings.h"
#include "prizes/PrizeFields.h"
#include "prizes/PrizeRows.h"
#include "prizes/WinnersView.h"
#include "station/DeskStation.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace
{
const QString SizeState = QStringLiteral("Prizes/ScriptSize");
constexpr int FirstScriptSize = 20;
constexpr double TitleScale = 1.6;
constexpr double AwardScale = 1.2;
constexpr int NotesLines = 5;

QLabel* MakeWrappedLabel(QWidget* parent, const char* name)
{
    auto* label = new QLabel(parent);
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QPlainTextEdit* MakeReadOnlyText(QWidget* parent, const char* name, const QString& accessibleName)
{
    auto* text = new QPlainTextEdit(parent);
    text->setObjectName(QLatin1String(name));
    text->setAccessibleName(accessibleName);
    text->setReadOnly(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setTabChangesFocus(true);
    return text;
}

void Scale(QWidget& widget, double factor, bool bold)
{
    QFont font = widget.font();
    font.setPointSizeF(font.pointSizeF() * factor);
    font.setBold(bold);
    widget.setFont(font);
}

QStringList WhenLines(const cPrize& prize)
{
    const PrizeFields fields = PrizeFields::Of(prize);
    QStringList lines = {PrizeRows::DatesWords(prize), PrizeRows::HoursWords(fields.Hours), PrizeRows::ClockWords()};
    lines.removeAll(QString());
    return lines;
}
} // namespace

PresenterView::PresenterView(DeskStation& station, DeskSettings& settings, QWidget* parent)
    : QWidget(parent),
      Settings_(settings),
      Size_(FirstScriptSize),
      Title_(MakeWrappedLabel(this, "presenterTitle")),
      Stock_(MakeWrappedLabel(this, "presenterStock")),
      When_(MakeWrappedLabel(this, "presenterNow")),
      Hours_(MakeWrappedLabel(this, "presenterHours")),
      Award_(new QPushButton(tr("A&ward..."), this)),
      Open_(new QPushButton(tr("&Edit..."), this)),
      Larger_(new QPushButton(QStringLiteral("A+"), this)),
      Smaller_(new QPushButton(QStringLiteral("A\u2212"), this)),
      Script_(MakeReadOnlyText(this, "presenterScript", tr("Script"))),
      NotesLabel_(MakeWrappedLabel(this, "presenterNotesLabel")),
      Notes_(MakeReadOnlyText(this, "presenterNotes", tr("Notes, not to be read on air"))),
      WinnersLabel_(MakeWrappedLabel(this, "presenterWinnersLabel")),
      Winners_(new WinnersView(station, this))
{
    setObjectName(QStringLiteral("presenter"));
    MakeParts();
    bool isNumber = false;
    const int remembered = Settings_.State(SizeState).toInt(&isNumber);
    SetScriptSize(isNumber ? remembered : FirstScriptSize);
    connect(Award_, &QPushButton::clicked, this, [this] { Q_EMIT AwardWanted(Reference_); });
    connect(Open_, &QPushButton::clicked, this, [this] { Q_EMIT OpenWanted(Reference_); });
    connect(Larger_, &QPushButton::clicked, this, [this] { SetScriptSize(Size_ + ScriptStep); });
    connect(Smaller_, &QPushButton::clicked, this, [this] { SetScriptSize(Size_ - ScriptStep); });
    connect(Winners_, &WinnersView::OpenWinner, this, &PresenterView::WinnerWanted);
    Show(nullptr);
}

void PresenterView::MakeParts()
{
    Scale(*Title_, TitleScale, true);
    Scale(*Award_, AwardScale, true);
    Award_->setObjectName(QStringLiteral("presenterAward"));
    Award_->setToolTip(tr("Choose who wins this prize (Ctrl+Enter)"));
    Open_->setObjectName(QStringLiteral("presenterOpen"));
    Open_->setToolTip(tr("Everything about this prize, in a window of its own"));
    Larger_->setObjectName(QStringLiteral("scriptLarger"));
    Larger_->setToolTip(tr("Larger script (Ctrl++)"));
    Larger_->setAccessibleName(tr("Larger script"));
    Smaller_->setObjectName(QStringLiteral("scriptSmaller"));
    Smaller_->setToolTip(tr("Smaller script (Ctrl+-)"));
    Smaller_->setAccessibleName(tr("Smaller script"));
    const auto addKey = [this](const QList<QKeySequence>& keys, int step) {
        auto* action = new QAction(this);
        action->setShortcuts(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        addAction(action);
        connect(action, &QAction::triggered, this, [this, step] { SetScriptSize(Size_ + step); });
    };
    addKey({QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)}, ScriptStep);
    addKey({QKeySequence(Qt::CTRL | Qt::Key_Minus)}, -ScriptStep);
    Script_->viewport()->installEventFilter(this);
    Script_->document()->setDocumentMargin(10);
    NotesLabel_->setText(tr("Notes (not to be read on air)"));
    Notes_->setMaximumHeight(fontMetrics().lineSpacing() * NotesLines);
    for (QPushButton* button : {Larger_, Smaller_})
        button->setMaximumWidth(button->fontMetrics().horizontalAdvance(QStringLiteral("A+")) + 24);
    LayOutParts();
}

void PresenterView::LayOutParts()
{
    auto* head = new QHBoxLayout;
    head->addWidget(Title_, 1);
    head->addWidget(Open_, 0, Qt::AlignTop);
    head->addWidget(Award_, 0, Qt::AlignTop);
    auto* facts = new QHBoxLayout;
    facts->addWidget(Stock_);
    facts->addWidget(When_, 1);
    facts->addWidget(Smaller_);
    facts->addWidget(Larger_);
    auto* below = new QWidget(this);
    auto* belowLayout = new QVBoxLayout(below);
    belowLayout->setContentsMargins(0, 0, 0, 0);
    belowLayout->addWidget(NotesLabel_);
    belowLayout->addWidget(Notes_);
    belowLayout->addWidget(WinnersLabel_);
    belowLayout->addWidget(Winners_, 1);
    Splitter_ = new QSplitter(Qt::Vertical, this);
    Splitter_->setObjectName(QStringLiteral("presenterSplitter"));
    Splitter_->addWidget(Script_);
    Splitter_->addWidget(below);
    Splitter_->setStretchFactor(0, 3);
    Splitter_->setStretchFactor(1, 2);
    Splitter_->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(head);
    layout->addLayout(facts);
    layout->addWidget(Hours_);
    layout->addWidget(Splitter_, 1);
    const QList<QWidget*> order = {Award_, Open_, Smaller_, Larger_, Script_, Notes_, Winners_};
    for (qsizetype i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order.at(i - 1), order.at(i));
}

QByteArray PresenterView::Sizes() const
{
    return Splitter_->saveState();
}

void PresenterView::RestoreSizes(const QByteArray& sizes)
{
    Splitter_->restoreState(sizes);
}

void PresenterView::Show(const cPrizePtr& prize)
{
    const bool isSame = prize && prize->Reference() == Reference_;
    Reference_ = prize ? prize->Reference() : 0;
    const QString title = prize ? prize->Title().simplified() : QString();
    Title_->setText(prize ? (title.isEmpty() ? tr("(no title)") : title) : tr("No prize is selected"));
    Stock_->setText(prize ? PrizeRows::StockWords(*prize) : QString());
    const QString why = prize ? PrizeRows::WhyNotNow(*prize) : QString();
    When_->setText(!prize ? QString() : why.isEmpty() ? tr("\u2022 May go out now") : u'\u2022' + (u' ' + why));
    const QString hours = prize ? WhenLines(*prize).join(u'\n') : QString();
    Hours_->setText(hours);
    Hours_->setVisible(!hours.isEmpty());
    // The same text is left alone, so that a refresh does not move it while it is being read out.
    const QString script = prize ? prize->Script() : QString();
    if (!isSame || Script_->toPlainText() != script)
        Script_->setPlainText(script);
    Script_->setPlaceholderText(prize ? tr("This prize has no script.") : QString());
    const QString notes = prize ? prize->Notes() : QString();
    if (!isSame || Notes_->toPlainText() != notes)
        Notes_->setPlainText(notes);
    const bool hasNotes = !notes.trimmed().isEmpty();
    Notes_->setVisible(hasNotes);
    NotesLabel_->setVisible(hasNotes);
    Winners_->Show(Reference_);
    const bool hasWinners = Winners_->Count() > 0;
    Winners_->setVisible(hasWinners);
    WinnersLabel_->setVisible(prize != nullptr);
    WinnersLabel_->setText(hasWinners ? tr("Winners") : tr("Nobody has won it yet."));
    if (prize && Winners_->Count() > prize->NumberSupplied() && hasWinners)
        WinnersLabel_->setText(tr("Winners: %1, more than were supplied").arg(Winners_->Count()));
    Award_->setEnabled(Reference_ > 0);
    Open_->setEnabled(Reference_ > 0);
}

void PresenterView::SetScriptSize(int points)
{
    Size_ = qBound(SmallestScript, points, LargestScript);
    QFont font = Script_->font();
    font.setPointSize(Size_);
    Script_->setFont(font);
    Larger_->setEnabled(Size_ < LargestScript);
    Smaller_->setEnabled(Size_ > SmallestScript);
    Settings_.SetState(SizeState, QByteArray::number(Size_));
}

bool PresenterView::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == Script_->viewport() && event->type() == QEvent::Wheel) {
        const auto* wheel = static_cast<QWheelEvent*>(event);
        if (wheel->modifiers().testFlag(Qt::ControlModifier)) {
            SetScriptSize(Size_ + (wheel->angleDelta().y() > 0 ? ScriptStep : -ScriptStep));
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
