// SPDX-License-Identifier: Apache-2.0
#include "spelling/Dictionary.h"

#include "TestDictionary.h"
#include "platform/files/FileStatus.h"
#include "spelling/InstalledDictionaries.h"
#include "spelling/OwnWords.h"
#include "support/FaultyFileSystem.h"

#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace
{
class DictionaryTest : public testing::Test
{
protected:
    QString Folder() const { return Temporary_.filePath(QStringLiteral("dictionaries")); }
    QString Path(const char* name) const { return Folder() + u'/' + QString::fromLatin1(name); }
    QList<DictionaryFiles> Found() const { return InstalledDictionaries::In({Folder()}); }
    QStringList Languages() const
    {
        QStringList languages;
        for (const DictionaryFiles& files : Found())
            languages.append(files.Language);
        return languages;
    }
    std::unique_ptr<Dictionary> Read()
    {
        const QList<DictionaryFiles> found = Found();
        EXPECT_EQ(found.size(), 1);
        return Dictionary::Read(found.value(0), Problem);
    }
    static QByteArray ContentOf(const QString& path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    void WriteEnglish() const
    {
        TestDictionary::Write(Folder(), QStringLiteral("en_GB"),
                              {"hello", "world/S", "don't", "well", "known", "Harbour"});
    }

    QTemporaryDir Temporary_;
    QString Problem;
};
} // namespace

TEST_F(DictionaryTest, KnowsItsWordsTheirFormsAndCapitals)
{
    WriteEnglish();
    const auto dictionary = Read();
    ASSERT_TRUE(dictionary) << Problem.toStdString();
    for (const char* word : {"hello", "Hello", "worlds", "Harbour", "don't", "well-known"})
        EXPECT_TRUE(dictionary->Knows(QLatin1String(word))) << word;
    for (const char* word : {"helo", "harbour", "dont", "well-knwon", "hello's"})
        EXPECT_FALSE(dictionary->Knows(QLatin1String(word))) << word;
    EXPECT_TRUE(dictionary->Suggestions(QStringLiteral("helo"), 5).contains(QStringLiteral("hello")));
    EXPECT_LE(dictionary->Suggestions(QStringLiteral("wrld"), 1).size(), 1);
    EXPECT_TRUE(dictionary->Suggestions(QString(60, u'a'), 5).isEmpty());
}

TEST_F(DictionaryTest, TheCurlyApostropheOfADictionaryIsFoundToo)
{
    TestDictionary::Write(Folder(), QStringLiteral("en_GB"), {"don\xE2\x80\x99t"});
    const auto dictionary = Read();
    ASSERT_TRUE(dictionary);
    EXPECT_TRUE(dictionary->Knows(QStringLiteral("don't")));
    EXPECT_FALSE(dictionary->Knows(QStringLiteral("can't")));
}

TEST_F(DictionaryTest, WhatItCannotJudgeItDoesNotBlame)
{
    WriteEnglish();
    const auto dictionary = Read();
    ASSERT_TRUE(dictionary);
    EXPECT_TRUE(dictionary->Knows(QStringLiteral("\u05E9\u05DC\u05D5\u05DD")));
    EXPECT_TRUE(dictionary->Knows(QStringLiteral("\u0434\u043E\u0431\u0440\u043E")));
    EXPECT_FALSE(dictionary->Knows(QStringLiteral("gr\u00FCn")));
}

TEST_F(DictionaryTest, ADictionaryIsReadInItsOwnEncoding)
{
    TestDictionary::Write(Folder(), QStringLiteral("de_DE"), {"gr\xFCn", "stra\xDF\x65"}, "ISO8859-1");
    const auto dictionary = Read();
    ASSERT_TRUE(dictionary) << Problem.toStdString();
    EXPECT_TRUE(dictionary->Knows(QStringLiteral("gr\u00FCn")));
    EXPECT_TRUE(dictionary->Knows(QStringLiteral("stra\u00DFe")));
    EXPECT_FALSE(dictionary->Knows(QStringLiteral("gr\u00FCnn")));
    EXPECT_TRUE(dictionary->Suggestions(QStringLiteral("gr\u00FCnn"), 5).contains(QStringLiteral("gr\u00FCn")));
    // Its encoding lacks the letter: it cannot say anything.
    EXPECT_TRUE(dictionary->Knows(QStringLiteral("\u0142\u00F3d\u017A")));
}

TEST_F(DictionaryTest, OtherOldEncodingsAreReadToo)
{
    TestDictionary::Write(Folder(), QStringLiteral("pl_PL"), {"\xB3\xF3\x64\xBC"}, "ISO8859-2");
    TestDictionary::Write(Folder(), QStringLiteral("ru_RU"), {"\xC4\xCF\xC2\xD2\xCF"}, "KOI8-R");
    TestDictionary::Write(Folder(), QStringLiteral("bg_BG"), {"\xE4\xEE\xE1\xF0\xEE"}, "microsoft-cp1251");
    const QList<DictionaryFiles> found = Found();
    ASSERT_EQ(found.size(), 3);
    for (const DictionaryFiles& files : found) {
        const auto dictionary = Dictionary::Read(files, Problem);
        ASSERT_TRUE(dictionary) << files.Language.toStdString() << ": " << Problem.toStdString();
        const bool isPolish = files.Language == u"pl_PL";
        const QString word =
            isPolish ? QStringLiteral("\u0142\u00F3d\u017A") : QStringLiteral("\u0434\u043E\u0431\u0440\u043E");
        EXPECT_TRUE(dictionary->Knows(word)) << files.Language.toStdString();
        EXPECT_FALSE(dictionary->Knows(word + word.at(0))) << files.Language.toStdString();
    }
}

TEST_F(DictionaryTest, AWordThatIsAddedIsKnownWithItsCapitals)
{
    WriteEnglish();
    const auto dictionary = Read();
    ASSERT_TRUE(dictionary);
    ASSERT_FALSE(dictionary->Knows(QStringLiteral("jingle")));
    dictionary->Add(QStringLiteral("jingle"));
    EXPECT_TRUE(dictionary->Knows(QStringLiteral("jingle")));
    EXPECT_TRUE(dictionary->Knows(QStringLiteral("Jingle")));
}

TEST_F(DictionaryTest, DamagedFilesAreSaidAndNotRead)
{
    struct Damage
    {
        QByteArray Rules;
        QByteArray Words;
    };
    const QByteArray rules = "SET UTF-8\n";
    const Damage damages[] = {{rules, "hello\nworld\n"},
                              {rules, "2000000000\nhello\n"},
                              {rules, "-5\nhello\n"},
                              {rules, "5"},
                              {rules, QByteArray(3000, '\xFF')},
                              {"SET NO-SUCH-ENCODING\n", "1\nhello\n"},
                              {QByteArray(100, '\0'), "x\nhello\n"}};
    for (const Damage& damage : damages) {
        TestDictionary::WriteFile(Path("en_GB.aff"), damage.Rules);
        TestDictionary::WriteFile(Path("en_GB.dic"), damage.Words);
        Problem.clear();
        EXPECT_FALSE(Read()) << damage.Words.left(20).constData();
        EXPECT_TRUE(Problem.contains(QStringLiteral("British English (United Kingdom)"))) << Problem.toStdString();
    }
}

TEST_F(DictionaryTest, AnyOctetsInItsFilesDoNotCrashIt)
{
    WriteEnglish();
    quint32 seed = 7;
    const auto chance = [&seed] { return seed = seed * 1664525 + 1013904223; };
    const QByteArray rules = "SET UTF-8\nTRY abc\nCOMPOUNDMIN 1\nREP 1\nREP a b\nSFX S Y 1\nSFX S 0 s .\n";
    const QByteArray words = "4\nhello/S\nworld\nabc/S\nthere\n";
    for (int round = 0; round < 200; ++round) {
        QByteArray damagedRules = rules;
        QByteArray damagedWords = words;
        damagedRules[static_cast<qsizetype>(chance() % rules.size())] = static_cast<char>(chance() >> 24);
        damagedWords[2 + static_cast<qsizetype>(chance() % (words.size() - 2))] = static_cast<char>(chance() >> 24);
        TestDictionary::WriteFile(Path("en_GB.aff"), damagedRules.left(1 + chance() % rules.size()));
        TestDictionary::WriteFile(Path("en_GB.dic"), damagedWords);
        if (const auto dictionary = Read()) {
            dictionary->Knows(QStringLiteral("hellos"));
            dictionary->Suggestions(QStringLiteral("helo"), 5);
        }
    }
}

TEST_F(DictionaryTest, EachLanguageIsFoundOnceAndBrokenOnesWithTheReason)
{
    WriteEnglish();
    TestDictionary::WriteFile(Path("fr_FR.dic"), "1\nbonjour\n");
    TestDictionary::WriteFile(Path("nl_NL.aff"), "SET UTF-8\n");
    TestDictionary::WriteFile(Path("hyph_en_GB.dic"), "UTF-8\n");
    TestDictionary::WriteFile(Path("README_en_GB.txt"), "words");
    TestDictionary::WriteFile(Path("it_IT.aff"), "SET UTF-8\n");
    TestDictionary::WriteFile(Path("it_IT.dic"), "");
    TestDictionary::WriteFile(Path("es_ES.aff"), "SET UTF-8\n");
    ASSERT_TRUE(QDir().mkpath(Path("es_ES.dic")));
    TestDictionary::WriteFile(Path("pt_PT.aff"), "SET UTF-8\n");
    ASSERT_TRUE(QFile::link(Path("gone.dic"), Path("pt_PT.dic")));
    QMap<QString, QString> problems;
    for (const DictionaryFiles& files : Found())
        problems.insert(files.Language, files.Problem);
    EXPECT_EQ(problems.keys(),
              (QStringList{QStringLiteral("en_GB"), QStringLiteral("es_ES"), QStringLiteral("fr_FR"),
                           QStringLiteral("it_IT"), QStringLiteral("nl_NL"), QStringLiteral("pt_PT")}));
    EXPECT_EQ(problems.value(QStringLiteral("en_GB")), QString());
    EXPECT_EQ(problems.value(QStringLiteral("es_ES")),
              QStringLiteral("es_ES.dic is no file, so that the dictionary cannot be read."));
    EXPECT_EQ(problems.value(QStringLiteral("fr_FR")),
              QStringLiteral("The file fr_FR.aff of the dictionary is missing."));
    EXPECT_EQ(problems.value(QStringLiteral("it_IT")),
              QStringLiteral("The file it_IT.dic of the dictionary is empty."));
    EXPECT_EQ(problems.value(QStringLiteral("nl_NL")),
              QStringLiteral("The file nl_NL.dic of the dictionary is missing."));
    EXPECT_EQ(problems.value(QStringLiteral("pt_PT")),
              QStringLiteral("The link pt_PT.dic of the dictionary leads nowhere."));
    for (const DictionaryFiles& files : Found()) {
        if (!files.Problem.isEmpty()) {
            EXPECT_FALSE(Dictionary::Read(files, Problem));
            EXPECT_EQ(Problem, files.Problem);
        }
    }
}

TEST_F(DictionaryTest, AFileThatIsTooLargeOrAPipeIsNotRead)
{
    WriteEnglish();
    ASSERT_TRUE(QFile::resize(Path("en_GB.dic"), 65LL << 20));
    EXPECT_EQ(Found().value(0).Problem, QStringLiteral("The file en_GB.dic of the dictionary is too large to be one."));
#ifdef Q_OS_UNIX
    ASSERT_TRUE(QFile::remove(Path("en_GB.dic")));
    ASSERT_EQ(mkfifo(Path("en_GB.dic").toLocal8Bit().constData(), 0600), 0);
    EXPECT_EQ(Found().value(0).Problem, QStringLiteral("en_GB.dic is no file, so that the dictionary cannot be read."));
#endif
}

TEST_F(DictionaryTest, LinksToOneDictionaryOfALanguageAreOneAndItsVariantsHaveTheirNames)
{
    TestDictionary::Write(Folder(), QStringLiteral("de_DE_frami"), {"gut"});
    for (const char* ending : {"aff", "dic"}) {
        const QString target = QStringLiteral("de_DE_frami.") + QLatin1String(ending);
        ASSERT_TRUE(QFile::link(target, Path("de_DE.") + QLatin1String(ending)));
        ASSERT_TRUE(QFile::link(target, Path("de_AT.") + QLatin1String(ending)));
    }
    EXPECT_EQ(Languages(), (QStringList{QStringLiteral("de_AT"), QStringLiteral("de_DE")}));
    EXPECT_EQ(Found().at(1).Name(), QStringLiteral("Deutsch (Deutschland)"));
    const DictionaryFiles variant{QStringLiteral("de_DE_frami"), {}, {}, {}};
    EXPECT_EQ(variant.Name(), QStringLiteral("Deutsch (Deutschland) \u2013 frami"));
    const DictionaryFiles unknown{QStringLiteral("zz_med"), {}, {}, {}};
    EXPECT_EQ(unknown.Name(), QStringLiteral("zz_med"));
}

TEST_F(DictionaryTest, DictionariesLieInTheSystemsFoldersForDataOrWhereTheEnvironmentSays)
{
    const QByteArray named = qgetenv("DICPATH");
    const QByteArray own = qgetenv("XDG_DATA_HOME");
    const QByteArray shared = qgetenv("XDG_DATA_DIRS");
    const bool isTestMode = QStandardPaths::isTestModeEnabled();
    QStandardPaths::setTestModeEnabled(false);
    const auto restore = qScopeGuard([&] {
        QStandardPaths::setTestModeEnabled(isTestMode);
        const auto put = [](const char* name, const QByteArray& value) {
            value.isNull() ? qunsetenv(name) : qputenv(name, value);
        };
        put("DICPATH", named);
        put("XDG_DATA_HOME", own);
        put("XDG_DATA_DIRS", shared);
    });
    const QString home = Temporary_.filePath(QStringLiteral("home"));
    const QString system = Temporary_.filePath(QStringLiteral("system"));
    qunsetenv("DICPATH");
    qputenv("XDG_DATA_HOME", QFile::encodeName(home));
    qputenv("XDG_DATA_DIRS", QFile::encodeName(system));
    TestDictionary::Write(home + QStringLiteral("/hunspell"), QStringLiteral("kw_GB"), {"ottena"});
    TestDictionary::Write(system + QStringLiteral("/myspell/dicts"), QStringLiteral("br_FR"), {"demat"});
    const auto languages = [] {
        QMap<QString, QString> files;
        for (const DictionaryFiles& each : InstalledDictionaries::In(InstalledDictionaries::Folders()))
            files.insert(each.Language, each.WordsFile);
        return files;
    };
    EXPECT_EQ(InstalledDictionaries::OwnFolder(), home + QStringLiteral("/hunspell"));
    EXPECT_EQ(languages().value(QStringLiteral("kw_GB")), home + QStringLiteral("/hunspell/kw_GB.dic"));
    EXPECT_EQ(languages().value(QStringLiteral("br_FR")), system + QStringLiteral("/myspell/dicts/br_FR.dic"));
#ifdef Q_OS_UNIX
    EXPECT_TRUE(InstalledDictionaries::Folders().contains(QStringLiteral("/usr/share/hunspell")));
#endif
    WriteEnglish();
    qputenv("DICPATH",
            QFile::encodeName(Temporary_.filePath(QStringLiteral("nowhere")) + QDir::listSeparator() + Folder()));
    EXPECT_EQ(languages().keys(), QStringList{QStringLiteral("en_GB")}) << "and there alone";
}

TEST_F(DictionaryTest, TheLanguageOfTheSystemIsChosenByItsCountryOrElseByItself)
{
    for (const char* language : {"en_US", "en_ZA", "de_AT", "fr_FR"})
        TestDictionary::Write(Folder(), QLatin1String(language), {"x"});
    TestDictionary::WriteFile(Path("en_IE.aff"), "SET UTF-8\n");
    const auto choice = [this](const char* locale) {
        return InstalledDictionaries::LanguageFor(Found(), QLocale(QLatin1String(locale)));
    };
    EXPECT_EQ(choice("en_ZA"), QStringLiteral("en_ZA"));
    EXPECT_EQ(choice("en_GB"), QStringLiteral("en_US"));
    EXPECT_EQ(choice("en_IE"), QStringLiteral("en_US"));
    EXPECT_EQ(choice("de_DE"), QStringLiteral("de_AT"));
    EXPECT_EQ(choice("nl_NL"), QString());
    EXPECT_EQ(choice("C"), QString());
}

TEST_F(DictionaryTest, OwnWordsAreKeptOneALineAndNothingReplacesWhatCannotBeRead)
{
    const QString file = Temporary_.filePath(QStringLiteral("settings/own-words.txt"));
    EXPECT_TRUE(OwnWords::In(file, Problem).isEmpty());
    EXPECT_EQ(Problem, QString());
    for (const QString& word :
         {QStringLiteral("Porthmellin"), QStringLiteral("Tr\u00E9v\u00E9an"), QStringLiteral("Porthmellin")})
        EXPECT_EQ(OwnWords::Add(file, word), QString());
    EXPECT_EQ(OwnWords::In(file, Problem),
              (QStringList{QStringLiteral("Porthmellin"), QStringLiteral("Tr\u00E9v\u00E9an")}));
    EXPECT_EQ(ContentOf(file), QByteArray("Porthmellin\nTr\xC3\xA9v\xC3\xA9\x61n\n"));
    const QString folder = Temporary_.filePath(QStringLiteral("folder.txt"));
    ASSERT_TRUE(QDir().mkpath(folder));
    EXPECT_EQ(OwnWords::Add(folder, QStringLiteral("word")), FileStatus(FileError::IsFolder).Words());
    const QString large = Temporary_.filePath(QStringLiteral("large.txt"));
    TestDictionary::WriteFile(large, QByteArray(5 << 20, 'a'));
    EXPECT_EQ(OwnWords::Add(large, QStringLiteral("word")), QStringLiteral("it is too large to be a list of words."));
    EXPECT_EQ(QFileInfo(large).size(), 5 << 20);
    const QString link = Temporary_.filePath(QStringLiteral("link.txt"));
    ASSERT_TRUE(QFile::link(file, link));
    EXPECT_EQ(OwnWords::Add(link, QStringLiteral("word")), FileStatus(FileError::IsLink).Words());
    EXPECT_EQ(OwnWords::In(file, Problem).size(), 2);
}

TEST_F(DictionaryTest, OwnWordsInAnotherEncodingAreSaidAndNotReplaced)
{
    const QString file = Temporary_.filePath(QStringLiteral("own-words.txt"));
    for (const QByteArray& octets : {QByteArray("gr\xFCn\n"), QByteArray("good\ngr\xC3")}) {
        TestDictionary::WriteFile(file, octets);
        const QString words = OwnWords::Add(file, QStringLiteral("word"));
        EXPECT_EQ(words, QStringLiteral("it is no text in UTF-8. Save %1 as UTF-8, or take it away.").arg(file));
        EXPECT_EQ(ContentOf(file), octets);
    }
}

TEST_F(DictionaryTest, AnOwnWordThatADiskRefusesIsSaidWithItsReasonAndTheOthersStay)
{
    const QString file = Temporary_.filePath(QStringLiteral("own-words.txt"));
    ASSERT_EQ(OwnWords::Add(file, QStringLiteral("first")), QString());
    ASSERT_TRUE(QFile::remove(file + QStringLiteral(".lock")));
    FaultyFileSystem disk;
    int failed = 0;
    for (int call = 1;; ++call) {
        disk.FailAt(call, FileError::Full, FaultyFileSystem::Fault::Tears, true);
        const QString words = OwnWords::Add(file, QStringLiteral("second"));
        disk.StopFailing();
        if (words.isEmpty())
            break;
        ++failed;
        EXPECT_EQ(words, FileStatus(FileError::Full).Words()) << call;
        EXPECT_TRUE(ContentOf(file).startsWith("first\n")) << call;
        QFile::remove(file + QStringLiteral(".lock"));
    }
    EXPECT_GE(failed, 4) << "the lock, the write, its sync and the name";
    EXPECT_EQ(ContentOf(file), QByteArray("first\nsecond\n"));
}
