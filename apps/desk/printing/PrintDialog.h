// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "OnAirPage.h"
#include "PagePrinting.h"
#include "PrizePage.h"
#include "platform/widgets/PrintedPages.h"

#include <QDialog>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

class DeskSettings;
class DeskStation;
class PageSheet;
class SavedNotice;
class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QScrollArea;
class QSpinBox;

/// What is to be printed: messages of the station by their numbers, one that a window shows as it is there, a prize, or
/// the running order.
struct PrintJob
{
    QList<qint32> References;
    cMessagePtr Message;
    std::optional<PrizePage::Prize> Prize = std::nullopt;
    QList<OnAirEntry> Order = {};
};

/// Prints messages, or a prize: by which of the station's templates, how, on which paper, with the pages as they will
/// be printed.
/// It begins to read the messages when it is shown; the pages are made safe and laid out beside the window, which
/// answers meanwhile.
/// The template and the paper are remembered. The station is open and outlives the dialog.
class PrintDialog : public QDialog
{
    Q_OBJECT

public:
    PrintDialog(DeskStation& station, DeskSettings& settings, PrintJob job, QWidget* parent = nullptr);
    ~PrintDialog() override;

    /// The pages on show are those of what is chosen.
    bool IsLaidOut() const { return Pages_ && !IsLayingOut_; }
    /// Null before the first were laid out.
    const PrintedPages* Pages() const { return Pages_.get(); }

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    // Making; PrintDialogParts.cpp.
    QWidget* MakeChoice();
    QWidget* MakePreview();
    QWidget* MakeButtons();
    void FillTemplates();

    /// Runs a piece of work; its error becomes words. False when it failed.
    template <typename Work>
    bool Run(Work&& work);
    bool IsOfMany() const;
    bool IsOfPrize() const { return Job_.Prize.has_value(); }
    PagePrinting::TemplateKind Kind() const;
    bool IsOfOrder() const { return !Job_.Order.isEmpty(); }
    bool IsOfMessages() const { return !IsOfPrize() && !IsOfOrder(); }
    bool HasContent() const { return !IsOfMessages() || CountMessages() > 0; }
    int CountMessages() const { return Single_ ? 1 : Messages_->Count(); }
    QString ContentWords() const;
    void FillPage();
    QString TemplateState() const;
    void Remember();
    void Start();
    bool Prepare();
    void TakeSingle(const cMessage& message);
    void Fill();
    void LayOut();
    void TakePages(const std::shared_ptr<const SafeDocument>& document, const std::shared_ptr<PrintedPages>& pages);
    PaperSetup Paper() const;
    void UpdateParts();
    void Print();
    void SavePdf();
    QString FileName() const;

    DeskStation& Station_;
    DeskSettings& Settings_;
    PrintJob Job_;
    /// A layout that runs has them for itself if there is a single one, which is prepared there: a large mail takes
    /// seconds.
    std::shared_ptr<PagePrinting::PreparedMessages> Messages_ = std::make_shared<PagePrinting::PreparedMessages>();
    cMessagePtr Single_;
    int Withheld_ = 0;                             ///< Messages of whose content something was left out.
    QString Subject_;                              ///< Of a single message; a prize's or the order's title.
    std::function<QString()> Filled_;              ///< The filled template, until it has been made safe.
    std::shared_ptr<const SafeDocument> Document_; ///< Null until then.
    /// False ends the layout that runs.
    std::shared_ptr<std::atomic_bool> IsWanted_ = std::make_shared<std::atomic_bool>(true);
    std::shared_ptr<const PrintedPages> Pages_;
    bool HasStarted_ = false;
    bool IsLayingOut_ = false;
    bool MustLayOutAgain_ = false;
    QComboBox* Template_ = nullptr;
    QCheckBox* Bold_ = nullptr;
    QCheckBox* Italic_ = nullptr;
    QCheckBox* PageEach_ = nullptr;
    QComboBox* Paper_ = nullptr;
    QLabel* Count_ = nullptr;
    QLabel* Note_ = nullptr;
    QScrollArea* View_ = nullptr;
    PageSheet* Sheet_ = nullptr;
    QPushButton* Previous_ = nullptr;
    QPushButton* Next_ = nullptr;
    QSpinBox* Page_ = nullptr;
    QComboBox* Zoom_ = nullptr;
    QPushButton* Print_ = nullptr;
    QPushButton* Save_ = nullptr;
    SavedNotice* Saved_;
};
