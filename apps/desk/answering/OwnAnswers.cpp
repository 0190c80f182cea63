// SPDX-License-Identifier: Apache-2.0
#include "OwnAnswers.h"

#include <QUuid>

#include <algorithm>

void OwnAnswers::Begin(const QObject* window, qint32 message)
{
    Window& own = Windows_[window];
    if (own.Entry.isEmpty()) {
        own.Entry = QUuid::createUuid().toString(QUuid::WithoutBraces);
        own.Since.start();
    }
    own.Message = message;
}

bool OwnAnswers::End(const QObject* window)
{
    const auto own = Windows_.constFind(window);
    if (own == Windows_.constEnd())
        return false;
    Gone_.append(own->Entry);
    Windows_.erase(own);
    return true;
}

void OwnAnswers::EndAll()
{
    for (const Window& own : std::as_const(Windows_))
        Gone_.append(own.Entry);
    Windows_.clear();
}

bool OwnAnswers::Holds(const QString& entry) const
{
    return Gone_.contains(entry) ||
           std::any_of(Windows_.begin(), Windows_.end(), [&](const Window& own) { return own.Entry == entry; });
}

QList<AnsweringEntry> OwnAnswers::Entries(const QString& name) const
{
    QList<AnsweringEntry> entries;
    for (const Window& own : Windows_)
        entries.append({own.Entry, own.Message, name, static_cast<qint32>(own.Since.elapsed() / 1000)});
    return entries;
}
