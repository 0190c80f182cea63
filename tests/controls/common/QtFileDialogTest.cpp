// SPDX-License-Identifier: Apache-2.0

// The real file dialog.

#include "common/dialogs/QtFileDialog.h"

#include "controls/support/WhenShown.h"
#include "platform/records/Error.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

namespace
{
const QString MailFilter = QStringLiteral("E-mail File (*.eml)|*.eml|All Files (*.*)|*.*");

void Type(QFileDialog& dialog, const QString& name)
{
    auto* const edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    edit->selectAll();
    QTest::keyClicks(edit, name);
    QTest::keyClick(edit, Qt::Key_Return);
}

void Cancel(QFileDialog& dialog)
{
    QTest::keyClick(&dialog, Qt::Key_Escape);
}
} // namespace

class QtFileDialogTest : public testing::Test
{
protected:
    /// The dialog remembers where it was; not in the settings of whoever runs the tests.
    static void SetUpTestSuite()
    {
        static const QTemporaryDir settings;
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    }
    QtFileDialogTest()
    {
        Dialog.Filter = MailFilter;
        Dialog.InitDir = Folder.path();
    }
    QString Write(const QString& name) const
    {
        QFile file(Folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return QDir::toNativeSeparators(file.fileName());
    }
    void Open(std::function<void(QFileDialog&)> user)
    {
        const WhenShown<QFileDialog> shown(std::move(user));
        Dialog.ShowOpen();
    }
    void Save(std::function<void(QFileDialog&)> user)
    {
        const WhenShown<QFileDialog> shown(std::move(user));
        Dialog.ShowSave();
    }
    QString InFolder(const QString& name) const { return QDir::toNativeSeparators(Folder.filePath(name)); }

    QTemporaryDir Folder;
    QtFileDialog Dialog;
};

TEST_F(QtFileDialogTest, PairsOfWordsAndPatternBecomeFilters)
{
    EXPECT_EQ(QtFileDialog::NameFilters(MailFilter),
              (QStringList{QStringLiteral("E-mail File (*.eml)"), QStringLiteral("All Files (*)")}));
    EXPECT_EQ(QtFileDialog::NameFilters(QStringLiteral("Databases|*.MDB")),
              QStringList{QStringLiteral("Databases (*.MDB)")});
    EXPECT_EQ(QtFileDialog::NameFilters(QStringLiteral("Pictures (old)|*.png; *.jpg")),
              QStringList{QStringLiteral("Pictures (old) (*.png *.jpg)")});
    EXPECT_EQ(QtFileDialog::NameFilters(QString()), QStringList());
    EXPECT_EQ(QtFileDialog::NameFilters(QStringLiteral("words without a pattern")), QStringList());
}

TEST_F(QtFileDialogTest, SavingProposesTheNameAndGivesThePathThatWasTyped)
{
    Dialog.DialogTitle = QStringLiteral("Save Message");
    Dialog.Filename = QStringLiteral("A card.eml");
    Dialog.Flags = 2054;
    Save([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Save Message"));
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptSave);
        EXPECT_EQ(dialog.selectedNameFilter(), QStringLiteral("E-mail File (*.eml)"));
        EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(), QStringLiteral("A card.eml"));
        Type(dialog, QStringLiteral("other.eml"));
    });
    EXPECT_EQ(Dialog.Filename, InFolder(QStringLiteral("other.eml")));
    EXPECT_EQ(Dialog.FilterIndex, 1);
    EXPECT_FALSE(QFile::exists(Dialog.Filename));
}

TEST_F(QtFileDialogTest, ANameWithoutAnExtensionGetsTheDefaultOne)
{
    Dialog.DefaultExt = QStringLiteral("eml");
    Save([](QFileDialog& dialog) { Type(dialog, QStringLiteral("card")); });
    EXPECT_EQ(Dialog.Filename, InFolder(QStringLiteral("card.eml")));
    Save([](QFileDialog& dialog) { Type(dialog, QStringLiteral("card.txt")); });
    EXPECT_EQ(Dialog.Filename, InFolder(QStringLiteral("card.txt")));
}

