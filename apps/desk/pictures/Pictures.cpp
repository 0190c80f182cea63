// SPDX-License-Identifier: Apache-2.0
#include "Pictures.h"

#include "AttachmentPictures.h"
#include "ContactPictures.h"
#include "Desk.h"
#include "ExitCode.h"
#include "Failure.h"
#include "OnAirPictures.h"
#include "PrizePictures.h"
#include "PrizeSheet.h"
#include "SearchPictures.h"
#include "StationPlace.h"
#include "UnusualMessages.h"
#include "common/UserInterface.h"
#include "common/dialogs/frmDirectoryUsers.h"
#include "compose/ComposeWindow.h"
#include "messages/MessageWindow.h"
#include "messages/PreviewPane.h"
#include "messageslist/uMessagesList.h"
#include "printing/LabelsDialog.h"
#include "printing/PrintDialog.h"
#include "station/BackupsDialog.h"
#include "station/SignInDialog.h"
#include "station/StartDialog.h"
#include "window/Appearance.h"
#include "window/MainWindow.h"
#include "window/ReportDialog.h"
#include "window/ShortcutsDialog.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <cstdio>
#include <functional>

namespace
{
constexpr int Patience = 120000;
constexpr int ManyMessages = 100000;
constexpr QSize WindowSize(1240, 740);
constexpr QSize PrintSize(900, 680);

/// Events run until the condition holds; false when it never does.
bool Wait(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition() && timer.elapsed() < Patience)
        QApplication::processEvents(QEventLoop::AllEvents, 20);
    return condition();
}

/// What the errors and boxes of the tour say; a tour answers no to every question.
class TourUserInterface final : public UserInterface
{
public:
    TourUserInterface() { SetCurrent(this); }
    ~TourUserInterface() override { SetCurrent(nullptr); }
    MessageBoxAnswer MessageBox(const MessageBoxRequest& request) override
    {
        std::fprintf(stderr, "%s\n", qPrintable(request.Text));
        return request.Buttons == MessageBoxButtons::YesNo ? MessageBoxAnswer::No : MessageBoxAnswer::OK;
    }
    int InputBox(const InputBoxRequest&, QString&) override { return -1; }
    void PageSetupLabels(cPageSetup&) override {}
    void SetBusyPointer(bool) override {}
    std::unique_ptr<ProgressDisplay> Progress(const QString&) override
    {
        class Nothing : public ProgressDisplay
        {
            bool Advance(qint64, qint64) override { return true; }
        };
        return std::make_unique<Nothing>();
    }
    void Yield() override { QApplication::processEvents(); }
    void RunTimeError(const dao::Error& error) override
    {
        std::fprintf(stderr, "%s (%d)\n", qPrintable(error.Description()), error.Number());
    }
};

bool CopyFolder(const QString& from, const QString& to)
{
    const QDir source(from);
    QDirIterator entries(from, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString file = entries.next();
        const QString target = QDir(to).filePath(source.relativeFilePath(file));
        if (!QDir().mkpath(QFileInfo(target).path()) || !QFile::copy(file, target))
            return false;
    }
    return true;
}

/// The platform without a screen says of each window what it cannot do; nobody needs to read that.
void ShowMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (!text.startsWith(QStringLiteral("This plugin does not support")))
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
}

class Tour
{
public:
    Tour(const QString& station, const QString& pictures)
        : Pictures_(pictures),
          Settings_(QDir(pictures).filePath(QStringLiteral(".settings.ini"))),
          Desk_(Settings_, nullptr),
          Folder_(station)
    {
    }
    ~Tour() { QFile::remove(QDir(Pictures_).filePath(QStringLiteral(".settings.ini"))); }

