// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QApplication>
#include <QStringList>

/// The application of the desk with the last net below its event handlers: an error that one of them lets through is
/// shown to the user as a run-time error, and the program goes on. Errors that come while one is shown are shown
/// behind it, each once.
class DeskApplication final : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

private:
    void Tell(const QString& receiver);

    QStringList Words_; ///< What is on show, and what waits for it.
};
