// SPDX-License-Identifier: Apache-2.0

// The page templates beside a database: the refresh at each open, and their names.

#include "common/FileHelper.h"
#include "common/LibraryFolder.h"
#include "core/support/StationTest.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <thread>

#ifndef Q_OS_WIN
#include <unistd.h>
#endif

namespace
{
const QString Caption = QStringLiteral("Copying HTML Template...");

void WriteDated(const QString& file, const QByteArray& content, const QDateTime& date)
{
    QDir().mkpath(QFileInfo(file).path());
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write(content);
    out.flush();
    ASSERT_TRUE(out.setFileTime(date, QFileDevice::FileModificationTime));
}

QByteArray Content(const QString& file)
{
    QFile in(file);
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray("(absent)");
}

QDateTime At(int hour)
{
    return QDateTime(QDate(2024, 3, 1), QTime(hour, 0), Qt::UTC);
}
} // namespace

class HTMLTemplatesTest : public StationTest
{
protected:
    HTMLTemplatesTest() { LibraryFolder::SetCurrent(Library.path()); }

    void Install(const QString& name, const QByteArray& content, const QDateTime& date = At(12)) const
    {
        WriteDated(Library.filePath(QStringLiteral("HTMLDocs/") + name), content, date);
    }
    void Put(const QString& name, const QByteArray& content, const QDateTime& date = At(12)) const
    {
        WriteDated(Template(name), content, date);
    }
    QString Template(const QString& name) const { return Folder.filePath(QStringLiteral("HTMLDocs/") + name); }
    QStringList Files() const
    {
        return QDir(Folder.filePath(QStringLiteral("HTMLDocs"))).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    void OpenAgain()
    {
        Station->CloseTolvaDatabase();
        OpenStation();
    }
    qsizetype Copies() const { return Ui.ProgressCaptions().count(Caption); }

    QTemporaryDir Library;
};

TEST_F(HTMLTemplatesTest, TheFirstOpenCopiesTheInstalledSet)
{
    Install(QStringLiteral("Message-Note.htm"), "one");
    Install(QStringLiteral("logo.png"), "two");
    OpenStation();
    EXPECT_EQ(Files(), (QStringList{QStringLiteral("Message-Note.htm"), QStringLiteral("logo.png")}));
    EXPECT_EQ(Content(Template(QStringLiteral("Message-Note.htm"))), "one");
    EXPECT_EQ(Copies(), 2);
}

TEST_F(HTMLTemplatesTest, AnUnchangedSetCostsNoCopying)
{
    Install(QStringLiteral("Message-Note.htm"), "one", At(12).addMSecs(337));
    OpenStation();
    OpenAgain();
    EXPECT_EQ(Copies(), 1);
}

TEST_F(HTMLTemplatesTest, ANewerInstalledTemplateReplacesTheCopy)
{
    Install(QStringLiteral("Message-Note.htm"), "old", At(12));
    OpenStation();
    Install(QStringLiteral("Message-Note.htm"), "new", At(13));
    OpenAgain();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-Note.htm"))), "new");
    EXPECT_EQ(Files().size(), 1);
}

TEST_F(HTMLTemplatesTest, ATemplateEditedInTheStationSurvivesEveryOpen)
{
    Install(QStringLiteral("Message-Note.htm"), "installed", At(12));
    OpenStation();
    Put(QStringLiteral("Message-Note.htm"), "edited", At(13));
    OpenAgain();
    OpenAgain();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-Note.htm"))), "edited");
}

TEST_F(HTMLTemplatesTest, AnInstalledTemplateOfAnOlderDateUpdatesNoCopy)
{
    Install(QStringLiteral("Message-Note.htm"), "first", At(12));
    OpenStation();
    Install(QStringLiteral("Message-Note.htm"), "older", At(11));
    OpenAgain();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-Note.htm"))), "first");
}

TEST_F(HTMLTemplatesTest, ATemplateOfTheSameDateStaysAsItIs)
{
    Install(QStringLiteral("Message-Note.htm"), "installed", At(12));
    Put(QStringLiteral("Message-Note.htm"), "here", At(12));
    OpenStation();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-Note.htm"))), "here");
}

TEST_F(HTMLTemplatesTest, ATemplateThatWasDeletedComesBackAtTheNextOpen)
{
    Install(QStringLiteral("Message-Note.htm"), "installed");
    OpenStation();
    ASSERT_TRUE(QFile::remove(Template(QStringLiteral("Message-Note.htm"))));
    OpenAgain();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-Note.htm"))), "installed");
    EXPECT_EQ(Copies(), 2);
}

TEST_F(HTMLTemplatesTest, AFolderThatWasDeletedComesBackWithTheWholeSet)
{
    Install(QStringLiteral("Message-Note.htm"), "one");
    Install(QStringLiteral("logo.png"), "two");
    OpenStation();
    Station->CloseTolvaDatabase();
    ASSERT_TRUE(QDir(Folder.filePath(QStringLiteral("HTMLDocs"))).removeRecursively());
    OpenStation();
    EXPECT_EQ(Files().size(), 2);
}

TEST_F(HTMLTemplatesTest, EachFileOfTheSetIsJudgedByItself)
{
    Install(QStringLiteral("a-newer.htm"), "installed", At(13));
    Install(QStringLiteral("b-same.htm"), "installed", At(12));
    Install(QStringLiteral("c-older.htm"), "installed", At(11));
    Install(QStringLiteral("d-missing.htm"), "installed", At(9));
    for (const char* name : {"a-newer.htm", "b-same.htm", "c-older.htm"})
        Put(QLatin1String(name), "here", At(12));
    OpenStation();
    EXPECT_EQ(Content(Template(QStringLiteral("a-newer.htm"))), "installed");
    EXPECT_EQ(Content(Template(QStringLiteral("b-same.htm"))), "here");
    EXPECT_EQ(Content(Template(QStringLiteral("c-older.htm"))), "here");
    EXPECT_EQ(Content(Template(QStringLiteral("d-missing.htm"))), "installed");
    EXPECT_EQ(Copies(), 2);
}

TEST_F(HTMLTemplatesTest, OneSecondIsEnoughToBeNewer)
{
    Install(QStringLiteral("Message-Note.htm"), "installed", At(12).addSecs(1));
    Put(QStringLiteral("Message-Note.htm"), "here", At(12));
    OpenStation();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-Note.htm"))), "installed");
    EXPECT_EQ(QFileInfo(Template(QStringLiteral("Message-Note.htm"))).lastModified().toUTC(), At(12).addSecs(1));
}

TEST_F(HTMLTemplatesTest, FoldersWithinTheSetAreNotCopied)
{
    Install(QStringLiteral("Message-Note.htm"), "one");
    Install(QStringLiteral("older/Message-Note.htm"), "two");
    Install(QStringLiteral("Message-Folder.htm/x.htm"), "three");
    OpenStation();
    EXPECT_EQ(QDir(Folder.filePath(QStringLiteral("HTMLDocs"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("Message-Note.htm")});
}

TEST_F(HTMLTemplatesTest, ATemplateThatAnotherProgramReadsIsReplacedAndStaysWholeForIt)
{
    Install(QStringLiteral("Message-Note.htm"), "installed", At(13));
    Put(QStringLiteral("Message-Note.htm"), "as it was before", At(12));
    QFile reader(Template(QStringLiteral("Message-Note.htm")));
    ASSERT_TRUE(reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    OpenStation();
#ifdef Q_OS_WIN
    // There the file cannot be replaced meanwhile; the next open does it.
    EXPECT_EQ(reader.readAll(), "as it was before");
    reader.close();
    OpenAgain();
#else
    EXPECT_EQ(reader.readAll(), "as it was before");
#endif
    EXPECT_EQ(Content(Template(QStringLiteral("Message-Note.htm"))), "installed");
}

TEST_F(HTMLTemplatesTest, AWriteProtectedTemplateIsReplacedWhenItIsOlderAndStaysWhenItIsNot)
{
    Install(QStringLiteral("Message-A.htm"), "installed", At(13));
    Install(QStringLiteral("Message-B.htm"), "installed", At(11));
    for (const char* name : {"Message-A.htm", "Message-B.htm"}) {
        Put(QLatin1String(name), "here", At(12));
        QFile::setPermissions(Template(QLatin1String(name)), QFileDevice::ReadOwner);
    }
    OpenStation();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-A.htm"))), "installed");
    EXPECT_EQ(Content(Template(QStringLiteral("Message-B.htm"))), "here");
}

TEST_F(HTMLTemplatesTest, TheStationsOwnTemplatesStay)
{
    Install(QStringLiteral("Message-Note.htm"), "installed");
    Put(QStringLiteral("Message-Ours.htm"), "ours");
    OpenStation();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-Ours.htm"))), "ours");
}

TEST_F(HTMLTemplatesTest, InTheLibrarysOwnFolderTheFolderIsMadeAndNothingIsCopied)
{
    LibraryFolder::SetCurrent(Folder.path().toUpper() + u'/');
    OpenStation();
    EXPECT_TRUE(FileHelper::FolderExists(Folder.filePath(QStringLiteral("HTMLDocs"))));
    EXPECT_EQ(Copies(), 0);
}

TEST_F(HTMLTemplatesTest, WithoutAnInstalledSetTheFolderIsMadeAllTheSame)
{
    OpenStation();
    EXPECT_TRUE(FileHelper::FolderExists(Folder.filePath(QStringLiteral("HTMLDocs"))));
    EXPECT_EQ(Copies(), 0);
}

TEST_F(HTMLTemplatesTest, AFolderThatCannotBeMadeIsSkippedInSilence)
{
    Install(QStringLiteral("Message-Note.htm"), "one");
    WriteDated(Folder.filePath(QStringLiteral("HTMLDocs")), "a file in its place", At(12));
    OpenStation();
    EXPECT_EQ(Copies(), 0);
    EXPECT_EQ(Content(Folder.filePath(QStringLiteral("HTMLDocs"))), "a file in its place");
}

TEST_F(HTMLTemplatesTest, ATemplateThatCannotBeCopiedDoesNotStopTheNext)
{
    Install(QStringLiteral("Message-A.htm"), "a");
    Install(QStringLiteral("Message-B.htm"), "b");
    // A folder bears the first one's name.
    QDir(Folder.path()).mkpath(QStringLiteral("HTMLDocs/Message-A.htm"));
    OpenStation();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-B.htm"))), "b");
}

TEST_F(HTMLTemplatesTest, ACancelledCopyLeavesNoPartOfAFile)
{
    Install(QStringLiteral("Message-A.htm"), "a");
    OpenStation();
    Put(QStringLiteral("Message-A.htm"), "before", At(11));
    Ui.CancelProgressAt(1);
    OpenAgain();
    EXPECT_EQ(Files(), QStringList{QStringLiteral("Message-A.htm")});
    EXPECT_EQ(Content(Template(QStringLiteral("Message-A.htm"))), "before");
}

TEST_F(HTMLTemplatesTest, AHalfWrittenCopyOfAnotherComputerIsNoTemplate)
{
    OpenStation();
    Put(QStringLiteral(".copy-17ab"), "hal");
    Put(QStringLiteral("Message-A.htm"), "a");
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QString()), QStringList{QStringLiteral("Message-A")});
}

TEST_F(HTMLTemplatesTest, NamesOfTheFolderAndItsFilesMatchInAnyCase)
{
    WriteDated(Library.filePath(QStringLiteral("htmldocs/Message-Note.htm")), "installed", At(12));
    WriteDated(Folder.filePath(QStringLiteral("HtmlDocs/MESSAGE-NOTE.HTM")), "older", At(11));
    OpenStation();
    EXPECT_EQ(QDir(Folder.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("HtmlDocs")});
    EXPECT_EQ(Station->HTMLTemplatesLocation(), Folder.filePath(QStringLiteral("HtmlDocs")));
    EXPECT_EQ(Content(Folder.filePath(QStringLiteral("HtmlDocs/MESSAGE-NOTE.HTM"))), "installed");
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("Message")), QStringList{QStringLiteral("NOTE")});
    EXPECT_EQ(Station->GetHTMLTemplateFileName(QStringLiteral("Message"), QStringLiteral("Note")),
              Folder.filePath(QStringLiteral("HtmlDocs/MESSAGE-NOTE.HTM")));
}

