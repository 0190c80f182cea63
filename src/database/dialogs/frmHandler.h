// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QWidget>

class Panel3;
class QLabel;

/// The notice that a backup is under way: a small window in the bottom right corner of the screen, above all others,
/// that never takes the focus, so that whoever is typing goes on. OK hides it; the backup goes on. Kept by
/// DialogUserInterface. On the user interface thread.
class frmHandler final : public QWidget
{
    Q_OBJECT

public:
    frmHandler();

    /// Shows the notice, and returns when its text is on the screen: the copy that follows may keep the event loop
    /// waiting. What the user does meanwhile waits.
    void ShowNotice();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void Place();
    void PressOK();
    void ReleaseOK(const QPointF& twips);

    QLabel* lblBackingUpDesc_;
    Panel3* pnlOK_;
    bool IsPainted_ = false;
};
