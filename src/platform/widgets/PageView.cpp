// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/PageView.h"

#include "platform/html/PlainText.h"
#include "platform/widgets/PictureReader.h"
#include "platform/widgets/TableWidths.h"

#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QScrollBar>
#include <QToolTip>
#include <QWheelEvent>

namespace
{
constexpr double ViewMargin = 10;
constexpr qint64 MostPixelsInView = 4 * PictureReader::MostPixels;
} // namespace

/// A document whose resources are the view's alone: the base class would read files and "data:" addresses by itself.
class PageView::Document : public QTextDocument
{
public:
    explicit Document(PageView* view) : QTextDocument(view), View_(view) {}

protected:
    QVariant loadResource(int type, const QUrl& name) override { return View_->loadResource(type, name); }

private:
    PageView* View_;
};

/// Draws pictures no wider than the pane.
class PageView::PictureDrawer : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    explicit PictureDrawer(PageView* view) : QObject(view), View_(view) {}

    QSizeF intrinsicSize(QTextDocument*, int, const QTextFormat& format) override
    {
        const QTextImageFormat picture = format.toImageFormat();
        QSizeF size = View_->Picture(picture.name()).size();
        if (size.isEmpty())
            return {0, 0};
        if (picture.width() > 0 && picture.height() > 0)
            size = {picture.width(), picture.height()};
        else if (picture.width() > 0)
            size *= picture.width() / size.width();
        else if (picture.height() > 0)
            size *= picture.height() / size.height();
        const double available = View_->AvailableWidth();
        return size.width() > available ? size * (available / size.width()) : size;
    }
    void drawObject(QPainter* painter, const QRectF& place, QTextDocument*, int, const QTextFormat& format) override
    {
        const QImage picture = View_->Picture(format.toImageFormat().name());
        if (picture.isNull())
            return;
        painter->save();
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawImage(place, picture);
        painter->restore();
    }

private:
    PageView* View_;
};

PageView::PageView(QWidget* parent) : QTextBrowser(parent), Document_(new Document(this))
{
    setDocument(Document_);
    Document_->setUndoRedoEnabled(false);
    Document_->documentLayout()->registerHandler(QTextFormat::ImageObject, new PictureDrawer(this));
    setOpenLinks(false);
    setOpenExternalLinks(false);
    setAcceptDrops(false);
    viewport()->setAcceptDrops(false);
    setFrameStyle(QFrame::NoFrame);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
}

PageView::~PageView() = default;

void PageView::SetPictureSource(PictureSource source)
{
    Source_ = std::move(source);
    Pictures_.clear();
    Pixels_ = 0;
}

QImage PageView::Picture(const QString& address)
{
    const auto known = Pictures_.constFind(address);
    if (known != Pictures_.constEnd())
        return *known;
    QImage picture;
    const QByteArray octets = Source_ ? Source_(address) : QByteArray();
    const qint64 pixels = PictureReader::Pixels(octets);
    if (pixels > 0 && Pixels_ + pixels <= MostPixelsInView) {
        Pixels_ += pixels;
        picture = PictureReader::Read(octets);
    }
    Pictures_.insert(address, picture);
    return picture;
}

QVariant PageView::loadResource(int type, const QUrl& name)
{
    const bool isOfMessage = name.scheme() == QLatin1String("cid") || name.scheme() == QLatin1String("embedded");
    if (type != QTextDocument::ImageResource || !isOfMessage)
        return {};
    return Picture(QString::fromLatin1(name.toEncoded()));
}

void PageView::Begin(const QFont& font, const QPalette& palette)
{
    Tables_.clear();
    clear();
    // The bars are the desktop's, whatever ground the page has.
    const QPalette around = parentWidget() != nullptr ? parentWidget()->palette() : QPalette();
    setPalette(palette);
    horizontalScrollBar()->setPalette(around);
    verticalScrollBar()->setPalette(around);
    setFont(font);
    Document_->setDefaultFont(font);
    Document_->setDocumentMargin(ViewMargin);
    Document_->setDefaultStyleSheet(
        QStringLiteral("a { color: %1; text-decoration: underline; }").arg(palette.color(QPalette::Link).name()));
}

