// SPDX-License-Identifier: Apache-2.0

// What comes while somebody looks elsewhere: the word over the rows, and the sound.

#include "messages/ArrivalCue.h"

#include "window/MainWindowTest.h"

namespace
{
class ArrivalCueTest : public MainWindowTest
{
protected:
    static constexpr int Mails = 80;

    void OpenMany()
    {
        std::vector<cMessagePtr> messages;
        for (int i = 0; i < Mails; ++i) {
            const auto message = std::make_shared<cMessage>();
            message->SetCDOMessage(std::make_shared<cdo::Message>(Mail("Old " + QByteArray::number(i))));
            message->SetCategory(tmcInbox);
            message->SetFlags(mfRead);
            messages.push_back(message);
        }
        Station.Database().SaveMessages(messages, [] { return true; });
        OpenWindow();
        ASSERT_EQ(List().NumberItems(), Mails);
    }
    ArrivalCue& Cue() { return *Window->findChild<ArrivalCue*>(); }
    void FileElsewhere(const QByteArray& subject, const QByteArray& day = "28 Nov 2026")
    {
        const int before = List().NumberItems();
        OtherComputer("file", {Write(QStringLiteral("new.eml"), Mail(subject).replace("20 Nov 2026", day))});
        ASSERT_TRUE(WaitUntil([&] { return List().NumberItems() == before + 1; }, 20'000));
    }
};
} // namespace

TEST_F(ArrivalCueTest, WhatCameAboveWhatOneSeesIsCountedAndAClickGoesThere)
{
    OpenMany();
    Grid().SetTopRow(40);
    FileElsewhere("First");
    FileElsewhere("Second");
    EXPECT_TRUE(Cue().isVisible());
    EXPECT_EQ(Cue().text(), QStringLiteral("2 new, above"));
    EXPECT_EQ(Grid().TopRow(), 42) << "the rows stay under the eyes";
    QTest::mouseClick(&Cue(), Qt::LeftButton);
    EXPECT_LE(Grid().TopRow(), 2);
    Grid().SetTopRow(1);
    EXPECT_FALSE(Cue().isVisible()) << "they were seen";
    Grid().SetTopRow(40);
    EXPECT_FALSE(Cue().isVisible());
}

TEST_F(ArrivalCueTest, WhatComesIntoViewIsNotCountedAndWhatIsOlderIsBelow)
{
    OpenMany();
    FileElsewhere("First");
    EXPECT_FALSE(Cue().isVisible());
    FileElsewhere("Late", "01 Nov 2026");
    EXPECT_EQ(Cue().text(), QStringLiteral("1 new, below"));
    QTest::mouseClick(&Cue(), Qt::LeftButton);
    EXPECT_FALSE(Cue().isVisible());
    EXPECT_GT(Grid().TopRow(), 1);
}

TEST_F(ArrivalCueTest, TheCountEndsWithTheFolder)
{
    OpenMany();
    Grid().SetTopRow(40);
    FileElsewhere("First");
    ASSERT_TRUE(Cue().isVisible());
    List().SetCategory(tmcSaved);
    ASSERT_TRUE(WaitUntil([this] { return List().NumberItems() == 0; }));
    EXPECT_FALSE(Cue().isVisible());
    List().SetCategory(tmcInbox);
    ASSERT_TRUE(WaitUntil([this] { return List().NumberItems() == Mails + 1; }));
    EXPECT_FALSE(Cue().isVisible()) << "the folder was opened since";
}

TEST_F(ArrivalCueTest, ASoundForNewMailInTheInboxIsOffUntilSomebodyWantsItAndIsKept)
{
    OpenMany();
    int sounds = 0;
    QObject::connect(&Cue(), &ArrivalCue::Sounded, &Cue(), [&] { ++sounds; });
    FileElsewhere("First");
    EXPECT_FALSE(WaitUntil([&] { return sounds > 0; }, 300));
    Cue().SoundAction()->trigger();
    FileElsewhere("Second");
    EXPECT_TRUE(WaitUntil([&] { return sounds == 1; }));
    CloseWindow();
    OpenWindow();
    EXPECT_TRUE(Cue().SoundAction()->isChecked());
}

TEST_F(ArrivalCueTest, RowsShowThePersonByTheNameThatTheDirectoryHas)
{
    clsKVContact contact;
    contact.Name = QStringLiteral("Loveday of the harbour");
    contact.Email = QStringLiteral("loveday@example.org");
    Station.Directory().SaveContact(contact);
    FileMail(Mail("One"));
    FileMail(Mail("Two", "x\r\n", "Bob <bob@example.org>"));
    OpenWindow();
    const auto line = [this](int row) { return Grid().TextMatrix(row, 2).section(u'\r', 1); };
    EXPECT_TRUE(line(1).contains(u"Loveday of the harbour")) << qPrintable(line(1));
    EXPECT_TRUE(line(2).contains(u"Bob")) << qPrintable(line(2));
    EXPECT_FALSE(line(2).contains(u'@')) << qPrintable(line(2));
}