    bool Go(bool withLarge)
    {
        // A manual is read on other screens than the one it was made on.
        QFont font = QApplication::font();
        font.setStyleStrategy(QFont::NoSubpixelAntialias);
        QApplication::setFont(font);
        Appearance::Apply(QStringLiteral("light"));
        if (!Desk_.OpenStation(Folder_, StationPlace::DefaultUserName()))
            return false;
        Window().resize(WindowSize);
        Wait([this] { return Window().List().TolvaDatabase() && !Window().List().IsFilling(); });
        const int unusual = UnusualMessages::FileInto(Window().Station().Database());
        Window().List().UpdateCategories();
        Inbox();
        Colours();
        Folders(unusual);
        Find();
        Writing();
        Dialogs();
        ContactPictures::Take(Window().Station(),
                              [this](QWidget& widget, const char* name, int ratio) { Save(widget, name, ratio); });
        PrizePictures::Take(
            Window(), [this](QWidget& widget, const char* name, int ratio) { Save(widget, name, ratio); },
            [this] { Settle(); });
        PrintingOfPrize();
        OnAirPictures::Take(
            Window(), [this](QWidget& widget, const char* name, int ratio) { Save(widget, name, ratio); },
            [this] { Settle(); });
        SearchPictures::Take(
            Window(), [this](QWidget& widget, const char* name, int ratio) { Save(widget, name, ratio); },
            [this](const std::function<bool()>& isThere) {
                Wait(isThere);
                Settle();
            });
        AttachmentPictures::Take([this](QWidget& widget, const char* name, int ratio) { Save(widget, name, ratio); },
                                 [this] { Settle(); });
        if (withLarge)
            Large();
        Window().close();
        return !HasFailed_;
    }

private:
    MainWindow& Window() { return *Desk_.Window(); }
    uMessagesList& List() { return Window().List(); }

    void Settle()
    {
        Wait([this] { return !Window().List().IsFilling() && Window().Preview().IsLoaded(); });
        // The counts come a moment later.
        QElapsedTimer timer;
        timer.start();
        Wait([&timer] { return timer.elapsed() > 300; });
    }

    void Save(QWidget& widget, const char* name, int ratio = 1)
    {
        QPixmap picture(widget.size() * ratio);
        picture.setDevicePixelRatio(ratio);
        picture.fill(widget.palette().color(QPalette::Window));
        widget.render(&picture);
        const QString file = QDir(Pictures_).filePath(QLatin1String(name) + QStringLiteral(".png"));
        if (picture.toImage().convertToFormat(QImage::Format_RGB32).save(file)) {
            std::printf("%s\n", qPrintable(file));
        } else {
            std::fprintf(stderr, "%s could not be saved.\n", qPrintable(file));
            HasFailed_ = true;
        }
    }

    void Go(int category)
    {
        Window().List().SetCategory(static_cast<enTolvaMessageCategories>(category));
        Settle();
    }

    void Select(int row)
    {
        List().SelectMessage(List().References().value(row - 1));
        List().FocusTargets().last()->setFocus();
        Settle();
    }

    /// The first message with a file, so that the list of attachments is seen.
    void SelectOneWithFiles()
    {
        const QList<qint32> references = List().References();
        for (int row = 1; row <= references.size() && row < 60; ++row) {
            const cMessagePtr message = Window().Station().Database().ReadMessage(references.at(row - 1));
            if (message && !message->CDOMessage()->Attachments().isEmpty()) {
                Select(row);
                return;
            }
        }
        Select(1);
    }

    void Inbox()
    {
        Go(tmcInbox);
        SelectOneWithFiles();
        Save(Window(), "desk-light");
    }

    void Colours()
    {
        Save(Window(), "desk-light-200", 2);
        Appearance::Apply(QStringLiteral("dark"));
        Settle();
        Save(Window(), "desk-dark");
        Save(Window(), "desk-dark-200", 2);
        Appearance::Apply(QStringLiteral("light"));
    }

    void Folders(int unusual)
    {
        Go(tmcDrafts);
        Save(Window(), "desk-empty-folder");
        Go(unusual);
        for (int row = 1; row <= 4 && row <= List().NumberItems(); ++row) {
            Select(row);
            if (row == 1)
                Save(Window(), "desk-long-names");
            if (row == 2)
                Save(Window(), "desk-right-to-left");
            if (row == 4)
                Save(Window(), "desk-emoji");
        }
        Appearance::Apply(QStringLiteral("dark"));
        Settle();
        Save(Window(), "desk-emoji-dark");
        Appearance::Apply(QStringLiteral("light"));
    }

    void Find()
    {
        Go(tmcInbox);
        List().Find(QStringLiteral("the"));
        Settle();
        Save(Window(), "desk-filter");
        Window().List().ClearFind();
        Settle();
        bool isTold = false;
        Q_EMIT List().ReadingFailed(dao::errDiskError, isTold);
        Settle();
        Save(Window(), "desk-no-connection");
        Window().WatchStation();
        Settle();
    }

