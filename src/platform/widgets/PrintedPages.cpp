// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/PrintedPages.h"

#include "platform/ProcessorTime.h"
#include "platform/files/WholeFile.h"
#include "platform/html/TagScanner.h"
#include "platform/widgets/PictureReader.h"
#include "platform/widgets/TableWidths.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QHash>
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
constexpr qsizetype LongestParagraph = 5000;
constexpr qint64 MostPixelsOnPage = 8 * PictureReader::MostPixels;
/// Of the page's source; reading and dividing so much takes up to three seconds and cannot be stopped.
constexpr qsizetype LongestRichText = 2'500'000;
/// About what laying out takes on a slow machine; a guess that only decides what is not begun any more.
constexpr std::chrono::nanoseconds TimePerCharacterOfTable(500);

const QString PlainWords =
    QStringLiteral("[From here on the page stands as plain text: it would take too long to lay out.]");

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
    explicit Budget(const LayoutLimits& limits) : Limits_(limits), Begin_(ProcessorTime()), Time_(limits.FirstSize) {}

    /// From now on all of the time counts.
    void BeginSecondSize() { Time_ = Limits_.Budget; }
    bool IsWanted() const { return !Limits_.IsWanted || Limits_.IsWanted(); }
    bool IsUsedUp() const { return Left().count() <= 0; }
    /// A table is laid out in one step.
    bool AffordsTable(int characters) const { return characters * TimePerCharacterOfTable <= Left(); }

private:
    std::chrono::nanoseconds Left() const { return Time_ - (ProcessorTime() - Begin_); }

    const LayoutLimits& Limits_;
    std::chrono::nanoseconds Begin_;
    std::chrono::nanoseconds Time_;
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
    // NOLINTNEXTLINE(modernize-loop-convert): reversed views do not compile with clang 14.
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

namespace
{
/// The text of a safe page's source.
QString TextOf(const QString& html)
{
    QString text = TagScanner::TextOf(html);
    text.replace(QLatin1String("&lt;"), QLatin1String("<"));
    text.replace(QLatin1String("&gt;"), QLatin1String(">"));
    text.replace(QLatin1String("&quot;"), QLatin1String("\""));
    return text.replace(QLatin1String("&amp;"), QLatin1String("&"));
}

/// What a cursor has selected, with each paragraph and cell on a line of its own.
QString PlainTextOf(const QTextCursor& cursor)
{
    QString text = cursor.selectedText();
    for (QChar& character : text) {
        switch (character.unicode()) {
        case QChar::ParagraphSeparator:
        case QChar::LineSeparator:
        case 0xFDD0: // where a frame or a cell begins
        case 0xFDD1: // where a frame ends
            character = u'\n';
            break;
        case QChar::Nbsp:
        case QChar::ObjectReplacementCharacter:
        case u'\t':
            character = u' ';
            break;
        default:
            break;
        }
    }
    return text;
}
} // namespace

PrintedPages::PrintedPages(const SafeDocument& page, const PaperSetup& setup, const LayoutLimits& limits)
    : Setup_(setup), Device_(1, 1, QImage::Format_RGB32), Document_(std::make_unique<Document>())
{
    Budget budget(limits);
    SetDefaults();
    SetContent(page.Html);
    const QSizeF size = Printable(setup);
    if (!LayOut(budget, size))
        return;
    const double width = Document_->documentLayout()->documentSize().width();
    Shrink_ = std::clamp(width / size.width(), 1.0, LargestShrink);
    budget.BeginSecondSize();
    if (Shrink_ > 1 && !LayOut(budget, size * Shrink_))
        return;
    LaidOutCount_ = Document_->isEmpty() && !Rest_.isEmpty() ? 0 : std::max(Document_->pageCount(), 1);
    if (!Rest_.isEmpty())
        Plain_ =
            PlainPages(PlainWords + QStringLiteral("\n\n") + std::exchange(Rest_, QString()), size / DotsPerMillimetre);
}

PrintedPages::~PrintedPages() = default;

void PrintedPages::SetDefaults()
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
    // Each change would be laid out by itself. The first layout has the right size: another one would be made anew.
    Document_->setPageSize(Printable(Setup_));
    Document_->setLayoutEnabled(false);
}

