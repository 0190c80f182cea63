#pragma once

#include <QApplication>

/// The application of the desk with the last net below its event handlers: an error that one of them lets through is
/// shown to the user as a run-time error, and the program goes on.
class DeskApplication final : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

private:
    void Tell(const QString& receiver);

    bool IsTelling_ = false;
};
