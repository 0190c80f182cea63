// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMap>
#include <QPushButton>
#include <QSet>

class DeskSettings;
class FlexGrid;
class QAction;
class uMessagesList;

/// A quiet word over the rows of a list: how many messages came above or below those in view ("3 new, above"). A click
/// goes there. A message counts until its row was in view or is gone from the rows. With a sound, where the user wants
/// one, for new mail in the Inbox. A child of the list; the settings outlive it.
class ArrivalCue : public QPushButton
{
    Q_OBJECT

public:
    ArrivalCue(uMessagesList& list, DeskSettings& settings);

    /// For a menu: whether there is a sound. Off until somebody switches it on.
    QAction* SoundAction() const { return Sound_; }
    /// How many messages of the Inbox are unread now; it sounds when there are more than before.
    void TakeUnread(int count);

Q_SIGNALS:
    /// Together with the sound.
    void Sounded();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void TakeRows();
    void TakeView();
    void ShowCount();
    void Go();
    void Place();

    uMessagesList& List_;
    DeskSettings& Settings_;
    FlexGrid* Grid_;
    QAction* Sound_;
    QSet<qint32> Unseen_;
    QMap<int, qint32> Rows_; ///< Of those that are not seen yet, by their rows.
    int Unread_ = -1;        ///< Not known yet.
};
