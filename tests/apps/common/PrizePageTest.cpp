// SPDX-License-Identifier: Apache-2.0
#include "PrizePage.h"

#include "common/FileHelper.h"
#include "common/LibraryFolder.h"

#include <gtest/gtest.h>

namespace
{
PrizePage::Prize Hamper()
{
    PrizePage::Prize prize;
    prize.Reference = 7;
    prize.Title = QStringLiteral("Hamper & <cheese>");
    prize.Script = QStringLiteral("A hamper,\nas large as a dog.");
    prize.Supplied = 5;
    prize.Won = 2;
    prize.Winners = {{QStringLiteral("Ann Tregenza"), QStringLiteral("20 Nov 2026 09:00:00"), QString(), QString()},
                     {QStringLiteral("Bryn <ZRT_PRIZE_TITLE>"), QString(), QString(), QString()}};
    return prize;
}

QString Sheet()
{
    return FileHelper::ReadTextFile(
        FileHelper::Join(LibraryFolder::Current(), QStringLiteral("HTMLDocs/Prize-Prize sheet.htm")));
}
} // namespace

TEST(PrizePageTest, ASheetHoldsWhatAPresenterNeeds)
{
    const QString page = PrizePage::Fill(Sheet(), {Hamper()}).Html;
    for (const char* words : {"<h1>Hamper &amp; &lt;cheese&gt;</h1>", "<b>3</b> of 5", "A hamper,\nas large as a dog.",
                              "Ann Tregenza", "20 Nov 2026 09:00:00", "Prize 7, one of 1"})
        EXPECT_TRUE(page.contains(QLatin1String(words))) << words;
    EXPECT_FALSE(page.contains(QStringLiteral("<zrt"), Qt::CaseInsensitive));
}

TEST(PrizePageTest, AValueThatLooksLikeATagStaysText)
{
    EXPECT_TRUE(PrizePage::Fill(Sheet(), {Hamper()}).Html.contains(QStringLiteral("Bryn &lt;ZRT_PRIZE_TITLE&gt;")));
}

TEST(PrizePageTest, ATemplateWithoutAListIsFilledFromTheFirstPrize)
{
    const QString page =
        PrizePage::Fill(
            QStringLiteral("<p><ZRT_PRIZE_TITLE>: <ZRT_WINNERS_REPEAT><b><ZRT_WINNER_NAME></b></ZRT_WINNERS_REPEAT>"
                           "<ZRT_UNKNOWN></p>"),
            {Hamper()})
            .Html;
    EXPECT_TRUE(page.contains(
        QStringLiteral("<p>Hamper &amp; &lt;cheese&gt;: <b>Ann Tregenza</b><b>Bryn &lt;ZRT_PRIZE_TITLE&gt;</b></p>")));
}
