// SPDX-License-Identifier: Apache-2.0

// Exporting a message to a file.

#include "common/dialogs/RunTimeErrorText.h"
#include "messageslist/ErrorCatcher.h"
#include "messageslist/MessageCommandTest.h"
#include "support/ScriptedFileDialog.h"

#include <QDir>
#include <QFile>

class ExportTest : public MessageCommandTest
{
protected:
    void AttachWith(const QString& subject)
    {
        OpenStation();
        Reference = SaveNew(subject);
        Attach();
    }
    /// What the dialog proposes for a subject; the user cancels.
    QString ProposedFor(const QString& subject)
    {
        SaveNew(subject, tmcSaved);
        List->SetCategory(tmcSaved);
        ScriptedFileDialog dialogs;
        dialogs.ExpectSaveCancelled();
        ChooseForRow(List->NumberItems(), "mnuExportMessage");
        return dialogs.Requests().value(0).Filename;
    }
    QByteArray Read(const QString& path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
    }

    qint32 Reference = 0;
    QTemporaryDir Outside;
};

TEST_F(ExportTest, TheDialogIsSetUpAndTheMessageIsWrittenOctetByOctet)
{
    AttachWith(QStringLiteral("Grüße"));
    const QString chosen = Outside.filePath(QStringLiteral("mein Brief ä.eml"));
    ScriptedFileDialog dialogs;
    dialogs.ExpectSave(chosen);
    ChooseForRow(1, "mnuExportMessage");
    ASSERT_EQ(dialogs.Requests().size(), 1);
    const ScriptedFileDialog::Request& shown = dialogs.Requests().first();
    EXPECT_EQ(shown.Shown, ScriptedFileDialog::Kind::Save);
    EXPECT_EQ(shown.DialogTitle, QStringLiteral("Export Email Message as..."));
    EXPECT_EQ(shown.Filter, QStringLiteral("E-mail File (*.eml)|*.eml|All Files (*.*)|*.*"));
    EXPECT_EQ(shown.FilterIndex, 1);
    EXPECT_EQ(shown.DefaultExt, QStringLiteral("eml"));
    EXPECT_EQ(shown.InitDir, QString());
    EXPECT_EQ(shown.Flags, 2054);
    EXPECT_TRUE(shown.CancelError);
    EXPECT_EQ(shown.Filename, QStringLiteral("Grüße.eml"));
    EXPECT_EQ(Read(chosen), StoredOctets(Reference));
    EXPECT_FALSE(Read(chosen).isEmpty());
}

TEST_F(ExportTest, TheProposedNameIsTheSubjectWithoutWhatNamesMayNotHold)
{
    AttachWith(QStringLiteral("x"));
    EXPECT_EQ(ProposedFor(QStringLiteral("RE: *What?* a\\b/c")), QStringLiteral("RE What abc.eml"));
    EXPECT_EQ(ProposedFor(QStringLiteral(":*?\\/")), QStringLiteral(".eml"));
    EXPECT_EQ(ProposedFor(QString()), QStringLiteral(".eml"));
    EXPECT_EQ(ProposedFor(QStringLiteral("<a> \"b\" |c| .d")), QStringLiteral("<a> \"b\" |c| .d.eml"));
    EXPECT_EQ(ProposedFor(QStringLiteral("../../etc/passwd")), QStringLiteral("....etcpasswd.eml"));
}

TEST_F(ExportTest, CancellingIsSilent)
{
    AttachWith(QStringLiteral("x"));
    ScriptedFileDialog dialogs;
    dialogs.ExpectSaveCancelled();
    ChooseForRow(1, "mnuExportMessage");
    EXPECT_TRUE(Ui.RunTimeErrors().isEmpty());
    EXPECT_TRUE(QDir(Outside.path()).isEmpty());
}

TEST_F(ExportTest, AFileThatIsThereIsReplaced)
{
    AttachWith(QStringLiteral("x"));
    const QString chosen = Outside.filePath(QStringLiteral("a.eml"));
    QFile file(chosen);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(10'000, 'x'));
    file.close();
    ScriptedFileDialog dialogs;
    dialogs.ExpectSave(chosen);
    ChooseForRow(1, "mnuExportMessage");
    EXPECT_EQ(Read(chosen), StoredOctets(Reference));
}

TEST_F(ExportTest, AMissingFolderLeavesNoFileAndNoMessage)
{
    AttachWith(QStringLiteral("x"));
    ScriptedFileDialog dialogs;
    dialogs.ExpectSave(Outside.filePath(QStringLiteral("missing/a.eml")));
    ChooseForRow(1, "mnuExportMessage");
    EXPECT_TRUE(QDir(Outside.path()).isEmpty());
}

TEST_F(ExportTest, APlaceThatCannotBeWrittenIsTold)
{
    AttachWith(QStringLiteral("x"));
    const QString taken = Outside.filePath(QStringLiteral("taken.eml"));
    ASSERT_TRUE(QDir().mkdir(taken));
    const ErrorCatcher errors;
    ScriptedFileDialog dialogs;
    dialogs.ExpectSave(taken);
    ChooseForRow(1, "mnuExportMessage");
    EXPECT_EQ(errors.Numbers(), QList<int>{dao::errDiskError});
    ASSERT_EQ(errors.Descriptions().size(), 1);
    const QString words = RunTimeErrorText(dao::Error(errors.Numbers().first(), errors.Descriptions().first()));
    EXPECT_TRUE(words.startsWith(QStringLiteral("The file %1 could not be written: ").arg(taken))) << qPrintable(words);
    EXPECT_TRUE(words.contains(QStringLiteral("folder"))) << "the reason: " << qPrintable(words);
    EXPECT_FALSE(words.contains(QStringLiteral("network"))) << qPrintable(words);
    EXPECT_EQ(errors.Sources(), QStringList{QStringLiteral("uMessagesList.mnuExportMessage")});
}

TEST_F(ExportTest, WhatIsExportedCanBeDroppedBackIn)
{
    AttachWith(QStringLiteral("Grüße"));
    const QString chosen = Outside.filePath(QStringLiteral("a.eml"));
    ScriptedFileDialog dialogs;
    dialogs.ExpectSave(chosen);
    ChooseForRow(1, "mnuExportMessage");
    EXPECT_EQ(Drop(*Files({chosen}), tmcSaved), Qt::CopyAction);
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("Grüße")});
    EXPECT_EQ(StoredOctets(Reference + 1), StoredOctets(Reference));
}
