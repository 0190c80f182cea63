// SPDX-License-Identifier: Apache-2.0

// What a host may have the rows of the messages list show besides: marks, and more of a text message.

#include "messageslist/MessageLook.h"
#include "messageslist/MessageTexts.h"
#include "messageslist/MessagesListColumns.h"
#include "messageslist/uMessagesList.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/RowMark.h"
#include "platform/widgets/Twips.h"

#include <QScopeGuard>

namespace
{
constexpr quint8 TextBit = 1;
constexpr quint8 AttachmentBit = 2;
constexpr quint8 UrgentBit = 4;
constexpr quint8 LowBit = 8;

/// Their names stand among the words of the row's state, where it says them without marks already.
QList<RowMark> MarksOfBits(quint8 bits)
{
    QList<RowMark> marks;
    if ((bits & UrgentBit) != 0)
        marks.append({Icons::Get(QStringLiteral("urgent")), QString()});
    if ((bits & LowBit) != 0)
        marks.append({Icons::Get(QStringLiteral("lowpriority")), uMessagesList::tr("low priority")});
    if ((bits & AttachmentBit) != 0)
        marks.append({Icons::Get(QStringLiteral("attach")), uMessagesList::tr("with attachments")});
    return marks;
}
} // namespace

void uMessagesList::SetShowsMarks(std::function<QList<RowMark>(qint32 reference)> besides)
{
    ShowsMarks_ = true;
    grdList_->SetRowMarks(colSubject, [this, besides = std::move(besides)](int row) {
        const qint32 reference = ReferenceOfRow(row);
        const quint8 bits = MarkBits_.value(reference);
        QList<RowMark> marks = MarksOfBits(bits);
        if (besides)
            marks += besides(reference);
        if ((bits & TextBit) != 0)
            marks.append({Icons::Get(QStringLiteral("textmessage")), QString()});
        else
            marks.append({Icons::Get(QStringLiteral("mail")), tr("mail")});
        return marks;
    });
}

/// What a fill reads of each mail.
LookDepth uMessagesList::Depth() const
{
    return ShowsMarks_ ? LookDepth::NamesAndType : LookDepth::Names;
}

void uMessagesList::TakeMarks(const MessageLook& look)
{
    if (!ShowsMarks_)
        return;
    const int bits = (look.MessageType == emtSMS ? TextBit : 0) | (look.HasAttachments ? AttachmentBit : 0) |
                     (look.IsUrgent() ? UrgentBit : 0) | (look.Priority < 0 ? LowBit : 0);
    MarkBits_.insert(look.Reference, static_cast<quint8>(bits));
}

void uMessagesList::SetTextLines(int most)
{
    TextLines_ = std::max(1, most);
    FollowWidth();
}

void uMessagesList::SetFillsWidth(bool on)
{
    FillsWidth_ = on;
    FollowWidth();
    LayOut();
}

/// Rows are made again for another width where they are kept.
void uMessagesList::FollowWidth()
{
    const bool follows = FollowsWidth();
    grdList_->SetKeepsLateTexts(follows);
    ReflowTimer_.disconnect(this);
    disconnect(grdList_, &FlexGrid::WidthChanged, this, nullptr);
    if (!follows)
        return;
    ReflowTimer_.setSingleShot(true);
    ReflowTimer_.setInterval(0);
    connect(&ReflowTimer_, &QTimer::timeout, this, &uMessagesList::Reflow);
    connect(grdList_, &FlexGrid::WidthChanged, this, [this] {
        SizeColumns();
        ReflowTimer_.start();
    });
}

/// The rows as they are at the width that they have now. The first one in view stays where it is.
void uMessagesList::Reflow()
{
    if (!FollowsWidth() || (Face_ && Face_->Is(picList_->font(), TextWidth())))
        return;
    if (IsFilling())
        return ReflowTimer_.start(); // the rows to come are of that width by themselves
    MakeFace();
    const bool redraw = grdList_->Redraw();
    const int top = grdList_->TopRow();
    grdList_->SetRedraw(false);
    ShowRowHeights();
    grdList_->RemakeLateTexts();
    grdList_->SetTopRow(top);
    grdList_->SetRedraw(redraw);
}

/// Those of rows that differ from the others.
void uMessagesList::ShowRowHeights()
{
    if (!DoubleHeightRows_ || TextLines_ < 2)
        return;
    const bool redraw = grdList_->Redraw();
    grdList_->SetRedraw(false);
    for (int row = 1; row < grdList_->Rows(); ++row)
        grdList_->SetRowHeight(row, HeightOfRow(row));
    grdList_->SetRedraw(redraw);
}

/// In twips; that of the header row is the measure for two lines.
double uMessagesList::HeightOfRow(int row) const
{
    const double two = grdList_->RowHeight(0);
    if (TextLines_ < 2)
        return two;
    const auto* texts = static_cast<const MessageTexts*>(grdList_->LateTextsOf(row));
    const int lines = texts ? texts->SubjectLines() : 1;
    return two + Twips::FromPixels(*grdList_, (lines - 1) * grdList_->fontMetrics().lineSpacing());
}
