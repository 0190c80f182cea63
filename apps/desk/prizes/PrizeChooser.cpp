// SPDX-License-Identifier: Apache-2.0
#include "PrizeChooser.h"

#include "Words.h"
#include "common/ClockHelper.h"
#include "contacts/ContactChooser.h"
#include "prizes/PrizeQuery.h"
#include "prizes/PrizeRows.h"
#include "station/DeskStation.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace
{
constexpr int PrizeRole = Qt::UserRole;
constexpr int LinesOfRow = 2;
constexpr int RowMargin = 8;
constexpr QChar FirstStrongIsolate(0x2068);
constexpr QChar PopDirectionalIsolate(0x2069);

/// A name in letters from right to left would turn the digits of the number behind it round.
QString Isolated(const QString& name)
{
    const bool isRightToLeft = std::any_of(name.begin(), name.end(), [](QChar letter) {
        return letter.direction() == QChar::DirR || letter.direction() == QChar::DirAL;
    });
    return isRightToLeft ? FirstStrongIsolate + name + PopDirectionalIsolate : name;
}

/// By the same rule as the list of prizes.
QList<qint32> AvailablePrizes(DeskStation& station, enPrizeListCategory category)
{
    QList<qint32> references;
    const auto rows = station.Database().OpenSnapshot(
        QStringLiteral("SELECT [Reference] FROM [Prizes] ") +
        PrizeQuery::Condition(category, QString(), ClockHelper::NowUTC()) + QStringLiteral("ORDER BY [Title]"));
    for (; !rows->AtEOF(); rows->MoveNext())
        references.append(rows->Collect(QStringLiteral("Reference")).toInt());
    return references;
}
} // namespace

PrizeChooser::PrizeChooser(DeskStation& station, const clsKVContact& winner, QWidget* parent)
    : QDialog(parent),
      Station_(station),
      Winner_(winner),
      Heading_(new QLabel(this)),
      Find_(new QLineEdit(this)),
      List_(new QListWidget(this)),
      Empty_(new QLabel(this)),
      All_(new QCheckBox(tr("Show a&ll available prizes, not only those of this hour"), this)),
      Award_(new QPushButton(tr("&Award"), this))
{
    setObjectName(QStringLiteral("prizeChooser"));
    setWindowTitle(tr("Award a prize"));
    Heading_->setObjectName(QStringLiteral("winner"));
    Heading_->setTextFormat(Qt::PlainText);
    Heading_->setWordWrap(true);
    Find_->setObjectName(QStringLiteral("findPrize"));
    Find_->setAccessibleName(tr("Find a prize"));
    Find_->setPlaceholderText(tr("Find a prize"));
    Find_->setClearButtonEnabled(true);
    Find_->installEventFilter(this);
    List_->setObjectName(QStringLiteral("prizes"));
    List_->setAccessibleName(tr("Prizes"));
    List_->setAlternatingRowColors(true);
    List_->setTextElideMode(Qt::ElideRight);
    List_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    Empty_->setObjectName(QStringLiteral("noPrizes"));
    Empty_->setWordWrap(true);
    All_->setObjectName(QStringLiteral("showAllPrizes"));
    Award_->setObjectName(QStringLiteral("awardPrize"));
    Award_->setDefault(true);
    auto* other = new QPushButton(tr("&Somebody else..."), this);
    other->setObjectName(QStringLiteral("otherWinner"));
    other->setAutoDefault(false);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    buttons->addButton(Award_, QDialogButtonBox::AcceptRole);
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cancel"));
    auto* head = new QHBoxLayout;
    head->addWidget(Heading_, 1);
    head->addWidget(other);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(head);
    auto* findLabel = new QLabel(tr("&Find:"), this);
    findLabel->setBuddy(Find_);
    auto* find = new QHBoxLayout;
    find->addWidget(findLabel);
    find->addWidget(Find_, 1);
    layout->addLayout(find);
    layout->addWidget(List_, 1);
    layout->addWidget(Empty_);
    layout->addWidget(All_);
    layout->addWidget(buttons);
    connect(Find_, &QLineEdit::textChanged, this, &PrizeChooser::Fill);
    connect(All_, &QCheckBox::toggled, this, &PrizeChooser::Fill);
    connect(List_, &QListWidget::currentRowChanged, this, [this] { Award_->setEnabled(Prize() != 0); });
    connect(List_, &QListWidget::itemDoubleClicked, Award_, &QPushButton::click);
    connect(other, &QPushButton::clicked, this, &PrizeChooser::ChooseWinner);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    ShowWinner();
    Fill();
    Find_->setFocus();
    resize(520, 420);
}

qint32 PrizeChooser::Prize() const
{
    const QListWidgetItem* item = List_->currentItem();
    return item ? item->data(PrizeRole).toInt() : 0;
}

void PrizeChooser::ShowWinner()
{
    const QString detail = PrizeRows::DetailOf(Winner_);
    const QString name = Isolated(Winner_.Name.simplified());
    Heading_->setText(detail.isEmpty() ? tr("A prize for %1").arg(name) : tr("A prize for %1 (%2)").arg(name, detail));
}

void PrizeChooser::ChooseWinner()
{
    try {
        ContactChooser chooser(Station_.Directory(), this);
        if (chooser.exec() != QDialog::Accepted || !chooser.Contact())
            return;
        Winner_ = *chooser.Contact();
        ShowWinner();
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    }
}

void PrizeChooser::Fill()
{
    const qint32 before = Prize();
    const QString find = Find_->text().simplified();
    List_->clear();
    try {
        for (const qint32 reference : AvailablePrizes(Station_, All_->isChecked() ? plcAllAvailable : plcAvailable)) {
            const cPrizePtr prize = Station_.Database().GetPrize(reference, false);
            if (!prize)
                continue;
            const QString title = prize->Title().simplified();
            if (!title.contains(find, Qt::CaseInsensitive))
                continue;
            auto* item = new QListWidgetItem(QStringLiteral("%1\n%2").arg(title, PrizeRows::StockWords(*prize)), List_);
            item->setData(PrizeRole, reference);
            item->setToolTip(title);
            // Narrower than any list: a long title is cut short rather than scrolled.
            item->setSizeHint(QSize(1, LinesOfRow * List_->fontMetrics().lineSpacing() + RowMargin));
            if (reference == before || List_->count() == 1)
                List_->setCurrentItem(item);
        }
        const bool isEmpty = List_->count() == 0;
        Empty_->setVisible(isEmpty);
        if (isEmpty && !find.isEmpty())
            Empty_->setText(
                tr("No prize has \u201C%1\u201D in its title. Clear the search to see the others.").arg(find));
        else if (isEmpty && !All_->isChecked())
            Empty_->setText(tr("No prize may go out this hour. Tick the box below to see all available prizes."));
        else if (isEmpty)
            Empty_->setText(tr("No prize is available. New ones are made on the page \u201CPrizes\u201D."));
    } catch (const dao::Error& error) {
        Empty_->setText(Station_.Words(error.Number(), error.Description()));
        Empty_->setVisible(true);
    }
    Award_->setEnabled(Prize() != 0);
}

/// The arrow keys walk the list while the search is being typed.
bool PrizeChooser::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == Find_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown) {
            QApplication::sendEvent(List_, event);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}
