// SPDX-License-Identifier: Apache-2.0

// The rows of the messages list: what a message looks like in the grid.

#include "common/ClockHelper.h"
#include "common/GeneralHelper.h"
#include "common/controls/GridColumn.h"
#include "database/cTolvaDatabase.h"
#include "messageslist/MessageLook.h"
#include "messageslist/MessageTexts.h"
#include "messageslist/MessagesListColumns.h"
#include "messageslist/uMessagesList.h"
#include "platform/mail/RawHeaders.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/FlexGridModel.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/Twips.h"

#include <QScopeGuard>

namespace
{
constexpr double HeadWidth = 300;
constexpr double GridMargin = 90;
constexpr double SubjectWidthBesideFrom = 2050;
constexpr double SubjectShare = 0.6;
constexpr double SubjectMargin = 120;
constexpr double RowMargin = 90;
constexpr double DateWidth = 1500;
constexpr double DateSerialWidth = 1900;
/// Octets of the header fields of a row that are kept until somebody sees it. Longer ones take less room as texts.
constexpr qsizetype LongestKept = 2000;
constexpr qint32 PureRed = 255;
const QString DateFormat = QStringLiteral("ddd dd mmm hh:nn");
const QString DateFormatWithYear = QStringLiteral("ddd dd mmm yyyy hh:nn");
const QString Year = QStringLiteral("yyyy");
/// Days: clocks that are set by hand differ by less.
constexpr double ClocksDiffer = 1.0 / 24;

/// What a row shows to the eye only, in words.
QString SpokenState(const MessageLook& look, bool isRead)
{
    QStringList words;
    if (!isRead)
        words.append(uMessagesList::tr("unread"));
    if (look.IsUrgent())
        words.append(uMessagesList::tr("urgent"));
    if (look.PersonalToContact != 0)
        words.append(uMessagesList::tr("personal"));
    if (look.HasHighlightWords)
        words.append(uMessagesList::tr("highlighted"));
    if ((look.Flags & mfAutomatic) != 0)
        words.append(uMessagesList::tr("automatic"));
    if (look.MessageType == emtSMS)
        words.append(uMessagesList::tr("text message"));
    return words.join(QStringLiteral(", "));
}

/// What the widths of the columns depend on.
struct GridSpace
{
    double Width;
    bool IsDoubleHeight;
    bool IsFilled; ///< The columns take all of the width and no more.
};

QString Fitted(const RowSource& row, const QString& text, const QString& beside = {})
{
    return row.Face->Fit(text, beside, row.IsBold);
}

QString DateText(const RowSource& row)
{
    if (row.Stamp.IsNone())
        return QString();
    const QString date = row.Stamp.Format(row.HasYear ? DateFormatWithYear : DateFormat);
    return row.IsAhead ? uMessagesList::tr("%1, a date in the future").arg(date) : date;
}

/// The line under the subject: who wrote it, where rows show that, and the date, which is never cut, with what the host
/// notes behind it.
QString SecondLine(const RowSource& row)
{
    QString rest = DateText(row);
    const QString note = row.Note ? (*row.Note)(row.Reference) : QString();
    if (!note.isEmpty())
        rest = Fitted(row, rest.isEmpty() ? note : uMessagesList::tr("%1 \u00B7 %2").arg(rest, note));
    if (!row.Person)
        return rest;
    const QString person = row.To.isEmpty() ? (*row.Person)(cdo::DecodedHeader("From", row.From, LongestCell))
                                            : (*row.Person)(cdo::DecodedHeader("To", row.To, LongestCell));
    if (person.isEmpty())
        return rest;
    if (!rest.isEmpty())
        rest.prepend(QStringLiteral(" \u00B7 "));
    // Whatever the name's letters are, the date stands behind it.
    return QChar(0x2068) + Fitted(row, person.simplified(), rest) + QChar(0x2069) + rest;
}

QString DecodedSubject(const RowSource& row)
{
    return cdo::DecodedHeader("Subject", row.Subject, LongestCell);
}

/// Letters that stand for themselves: most texts need no decoding to be measured. Where a long one is folded, there is
/// a blank between its words.
bool IsPlain(const QByteArray& field)
{
    const bool isAscii = std::all_of(field.begin(), field.end(), [](char octet) {
        return (octet >= ' ' && octet < 0x7F) || octet == '\r' || octet == '\n' || octet == '\t';
    });
    return isAscii && !field.contains("=?") && field.size() <= LongestCell;
}

/// Only a text message has more than one: its subject is what it says, on one line.
QStringList LinesOfSubject(const RowSource& row)
{
    const QString subject = DecodedSubject(row);
    return row.MostLines > 1 ? row.Face->Lines(subject.simplified(), row.MostLines) : QStringList(subject.trimmed());
}

QString SubjectText(const RowSource& row)
{
    QStringList lines = LinesOfSubject(row);
    lines.last() = Fitted(row, lines.last());
    const QString subject = lines.join(SoftLineBreak);
    return row.HasDateLine ? subject + QLatin1Char('\r') + SecondLine(row) : subject;
}

QString FromText(const RowSource& row)
{
    return cdo::DecodedHeader("From", row.From, LongestCell);
}

QString NoText(const RowSource&)
{
    return {};
}

/// What the two columns of texts share where one line shows all.
double RestWidth(const GridSpace& space)
{
    return std::max(0.0, space.Width - HeadWidth - DateWidth);
}

double SubjectWidth(const GridSpace& space)
{
    if (space.IsFilled)
        return space.IsDoubleHeight ? std::max(0.0, space.Width - HeadWidth) : RestWidth(space) * SubjectShare;
    return space.IsDoubleHeight ? std::max(0.0, space.Width - GridMargin - HeadWidth) : SubjectWidthBesideFrom;
}

double FromWidth(const GridSpace& space)
{
    if (space.IsDoubleHeight)
        return 0;
    return space.IsFilled ? RestWidth(space) * (1 - SubjectShare)
                          : std::max(0.0, space.Width - GridMargin - HeadWidth - SubjectWidthBesideFrom);
}

double SerialWidth(const GridSpace& space)
{
    return space.IsDoubleHeight || space.IsFilled ? 0 : DateSerialWidth;
}

/// The grid's columns, in the order of MessagesListColumn. Two lines show the date under the subject: nothing is left
/// to scroll to, and no sliver of a column to show.
constexpr GridColumn<RowSource, GridSpace> Columns[] = {
    {"Reference", [](const GridSpace&) { return 0.0; },
     [](const RowSource& row) { return QString::number(row.Reference); }},
    {"", [](const GridSpace&) { return HeadWidth; }, NoText},
    {"Subject", SubjectWidth, SubjectText},
    {"From", FromWidth, FromText},
    {"Date", [](const GridSpace& space) { return space.IsDoubleHeight ? 0 : DateWidth; }, DateText},
    {"DateSerial", SerialWidth, [](const RowSource& row) { return row.Stamp.GeneralDate(); }},
};
static_assert(std::size(Columns) == columnCount);

} // namespace

