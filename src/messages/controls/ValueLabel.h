// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLabel>

/// A label for one line of somebody else's text: plain text, line breaks as blanks, selectable by mouse. What does not
/// fit ends in "...", with the whole text as the tool tip.
class ValueLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ValueLabel(QWidget* parent = nullptr);
    /// text() is then the whole of it on one line, or its first 10,000 characters.
    void SetValue(const QString& value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    bool Fits() const;
    void UpdateToolTip();
};
