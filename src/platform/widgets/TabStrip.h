// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFrame>

class QTabBar;

/// A strip of tabs with a framed page below, whose content its user lays out in Page(). Only one page: a tab is a
/// choice, not a place. A strip with a single tab shows no tabs, unless it is told to.
class TabStrip : public QFrame
{
    Q_OBJECT

public:
    explicit TabStrip(QWidget* parent = nullptr);

    QTabBar& Tabs() const { return *Tabs_; }
    /// From 0.
    int Tab() const;
    /// As a click on the tab does; nothing for a tab that is not there.
    void SetTab(int index);
    /// Shows the tab of a strip that has a single one, with this caption. A click on it is told too.
    void ShowSingleTab(const QString& caption);
    /// The parent of the content; PageResized says when to lay it out again.
    QWidget& Page() const { return *Page_; }
    /// 32-bit colour (SystemColour).
    void SetBackColour(qint32 colour);

Q_SIGNALS:
    /// The user, or SetTab, chose another tab.
    void TabClick(int index);
    void PageResized();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void LayOut();
    void ApplyColour();

    QTabBar* Tabs_;
    QWidget* Page_;
    qint32 BackColour_;
    bool SingleTabShown_ = false;
};
