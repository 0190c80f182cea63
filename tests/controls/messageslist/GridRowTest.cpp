// SPDX-License-Identifier: Apache-2.0

// What a message looks like in its row.

#include "messageslist/FilledListTest.h"
#include "platform/widgets/SystemColour.h"
#include "platform/widgets/Twips.h"

#include <QFontMetricsF>

namespace
{
constexpr qint32 Red = 255;
const Date Friday(2026, 11, 20, 9, 5);

void OnFriday(cMessage& message)
{
    message.SetSent(Friday);
}
} // namespace

class MessagesListRowTest : public FilledListTest
{
protected:
    QStringList Cells(int row) const
    {
        QStringList texts;
        for (int column = 0; column < Grid->Cols(); ++column)
            texts.append(Grid->TextMatrix(row, column));
        return texts;
    }
    double GridWidth() const { return Twips::FromPixels(*Grid, Grid->width()); }
};

TEST_F(MessagesListRowTest, TheHeaderNamesSixColumns)
{
    EXPECT_EQ(Grid->Rows(), 1);
    EXPECT_EQ(Cells(0), QStringList({QStringLiteral("Reference"), QString(), QStringLiteral("Subject"),
                                     QStringLiteral("From"), QStringLiteral("Date"), QStringLiteral("DateSerial")}));
    for (int column = 0; column < 6; ++column) {
        EXPECT_EQ(Grid->model()->headerData(column, Qt::Horizontal, Qt::TextAlignmentRole).toInt(),
                  static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter));
    }
}

TEST_F(MessagesListRowTest, ARowHoldsReferenceSubjectSenderAndDate)
{
    const qint32 reference = Save(QStringLiteral("  A song  "), OnFriday);
    Attach();
    EXPECT_EQ(Cells(1), QStringList({QString::number(reference), QString(), QStringLiteral("A song\rFri 20 Nov 09:05"),
                                     QStringLiteral("Ann <ann@example.com>"), QStringLiteral("Fri 20 Nov 09:05"),
                                     Friday.GeneralDate()}));
    List->SetDoubleHeightRows(false);
    EXPECT_EQ(Grid->TextMatrix(1, 2), QStringLiteral("A song"));
    EXPECT_EQ(Grid->TextMatrix(1, 4), QStringLiteral("Fri 20 Nov 09:05"));
}

TEST_F(MessagesListRowTest, TheDateIsTheOneTheListIsSortedBy)
{
    Save(QStringLiteral("A song"), [](cMessage& message) {
        message.SetSent(Friday);
        message.SetReceived(Date(2026, 7, 1, 23, 30));
    });
    Directory.User.Preferences.insert(QStringLiteral("MessagesListSortOrder"), 2);
    Attach();
    EXPECT_EQ(Grid->TextMatrix(1, 4), QStringLiteral("Fri 20 Nov 09:05"));
    Directory.User.SetPreference(QStringLiteral("MessagesListSortOrder"), mlsoReceived);
    EXPECT_EQ(Grid->TextMatrix(1, 4), QStringLiteral("Wed 01 Jul 23:30"));
    EXPECT_EQ(Grid->TextMatrix(1, 2), QStringLiteral("A song\rWed 01 Jul 23:30"));
    EXPECT_EQ(Grid->TextMatrix(1, 5), Date(2026, 7, 1, 23, 30).GeneralDate());
}

TEST_F(MessagesListRowTest, AMessageWithoutDateShowsNoneAndIsNotBold)
{
    Save(QStringLiteral("A song"));
    Attach();
    EXPECT_EQ(Grid->TextMatrix(1, 2), QStringLiteral("A song\r"));
    EXPECT_EQ(Grid->TextMatrix(1, 4), QString());
    EXPECT_EQ(Grid->TextMatrix(1, 5), QString());
    EXPECT_FALSE(Grid->CellFontBold(1, 1));
    EXPECT_FALSE(Grid->CellFontBold(1, 2));
    List->SetDoubleHeightRows(false);
    EXPECT_EQ(Grid->TextMatrix(1, 2), QStringLiteral("A song"));
}

TEST_F(MessagesListRowTest, ARowThatIsUsedAgainKeepsTheDateCellsOfTheMessageBefore)
{
    Save(QStringLiteral("Dated"), OnFriday);
    Save(QStringLiteral("Undated"));
    Attach();
    ASSERT_EQ(Subjects().first(), QStringLiteral("Dated"));
    Find(QStringLiteral("undated"));
    EXPECT_EQ(Grid->TextMatrix(1, 2), QStringLiteral("Undated\r"));
    EXPECT_EQ(Grid->TextMatrix(1, 4), QStringLiteral("Fri 20 Nov 09:05"));
    EXPECT_EQ(Grid->TextMatrix(1, 5), Friday.GeneralDate());
}