void PageView::ShowPage(const QString& html, const QFont& font, const QPalette& palette)
{
    Begin(font, palette);
    setHtml(html);
    FindTables();
    FitTables();
}

void PageView::ShowPlain(const QString& text, const QFont& font, const QPalette& palette)
{
    Begin(font, palette);
    qsizetype wordLength = 0;
    const QString clean = BreakLongWords(CleanText(text), &wordLength);
    setPlainText(clean);
    QTextCursor cursor(Document_);
    cursor.beginEditBlock();
    for (const TextLink& link : FindLinks(clean)) {
        QTextCharFormat format;
        format.setAnchor(true);
        format.setAnchorHref(link.Address);
        format.setForeground(palette.link());
        format.setFontUnderline(true);
        cursor.setPosition(static_cast<int>(link.Position));
        cursor.setPosition(static_cast<int>(link.Position + link.Length), QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(format);
    }
    cursor.endEditBlock();
}

double PageView::AvailableWidth() const
{
    return std::max(viewport()->width() - 2 * ViewMargin - 8, 40.0);
}

void PageView::FindTables()
{
    QList<QTextFrame*> frames{Document_->rootFrame()};
    while (!frames.isEmpty()) {
        QTextFrame* frame = frames.takeLast();
        frames += frame->childFrames();
        auto* table = qobject_cast<QTextTable*>(frame);
        if (table == nullptr)
            continue;
        const QTextTableFormat format = table->format();
        const auto widths = format.columnWidthConstraints();
        const bool isFixed = format.width().type() == QTextLength::FixedLength ||
                             std::any_of(widths.begin(), widths.end(), [](const QTextLength& width) {
                                 return width.type() == QTextLength::FixedLength;
                             });
        if (isFixed)
            Tables_.append({table, format});
    }
}

void PageView::FitTables()
{
    if (Tables_.isEmpty())
        return;
    const double available = AvailableWidth();
    QTextCursor edit(Document_);
    edit.beginEditBlock();
    for (const WideTable& wide : Tables_) {
        if (wide.Table == nullptr)
            continue;
        const QTextTableFormat format = TableWidths::FittedTo(available, wide.Format);
        if (format != wide.Table->format())
            wide.Table->setFormat(format);
    }
    edit.endEditBlock();
}

void PageView::resizeEvent(QResizeEvent* event)
{
    QTextBrowser::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        FitTables();
}

void PageView::wheelEvent(QWheelEvent* event)
{
    if ((event->modifiers() & Qt::ControlModifier) == 0)
        return QTextBrowser::wheelEvent(event);
    if (event->angleDelta().y() != 0)
        Q_EMIT ZoomRequested(event->angleDelta().y() > 0 ? 1 : -1);
    event->accept();
}

void PageView::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::ZoomIn) ||
        (event->modifiers() & Qt::ControlModifier && event->key() == Qt::Key_Equal))
        Q_EMIT ZoomRequested(1);
    else if (event->matches(QKeySequence::ZoomOut))
        Q_EMIT ZoomRequested(-1);
    else if (event->modifiers() == Qt::ControlModifier && event->key() == Qt::Key_0)
        Q_EMIT ZoomRequested(0);
    else
        QTextBrowser::keyPressEvent(event);
}

bool PageView::viewportEvent(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        const QString address = anchorAt(help->pos());
        if (!address.isEmpty()) {
            constexpr qsizetype Enough = 300;
            QToolTip::showText(help->globalPos(), address.left(Enough), viewport());
            return true;
        }
    }
    return QTextBrowser::viewportEvent(event);
}

bool PageView::canInsertFromMimeData(const QMimeData*) const
{
    return false;
}

void PageView::insertFromMimeData(const QMimeData*)
{
    // Reading only.
}

#include "PageView.moc"
