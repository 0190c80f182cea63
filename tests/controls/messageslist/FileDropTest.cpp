// SPDX-License-Identifier: Apache-2.0

// Mail files from outside that are dropped on the tree.

#include "messageslist/FolderTest.h"

#include <QDir>
#include <QFile>
#include <QUrl>

namespace
{
const QByteArray Mail = "From: Ann <ann@example.com>\r\nTo: studio@example.org\r\nSubject: From outside\r\n"
                        "Date: Sat, 21 Nov 2026 10:00:00 +0000\r\n\r\nHello\xE4\r\n";
}

class FileDropTest : public FolderTest
{
protected:
    void SetUp() override
    {
        OpenStation();
        Attach();
        QObject::connect(List.get(), &uMessagesList::ImportRefused, List.get(),
                         [this](const QString& name) { Refused.append(name); });
        TakeFills();
    }
    QString MakeFile(const QString& name, const QByteArray& content = Mail)
    {
        const QString path = Outside.filePath(name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    QTemporaryDir Outside;
    QStringList Refused;
};

TEST_F(FileDropTest, AMailFileIsCopiedIntoTheFolder)
{
    const auto files = Files({MakeFile(QStringLiteral("a.eml"))});
    EXPECT_EQ(DragOver(*files, tmcSaved), Qt::CopyAction);
    EXPECT_EQ(Tree->DropHighlight(), Key(tmcSaved));
    EXPECT_EQ(Drop(*files, tmcSaved), Qt::CopyAction);
    ASSERT_EQ(StoredMessages(), 1);
    EXPECT_EQ(List->Category(), tmcSaved);
    EXPECT_EQ(SelectedCategory(), tmcSaved);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("From outside")});
    const cMessagePtr stored = Station->GetMessage(1);
    EXPECT_EQ(stored->Category(), tmcSaved);
    EXPECT_EQ(stored->CDOMessage()->Octets(), Mail);
    EXPECT_FALSE(stored->Sent().IsNone());
    EXPECT_TRUE(QFile::exists(Outside.filePath(QStringLiteral("a.eml"))));
}

TEST_F(FileDropTest, OnlyTheFirstMailFileOfSeveralIsTakenIn)
{
    const auto files = Files({MakeFile(QStringLiteral("readme.txt")), MakeFile(QStringLiteral("first.EML")),
                              MakeFile(QStringLiteral("second.eml"), "Subject: Second\r\n\r\n")});
    EXPECT_EQ(DragOver(*files, tmcSaved), Qt::CopyAction);
    EXPECT_EQ(Drop(*files, tmcSaved), Qt::CopyAction);
    EXPECT_EQ(StoredMessages(), 1);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("From outside")});
}

TEST_F(FileDropTest, NamesWithBlanksAndForeignLettersAreRead)
{
    const auto files = Files({MakeFile(QStringLiteral("Grüße vom Şile %41 #1 & more.eml"))});
    EXPECT_EQ(Drop(*files, tmcSaved), Qt::CopyAction);
    EXPECT_EQ(StoredMessages(), 1);
    EXPECT_TRUE(Refused.isEmpty());
}

TEST_F(FileDropTest, AMailFileOnTheFolderOnShowIsSeenAtOnce)
{
    EXPECT_EQ(Drop(*Files({MakeFile(QStringLiteral("a.eml"))}), tmcInbox), Qt::CopyAction);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("From outside")});
}

TEST_F(FileDropTest, TheSameFileTwiceIsTwoMessages)
{
    const auto files = Files({MakeFile(QStringLiteral("a.eml"))});
    Drop(*files, tmcSaved);
    Drop(*files, tmcSent);
    EXPECT_EQ(StoredCategory(1), tmcSaved);
    EXPECT_EQ(StoredCategory(2), tmcSent);
}

