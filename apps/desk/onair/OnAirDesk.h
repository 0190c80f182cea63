// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "OnAirWindow.h"

#include <QObject>
#include <QPointer>
#include <QSet>

class DeskSettings;
class DeskStation;
class QAction;
class QMainWindow;
struct PrintJob;

/// What the main window does with the running order: puts messages and prizes on it, opens its window, and knows which
/// messages stand on it. Owned by the main window; station and settings outlive it.
class OnAirDesk : public QObject
{
    Q_OBJECT

public:
    OnAirDesk(DeskStation& station, DeskSettings& settings, QMainWindow& window);

    /// "Put on the running order", which asks for Wanted, and "On air"; for menus.
    QAction* PutAction() const { return Put_; }
    QAction* ShowAction() const { return Show_; }

    /// At the end of the order, in theirs.
    void PutMessages(const QList<qint32>& messages);
    void PutPrize(qint32 prize);
    void ShowWindow();
    /// Null while it is closed.
    OnAirWindow* Window() const { return Window_; }
    /// "On the running order", or nothing.
    QString NoteOf(qint32 message) const;
    /// Looks which messages stand on it; costs one small reading.
    void Look();

Q_SIGNALS:
    void Wanted();
    void Told(const QString& words);
    void WindowOpened(QMainWindow* window);
    void PrintWanted(const PrintJob& job, QWidget* over);
    /// Other messages stand on the order than before.
    void Changed();

private:
    template <typename Work>
    void Run(Work&& work);
    void Tell(qsizetype put, qsizetype present, const QString& what);

    DeskStation& Station_;
    DeskSettings& Settings_;
    QAction* Put_;
    QAction* Show_;
    QPointer<OnAirWindow> Window_;
    QSet<qint32> Messages_; ///< That wait on it.
};
