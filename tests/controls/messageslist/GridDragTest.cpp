// SPDX-License-Identifier: Apache-2.0

// Dragging a message out of the grid.

#include "messageslist/FilledListTest.h"
#include "platform/widgets/DragData.h"
#include "platform/widgets/Twips.h"

#include <QDir>
#include <QFile>
#include <QMouseEvent>

class MessagesListDragTest : public FilledListTest
{
protected:
    MessagesListDragTest() : Temporary_(qgetenv("TMPDIR"))
    {
        QDir(Folder.path()).mkdir(QStringLiteral("temporary"));
        qputenv("TMPDIR", QFile::encodeName(TemporaryFolder()));
        DragRunner::SetCurrent([this](QWidget& source, DragData* data, Qt::DropActions allowed) {
            const std::unique_ptr<DragData> owned(data);
            ++Drags;
            Source = &source;
            Allowed = allowed;
            Text = data->text();
            FilesAtStart = TemporaryFiles();
            return Target ? Target(*data) : Qt::IgnoreAction;
        });
    }
    ~MessagesListDragTest() override
    {
        DragRunner::SetCurrent({});
        if (Temporary_.isNull())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", Temporary_);
    }

    QString TemporaryFolder() const { return Folder.filePath(QStringLiteral("temporary")); }
    QStringList TemporaryFiles() const
    {
        return QDir(TemporaryFolder()).entryList(QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    void Press(const QPoint& from) { QTest::mousePress(Grid->viewport(), Qt::LeftButton, {}, from); }
    void Move(const QPoint& to)
    {
        QMouseEvent move(QEvent::MouseMove, QPointF(to), Grid->viewport()->mapToGlobal(QPointF(to)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(Grid->viewport(), &move);
    }
    void Release(const QPoint& at) { QTest::mouseRelease(Grid->viewport(), Qt::LeftButton, {}, at); }
    void DragRow(int row)
    {
        const QPoint from = RowPosition(row);
        Press(from);
        Move(from + QPoint(6, 0));
        Release(from + QPoint(6, 0));
    }

    int Drags = 0;
    QWidget* Source = nullptr;
    Qt::DropActions Allowed;
    QString Text;
    QStringList FilesAtStart;
    /// Where the data is dropped.
    std::function<Qt::DropAction(const DragData&)> Target;

private:
    QByteArray Temporary_;
};

TEST_F(MessagesListDragTest, UpToFivePixelsAreNoDrag)
{
    SaveMany(2);
    Attach();
    const QPoint from = RowPosition(1);
    Press(from);
    for (const QPoint& step : {QPoint(5, 0), QPoint(-5, 0), QPoint(0, 5), QPoint(5, -5)})
        Move(from + step);
    EXPECT_EQ(Drags, 0);
    Move(from + QPoint(6, 0));
    EXPECT_EQ(Drags, 1);
    Move(from + QPoint(20, 0));
    EXPECT_EQ(Drags, 1);
    Release(from);
}

TEST_F(MessagesListDragTest, TheVerticalWayCountsAsWell)
{
    SaveMany(2);
    Attach();
    const QPoint from = RowPosition(1);
    Press(from);
    Move(from + QPoint(0, 6));
    EXPECT_EQ(Drags, 1);
    Release(from);
}

TEST_F(MessagesListDragTest, MovesWithoutAPressOrAfterTheReleaseAreNoDrag)
{
    SaveMany(2);
    Attach();
    const QPoint from = RowPosition(1);
    Move(from + QPoint(50, 0));
    Press(from);
    Release(from);
    Move(from + QPoint(50, 0));
    EXPECT_EQ(Drags, 0);
}

TEST_F(MessagesListDragTest, APressAtTheVeryEdgeStartsNoDrag)
{
    SaveMany(1);
    Attach();
    Press(QPoint(0, RowPosition(1).y()));
    Move(QPoint(50, RowPosition(1).y()));
    EXPECT_EQ(Drags, 0);
    Release(QPoint(50, RowPosition(1).y()));
}

TEST_F(MessagesListDragTest, CarriesTheMessageThatWasPressedAsAText)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    const QPoint from = RowPosition(2);
    Press(from);
    Move(RowPosition(3));
    EXPECT_EQ(Drags, 1);
    EXPECT_EQ(Source, Grid);
    EXPECT_EQ(Text, QStringLiteral("!KVMessage Reference=\"%1\"").arg(references.at(1)));
    EXPECT_EQ(Allowed, Qt::CopyAction | Qt::MoveAction);
    EXPECT_EQ(Grid->Row(), 2);
    EXPECT_EQ(List->SelectedReference(), references.at(1));
    // The button that is still down selects nothing more.
    Move(RowPosition(3));
    EXPECT_EQ(Grid->Row(), 2);
    Release(RowPosition(3));
}

TEST_F(MessagesListDragTest, OneDragAtATimeAndAnotherAfterIt)
{
    SaveMany(2);
    Attach();
    Target = [this](const DragData&) {
        const QPoint from = RowPosition(2);
        Press(from);
        Move(from + QPoint(30, 0));
        return Qt::IgnoreAction;
    };
    DragRow(1);
    EXPECT_EQ(Drags, 1);
    Target = nullptr;
    DragRow(2);
    EXPECT_EQ(Drags, 2);
}

TEST_F(MessagesListDragTest, AnEmptyListDragsNothing)
{
    Attach();
    Press(QPoint(50, 20));
    Move(QPoint(90, 20));
    EXPECT_EQ(Drags, 0);
    Release(QPoint(90, 20));
}

TEST_F(MessagesListDragTest, AMessageThatIsGoneIsNotDraggedAndTheNextOneIs)
{
    const QList<qint32> references = SaveMany(2);
    Attach();
    ASSERT_TRUE(OtherComputer().DeleteMessage(references.at(0), true));
    DragRow(1);
    EXPECT_EQ(Drags, 0);
    DragRow(2);
    EXPECT_EQ(Drags, 1);
}

TEST_F(MessagesListDragTest, WritesThePromisedMailOnlyWhenItIsAskedForAndByteForByte)
{
    const QByteArray octets = "From: Ann <ann@example.com>\nSubject: A song\n\nLine\r\nwith \xE9\r\n";
    const qint32 reference = Save(QString(), [&](cMessage& message) { message.CDOMessage()->SetOctets(octets); });
    Attach();
    QStringList dropped;
    QByteArray content;
    Target = [&](const DragData& data) {
        EXPECT_TRUE(DragData::HasFiles(data));
        EXPECT_TRUE(data.formats().contains(QStringLiteral("text/plain")));
        EXPECT_EQ(TemporaryFiles(), QStringList{});
        dropped = DragData::Files(data);
        QFile file(dropped.value(0));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        content = file.readAll();
        return Qt::CopyAction;
    };
    DragRow(1);
    EXPECT_EQ(FilesAtStart, QStringList{});
    EXPECT_EQ(dropped, QStringList{TemporaryFolder() + QStringLiteral("/A song.eml")});
    EXPECT_EQ(content, Station->GetMessage(reference)->CDOMessage()->Octets());
    EXPECT_TRUE(content.startsWith("From: Ann <ann@example.com>\nSubject: A song\n\nLine\r\nwith \xE9"));
    EXPECT_EQ(TemporaryFiles(), QStringList{QStringLiteral("A song.eml")});
    List->SetTolvaDatabase(nullptr);
}

TEST_F(MessagesListDragTest, WithoutADropOfFilesNoneIsWritten)
{
    SaveMany(1);
    Attach();
    Target = [](const DragData& data) {
        EXPECT_TRUE(data.text().startsWith(QStringLiteral("!KV")));
        return Qt::MoveAction;
    };
    DragRow(1);
    EXPECT_EQ(Drags, 1);
    EXPECT_EQ(TemporaryFiles(), QStringList{});
}

TEST_F(MessagesListDragTest, TheFileGoesWithTheList)
{
    SaveMany(1);
    Attach();
    Target = [](const DragData& data) {
        DragData::Files(data);
        return Qt::CopyAction;
    };
    DragRow(1);
    ASSERT_EQ(TemporaryFiles().size(), 1);
    List->close();
    List.reset();
    EXPECT_EQ(TemporaryFiles(), QStringList{});
    List = std::make_unique<uMessagesList>();
}

TEST_F(MessagesListDragTest, AMessageDeletedBeforeTheDropGivesNoFile)
{
    const QList<qint32> references = SaveMany(1);
    Attach();
    OtherComputer();
    QStringList dropped{QStringLiteral("unset")};
    Target = [&](const DragData& data) {
        EXPECT_TRUE(OtherComputer().DeleteMessage(references.at(0), true));
        dropped = DragData::Files(data);
        return Qt::IgnoreAction;
    };
    DragRow(1);
    EXPECT_EQ(dropped, QStringList{});
}

TEST_F(MessagesListDragTest, TheFileIsTheDraggedMessagesAlsoWhenAnotherIsSelectedMeanwhile)
{
    const QList<qint32> references = SaveMany(3);
    Attach();
    QStringList dropped;
    Target = [&](const DragData& data) {
        Grid->SetRow(3);
        EXPECT_EQ(List->SelectedReference(), references.at(2));
        dropped = DragData::Files(data);
        return Qt::CopyAction;
    };
    DragRow(1);
    EXPECT_EQ(dropped, QStringList{TemporaryFolder() + QStringLiteral("/Message 1.eml")});
}

TEST_F(MessagesListDragTest, AMailWithoutSubjectIsAFileAsWell)
{
    Save(QString());
    Attach();
    QStringList dropped;
    Target = [&](const DragData& data) {
        dropped = DragData::Files(data);
        return Qt::CopyAction;
    };
    DragRow(1);
    EXPECT_EQ(dropped, QStringList{TemporaryFolder() + QStringLiteral("/.eml")});
    EXPECT_TRUE(QFile::exists(dropped.value(0)));
}

TEST_F(MessagesListDragTest, ASubjectThatLeadsOutOfTheFolderGivesNoFileAndAnError)
{
    Attach();
    for (const QString& subject : {QStringLiteral("../outside"), QStringLiteral("in/side"), QStringLiteral("/../top"),
                                   QStringLiteral("a/../../b")}) {
        Save(subject);
        Find(subject);
        ASSERT_EQ(List->NumberItems(), 1) << qPrintable(subject);
        Ui.ExpectRunTimeError(
            3251, QStringLiteral("\"%1\" cannot be the name of a file. Please export the message.").arg(subject));
        QStringList dropped;
        Target = [&](const DragData& data) {
            dropped = DragData::Files(data);
            return Qt::CopyAction;
        };
        DragRow(1);
        EXPECT_EQ(dropped, QStringList{}) << qPrintable(subject);
        EXPECT_EQ(TemporaryFiles(), QStringList{}) << qPrintable(subject);
    }
    EXPECT_EQ(QDir(Folder.path()).entryList({QStringLiteral("*.eml")}), QStringList{});
}
