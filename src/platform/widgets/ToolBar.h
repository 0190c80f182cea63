// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QIcon>
#include <QWidget>

class QToolButton;

/// A row of buttons with keys, laid out from where reading begins without gaps. A place-holder is a button that shows
/// nothing and keeps room for another control.
class ToolBar : public QWidget
{
    Q_OBJECT

public:
    explicit ToolBar(QWidget* parent = nullptr);

    /// text: the tool tip, and the name for a screen reader.
    void AddButton(const QString& key, const QIcon& icon, const QString& text);
    void AddPlaceholder(const QString& key);
    void SetIcon(const QString& key, const QIcon& icon);
    /// All of these: keys without regard to case; 0, false or nothing for a key that is not there. Pixels.
    int ButtonWidth(const QString& key) const;
    void SetButtonWidth(const QString& key, int width);
    bool IsButtonVisible(const QString& key) const;
    void SetButtonVisible(const QString& key, bool visible);
    QRect ButtonRect(const QString& key) const;
    /// Of all visible buttons but one.
    int WidthOfOthers(const QString& key) const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void ButtonClick(const QString& Key);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Button
    {
        QString Key;
        QToolButton* Widget; ///< Null for a place-holder.
        int Width;
        bool Visible;
        QRect Place;
    };
    const Button* Find(const QString& key) const;
    Button* Find(const QString& key);
    void LayOut();

    QList<Button> Buttons_;
};
