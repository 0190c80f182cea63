// SPDX-License-Identifier: Apache-2.0

// How often the server is asked by what a desk does all day: the page on servers tells it, and a long line makes it
// felt.

#include "core/support/StationTest.h"
#include "database/watch/StationWatch.h"
#include "platform/directory/EmbeddedDirectory.h"
#include "platform/records/DBEngine.h"
#include "prizes/Awarding.h"
#include "support/CuttingProxy.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QRegularExpression>

namespace
{

/// A station and its directory behind a proxy that counts.
class RoundTripsTest : public StationTest
{
protected:
    RoundTripsTest() : Schema_(TestServer::Shared().NewSchema()), Proxy_(TestServer::Shared().Folder())
    {
        const QString connect =
            QStringLiteral("host=%1 user=tolva dbname=postgres schema=%2").arg(Proxy_.Folder(), Schema_.Name);
        const QString directory = Folder.filePath(QStringLiteral("Directory"));
        QDir().mkpath(directory);
        dao::DBEngine::CreateLinkedDatabase(FileName(), connect, QString());
        dao::DBEngine::CreateLinkedDatabase(directory + QStringLiteral("/Directory.mdb"), connect,
                                            QStringLiteral("directory"));
        People_.Open(directory);
        DirectoryUser user{0, QStringLiteral("Petra"), 31};
        People_.SaveUser(user);
        People_.SignIn(user.Name);
        OpenStation();
        Station->SetDirectoryDatabase(&People_);
    }
    ~RoundTripsTest() override
    {
        Station->CloseTolvaDatabase();
        Station->SetDirectoryDatabase(nullptr);
        People_.Close();
    }

    int CostOf(const std::function<void()>& action)
    {
        Proxy_.TakeRequests();
        action();
        return Proxy_.TakeRequests();
    }
    /// From then on the server tells of changes, as it does at a desk, which has looked at everything once.
    void BeDesk()
    {
        Tick();
        Tick();
    }
    void Tick()
    {
        Station->Watch().Poll(*Station);
        Station->Watch().MessageStamp();
        Station->Watch().PrizeStamp();
        Station->Watch().RefreshFolders();
    }
    int List(int rows)
    {
        const auto listed =
            Station->OpenMessageRows({QStringLiteral("Reference"), QStringLiteral("Flags"), QStringLiteral("Message")},
                                     QStringLiteral("[Category]=1"), QStringLiteral("[Received] DESC"));
        int count = 0;
        for (; !listed->AtEOF(); listed->MoveNext())
            count += (*listed)[QStringLiteral("Message")].Beginning(4096).Utf8.isEmpty() ? 0 : 1;
        EXPECT_EQ(count, rows);
        return count;
    }
    std::vector<cMessagePtr> NewMessages(int count) const
    {
        std::vector<cMessagePtr> messages;
        for (int i = 0; i < count; ++i) {
            messages.push_back(MakeMessage(QStringLiteral("Number %1").arg(i)));
            messages.back()->SetCategory(tmcInbox);
        }
        return messages;
    }
    void FileBatch(int count)
    {
        for (const MessageSaving& saving : Station->SaveMessages(NewMessages(count), [] { return true; }))
            ASSERT_TRUE(saving.IsSaved());
    }
    qint32 NewPrize()
    {
        const auto prize = std::make_shared<cPrize>();
        prize->SetTitle(QStringLiteral("Tickets"));
        prize->SetNumberSupplied(100);
        EXPECT_TRUE(Station->SavePrize(prize));
        return prize->Reference();
    }
    /// What the page on servers tells of an action.
    static int Told(const QString& action)
    {
        QFile page(QStringLiteral(TOLVA_DOCUMENTS "/server.md"));
        EXPECT_TRUE(page.open(QIODevice::ReadOnly));
        const QRegularExpression line(QStringLiteral("^\\| %1 \\| (\\d+) \\|").arg(QRegularExpression::escape(action)),
                                      QRegularExpression::MultilineOption);
        const auto match = line.match(QString::fromUtf8(page.readAll()));
        return match.hasMatch() ? match.captured(1).toInt() : -1;
    }

    void ExpectTold(const char* action, const std::function<void()>& work)
    {
        // A notice of the server between two pieces of what is sent looks like an answer.
        EXPECT_NEAR(CostOf(work), Told(QLatin1String(action)), 1) << action;
    }

    TestServer::Schema Schema_;
    CuttingProxy Proxy_;
    EmbeddedDirectory People_;
};

TEST_F(RoundTripsTest, AreWhatThePageOnServersTells)
{
    FileBatch(3);
    const qint32 prize = NewPrize();
    BeDesk();
    const std::vector<cMessagePtr> fresh = NewMessages(2);
    EXPECT_TRUE(Station->SaveMessage(fresh[0]));
    EXPECT_NE(Awarding(*Station).Award(prize, 7).Winner, nullptr);
    ExpectTold("an idle look for changes", [&] { Tick(); });
    ExpectTold("a folder of 4 messages", [&] { List(4); });
    ExpectTold("showing a message", [&] { EXPECT_NE(Station->GetMessage(1), nullptr); });
    ExpectTold("saving a message", [&] { EXPECT_TRUE(Station->SaveMessage(fresh[1])); });
    ExpectTold("marking a message as read", [&] { EXPECT_TRUE(Station->ChangeMessageFlags(1, mfRead, 0)); });
    ExpectTold("awarding a prize", [&] { EXPECT_NE(Awarding(*Station).Award(prize, 8).Winner, nullptr); });
    ExpectTold("filing a batch of 100 messages", [&] { FileBatch(100); });
    Station->CloseTolvaDatabase();
    ExpectTold("opening a station", [&] { EXPECT_EQ(Station->OpenTolvaDatabase(Folder.path()), 0); });
}

TEST_F(RoundTripsTest, OfAListGrowByOneForManyRows)
{
    FileBatch(400);
    BeDesk();
    const int few = CostOf([&] { List(400); });
    // The rows themselves, what ends their stream, and the beginnings of their mails, 1, 2, 4 .. 256 at a time.
    EXPECT_LE(few, 2 + 9);
}

TEST_F(RoundTripsTest, ChangesWithoutPauseAreReadOnceInAWhileAndTheFirstOfThemAtOnce)
{
    BeDesk();
    const auto other = dao::DBEngine::OpenDatabase(QString(), 0, false, TestServer::Shared().Connect(Schema_.Name));
    int looks = 0;
    QElapsedTimer since;
    qint64 first = -1;
    QObject::connect(&Station->Watch(), &StationWatch::Polled, &Station->Watch(), [&] {
        ++looks;
        first = first < 0 ? since.elapsed() : first;
    });
    since.start();
    while (since.elapsed() < 2400) {
        other->Execute(QStringLiteral("DELETE FROM [Messages] WHERE [Reference]=0"));
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    EXPECT_GE(looks, 2);
    EXPECT_LE(looks, 5) << "a look each quarter of a second would be nine";
    EXPECT_LT(first, 1000);
}

} // namespace