void MessageTexts::Make(const Set& set) const
{
    for (const int column : {colSubject, colFrom, colDate, colDateSerial}) {
        const bool isDate = column == colDate || column == colDateSerial;
        if (!isDate || !Row_.Stamp.IsNone())
            set(column, Columns[column].Text(Row_));
    }
}

int MessageTexts::SubjectLines() const
{
    if (Row_.MostLines < 2)
        return 1;
    const QString subject = IsPlain(Row_.Subject) ? QString::fromLatin1(Row_.Subject) : DecodedSubject(Row_);
    return Row_.Face->CountLines(subject.simplified(), Row_.MostLines);
}

void uMessagesList::MakeGridHeader()
{
    grdList_->SetRedraw(false);
    MakeColumns(*grdList_, Columns);
    HeadPicture_ = Icons::Get(QStringLiteral("head"));
    grdList_->setToolTip(QStringLiteral("Messages with a Head icon are personal"));
    grdList_->SetRedraw(true);
}

void uMessagesList::SizeColumns()
{
    if (grdList_->Cols() < 3)
        return;
    const int pixels = FillsWidth_ ? grdList_->viewport()->width() : grdList_->width();
    const double width = Twips::FromPixels(*grdList_, pixels);
    SizeColumnsOf(*grdList_, Columns, GridSpace{width, DoubleHeightRows_, FillsWidth_});
    grdList_->setHorizontalScrollBarPolicy(DoubleHeightRows_ || FillsWidth_ ? Qt::ScrollBarAlwaysOff
                                                                            : Qt::ScrollBarAsNeeded);
}

