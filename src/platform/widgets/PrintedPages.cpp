// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/PrintedPages.h"

#include "platform/ProcessorTime.h"
#include "platform/files/WholeFile.h"
#include "platform/widgets/PictureReader.h"
#include "platform/widgets/TableWidths.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QHash>
#include <QLocale>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextFrame>
#include <QTextObjectInterface>
#include <QTextTable>
#include <QThread>
#include <QUrl>

namespace
{
constexpr double MillimetresPerInch = 25.4;
constexpr double DotsPerInch = 96;
constexpr double DotsPerMillimetre = DotsPerInch / MillimetresPerInch;
constexpr double BasePoints = 11;
constexpr double NumberPoints = 8;
constexpr double PointsPerInch = 72;
/// The smallest that a page too wide for its paper gets; the rest would not be read.
constexpr double LargestShrink = 2.5;
constexpr qsizetype LongestParagraph = 20'000;
constexpr qint64 MostPixelsOnPage = 8 * PictureReader::MostPixels;

QSizeF Printable(const PaperSetup& setup)
{
    const QSizeF size(setup.Paper.width() - setup.Margins.left() - setup.Margins.right(),
                      setup.Paper.height() - setup.Margins.top() - setup.Margins.bottom());
    return size.expandedTo(QSizeF(20, 20)) * DotsPerMillimetre;
}
} // namespace

/// A document whose resources are the pictures within the page alone: the base class would read files by itself. It is
/// the drawer of its pictures as well, no larger than the paper.
class PrintedPages::Document : public QTextDocument, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    Document()
    {
        setUndoRedoEnabled(false);
        setDocumentMargin(0);
        setUseDesignMetrics(true);
        documentLayout()->registerHandler(QTextFormat::ImageObject, this);
    }

    QSizeF intrinsicSize(QTextDocument*, int, const QTextFormat& format) override
    {
        const QTextImageFormat picture = format.toImageFormat();
        QSizeF size = Picture(picture.name()).size();
        if (size.isEmpty())
            return {0, 0};
        if (picture.width() > 0 && picture.height() > 0)
            size = {picture.width(), picture.height()};
        else if (picture.width() > 0)
            size *= picture.width() / size.width();
        else if (picture.height() > 0)
            size *= picture.height() / size.height();
        const QSizeF room = pageSize() * 0.96;
        const double shrink = std::min({1.0, room.width() / size.width(), room.height() / size.height()});
        return size * shrink;
    }
    void drawObject(QPainter* painter, const QRectF& place, QTextDocument*, int, const QTextFormat& format) override
    {
        const QImage picture = Picture(format.toImageFormat().name());
        if (picture.isNull())
            return;
        painter->save();
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(place, picture);
        painter->restore();
    }

protected:
    QVariant loadResource(int, const QUrl&) override { return {}; }

private:
    QImage Picture(const QString& address)
    {
        const auto known = Pictures_.constFind(address);
        if (known != Pictures_.constEnd())
            return *known;
        QImage picture;
        const QByteArray octets = PictureWithin(address);
        const qint64 pixels = PictureReader::Pixels(octets);
        if (pixels > 0 && Pixels_ + pixels <= MostPixelsOnPage) {
            Pixels_ += pixels;
            picture = PictureReader::Read(octets);
        }
        Pictures_.insert(address, picture);
        return picture;
    }

    QHash<QString, QImage> Pictures_;
    qint64 Pixels_ = 0;
};

/// What is left of a layout's time.
class PrintedPages::Budget
{
public:
    explicit Budget(const LayoutLimits& limits) : Limits_(limits), Begin_(ProcessorTime()) {}

    bool IsWanted() const { return !Limits_.IsWanted || Limits_.IsWanted(); }
    bool IsUsedUp() const { return ProcessorTime() - Begin_ > Limits_.Budget; }

private:
    const LayoutLimits& Limits_;
    std::chrono::nanoseconds Begin_;
};

