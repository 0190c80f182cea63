// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/UserInterface.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QPointer>

class QLabel;
class QProgressBar;
class QPushButton;

/// The window of a long piece of work: its caption, how much is done, and Cancel. While it is up no other window takes
/// input. Only DialogProgress closes it; the close box and Escape are Cancel.
class ProgressDialog final : public QDialog
{
    Q_OBJECT

public:
    ProgressDialog(const QString& caption, QWidget* parent);

    /// 0 to 100.
    void SetPercent(int percent);
    bool IsCancelled() const { return IsCancelled_; }

public Q_SLOTS:
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QLabel* lblCaption_;
    QProgressBar* Bar_;
    QPushButton* cmdCancel_;
    bool IsCancelled_ = false;
};

/// A piece of work on display in a ProgressDialog, which appears only when the work takes longer than 300 ms. Advance
/// lets the window live, twenty times a second at most. Until the window is up what the user does in the others waits,
/// so that no work starts in the middle of this one.
class DialogProgress final : public ProgressDisplay
{
public:
    explicit DialogProgress(const QString& caption);
    ~DialogProgress() override;
    DialogProgress(const DialogProgress&) = delete;
    DialogProgress& operator=(const DialogProgress&) = delete;

    bool Advance(qint64 done, qint64 total) override;

private:
    QString Caption_;
    QElapsedTimer Running_;
    QElapsedTimer SinceEvents_;
    /// Gone when the window that it belongs to went.
    QPointer<ProgressDialog> Dialog_;
    bool IsCancelled_ = false;
};
