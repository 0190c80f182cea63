// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/modGoodInputBox.h"

#include "common/dialogs/frmGoodInputBox.h"

#include <QApplication>
#include <QEventLoop>
#include <QPointer>

namespace
{
void Wait(frmGoodInputBox& form)
{
    QEventLoop loop;
    QObject::connect(&form, &frmGoodInputBox::Hidden, &loop, &QEventLoop::quit);
    QObject::connect(&form, &QObject::destroyed, &loop, &QEventLoop::quit);
    form.show();
    loop.exec();
}

void BringToFront(QWidget* window)
{
    if (!window)
        return;
    window->show();
    window->raise();
    window->activateWindow();
}
} // namespace

qint32 GoodInputBox(const QString& Prompt, const QString& Title, const QString& Default, const QString& MaxLength,
                    QString& Result, QWidget* OwnerForm, const QString& PasswordChar, bool Modal,
                    const QVariant& BackColour, QWidget* IconForm)
{
    const QPointer<QWidget> owner(OwnerForm ? OwnerForm->window() : QApplication::activeWindow());
    // The owner may go while the box waits, and takes it along.
    const QPointer<frmGoodInputBox> form(new frmGoodInputBox(Modal && OwnerForm ? OwnerForm->window() : nullptr));
    if (const QWidget* const iconForm = IconForm ? IconForm : OwnerForm)
        form->setWindowIcon(iconForm->windowIcon());
    form->SetBackColour(BackColour);
    form->setWindowTitle(Title.trimmed());
    form->SetPrompt(Prompt);
    form->SetText(Default);
    form->SetTLength(MaxLength);
    form->SetPasswordChar(PasswordChar);
    Result.clear(); // only now: it may be the caller's variable for one of the texts
    if (Modal)
        form->exec();
    else
        Wait(*form);

    qint32 answer = -1;
    // A box that is still up was left because the program ends, which answers nothing.
    if (form && !form->isVisible() && form->CancelL().toInt() <= 0) {
        Result = form->Tag();
        answer = 0;
    }
    delete form;
    BringToFront(owner);
    return answer;
}
