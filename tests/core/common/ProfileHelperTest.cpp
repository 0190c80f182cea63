// SPDX-License-Identifier: Apache-2.0
#include "common/ProfileHelper.h"

#include "common/Registry.h"
#include "support/ScriptedRegistry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{
const QString LocalMachine = QLatin1String(ProfileHelper::LocalMachine);
const QString ProfilePath = QStringLiteral("SOFTWARE\\Kelvarin");

/// An environment variable for the life of a scope.
class EnvironmentScope
{
public:
    EnvironmentScope(const char* name, const QByteArray& value) : Name_(name), Before_(qgetenv(name))
    {
        qputenv(name, value);
    }
    ~EnvironmentScope()
    {
        if (Before_.isNull())
            qunsetenv(Name_);
        else
            qputenv(Name_, Before_);
    }
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;

private:
    const char* Name_;
    QByteArray Before_;
};

class ProfileHelperTest : public testing::Test
{
protected:
    QString Make(const QString& name, const QByteArray& content) const
    {
        QFile file(Folder_.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }

    static QByteArray ContentOf(const QString& name)
    {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
    }

    static QString Read(const QString& file, const char16_t* section, const char16_t* key)
    {
        return ProfileHelper::ReadIniString(QString::fromUtf16(section), QString::fromUtf16(key),
                                            QStringLiteral("(default)"), file);
    }

    static bool Write(const QString& file, const char16_t* section, const char16_t* key, const char16_t* value)
    {
        return ProfileHelper::WriteIniString(QString::fromUtf16(section), QString::fromUtf16(key),
                                             QString::fromUtf16(value), file);
    }

    QTemporaryDir Folder_;
};
} // namespace

TEST_F(ProfileHelperTest, ReadsSectionsAndKeysWithoutRegardToCase)
{
    const QString file = Make(QStringLiteral("Backup.inf"),
                              "; a comment\r\n[Details]\r\n Created = 21/11/2026 14:05:09 \r\nBy=\"DESK 1\"\r\n"
                              "# Hidden=1\r\nEmpty=\r\nSum=a=b\r\nOne='x'\r\n\r\n[Other]\r\nBy=DESK2\r\n");
    EXPECT_EQ(Read(file, u"Details", u"Created"), u"21/11/2026 14:05:09");
    EXPECT_EQ(Read(file, u"DETAILS", u"created"), u"21/11/2026 14:05:09");
    EXPECT_EQ(Read(file, u"Details", u"By"), u"DESK 1");
    EXPECT_EQ(Read(file, u"Other", u"By"), u"DESK2");
    EXPECT_EQ(Read(file, u"Details", u"Empty"), QString());
    EXPECT_EQ(Read(file, u"Details", u"Sum"), u"a=b");
    EXPECT_EQ(Read(file, u"Details", u"One"), u"x");
}

TEST_F(ProfileHelperTest, WhatIsAbsentIsTheDefault)
{
    const QString file =
        Make(QStringLiteral("a.ini"), "Key=before any section\n[A]\n;Key=1\n#Key=2\nKey\n[B]\nKey=1\n");
    EXPECT_EQ(Read(file, u"A", u"Key"), u"(default)");
    EXPECT_EQ(Read(file, u"C", u"Key"), u"(default)");
    EXPECT_EQ(Read(file, u"", u"Key"), u"(default)");
    EXPECT_EQ(Read(Folder_.filePath(QStringLiteral("none.ini")), u"A", u"Key"), u"(default)");
    EXPECT_EQ(Read(Folder_.path(), u"A", u"Key"), u"(default)");
}

TEST_F(ProfileHelperTest, TheFirstOfTwoEntriesCounts)
{
    const QString file = Make(QStringLiteral("a.ini"), "[A]\nKey=1\nKEY=2\n[B]\n[a]\nKey=3\nMore=4\n");
    EXPECT_EQ(Read(file, u"A", u"Key"), u"1");
    EXPECT_EQ(Read(file, u"A", u"More"), u"4");
}