/// The header sets the measure for rows of two lines.
void uMessagesList::SetGridRowHeights()
{
    const int lines = DoubleHeightRows_ ? 2 : 1;
    const double height = Twips::FromPixels(*grdList_, lines * grdList_->fontMetrics().lineSpacing()) + RowMargin;
    grdList_->SetRowHeight(0, height);
    grdList_->SetDefaultRowHeight(height);
    ShowRowHeights();
}

/// Tells nobody, and leaves the current row as it is.
void uMessagesList::DrawMessageRow(int row, const cMessagePtr& message)
{
    if (message)
        DrawMessageRow(row, LookOf(*message, Depth()));
}

void uMessagesList::DrawMessageRow(int row, const MessageLook& look)
{
    if (row < 1 || row > grdList_->Rows() - 1)
        return;
    RowOfReference_.insert(look.Reference, row);
    const Date stamp = SortOrder_ != mlsoReceived ? look.Sent : look.Received;
    // A message without a date counts as read.
    const bool isRead = (look.Flags & mfRead) != 0 || stamp.IsNone();
    DrawTexts(row, look, stamp, !isRead);
    TakeMarks(look);
    if (DoubleHeightRows_)
        grdList_->SetRowHeight(row, HeightOfRow(row));
    grdList_->SetCellPicture(row, colHead, look.PersonalToContact != 0 ? HeadPicture_ : QIcon());
    const qint32 back = look.IsUrgent() ? PureRed : SystemColour::WindowBackground;
    grdList_->SetCellBackColour(row, colHead, colSubject, back);
    grdList_->SetCellForeColour(row, colHead, colSubject, SystemColour::WindowText);
    grdList_->SetCellFontBold(row, colHead, colSubject, !isRead);
    if (look.HasHighlightWords)
        grdList_->SetCellForeColour(row, colSubject, colSubject, clsTolvaDatabase_->MessageHighlightFont().Colour);
    grdList_->SetRowAccessibleText(row, SpokenState(look, isRead));
}

void uMessagesList::DrawTexts(int row, const MessageLook& look, Date stamp, bool bold)
{
    const Date now = ClockHelper::CurrentTime();
    const bool saysYear = ShowsOtherYears_ && !stamp.IsNone() && stamp.Format(Year) != now.Format(Year);
    const bool isAhead = ShowsOtherYears_ && stamp.DayNumber() > now.DayNumber() + ClocksDiffer;
    const int lines = DoubleHeightRows_ && look.MessageType == emtSMS ? TextLines_ : 1;
    RowSource source{look.Subject, look.From, look.To, stamp,       look.Reference, DoubleHeightRows_, saysYear,
                     isAhead,      bold,      lines,   FaceOfNow(), PersonOf_,      DateNotes_};
    for (const int column : {colReference, colHead})
        grdList_->SetTextMatrix(row, column, Columns[column].Text(source));
    // The date that such a row keeps may not have been made yet.
    if (stamp.IsNone())
        grdList_->TextMatrix(row, colDate);
    grdList_->SetLateTexts(row, colSubject, std::make_unique<MessageTexts>(std::move(source)));
    if (look.Subject.size() + look.From.size() + look.To.size() > LongestKept)
        grdList_->TextMatrix(row, colSubject);
}

