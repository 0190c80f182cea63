// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "answering/AnsweringTable.h"

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QStringList>

class QObject;

/// The windows of this desk in which a message is answered or open, as entries of the table. A plain value; the windows
/// are only told apart.
class OwnAnswers
{
public:
    /// The window is about that message from now on.
    void Begin(const QObject* window, qint32 message);
    /// It is gone. False when nothing was known of it.
    bool End(const QObject* window);
    void EndAll();
    /// 0 where nothing is known of it.
    qint32 MessageOf(const QObject* window) const { return Windows_.value(window).Message; }
    bool IsEmpty() const { return Windows_.isEmpty(); }
    bool Holds(const QString& entry) const;

    /// As they are now, under that name.
    QList<AnsweringEntry> Entries(const QString& name) const;
    /// Entries of windows that are gone, and may stand in the table still.
    const QStringList& Gone() const { return Gone_; }
    /// The table holds what Entries and Gone told.
    void WereWritten() { Gone_.clear(); }

private:
    struct Window
    {
        QString Entry;
        qint32 Message = 0;
        QElapsedTimer Since;
    };
    QHash<const QObject*, Window> Windows_;
    QStringList Gone_;
};
