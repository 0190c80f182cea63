// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/WebBrowser.h"

#include "common/UserInterface.h"
#include "platform/html/SafeHtml.h"
#include "platform/html/SafeLink.h"
#include "platform/widgets/Contrast.h"
#include "platform/widgets/PageView.h"

#include <QBoxLayout>
#include <QDesktopServices>
#include <QEvent>
#include <QFontDatabase>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QScrollBar>

#include <cmath>

namespace
{
/// A page of so much is laid out at once, in a tenth or two of a second; of a longer one the first part.
constexpr qsizetype LongestWhole = 200'000;
constexpr qsizetype FirstPart = 50'000;
constexpr double HtmlPoints = 10.5;
constexpr int MostZoomSteps = 8;

std::function<void(const QUrl&)>& LinkOpener()
{
    static std::function<void(const QUrl&)> opener;
    return opener;
}

QPushButton* MakeButton(QWidget* parent, const char* name, const QString& text)
{
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    return button;
}

QString Beginning(const QString& text, qsizetype length)
{
    if (text.size() <= length)
        return text;
    return text.left(text.at(length - 1).isHighSurrogate() ? length - 1 : length);
}

QString SizeText(qsizetype size)
{
    return QLocale().formattedDataSize(size, size < qsizetype{10} * 1024 * 1024 ? 1 : 0,
                                       QLocale::DataSizeTraditionalFormat);
}
} // namespace

