// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "messages/cMessage.h"

#include <QObject>

#include <functional>
#include <memory>

class DeskSettings;
class DeskStation;
class QAction;
class QMainWindow;
class QMenu;
class SearchService;
class SearchWindow;

/// All that the desk's main window has to do with finding messages by their words: the index, its window, and the way
/// to messages that go with one. Owned by the main window; the station and the settings outlive it.
class SearchDesk : public QObject
{
    Q_OBJECT

public:
    SearchDesk(DeskStation& station, DeskSettings& settings, QMainWindow& window);
    ~SearchDesk() override;

    SearchService& Service() { return *Service_; }
    /// Made on first use.
    SearchWindow& Window();

    /// "Search all messages" and the saved searches, for the menu "View".
    void AddToViewMenu(QMenu& menu);
    /// "Find related", for a menu of messages. selected: the message that it is about, or null.
    void AddToMessageMenu(QMenu& menu, std::function<cMessagePtr()> selected);

    /// Takes its window away.
    void Leave();

Q_SIGNALS:
    void MessageWanted(qint32 reference);
    void WasRead(qint32 reference);

private:
    enum class Relation
    {
        Sender,
        Conversation,
        Subject
    };

    void FillSaved(QMenu& menu);
    void ShowRelated(const cMessagePtr& message, Relation relation);

    DeskStation& Station_;
    DeskSettings& Settings_;
    QMainWindow& Main_;
    std::unique_ptr<SearchService> Service_;
    std::unique_ptr<SearchWindow> Window_; ///< Before the service that it hears.
};
