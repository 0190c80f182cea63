// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMimeData>

#include <functional>

class QWidget;

/// What a drag carries: a text, and files that may be promised, so that they are written only when somebody drops them
/// where files are wanted. Handed to the drag, which owns it.
class DragData : public QMimeData
{
    Q_OBJECT

public:
    /// Drops text and files.
    void Clear();
    void SetText(const QString& text) { setText(text); }
    /// Announces files without naming them. provide is called each time a target asks for the list, and gives their
    /// paths, none when they could not be written.
    void PromiseFiles(std::function<QStringList()> provide);

    QStringList formats() const override;
    bool hasFormat(const QString& format) const override;

    /// Paths of the local files in somebody's data; asking a promise for them writes them.
    static QStringList Files(const QMimeData& data);
    /// Whether files are there or promised.
    static bool HasFiles(const QMimeData& data);

protected:
    QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
    std::function<QStringList()> ProvideFiles_;
};

/// Runs one drag from a widget to its end; the action that the target took. Tests put a runner of their own in place of
/// the desktop's.
namespace DragRunner
{
using Runner = std::function<Qt::DropAction(QWidget& source, DragData* data, Qt::DropActions allowed)>;

/// Whether a pressed mouse moved far enough to mean a drag: more than 5 pixels. Positions in twips.
bool IsDrag(const QWidget& source, const QPointF& from, const QPointF& to);
/// Takes ownership of data.
Qt::DropAction Run(QWidget& source, DragData* data, Qt::DropActions allowed);
/// Empty: back to the desktop's own.
void SetCurrent(Runner runner);
} // namespace DragRunner