TEST_F(ProfileHelperTest, EncodingsAndByteOrderMarksMakeNoDifference)
{
    EXPECT_EQ(Read(Make(QStringLiteral("1.ini"), "[A]\nK=\xC3\xA4"), u"A", u"K"), u"\u00E4");
    EXPECT_EQ(Read(Make(QStringLiteral("2.ini"), "[A]\nK=\xE4"), u"A", u"K"), u"\u00E4");
    EXPECT_EQ(Read(Make(QStringLiteral("3.ini"), "\xEF\xBB\xBF[A]\nK=\xC3\xA4"), u"A", u"K"), u"\u00E4");
}

TEST_F(ProfileHelperTest, TheNameOfAFileIsFoundWhateverItsCase)
{
    const QString file = Make(QStringLiteral("Backup.inf"), "[Details]\nBy=1\n");
    const QString other = Folder_.filePath(QStringLiteral("backup.INF"));
    EXPECT_EQ(Read(other, u"Details", u"By"), u"1");
    EXPECT_TRUE(Write(other, u"Details", u"By", u"2"));
    EXPECT_EQ(ContentOf(file), "[Details]\nBy=2\n");
    EXPECT_FALSE(QFile::exists(other));
}

TEST_F(ProfileHelperTest, WritingMakesFileSectionAndKey)
{
    const QString file = Folder_.filePath(QStringLiteral("new.ini"));
    EXPECT_TRUE(Write(file, u"Details", u"By", u"DESK1"));
    EXPECT_TRUE(Write(file, u"Details", u"Run", u"1"));
    EXPECT_TRUE(Write(file, u"More", u"By", u"x"));
    EXPECT_TRUE(Write(file, u"details", u"Name", u"2"));
    EXPECT_EQ(ContentOf(file), "[Details]\nBy=DESK1\nRun=1\nName=2\n\n[More]\nBy=x\n");
}

TEST_F(ProfileHelperTest, WritingLeavesAllElseAsItStands)
{
    const QString file =
        Make(QStringLiteral("a.ini"), "; top\r\n\r\n[A]\r\n  one = 1 \r\n; note\r\ntwo=2\r\n\r\n[B]\r\nstray line\r\n");
    EXPECT_TRUE(Write(file, u"A", u"two", u"3"));
    EXPECT_TRUE(Write(file, u"A", u"three", u"4"));
    EXPECT_EQ(ContentOf(file),
              "; top\r\n\r\n[A]\r\n  one = 1 \r\n; note\r\ntwo=3\r\nthree=4\r\n\r\n[B]\r\nstray line\r\n");
}

TEST_F(ProfileHelperTest, MixedLineEndsAndAMissingLastOneStay)
{
    const QString file = Make(QStringLiteral("a.ini"), "[A]\r\none=1\n[B]\r\ntwo=2");
    EXPECT_TRUE(Write(file, u"B", u"two", u"3"));
    EXPECT_EQ(ContentOf(file), "[A]\r\none=1\n[B]\r\ntwo=3");
    EXPECT_TRUE(Write(file, u"B", u"four", u"4"));
    EXPECT_EQ(ContentOf(file), "[A]\r\none=1\n[B]\r\ntwo=3\r\nfour=4\r\n");
}

TEST_F(ProfileHelperTest, ALatin1FileWhoseTextLooksLikeUtf8IsWrittenAsUtf8)
{
    const QString file = Make(QStringLiteral("a.ini"), "[A]\nK=\xE4\n");
    EXPECT_TRUE(Write(file, u"A", u"K", u"\u00C3\u00A4"));
    EXPECT_EQ(Read(file, u"A", u"K"), u"\u00C3\u00A4");
}

TEST_F(ProfileHelperTest, WritingKeepsTheEncoding)
{
    const QString latin1 = Make(QStringLiteral("1.ini"), "[A]\nK=\xE4\n");
    EXPECT_TRUE(Write(latin1, u"A", u"L", u"\u00F6"));
    EXPECT_EQ(ContentOf(latin1), "[A]\nK=\xE4\nL=\xF6\n");
    EXPECT_TRUE(Write(latin1, u"A", u"L", u"\u20AC"));
    EXPECT_EQ(ContentOf(latin1), "[A]\nK=\xC3\xA4\nL=\xE2\x82\xAC\n");
    const QString marked = Make(QStringLiteral("2.ini"), "\xEF\xBB\xBF[A]\n");
    EXPECT_TRUE(Write(marked, u"A", u"K", u"1"));
    EXPECT_EQ(ContentOf(marked), "\xEF\xBB\xBF[A]\nK=1\n");
}