TEST_F(HTMLTemplatesTest, TwoComputersThatOpenAtOnceLeaveTheWholeSet)
{
    const QByteArray large(400'000, 'x');
    Install(QStringLiteral("Message-A.htm"), large);
    Install(QStringLiteral("Message-B.htm"), large);
    OpenStation();
    Station->CloseTolvaDatabase();
    Put(QStringLiteral("Message-A.htm"), "old", At(10));
    Put(QStringLiteral("Message-B.htm"), "old", At(10));
    // The other one reads while this one copies: it sees an old or a new file, never a part of one.
    std::atomic<bool> isDone = false;
    int partial = 0;
    std::thread other([&] {
        while (!isDone) {
            const QByteArray content = Content(Template(QStringLiteral("Message-B.htm")));
            partial += content == "old" || content == large ? 0 : 1;
        }
    });
    OpenStation();
    isDone = true;
    other.join();
    EXPECT_EQ(partial, 0);
    EXPECT_EQ(Content(Template(QStringLiteral("Message-B.htm"))), large);
    EXPECT_EQ(Files().size(), 2);
}

#ifndef Q_OS_WIN
TEST_F(HTMLTemplatesTest, ALinkInTheStationsFolderOverwritesNothingElsewhere)
{
    Install(QStringLiteral("Message-A.htm"), "installed", At(12));
    const QString elsewhere = Library.filePath(QStringLiteral("precious.txt"));
    WriteDated(elsewhere, "precious", At(10));
    OpenStation();
    ASSERT_TRUE(QFile::remove(Template(QStringLiteral("Message-A.htm"))));
    ASSERT_TRUE(QFile::link(elsewhere, Template(QStringLiteral("Message-A.htm"))));
    OpenAgain();
    EXPECT_EQ(Content(elsewhere), "precious");
}

TEST_F(HTMLTemplatesTest, ACopyOfAReadOnlyTemplateCanBeEdited)
{
    Install(QStringLiteral("Message-A.htm"), "installed");
    QFile::setPermissions(Library.filePath(QStringLiteral("HTMLDocs/Message-A.htm")), QFileDevice::ReadOwner);
    OpenStation();
    EXPECT_TRUE((QFile::permissions(Template(QStringLiteral("Message-A.htm"))) & QFileDevice::WriteOwner) != 0);
}

TEST_F(HTMLTemplatesTest, AFolderThatCannotBeWrittenKeepsWhatItHas)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "this account may write everywhere";
    Install(QStringLiteral("Message-A.htm"), "new", At(13));
    Put(QStringLiteral("Message-A.htm"), "old", At(12));
    const QString folder = Folder.filePath(QStringLiteral("HTMLDocs"));
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    OpenStation();
    EXPECT_EQ(Content(Template(QStringLiteral("Message-A.htm"))), "old");
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}
#endif