void uMessagesList::SetDateNotes(std::function<QString(qint32)> notes)
{
    DateNotes_ = notes ? std::make_shared<const std::function<QString(qint32)>>(std::move(notes)) : nullptr;
}

/// What a row that was seen shows is made anew of its message, like that of one that another computer changed.
void uMessagesList::RedrawDateNotes(const QList<qint32>& references)
{
    if (!DoubleHeightRows_ || !clsTolvaDatabase_)
        return;
    grdList_->SetRedraw(false);
    const auto redraw = qScopeGuard([this] { grdList_->SetRedraw(true); });
    for (const qint32 reference : references) {
        const int row = RowOfReference_.value(reference);
        if (row >= 1 && row < grdList_->Rows() && !grdList_->HasLateTexts(row))
            DrawMessageRow(row, clsTolvaDatabase_->ReadMessage(reference));
    }
}

void uMessagesList::SetShowsPeople(std::function<QString(const QString& header)> personOf)
{
    PersonOf_ =
        personOf ? std::make_shared<const std::function<QString(const QString&)>>(std::move(personOf)) : nullptr;
}

/// Pixels that the subject's column has for a text now.
double uMessagesList::TextWidth() const
{
    return Twips::ToPixels(*grdList_, grdList_->ColWidth(colSubject) - SubjectMargin);
}

/// Rows that follow the width share the same face for good; others keep that of the moment when they were drawn.
std::shared_ptr<const RowFace> uMessagesList::FaceOfNow()
{
    if (!Face_ || !Face_->Is(picList_->font(), TextWidth()))
        MakeFace();
    return Face_;
}

void uMessagesList::MakeFace()
{
    if (Face_ && FollowsWidth())
        Face_->Change(picList_->font(), TextWidth());
    else
        Face_ = std::make_shared<RowFace>(picList_->font(), TextWidth());
}

void uMessagesList::UpdateRowBold(const cMessagePtr& message)
{
    const bool wasBusy = std::exchange(IsBusy_, true);
    grdList_->SetRedraw(false);
    const int current = grdList_->Row();
    const auto restore = qScopeGuard([&] {
        SelectRow(current);
        grdList_->SetRedraw(true);
        IsBusy_ = wasBusy;
    });
    const auto embolden = [this](int row, const cMessagePtr& shown) {
        const bool isRead = shown && (shown->Flags() & mfRead) != 0;
        if (grdList_->CellFontBold(row, colHead) == isRead)
            grdList_->SetCellFontBold(row, colHead, colSubject, !isRead);
        if (shown)
            grdList_->SetRowAccessibleText(row, SpokenState(StateOf(*shown), isRead));
    };
    if (message) {
        const int row = RowOfReference_.value(message->Reference());
        if (row >= 1 && row < grdList_->Rows())
            embolden(row, message);
        return;
    }
    for (int row = 1; row < grdList_->Rows(); ++row)
        embolden(row, clsTolvaDatabase_ ? clsTolvaDatabase_->ReadMessage(ReferenceOfRow(row)) : nullptr);
}
void uMessagesList::TakeSelection()
{
    if (IsBusy_)
        return;
    const int row = grdList_->Row();
    if (row < 1) {
        SelectedReference_ = 0;
        if (const qint32 left = std::exchange(LeftReference_, 0); left > 0)
            Q_EMIT MessageLeft(left);
        else
            Q_EMIT MessageSelected(nullptr);
        return;
    }
    SelectedReference_ = ReferenceOfRow(row);
    if (!clsTolvaDatabase_)
        return;
    if (const cMessagePtr message = clsTolvaDatabase_->ReadMessage(SelectedReference_))
        Q_EMIT MessageSelected(message);
}

void uMessagesList::TakeChoice()
{
    if (!IsBusy_ && SelectedReference_ > 0)
        Q_EMIT MessageChosen(SelectedReference_);
}