TEST_F(QtFileDialogTest, AFileThatExistsIsAskedAboutOnlyWithTheFlag)
{
    const QString there = Write(QStringLiteral("there.eml"));
    Save([](QFileDialog& dialog) { Type(dialog, QStringLiteral("there.eml")); });
    EXPECT_EQ(Dialog.Filename, there);
    Dialog.Flags = 2054;
    Dialog.Filename.clear();
    std::optional<WhenShown<QMessageBox>> question;
    Save([&](QFileDialog& dialog) {
        question.emplace([&dialog](QMessageBox& box) {
            QTimer::singleShot(0, &dialog, [&dialog] { Cancel(dialog); });
            QTest::mouseClick(box.button(QMessageBox::No), Qt::LeftButton);
        });
        Type(dialog, QStringLiteral("there.eml"));
    });
    EXPECT_EQ(Dialog.Filename, QString());
}

TEST_F(QtFileDialogTest, TheFilterIndexCountsFromOneBothWays)
{
    Dialog.FilterIndex = 2;
    Save([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.selectedNameFilter(), QStringLiteral("All Files (*)"));
        auto* const types = dialog.findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
        QTest::keyClick(types, Qt::Key_Up);
        Type(dialog, QStringLiteral("card.eml"));
    });
    EXPECT_EQ(Dialog.FilterIndex, 1);
    Dialog.FilterIndex = 7;
    Save([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.selectedNameFilter(), QStringLiteral("E-mail File (*.eml)"));
        Cancel(dialog);
    });
}

TEST_F(QtFileDialogTest, CancelLeavesTheNameAndIsAnErrorWhenAskedFor)
{
    Dialog.Filename = QStringLiteral("kept.eml");
    Dialog.FilterIndex = 2;
    Open(Cancel);
    Save(Cancel);
    EXPECT_EQ(Dialog.Filename, QStringLiteral("kept.eml"));
    EXPECT_EQ(Dialog.FilterIndex, 2);
    Dialog.CancelError = true;
    const auto number = [&](auto show) {
        try {
            show();
        } catch (const dao::Error& error) {
            return error.Number();
        }
        return 0;
    };
    EXPECT_EQ(number([&] { Open(Cancel); }), 32755);
    EXPECT_EQ(number([&] { Save(Cancel); }), 32755);
}

TEST_F(QtFileDialogTest, OpeningTakesAFileThatExists)
{
    const QString there = Write(QStringLiteral("Tolva.mdb"));
    Dialog.Filter = QStringLiteral("Databases|*.MDB");
    Dialog.Filename = QStringLiteral("*.MDB");
    Dialog.Flags = 4100;
    Open([](QFileDialog& dialog) {
        EXPECT_EQ(dialog.acceptMode(), QFileDialog::AcceptOpen);
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        EXPECT_EQ(dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->text(), QString());
        Type(dialog, QStringLiteral("Tolva.mdb"));
    });
    EXPECT_EQ(Dialog.Filename, there);
}

TEST_F(QtFileDialogTest, TheFolderOfTheProcessStays)
{
    const QString before = QDir::currentPath();
    Save([](QFileDialog& dialog) { Type(dialog, QStringLiteral("card.eml")); });
    EXPECT_EQ(QDir::currentPath(), before);
}

TEST_F(QtFileDialogTest, InstalledItIsWhatCreateMakes)
{
    const FileDialog::Factory before = FileDialog::SetFactory([] { return std::make_unique<QtFileDialog>(); });
    const auto dialog = FileDialog::Create();
    EXPECT_NE(dynamic_cast<QtFileDialog*>(dialog.get()), nullptr);
    FileDialog::SetFactory(before);
}
