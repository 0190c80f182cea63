// SPDX-License-Identifier: Apache-2.0

// tolva setup mail: what it writes is what the page on hooking up shows, with the station's own names.

#include "CommandLineTest.h"

#include <QRegularExpression>

namespace
{
const QStringList Ways = {QStringLiteral("postfix-alias"), QStringLiteral("postfix"), QStringLiteral("exim"),
                          QStringLiteral("exim-maildir"),  QStringLiteral("mbsync"),  QStringLiteral("fetchmail"),
                          QStringLiteral("gammu-smsd"),    QStringLiteral("msmtp"),   QStringLiteral("sendmail")};
} // namespace

class MailSetupTest : public CommandLineTest
{
protected:
    Outcome SetUpMail(const QString& way, const QStringList& words = {}) const
    {
        return Run(QStringList{QStringLiteral("setup"), QStringLiteral("mail"), Station(), QStringLiteral("--with"),
                               way, QStringLiteral("--address"), QStringLiteral("studio@harbourfm.example.org"),
                               QStringLiteral("--host"),
                               (way == u"msmtp" ? QStringLiteral("smtp") : QStringLiteral("imap")) +
                                   QStringLiteral(".harbourfm.example.org"),
                               QStringLiteral("--login"), QStringLiteral("studio"), QStringLiteral("--output"),
                               Path(QStringLiteral("out/") + way)} +
                   words);
    }
    /// The files in a folder by their paths from there.
    QStringList FilesIn(const QString& folder) const
    {
        QStringList names;
        const QDir directory(folder);
        for (const QString& name : directory.entryList(QDir::Files | QDir::Hidden, QDir::Name))
            names.append(u'/' + name);
        for (const QString& name : directory.entryList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot)) {
            for (const QString& inside : FilesIn(directory.filePath(name)))
                names.append(u'/' + name + inside);
        }
        return names;
    }
    /// Blocks of code of the page that it says to put into a file, as "path: text".
    static QStringList BlocksOfPage()
    {
        static const QRegularExpression block(
            QStringLiteral("(?:In|this as|it as) `(/[^`]+)`[^`\\n]*:\\n\\n```[a-z]*\\n(.*?)^```"),
            QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
        QStringList blocks;
        auto matches = block.globalMatch(QString::fromUtf8(Read(QStringLiteral(TOLVA_DOCUMENTS "/hookups.md"))));
        while (matches.hasNext()) {
            const auto match = matches.next();
            blocks.append(match.captured(1) + QStringLiteral(": ") + match.captured(2));
        }
        return blocks;
    }
};

TEST_F(MailSetupTest, EachFileOfEachWayStandsOnThePage)
{
    const QStringList page = BlocksOfPage();
    ASSERT_GE(page.size(), 14);
    int files = 0;
    for (const QString& way : Ways) {
        const Outcome outcome = SetUpMail(way);
        ASSERT_EQ(outcome.Code, 0) << outcome.Problems.constData();
        const QString folder = Path(QStringLiteral("out/") + way);
        for (const QString& file : FilesIn(folder)) {
            if (file == u"/install.sh")
                continue;
            ++files;
            QString text = QString::fromUtf8(Read(folder + file));
            text.replace(Station(), QStringLiteral("/srv/station"));
            EXPECT_TRUE(page.contains(file + QStringLiteral(": ") + text)) << way.toStdString() << '\n'
                                                                           << file.toStdString() << '\n'
                                                                           << text.toStdString();
            EXPECT_TRUE(outcome.Output.contains(file.toUtf8() + '\n')) << outcome.Output.constData();
        }
        EXPECT_TRUE(outcome.Output.contains("sh " + folder.toUtf8() + "/install.sh"));
    }
    EXPECT_EQ(files, 24);
}

TEST_F(MailSetupTest, AFolderWithSomethingInItIsLeftAlone)
{
    Write(QStringLiteral("out/postfix/mine"), "mine");
    const Outcome outcome = SetUpMail(QStringLiteral("postfix"));
    EXPECT_EQ(outcome.Code, 73);
    EXPECT_EQ(FilesIn(Path(QStringLiteral("out/postfix"))), QStringList{QStringLiteral("/mine")});
}

TEST_F(MailSetupTest, WhatWouldBreakSettingsIsRefused)
{
    const QStringList words = {QStringLiteral("--address"), QStringLiteral("studio\"; rm -rf /@example.org")};
    EXPECT_EQ(SetUpMail(QStringLiteral("postfix"), words).Code, 64);
    EXPECT_EQ(SetUpMail(QStringLiteral("mbsync"), {QStringLiteral("--login"), QStringLiteral("a b")}).Code, 64);
    EXPECT_EQ(SetUpMail(QStringLiteral("mbsync"), {QStringLiteral("--host"), QStringLiteral("a\nb")}).Code, 64);
    EXPECT_EQ(SetUpMail(QStringLiteral("pigeon")).Code, 64);
    EXPECT_FALSE(QFileInfo::exists(Path(QStringLiteral("out"))));
}

TEST_F(MailSetupTest, WhatIsMissingIsNamed)
{
    const Outcome outcome = Run({QStringLiteral("setup"), QStringLiteral("mail"), Station(), QStringLiteral("--with"),
                                 QStringLiteral("postfix"), QStringLiteral("--output"), Path(QStringLiteral("out"))});
    EXPECT_EQ(outcome.Code, 64);
    EXPECT_TRUE(outcome.Problems.contains("--address is missing")) << outcome.Problems.constData();
    EXPECT_EQ(Run({QStringLiteral("setup"), QStringLiteral("mail"), Path(QStringLiteral("nowhere"))}).Code, 66);
}

TEST_F(MailSetupTest, TheConnectionToAnSmtpServerIsTheOneThatWasAskedFor)
{
    const auto settings = [&](const QStringList& words) {
        const QString folder = Path(QStringLiteral("out/%1").arg(words.size() * 100 + words.join(u' ').size()));
        const Outcome outcome =
            SetUpMail(QStringLiteral("msmtp"), QStringList{QStringLiteral("--output"), folder} + words);
        EXPECT_EQ(outcome.Code, 0) << outcome.Problems.constData();
        return Read(folder + QStringLiteral("/etc/tolva/msmtprc"));
    };
    EXPECT_TRUE(settings({}).contains("port 587\ntls on\ntls_starttls on\nauth on\nuser studio\n"));
    const QByteArray atOnce = settings({QStringLiteral("--tls"), QStringLiteral("yes")});
    EXPECT_TRUE(atOnce.contains("port 465\ntls on\ntls_starttls off\nauth on\n")) << atOnce.constData();
    const QByteArray house = settings({QStringLiteral("--tls"), QStringLiteral("no")});
    EXPECT_TRUE(house.contains("port 25\ntls off\nauth off\n")) << house.constData();
    EXPECT_FALSE(house.contains("password"));
    EXPECT_TRUE(settings({QStringLiteral("--port"), QStringLiteral("2525")}).contains("\nport 2525\n"));
    for (const char* port : {"0", "65536", "smtp", "25 --"}) {
        EXPECT_EQ(SetUpMail(QStringLiteral("msmtp"), {QStringLiteral("--port"), QLatin1String(port)}).Code, 64) << port;
    }
    EXPECT_EQ(SetUpMail(QStringLiteral("msmtp"), {QStringLiteral("--tls"), QStringLiteral("perhaps")}).Code, 64);
}
