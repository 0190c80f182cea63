// SPDX-License-Identifier: Apache-2.0

// Who wrote a message, or whom it goes to, on its row; and which rows came while the user was elsewhere.

#include "messageslist/FilledListTest.h"

namespace
{
const Date SentAt(2026, 11, 20, 9, 5);

class PeopleOnRowsTest : public FilledListTest
{
protected:
    void ShowPeople()
    {
        List->SetShowsPeople([this](const QString& header) {
            Asked.append(header);
            return header.contains(u"ann@") ? QStringLiteral("Ann  Rosewarne") : header;
        });
    }
    QString SecondLine(int row) const { return Grid->TextMatrix(row, 2).section(u'\r', 1); }
    static QString Line(const QString& person)
    {
        return QChar(0x2068) + person + QChar(0x2069) + QStringLiteral(" \u00B7 Fri 20 Nov 09:05");
    }
    qint32 SaveFriday(const QString& subject, const QString& from, const QString& to = {},
                      enTolvaMessageCategories folder = tmcInbox)
    {
        return Save(subject, [&](cMessage& message) {
            message.SetSent(SentAt);
            message.CDOMessage()->SetFrom(from);
            message.CDOMessage()->SetTo(to);
            message.SetCategory(folder);
        });
    }

    QStringList Asked;
};
} // namespace

TEST_F(PeopleOnRowsTest, WithoutAHostThatAsksForThemRowsShowTheDateAlone)
{
    SaveFriday(QStringLiteral("A song"), QStringLiteral("Ann <ann@example.com>"));
    Attach();
    EXPECT_EQ(SecondLine(1), QStringLiteral("Fri 20 Nov 09:05"));
}

TEST_F(PeopleOnRowsTest, TheSecondLineBeginsWithTheSenderAndOfWhatTheStationWroteWithTheRecipient)
{
    SaveFriday(QStringLiteral("A song"), QStringLiteral("=?utf-8?Q?Ann_?= <ann@example.com>"),
               QStringLiteral("Studio <studio@example.org>"));
    SaveFriday(QStringLiteral("Thanks"), QStringLiteral("Studio <studio@example.org>"),
               QStringLiteral("Listener <ann@example.com>"), tmcSent);
    ShowPeople();
    Attach();
    EXPECT_EQ(SecondLine(1), Line(QStringLiteral("Ann Rosewarne")));
    List->SetCategory(tmcSent);
    EXPECT_EQ(SecondLine(1), Line(QStringLiteral("Ann Rosewarne")));
    EXPECT_EQ(Asked.last(), QStringLiteral("Listener <ann@example.com>"));
    List->SetDoubleHeightRows(false);
    EXPECT_EQ(Grid->TextMatrix(1, 2), QStringLiteral("Thanks"));
    EXPECT_EQ(Grid->TextMatrix(1, 3), QStringLiteral("Studio <studio@example.org>")) << "a column of its own";
}

TEST_F(PeopleOnRowsTest, ALongNameIsCutAndTheDateIsNot)
{
    const QString name = QString(300, u'W');
    SaveFriday(QStringLiteral("A song"), name + QStringLiteral(" <w@example.com>"));
    List->SetShowsPeople([&](const QString&) { return name; });
    Attach();
    EXPECT_TRUE(SecondLine(1).endsWith(QStringLiteral(" \u00B7 Fri 20 Nov 09:05"))) << qPrintable(SecondLine(1));
    EXPECT_LT(Grid->fontMetrics().horizontalAdvance(SecondLine(1)), Grid->width());
}

TEST_F(PeopleOnRowsTest, WhatARowShowsIsAskedForOnlyWhenItIsSeen)
{
    for (int i = 0; i < 500; ++i)
        SaveFriday(QString::number(i), QStringLiteral("Ann <ann@example.com>"));
    ShowPeople();
    Attach();
    Grid->grab();
    EXPECT_GT(Asked.size(), 0);
    EXPECT_LT(Asked.size(), 100) << "rows that nobody has seen";
}

TEST_F(PeopleOnRowsTest, RowsThatSomebodyElseStoredAreToldAndThoseOfAFillAreNot)
{
    Save(QStringLiteral("One"));
    QList<qint32> came;
    QObject::connect(List.get(), &uMessagesList::MessagesCame, List.get(),
                     [&](const QList<qint32>& references) { came += references; });
    Attach();
    List->SetCategory(tmcSent);
    List->SetCategory(tmcInbox);
    EXPECT_EQ(came, QList<qint32>());
    const qint32 two = SaveElsewhere(QStringLiteral("Two"));
    const qint32 three = SaveElsewhere(QStringLiteral("Three"));
    Tick();
    EXPECT_EQ(came, (QList<qint32>{two, three}));
    Tick();
    EXPECT_EQ(came.size(), 2) << "once";
}

TEST_F(PeopleOnRowsTest, AHostMayDestroyTheListWhenItIsToldOfNewRows)
{
    Save(QStringLiteral("One"));
    Attach();
    QObject::connect(List.get(), &uMessagesList::MessagesCame, List.get(), [this] { List.reset(); });
    SaveElsewhere(QStringLiteral("Two"));
    List->SetAutoUpdateInterval(1);
    EXPECT_TRUE(QTest::qWaitFor([this] { return List == nullptr; }, 20'000));
    List = std::make_unique<uMessagesList>(); // which the fixture closes
}