TEST_F(ProfileHelperTest, EveryValueIsReadBack)
{
    const QString file = Folder_.filePath(QStringLiteral("a.ini"));
    for (const char16_t* value :
         {u"", u" x ", u"\"x\"", u"'x'", u"\"", u"a\"b", u"[x]", u";x", u"a=b", u"\tx", u"\U0001F600"}) {
        EXPECT_TRUE(Write(file, u"A", u"K", value));
        EXPECT_EQ(Read(file, u"A", u"K"), QString::fromUtf16(value));
    }
    EXPECT_TRUE(Write(file, u"A", u"K", u"one\r\ntwo\nthree"));
    EXPECT_EQ(Read(file, u"A", u"K"), u"one two three");
}

TEST_F(ProfileHelperTest, WhatNoProfileFileCanHoldIsRefused)
{
    const QString file = Make(QStringLiteral("a.ini"), "[A]\nK=1\n");
    EXPECT_FALSE(Write(file, u"", u"K", u"2"));
    EXPECT_FALSE(Write(file, u"A]", u"K", u"2"));
    EXPECT_FALSE(Write(file, u"A", u"", u"2"));
    EXPECT_FALSE(Write(file, u"A", u"K=L", u"2"));
    EXPECT_FALSE(Write(file, u"A", u";K", u"2"));
    EXPECT_FALSE(Write(file, u"A", u"[K", u"2"));
    EXPECT_FALSE(Write(file, u"A", u"K\nL", u"2"));
    EXPECT_FALSE(Write(Folder_.filePath(QStringLiteral("no/such.ini")), u"A", u"K", u"2"));
    EXPECT_EQ(ContentOf(file), "[A]\nK=1\n");
}

TEST_F(ProfileHelperTest, RegistryValuesHaveTheTypeOfTheirDefault)
{
    ScriptedRegistry registry;
    const auto read = [](const QVariant& defaultValue) {
        return ProfileHelper::ReadRegistryValue(LocalMachine, ProfilePath, QStringLiteral("V"), defaultValue);
    };
    EXPECT_EQ(read(true), QVariant(true));
    EXPECT_EQ(read(7), QVariant(7));
    EXPECT_EQ(read(QStringLiteral("x")), QVariant(QStringLiteral("x")));
    for (const char16_t* text : {u"1", u"true", u"YES", u"-1", u" 1 "}) {
        registry.Set(ProfilePath, QStringLiteral("V"), QString::fromUtf16(text));
        EXPECT_EQ(read(false), QVariant(true)) << qPrintable(QString::fromUtf16(text));
    }
    for (const char16_t* text : {u"0", u"False", u"no"}) {
        registry.Set(ProfilePath, QStringLiteral("V"), QString::fromUtf16(text));
        EXPECT_EQ(read(true), QVariant(false)) << qPrintable(QString::fromUtf16(text));
    }
    registry.Set(ProfilePath, QStringLiteral("V"), QStringLiteral("maybe"));
    EXPECT_EQ(read(true), QVariant(true));
    EXPECT_EQ(read(false), QVariant(false));
    EXPECT_EQ(read(7), QVariant(7));
    EXPECT_EQ(read(QString()), QVariant(QStringLiteral("maybe")));
    registry.Set(ProfilePath, QStringLiteral("V"), QStringLiteral(" -12 "));
    EXPECT_EQ(read(7), QVariant(-12));
    // A registry's own way to write all bits of a number.
    registry.Set(ProfilePath, QStringLiteral("V"), QStringLiteral("4294967295"));
    EXPECT_EQ(read(7), QVariant(-1));
    for (const char16_t* text : {u"4294967296", u"-2147483649", u"1.5", u"0x10"}) {
        registry.Set(ProfilePath, QStringLiteral("V"), QString::fromUtf16(text));
        EXPECT_EQ(read(7), QVariant(7)) << qPrintable(QString::fromUtf16(text));
    }
    registry.Remove(ProfilePath, QStringLiteral("V"));
    EXPECT_EQ(read(7), QVariant(7));
}

