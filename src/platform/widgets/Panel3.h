// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFrame>

/// A coloured panel with an optional caption in its middle. The caption is drawn in a colour that can be read on the
/// background. With a bevel it can be used as a button: its owner turns the bevel in and out by the mouse events.
class Panel3 : public QFrame
{
    Q_OBJECT
    Q_PROPERTY(qint32 BackColour READ BackColour WRITE SetBackColour)
    Q_PROPERTY(QString Caption READ Caption WRITE SetCaption)
    Q_PROPERTY(BorderStyles BorderStyle READ BorderStyle WRITE SetBorderStyle)
    Q_PROPERTY(Bevels Bevel READ Bevel WRITE SetBevel)
    Q_PROPERTY(bool Visible READ Visible WRITE SetVisible)

public:
    enum BorderStyles
    {
        None,
        FixedSingle
    };
    Q_ENUM(BorderStyles)

    enum Bevels
    {
        NoBevel,
        RaisedBevel,
        InsetBevel
    };
    Q_ENUM(Bevels)

    explicit Panel3(QWidget* parent = nullptr);

    /// As SystemColour has them; ButtonFace at first.
    qint32 BackColour() const { return BackColour_; }
    void SetBackColour(qint32 colour);
    /// Plain text; what does not fit is shown as "...".
    const QString& Caption() const { return Caption_; }
    void SetCaption(const QString& caption);
    BorderStyles BorderStyle() const;
    void SetBorderStyle(BorderStyles style);
    Bevels Bevel() const { return Bevel_; }
    void SetBevel(Bevels bevel);
    /// Whether it is to be seen when its window is.
    bool Visible() const { return !isHidden(); }
    void SetVisible(bool visible) { setVisible(visible); }

    QSize sizeHint() const override;

Q_SIGNALS:
    void MouseDown(Qt::MouseButton button, QPointF twips);
    /// The button that went down within the panel, wherever it comes up.
    void MouseUp(Qt::MouseButton button, QPointF twips);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void DrawBevel(QPainter& painter, const QColor& background) const;

    Bevels Bevel_ = NoBevel;
    qint32 BackColour_;
    QString Caption_;
};
