// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/cPageSetup.h"

#include <QRectF>
#include <QSizeF>
#include <QStringList>

class QPagedPaintDevice;
class QPainter;

/// Address labels to print: texts laid out on sheets as a page setup says. A text that is too large for its label is
/// printed smaller, and cut with an ellipsis where it would get too small to read; it never runs into another label. It
/// takes a copy of the page setup. Black on white, whatever the desktop's theme is.
class LabelSheet
{
public:
    /// paper: millimetres, upright, such as LabelLayout::A4. texts: one a label, lines separated by line feeds; an
    /// empty one leaves its label free. startAt: the label of the first sheet to begin with, 1 for the top left one, so
    /// that a sheet that was begun can be used up.
    LabelSheet(const cPageSetup& pageSetup, const QSizeF& paper, const QStringList& texts, int startAt = 1);
    /// One sheet with the outline and number of each label, to be held against a sheet of labels.
    static LabelSheet TestPrint(const cPageSetup& pageSetup, const QSizeF& paper);

    int SheetCount() const;
    /// Draws one sheet, 0 for the first, with the paper's corner at the painter's origin.
    void PaintSheet(QPainter& painter, int sheet, double dotsPerMillimetre) const;
    /// Prints all sheets without margins of the device's own: a printer or a PDF writer that nothing is painted on yet.
    /// False when the device refused, or there is nothing to print.
    bool Print(QPagedPaintDevice& device) const;
    /// Writes the file whole or not at all. False, with the reason in words, when that failed or there is nothing to
    /// print.
    bool WritePdf(const QString& fileName, QString& problem) const;

private:
    void PaintText(QPainter& painter, const QString& text, const QRectF& label, double dotsPerMillimetre) const;
    void PaintTestLabel(QPainter& painter, int number, const QRectF& label, double dotsPerMillimetre) const;

    cPageSetup PageSetup_;
    QSizeF Paper_;
    QStringList Texts_;
    int StartAt_;
    bool IsTest_ = false;
};
