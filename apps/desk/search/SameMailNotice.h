// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QObject>
#include <QTimer>

class DeskStation;
class NoticeBar;
class SearchService;
struct SearchResult;

/// The line above a message that says where the same mail is as well, which came by another route; with a button that
/// shows it. It asks the search index; where this computer keeps none, the station itself, in windows alone, which are
/// opened one by one. Owned by its window; the station and the search outlive it.
class SameMailNotice : public QObject
{
    Q_OBJECT

public:
    enum class Place
    {
        BesideList, ///< Messages come and go as fast as somebody holds a key down.
        InWindow
    };
    SameMailNotice(DeskStation& station, SearchService& search, Place place, QWidget& window);

    NoticeBar& Bar() { return *Bar_; }

    /// The message that is on show; null for none.
    void Show(const cMessagePtr& message);

    /// A message is looked for when it has stayed so long.
    static constexpr int RestMilliseconds = 250;

Q_SIGNALS:
    /// Somebody wants to see the other one.
    void MessageWanted(qint32 reference);

private:
    void Look();
    void AskIndex();
    void TakeFound(int search, const SearchResult& result);
    void TakeLost();
    void TakeState();
    void ShowSame(const QList<qint32>& alike);
    QString FolderOf(qint32 reference) const;

    DeskStation& Station_;
    SearchService& Search_;
    Place Place_;
    NoticeBar* Bar_;
    cMessagePtr Message_;
    int Asked_ = 0;         ///< The number of the search under way; 0 for none.
    bool MustLook_ = false; ///< When the index is complete.
    qint32 Other_ = 0;      ///< What the button shows.
    QTimer RestTimer_;
    QTimer PatienceTimer_; ///< Somebody else's question may have taken the place of this one.
};
