// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPalette>
#include <QUrl>
#include <QWidget>

#include <functional>

class PageView;
class QLabel;
class QPushButton;
struct SafePage;

/// A pane that shows a mail's body: HTML, or plain text. HTML is shown as MakeSafe writes it: nothing runs and nothing
/// is fetched. A line above the page says what was left out, and the page's source can always be looked at as plain
/// text.
///
/// HTML stands on a light ground, also in a dark theme, unless the user asks for the dark one; plain text follows the
/// theme. A very long body is shown in part until the user asks for all of it.
class WebBrowser : public QWidget
{
    Q_OBJECT

public:
    /// The decoded octets of the message's part with this content id, its type in contentType; empty when there is
    /// none.
    using ContentLoader = std::function<QByteArray(const QString& contentID, QString* contentType)>;

    /// Where a text that is shown is to be marked: begins and sizes.
    using Marker = std::function<QList<std::pair<qsizetype, qsizetype>>(const QString& text)>;

    explicit WebBrowser(QWidget* parent = nullptr);
    ~WebBrowser() override;

    void ClearPage();
    void ShowHTML(const QString& html);
    void ShowText(const QString& text);
    /// The next page shown is the beginning of one that this gives, when the user asks for all of it.
    void SetWhole(std::function<QString()> whole);
    /// For the pages shown from now on. Without it, or with an empty one, no pictures of the message show.
    void SetContentLoader(ContentLoader loader);
    /// Marks the page on show and those that come; an empty one ends that.
    void SetMarker(Marker marker);

    /// How many steps the text is larger (or, below 0, smaller) than usual, each a tenth; eight at most, either way.
    /// The user changes it by Ctrl and the wheel or the keys.
    int ZoomSteps() const { return ZoomSteps_; }
    void SetZoomSteps(int steps);

    /// What opens a link that the user clicked; only http, https and mailto come here. An empty one goes back to the
    /// desktop's own programs.
    static void SetLinkOpener(std::function<void(const QUrl&)> opener);

Q_SIGNALS:
    /// The address under the pointer, empty when it left the link.
    void LinkHovered(const QString& address);
    /// The user chose another size of the text.
    void Zoomed(int steps);

protected:
    void changeEvent(QEvent* event) override;

private:
    enum class Body
    {
        Nothing,
        Html,
        Text
    };

    void MakeNotice();
    void Show(Body body, const QString& content);
    void Refresh();
    void ShowSafePage();
    void ShowPlainBody();
    void ShowNotice(const QStringList& sentences, bool isCutShort);
    QStringList Withheld(const SafePage& page) const;
    QByteArray PictureOctets(const QString& address) const;
    bool IsThemeDark() const;
    bool IsOnLightGround() const;
    QPalette LightPalette() const;
    void OpenLink(const QUrl& address);
    void Zoom(int steps);
    void ShowAll();
    void Mark();

    PageView* View_;
    QWidget* Notice_;
    QLabel* NoticeText_;
    QPushButton* ShowAllButton_;
    QPushButton* GroundButton_;
    QPushButton* SourceButton_;

    Body Body_ = Body::Nothing;
    QString Content_;
    std::function<QString()> NextWhole_;
    std::function<QString()> Whole_; ///< Empty when Content_ is all.
    ContentLoader Loader_;
    Marker Marker_;
    QList<QByteArray> EmbeddedPictures_;
    bool ShowsSource_ = false;
    bool ShowsAll_ = false;
    bool PrefersDark_ = false;
    int ZoomSteps_ = 0;
    QPalette ShownPalette_;
    QFont ShownFont_;
};
