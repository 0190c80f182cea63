// SPDX-License-Identifier: Apache-2.0

// tolva rekey, and the country in whose form numbers are read.

#include "CommandLineTest.h"
#include "platform/records/DBEngine.h"
#include "platform/records/Recordset.h"

#include <QJsonDocument>

class RekeyTest : public CommandLineTest
{
protected:
    void FileText(const QString& number) const
    {
        FileMail("Hello", {QStringLiteral("--sms"), QStringLiteral("--from"), number});
    }
    /// What "rekey --json" prints.
    QJsonObject Rekeyed() const
    {
        return QJsonDocument::fromJson(Expect("rekey", {QStringLiteral("--json")})).object();
    }
    /// Puts keys into all rows as another version wrote them.
    void WriteOldKeys() const
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        database->Execute(QStringLiteral("UPDATE [Messages] SET [FromKey]=\"|old|\""));
    }
    qsizetype Found(const char* number) const
    {
        return Messages({QStringLiteral("--find"), QString::fromLatin1(number)}).size();
    }
    void DeleteAllBut(qint32 reference) const
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        database->Execute(QStringLiteral("DELETE FROM [Messages] WHERE [Reference]<>%1").arg(reference));
    }
};

TEST_F(RekeyTest, MessagesAreFoundAgainAndASecondRunChangesNothing)
{
    for (const char* number : {"07700 900123", "+49 171 1234567", "80058", "Weather Ship"})
        FileText(QString::fromLatin1(number));
    WriteOldKeys();
    EXPECT_EQ(Found("+44 7700 900123"), 0);
    const QJsonObject first = Rekeyed();
    EXPECT_EQ(first.value(QStringLiteral("read")).toInt(), 4);
    EXPECT_EQ(first.value(QStringLiteral("changed")).toInt(), 4);
    EXPECT_TRUE(first.value(QStringLiteral("whole")).toBool());
    for (const char* number : {"+44 7700 900123", "0049 171 1234567", "80 058", "weather ship"})
        EXPECT_EQ(Found(number), 1) << number;
    EXPECT_EQ(Rekeyed().value(QStringLiteral("changed")).toInt(), 0);
    EXPECT_EQ(Expect("rekey"), "read 4, changed 0\n");
}

TEST_F(RekeyTest, AllBatchesAreWrittenAlsoWhereMostMessagesAreGone)
{
    QByteArray archive;
    for (int i = 0; i < 450; ++i)
        archive +=
            "From x Fri Nov 20 08:00:00 2026\n" + Mail("mail " + QByteArray::number(i)).replace("\r\n", "\n") + "\n";
    Expect("file", {Write(QStringLiteral("archive.mbox"), archive)});
    WriteOldKeys();
    EXPECT_EQ(Expect("rekey"), "read 450, changed 450\n");
    EXPECT_EQ(Found("loveday@example.org"), 450);
    WriteOldKeys();
    DeleteAllBut(449);
    EXPECT_EQ(Expect("rekey"), "read 1, changed 1\n");
}

TEST_F(RekeyTest, ChangingTheCountryPointsToItAndItTakesTheNewFormOver)
{
    FileText(QStringLiteral("+49 171 1234567"));
    EXPECT_EQ(Expect("setting", {QStringLiteral("Station.Country")}), "GB\n");
    const Outcome changed = OnStation("setting", {QStringLiteral("Station.Country"), QStringLiteral(" de ")});
    EXPECT_EQ(changed.Code, 0);
    EXPECT_TRUE(changed.Problems.contains("tolva rekey")) << changed.Problems.constData();
    EXPECT_EQ(Expect("setting", {QStringLiteral("Station.Country")}), "DE\n");
    EXPECT_EQ(Found("+49 171 1234567"), 0);
    EXPECT_EQ(Rekeyed().value(QStringLiteral("country")).toString(), QStringLiteral("DE"));
    EXPECT_EQ(Found("+49 171 1234567"), 1);
    EXPECT_EQ(OnStation("setting", {QStringLiteral("Station.Country"), QStringLiteral("England")}).Code, 65);
}

TEST_F(RekeyTest, AStationIsMadeWithItsCountry)
{
    const QString folder = Path(QStringLiteral("other"));
    const QStringList words = {QStringLiteral("init"),     folder,
                               QStringLiteral("--name"),   QStringLiteral("Radio Quai"),
                               QStringLiteral("--phone"),  QStringLiteral("01 42 68 53 00"),
                               QStringLiteral("--country")};
    const Outcome refused = Run(words + QStringList{QStringLiteral("Gaul")});
    EXPECT_EQ(refused.Code, 64);
    EXPECT_TRUE(refused.Problems.contains("two letters")) << refused.Problems.constData();
    EXPECT_EQ(Run(words + QStringList{QStringLiteral("fr")}).Code, 0);
    EXPECT_EQ(Run({QStringLiteral("setting"), folder, QStringLiteral("Station.Country")}).Output, "FR\n");
}

TEST_F(RekeyTest, ItNeedsTheRightToChangeSettings)
{
    AddUser(QStringLiteral("Guest"), 1);
    EXPECT_EQ(OnStation("rekey", {QStringLiteral("--user"), QStringLiteral("Guest")}).Code, 77);
}