TEST_F(MessagesListRowTest, UnreadIsBoldInTheHeadAndSubjectCellsOnly)
{
    Save(QStringLiteral("Unread"), OnFriday);
    Save(QStringLiteral("Read"), [](cMessage& message) {
        OnFriday(message);
        message.SetFlags(mfRead | mfAutomatic);
    });
    Save(QStringLiteral("Automatic"), [](cMessage& message) {
        OnFriday(message);
        message.SetFlags(mfAutomatic);
    });
    Attach();
    EXPECT_FALSE(Grid->CellFontBold(1, 0));
    EXPECT_TRUE(Grid->CellFontBold(1, 1));
    EXPECT_TRUE(Grid->CellFontBold(1, 2));
    EXPECT_FALSE(Grid->CellFontBold(1, 3));
    EXPECT_FALSE(Grid->CellFontBold(2, 1));
    EXPECT_FALSE(Grid->CellFontBold(2, 2));
    EXPECT_TRUE(Grid->CellFontBold(3, 2));
}

TEST_F(MessagesListRowTest, UrgentIsRedInTheHeadAndSubjectCellsAlsoWhenRead)
{
    Save(QStringLiteral("Urgent"), [](cMessage& message) {
        OnFriday(message);
        message.SetPriority(1);
        message.SetFlags(mfRead);
    });
    for (const int priority : {0, 2, -1})
        Save(QStringLiteral("Other"), [&](cMessage& message) { message.SetPriority(priority); });
    Attach();
    EXPECT_EQ(Grid->CellBackColour(1, 1), Red);
    EXPECT_EQ(Grid->CellBackColour(1, 2), Red);
    EXPECT_EQ(Grid->CellBackColour(1, 3), SystemColour::WindowBackground);
    EXPECT_FALSE(Grid->CellFontBold(1, 2));
    for (int row = 2; row <= 4; ++row)
        EXPECT_EQ(Grid->CellBackColour(row, 2), SystemColour::WindowBackground);
}

TEST_F(MessagesListRowTest, HighlightWordsColourTheSubjectAlone)
{
    Save(QStringLiteral("Marked"), [](cMessage& message) {
        OnFriday(message);
        message.SetHasHighlightWords(true);
    });
    Save(QStringLiteral("Plain"));
    Station->MessageHighlightFont().Colour = 0x00A000;
    Station->MessageHighlightFont().Bold = false;
    Attach();
    EXPECT_EQ(Grid->CellForeColour(1, 2), 0x00A000);
    EXPECT_EQ(Grid->CellForeColour(1, 1), SystemColour::WindowText);
    EXPECT_TRUE(Grid->CellFontBold(1, 2));
    EXPECT_EQ(Grid->CellForeColour(2, 2), SystemColour::WindowText);
}

TEST_F(MessagesListRowTest, APersonalMessageHasTheHeadAndNoTextBesideIt)
{
    Save(QStringLiteral("Mine"), [](cMessage& message) { message.SetPersonalToContact(7); });
    Save(QStringLiteral("Everybody's"));
    Attach();
    EXPECT_TRUE(Grid->HasCellPicture(1, 1));
    EXPECT_FALSE(Grid->HasCellPicture(1, 2));
    EXPECT_FALSE(Grid->HasCellPicture(2, 1));
    EXPECT_EQ(Grid->TextMatrix(1, 1), QString());
    // A row that is used again loses the head.
    Find(QStringLiteral("everybody"));
    EXPECT_FALSE(Grid->HasCellPicture(1, 1));
}

TEST_F(MessagesListRowTest, ALongSubjectIsShortenedToFitItsColumn)
{
    Save(QStringLiteral("Wonderful ").repeated(40), OnFriday);
    Attach();
    for (const bool twoLines : {true, false}) {
        List->SetDoubleHeightRows(twoLines);
        const QString shown = Subjects().first();
        EXPECT_TRUE(shown.endsWith(QChar(0x2026)));
        EXPECT_TRUE(shown.startsWith(QStringLiteral("Wonderful ")));
        QFont font = Child<QWidget>("picMessages").font();
        EXPECT_LE(QFontMetricsF(font).horizontalAdvance(shown), Twips::ToPixels(*Grid, Grid->ColWidth(2) - 120));
        font.setBold(true);
        EXPECT_LE(QFontMetricsF(font).horizontalAdvance(shown), Twips::ToPixels(*Grid, Grid->ColWidth(2) - 120));
    }
}

TEST_F(MessagesListRowTest, ASubjectWithLineBreaksStaysOnItsLine)
{
    Save(QString(), [](cMessage& message) {
        OnFriday(message);
        message.CDOMessage()->SetOctets("From: Ann <ann@example.com>\r\n"
                                        "Subject: =?utf-8?Q?One=0D=0ATwo?= and\r\n three\r\n\r\nText\r\n");
    });
    Attach();
    const QString text = Grid->TextMatrix(1, 2);
    EXPECT_EQ(text.count(QLatin1Char('\r')), 1);
    EXPECT_EQ(text.count(QLatin1Char('\n')), 0);
    EXPECT_TRUE(text.endsWith(QStringLiteral(" and three\rFri 20 Nov 09:05"))) << qPrintable(text);
}