void PrintedPages::SetContent(const QString& html)
{
    // A safe page has a "<" where a tag begins and nowhere else.
    const qsizetype end = html.size() > LongestRichText ? html.lastIndexOf(u'<', LongestRichText) : html.size();
    Document_->setHtml(end < html.size() ? html.first(end) : html);
    if (end < html.size())
        Rest_ = TextOf(html.sliced(end));
    FitTables(*Document_, Printable(Setup_).width());
    DivideParagraphs(*Document_);
}

/// Step by step, a paragraph or an outermost table each. False when it is not wanted any more.
bool PrintedPages::LayOut(const Budget& budget, const QSizeF& size)
{
    if (Document_->isLayoutEnabled())
        Document_->setPageSize(size);
    else
        Document_->setLayoutEnabled(true);
    const QAbstractTextDocumentLayout* layout = Document_->documentLayout();
    for (auto place = Document_->rootFrame()->begin(); !place.atEnd(); ++place) {
        if (!budget.IsWanted())
            return false;
        const QTextFrame* frame = place.currentFrame();
        const QTextBlock block = frame == nullptr ? place.currentBlock() : QTextBlock();
        const int begin = frame != nullptr ? frame->firstPosition() - 1 : block.position();
        const int length = frame != nullptr ? frame->lastPosition() - begin : block.length();
        if (budget.IsUsedUp() || (frame != nullptr && !budget.AffordsTable(length))) {
            MakePlainBehind(begin);
            break;
        }
        // Whoever asks where a paragraph is has everything up to it laid out.
        const QTextBlock last = frame != nullptr ? Document_->findBlock(frame->lastPosition()) : block;
        static_cast<void>(layout->blockBoundingRect(last));
    }
    return budget.IsWanted();
}

void PrintedPages::MakePlainBehind(int position)
{
    const int end = Document_->characterCount() - 1;
    if (position >= end)
        return;
    QTextCursor cursor(Document_.get());
    // Outside of an edit a cursor has everything up to it laid out.
    cursor.beginEditBlock();
    cursor.setPosition(position);
    cursor.setPosition(end, QTextCursor::KeepAnchor);
    Rest_.prepend(PlainTextOf(cursor));
    cursor.removeSelectedText();
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
    if (page < 0 || page >= PageCount())
        return;
    painter.save();
    painter.translate(Setup_.Margins.left() * dotsPerMillimetre, Setup_.Margins.top() * dotsPerMillimetre);
    if (page < LaidOutCount_)
        PaintLaidOut(painter, page, dotsPerMillimetre);
    else if (HasPlainText())
        Plain_.PaintPage(painter, page - LaidOutCount_, dotsPerMillimetre);
    painter.restore();
    if (Setup_.NumbersPages && PageCount() > 1)
        PaintNumber(painter, page, dotsPerMillimetre);
}

void PrintedPages::PaintLaidOut(QPainter& painter, int page, double dotsPerMillimetre) const
{
    const QSizeF size = Document_->pageSize();
    const double scale = dotsPerMillimetre / DotsPerMillimetre / Shrink_;
    painter.scale(scale, scale);
    painter.translate(0, -page * size.height());
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = QRectF(QPointF(0, page * size.height()), size);
    context.palette = QPalette(Qt::black, Qt::white, Qt::white, Qt::black, Qt::gray, Qt::black, Qt::white);
    painter.setClipRect(context.clip, Qt::IntersectClip);
    Document_->documentLayout()->draw(&painter, context);
}

void PrintedPages::PaintNumber(QPainter& painter, int page, double dotsPerMillimetre) const
{
    painter.save();
    QFont font = Document_->defaultFont();
    font.setPixelSize(qMax(1, qRound(NumberPoints / PointsPerInch * MillimetresPerInch * dotsPerMillimetre)));
    painter.setFont(font);
    painter.setPen(Qt::black);
    const QSizeF paper = Setup_.Paper * dotsPerMillimetre;
    const double margin = Setup_.Margins.bottom() * dotsPerMillimetre;
    painter.drawText(QRectF(0, paper.height() - margin, paper.width(), margin), Qt::AlignCenter,
                     QStringLiteral("Page %1 of %2").arg(page + 1).arg(PageCount()));
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
    if (last < 0 || last >= PageCount())
        last = PageCount() - 1;
    const double dotsAcross = device.logicalDpiX() / MillimetresPerInch;
    painter.scale(1, double(device.logicalDpiY()) / device.logicalDpiX());
    for (int page = first; page <= last; ++page) {
        if ((step && !step(page, PageCount())) || (page > first && !device.newPage()))
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
