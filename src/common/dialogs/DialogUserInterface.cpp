#include "common/dialogs/DialogUserInterface.h"

#include "common/dialogs/ProgressDialog.h"
#include "common/dialogs/RunTimeErrorText.h"
#include "common/dialogs/modGoodInputBox.h"
#include "common/kvGeneral.h"
#include "database/cTolvaDatabase.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>

namespace
{
constexpr qsizetype LongestText = 1500;
constexpr qsizetype MostLines = 30;
constexpr int LongestDetail = 250;

QWidget* ActiveWindow()
{
    QWidget* const modal = QApplication::activeModalWidget();
    return modal ? modal : QApplication::activeWindow();
}

QString TitleOr(const QString& title)
{
    return title.isEmpty() ? QGuiApplication::applicationDisplayName() : title;
}

/// The text as far as a screen has room for it above the buttons.
QString Shown(const QString& text)
{
    qsizetype length = text.size();
    qsizetype lineEnd = -1;
    for (qsizetype lines = 0; lines < MostLines; ++lines) {
        lineEnd = text.indexOf(u'\n', lineEnd + 1);
        if (lineEnd < 0)
            break;
    }
    if (lineEnd >= 0)
        length = lineEnd;
    length = qMin(length, LongestText);
    if (length == text.size())
        return text;
    if (text.at(length).isLowSurrogate())
        --length;
    return text.left(length) + u'\u2026';
}

QMessageBox::Icon IconOf(MessageBoxIcon icon)
{
    switch (icon) {
    case MessageBoxIcon::Information:
        return QMessageBox::Information;
    case MessageBoxIcon::Question:
        return QMessageBox::Question;
    case MessageBoxIcon::Exclamation:
        return QMessageBox::Warning;
    case MessageBoxIcon::Stop:
        return QMessageBox::Critical;
    case MessageBoxIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}
} // namespace

MessageBoxAnswer DialogUserInterface::MessageBox(const MessageBoxRequest& request)
{
    const DefaultPointer pointer;
    const bool isQuestion = request.Buttons == MessageBoxButtons::YesNo;
    // The window below may go while the box waits, and takes it along.
    const QPointer<QMessageBox> box(new QMessageBox(ActiveWindow()));
    box->setTextFormat(Qt::PlainText);
    box->setText(Shown(request.Text));
    box->setWindowTitle(TitleOr(request.Title));
    box->setIcon(IconOf(request.Icon));
    if (isQuestion) {
        box->setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box->setDefaultButton(request.DefaultAnswer == MessageBoxAnswer::Yes ? QMessageBox::Yes : QMessageBox::No);
        box->setEscapeButton(QMessageBox::No);
    } else {
        box->setStandardButtons(QMessageBox::Ok);
    }
    const int button = box->exec();
    delete box;
    if (!isQuestion)
        return MessageBoxAnswer::OK;
    return button == QMessageBox::Yes ? MessageBoxAnswer::Yes : MessageBoxAnswer::No;
}

int DialogUserInterface::InputBox(const InputBoxRequest& request, QString& result)
{
    return GoodInputBox(request.Prompt, TitleOr(request.Title), request.Default, QString::number(request.MaxLength),
                        result, ActiveWindow(), request.PasswordChar);
}

bool DialogUserInterface::DatabaseSettings(cTolvaDatabase& database)
{
    const QString title = QStringLiteral("Station Settings");
    const auto ask = [&](const QString& prompt, const QString& before, QString& answer) {
        const bool isGiven = InputBox({prompt, title, before, LongestDetail, QString()}, answer) == 0;
        answer = answer.trimmed();
        return isGiven && !answer.isEmpty();
    };
    QString name;
    QString number;
    if (!ask(QStringLiteral("What is the name of your station?"), database.StationName(), name) ||
        !ask(QStringLiteral("What is your station's telephone number?"), database.StationPhoneNumber(), number))
        return false;
    database.SetStationName(name);
    database.SetStationPhoneNumber(number);
    // A failure to store was shown by the station itself.
    return database.StationName() == name && database.StationPhoneNumber() == number;
}

void DialogUserInterface::SetBusyPointer(bool busy)
{
    if (busy == IsBusy_)
        return;
    IsBusy_ = busy;
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

/// The progress display says what is being done.
void DialogUserInterface::SetBackupNotice(bool) {}

std::unique_ptr<ProgressDisplay> DialogUserInterface::Progress(const QString& caption)
{
    return std::make_unique<DialogProgress>(caption);
}

void DialogUserInterface::Yield()
{
    QCoreApplication::processEvents();
}

void DialogUserInterface::RunTimeError(const dao::Error& error)
{
    const int number = error.Number();
    WriteDebugLog(QStringLiteral("Run-time error '%1' in %2: %3")
                      .arg(QString::number(number), error.Source(), error.Description()));
    if (HandleRunTimeError(error) || ErrorsOnDisplay_.contains(number))
        return;
    ErrorsOnDisplay_.insert(number);
    MessageBox(
        {RunTimeErrorText(error), QString(), MessageBoxButtons::OK, MessageBoxIcon::Exclamation, MessageBoxAnswer::OK});
    ErrorsOnDisplay_.remove(number);
}

bool DialogUserInterface::HandleRunTimeError(const dao::Error&)
{
    return false;
}
