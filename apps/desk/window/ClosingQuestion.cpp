// SPDX-License-Identifier: Apache-2.0
#include "ClosingQuestion.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

namespace
{
QString ClosingText(const char* text)
{
    return QCoreApplication::translate("ClosingQuestion", text);
}
} // namespace

ClosingQuestion::Choice ClosingQuestion::Ask(QWidget& window, const QString& title, const QString& question,
                                             const QString& save)
{
    QMessageBox box(&window);
    box.setObjectName(QStringLiteral("closingBox"));
    box.setIcon(QMessageBox::Question);
    // It may quote a name that somebody typed.
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(title);
    box.setText(question);
    QPushButton* saveButton = box.addButton(save, QMessageBox::AcceptRole);
    const QPushButton* discard = box.addButton(ClosingText("&Discard"), QMessageBox::DestructiveRole);
    QPushButton* cancel = box.addButton(ClosingText("&Cancel"), QMessageBox::RejectRole);
    box.setDefaultButton(saveButton);
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == saveButton)
        return Choice::Save;
    return box.clickedButton() == discard ? Choice::Discard : Choice::Cancel;
}

ClosingQuestion::Choice ClosingQuestion::Ask(QWidget& window, const QString& title, const QString& question)
{
    return Ask(window, title, question, ClosingText("&Save"));
}
