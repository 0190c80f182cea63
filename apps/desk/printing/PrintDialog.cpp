// SPDX-License-Identifier: Apache-2.0
#include "printing/PrintDialog.h"

#include "DeskSettings.h"
#include "Failure.h"
#include "Words.h"
#include "common/UserInterface.h"
#include "platform/mail/MessageReader.h"
#include "printing/PageSheet.h"
#include "printing/PrintTarget.h"
#include "station/DeskStation.h"
#include "window/FileNames.h"
#include "window/SavedNotice.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

namespace
{
constexpr qsizetype LongestPrintedName = 300;
}

PrintDialog::PrintDialog(DeskStation& station, DeskSettings& settings, PrintJob job, QWidget* parent)
    : QDialog(parent), Station_(station), Settings_(settings), Job_(std::move(job)), Saved_(new SavedNotice(this))
{
    setObjectName(QStringLiteral("printDialog"));
    setWindowTitle(IsOfOrder()   ? tr("Print running order")
                   : IsOfPrize() ? tr("Print prize")
                   : IsOfMany()  ? tr("Print messages")
                                 : tr("Print message"));
    auto* layout = new QGridLayout(this);
    layout->addWidget(MakeChoice(), 0, 0);
    layout->addWidget(MakePreview(), 0, 1);
    layout->addWidget(Saved_, 1, 0, 1, 2);
    layout->addWidget(MakeButtons(), 2, 0, 1, 2);
    layout->setColumnStretch(1, 1);
    layout->setRowStretch(0, 1);
    resize(900, 680);
    FillTemplates();
    UpdateParts();
}

PrintDialog::~PrintDialog()
{
    *IsWanted_ = false;
}

template <typename Work>
bool PrintDialog::Run(Work&& work)
{
    try {
        std::forward<Work>(work)();
        return true;
    } catch (const dao::Error& error) {
        Words::Warn(Station_.Words(error.Number(), error.Description()));
    } catch (const Failure& failure) {
        Words::Warn(failure.Words());
    }
    return false;
}

bool PrintDialog::IsOfMany() const
{
    return !Job_.Message && IsOfMessages() && Job_.References.size() != 1;
}

PagePrinting::TemplateKind PrintDialog::Kind() const
{
    if (IsOfOrder())
        return PagePrinting::TemplateKind::OnAir;
    return IsOfPrize() ? PagePrinting::TemplateKind::Prizes : PagePrinting::TemplateKind::Messages;
}

QString PrintDialog::TemplateState() const
{
    if (IsOfOrder())
        return QStringLiteral("PrintDialog/TemplateOfOrder");
    if (IsOfPrize())
        return QStringLiteral("PrintDialog/TemplateOfPrize");
    return IsOfMany() ? QStringLiteral("PrintDialog/TemplateOfMany") : QStringLiteral("PrintDialog/TemplateOfOne");
}

void PrintDialog::Remember()
{
    Settings_.SetState(TemplateState(), Template_->currentData().toString().toUtf8());
    Settings_.SetState(QStringLiteral("PrintDialog/Paper"), Paper_->currentIndex() == 1 ? "Letter" : "A4");
    for (const QCheckBox* check : {Bold_, Italic_, PageEach_})
        Settings_.SetState(QStringLiteral("PrintDialog/") + check->objectName(), check->isChecked() ? "1" : "0");
}

void PrintDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (!std::exchange(HasStarted_, true))
        QTimer::singleShot(0, this, &PrintDialog::Start);
}

void PrintDialog::Start()
{
    if (Prepare())
        Fill();
    else
        reject();
}

/// Reads the messages. False when that failed, which was said, or the user stopped it.
bool PrintDialog::Prepare()
{
    if (IsOfPrize()) {
        Subject_ = Job_.Prize->Title;
        return true;
    }
    if (IsOfOrder()) {
        Subject_ = tr("Running order");
        return true;
    }
    bool isWhole = false;
    const bool hasWorked = Run([&] {
        if (Job_.Message) {
            Subject_ = cdo::HeaderBeginning(*Job_.Message->CDOMessage(), "Subject", LongestPrintedName);
            isWhole = true;
            return TakeSingle(*Job_.Message);
        }
        const BusyPointer busy;
        const auto progress = IsOfMany() ? UserInterface::Current().Progress(tr("Reading messages")) : nullptr;
        qint64 done = 0;
        for (const qint32 reference : std::as_const(Job_.References)) {
            if (progress && !progress->Advance(done++, Job_.References.size()))
                return;
            const cMessagePtr message = Station_.Database().ReadMessage(reference);
            if (!message)
                continue; // deleted meanwhile
            if (!IsOfMany())
                TakeSingle(*message);
            else if (!Messages_->Add(message))
                throw Failure(exitData, tr("These are more messages than can be printed at once (32,767). Choose a "
                                           "folder with fewer, or find some of them."));
            Subject_ = cdo::HeaderBeginning(*message->CDOMessage(), "Subject", LongestPrintedName);
        }
        Withheld_ = Messages_->CountWithheld();
        if (CountMessages() == 0)
            throw Failure(exitData, tr("There is no message to print."));
        isWhole = true;
    });
    return hasWorked && isWhole;
}

