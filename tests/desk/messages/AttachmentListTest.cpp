// SPDX-License-Identifier: Apache-2.0
#include "messages/AttachmentList.h"

#include "DeskTest.h"
#include "support/ScriptedFileDialog.h"
#include "window/FileChoice.h"

#include <QDir>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

namespace
{
class AttachmentListTest : public DeskTest
{
protected:
    void SetUp() override
    {
        Mail_ = std::make_shared<cMessage>();
        const auto mail = std::make_shared<cdo::Message>(QByteArray("From: a@b.org\r\nSubject: x\r\n\r\nText"));
        mail->AddAttachment(QStringLiteral("../evil\u202Egpj.exe"), "application/octet-stream", "MZ");
        mail->AddAttachment(QStringLiteral("photo.png"), "image/png", QByteArray(3000, 'p'));
        mail->AddAttachment(QStringLiteral("photo.png"), "image/png", "other");
        Mail_->SetCDOMessage(mail);
        Files_.SetMessage(Mail_);
        Window_.resize(500, 300);
        Files_.setParent(&Window_);
        Window_.show();
        Files_.show();
    }
    void TearDown() override
    {
        FileChoice::SetFolderChooser({});
        Files_.setParent(nullptr);
        Files_.hide();
        Window_.close();
    }
    QTreeWidget* List() const { return Files_.findChild<QTreeWidget*>(QStringLiteral("attachmentsList")); }
    void Click(const char* name) const
    {
        QTest::mouseClick(Files_.findChild<QPushButton*>(QString::fromLatin1(name)), Qt::LeftButton);
    }

    cMessagePtr Mail_;
    QWidget Window_;
    AttachmentList Files_;
};

/// While it is open something happens; then the user chooses this file.
class BusyDialog final : public FileDialog
{
public:
    BusyDialog(QString path, std::function<void()> meanwhile) : Path_(std::move(path)), Meanwhile_(std::move(meanwhile))
    {
    }
    void ShowOpen() override { ADD_FAILURE() << "nothing is to be opened"; }
    void ShowSave() override
    {
        Meanwhile_();
        Filename = Path_;
        Filenames = {Path_};
    }

private:
    QString Path_;
    std::function<void()> Meanwhile_;
};
} // namespace

TEST_F(AttachmentListTest, FilesAreListedWithCleanedNamesSizesAndKinds)
{
    ASSERT_EQ(List()->topLevelItemCount(), 3);
    EXPECT_EQ(List()->topLevelItem(0)->text(0), QStringLiteral("evilgpj.exe"));
    EXPECT_EQ(List()->topLevelItem(0)->text(1), QStringLiteral("2 bytes"));
    EXPECT_EQ(List()->topLevelItem(1)->text(1), QStringLiteral("2.9 kB"));
    EXPECT_EQ(List()->topLevelItem(1)->text(2), QStringLiteral("PNG image"));
}

TEST_F(AttachmentListTest, ANarrowListKeepsNamesAndSizes)
{
    Files_.resize(600, 120);
    EXPECT_FALSE(List()->isColumnHidden(2));
    Files_.resize(260, 120);
    EXPECT_TRUE(List()->isColumnHidden(2));
    EXPECT_FALSE(List()->isColumnHidden(1));
    Files_.resize(600, 120);
    EXPECT_FALSE(List()->isColumnHidden(2));
}

TEST_F(AttachmentListTest, ItHidesWhereThereIsNothingToSave)
{
    EXPECT_TRUE(Files_.isVisible());
    const auto plain = std::make_shared<cMessage>();
    plain->SetCDOMessage(std::make_shared<cdo::Message>(QByteArray("From: a@b.org\r\n\r\nText")));
    Files_.SetMessage(plain);
    EXPECT_TRUE(Files_.isHidden());
    Files_.SetMessage(nullptr);
    EXPECT_TRUE(Files_.isHidden());
}

TEST_F(AttachmentListTest, SaveAsProposesTheCleanedNameAndWritesTheOctets)
{
    ScriptedFileDialog dialog;
    const QString target = Path(QStringLiteral("saved.exe"));
    dialog.ExpectSave(target);
    QSignalSpy saved(&Files_, &AttachmentList::Saved);
    Click("attachmentSaveAs");
    ASSERT_EQ(dialog.Requests().size(), 1);
    EXPECT_EQ(dialog.Requests().first().Filename, QStringLiteral("evilgpj.exe"));
    EXPECT_EQ(Read(target), QByteArray("MZ"));
    EXPECT_FALSE(QFileInfo(target).isExecutable());
    EXPECT_EQ(saved.size(), 1);
}

TEST_F(AttachmentListTest, EnterSavesTheSelectedFile)
{
    ScriptedFileDialog dialog;
    const QString target = Path(QStringLiteral("p.png"));
    dialog.ExpectSave(target);
    QTest::keyClick(List(), Qt::Key_Return);
    EXPECT_EQ(Read(target), QByteArray("MZ"));
}

TEST_F(AttachmentListTest, WhatIsSavedIsOfTheMailThatTheDialogCameUpForThoughAnotherIsListedMeanwhile)
{
    const QString target = Path(QStringLiteral("saved"));
    const FileDialog::Factory before = FileDialog::SetFactory([&] {
        return std::make_unique<BusyDialog>(target, [&] {
            const auto other = std::make_shared<cMessage>();
            const auto mail = std::make_shared<cdo::Message>(QByteArray("From: a@b.org\r\nSubject: y\r\n\r\nText"));
            mail->AddAttachment(QStringLiteral("other.bin"), "application/octet-stream", "another mail's");
            other->SetCDOMessage(mail);
            Files_.SetMessage(other);
        });
    });
    Click("attachmentSaveAs");
    FileDialog::SetFactory(before);
    EXPECT_EQ(Read(target), QByteArray("MZ"));
}

TEST_F(AttachmentListTest, ACancelledDialogSavesNothing)
{
    ScriptedFileDialog dialog;
    dialog.ExpectSaveCancelled();
    QSignalSpy saved(&Files_, &AttachmentList::Saved);
    Click("attachmentSaveAs");
    EXPECT_EQ(saved.size(), 0);
}

TEST_F(AttachmentListTest, AFileThatCannotBeWrittenIsToldInWords)
{
    ScriptedFileDialog dialog;
    dialog.ExpectSave(QStringLiteral("/nonexistent/a.bin"));
    Ui.ExpectWarning(QStringLiteral("The attachment could not be saved as /nonexistent/a.bin: there is no such file "
                                    "or folder."));
    Click("attachmentSaveAs");
}

TEST_F(AttachmentListTest, SaveAllGivesEveryFileANameOfItsOwn)
{
    const QString folder = Path(QStringLiteral("all"));
    ASSERT_TRUE(QDir().mkpath(folder));
    FileChoice::SetFolderChooser([&](const QString&) { return folder; });
    Click("attachmentSaveAll");
    EXPECT_EQ(
        QDir(folder).entryList(QDir::Files),
        (QStringList{QStringLiteral("evilgpj.exe"), QStringLiteral("photo (2).png"), QStringLiteral("photo.png")}));
    EXPECT_EQ(Read(folder + QStringLiteral("/photo (2).png")), QByteArray("other"));
}

TEST_F(AttachmentListTest, SaveAllSaysHowManyCouldBeSaved)
{
    FileChoice::SetFolderChooser([](const QString&) { return QStringLiteral("/nonexistent"); });
    Ui.ExpectWarning(QStringLiteral("0 of 3 attachments could be saved in /nonexistent: there is no such file or "
                                    "folder."));
    Click("attachmentSaveAll");
}
