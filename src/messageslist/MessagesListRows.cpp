// SPDX-License-Identifier: Apache-2.0

// The rows of the messages list: what a message looks like in the grid.

#include "common/GeneralHelper.h"
#include "database/cTolvaDatabase.h"
#include "messageslist/MessagesListColumns.h"
#include "messageslist/MessagesListHandler.h"
#include "messageslist/uMessagesList.h"
#include "platform/mail/MessageReader.h"
#include "platform/widgets/FlexGrid.h"
#include "platform/widgets/Icons.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/Twips.h"

#include <QFontMetricsF>
#include <QScopeGuard>

namespace
{
constexpr double HeadWidth = 300;
constexpr double GridMargin = 90;
constexpr double SubjectWidthBesideFrom = 2050;
constexpr double SubjectMargin = 120;
constexpr double RowMargin = 90;
constexpr double DateWidth = 1500;
constexpr double DateSerialWidth = 1900;
/// Characters of a header that are decoded and measured; more than any row is wide.
constexpr qsizetype LongestCell = 1000;
constexpr int UrgentPriority = 1;
constexpr qint32 PureRed = 255;
const QString DateFormat = QStringLiteral("ddd dd mmm hh:nn");

/// What a row shows to the eye only, in words.
QString SpokenState(const cMessage& message, bool isRead)
{
    QStringList words;
    if (!isRead)
        words.append(uMessagesList::tr("unread"));
    if (message.Priority() == UrgentPriority)
        words.append(uMessagesList::tr("urgent"));
    if (message.PersonalToContact() != 0)
        words.append(uMessagesList::tr("personal"));
    if (message.HasHighlightWords())
        words.append(uMessagesList::tr("highlighted"));
    if (message.MessageType() == emtSMS)
        words.append(uMessagesList::tr("text message"));
    return words.join(QStringLiteral(", "));
}
} // namespace

void uMessagesList::MakeGridHeader()
{
    const char* const captions[columnCount] = {"Reference", "", "Subject", "From", "Date", "DateSerial"};
    grdMessages_->SetRedraw(false);
    grdMessages_->SetRows(1);
    grdMessages_->SetCols(columnCount);
    for (int column = 0; column < columnCount; ++column) {
        grdMessages_->SetTextMatrix(0, column, QLatin1String(captions[column]));
        grdMessages_->SetColAlignment(column, Qt::AlignLeft | Qt::AlignVCenter);
    }
    HeadPicture_ = Icons::Get(QStringLiteral("head"));
    grdMessages_->setToolTip(QStringLiteral("Messages with a Head icon are personal"));
    grdMessages_->SetRedraw(true);
}

