// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/LabelSheet.h"

#include "common/LabelLayout.h"
#include "platform/files/WholeFile.h"

#include <QBuffer>
#include <QPainter>
#include <QPdfWriter>
#include <QTextLayout>

namespace
{
constexpr double MillimetresPerInch = 25.4;
constexpr double PointsPerInch = 72;
constexpr int LargestText = 22; // half points
constexpr int SmallestText = 12;
constexpr double NumberText = 16;
constexpr double OutlineWidth = 0.2; // millimetres

/// Sized in dots, so that screens, pictures and printers give the same sheet.
QFont TextFont(int halfPoints, double dotsPerMillimetre)
{
    QFont font;
    font.setPixelSize(qMax(1, qRound(halfPoints / 2.0 / PointsPerInch * MillimetresPerInch * dotsPerMillimetre)));
    return font;
}

QRectF Scaled(const QRectF& rectangle, double factor)
{
    return {rectangle.topLeft() * factor, rectangle.size() * factor};
}

/// Breaks the text of the layout into lines of that width. The height of all of them; isWhole tells whether each word
/// fits its line.
double BreakLines(QTextLayout& layout, double width, QTextOption::WrapMode wrap, bool& isWhole)
{
    QTextOption option(Qt::AlignLeft);
    option.setWrapMode(wrap);
    layout.setTextOption(option);
    layout.beginLayout();
    double height = 0;
    isWhole = true;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, height));
        height += line.height();
        isWhole = isWhole && line.naturalTextWidth() <= width;
    }
    layout.endLayout();
    return height;
}

/// The lines that have room, the last of them cut with an ellipsis.
QString CutToHeight(const QTextLayout& layout, const QSizeF& room)
{
    const QString text = layout.text();
    int fitting = 0;
    while (fitting < layout.lineCount() && layout.lineAt(fitting).rect().bottom() <= room.height() + 0.5)
        ++fitting;
    if (fitting == 0)
        return QString();
    QStringList lines;
    for (int i = 0; i + 1 < fitting; ++i) {
        const QTextLine line = layout.lineAt(i);
        lines.append(text.mid(line.textStart(), line.textLength()).remove(QChar::LineSeparator));
    }
    QString rest = text.mid(layout.lineAt(fitting - 1).textStart());
    rest.replace(QChar::LineSeparator, u' ');
    lines.append(QFontMetricsF(layout.font()).elidedText(rest, Qt::ElideRight, room.width()));
    return lines.join(QChar(QChar::LineSeparator));
}

/// Draws what fits in an area, smaller or cut where it is too much, against its left edge and in the middle of its
/// height.
void DrawFitted(QPainter& painter, const QString& text, const QRectF& area, double dotsPerMillimetre)
{
    for (int size = LargestText; size >= SmallestText; --size) {
        QTextLayout layout(text, TextFont(size, dotsPerMillimetre), painter.device());
        bool isWhole = false;
        const double height = BreakLines(layout, area.width(), QTextOption::WordWrap, isWhole);
        if (height > area.height() || !isWhole)
            continue;
        layout.draw(&painter, QPointF(area.left(), area.top() + (area.height() - height) / 2));
        return;
    }
    QTextLayout whole(text, TextFont(SmallestText, dotsPerMillimetre), painter.device());
    bool isWhole = false;
    double height = BreakLines(whole, area.width(), QTextOption::WrapAtWordBoundaryOrAnywhere, isWhole);
    if (height <= area.height()) {
        whole.draw(&painter, QPointF(area.left(), area.top() + (area.height() - height) / 2));
        return;
    }
    QTextLayout cut(CutToHeight(whole, area.size()), whole.font(), painter.device());
    height = BreakLines(cut, area.width() + 1, QTextOption::ManualWrap, isWhole);
    cut.draw(&painter, QPointF(area.left(), area.top() + (area.height() - height) / 2));
}
} // namespace

LabelSheet::LabelSheet(const cPageSetup& pageSetup, const QSizeF& paper, const QStringList& texts, int startAt)
    : PageSetup_(pageSetup), Paper_(paper), Texts_(texts), StartAt_(startAt)
{
}

