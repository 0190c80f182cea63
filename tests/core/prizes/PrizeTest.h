// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "common/DebugLog.h"
#include "common/FileHelper.h"
#include "common/GeneralHelper.h"
#include "core/support/StationTest.h"
#include "platform/records/DBEngine.h"

#include <QHash>

/// A directory with a few contacts, whose user is the one of the fixture.
class ContactDirectory : public clsKVDirectory
{
public:
    explicit ContactDirectory(const FakeDirectory& directory) : Directory_(directory) {}
    clsKVUser* CurrentUser() const override { return Directory_.SignedIn; }
    clsKVContactPtr GetContact(qint32 reference, int, int) const override
    {
        if (!Names.contains(reference))
            return nullptr;
        auto contact = std::make_shared<clsKVContact>();
        contact->Reference = reference;
        contact->Name = Names.value(reference);
        return contact;
    }

    QHash<qint32, QString> Names{{11, QStringLiteral("Carla Count")}};

private:
    const FakeDirectory& Directory_;
};

/// The diagnostics log while the object lives.
class LogSpy
{
public:
    explicit LogSpy(int level = -1)
    {
        DebugLog::SetCurrent(&Log_);
        GeneralHelper::SetDebugPath(Folder_.path());
        GeneralHelper::SetDebugMode(level);
    }
    ~LogSpy()
    {
        GeneralHelper::SetDebugMode(0);
        GeneralHelper::SetDebugPath(QString());
        DebugLog::SetCurrent(nullptr);
    }
    LogSpy(const LogSpy&) = delete;
    LogSpy& operator=(const LogSpy&) = delete;

    /// The lines since the last call, without their times.
    QStringList Take()
    {
        QStringList lines;
        const QString file = FileHelper::Join(Folder_.path(), QStringLiteral("coreTests.20261121.log"));
        for (const QString& line : FileHelper::ReadTextFile(file).split(u'\n', Qt::SkipEmptyParts))
            lines.append(line.mid(9));
        QFile::remove(file);
        return lines;
    }

private:
    QTemporaryDir Folder_;
    DebugLog Log_;
};

/// An open station with a listener to its events.
class PrizeTest : public StationTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        Station->SetDirectoryDatabase(&Contacts);
        Listen(*Station);
    }
    /// Closing writes to the directory, which the station must not outlive.
    void TearDown() override { Station.reset(); }
    void Listen(const cTolvaDatabase& station)
    {
        QObject::connect(&station, &cTolvaDatabase::PrizeSaved, [this](const cPrizePtr& prize, bool edited) {
            Events.append(QStringLiteral("saved %1 %2 %3").arg(prize->Reference()).arg(prize->Title()).arg(edited));
        });
        QObject::connect(&station, &cTolvaDatabase::PrizeDeleted, [this](const cPrizePtr& prize) {
            Events.append(QStringLiteral("deleted %1 %2").arg(prize->Reference()).arg(prize->Title()));
        });
    }
    static cPrizePtr MakePrize(const QString& title = QStringLiteral("Tickets"), qint32 units = 2)
    {
        auto prize = std::make_shared<cPrize>();
        prize->SetTitle(title);
        prize->SetNumberSupplied(units);
        return prize;
    }
    /// The reference of a prize saved; log and events are empty afterwards.
    qint32 SaveNewPrize(const QString& title = QStringLiteral("Tickets"), qint32 units = 2)
    {
        const cPrizePtr prize = MakePrize(title, units);
        EXPECT_TRUE(Station->SavePrize(prize));
        Forget();
        return prize->Reference();
    }
    /// The winner's reference; 0 when it was not saved.
    qint32 Award(qint32 prizeReference, qint32 contact = 11)
    {
        const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(Station->GetPrize(prizeReference, false));
        if (!winner)
            return 0;
        winner->SetWinnerReference(contact);
        return Station->SavePrizeWinner(winner) ? winner->Reference() : 0;
    }
    void Forget()
    {
        Directory.User.Log.clear();
        Events.clear();
    }
    /// A value as it stands in the file.
    QVariant Stored(const QString& table, qint32 reference, const QString& column) const
    {
        const auto rows = OpenTable(table);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {reference});
        EXPECT_FALSE(rows->NoMatch()) << qPrintable(table) << ' ' << reference;
        return rows->NoMatch() ? QVariant() : rows->Collect(column);
    }
    QVariant StoredPrize(qint32 reference, const QString& column) const
    {
        return Stored(QStringLiteral("Prizes"), reference, column);
    }
    /// Writes a value past the station, as another program would.
    void Overwrite(const QString& table, qint32 reference, const QString& column, const QVariant& value) const
    {
        const auto rows = OpenTable(table);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {reference});
        ASSERT_FALSE(rows->NoMatch());
        rows->Edit();
        rows->SetCollect(column, value);
        rows->Update();
    }
    void OverwritePrize(qint32 reference, const QString& column, const QVariant& value) const
    {
        Overwrite(QStringLiteral("Prizes"), reference, column, value);
    }
    void DeleteRow(const QString& table, qint32 reference) const
    {
        const auto rows = OpenTable(table);
        rows->SetIndex(QStringLiteral("Main"));
        rows->Seek(dao::SeekComparison::Equal, {reference});
        ASSERT_FALSE(rows->NoMatch());
        rows->Delete();
    }
    int PrizeRows() const { return OpenTable(QStringLiteral("Prizes"))->RecordCount(); }
    int WinnerRows() const { return OpenTable(QStringLiteral("PrizeWinners"))->RecordCount(); }

    ContactDirectory Contacts{Directory};
    QStringList Events;
};
