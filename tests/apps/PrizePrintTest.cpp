// SPDX-License-Identifier: Apache-2.0

// tolva prize print.

#include "CommandLineTest.h"

namespace
{
class PrizePrintTest : public CommandLineTest
{
protected:
    /// A station with a supplier, a winner and a prize that one of them gave and the other won.
    void SetUp() override
    {
        CommandLineTest::SetUp();
        const QString supplier = AddContact("The Harbour & Sons Inn");
        const QString winner = AddContact("Ann <Angove>");
        Prize = Number(Expect("prize", {QStringLiteral("add"), QStringLiteral("--title"), QStringLiteral("Hamper"),
                                        QStringLiteral("--supplied"), QStringLiteral("3"), QStringLiteral("--script"),
                                        QStringLiteral("A hamper,\nas large as a dog."), QStringLiteral("--notes"),
                                        QStringLiteral("In the blue cupboard"), QStringLiteral("--supplier"), supplier,
                                        QStringLiteral("--start"), QStringLiteral("2026-06-01 08:30"),
                                        QStringLiteral("--hours"), QStringLiteral("9-17")}));
        // The hour of the test may be none of the prize's, which is said.
        EXPECT_EQ(OnStation("prize", {QStringLiteral("award"), Prize, QStringLiteral("--contact"), winner,
                                      QStringLiteral("--notes"), QStringLiteral("Calls for it on Monday")})
                      .Code,
                  0);
    }
    static QString Number(const QByteArray& output) { return QString::fromLatin1(output).trimmed(); }
    QString AddContact(const char* name) const
    {
        return Number(Expect("contacts", {QStringLiteral("add"), QLatin1String(name)}));
    }
    Outcome Print(const QStringList& words) const
    {
        return OnStation("prize", QStringList{QStringLiteral("print")} + words);
    }
    /// The page that is written with these options, which must succeed without a word.
    QString PageOf(const QStringList& options = {}) const
    {
        return QString::fromUtf8(
            Expect("prize", QStringList{QStringLiteral("print"), Prize, Output, QStringLiteral("-")} + options));
    }

    const QString Output = QStringLiteral("-o");
    QString Prize;
};
} // namespace

TEST_F(PrizePrintTest, ASheetHoldsThePrizeItsSupplierItsHoursAndItsWinners)
{
    const QString page = PageOf();
    for (const char* words :
         {"<h1>Hamper</h1>", "<b>2</b> of 3", "A hamper,\nas large as a dog.", "In the blue cupboard",
          "The Harbour &amp; Sons Inn", "Ann &lt;Angove&gt;", "Calls for it on Monday", "1 June 2026, 08:30",
          "Every day 09:00 to 17:00 (universal time)"})
        EXPECT_TRUE(page.contains(QString::fromUtf8(words))) << words << '\n' << page.toStdString();
    EXPECT_FALSE(page.contains(QStringLiteral("ZRT_"), Qt::CaseInsensitive));
}

TEST_F(PrizePrintTest, APrizeWithoutLimitsSaysNothingOfUniversalTime)
{
    Expect("prize", {QStringLiteral("edit"), Prize, QStringLiteral("--hours"), QStringLiteral("all")});
    const QString page = PageOf();
    EXPECT_TRUE(page.contains(QStringLiteral("At any time")));
    EXPECT_FALSE(page.contains(QStringLiteral("universal time")));
}

TEST_F(PrizePrintTest, WholeDaysOfUniversalTimeSaySo)
{
    Expect("prize", {QStringLiteral("edit"), Prize, QStringLiteral("--hours"), QStringLiteral("none")});
    Expect("prize", {QStringLiteral("hours"), Prize, QStringLiteral("--day"), QStringLiteral("sat"),
                     QStringLiteral("--set"), QStringLiteral("all")});
    EXPECT_TRUE(PageOf().contains(QStringLiteral("Saturday all day (universal time)")));
}

TEST_F(PrizePrintTest, AWinnerWhoIsNotInTheDirectoryAnyMoreHasANumber)
{
    Expect("contacts", {QStringLiteral("delete"), QStringLiteral("2")});
    EXPECT_TRUE(PageOf().contains(QStringLiteral("Contact 2, who is not in the directory any more")));
}

TEST_F(PrizePrintTest, APdfFileIsWritten)
{
    const QString file = Path(QStringLiteral("hamper.pdf"));
    Expect("prize",
           {QStringLiteral("print"), Prize, Output, file, QStringLiteral("--paper"), QStringLiteral("Letter")});
    EXPECT_TRUE(Read(file).startsWith("%PDF-"));
    EXPECT_TRUE(Read(file).contains("/MediaBox [0 0 612.000000 792.000000]"));
    EXPECT_EQ(Read(file).count("/Type /Page\n"), 1);
}