void uMessagesList::SetGridColumnWidths()
{
    if (grdMessages_->Cols() < 3)
        return;
    const double width = Twips::FromPixels(*grdMessages_, grdMessages_->width());
    grdMessages_->SetColWidth(colReference, 0);
    grdMessages_->SetColWidth(colHead, HeadWidth);
    if (DoubleHeightRows_) {
        grdMessages_->SetColWidth(colSubject, std::max(0.0, width - GridMargin - HeadWidth));
        grdMessages_->SetColWidth(colFrom, 0);
    } else {
        grdMessages_->SetColWidth(colSubject, SubjectWidthBesideFrom);
        grdMessages_->SetColWidth(colFrom, std::max(0.0, width - GridMargin - HeadWidth - SubjectWidthBesideFrom));
    }
    // Two lines show the date under the subject: nothing is left to scroll to, and no sliver of a column to show.
    grdMessages_->SetColWidth(colDate, DoubleHeightRows_ ? 0 : DateWidth);
    grdMessages_->SetColWidth(colDateSerial, DoubleHeightRows_ ? 0 : DateSerialWidth);
    grdMessages_->setHorizontalScrollBarPolicy(DoubleHeightRows_ ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
}

/// The header sets the measure for rows of two lines.
void uMessagesList::SetGridRowHeights()
{
    const int lines = DoubleHeightRows_ ? 2 : 1;
    const double height =
        Twips::FromPixels(*grdMessages_, lines * grdMessages_->fontMetrics().lineSpacing()) + RowMargin;
    grdMessages_->SetRowHeight(0, height);
    grdMessages_->SetDefaultRowHeight(height);
}

qint32 uMessagesList::ReferenceOfRow(int row) const
{
    return grdMessages_->TextMatrix(row, colReference).toInt();
}

/// Tells nobody, and leaves the current row as it is.
void uMessagesList::DrawMessageRow(int row, const cMessagePtr& message)
{
    if (row < 1 || row > grdMessages_->Rows() - 1 || !message)
        return;
    if (DoubleHeightRows_)
        grdMessages_->SetRowHeight(row, grdMessages_->RowHeight(0));
    grdMessages_->SetTextMatrix(row, colReference, QString::number(message->Reference()));
    RowOfReference_.insert(message->Reference(), row);
    bool isRead = (message->Flags() & mfRead) != 0;
    const cdo::MessageReader mail(*message->CDOMessage());
    DrawSubject(row, *message, mail, isRead);
    const bool isPersonal = message->PersonalToContact() != 0;
    grdMessages_->SetCellPicture(row, colHead, isPersonal ? HeadPicture_ : QIcon());
    grdMessages_->SetTextMatrix(row, colHead, QString());
    grdMessages_->SetTextMatrix(row, colFrom, mail.Header("From", LongestCell));
    const qint32 back = message->Priority() == UrgentPriority ? PureRed : SystemColour::WindowBackground;
    grdMessages_->SetCellBackColour(row, colHead, colSubject, back);
    grdMessages_->SetCellForeColour(row, colHead, colSubject, SystemColour::WindowText);
    grdMessages_->SetCellFontBold(row, colHead, colSubject, !isRead);
    if (message->HasHighlightWords()) {
        grdMessages_->SetCellForeColour(row, colSubject, colSubject, clsTolvaDatabase_->MessageHighlightFont().Colour);
    }
    grdMessages_->SetRowAccessibleText(row, SpokenState(*message, isRead));
}

/// The subject, and the date where there is one; a message without a date counts as read, and the row keeps the date
/// that it showed before.
void uMessagesList::DrawSubject(int row, const cMessage& message, const cdo::MessageReader& mail, bool& isRead)
{
    const Date stamp = SortOrder_ != mlsoReceived ? message.Sent() : message.Received();
    isRead = isRead || stamp.IsNone();
    QString text = mail.Header("Subject", LongestCell).trimmed();
    if (stamp.IsNone()) {
        if (DoubleHeightRows_)
            text += QLatin1Char('\r');
    } else {
        const QString date = stamp.Format(DateFormat);
        grdMessages_->SetTextMatrix(row, colDate, date);
        grdMessages_->SetTextMatrix(row, colDateSerial, stamp.GeneralDate());
        if (DoubleHeightRows_)
            text += QLatin1Char('\r') + date;
    }
    grdMessages_->SetTextToFit(row, colSubject, text, SubjectFitting(!isRead));
}

/// What cuts a subject to the width that the column has now. The rows that are never seen need not be measured.
std::shared_ptr<const std::function<QString(const QString&)>> uMessagesList::SubjectFitting(bool bold)
{
    // A bold text is wider than the surface's own.
    QFont font = picMessages_->font();
    font.setBold(bold);
    const double width = Twips::ToPixels(*grdMessages_, grdMessages_->ColWidth(colSubject) - SubjectMargin);
    Fitting& kept = Fittings_[bold ? 1 : 0];
    if (kept.Fit && kept.Font == font && kept.Width == width && kept.HasDateLine == DoubleHeightRows_)
        return kept.Fit;
    const auto fit = [metrics = QFontMetricsF(font), width, hasDateLine = DoubleHeightRows_](const QString& text) {
        const qsizetype end = hasDateLine ? text.lastIndexOf(QLatin1Char('\r')) : text.size();
        const QString subject = GeneralHelper::FitTextToWidth(
            [&](const QString& part) { return metrics.horizontalAdvance(part); }, text.left(end), width);
        return subject + text.mid(end);
    };
    kept = {font, width, DoubleHeightRows_, std::make_shared<const std::function<QString(const QString&)>>(fit)};
    return kept.Fit;
}

void uMessagesList::UpdateRowBold(const cMessagePtr& message)
{
    const bool wasBusy = std::exchange(DisplayBusy_, true);
    grdMessages_->SetRedraw(false);
    const int current = grdMessages_->Row();
    const auto restore = qScopeGuard([&] {
        SelectRow(current);
        grdMessages_->SetRedraw(true);
        DisplayBusy_ = wasBusy;
    });
    const auto embolden = [this](int row, const cMessagePtr& shown) {
        const bool isRead = shown && (shown->Flags() & mfRead) != 0;
        if (grdMessages_->CellFontBold(row, colHead) == isRead)
            grdMessages_->SetCellFontBold(row, colHead, colSubject, !isRead);
        if (shown)
            grdMessages_->SetRowAccessibleText(row, SpokenState(*shown, isRead));
    };
    if (message) {
        const int row = RowOfReference_.value(message->Reference());
        if (row >= 1 && row < grdMessages_->Rows())
            embolden(row, message);
        return;
    }
    for (int row = 1; row < grdMessages_->Rows(); ++row)
        embolden(row, clsTolvaDatabase_ ? clsTolvaDatabase_->ReadMessage(ReferenceOfRow(row)) : nullptr);
}

/// Makes a row current from its first column; the cell-change handler tells the host unless the list is busy.
void uMessagesList::SelectRow(int row)
{
    grdMessages_->SetRow(row);
    grdMessages_->SetCol(colReference);
}

bool uMessagesList::SelectMessage(qint32 reference)
{
    const int row = RowOfReference_.value(reference);
    if (row < 1 || row >= grdMessages_->Rows())
        return false;
    SelectRow(row);
    return true;
}

void uMessagesList::TakeCellChange()
{
    if (DisplayBusy_)
        return;
    const int row = grdMessages_->Row();
    if (row < 1) {
        CurrentSelectedReference_ = 0;
        Q_EMIT MessageSelected(nullptr);
        return;
    }
    CurrentSelectedReference_ = ReferenceOfRow(row);
    if (!clsTolvaDatabase_)
        return;
    if (const cMessagePtr message = clsTolvaDatabase_->ReadMessage(CurrentSelectedReference_))
        Q_EMIT MessageSelected(message);
}
