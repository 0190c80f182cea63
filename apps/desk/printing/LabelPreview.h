// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/cPageSetup.h"

#include <QSizeF>
#include <QStringList>
#include <QWidget>

/// The first sheet of labels as it will be printed, with the labels' outlines. Paper is white whatever the desktop's
/// colours are.
class LabelPreview : public QWidget
{
    Q_OBJECT

public:
    explicit LabelPreview(QWidget* parent = nullptr);

    /// paper: millimetres. startAt: from 1.
    void Show(const cPageSetup& pageSetup, const QSizeF& paper, const QStringList& texts, int startAt);
    QSize sizeHint() const override { return {300, 400}; }
    QSize minimumSizeHint() const override { return {180, 240}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    cPageSetup PageSetup_;
    QSizeF Paper_;
    QStringList Texts_;
    int StartAt_ = 1;
};