    void Writing()
    {
        SelectOneWithFiles();
        Window().OpenInWindow(Window().Preview().Message());
        MessageWindow* message = Window().MessageWindows().first();
        Wait([message] { return message->findChild<PreviewPane*>()->IsLoaded(); });
        Save(*message, "message");
        message->close();
        Window().Forward();
        Window().Reply();
        const QList<ComposeWindow*> windows = Window().ComposeWindows();
        Save(*windows.at(0), "compose-forward");
        windows.at(1)
            ->findChild<QPlainTextEdit*>(QStringLiteral("body"))
            ->insertPlainText(
                QStringLiteral("Hello,\n\nthank you for writing! We will play it on Sunday after the news."));
        Save(*windows.at(1), "compose-reply");
        Appearance::Apply(QStringLiteral("dark"));
        Settle();
        Save(*windows.at(0), "compose-forward-dark");
        Appearance::Apply(QStringLiteral("light"));
        for (ComposeWindow* window : windows)
            delete window;
    }

    void Dialogs()
    {
        const auto show = [this](QDialog& dialog, const char* name) {
            dialog.show();
            QApplication::processEvents();
            Save(dialog, name);
            dialog.close();
        };
        DeskSettings settings(QDir(Folder_).filePath(QStringLiteral("pictures.ini")));
        settings.RememberStation(QStringLiteral("/srv/harbour-fm"));
        settings.RememberStation(QStringLiteral("/media/studio2/stations/evening service"));
        StartDialog start(settings);
        show(start, "start");
        SignInDialog signIn({QStringLiteral("Petra"), QStringLiteral("Ravi"), QStringLiteral("Technician")},
                            QStringLiteral("Ravi"));
        show(signIn, "sign-in");
        frmDirectoryUsers users(Window().Station().Directory(), &Window());
        show(users, "users");
        ShortcutsDialog shortcuts(&Window());
        show(shortcuts, "shortcuts");
        Keeping();
        Printing();
    }

    /// What the technician does with the station's file, and labels; light, dark and large.
    void Keeping()
    {
        DeskStation& station = Window().Station();
        station.BackUp();
        FillDirectory();
        cPageSetup& labels = station.Database().AddressLabelsPageSetup();
        labels.SetLeftMargin(5);
        labels.SetColumnWidth(100);
        const auto counts = StationCounts::Of(StationPlace::FileIn(Folder_));
        const auto show = [this](QDialog& dialog, const char* name, int ratio) {
            dialog.show();
            QElapsedTimer timer;
            timer.start();
            Wait([&timer] { return timer.elapsed() > 3LL * BackupsDialog::RestMilliseconds; });
            Save(dialog, name, ratio);
            dialog.close();
        };
        const auto showAll = [&](const char* backups, const char* report, const char* sheets, int ratio) {
            BackupsDialog list(StationPlace::FileIn(Folder_), true, &Window());
            show(list, backups, ratio);
            ReportDialog outcome(QStringLiteral("Check the file"),
                                 QStringLiteral("The station is sound: %1.").arg(counts.Words()),
                                 QStringLiteral("Messages in all: %1").arg(counts.Messages), &Window());
            show(outcome, report, ratio);
            LabelsDialog sheet(station, &Window());
            sheet.findChild<QPushButton*>(QStringLiteral("checkAll"))->click();
            show(sheet, sheets, ratio);
        };
        showAll("backups", "check", "labels", 1);
        showAll("backups-200", "check-200", "labels-200", 2);
        Appearance::Apply(QStringLiteral("dark"));
        showAll("backups-dark", "check-dark", "labels-dark", 1);
        Appearance::Apply(QStringLiteral("light"));
    }

    /// The print window, of one message and of all on show; light, dark and large.
    void Printing()
    {
        const auto show = [this](const PrintJob& job, const QString& pageTemplate, const char* name, int ratio) {
            PrintDialog dialog(Window().Station(), Settings_, job, &Window());
            dialog.show();
            dialog.resize(PrintSize);
            auto& templates = *dialog.findChild<QComboBox*>(QStringLiteral("template"));
            templates.setCurrentIndex(templates.findText(pageTemplate));
            Wait([&dialog] { return dialog.IsLaidOut(); });
            Save(dialog, name, ratio);
            dialog.close();
        };
        PrintJob all;
        const auto rows = Window().Station().Database().OpenMessageRows({QStringLiteral("Reference")},
                                                                        QStringLiteral("[Category]=%1").arg(tmcInbox),
                                                                        QStringLiteral("[Sent] DESC"));
        for (; !rows->AtEOF(); rows->MoveNext())
            all.References.append(rows->Collect(QStringLiteral("Reference")).toInt());
        if (all.References.size() < 2)
            return;
        const PrintJob one{{all.References.at(1)}, nullptr};
        const QString single = QStringLiteral("Single message");
        show(one, single, "print", 1);
        show(all, QStringLiteral("List"), "print-list", 1);
        show(all, QStringLiteral("Studio list"), "print-200", 2);
        Appearance::Apply(QStringLiteral("dark"));
        show(one, single, "print-dark", 1);
        Appearance::Apply(QStringLiteral("light"));
    }

