// SPDX-License-Identifier: Apache-2.0

// What the user is told of a run-time error.

#include "common/DebugLog.h"
#include "common/GeneralHelper.h"
#include "common/dialogs/DialogUserInterface.h"
#include "common/dialogs/RunTimeErrorText.h"
#include "controls/support/WhenShown.h"

#include <QDir>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace
{
const dao::Error Locked(dao::errLocked, QStringLiteral("Couldn't update; currently locked."));

class MeetingUserInterface final : public DialogUserInterface
{
public:
    QList<int> Met;

protected:
    bool HandleRunTimeError(const dao::Error& error) override
    {
        Met.append(error.Number());
        return error.Number() == dao::errLocked;
    }
};
} // namespace

TEST(RunTimeErrorTextTest, EachErrorThatUsersMeetSaysWhatHappenedAndWhatToDo)
{
    const std::pair<int, QString> cases[] = {
        {3260, QStringLiteral("The station's database is locked by another computer.\n\n"
                              "Nothing was changed. Try again in a moment.")},
        {3051, QStringLiteral("The station's database cannot be reached.\n\n"
                              "Check that this computer is connected to the network and that the station's folder is "
                              "there, then try again. If it stays away, tell your technician.")},
        {3049, QStringLiteral("The station's database is damaged.\n\n"
                              "Close it on all computers and tell your technician, who can compact and repair it or "
                              "put the newest backup in its place.")},
        {3075, QStringLiteral("The text to find cannot be used.\n\n"
                              "Text to find cannot hold a double quote, and a [ needs its ].")},
        {3197, QStringLiteral("This was changed on another computer in the meantime.\n\n"
                              "Nothing was stored here, so that the other change is not lost. Look at it again, then "
                              "make your change once more.")},
        {3167, QStringLiteral("This was deleted on another computer in the meantime.\n\n"
                              "Nothing was stored here.")},
        {3026, QStringLiteral("The disk with the station's database is full.\n\n"
                              "Nothing was stored. Make room on that disk, then try again.")}};
    for (const auto& [number, words] : cases)
        EXPECT_EQ(RunTimeErrorText(dao::Error(number, QStringLiteral("words of the store"))),
                  QStringLiteral("%1\n\n(Run-time error %2)").arg(words).arg(number));
}

TEST(RunTimeErrorTextTest, AStationThatIsNotReachableReadsTheSameWhicheverWayItIsMissed)
{
    const auto words = [](int number) {
        const QString text = RunTimeErrorText(dao::Error(number, QString()));
        return text.left(text.indexOf(u'('));
    };
    EXPECT_EQ(words(dao::errNotAValidPath), words(dao::errCannotOpen));
    EXPECT_EQ(words(dao::errFileNotFound), words(dao::errCannotOpen));
}

TEST(RunTimeErrorTextTest, AnyOtherErrorShowsItsDescription)
{
    EXPECT_EQ(RunTimeErrorText(dao::Error(3421, QStringLiteral("100% of %1 is no date."))),
              QStringLiteral("100% of %1 is no date.\n\n(Run-time error 3421)"));
}

class RunTimeErrorTest : public testing::Test
{
protected:
    RunTimeErrorTest()
    {
        DebugLog::SetCurrent(&DebugLog_);
        GeneralHelper::SetDebugPath(Folder_.path());
        GeneralHelper::SetDebugMode(-1);
        UserInterface::SetCurrent(&Ui);
    }
    ~RunTimeErrorTest() override
    {
        UserInterface::SetCurrent(nullptr);
        GeneralHelper::SetDebugMode(0);
        GeneralHelper::SetDebugPath(QString());
        DebugLog::SetCurrent(nullptr);
    }

    QByteArray Log() const
    {
        QByteArray text;
        const QDir folder(Folder_.path());
        for (const QString& name : folder.entryList(QDir::Files)) {
            QFile file(folder.filePath(name));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            text += file.readAll();
        }
        return text;
    }
    static qsizetype Boxes()
    {
        qsizetype count = 0;
        for (const QWidget* widget : QApplication::topLevelWidgets())
            count += qobject_cast<const QMessageBox*>(widget) && widget->isVisible() ? 1 : 0;
        return count;
    }

    DialogUserInterface Ui;

private:
    QTemporaryDir Folder_;
    DebugLog DebugLog_;
};

TEST_F(RunTimeErrorTest, ShowsOneBoxInWordsAndLogsTheError)
{
    const WhenShown<QMessageBox> shown([](QMessageBox& box) {
        EXPECT_EQ(box.text(), RunTimeErrorText(Locked));
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    Ui.RunTimeError(Locked);
    EXPECT_EQ(Log().count("Run-time error '3260' in DAO: Couldn't update; currently locked."), 1) << Log().constData();
}

TEST_F(RunTimeErrorTest, TheSameErrorWhileItsBoxIsUpGoesToTheLogAlone)
{
    const WhenShown<QMessageBox> shown([this](QMessageBox& box) {
        Ui.RunTimeError(Locked);
        Ui.RunTimeError(dao::Error(dao::errLocked, QStringLiteral("once more")));
        EXPECT_EQ(Boxes(), 1);
        QTest::keyClick(&box, Qt::Key_Return);
    });
    Ui.RunTimeError(Locked);
    EXPECT_EQ(Log().count("Run-time error '3260'"), 3) << Log().constData();
}

TEST_F(RunTimeErrorTest, AnotherErrorHasItsOwnBox)
{
    const WhenShown<QMessageBox> shown([this](QMessageBox& first) {
        QTimer::singleShot(0, &first, [this, &first] {
            const WhenShown<QWidget> second([&first](QWidget&) {
                EXPECT_EQ(Boxes(), 2);
                auto* const top = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                ASSERT_NE(top, nullptr);
                EXPECT_NE(top, &first);
                EXPECT_TRUE(top->text().contains(QStringLiteral("disk"))) << qPrintable(top->text());
                QTest::keyClick(top, Qt::Key_Return);
            });
            Ui.RunTimeError(dao::Error(dao::errDiskFull, QString()));
            QTest::keyClick(&first, Qt::Key_Return);
        });
    });
    Ui.RunTimeError(Locked);
}

TEST_F(RunTimeErrorTest, TheSameErrorShowsAgainOnceItsBoxIsClosed)
{
    for (int i = 0; i < 2; ++i) {
        const WhenShown<QMessageBox> shown([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); });
        Ui.RunTimeError(Locked);
    }
}

TEST_F(RunTimeErrorTest, AHostThatMeetsAnErrorItselfGetsNoBox)
{
    MeetingUserInterface meeting;
    UserInterface::SetCurrent(&meeting);
    meeting.RunTimeError(Locked);
    EXPECT_EQ(Boxes(), 0);
    const WhenShown<QMessageBox> shown([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); });
    meeting.RunTimeError(dao::Error(dao::errDiskFull, QString()));
    EXPECT_EQ(meeting.Met, (QList<int>{dao::errLocked, dao::errDiskFull}));
    EXPECT_EQ(Log().count("Run-time error '3260'"), 1);
}
