// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QImage>
#include <QPointer>
#include <QTextBrowser>
#include <QTextTable>

#include <functional>

/// The rich-text pane within a WebBrowser. It shows what it is given and loads nothing: pictures come from the
/// callback, every other resource is refused. Wide pictures and tables are made as narrow as the pane.
class PageView : public QTextBrowser
{
    Q_OBJECT

public:
    /// The octets of a picture by its address on the page ("cid:..." or "embedded:..."); empty when there is none.
    using PictureSource = std::function<QByteArray(const QString& address)>;

    explicit PageView(QWidget* parent = nullptr);
    ~PageView() override;

    /// Forgets the pictures of the page before.
    void SetPictureSource(PictureSource source);
    /// Null when there is none, when it cannot be decoded, or when the page's pictures are too large altogether.
    QImage Picture(const QString& address);

    /// html: a safe page.
    void ShowPage(const QString& html, const QFont& font, const QPalette& palette);
    void ShowPlain(const QString& text, const QFont& font, const QPalette& palette);

    QVariant loadResource(int type, const QUrl& name) override;

Q_SIGNALS:
    /// Steps up (positive) or down; 0 for the normal size.
    void ZoomRequested(int steps);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    bool canInsertFromMimeData(const QMimeData* source) const override;
    void insertFromMimeData(const QMimeData* source) override;

private:
    class Document;
    class PictureDrawer;
    struct WideTable
    {
        QPointer<QTextTable> Table;
        QTextTableFormat Format;
    };

    void Begin(const QFont& font, const QPalette& palette);
    void FindTables();
    void FitTables();
    double AvailableWidth() const;

    PictureSource Source_;
    QHash<QString, QImage> Pictures_;
    qint64 Pixels_ = 0;
    QList<WideTable> Tables_;
    Document* Document_;
};
