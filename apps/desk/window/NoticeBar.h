// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

/// One line across a window that says something the user should not miss, with at most one button. Hidden while there
/// is nothing to say.
class NoticeBar : public QFrame
{
    Q_OBJECT

public:
    /// icon: a key of Icons. button: empty for none.
    NoticeBar(const QString& icon, const QString& button, QWidget* parent = nullptr);

    /// An empty text hides the bar.
    void Show(const QString& text);
    QString Text() const;
    /// Another text on its button.
    void SetButton(const QString& text);
    /// Whether its button can be pressed at this moment; a bar without a button stays so.
    void ShowButton(bool isShown);

Q_SIGNALS:
    void ButtonClicked();

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void DrawPicture();

    QString Icon_;
    QLabel* Picture_;
    QLabel* Text_;
    QPushButton* Button_;
};