namespace
{
/// Tables of fixed widths that are too wide share the width that there is.
void FitTables(QTextDocument& document, double available)
{
    QTextCursor edit(&document);
    edit.beginEditBlock();
    QList<QTextFrame*> frames{document.rootFrame()};
    while (!frames.isEmpty()) {
        QTextFrame* frame = frames.takeLast();
        frames += frame->childFrames();
        auto* table = qobject_cast<QTextTable*>(frame);
        if (table == nullptr)
            continue;
        const QTextTableFormat format = TableWidths::FittedTo(available, table->format());
        if (format != table->format())
            table->setFormat(format);
    }
    edit.endEditBlock();
}

/// Where to divide a long paragraph, behind a word where there is one.
QList<int> Divisions(const QTextBlock& block)
{
    QList<int> places;
    const QString text = block.text();
    for (qsizetype begin = 0; text.size() - begin > LongestParagraph;) {
        const qsizetype most = begin + LongestParagraph;
        const qsizetype blank = text.lastIndexOf(u' ', most - 1);
        begin = blank > begin + LongestParagraph / 2 ? blank + 1 : most;
        begin -= text.at(begin - 1).isHighSurrogate() ? 1 : 0;
        places.append(block.position() + static_cast<int>(begin));
    }
    return places;
}

/// A paragraph is laid out in one step, so that one of megabytes is made several without room between them.
void DivideParagraphs(QTextDocument& document)
{
    QList<int> places;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.length() > LongestParagraph)
            places += Divisions(block);
    }
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    // From the end, so that the places before stay what they are.
    for (auto place = places.crbegin(); place != places.crend(); ++place) {
        cursor.setPosition(*place);
        QTextBlockFormat above = cursor.blockFormat();
        QTextBlockFormat below = above;
        below.setTopMargin(0);
        below.setTextIndent(0);
        above.setBottomMargin(0);
        cursor.insertBlock(below);
        cursor.movePosition(QTextCursor::PreviousBlock);
        cursor.setBlockFormat(above);
    }
    cursor.endEditBlock();
}
} // namespace

PrintedPages::PrintedPages(const SafeDocument& page, const PaperSetup& setup, const LayoutLimits& limits)
    : Setup_(setup), Device_(1, 1, QImage::Format_RGB32), Document_(std::make_unique<Document>())
{
    Device_.setDotsPerMeterX(qRound(DotsPerMillimetre * 1000));
    Device_.setDotsPerMeterY(qRound(DotsPerMillimetre * 1000));
    Document_->documentLayout()->setPaintDevice(&Device_);
    QFont font(QStringList{QStringLiteral("Liberation Sans"), QStringLiteral("Arial"), QStringLiteral("Helvetica")});
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(BasePoints);
    Document_->setDefaultFont(font);
    QTextOption option = Document_->defaultTextOption();
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    Document_->setDefaultTextOption(option);
    Document_->setDefaultStyleSheet(QStringLiteral("a { color: #000000; text-decoration: underline; }"));
    Budget budget(limits);
    // Each change would be laid out by itself.
    Document_->setLayoutEnabled(false);
    Document_->setHtml(page.Html);
    FitTables(*Document_, Printable(setup).width());
    DivideParagraphs(*Document_);
    Document_->setLayoutEnabled(true);
    if (!LayOut(budget, Printable(setup)))
        return;
    const double width = Document_->documentLayout()->documentSize().width();
    Shrink_ = std::clamp(width / Document_->pageSize().width(), 1.0, LargestShrink);
    if (Shrink_ > 1 && !LayOut(budget, Printable(setup) * Shrink_))
        return;
    PageCount_ = std::max(Document_->pageCount(), 1);
}

PrintedPages::~PrintedPages() = default;

/// Step by step, a paragraph or an outermost table each. False when it is not wanted any more.
bool PrintedPages::LayOut(Budget& budget, const QSizeF& size)
{
    Document_->setPageSize(size);
    const QAbstractTextDocumentLayout* layout = Document_->documentLayout();
    for (auto place = Document_->rootFrame()->begin(); !place.atEnd(); ++place) {
        const QTextFrame* frame = place.currentFrame();
        const QTextBlock last = frame != nullptr ? Document_->findBlock(frame->lastPosition()) : place.currentBlock();
        // Whoever asks where a paragraph is has everything up to it laid out.
        static_cast<void>(layout->blockBoundingRect(last));
        if (!budget.IsWanted())
            return false;
        if (budget.IsUsedUp()) {
            LeaveOutBehind(frame != nullptr ? frame->lastPosition() + 1 : last.position() + last.length() - 1);
            break;
        }
    }
    return true;
}

