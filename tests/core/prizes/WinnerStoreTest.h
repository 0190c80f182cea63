// SPDX-License-Identifier: Apache-2.0
#pragma once

// Awarding prizes: the allocation rule, the counts and the slots.

#include "core/prizes/PrizeTest.h"

#include <sqlite3.h>

const QString Winners = QStringLiteral("PrizeWinners");
const QString FullyAllocated =
    QStringLiteral("There was a problem saving a Prize Winner because the Prize has already been fully allocated");

/// Something happens on another computer while a name is looked up.
class MeddlingDirectory : public ContactDirectory
{
public:
    MeddlingDirectory(const FakeDirectory& directory, std::function<void()> meddle)
        : ContactDirectory(directory), Meddle_(std::move(meddle))
    {
    }
    clsKVContactPtr GetContact(qint32 reference, int sort, int part) const override
    {
        Meddle_();
        return ContactDirectory::GetContact(reference, sort, part);
    }

private:
    std::function<void()> Meddle_;
};

class WinnerStoreTest : public PrizeTest
{
protected:
    void TearDown() override
    {
        Second_.reset();
        PrizeTest::TearDown();
    }
    /// Another computer that has the station open.
    cTolvaDatabase& Second()
    {
        if (!Second_) {
            Second_ = std::make_unique<cTolvaDatabase>();
            Second_->SetDirectoryDatabase(&Contacts);
            Second_->SetMakesAutomaticBackups(false);
            EXPECT_EQ(Second_->OpenTolvaDatabase(Folder.path()), 0);
        }
        return *Second_;
    }
    void AwardElsewhere(qint32 prize)
    {
        const cPrizeWinnerPtr theirs = Second().GetNewPrizeWinner(Second().GetPrize(prize, false));
        ASSERT_NE(theirs, nullptr);
        theirs->SetWinnerReference(12);
        EXPECT_TRUE(Second().SavePrizeWinner(theirs));
    }
    /// Whether another computer could write to the station in this moment.
    bool MayOthersWrite() const
    {
        sqlite3* file = nullptr;
        EXPECT_EQ(sqlite3_open(FileName().toUtf8().constData(), &file), SQLITE_OK);
        const int code = sqlite3_exec(file, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        EXPECT_TRUE(code == SQLITE_OK || code == SQLITE_BUSY) << code;
        sqlite3_close(file);
        return code == SQLITE_OK;
    }
    qint32 Counted(qint32 prize) const { return StoredPrize(prize, QStringLiteral("NumberWinners")).toInt(); }
    Date LastWon(qint32 prize) { return Station->GetPrize(prize, false)->LastWonDate(); }
    cPrizeWinnerPtr NewWinner(qint32 prize, qint32 contact = 11)
    {
        const cPrizeWinnerPtr winner = Station->GetNewPrizeWinner(Station->GetPrize(prize, false));
        if (winner)
            winner->SetWinnerReference(contact);
        return winner;
    }

private:
    std::unique_ptr<cTolvaDatabase> Second_;
};
