// SPDX-License-Identifier: Apache-2.0
#include "ReportDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

ReportDialog::ReportDialog(const QString& title, const QString& headline, const QString& details, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("reportDialog"));
    setWindowTitle(title);
    auto* outcome = new QLabel(headline, this);
    outcome->setObjectName(QStringLiteral("headline"));
    outcome->setTextFormat(Qt::PlainText);
    outcome->setWordWrap(true);
    auto* text = new QPlainTextEdit(details, this);
    text->setObjectName(QStringLiteral("details"));
    text->setAccessibleName(tr("Details"));
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(outcome);
    layout->addWidget(text, 1);
    layout->addWidget(buttons);
    resize(520, 340);
}
