// SPDX-License-Identifier: Apache-2.0

// Mails that are as large as no mail should be, selected in the window: it answers all the while.

#include "LongestGap.h"
#include "WindowTest.h"
#include "messages/PreviewPane.h"
#include "platform/widgets/FlexGrid.h"

#include <QLabel>
#include <QTextBrowser>
#include <QTreeWidget>

namespace
{
constexpr int FiftyMegabytes = 50'000'000;
/// A tenth of a second is what is wanted; slow machines get more.
constexpr std::chrono::milliseconds LongestWork(250);
constexpr std::chrono::milliseconds LongestMarking(750);
constexpr qint64 LongestWait = 2000;

class LargeMailTest : public WindowTest
{
protected:
    static QByteArray Repeated(const QByteArray& words) { return words.repeated(FiftyMegabytes / words.size()); }
    static QByteArray WithAttachments(int count)
    {
        QByteArray mail = "From: a@example.org\r\nSubject: Files\r\nMIME-Version: 1.0\r\n"
                          "Content-Type: multipart/mixed; boundary=xx\r\n\r\n--xx\r\n\r\nthe text\r\n";
        for (int i = 0; i < count; ++i) {
            mail += "--xx\r\nContent-Type: application/octet-stream\r\nContent-Disposition: attachment; filename=f" +
                    QByteArray::number(i) + ".bin\r\n\r\ncontent " + QByteArray::number(i) + "\r\n";
        }
        return mail + "--xx--\r\n";
    }
    /// Files the mail, selects it as the user does, and waits until it is on show.
    void Show(const QByteArray& mail)
    {
        const qint32 small = FileMail(Mail("Small"));
        const qint32 large = FileMail(mail);
        OpenWindow();
        auto& grid = *Window->List().findChild<FlexGrid*>(QStringLiteral("grdMessages"));
        Pane = Window->findChild<PreviewPane*>(QStringLiteral("preview"));
        const auto isOnShow = [this](qint32 reference) {
            return Pane->Message() && Pane->Message()->Reference() == reference && Pane->IsLoaded();
        };
        grid.setFocus();
        QTest::keyClick(&grid, Qt::Key_End, Qt::ControlModifier);
        if (!WaitUntil([&] { return isOnShow(small); }, 1000)) {
            QTest::keyClick(&grid, Qt::Key_Up);
            ASSERT_TRUE(WaitUntil([&] { return isOnShow(small); }));
        }
        const bool isLast = grid.Row() == grid.Rows() - 1;
        LongestGap gap;
        QTest::keyClick(&grid, isLast ? Qt::Key_Up : Qt::Key_Down);
        ASSERT_TRUE(WaitUntil([&] { return isOnShow(large); }, 60'000));
        Window->grab();
        QCoreApplication::processEvents();
        gap.Take();
        RecordProperty("LongestGapInMilliseconds", static_cast<int>(gap.Passed));
        RecordProperty("LongestWorkInMilliseconds", static_cast<int>(gap.Worked.count()));
        EXPECT_LT(gap.Worked, LongestWork);
        EXPECT_LT(gap.Passed, LongestWait) << "it waits for something";
        if (HasFatalFailure())
            return;

        // Some time later it is marked as read, which writes its row: the pointer says so.
        bool wasBusy = false;
        QObject::connect(&Window->Station().Database(), &cTolvaDatabase::MessageSaved, Window.get(),
                         [this, &wasBusy] { wasBusy = Ui.IsBusy(); });
        LongestGap marking;
        ASSERT_TRUE(WaitUntil([&] { return FlagsOf(large) == mfRead; }, 60'000));
        marking.Take();
        RecordProperty("MarkingWorkInMilliseconds", static_cast<int>(marking.Worked.count()));
        EXPECT_LT(marking.Worked, LongestMarking);
        EXPECT_TRUE(wasBusy);
    }
    qint32 FlagsOf(qint32 reference)
    {
        const auto row = Station.Database().OpenMessageRows({QStringLiteral("Flags")},
                                                            QStringLiteral("[Reference]=%1").arg(reference));
        return row->Collect(QStringLiteral("Flags")).toInt();
    }
    QString Text() const { return Pane->findChild<QTextBrowser*>()->toPlainText(); }
    QString Notice() const { return Pane->findChild<QLabel*>(QStringLiteral("lblNotice"))->text(); }

    PreviewPane* Pane = nullptr;
};

} // namespace

TEST_F(LargeMailTest, ATextOfFiftyMegabytesInOneLineNeverHoldsTheWindow)
{
    Show("From: a@example.org\r\nSubject: Text\r\n\r\n" + Repeated("some words ") + "\r\n");
    EXPECT_TRUE(Text().startsWith(QStringLiteral("some words")));
    EXPECT_TRUE(Notice().contains(QStringLiteral("very long (more than"))) << Notice().toStdString();
}

TEST_F(LargeMailTest, APageOfFiftyMegabytesNeverHoldsTheWindow)
{
    Show("From: a@example.org\r\nSubject: Page\r\nContent-Type: text/html\r\n\r\n" +
         Repeated("<p>some <b>words</b> and <a href=\"https://example.org\">a link</a></p>\r\n"));
    EXPECT_TRUE(Text().startsWith(QStringLiteral("some words")));
    EXPECT_TRUE(Notice().contains(QStringLiteral("very long (more than"))) << Notice().toStdString();
}

TEST_F(LargeMailTest, ASubjectOfFiftyMegabytesNeverHoldsTheWindow)
{
    Show("From: a@example.org\r\nSubject: " + Repeated("some words ") + "\r\n\r\nthe text\r\n");
    EXPECT_EQ(Text().trimmed(), QStringLiteral("the text"));
}

TEST_F(LargeMailTest, AHundredThousandAttachmentsNeverHoldTheWindowAndTheFirstAreListed)
{
    Show(WithAttachments(100'000));
    EXPECT_EQ(Text().trimmed(), QStringLiteral("the text"));
    EXPECT_EQ(Notice(), QString()) << "the text is whole";
    const auto* list = Pane->findChild<QTreeWidget*>(QStringLiteral("attachmentsList"));
    EXPECT_GE(list->topLevelItemCount(), 400);
    EXPECT_EQ(list->topLevelItem(0)->text(0), QStringLiteral("f0.bin"));
    EXPECT_EQ(
        Pane->findChild<QLabel*>(QStringLiteral("attachmentsCaption"))->text(),
        QStringLiteral("The first %1 of many attachments; \"Save all\" saves them all").arg(list->topLevelItemCount()));
}