TEST_F(MessagesListRowTest, AMailWithNothingInItHasARowToo)
{
    const auto message = std::make_shared<cMessage>();
    OpenStation();
    message->SetCategory(tmcInbox);
    ASSERT_TRUE(Station->SaveMessage(message));
    Attach();
    EXPECT_EQ(Cells(1), QStringList({QString::number(message->Reference()), QString(), QStringLiteral("\r"), QString(),
                                     QString(), QString()}));
    EXPECT_EQ(List->SelectedReference(), message->Reference());
}

TEST_F(MessagesListRowTest, TwoLinesMakeTheSubjectWideAndHideTheSender)
{
    Attach();
    EXPECT_EQ(Grid->ColWidth(0), 0);
    EXPECT_EQ(Grid->ColWidth(1), 300);
    EXPECT_EQ(Grid->ColWidth(2), GridWidth() - 90 - 300);
    EXPECT_EQ(Grid->ColWidth(3), 0);
    EXPECT_TRUE(Grid->wordWrap());
}

TEST_F(MessagesListRowTest, OneLineHasRoomForTheSender)
{
    Attach();
    List->SetDoubleHeightRows(false);
    EXPECT_EQ(Grid->ColWidth(0), 0);
    EXPECT_EQ(Grid->ColWidth(1), 300);
    EXPECT_EQ(Grid->ColWidth(2), 2050);
    EXPECT_EQ(Grid->ColWidth(3), GridWidth() - 90 - 300 - 2050);
    EXPECT_FALSE(Grid->wordWrap());
    List->resize(1, 1);
    EXPECT_EQ(Grid->ColWidth(3), 0);
    EXPECT_EQ(Grid->ColWidth(2), 2050);
}

TEST_F(MessagesListRowTest, TheColumnsFollowTheWidthOfTheGrid)
{
    Attach();
    const double before = Grid->ColWidth(2);
    List->resize(1200, 600);
    EXPECT_GT(Grid->ColWidth(2), before);
    EXPECT_EQ(Grid->ColWidth(2), GridWidth() - 90 - 300);
}

TEST_F(MessagesListRowTest, RowsHaveTheHeightOfTheHeaderAndRoomForTheirLines)
{
    SaveMany(3);
    Attach();
    const double line = Twips::FromPixels(*Grid, Grid->fontMetrics().lineSpacing());
    EXPECT_EQ(Grid->RowHeight(1), Grid->RowHeight(0));
    EXPECT_GE(Grid->RowHeight(1), 2 * line);
    List->SetDoubleHeightRows(false);
    EXPECT_LT(Grid->RowHeight(1), 2 * line);
    EXPECT_GE(Grid->RowHeight(1), line);
    EXPECT_EQ(Grid->RowHeight(3), Grid->RowHeight(1));
}

TEST_F(MessagesListRowTest, MarkingRestylesTheRowAndKeepsTheSelection)
{
    Save(QStringLiteral("One"), OnFriday);
    const qint32 two = Save(QStringLiteral("Two"), OnFriday);
    Attach();
    ClickRow(2);
    TakeSelections();
    Entry("mnuMarkAsRead").trigger();
    EXPECT_FALSE(Grid->CellFontBold(2, 1));
    EXPECT_FALSE(Grid->CellFontBold(2, 2));
    EXPECT_TRUE(Grid->CellFontBold(1, 2));
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(List->SelectedReference(), two);
    EXPECT_EQ(Grid->RowAccessibleText(2), QString());
    EXPECT_TRUE(Grid->Redraw());
    Entry("mnuMarkasUnread").trigger();
    EXPECT_TRUE(Grid->CellFontBold(2, 2));
    EXPECT_EQ(Grid->RowAccessibleText(2), QStringLiteral("unread"));
    EXPECT_EQ(TakeFills(), 0);
}

TEST_F(MessagesListRowTest, WhatTheEyeSeesIsSpokenToo)
{
    Save(QStringLiteral("Everything"), [](cMessage& message) {
        OnFriday(message);
        message.SetPriority(1);
        message.SetPersonalToContact(7);
    });
    Save(QStringLiteral("No date"));
    Attach();
    EXPECT_EQ(Grid->RowAccessibleText(1), QStringLiteral("unread, urgent, personal"));
    EXPECT_EQ(Grid->RowAccessibleText(2), QString());
    const QString spoken = Grid->model()->data(Grid->model()->index(0, 2), Qt::AccessibleTextRole).toString();
    EXPECT_TRUE(spoken.contains(QStringLiteral("unread, urgent, personal"))) << qPrintable(spoken);
    EXPECT_TRUE(spoken.contains(QStringLiteral("Everything"))) << qPrintable(spoken);
}
