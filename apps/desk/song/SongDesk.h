// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/Date.h"

#include <QDateTime>
#include <QObject>
#include <QTimer>

class DeskStation;
class NoticeBar;
class QAction;
class QLabel;
class QMainWindow;
class uMessagesList;

/// The song that is on air, as other software says it beside the station: in the status bar and above the list, with a
/// button that leaves only the messages that came since it began. A song begins when the file that names it was written
/// and names another one than before; of the first that a desk sees, when the file was written. Owned by the main
/// window; the station and the list outlive it.
class SongDesk : public QObject
{
    Q_OBJECT

public:
    SongDesk(DeskStation& station, uMessagesList& list, QMainWindow& window);

    /// For the place above the list, and for the status bar.
    NoticeBar& Notice() { return *Notice_; }
    QLabel& Label() { return *Label_; }
    /// "Messages since the song began", for a menu; checked while only those are on show.
    QAction* Action() const { return Since_; }

    /// How often it looks at the file.
    static constexpr int LookMilliseconds = 2000;

public Q_SLOTS:
    void Look();
    /// Every message is on show again.
    void ShowAll();

private:
    void Toggle();
    void ShowSince();
    void ShowWords();

    DeskStation& Station_;
    uMessagesList& List_;
    NoticeBar* Notice_;
    QLabel* Label_;
    QAction* Since_;
    QTimer LookTimer_;
    QString File_;
    QDateTime Written_; ///< Of the file when it was read last; none where there is no file.
    qint64 Size_ = -1;
    QString Song_;   ///< Empty for none.
    Date Began_;     ///< Universal time.
    QString OnShow_; ///< The song since which messages are on show.
};
