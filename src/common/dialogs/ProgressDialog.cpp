// SPDX-License-Identifier: Apache-2.0
#include "common/dialogs/ProgressDialog.h"

#include "platform/widgets/Twips.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{
constexpr qint64 AppearsAfter = 300; // milliseconds
constexpr qint64 EventsEvery = 50;
constexpr double Width = 5400; // twips

int PercentOf(qint64 done, qint64 total)
{
    if (total <= 0)
        return 0;
    return static_cast<int>(100.0 * static_cast<double>(qBound<qint64>(0, done, total)) / static_cast<double>(total));
}
} // namespace

ProgressDialog::ProgressDialog(const QString& caption, QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("ProgressDialog"));
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setWindowModality(Qt::ApplicationModal);
    lblCaption_ = new QLabel(caption, this);
    lblCaption_->setObjectName(QStringLiteral("lblCaption"));
    lblCaption_->setTextFormat(Qt::PlainText);
    lblCaption_->setWordWrap(true);
    Bar_ = new QProgressBar(this);
    Bar_->setObjectName(QStringLiteral("Bar"));
    Bar_->setRange(0, 100);
    Bar_->setValue(0);
    Bar_->setAccessibleName(caption);
    cmdCancel_ = new QPushButton(QStringLiteral("Cancel"), this);
    cmdCancel_->setObjectName(QStringLiteral("cmdCancel"));
    // Enter must not end the work of somebody who was typing when the window appeared.
    cmdCancel_->setAutoDefault(false);
    connect(cmdCancel_, &QPushButton::clicked, this, &ProgressDialog::reject);
    auto* column = new QVBoxLayout(this);
    column->addWidget(lblCaption_);
    column->addWidget(Bar_);
    column->addWidget(cmdCancel_, 0, Qt::AlignRight);
    setMinimumWidth(Twips::ToPixels(*this, Width));
}

void ProgressDialog::SetPercent(int percent)
{
    Bar_->setValue(percent);
}

void ProgressDialog::reject()
{
    IsCancelled_ = true;
    cmdCancel_->setEnabled(false);
}

void ProgressDialog::closeEvent(QCloseEvent* event)
{
    event->ignore();
    reject();
}

DialogProgress::DialogProgress(const QString& caption) : Caption_(caption)
{
    Running_.start();
    SinceEvents_.start();
}

DialogProgress::~DialogProgress()
{
    delete Dialog_;
}

bool DialogProgress::Advance(qint64 done, qint64 total)
{
    if (!Dialog_ && !IsCancelled_ && Running_.hasExpired(AppearsAfter)) {
        QWidget* const modal = QApplication::activeModalWidget();
        Dialog_ = new ProgressDialog(Caption_, modal ? modal : QApplication::activeWindow());
        Dialog_->SetPercent(PercentOf(done, total));
        Dialog_->show();
        SinceEvents_.start();
        QCoreApplication::processEvents();
    } else if (SinceEvents_.hasExpired(EventsEvery)) {
        if (Dialog_)
            Dialog_->SetPercent(PercentOf(done, total));
        SinceEvents_.start();
        QCoreApplication::processEvents(Dialog_ ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
    }
    if (Dialog_)
        IsCancelled_ = IsCancelled_ || Dialog_->IsCancelled();
    return !IsCancelled_;
}
