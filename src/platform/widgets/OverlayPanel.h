// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <QFrame>

class QLabel;

/// A panel that lies over another control and says one thing in its middle, with a line for how far the work is. It
/// passes the button-up of the mouse on, so that what lies below can still answer it.
class OverlayPanel : public QFrame
{
    Q_OBJECT

public:
    OverlayPanel(const QString& text, QWidget* parent);

    /// Below the text; empty for none. One that comes too soon behind another is left out.
    void SetDetail(const QString& text);

Q_SIGNALS:
    void MouseUp(Qt::MouseButton button, QPointF twips);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void LayOut();

    QLabel* Text_;
    QLabel* Detail_;
    QElapsedTimer DetailAge_; ///< Of the detail on show.
};