TEST_F(HTMLTemplatesTest, ReferencesAreThoseOfThePrefix)
{
    OpenStation();
    Put(QStringLiteral("Message-Single message.htm"), "a");
    Put(QStringLiteral("Message-v1.2.htm"), "b");
    Put(QStringLiteral("MessageList-Compact.htm"), "c");
    Put(QStringLiteral("Message-notes.txt"), "d");
    Put(QStringLiteral("Plain.htm"), "e");
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("Message")),
              (QStringList{QStringLiteral("Single message"), QStringLiteral("v1.2")}));
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("Prize")), QStringList());
}

TEST_F(HTMLTemplatesTest, AnEmptyPrefixListsThemAllWithTheirPrefixes)
{
    OpenStation();
    Put(QStringLiteral("Message-A.htm"), "a");
    Put(QStringLiteral("Plain.htm"), "b");
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QString()),
              (QStringList{QStringLiteral("Message-A"), QStringLiteral("Plain")}));
}

TEST_F(HTMLTemplatesTest, APrefixIsCutFromTheStartAloneAndTheEndingFromTheEnd)
{
    OpenStation();
    Put(QStringLiteral("Message-.htm"), "a");
    Put(QStringLiteral("Message-Message-x.htm.htm"), "b");
    Put(QStringLiteral("Message-y-z.HTM"), "c");
    Put(QStringLiteral("Message-page.html"), "d");
    Put(QStringLiteral("Message.htm"), "e");
    Put(QStringLiteral("A-Message-v.htm"), "f");
    QDir(Folder.filePath(QStringLiteral("HTMLDocs"))).mkdir(QStringLiteral("Message-folder.htm"));
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("Message")),
              (QStringList{QString(), QStringLiteral("Message-x.htm"), QStringLiteral("y-z")}));
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("Message-y")), QStringList{QStringLiteral("z")});
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("message")).size(), 3);
}

