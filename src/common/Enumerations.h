// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFlags>

/// How a message came or goes.
enum enMsgType : qint32
{
    emtEmail = 1,
    emtSMS = 2
};

/// State of a message; a set of bits that is stored as it stands.
enum enMsgFlags : qint32
{
    mfRead = 1,
    mfSendPending = 2,
    mfAutomatic = 4
};

/// How ProcessHTMLTags fills a page; a set of bits.
enum eMsgProcessHTMLTags : qint32
{
    mphUnreadBodyBold = 1,
    mphSendPendingBodyItalic = 2,
    mphPrintMessagePerPage = 4096 ///< cMessages alone: a page break between messages.
};

/// The fixed folders. User folders have higher numbers, so a variable of this type may hold others.
enum enTolvaMessageCategories : qint32
{
    tmcInbox = 1,
    tmcOutbox = 2,
    tmcSaved = 3,
    tmcSent = 4,
    tmcDeleted = 5,
    tmcDrafts = 6,
    tmcAutomatic = 7
};
