// SPDX-License-Identifier: Apache-2.0

// What a drag carries, and how a drag is run.

#include "platform/widgets/DragData.h"

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>
#include <QWidget>

#include <gtest/gtest.h>

namespace
{
const QString UriList = QStringLiteral("text/uri-list");
}

TEST(DragDataTest, ATextIsThereAsTextAlone)
{
    DragData data;
    data.SetText(QStringLiteral("!KVMessage Reference=\"5\""));
    EXPECT_EQ(data.text(), QStringLiteral("!KVMessage Reference=\"5\""));
    EXPECT_EQ(data.formats(), QStringList{QStringLiteral("text/plain")});
    EXPECT_FALSE(DragData::HasFiles(data));
    EXPECT_EQ(DragData::Files(data), QStringList());
}

TEST(DragDataTest, PromisedFilesAreAnnouncedAndWrittenOnlyWhenTheyAreAskedFor)
{
    int asked = 0;
    const QStringList paths = {QStringLiteral("/tmp/a b.eml"), QStringLiteral("/tmp/Grüße #1.eml")};
    DragData data;
    data.PromiseFiles([&] {
        ++asked;
        return paths;
    });
    EXPECT_TRUE(data.hasFormat(UriList));
    EXPECT_TRUE(data.hasUrls());
    EXPECT_TRUE(data.formats().contains(UriList));
    EXPECT_TRUE(DragData::HasFiles(data));
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(DragData::Files(data), paths);
    EXPECT_EQ(asked, 1);
    // Asked anew each time: another target may come.
    EXPECT_EQ(data.data(UriList), QByteArray("file:///tmp/a%20b.eml\r\nfile:///tmp/Gr%C3%BC%C3%9Fe%20%231.eml\r\n"));
    EXPECT_EQ(asked, 2);
}

TEST(DragDataTest, ATextBesideAPromiseIsReadWithoutAskingForTheFiles)
{
    int asked = 0;
    DragData data;
    data.SetText(QStringLiteral("text"));
    data.PromiseFiles([&] {
        ++asked;
        return QStringList();
    });
    EXPECT_EQ(data.text(), QStringLiteral("text"));
    EXPECT_TRUE(DragData::HasFiles(data));
    EXPECT_EQ(asked, 0);
}

TEST(DragDataTest, APromiseThatCannotBeKeptGivesNoFiles)
{
    DragData data;
    data.PromiseFiles([] { return QStringList(); });
    EXPECT_EQ(DragData::Files(data), QStringList());
    EXPECT_EQ(data.data(UriList), QByteArray());
}

TEST(DragDataTest, ClearingDropsTextAndPromise)
{
    DragData data;
    data.SetText(QStringLiteral("text"));
    data.PromiseFiles([] { return QStringList{QStringLiteral("/tmp/a.eml")}; });
    data.Clear();
    EXPECT_EQ(data.formats(), QStringList());
    EXPECT_FALSE(data.hasText());
    EXPECT_FALSE(DragData::HasFiles(data));
    EXPECT_EQ(DragData::Files(data), QStringList());
}

TEST(DragDataTest, OfSomebodysDataTheLocalFilesAreTaken)
{
    QMimeData data;
    data.setUrls({QUrl(QStringLiteral("https://example.com/a.eml")),
                  QUrl::fromLocalFile(QStringLiteral("/tmp/ä b.eml")), QUrl(QStringLiteral("mailto:ann@example.com"))});
    EXPECT_TRUE(DragData::HasFiles(data));
    EXPECT_EQ(DragData::Files(data), QStringList{QStringLiteral("/tmp/ä b.eml")});
}

TEST(DragDataTest, LinksToPagesAreNoFiles)
{
    QMimeData data;
    data.setUrls({QUrl(QStringLiteral("https://example.com/a.eml"))});
    EXPECT_FALSE(DragData::HasFiles(data));
    EXPECT_EQ(DragData::Files(data), QStringList());
}

TEST(DragRunnerTest, ARunnerTakesThePlaceOfTheDesktop)
{
    QWidget source;
    DragRunner::SetCurrent([&](QWidget& from, DragData* data, Qt::DropActions allowed) {
        EXPECT_EQ(&from, &source);
        EXPECT_EQ(data->text(), QStringLiteral("text"));
        EXPECT_EQ(allowed, Qt::CopyAction | Qt::MoveAction);
        delete data;
        return Qt::CopyAction;
    });
    auto* data = new DragData; // the runner destroys it
    data->SetText(QStringLiteral("text"));
    EXPECT_EQ(DragRunner::Run(source, data, Qt::CopyAction | Qt::MoveAction), Qt::CopyAction);
    DragRunner::SetCurrent({});
}
