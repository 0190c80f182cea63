// SPDX-License-Identifier: Apache-2.0
#include "messages/search/SearchQuestion.h"

#include "support/FixedClock.h"

#include <QElapsedTimer>

#include <gtest/gtest.h>

namespace
{
SearchQuestion Finished(const QString& typed)
{
    return SearchQuestion::Of(typed, SearchQuestion::Reading::Finished);
}

SearchQuestion Typing(const QString& typed)
{
    return SearchQuestion::Of(typed, SearchQuestion::Reading::Typing);
}
} // namespace

TEST(SearchQuestion, PrefixesNarrowAndAllElseIsLookedFor)
{
    const SearchQuestion question = Finished(
        u"lighthouse from:pete to:studio in:inbox is:unread is:sms has:attachment after:2026-03-01 before:2027"_qs);
    EXPECT_EQ(question.Words, SearchWords::Wanted(u"lighthouse"_qs, false));
    EXPECT_EQ(question.Sender, SearchWords::Wanted(u"pete"_qs, false));
    EXPECT_EQ(question.Recipients, SearchWords::Wanted(u"studio"_qs, false));
    EXPECT_EQ(question.Folders, QStringList{u"inbox"_qs});
    EXPECT_EQ(question.IsUnread, true);
    EXPECT_EQ(question.IsSMS, true);
    EXPECT_TRUE(question.HasFiles);
    EXPECT_EQ(question.After, Date(2026, 3, 1));
    EXPECT_EQ(question.Before, Date(2027, 1, 1));
}

TEST(SearchQuestion, WhatHasNoSenseBehindItsColonIsLookedForAsItStands)
{
    for (const char* typed : {"before:lunch", "is:late", "has:been", "from:", "in:", "re:call", "http://x.example/y",
                              "is:unreadable", "after:99999999999999"}) {
        const SearchQuestion question = Finished(QString::fromLatin1(typed));
        EXPECT_EQ(question.Words, SearchWords::Wanted(QString::fromLatin1(typed), false)) << typed;
        EXPECT_FALSE(question.Words.isEmpty()) << typed;
    }
}

TEST(SearchQuestion, NothingThatIsTypedIsSyntax)
{
    for (const char* typed :
         {"\"", "'", "(", "a AND", "NOT NEAR(a b)", "{x} : y", "a* OR ^b", "-a", "a\"b", "--", "%_"}) {
        const SearchQuestion question = Finished(QString::fromLatin1(typed));
        EXPECT_EQ(question.Words, SearchWords::Wanted(QString::fromLatin1(typed), false)) << typed;
    }
}

TEST(SearchQuestion, QuotationMarksBehindAColonKeepBlanks)
{
    const SearchQuestion question = Finished(u"in:\"Deleted Items\" from:“Postcard Pete” old"_qs);
    EXPECT_EQ(question.Folders, QStringList{u"deleteditems"_qs});
    EXPECT_EQ(question.Sender, SearchWords::Wanted(u"Postcard Pete"_qs, false));
    EXPECT_EQ(question.Words, SearchWords::Wanted(u"old"_qs, false));
}

TEST(SearchQuestion, TheWordThatIsBeingTypedMayGoOn)
{
    EXPECT_TRUE(Typing(u"old ligh"_qs).Words.last().first().last().IsPrefix);
    EXPECT_FALSE(Typing(u"old ligh "_qs).Words.last().first().last().IsPrefix);
    EXPECT_FALSE(Typing(u"ligh from:pete"_qs).Words.last().first().last().IsPrefix);
    EXPECT_TRUE(Typing(u"ligh from:pe"_qs).Sender.last().first().last().IsPrefix);
    EXPECT_FALSE(Finished(u"old ligh"_qs).Words.last().first().last().IsPrefix);
}

TEST(SearchQuestion, DaysAreSaidInWordsToo)
{
    const FixedClock clock;
    const QDate today = ClockHelper::CurrentTime().ToDateTime().date();
    EXPECT_EQ(Finished(u"after:today"_qs).After, Date(today.year(), today.month(), today.day()));
    const QDate before = today.addDays(-1);
    EXPECT_EQ(Finished(u"before:Yesterday"_qs).Before, Date(before.year(), before.month(), before.day()));
    EXPECT_EQ(Finished(u"after:2026-11"_qs).After, Date(2026, 11, 1));
}

TEST(SearchQuestion, AHundredKilobytesArePastedWithoutATrace)
{
    QString typed;
    while (typed.size() < 100'000)
        typed += u"from:\"a in:b \\ ' before:( \U0001F3B5 "_qs;
    QElapsedTimer time;
    time.start();
    const SearchQuestion question = Typing(typed);
    EXPECT_TRUE(question.IsCut);
    EXPECT_LE(question.Words.size(), 32);
    EXPECT_LT(time.elapsed(), 1000);
    EXPECT_TRUE(Typing(QString(100'000, u'"')).IsEmpty());
}