TEST_F(PrizePrintTest, TheTemplateIsOneOfPrizesOrAFile)
{
    Write(QStringLiteral("station/HTMLDocs/Prize-Card.htm"), "<p>Card: <ZRT_PRIZE_TITLE></p>");
    const QString option = QStringLiteral("--template");
    EXPECT_TRUE(PageOf({option, QStringLiteral("card")}).contains(QStringLiteral("<p>Card: Hamper</p>")));
    const QString path = Write(QStringLiteral("elsewhere.htm"), "<p>Elsewhere: <ZRT_PRIZE_TITLE></p>");
    EXPECT_TRUE(PageOf({option, path}).contains(QStringLiteral("<p>Elsewhere: Hamper</p>")));
    // Those of messages are not for prizes, nor the other way round.
    const Outcome outcome = Print({Prize, option, QStringLiteral("Single message"), Output, QStringLiteral("-")});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_EQ(outcome.Problems,
              "tolva: There is no template \"Single message\". There are: Prize-Card, Prize-Prize sheet.\n");
    const QString message = FileMail(Mail("A card"));
    EXPECT_EQ(OnStation("print", {QStringLiteral("Prize-Card"), message, Output, QStringLiteral("-")}).Code, 65);
}

TEST_F(PrizePrintTest, AStationWithoutTemplatesOfPrizesSaysWhereTheyBelong)
{
    const QString templates = Path(QStringLiteral("station/HTMLDocs"));
    PageOf();
    // What lies in the folder's place keeps the programs from filling it again.
    ASSERT_TRUE(QDir(templates).removeRecursively());
    Write(QStringLiteral("station/HTMLDocs"), "");
    const Outcome outcome = Print({Prize, Output, QStringLiteral("-")});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_TRUE(outcome.Problems.contains("tolva: The station has no page templates for prizes. They belong into "))
        << outcome.Problems.constData();
    EXPECT_TRUE(outcome.Problems.contains("; their names begin with \"Prize-\".\n"));
}

TEST_F(PrizePrintTest, AFileThatExistsIsReplacedOnlyWhenAskedFor)
{
    const QString file = Write(QStringLiteral("out.html"), "precious");
    const Outcome refused = Print({Prize, Output, file});
    EXPECT_EQ(refused.Code, 73);
    EXPECT_TRUE(refused.Problems.endsWith("out.html exists; --force replaces it.\n"));
    EXPECT_EQ(Read(file), "precious");
    Expect("prize", {QStringLiteral("print"), Prize, Output, file, QStringLiteral("--force")});
    EXPECT_TRUE(Read(file).contains("<h1>Hamper</h1>"));
}

TEST_F(PrizePrintTest, APrizeThatIsNotThereIsSaidAndNothingIsWritten)
{
    const QString file = Path(QStringLiteral("out.html"));
    const Outcome outcome = Print({QStringLiteral("4711"), Output, file});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_TRUE(outcome.Problems.startsWith("tolva: There is no prize 4711 in the station in "));
    EXPECT_FALSE(QFile::exists(file));
}

TEST_F(PrizePrintTest, WhatItDoesNotTakeIsToldBeforeTheStationIsOpened)
{
    const auto problemsOf = [this](const QStringList& words) {
        const Outcome outcome = Run(
            QStringList{QStringLiteral("prize"), Path(QStringLiteral("no station")), QStringLiteral("print")} + words);
        EXPECT_EQ(outcome.Code, 64) << words.join(u' ').toStdString();
        return outcome.Problems;
    };
    const QString one = QStringLiteral("1");
    EXPECT_EQ(problemsOf({one}),
              "tolva: -o FILE is missing: the .html or .pdf file to write. See: tolva prize --help\n");
    EXPECT_TRUE(problemsOf({one, Output, QStringLiteral("out.txt")}).contains("must end in .html or .pdf."));
    EXPECT_TRUE(problemsOf({one, Output, QStringLiteral("out.pdf"), QStringLiteral("--paper"), QStringLiteral("A5")})
                    .contains("--paper takes"));
    EXPECT_TRUE(
        problemsOf({one, Output, QStringLiteral("-"), QStringLiteral("--yes")}).contains("does not take --yes"));
    problemsOf({QStringLiteral("one"), Output, QStringLiteral("-")});
    // The other forms write no file.
    const Outcome show = OnStation("prize", {QStringLiteral("show"), Prize, Output, Path(QStringLiteral("out.html"))});
    EXPECT_EQ(show.Code, 64);
    EXPECT_EQ(show.Problems, "tolva: \"prize show\" does not take --output. See: tolva prize --help\n");
}
