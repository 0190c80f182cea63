// SPDX-License-Identifier: Apache-2.0
#include "AddressPopups.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QScreen>
#include <QToolButton>

namespace
{
constexpr Qt::WindowFlags NeverActive = Qt::ToolTip | Qt::FramelessWindowHint;

void MakePassive(QWidget& widget)
{
    widget.setWindowFlags(NeverActive);
    widget.setAttribute(Qt::WA_ShowWithoutActivating);
    widget.setFocusPolicy(Qt::NoFocus);
}

/// Under the line of text, or above it where the screen ends.
void PlaceAt(QWidget& widget, const QRect& line)
{
    const QRect screen = widget.screen()->availableGeometry();
    QPoint place(line.left(), line.bottom() + 2);
    if (place.y() + widget.height() > screen.bottom())
        place.setY(line.top() - widget.height() - 2);
    place.setX(qBound(screen.left(), place.x(), qMax(screen.left(), screen.right() - widget.width())));
    widget.move(place);
    widget.show();
}
} // namespace

SuggestionList::SuggestionList(QWidget* parent) : QListWidget(parent)
{
    MakePassive(*this);
    setObjectName(QStringLiteral("suggestions"));
    // As the box itself: entries read from the left, whatever script a name is in.
    setLayoutDirection(Qt::LeftToRight);
    setAccessibleName(tr("Contacts"));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setUniformItemSizes(true);
    setTextElideMode(Qt::ElideRight);
    setMouseTracking(true);
    connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) { Q_EMIT RowClicked(row(item)); });
}

void SuggestionList::Show(const QList<AddressBook::Entry>& entries, const QRect& line)
{
    Entries_ = entries;
    clear();
    if (entries.isEmpty())
        return hide();
    for (const AddressBook::Entry& entry : entries)
        addItem(entry.Name.isEmpty() ? entry.Address : QStringLiteral("%1  <%2>").arg(entry.Name, entry.Address));
    setCurrentRow(-1);
    const int lineWidth = sizeHintForColumn(0) + 2 * frameWidth() + 8;
    const int widest = qMax(200, screen()->availableGeometry().width() / 2);
    resize(qBound(200, lineWidth, widest), sizeHintForRow(0) * count() + 2 * frameWidth());
    PlaceAt(*this, line);
}

void SuggestionList::Step(int rows)
{
    // One place more than there are rows: the one without a choice.
    const int places = count() + 1;
    setCurrentRow((currentRow() + 1 + rows + places) % places - 1);
}

AddressActions::AddressActions(QWidget* parent) : QFrame(parent), Label_(new QLabel(this))
{
    MakePassive(*this);
    setObjectName(QStringLiteral("addressActions"));
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 2, 4, 2);
    Label_->setTextFormat(Qt::PlainText);
    Label_->setObjectName(QStringLiteral("clickedAddress"));
    layout->addWidget(Label_);
    connect(AddButton("copyAddress", tr("Copy")), &QToolButton::clicked, this, &AddressActions::CopyWanted);
    Remove_ = AddButton("removeAddress", tr("Remove"));
    connect(Remove_, &QToolButton::clicked, this, &AddressActions::RemoveWanted);
    connect(AddButton("showContact", tr("Contact...")), &QToolButton::clicked, this, &AddressActions::ContactWanted);
}

QToolButton* AddressActions::AddButton(const char* name, const QString& text)
{
    auto* button = new QToolButton(this);
    button->setObjectName(QLatin1String(name));
    button->setText(text);
    button->setFocusPolicy(Qt::NoFocus);
    button->setAutoRaise(true);
    layout()->addWidget(button);
    return button;
}

void AddressActions::Show(const QString& name, const QString& address, bool canRemove, const QRect& line)
{
    Name_ = name;
    Address_ = address;
    const int widest = screen()->availableGeometry().width() / 2;
    Label_->setText(Label_->fontMetrics().elidedText(address, Qt::ElideMiddle, widest));
    Remove_->setEnabled(canRemove);
    adjustSize();
    PlaceAt(*this, line);
}
