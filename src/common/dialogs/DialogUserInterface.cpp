// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/DialogUserInterface.h"

#include "common/dialogs/ProgressDialog.h"
#include "common/dialogs/RunTimeErrorText.h"
#include "common/dialogs/frmPageSetupLabels.h"
#include "common/dialogs/modGoodInputBox.h"
#include "common/kvGeneral.h"
#include "database/dialogs/frmDatabaseSettings.h"
#include "database/dialogs/frmHandler.h"
#include "prizes/dialogs/frmHotlist.h"

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QScopeGuard>

namespace
{
constexpr qsizetype LongestText = 1500;
constexpr qsizetype MostLines = 30;

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

DialogUserInterface::DialogUserInterface() = default;
DialogUserInterface::~DialogUserInterface() = default;

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
    // The window below may go while the dialog waits, and takes it along, or the program may end, which leaves it up:
    // neither confirms anything.
    const QPointer<frmDatabaseSettings> form(new frmDatabaseSettings(ActiveWindow()));
    form->SetTolvaDatabase(&database);
    form->exec();
    const bool isConfirmed = form && !form->isVisible() && !form->Cancelled();
    delete form;
    return isConfirmed;
}

void DialogUserInterface::SetBackupNotice(bool shown)
{
    if (shown) {
        if (!Notice_)
            Notice_ = std::make_unique<frmHandler>();
        Notice_->ShowNotice();
    } else if (Notice_) {
        Notice_->hide();
    }
}

void DialogUserInterface::PageSetupLabels(cPageSetup& pageSetup)
{
    const QPointer<frmPageSetupLabels> form(new frmPageSetupLabels(ActiveWindow()));
    form->SetPageSetup(&pageSetup);
    form->exec();
    delete form;
}

QString DialogUserInterface::GetHotlist(qint32 hotListType, dao::Recordset& settings, bool saveMode,
                                        QObject* parentForm)
{
    // A parent that is no window gives the dialog no owner.
    auto* const parent = qobject_cast<QWidget*>(parentForm);
    const QPointer<frmHotlist> form(new frmHotlist(parent ? parent->window() : nullptr));
    const auto unload = qScopeGuard([form] { delete form; });
    return form->GetHotlist(hotListType, &settings, saveMode);
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