void PrintedPages::LeaveOutBehind(int position)
{
    const int end = Document_->characterCount() - 1;
    if (position >= end)
        return;
    LeftOut_ = end - position;
    QTextCursor cursor(Document_.get());
    cursor.beginEditBlock();
    cursor.setPosition(position);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
    cursor.insertText(QStringLiteral("[The page goes on for %1 characters, which would take too long to lay out.]")
                          .arg(QLocale().toString(LeftOut_)));
    cursor.endEditBlock();
}

void PrintedPages::MoveTo(QThread* thread)
{
    Document_->moveToThread(thread);
}

QString PrintedPages::Title() const
{
    return Document_->metaInformation(QTextDocument::DocumentTitle);
}

void PrintedPages::PaintPage(QPainter& painter, int page, double dotsPerMillimetre) const
{
    if (page < 0 || page >= PageCount_)
        return;
    const QSizeF size = Document_->pageSize();
    painter.save();
    painter.translate(Setup_.Margins.left() * dotsPerMillimetre, Setup_.Margins.top() * dotsPerMillimetre);
    const double scale = dotsPerMillimetre / DotsPerMillimetre / Shrink_;
    painter.scale(scale, scale);
    painter.translate(0, -page * size.height());
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = QRectF(QPointF(0, page * size.height()), size);
    context.palette = QPalette(Qt::black, Qt::white, Qt::white, Qt::black, Qt::gray, Qt::black, Qt::white);
    painter.setClipRect(context.clip, Qt::IntersectClip);
    Document_->documentLayout()->draw(&painter, context);
    painter.restore();

    if (!Setup_.NumbersPages || PageCount_ == 1)
        return;
    painter.save();
    QFont font = Document_->defaultFont();
    font.setPixelSize(qMax(1, qRound(NumberPoints / PointsPerInch * MillimetresPerInch * dotsPerMillimetre)));
    painter.setFont(font);
    painter.setPen(Qt::black);
    const QSizeF paper = Setup_.Paper * dotsPerMillimetre;
    const double margin = Setup_.Margins.bottom() * dotsPerMillimetre;
    painter.drawText(QRectF(0, paper.height() - margin, paper.width(), margin), Qt::AlignCenter,
                     QStringLiteral("Page %1 of %2").arg(page + 1).arg(PageCount_));
    painter.restore();
}

bool PrintedPages::Print(QPagedPaintDevice& device, const PageStep& step, int first, int last) const
{
    QPageLayout layout(QPageSize(Setup_.Paper, QPageSize::Millimeter), QPageLayout::Portrait, QMarginsF(),
                       QPageLayout::Millimeter);
    // The margins are measured from the paper's edge, not from what the printer can reach.
    layout.setMode(QPageLayout::FullPageMode);
    QPainter painter;
    if (!device.setPageLayout(layout) || !painter.begin(&device))
        return false;
    if (last < 0 || last >= PageCount_)
        last = PageCount_ - 1;
    const double dotsAcross = device.logicalDpiX() / MillimetresPerInch;
    painter.scale(1, double(device.logicalDpiY()) / device.logicalDpiX());
    for (int page = first; page <= last; ++page) {
        if ((step && !step(page, PageCount_)) || (page > first && !device.newPage()))
            return false;
        PaintPage(painter, page, dotsAcross);
    }
    return painter.end();
}

QByteArray PrintedPages::Pdf(QString& problem, const PageStep& step) const
{
    problem.clear();
    bool isStopped = false;
    QBuffer pages;
    pages.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&pages);
        writer.setTitle(Title());
        writer.setCreator(QStringLiteral("Tolva"));
        const bool isPrinted = Print(writer, [&](int page, int count) {
            isStopped = step && !step(page, count);
            return !isStopped;
        });
        if (!isPrinted) {
            problem = isStopped ? QString() : QStringLiteral("The pages could not be drawn.");
            return {};
        }
    }
    return pages.data();
}

bool PrintedPages::WritePdf(const QString& fileName, QString& problem, const PageStep& step) const
{
    const QByteArray pdf = Pdf(problem, step);
    if (pdf.isEmpty())
        return false;
    const FileStatus status = WholeFile::Write(fileName, pdf, IfThere::Replace);
    if (!status.IsDone())
        problem = QStringLiteral("The file \"%1\" could not be written: %2").arg(fileName, status.Words());
    return status.IsDone();
}

#include "PrintedPages.moc"
