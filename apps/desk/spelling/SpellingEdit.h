// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QPlainTextEdit>
#include <QTextCursor>

/// A box for text that draws a wave under some of its words. The toolkit's own is a row of dots in small type, of which
/// the line cuts off a part.
class SpellingEdit : public QPlainTextEdit
{
    Q_OBJECT

public:
    using QPlainTextEdit::QPlainTextEdit;

    /// The words, selected; they follow what is typed before them.
    const QList<QTextCursor>& Marks() const { return Marks_; }
    void SetMarks(const QList<QTextCursor>& marks);
    /// As it reads on the box's ground.
    QColor WaveColour() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void DrawWaves(QPainter& painter, const QTextCursor& word) const;

    QList<QTextCursor> Marks_;
};