    /// The first of the prizes that the tour made.
    void PrintingOfPrize()
    {
        cTolvaDatabase& database = Window().Station().Database();
        const auto rows =
            database.OpenSnapshot(QStringLiteral("SELECT [Reference] FROM [Prizes] ORDER BY [Reference]"));
        if (rows->AtEOF())
            return;
        const qint32 prize = rows->Collect(QStringLiteral("Reference")).toInt();
        const auto show = [&](const char* name, int ratio) {
            PrintJob job;
            job.Prize = PrizeSheet::Read(database, Window().Station().Directory(), prize);
            PrintDialog dialog(Window().Station(), Settings_, std::move(job), &Window());
            dialog.show();
            dialog.resize(PrintSize);
            Wait([&dialog] { return dialog.IsLaidOut(); });
            Save(dialog, name, ratio);
            dialog.close();
        };
        show("print-prize", 1);
        show("print-prize-200", 2);
        Appearance::Apply(QStringLiteral("dark"));
        show("print-prize-dark", 1);
        Appearance::Apply(QStringLiteral("light"));
    }

    void FillDirectory()
    {
        const QList<std::pair<QString, QString>> people = {
            {QStringLiteral("Loveday Tregenza"), QStringLiteral("14 Harbour Row\nPorthmellin\nXX1 2AB")},
            {QStringLiteral("Gwenno Polglaze"), QStringLiteral("The Old Chapel\nChapel Lane\nTrevean\nXX3 4CD")},
            {QStringLiteral("The Porthmellin Amateur Players' Society (Costume Department)"),
             QStringLiteral("c/o The Village Hall\nUpper Market Street\nPorthmellin\nXX1 9ZZ")},
            {QStringLiteral("Ravi Menon"), QString()},
        };
        for (const auto& [name, address] : people) {
            clsKVContact contact;
            contact.Name = name;
            contact.Other = address;
            Window().Station().Directory().SaveContact(contact);
        }
    }

    void Large()
    {
        std::fprintf(stderr, "Making %d messages...\n", ManyMessages);
        UnusualMessages::FileMany(Window().Station().Database(), ManyMessages);
        QElapsedTimer timer;
        timer.start();
        Go(tmcSaved);
        timer.restart();
        Go(tmcInbox);
        std::fprintf(stderr, "Shown after %.1f seconds.\n", static_cast<double>(timer.elapsed()) / 1000);
        const int middle = List().NumberItems() / 2;
        Select(middle);
        List().ScrollToRow(middle - 3);
        Save(Window(), "desk-100000");
    }

    QString Pictures_;
    DeskSettings Settings_;
    Desk Desk_;
    QString Folder_;
    bool HasFailed_ = false;
};
} // namespace

int Pictures::Take(const DeskOptions& options)
{
    const QString pictures = QDir(options.Pictures).absolutePath();
    if (options.Folder.isEmpty() || !StationPlace::HoldsStation(options.Folder)) {
        std::fprintf(stderr, "tolva-desk: --pictures needs the folder of a station.\n");
        return exitNoInput;
    }
    const QTemporaryDir copy;
    const QString station = copy.filePath(QStringLiteral("station"));
    if (!QDir().mkpath(pictures) || !CopyFolder(QDir(options.Folder).absolutePath(), station)) {
        std::fprintf(stderr, "tolva-desk: the pictures cannot be saved in %s.\n", qPrintable(pictures));
        return exitCannotCreate;
    }
    qInstallMessageHandler(ShowMessage);
    TourUserInterface userInterface;
    try {
        Tour tour(station, pictures);
        if (!tour.Go(options.IsLarge))
            return exitSoftware;
    } catch (const Failure& failure) {
        std::fprintf(stderr, "%s\n", qPrintable(failure.Words()));
        return failure.Code();
    } catch (const dao::Error& error) {
        std::fprintf(stderr, "%s (%d)\n", qPrintable(error.Description()), error.Number());
        return exitSoftware;
    }
    std::fprintf(stderr, "The pictures lie in %s\n", qPrintable(pictures));
    return exitOK;
}