TEST_F(ProfileHelperTest, TheMachinesRegistryIsTheFileThatTheEnvironmentNames)
{
    const QString file =
        Make(QStringLiteral("registry.ini"), "[software/KELVARIN]\nDebugPath=/logs\nMaskPhoneNumbers=1\n"
                                             "[\\SOFTWARE\\Kelvarin\\Utils\\Databases\\]\nUseRecordLevelLocking=0\n");
    const EnvironmentScope scope("TOLVA_REGISTRY", QFile::encodeName(file));
    const Registry& registry = Registry::Current();
    EXPECT_EQ(registry.Read(LocalMachine, ProfilePath, QStringLiteral("debugpath")), QStringLiteral("/logs"));
    EXPECT_EQ(registry.Read(LocalMachine, QStringLiteral("Software/Kelvarin/"), QStringLiteral("MaskPhoneNumbers")),
              QStringLiteral("1"));
    EXPECT_EQ(registry.Read(LocalMachine, QStringLiteral("SOFTWARE\\Kelvarin\\Utils\\Databases"),
                            QStringLiteral("UseRecordLevelLocking")),
              QStringLiteral("0"));
    EXPECT_EQ(registry.Read(LocalMachine, ProfilePath, QStringLiteral("Absent")), std::nullopt);
    EXPECT_EQ(registry.Read(QStringLiteral("HKEY_CURRENT_USER"), ProfilePath, QStringLiteral("DebugPath")),
              std::nullopt);
    EXPECT_TRUE(ProfileHelper::ReadRegistryValue(LocalMachine, ProfilePath, QStringLiteral("MaskPhoneNumbers"), false)
                    .toBool());
}

TEST_F(ProfileHelperTest, AChangedRegistryFileIsReadAgain)
{
    const QString file = Make(QStringLiteral("registry.ini"), "[SOFTWARE\\Kelvarin]\nV=1\n");
    const EnvironmentScope scope("TOLVA_REGISTRY", QFile::encodeName(file));
    EXPECT_EQ(Registry::Current().Read(LocalMachine, ProfilePath, QStringLiteral("V")), QStringLiteral("1"));
    Make(QStringLiteral("registry.ini"), "[SOFTWARE\\Kelvarin]\nV=12\n");
    EXPECT_EQ(Registry::Current().Read(LocalMachine, ProfilePath, QStringLiteral("V")), QStringLiteral("12"));
    ASSERT_TRUE(QFile::remove(file));
    EXPECT_EQ(Registry::Current().Read(LocalMachine, ProfilePath, QStringLiteral("V")), std::nullopt);
}

TEST_F(ProfileHelperTest, WithoutOneItIsInTheSystemsConfigurationFolder)
{
    const EnvironmentScope none("TOLVA_REGISTRY", QByteArray());
    const EnvironmentScope user("XDG_CONFIG_HOME", QFile::encodeName(Folder_.filePath(QStringLiteral("user"))));
    const EnvironmentScope machine("XDG_CONFIG_DIRS", QFile::encodeName(Folder_.filePath(QStringLiteral("machine"))));
    ASSERT_TRUE(QDir(Folder_.path()).mkpath(QStringLiteral("user/Kelvarin")));
    ASSERT_TRUE(QDir(Folder_.path()).mkpath(QStringLiteral("machine/Kelvarin")));
    Make(QStringLiteral("user/Kelvarin/Tolva.ini"), "[SOFTWARE\\Kelvarin]\nV=user\n");
    EXPECT_EQ(Registry::Current().Read(LocalMachine, ProfilePath, QStringLiteral("V")), std::nullopt);
    Make(QStringLiteral("machine/Kelvarin/Tolva.ini"), "[SOFTWARE\\Kelvarin]\nV=machine\n");
    EXPECT_EQ(Registry::Current().Read(LocalMachine, ProfilePath, QStringLiteral("V")), QStringLiteral("machine"));
}
