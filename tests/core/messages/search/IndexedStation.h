// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/support/StationTest.h"
#include "messages/search/SearchFailure.h"
#include "messages/search/SearchFollowing.h"

#include <QFile>

#include <algorithm>

/// A station with a search index in a folder of the test's.
class IndexedStation : public StationTest
{
protected:
    QString IndexFile() const { return Folder.filePath(QStringLiteral("cache/Tolva/station.index")); }

    /// Opens the station and its index and brings that up to date.
    void Follow()
    {
        if (!Station->IsOpen())
            OpenStation();
        if (!Index)
            Index = std::make_unique<SearchIndex>(IndexFile(), SearchFollowing::IdentityOf(*Station));
        if (!Following)
            Following = std::make_unique<SearchFollowing>(*Station);
        ASSERT_TRUE(BringUpToDate(*Following, *Index));
    }

    qint32 Save(const QByteArray& mail, enTolvaMessageCategories category = tmcInbox, enMsgType type = emtEmail)
    {
        const auto content = std::make_shared<cdo::Message>(mail);
        const auto message = std::make_shared<cMessage>();
        message->SetMessageType(type);
        message->SetCDOMessage(content);
        message->SetCategory(category);
        EXPECT_TRUE(Station->SaveMessage(message));
        return message->Reference();
    }

    static QByteArray Mail(const QByteArray& subject, const QByteArray& body,
                           const QByteArray& from = "Postcard Pete <pete@example.com>")
    {
        return "From: " + from + "\r\nTo: Studio <studio@harbourfm.example.org>\r\nSubject: " + subject +
               "\r\nDate: Sat, 21 Nov 2026 09:59:57 +0000\r\nMIME-Version: 1.0\r\n"
               "Content-Type: text/plain; charset=utf-8\r\n\r\n" +
               body + "\r\n";
    }

    SearchResult Find(const QString& typed, const SearchOptions& options = {}) const
    {
        return Index->Find(SearchQuestion::Of(typed, SearchQuestion::Reading::Finished), options);
    }

    /// The references that are found, in order.
    QList<qint32> Found(const QString& typed, const SearchOptions& options = {}) const
    {
        QList<qint32> references;
        for (const SearchHit& hit : Find(typed, options).Hits)
            references.append(hit.Reference);
        return references;
    }

    /// Whether these octets stand in the index or in the log beside it.
    bool HoldsOctets(const QByteArray& octets) const
    {
        bool isThere = false;
        for (const char* ending : {"", "-wal"}) {
            QFile file(IndexFile() + QLatin1String(ending));
            isThere = isThere || (file.open(QIODevice::ReadOnly) && file.readAll().contains(octets));
        }
        return isThere;
    }

    std::unique_ptr<SearchIndex> Index;
    std::unique_ptr<SearchFollowing> Following;
};
