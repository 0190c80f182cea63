// SPDX-License-Identifier: Apache-2.0

// A winner in memory, made by the store.

#include "core/prizes/PrizeTest.h"

namespace
{
class cPrizeWinnerTest : public PrizeTest
{
protected:
    void SetUp() override
    {
        PrizeTest::SetUp();
        Winner = Station->GetNewPrizeWinner(MakePrize());
        ASSERT_NE(Winner, nullptr);
        QObject::connect(Winner.get(), &cPrizeWinner::PrizeWinnerEdited, [this](bool edited) { Heard.append(edited); });
    }
    cPrizeWinnerPtr Winner;
    QList<bool> Heard;
};
} // namespace

TEST_F(cPrizeWinnerTest, EverySetterMarksTheWinnerAndTellsOfIt)
{
    const QList<std::function<void(cPrizeWinner&)>> setters = {
        [](cPrizeWinner& winner) { winner.SetPrizeReference(0); },
        [](cPrizeWinner& winner) { winner.SetWinnerReference(0); },
        [](cPrizeWinner& winner) { winner.SetNotes(QString()); },
        [](cPrizeWinner& winner) { winner.SetNotesToSupplier(QString()); },
        [](cPrizeWinner& winner) { winner.SetAwardedByReference(0); },
        [](cPrizeWinner& winner) { winner.SetWonDate(Date()); },
        [](cPrizeWinner& winner) { winner.SetWonDateString(QString()); },
        [](cPrizeWinner& winner) { winner.SetSentByReference(0); },
        [](cPrizeWinner& winner) { winner.SetSentDate(Date()); },
        [](cPrizeWinner& winner) { winner.SetSentDateString(QString()); },
    };
    for (qsizetype i = 0; i < setters.size(); ++i) {
        Winner->SetEdited(false);
        Heard.clear();
        setters.at(i)(*Winner);
        EXPECT_TRUE(Winner->Edited()) << i;
        EXPECT_EQ(Heard, QList<bool>{true}) << i;
    }
}

TEST_F(cPrizeWinnerTest, DatesReadAndWriteAsText)
{
    EXPECT_EQ(Winner->SentDateString(), QString());
    Winner->SetSentDateString(QStringLiteral("21/11/2026 14:05:09"));
    EXPECT_EQ(Winner->SentDate(), Date(2026, 11, 21, 14, 5, 9));
    Winner->SetSentDateString(QStringLiteral("tomorrow"));
    EXPECT_EQ(Winner->SentDate(), Date());
    Winner->SetWonDateString(QStringLiteral("22/11/2026"));
    EXPECT_EQ(Winner->WonDateString(), QStringLiteral("22/11/2026"));
    Winner->SetWonDateString(QString());
    EXPECT_EQ(Winner->WonDate(), Date());
}

TEST_F(cPrizeWinnerTest, ACopyOfASavedWinnerIsEditedAndMeansTheSameRow)
{
    const qint32 prize = SaveNewPrize();
    const qint32 reference = Award(prize);
    const cPrizeWinnerPtr winner = Station->GetPrizeWinner(reference);
    winner->SetNotes(QStringLiteral("n"));
    winner->SetNotesToSupplier(QStringLiteral("t"));
    winner->SetSentByReference(9);
    winner->SetSentDate(Date(2026, 11, 22));
    ASSERT_TRUE(Station->SavePrizeWinner(winner));
    ASSERT_FALSE(winner->Edited());
    const cPrizeWinnerPtr copy = winner->Copy();
    EXPECT_TRUE(copy->Edited());
    EXPECT_FALSE(winner->Edited());
    EXPECT_EQ(copy->Reference(), reference);
    EXPECT_EQ(copy->PrizeReference(), prize);
    EXPECT_EQ(copy->WinnerReference(), 11);
    EXPECT_EQ(copy->AwardedByReference(), 7);
    EXPECT_EQ(copy->WonDate(), winner->WonDate());
    EXPECT_EQ(copy->SentByReference(), 9);
    EXPECT_EQ(copy->SentDate(), Date(2026, 11, 22));
    EXPECT_EQ(copy->Notes(), QStringLiteral("n"));
    EXPECT_EQ(copy->NotesToSupplier(), QStringLiteral("t"));
    copy->SetNotes(QStringLiteral("changed"));
    ASSERT_TRUE(Station->SavePrizeWinner(copy));
    EXPECT_EQ(Station->GetPrizeWinner(reference)->Notes(), QStringLiteral("changed"));
    EXPECT_EQ(WinnerRows(), 1);
}