TEST_F(HTMLTemplatesTest, EveryReferenceLeadsBackToItsFile)
{
    OpenStation();
    for (const char* name : {"Message-One two.htm", "MESSAGE-Caf\u00E9.HTM", "Message-v1.2.htm", "Plain.htm"})
        Put(QString::fromUtf8(name), name);
    for (const QString& prefix : {QString(), QStringLiteral("Message")}) {
        for (const QString& reference : Station->GetHTMLTemplateReferences(prefix))
            EXPECT_TRUE(FileHelper::FileExists(Station->GetHTMLTemplateFileName(prefix, reference)))
                << qPrintable(reference);
    }
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("Message")).size(), 3);
}

TEST_F(HTMLTemplatesTest, AFileWhoseNameIsRefusedIsNotListed)
{
    OpenStation();
    Put(QStringLiteral("Message-10:30.htm"), "late");
    Put(QStringLiteral("Message-Late.htm"), "late");
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("Message")), QStringList(QStringLiteral("Late")));
}

TEST_F(HTMLTemplatesTest, AnEmptyReferenceNamesAFileAsWell)
{
    OpenStation();
    EXPECT_EQ(Station->GetHTMLTemplateFileName(QStringLiteral("Message"), QString()),
              Template(QStringLiteral("Message-.htm")));
    EXPECT_EQ(Station->GetHTMLTemplateFileName(QString(), QString()), Template(QStringLiteral(".htm")));
}