/// A copy, since the message's own windows go on with it.
void PrintDialog::TakeSingle(const cMessage& message)
{
    Single_ = message.Copy();
    Single_->SetReference(message.Reference());
}

void PrintDialog::Fill()
{
    if (!HasContent())
        return;
    Filled_ = nullptr;
    Document_.reset();
    Pages_.reset();
    Sheet_->SetPages(nullptr);
    Run([this] {
        const BusyPointer busy;
        FillPage();
    });
    UpdateParts();
    LayOut();
}

void PrintDialog::FillPage()
{
    const auto pageTemplate =
        PagePrinting::FindTemplate(Station_.Database(), Template_->currentData().toString(), Kind());
    if (IsOfPrize()) {
        Document_ = std::make_shared<SafeDocument>(PrizePage::Fill(pageTemplate.Text, {*Job_.Prize}));
        return;
    }
    if (IsOfOrder()) {
        Document_ = std::make_shared<SafeDocument>(OnAirPage::Fill(pageTemplate.Text, Job_.Order, Station_.Name()));
        return;
    }
    // A template with a list of its own says itself where pages begin.
    PageEach_->setEnabled(IsOfMany() && !pageTemplate.Text.contains(QStringLiteral("<ZRT_MESSAGES_REPEAT>")));
    PagePrinting::PageOptions options;
    options.UnreadIsBold = Bold_->isChecked();
    options.PendingIsItalic = Italic_->isChecked();
    options.PageEach = PageEach_->isChecked();
    // A list's template shows the busy pointer, which is this thread's alone.
    const bool isList = pageTemplate.Text.contains(QStringLiteral("<ZRT_MESSAGES_"));
    if (Single_ && !isList) {
        Filled_ = [messages = Messages_, single = Single_, pageTemplate, options] {
            if (messages->Count() == 0)
                messages->Add(single);
            return messages->FilledTemplate(pageTemplate, options);
        };
        return;
    }
    if (Single_) {
        // Those before may be in use.
        Messages_ = std::make_shared<PagePrinting::PreparedMessages>();
        Messages_->Add(Single_);
    }
    Filled_ = [page = Messages_->FilledTemplate(pageTemplate, options)] { return page; };
}

PaperSetup PrintDialog::Paper() const
{
    PaperSetup setup;
    setup.Paper = Paper_->currentData().toSizeF();
    return setup;
}

/// One layout at a time; what was chosen meanwhile ends it and is laid out behind it.
void PrintDialog::LayOut()
{
    MustLayOutAgain_ = IsLayingOut_;
    *IsWanted_ = !IsLayingOut_;
    if (IsLayingOut_ || (!Document_ && !Filled_))
        return;
    IsLayingOut_ = true;
    UpdateParts();
    QThreadPool::globalInstance()->start([document = Document_, filled = Filled_, setup = Paper(), isWanted = IsWanted_,
                                          dialog = QPointer<PrintDialog>(this), home = thread()]() mutable {
        if (!document)
            document = std::make_shared<SafeDocument>(MakeDocumentSafe(filled()));
        LayoutLimits limits;
        limits.IsWanted = [isWanted] { return isWanted->load(); };
        auto pages = std::make_shared<PrintedPages>(*document, setup, limits);
        pages->MoveTo(home);
        QMetaObject::invokeMethod(QCoreApplication::instance(), [dialog, document, pages = std::move(pages)] {
            if (dialog)
                dialog->TakePages(document, pages);
        });
    });
}

void PrintDialog::TakePages(const std::shared_ptr<const SafeDocument>& document,
                            const std::shared_ptr<PrintedPages>& pages)
{
    IsLayingOut_ = false;
    if (std::exchange(MustLayOutAgain_, false))
        return LayOut();
    Document_ = document;
    Filled_ = nullptr;
    Withheld_ = Messages_->CountWithheld();
    Pages_ = pages;
    Sheet_->SetPages(Pages_);
    UpdateParts();
}

QString PrintDialog::ContentWords() const
{
    if (IsOfPrize())
        return tr("1 prize");
    if (IsOfOrder())
        return Job_.Order.size() == 1 ? tr("1 entry") : tr("%1 entries").arg(QLocale().toString(Job_.Order.size()));
    const int count = CountMessages();
    return count == 1 ? tr("1 message") : tr("%1 messages").arg(QLocale().toString(count));
}

