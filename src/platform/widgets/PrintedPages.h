// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/html/SafeDocument.h"
#include "platform/widgets/PlainPages.h"

#include <QImage>
#include <QMarginsF>
#include <QSizeF>
#include <QTextDocument>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>

class QPagedPaintDevice;
class QPainter;
class QThread;

/// The paper that pages are laid out for, in millimetres.
struct PaperSetup
{
    static constexpr QSizeF A4{210, 297};
    static constexpr QSizeF Letter{215.9, 279.4};

    QSizeF Paper = A4;
    QMarginsF Margins{15, 15, 15, 15};
    /// "Page 2 of 3" in the bottom margin; a single page has none.
    bool NumbersPages = true;

    bool operator==(const PaperSetup&) const = default;
};

/// How long a layout may take.
struct LayoutLimits
{
    /// Of the thread's processor time; what is not laid out then stands on the pages as plain text.
    std::chrono::milliseconds Budget = std::chrono::seconds(5);
    /// The part of it that the paper's own size may take. A page that is too wide is laid out once more for a larger
    /// one.
    std::chrono::milliseconds FirstSize = std::chrono::seconds(3);
    /// Asked between the steps; false from it ends the layout, whose pages are then of no use.
    std::function<bool()> IsWanted;
};

/// A page laid out on paper: the same pages on a screen, in a PDF file and on a printer. It loads nothing; pictures are
/// those within the page. What is wider than the paper is made narrower. Black on white, whatever the desktop's theme
/// is.
///
/// Laying out takes its time with the length of the page, up to a budget. What is beyond it follows on pages of its own
/// as plain text (PlainPages), below a line that says so: every word of the page is on the paper. It may be made in a
/// thread of its own and then be moved to the one that shows it.
class PrintedPages
{
public:
    PrintedPages(const SafeDocument& page, const PaperSetup& setup, const LayoutLimits& limits = {});
    ~PrintedPages();
    PrintedPages(const PrintedPages&) = delete;
    PrintedPages& operator=(const PrintedPages&) = delete;

    /// Called in the thread that it was made in; used in the other one from then on.
    void MoveTo(QThread* thread);

    const PaperSetup& Setup() const { return Setup_; }
    QString Title() const;
    /// Whether a part of the page stands as plain text.
    bool HasPlainText() const { return Plain_.PageCount() > 0; }
    /// At least 1.
    int PageCount() const { return std::max(1, LaidOutCount_ + Plain_.PageCount()); }
    /// Draws one page, 0 for the first, with the paper's corner at the painter's origin. Paints no ground.
    void PaintPage(QPainter& painter, int page, double dotsPerMillimetre) const;

    /// Told before each page; false from it ends the printing.
    using PageStep = std::function<bool(int page, int pageCount)>;
    /// Pages from first to last (0 for the first page; -1 for the last one there is) without margins of the device's
    /// own. False when the device refused, or step said so.
    bool Print(QPagedPaintDevice& device, const PageStep& step = {}, int first = 0, int last = -1) const;
    /// The pages as a PDF file's content. Empty when they could not be drawn, with the reason in words, or step said
    /// so, without.
    QByteArray Pdf(QString& problem, const PageStep& step = {}) const;
    /// Writes the file whole or not at all. False when that failed, with the reason in words, or step said so, without.
    bool WritePdf(const QString& fileName, QString& problem, const PageStep& step = {}) const;

private:
    class Document;
    class Budget;

    void SetDefaults();
    void SetContent(const QString& html);
    bool LayOut(const Budget& budget, const QSizeF& size);
    void MakePlainBehind(int position);
    void PaintLaidOut(QPainter& painter, int page, double dotsPerMillimetre) const;
    void PaintNumber(QPainter& painter, int page, double dotsPerMillimetre) const;

    PaperSetup Setup_;
    /// Gives the layout a resolution of its own.
    QImage Device_;
    std::unique_ptr<Document> Document_;
    double Shrink_ = 1;
    /// What follows as plain text.
    QString Rest_;
    int LaidOutCount_ = 0;
    PlainPages Plain_;
};
