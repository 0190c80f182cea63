// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/// One way by which messages come into a station, with the program that brings them, in texts of bash.
struct Route
{
    enum class Brings
    {
        Mails,
        Texts
    };
    QString Name;         ///< Letters, for the name of a test.
    QString SetUpName;    ///< For tolva setup mail; empty where it has nothing to write.
    QString Tree;         ///< Where its programs are unpacked.
    QStringList Headings; ///< Of the page on hooking up, in the order in which they are followed.
    QString Installation; ///< What installing its package does, and what a technician has before he reads the page.
    QString Start;        ///< Behind the page's instructions.
    /// Hands over the files of /tmp/mails, each to the address studio@harbourfm.example.org from listener@station.test.
    QString Deliver;
    QString DeliverIntoQueue; ///< The same, all of them before it delivers the first; empty where Deliver is that.
    QString Attempt;          ///< Lets it try now what it would try later.
    QString Held;             ///< Prints how many messages are still on their way.
    /// Prints how many of them were tried in vain; where nothing stands here an attempt is over when it returns.
    QString PutOff;
    /// Kills the mail server with all its processes, and starts it again; empty where there is none.
    QString KillServer;
    QString RestartServer;
    /// Lets its queue live for seconds only; empty where it has none that sends back.
    QString ShortenQueue;
    Brings What = Brings::Mails;
    bool FillsTheStationsFolder = false; ///< Who delivers writes beside the station's file, and needs room there.
    bool TakesHeaderless = true;
    bool LeavesPieces = false;    ///< What had come of a mail when the connection broke is handed over as well.
    bool IsHeldElsewhere = false; ///< What waits stays where it is counted by nobody: in a mailbox that is kept.

    /// Mails that could not be delivered go back to listener@station.test.
    bool SendsBack() const { return Tree == QStringLiteral("postfix") || Tree == QStringLiteral("exim"); }
};

const QList<Route>& AllRoutes();
