// SPDX-License-Identifier: Apache-2.0
#include "messages/ArrivalCue.h"

#include "DeskSettings.h"
#include "messageslist/uMessagesList.h"
#include "platform/widgets/FlexGrid.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QHeaderView>
#include <QLocale>
#include <QScrollBar>

namespace
{
const QString SoundState = QStringLiteral("SoundForNewMessages");
constexpr int Margin = 6;
} // namespace

ArrivalCue::ArrivalCue(uMessagesList& list, DeskSettings& settings)
    : QPushButton(&list),
      List_(list),
      Settings_(settings),
      Grid_(qobject_cast<FlexGrid*>(list.FocusTargets().constLast())),
      Sound_(new QAction(tr("Sound for new messages"), this))
{
    setObjectName(QStringLiteral("arrivalCue"));
    setFocusPolicy(Qt::NoFocus); // the rows keep the keyboard, and have keys that go there
    setParent(Grid_);
    hide();
    Sound_->setObjectName(QStringLiteral("soundForNew"));
    Sound_->setCheckable(true);
    Sound_->setChecked(Settings_.State(SoundState) == "1");
    connect(Sound_, &QAction::toggled, this,
            [this](bool isOn) { Settings_.SetState(SoundState, isOn ? QByteArrayLiteral("1") : QByteArray()); });
    connect(this, &QPushButton::clicked, this, &ArrivalCue::Go);
    connect(&List_, &uMessagesList::MessagesCame, this,
            [this](const QList<qint32>& references) { Unseen_ += QSet<qint32>(references.begin(), references.end()); });
    connect(&List_, &uMessagesList::DisplayUpdated, this, &ArrivalCue::TakeRows);
    connect(Grid_->verticalScrollBar(), &QScrollBar::valueChanged, this, &ArrivalCue::TakeView);
    Grid_->installEventFilter(this);
}

void ArrivalCue::TakeUnread(int count)
{
    const bool hasCome = Unread_ >= 0 && count > Unread_;
    Unread_ = count;
    if (!hasCome || !Sound_->isChecked())
        return;
    QApplication::beep();
    Q_EMIT Sounded();
}

/// The rows stand elsewhere, or are others.
void ArrivalCue::TakeRows()
{
    Rows_.clear();
    if (!Unseen_.isEmpty()) {
        const QList<qint32> references = List_.References();
        for (int i = 0; i < references.size(); ++i) {
            if (Unseen_.contains(references.at(i)))
                Rows_.insert(i + 1, references.at(i));
        }
        Unseen_ = QSet<qint32>(Rows_.cbegin(), Rows_.cend());
    }
    TakeView();
}

/// Those in view are seen now.
void ArrivalCue::TakeView()
{
    if (Rows_.isEmpty() && isHidden())
        return;
    const int top = Grid_->TopRow();
    const int under = Grid_->RowAtPixel(Grid_->viewport()->height() - 1);
    const int bottom = under > 0 ? under : Grid_->Rows() - 1;
    for (auto row = Rows_.lowerBound(top); row != Rows_.end() && row.key() <= bottom;) {
        Unseen_.remove(row.value());
        row = Rows_.erase(row);
    }
    ShowCount();
}

void ArrivalCue::ShowCount()
{
    const int top = Grid_->TopRow();
    const auto above = std::distance(Rows_.begin(), Rows_.lowerBound(top));
    const auto below = Rows_.size() - above;
    QStringList words;
    if (above > 0)
        words.append(tr("%1 new, above").arg(QLocale().toString(static_cast<qlonglong>(above))));
    if (below > 0)
        words.append(tr("%1 new, below").arg(QLocale().toString(static_cast<qlonglong>(below))));
    setText(words.join(QStringLiteral(" \u00B7 ")));
    setVisible(!words.isEmpty());
    Place();
}

/// To the nearest above, as one reads upwards; then to what is below.
void ArrivalCue::Go()
{
    if (Rows_.isEmpty())
        return;
    auto row = Rows_.lowerBound(Grid_->TopRow());
    if (row != Rows_.begin())
        --row;
    List_.ScrollToRow(row.key());
    TakeView();
}

void ArrivalCue::Place()
{
    adjustSize();
    const QRect view = Grid_->viewport()->geometry();
    move(view.left() + (view.width() - width()) / 2, view.top() + Margin);
    raise();
}

bool ArrivalCue::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize && isVisible())
        Place();
    return QPushButton::eventFilter(watched, event);
}