WebBrowser::WebBrowser(QWidget* parent) : QWidget(parent), View_(new PageView(this))
{
    MakeNotice();
    View_->setObjectName(QStringLiteral("pageText"));
    View_->setAccessibleName(QStringLiteral("Message text"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(Notice_);
    layout->addWidget(View_, 1);
    setFocusProxy(View_);
    connect(View_, &QTextBrowser::anchorClicked, this, &WebBrowser::OpenLink);
    connect(View_, &QTextBrowser::highlighted, this,
            [this](const QUrl& address) { Q_EMIT LinkHovered(QString::fromLatin1(address.toEncoded())); });
    connect(View_, &PageView::ZoomRequested, this, &WebBrowser::Zoom);
    Refresh();
}

WebBrowser::~WebBrowser() = default;

void WebBrowser::MakeNotice()
{
    Notice_ = new QWidget(this);
    Notice_->setObjectName(QStringLiteral("pnlNotice"));
    Notice_->setAutoFillBackground(true);
    NoticeText_ = new QLabel(Notice_);
    NoticeText_->setObjectName(QStringLiteral("lblNotice"));
    NoticeText_->setTextFormat(Qt::PlainText);
    NoticeText_->setWordWrap(true);
    ShowAllButton_ = MakeButton(Notice_, "cmdShowAll", QStringLiteral("Show all"));
    GroundButton_ = MakeButton(Notice_, "cmdGround", QStringLiteral("Dark page"));
    SourceButton_ = MakeButton(Notice_, "cmdShowSource", QStringLiteral("Show source"));
    auto* layout = new QHBoxLayout(Notice_);
    layout->setContentsMargins(10, 3, 6, 3);
    layout->addWidget(NoticeText_, 1);
    layout->addWidget(ShowAllButton_);
    layout->addWidget(GroundButton_);
    layout->addWidget(SourceButton_);
    connect(ShowAllButton_, &QPushButton::clicked, this, &WebBrowser::ShowAll);
    connect(GroundButton_, &QPushButton::clicked, this, [this] {
        PrefersDark_ = !PrefersDark_;
        Refresh();
    });
    connect(SourceButton_, &QPushButton::clicked, this, [this] {
        ShowsSource_ = !ShowsSource_;
        ShowsAll_ = false;
        Refresh();
    });
}

void WebBrowser::ClearPage()
{
    Show(Body::Nothing, QString());
}

void WebBrowser::ShowHTML(const QString& html)
{
    Show(Body::Html, html);
}

void WebBrowser::ShowText(const QString& text)
{
    Show(Body::Text, text);
}

void WebBrowser::Show(Body body, const QString& content)
{
    Body_ = body;
    Content_ = content;
    Whole_ = std::exchange(NextWhole_, nullptr);
    ShowsSource_ = false;
    ShowsAll_ = false;
    PrefersDark_ = false;
    Refresh();
    View_->verticalScrollBar()->setValue(0);
    Q_EMIT LinkHovered(QString());
}

void WebBrowser::SetWhole(std::function<QString()> whole)
{
    NextWhole_ = std::move(whole);
}

void WebBrowser::SetContentLoader(ContentLoader loader)
{
    Loader_ = std::move(loader);
}

void WebBrowser::SetLinkOpener(std::function<void(const QUrl&)> opener)
{
    LinkOpener() = std::move(opener);
}

void WebBrowser::Refresh()
{
    ShownPalette_ = palette();
    ShownFont_ = font();
    if (ShowsAll_ && Whole_)
        Content_ = std::exchange(Whole_, nullptr)();
    if (Body_ == Body::Html && !ShowsSource_)
        ShowSafePage();
    else
        ShowPlainBody();
    Mark();
}

void WebBrowser::SetMarker(Marker marker)
{
    Marker_ = std::move(marker);
    Mark();
}

/// In colours that are read on either ground.
void WebBrowser::Mark()
{
    constexpr qsizetype MostMarked = 500'000;
    constexpr qsizetype MostMarks = 1000;
    QList<QTextEdit::ExtraSelection> marks;
    const QString text = Marker_ ? View_->toPlainText().left(MostMarked) : QString();
    const auto places = text.isEmpty() ? QList<std::pair<qsizetype, qsizetype>>() : Marker_(text).mid(0, MostMarks);
    for (const auto& [begin, size] : places) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(View_->document());
        mark.cursor.setPosition(static_cast<int>(begin));
        mark.cursor.setPosition(static_cast<int>(begin + size), QTextCursor::KeepAnchor);
        mark.format.setBackground(QColor(255, 236, 150));
        mark.format.setForeground(Qt::black);
        marks.append(mark);
    }
    View_->setExtraSelections(marks);
}

void WebBrowser::ShowSafePage()
{
    EmbeddedPictures_.clear();
    View_->SetPictureSource([this](const QString& address) { return PictureOctets(address); });
    SafeHtmlOptions options;
    const QPalette colours = IsOnLightGround() ? LightPalette() : palette();
    options.KeepsColours = IsOnLightGround();
    options.MarkGround = colours.color(QPalette::Base).rgb() & 0xFFFFFFU;
    options.BasePoints = HtmlPoints;
    options.Scale = std::pow(1.1, ZoomSteps_);
    const bool isLong = !ShowsAll_ && Content_.size() > LongestWhole;
    options.MaxCharacters = ShowsAll_ ? 0 : isLong ? FirstPart : LongestWhole;
    options.HasPicture = [this](const QString& id) {
        return !View_->Picture(QStringLiteral("cid:") + QString::fromLatin1(QUrl::toPercentEncoding(id))).isNull();
    };
    // Reading the source takes its time as well.
    SafePage page = MakeSafe(isLong ? Beginning(Content_, LongestWhole) : Content_, options);
    EmbeddedPictures_ = page.EmbeddedPictures;
    for (qsizetype i = 0; i < EmbeddedPictures_.size(); ++i)
        page.MissingPictures += View_->Picture(QStringLiteral("embedded:%1").arg(i)).isNull() ? 1 : 0;

    QFont pageFont = font();
    pageFont.setPointSizeF(HtmlPoints * options.Scale);
    View_->ShowPage(page.Html, pageFont, colours);
    ShowNotice(Withheld(page), page.IsCutShort || isLong || Whole_);
}

void WebBrowser::ShowPlainBody()
{
    QFont textFont = ShowsSource_ ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : font();
    const double points = font().pointSizeF() > 0 ? font().pointSizeF() : HtmlPoints;
    textFont.setPointSizeF(points * std::pow(1.1, ZoomSteps_));
    const bool isLong = !ShowsAll_ && Content_.size() > LongestWhole;
    View_->SetPictureSource({});
    View_->ShowPlain(isLong ? Beginning(Content_, FirstPart) : Content_, textFont, palette());
    ShowNotice({}, isLong || Whole_);
}

QStringList WebBrowser::Withheld(const SafePage& page) const
{
    QStringList sentences;
    if (page.RemoteContent > 0)
        sentences.append(QStringLiteral("Pictures and other content on the internet are not shown."));
    if (page.ActiveContent > 0)
        sentences.append(QStringLiteral("Active content was removed."));
    if (page.UnsafeLinks > 0)
        sentences.append(QStringLiteral("Links that lead to no web page or mail address were removed."));
    if (page.MissingPictures > 0)
        sentences.append(QStringLiteral("Some pictures of this message cannot be shown."));
    if (page.IsTextOnly)
        sentences.append(QStringLiteral("This page is built in an unusual way; only its text is shown."));
    if (page.IsCutShort && ShowsAll_)
        sentences.append(QStringLiteral("A part of this page is too large to be shown."));
    return sentences;
}

void WebBrowser::ShowNotice(const QStringList& sentences, bool isCutShort)
{
    const bool isHtml = Body_ == Body::Html;
    const bool offersAll = isCutShort && !ShowsAll_;
    QStringList all = sentences;
    if (offersAll)
        all.prepend(QStringLiteral("This message is very long (%1%2); the beginning is shown.")
                        .arg(Whole_ ? QStringLiteral("more than ") : QString(), SizeText(Content_.size())));
    NoticeText_->setText(all.join(u' '));
    ShowAllButton_->setVisible(offersAll);
    GroundButton_->setVisible(isHtml && !ShowsSource_ && IsThemeDark());
    GroundButton_->setText(PrefersDark_ ? QStringLiteral("Light page") : QStringLiteral("Dark page"));
    SourceButton_->setVisible(isHtml);
    SourceButton_->setText(ShowsSource_ ? QStringLiteral("Show page") : QStringLiteral("Show source"));
    Notice_->setVisible(isHtml || offersAll);
    QPalette calm = palette();
    calm.setColor(QPalette::Window,
                  Contrast::Blend(palette().color(QPalette::Window), palette().color(QPalette::Highlight), 0.12));
    Notice_->setPalette(calm);
}

QByteArray WebBrowser::PictureOctets(const QString& address) const
{
    static const QString embedded = QStringLiteral("embedded:");
    if (address.startsWith(embedded))
        return EmbeddedPictures_.value(address.mid(embedded.size()).toInt());
    const QString id = ContentIDOf(address);
    QString type;
    return Loader_ && !id.isEmpty() ? Loader_(id, &type) : QByteArray();
}

bool WebBrowser::IsThemeDark() const
{
    return palette().color(QPalette::Base).lightness() < 128;
}

bool WebBrowser::IsOnLightGround() const
{
    return !IsThemeDark() || !PrefersDark_;
}

QPalette WebBrowser::LightPalette() const
{
    if (!IsThemeDark())
        return palette();
    QPalette light = palette();
    light.setColor(QPalette::Base, Qt::white);
    light.setColor(QPalette::Text, QColor(0x1B, 0x1D, 0x22));
    light.setColor(QPalette::Link, QColor(0x0B, 0x57, 0xD0));
    light.setColor(QPalette::LinkVisited, QColor(0x0B, 0x57, 0xD0));
    light.setColor(QPalette::Highlight, QColor(0x2F, 0x65, 0xC8));
    light.setColor(QPalette::HighlightedText, Qt::white);
    return light;
}

void WebBrowser::OpenLink(const QUrl& address)
{
    const SafeLink link = ReadLink(QString::fromLatin1(address.toEncoded()));
    if (link.Kind != LinkKind::Safe)
        return;
    const QUrl url = QUrl::fromEncoded(link.Address.toLatin1());
    if (LinkOpener())
        LinkOpener()(url);
    else
        QDesktopServices::openUrl(url);
}

void WebBrowser::Zoom(int steps)
{
    const int before = ZoomSteps_;
    SetZoomSteps(steps == 0 ? 0 : ZoomSteps_ + steps);
    if (ZoomSteps_ != before)
        Q_EMIT Zoomed(ZoomSteps_);
}

void WebBrowser::SetZoomSteps(int steps)
{
    const int wanted = std::clamp(steps, -MostZoomSteps, MostZoomSteps);
    if (wanted == ZoomSteps_)
        return;
    ZoomSteps_ = wanted;
    const int place = View_->verticalScrollBar()->value();
    Refresh();
    View_->verticalScrollBar()->setValue(place);
}

void WebBrowser::ShowAll()
{
    const BusyPointer busy;
    const int place = View_->verticalScrollBar()->value();
    ShowsAll_ = true;
    Refresh();
    View_->verticalScrollBar()->setValue(place);
}

void WebBrowser::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    const bool isLook = event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange;
    if (isLook && (palette() != ShownPalette_ || font() != ShownFont_))
        Refresh();
}