LabelSheet LabelSheet::TestPrint(const cPageSetup& pageSetup, const QSizeF& paper)
{
    LabelSheet sheet(pageSetup, paper, QStringList(LabelLayout::LabelsPerSheet(pageSetup), QString()));
    sheet.IsTest_ = true;
    return sheet;
}

int LabelSheet::SheetCount() const
{
    return LabelLayout::SheetCount(PageSetup_, static_cast<int>(Texts_.size()), StartAt_);
}

void LabelSheet::PaintSheet(QPainter& painter, int sheet, double dotsPerMillimetre) const
{
    if (sheet < 0 || sheet >= SheetCount())
        return;
    for (int i = LabelLayout::FirstLabelOf(PageSetup_, sheet, StartAt_); i < Texts_.size(); ++i) {
        const LabelLayout::LabelPlace place = LabelLayout::PlaceOf(PageSetup_, i, StartAt_);
        if (place.Sheet != sheet)
            break;
        painter.save();
        painter.setPen(Qt::black);
        if (IsTest_)
            PaintTestLabel(painter, i + 1, place.Label, dotsPerMillimetre);
        else
            PaintText(painter, Texts_.at(i), place.Label, dotsPerMillimetre);
        painter.restore();
    }
}

void LabelSheet::PaintText(QPainter& painter, const QString& text, const QRectF& label, double dotsPerMillimetre) const
{
    const QRectF area = Scaled(LabelLayout::TextArea(PageSetup_, Paper_, label), dotsPerMillimetre);
    if (area.isEmpty())
        return;
    QString lines = text;
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    while (lines.endsWith(u'\n'))
        lines.chop(1);
    lines.replace(u'\n', QChar::LineSeparator);
    if (lines.isEmpty())
        return;
    // Tall accents and slanted letters reach out of their lines, never out of the label.
    painter.setClipRect(Scaled(label, dotsPerMillimetre));
    DrawFitted(painter, lines, area, dotsPerMillimetre);
}

void LabelSheet::PaintTestLabel(QPainter& painter, int number, const QRectF& label, double dotsPerMillimetre) const
{
    const QRectF place = Scaled(label, dotsPerMillimetre);
    QPen pen(Qt::black, OutlineWidth * dotsPerMillimetre);
    pen.setJoinStyle(Qt::MiterJoin);
    painter.setPen(pen);
    painter.drawRect(place);
    painter.setClipRect(place);
    painter.setFont(TextFont(NumberText, dotsPerMillimetre));
    painter.drawText(place, Qt::AlignCenter, QString::number(number));
}

bool LabelSheet::Print(QPagedPaintDevice& device) const
{
    QPageLayout layout(QPageSize(Paper_, QPageSize::Millimeter), QPageLayout::Portrait, QMarginsF(),
                       QPageLayout::Millimeter);
    // The corner of the paper, not of what the printer can reach, is where the labels are measured from.
    layout.setMode(QPageLayout::FullPageMode);
    QPainter painter;
    if (SheetCount() == 0 || !device.setPageLayout(layout) || !painter.begin(&device))
        return false;
    const double dotsAcross = device.logicalDpiX() / MillimetresPerInch;
    painter.scale(1, double(device.logicalDpiY()) / device.logicalDpiX());
    for (int sheet = 0; sheet < SheetCount(); ++sheet) {
        if (sheet > 0 && !device.newPage())
            return false;
        PaintSheet(painter, sheet, dotsAcross);
    }
    return painter.end();
}

bool LabelSheet::WritePdf(const QString& fileName, QString& problem) const
{
    QBuffer pages;
    pages.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&pages);
        writer.setTitle(QStringLiteral("Labels"));
        writer.setCreator(QStringLiteral("Tolva"));
        if (!Print(writer)) {
            problem = SheetCount() == 0 ? QStringLiteral("There is nothing to print.")
                                        : QStringLiteral("The labels could not be drawn.");
            return false;
        }
    }
    const FileStatus status = WholeFile::Write(fileName, pages.data(), IfThere::Replace);
    problem = status.IsDone()
                  ? QString()
                  : QStringLiteral("The file \"%1\" could not be written: %2").arg(fileName, status.Words());
    return status.IsDone();
}
