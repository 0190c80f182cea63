// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

#include <memory>

class PrintedPages;

/// One page as it will be printed, white whatever the desktop's colours are. Stands in a scroll area, whose view it
/// fits when the zoom says so.
class PageSheet : public QWidget
{
    Q_OBJECT

public:
    explicit PageSheet(QWidget* parent = nullptr);

    /// Null for no page. The page's number stays where there still is one.
    void SetPages(std::shared_ptr<const PrintedPages> pages);
    int Page() const { return Page_; }
    int PageCount() const;
    /// 0 for the first page; others are limited.
    void SetPage(int page);

    /// Zooms that follow the view, besides factors of the paper's own size.
    static constexpr double WholePage = 0;
    static constexpr double PageWidth = -1;
    void SetZoom(double zoom);
    /// The room that the view has for the sheet.
    void SetView(const QSize& view);

Q_SIGNALS:
    void PageChanged(int page);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double DotsPerMillimetre() const;
    void FitSize();

    std::shared_ptr<const PrintedPages> Pages_;
    int Page_ = 0;
    double Zoom_ = WholePage;
    QSize View_;
};