TEST_F(FileDropTest, AnotherExtensionKeepsTheProposedEffectAndImportsNothing)
{
    const auto files = Files({MakeFile(QStringLiteral("a.txt")), MakeFile(QStringLiteral("eml"))});
    EXPECT_EQ(DragOver(*files, tmcSaved, Qt::CopyAction), Qt::CopyAction);
    EXPECT_EQ(Tree->DropHighlight(), Key(tmcSaved));
    EXPECT_EQ(DragOver(*files, tmcSaved, Qt::MoveAction), Qt::MoveAction);
    EXPECT_EQ(DragOver(*files, tmcSaved, Qt::LinkAction), Qt::LinkAction);
    EXPECT_EQ(Drop(*files, tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(StoredMessages(), 0);
    EXPECT_EQ(List->Category(), tmcInbox);
    EXPECT_TRUE(Refused.isEmpty());
}

TEST_F(FileDropTest, WithoutTheRightNoFileIsTaken)
{
    Directory.User.Rights = 31 & ~static_cast<int>(DirectoryRight::CanEditMessages);
    const auto files = Files({MakeFile(QStringLiteral("a.eml"))});
    EXPECT_EQ(DragOver(*files, tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(DragOver(*Files({MakeFile(QStringLiteral("a.txt"))}), tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(Drop(*files, tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(StoredMessages(), 0);
}

TEST_F(FileDropTest, ThereIsNoDropBesideTheFolders)
{
    const auto files = Files({MakeFile(QStringLiteral("a.eml"))});
    EXPECT_EQ(DragOver(*files, 0), Qt::IgnoreAction);
    EXPECT_EQ(Drop(*files, 0), Qt::IgnoreAction);
    EXPECT_EQ(StoredMessages(), 0);
}

TEST_F(FileDropTest, WhatIsNoMailIsRefusedAloudAndNothingIsStored)
{
    ASSERT_TRUE(QDir(Outside.path()).mkdir(QStringLiteral("folder.eml")));
    QByteArray picture("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\0\1", 20);
    picture += QByteArray(500, '\0');
    const QStringList paths = {
        Outside.filePath(QStringLiteral("folder.eml")), MakeFile(QStringLiteral("empty.eml"), {}),
        MakeFile(QStringLiteral("picture.eml"), picture), Outside.filePath(QStringLiteral("vanished.eml"))};
    QStringList expected;
    for (const QString& path : paths) {
        List->SetCategory(tmcInbox);
        EXPECT_EQ(Drop(*Files({path}), tmcSaved), Qt::CopyAction);
        expected.append(path);
        EXPECT_EQ(Refused, expected);
        EXPECT_EQ(List->Category(), tmcSaved) << "the folder is shown all the same";
    }
    EXPECT_EQ(StoredMessages(), 0);
}

TEST_F(FileDropTest, ARefusedFileEndsTheDropThoughAGoodOneFollows)
{
    const auto files = Files({MakeFile(QStringLiteral("empty.eml"), {}), MakeFile(QStringLiteral("good.eml"))});
    EXPECT_EQ(Drop(*files, tmcSaved), Qt::CopyAction);
    EXPECT_EQ(Refused.size(), 1);
    EXPECT_EQ(StoredMessages(), 0);
}

TEST_F(FileDropTest, ATextBesideTheFilesDecidesOnlyWhenItIsOurs)
{
    const auto both = Files({MakeFile(QStringLiteral("a.eml"))});
    both->setText(QStringLiteral("file:///somewhere/a.eml"));
    EXPECT_EQ(DragOver(*both, tmcSaved), Qt::CopyAction);
    EXPECT_EQ(Drop(*both, tmcSaved), Qt::CopyAction);
    EXPECT_EQ(StoredMessages(), 1);
    both->setText(QStringLiteral("!kvSomething else"));
    EXPECT_EQ(DragOver(*both, tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(Drop(*both, tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(StoredMessages(), 1);
    both->setText(QStringLiteral("!KVMessageCategory Reference=\"99\""));
    EXPECT_EQ(Drop(*both, tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(StoredMessages(), 1);
}

TEST_F(FileDropTest, ALinkToAPageIsNoFile)
{
    QMimeData link;
    link.setUrls({QUrl(QStringLiteral("https://example.com/letter.eml"))});
    EXPECT_EQ(DragOver(link, tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(Tree->DropHighlight(), QString());
    EXPECT_EQ(Drop(link, tmcSaved), Qt::IgnoreAction);
    EXPECT_EQ(StoredMessages(), 0);
}