TEST_F(HTMLTemplatesTest, AFolderThatIsGoneHasNoReferencesAndNamesAllTheSame)
{
    OpenStation();
    ASSERT_TRUE(QDir(Folder.filePath(QStringLiteral("HTMLDocs"))).removeRecursively());
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QString()), QStringList());
    EXPECT_EQ(Station->GetHTMLTemplateFileName(QStringLiteral("Message"), QStringLiteral("A")),
              Template(QStringLiteral("Message-A.htm")));
}

TEST_F(HTMLTemplatesTest, CharactersOfAPatternInAPrefixStandForThemselves)
{
    OpenStation();
    Put(QStringLiteral("Message-A.htm"), "a");
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("Mess*")), QStringList());
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QStringLiteral("Messag?")), QStringList());
}

TEST_F(HTMLTemplatesTest, AFileNameIsGivenWhetherTheFileExistsOrNot)
{
    OpenStation();
    EXPECT_EQ(Station->GetHTMLTemplateFileName(QStringLiteral("Message"), QStringLiteral("Nothing like it")),
              Template(QStringLiteral("Message-Nothing like it.htm")));
    EXPECT_EQ(Station->GetHTMLTemplateFileName(QString(), QStringLiteral("Plain")),
              Template(QStringLiteral("Plain.htm")));
}

TEST_F(HTMLTemplatesTest, NoNameReachesOutsideTheFolder)
{
    OpenStation();
    WriteDated(Folder.filePath(QStringLiteral("secret.htm")), "secret", At(12));
    for (const char* name : {"../secret", "..\\secret", "/etc/passwd", "C:secret", "a/../../secret", "a\nb"}) {
        EXPECT_EQ(Station->GetHTMLTemplateFileName(QString(), QLatin1String(name)), QString()) << name;
        EXPECT_EQ(Station->GetHTMLTemplateFileName(QLatin1String(name), QStringLiteral("x")), QString()) << name;
        EXPECT_EQ(Station->GetHTMLTemplateReferences(QLatin1String(name)), QStringList()) << name;
    }
    const QString nul = QStringLiteral("x") + QChar(u'\0');
    EXPECT_EQ(Station->GetHTMLTemplateFileName(QString(), nul), QString());
    // Dots alone lead nowhere.
    EXPECT_EQ(Station->GetHTMLTemplateFileName(QString(), QStringLiteral("..")), Template(QStringLiteral("...htm")));
}

TEST_F(HTMLTemplatesTest, AClosedStationHasNoTemplates)
{
    OpenStation();
    Put(QStringLiteral("Message-A.htm"), "a");
    EXPECT_EQ(Station->HTMLTemplatesLocation(), Folder.filePath(QStringLiteral("HTMLDocs")));
    Station->CloseTolvaDatabase();
    EXPECT_EQ(Station->HTMLTemplatesLocation(), QString());
    EXPECT_EQ(Station->GetHTMLTemplateReferences(QString()), QStringList());
    EXPECT_EQ(Station->GetHTMLTemplateFileName(QStringLiteral("Message"), QStringLiteral("A")), QString());
}

TEST(LibraryFolderTest, IsFoundFromTheLibrarysOwnFile)
{
    LibraryFolder::SetCurrent(QString());
    const bool isOverridden = qEnvironmentVariableIsSet("TOLVA_LIBRARY_FOLDER");
    ASSERT_FALSE(isOverridden) << "the environment names another";
    EXPECT_EQ(LibraryFolder::Current(), QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath());
    EXPECT_TRUE(FileHelper::FolderExists(FileHelper::Join(LibraryFolder::Current(), QStringLiteral("HTMLDocs"))));
}

TEST(LibraryFolderTest, TheEnvironmentNamesAnother)
{
    qputenv("TOLVA_LIBRARY_FOLDER", "/srv/elsewhere");
    EXPECT_EQ(LibraryFolder::Current(), QStringLiteral("/srv/elsewhere"));
    LibraryFolder::SetCurrent(QStringLiteral("/srv/chosen"));
    EXPECT_EQ(LibraryFolder::Current(), QStringLiteral("/srv/chosen"));
    LibraryFolder::SetCurrent(QString());
    qunsetenv("TOLVA_LIBRARY_FOLDER");
}