void PrintDialog::UpdateParts()
{
    const int pages = Sheet_->PageCount();
    const QSignalBlocker quiet(Page_);
    Page_->setRange(qMin(1, pages), pages);
    Page_->setValue(Sheet_->Page() + 1);
    Page_->setSuffix(tr(" of %1").arg(pages));
    Page_->setEnabled(pages > 1);
    Previous_->setEnabled(Sheet_->Page() > 0);
    Next_->setEnabled(Sheet_->Page() + 1 < pages);
    Print_->setEnabled(IsLaidOut());
    Save_->setEnabled(IsLaidOut());
    const QString pageWords = pages == 1 ? tr("1 page") : tr("%1 pages").arg(QLocale().toString(pages));
    if (pages > 0)
        Count_->setText(tr("%1 on %2").arg(ContentWords(), pageWords));
    else
        Count_->setText(IsLayingOut_ || !HasContent() ? tr("The pages are being laid out...") : QString());
    QString note = PagePrinting::WithheldWords(Withheld_);
    if (Document_ && Document_->IsTextOnly)
        note = IsOfOrder() ? tr("The running order is too large to be laid out; the pages hold its text alone.")
               : IsOfPrize()
                   ? tr("This prize is too large to be laid out; the pages hold its text alone.")
                   : tr("These messages are too large to be laid out together; the pages hold their text alone.");
    if (Pages_ && Pages_->HasPlainText())
        note = tr("This is too long to be laid out whole; a line says where it goes on as plain text.");
    Note_->setText(note);
    Note_->setHidden(note.isEmpty());
}

bool PrintDialog::eventFilter(QObject* object, QEvent* event)
{
    if (object == View_->viewport() && event->type() == QEvent::Resize)
        Sheet_->SetView(View_->viewport()->size());
    // A page that is larger than the view is scrolled to its end before the next one comes.
    if (object == View_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const QScrollBar& bar = *View_->verticalScrollBar();
        if ((key == Qt::Key_PageDown && bar.value() == bar.maximum()) ||
            (key == Qt::Key_PageUp && bar.value() == bar.minimum())) {
            keyPressEvent(static_cast<QKeyEvent*>(event));
            return true;
        }
    }
    return QDialog::eventFilter(object, event);
}

/// The pages turn by the keys that turn pages, wherever the focus is.
void PrintDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_PageDown)
        Sheet_->SetPage(Sheet_->Page() + 1);
    else if (event->key() == Qt::Key_PageUp)
        Sheet_->SetPage(Sheet_->Page() - 1);
    else
        QDialog::keyPressEvent(event);
}

void PrintDialog::Print()
{
    if (!IsLaidOut())
        return;
    Saved_->Show(QString());
    const std::unique_ptr<QPagedPaintDevice> device = PrintTarget::PrinterForPages(this, Pages_->PageCount());
    if (!device)
        return;
    int first = 0;
    int last = -1;
    if (const auto* printer = dynamic_cast<QPrinter*>(device.get()); printer && printer->fromPage() > 0) {
        first = printer->fromPage() - 1;
        last = printer->toPage() - 1;
    }
    Remember();
    bool isStopped = false;
    const BusyPointer busy;
    const auto progress = UserInterface::Current().Progress(tr("Printing"));
    const bool isPrinted = Pages_->Print(
        *device,
        [&](int page, int count) {
            isStopped = !progress->Advance(page, count);
            return !isStopped;
        },
        first, last);
    if (!isPrinted && !isStopped)
        Words::Warn(tr("The printer took no pages. Check that it is switched on and has this paper."));
    if (const QString file = PrintTarget::FileOf(*device); isPrinted && !file.isEmpty())
        Saved_->ShowFile(file);
}

QString PrintDialog::FileName() const
{
    const bool isOfOne = !IsOfMessages() || CountMessages() == 1;
    const QString name = isOfOne && !Subject_.trimmed().isEmpty() ? Subject_ : Template_->currentText();
    return FileNames::Cleaned(name + QStringLiteral(".pdf"));
}

void PrintDialog::SavePdf()
{
    if (!IsLaidOut())
        return;
    Saved_->Show(QString());
    const std::optional<QString> file = PrintTarget::PdfFile(tr("Save pages"), FileName());
    if (!file)
        return;
    Remember();
    QString problem;
    bool isWritten = false;
    {
        const BusyPointer busy;
        const auto progress = UserInterface::Current().Progress(tr("Writing pages"));
        isWritten =
            Pages_->WritePdf(*file, problem, [&](int page, int count) { return progress->Advance(page, count); });
    }
    if (!problem.isEmpty())
        Words::Warn(problem);
    else if (isWritten)
        Saved_->ShowFile(*file);
}
