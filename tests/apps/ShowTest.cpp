// SPDX-License-Identifier: Apache-2.0

// tolva show.

#include "CommandLineTest.h"

#include <QJsonArray>
#include <QJsonDocument>

#ifdef Q_OS_LINUX
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

class ShowTest : public CommandLineTest
{
};

TEST_F(ShowTest, APlainMailIsShownWithItsFields)
{
    const QString reference = FileMail(Mail("A card", "Two lines\r\nof text.\r\n"));
    const QByteArray shown = Expect("show", {reference});
    EXPECT_TRUE(shown.startsWith("Message:     1\nFolder:      Inbox\nFlags:       unread\n")) << shown.constData();
    EXPECT_TRUE(shown.contains("From:        Loveday Tregenza <loveday@example.org>\n")) << shown.constData();
    EXPECT_TRUE(shown.contains("Sent:        Fri 20 Nov 2026 08:00:00\n")) << shown.constData();
    EXPECT_TRUE(shown.endsWith("\n\nTwo lines\nof text.\n")) << shown.constData();
}

TEST_F(ShowTest, ShowingLeavesTheMessageUnread)
{
    const QString reference = FileMail(Mail("A card"));
    Expect("show", {reference});
    EXPECT_EQ(Messages().value(0).value(QStringLiteral("flags")).toArray(), QJsonArray());
}

TEST_F(ShowTest, OfAWebPageTheWordsAreShownAndNoScript)
{
    const QString reference =
        FileMail("From: a@example.org\r\nSubject: page\r\nMIME-Version: 1.0\r\nContent-Type: text/html\r\n\r\n"
                 "<html><head><title>t</title><style>p{}</style></head><body><p>Fish &amp; chips</p>"
                 "<script>alert('x')</script><p>&pound;5</p></body></html>\r\n");
    const QByteArray shown = Expect("show", {reference});
    EXPECT_TRUE(shown.contains("[This message is a web page;")) << shown.constData();
    EXPECT_TRUE(shown.endsWith("Fish & chips\n\n\xC2\xA3"
                               "5\n"))
        << shown.constData();
    EXPECT_FALSE(shown.contains("alert"));
}

TEST_F(ShowTest, JsonHoldsBodiesAndAttachments)
{
    const QString reference =
        FileMail("From: a@example.org\r\nSubject: parts\r\nMessage-ID: <1@example.org>\r\nMIME-Version: 1.0\r\n"
                 "Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\nContent-Type: text/plain\r\n\r\nhello\r\n"
                 "--b\r\nContent-Type: application/pdf; name=tides.pdf\r\nContent-Transfer-Encoding: "
                 "base64\r\n\r\nAAAA\r\n--b--\r\n");
    const QJsonObject message = QJsonDocument::fromJson(Expect("show", {reference, QStringLiteral("--json")})).object();
    EXPECT_EQ(message.value(QStringLiteral("text")).toString().trimmed(), QStringLiteral("hello"));
    const QJsonObject attachment = message.value(QStringLiteral("attachments")).toArray().at(0).toObject();
    EXPECT_EQ(attachment.value(QStringLiteral("name")).toString(), QStringLiteral("tides.pdf"));
    EXPECT_EQ(attachment.value(QStringLiteral("size")).toInt(), 3);
}

TEST_F(ShowTest, WhatIsCutIsSaid)
{
    QByteArray mail = "From: a@example.org\r\nTo: " + QByteArray("somebody <b@example.org>, ").repeated(10'000) +
                      "last@example.org\r\nSubject: Files\r\nMIME-Version: 1.0\r\n"
                      "Content-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n\r\nhello\r\n";
    for (int i = 0; i < 3000; ++i)
        mail += "--b\r\nContent-Type: application/pdf; name=a" + QByteArray::number(i) + ".pdf\r\n\r\ncontent\r\n";
    const QString one = FileMail(mail + "--b--\r\n");
    const QJsonObject shown = QJsonDocument::fromJson(Expect("show", {one, QStringLiteral("--json")})).object();
    EXPECT_EQ(shown.value(u"shortened").toArray(), (QJsonArray{QStringLiteral("to"), QStringLiteral("attachments")}));
    EXPECT_EQ(shown.value(u"to").toString().size(), 100'000);
    EXPECT_EQ(shown.value(u"text").toString(), QStringLiteral("hello"));
    const qsizetype listed = shown.value(u"attachments").toArray().size();
    EXPECT_GT(listed, 900);
    EXPECT_LT(listed, 1100);

    const QByteArray plain = Expect("show", {one});
    EXPECT_TRUE(plain.contains(" [It goes on.]\n")) << plain.left(500).constData();
    EXPECT_TRUE(plain.contains("[There are more. All of them: tolva export FOLDER 1 FILE]\n"));
    EXPECT_EQ(Expect("show", {one, QStringLiteral("--raw")}), mail + "--b--\r\n");
}

TEST_F(ShowTest, EveryOddMailShowsInAllForms)
{
    OnStation("file", {QStringLiteral(TOLVA_TEST_DATA "/mail")});
    const QList<QJsonObject> messages = Messages();
    ASSERT_GE(messages.size(), 50);
    for (const QJsonObject& message : messages) {
        const QString reference = QString::number(message.value(QStringLiteral("reference")).toInt());
        EXPECT_FALSE(Expect("show", {reference}).isEmpty());
        const QByteArray json = Expect("show", {reference, QStringLiteral("--json")});
        EXPECT_FALSE(QJsonDocument::fromJson(json).isNull()) << json.constData();
    }
}

TEST_F(ShowTest, AMessageThatIsNotThereIsNamed)
{
    const Outcome outcome = OnStation("show", {QStringLiteral("42")});
    EXPECT_EQ(outcome.Code, 65);
    EXPECT_EQ(outcome.Output, "");
    EXPECT_TRUE(outcome.Problems.startsWith("tolva: There is no message 42")) << outcome.Problems.constData();
}

#ifdef Q_OS_LINUX
/// The most memory that a run of the program had, in octets; its output goes nowhere.
static qint64 PeakOf(const QStringList& words, const QString& registry)
{
    QList<QByteArray> texts{QByteArray(TOLVA_PROGRAM)};
    for (const QString& word : words)
        texts.append(word.toUtf8());
    QList<char*> arguments;
    for (QByteArray& text : texts)
        arguments.append(text.data());
    arguments.append(nullptr);
    qputenv("TOLVA_REGISTRY", registry.toUtf8());
    const pid_t process = ::fork();
    if (process == 0) {
        const int nowhere = ::open("/dev/null", O_WRONLY);
        ::dup2(nowhere, STDOUT_FILENO);
        ::execv(arguments.first(), arguments.data());
        ::_exit(127);
    }
    int status = -1;
    rusage usage = {};
    EXPECT_EQ(::wait4(process, &status, 0, &usage), process);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << words.join(u' ').toStdString();
    qunsetenv("TOLVA_REGISTRY");
    return qint64(usage.ru_maxrss) * 1024;
}

TEST_F(ShowTest, AMailOfAHundredMegabytesIsShownAndExportedInThreeTimesItsRoom)
{
    constexpr qint64 Base = 40'000'000; // what the program takes for a short mail, and some
    constexpr qint64 Size = 100'000'000;
    const QByteArray header = "From: a@example.org\r\nSubject: Large\r\n";
    const QByteArray line = "Words of a mail that goes on and on, line by line, for a hundred megabytes.\r\n";
    const QByteArray coded = "V29yZHMgb2YgYSBtYWlsIHRoYXQgZ29lcyBvbiBhbmQgb24sIGxpbmUgYnkgbGluZS4KCg==";
    const QList<QPair<QByteArray, QByteArray>> mails{
        {header + "Content-Type: text/plain; charset=utf-8\r\n\r\n", line},
        {header + "MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n\r\nhello\r\n--b\r\n"
                  "Content-Type: application/pdf; name=a.pdf\r\nContent-Transfer-Encoding: base64\r\n\r\n",
         coded + "\r\n"},
        {"From: a@example.org\r\nSubject: ", "word "},
        {"From: a@example.org\r\nSubject: Many\r\nTo: ", "somebody <b@example.org>, "},
        {header + "MIME-Version: 1.0\r\nContent-Type: multipart/mixed; boundary=b\r\n\r\n--b\r\n\r\nhello\r\n",
         "--b\r\nContent-Type: application/pdf; name=a.pdf\r\n\r\ncontent\r\n"},
    };
    const QString path = Path(QStringLiteral("large.eml"));
    for (const auto& [begin, rest] : mails) {
        {
            // In pieces: a process begins with the memory of the one that started it.
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(begin);
            const QByteArray block = rest.repeated(1'000'000 / rest.size());
            while (file.pos() < Size)
                file.write(block);
        }
        Expect("file", {path});
        const QString reference = QString::number(Messages().size());
        const QString registry = Path(QStringLiteral("Tolva.ini"));
        EXPECT_LT(PeakOf({QStringLiteral("show"), Station(), reference}, registry), 3 * Size + Base)
            << begin.constData();
        EXPECT_LT(PeakOf({QStringLiteral("show"), Station(), reference, QStringLiteral("--json")}, registry),
                  3 * Size + Base)
            << begin.constData();
        EXPECT_LT(PeakOf({QStringLiteral("export"), Station(), reference, Path(QStringLiteral("out.eml")),
                          QStringLiteral("--force")},
                         registry),
                  3 * Size + Base)
            << begin.constData();
    }
}

TEST_F(ShowTest, AMailOfEightBitTextIsShownAndExportedInThreeTimesItsRoom)
{
    constexpr qint64 Base = 40'000'000;
    constexpr qint64 Size = 50'000'000;
    const QString path = Path(QStringLiteral("large.eml"));
    const QByteArray line = "\xC3\xA4\xC3\xB6\xC3\xBC \xD1\x81\xD0\xBB\xD0\xBE\xD0\xB2\xD0\xBE word\r\n";
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("From: a@example.org\r\nSubject: Large\r\nMIME-Version: 1.0\r\n"
                   "Content-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: 8bit\r\n\r\n");
        const QByteArray block = line.repeated(1'000'000 / line.size());
        while (file.pos() < Size)
            file.write(block);
    }
    Expect("file", {path});
    const QString registry = Path(QStringLiteral("Tolva.ini"));
    const QString one = QStringLiteral("1");
    const QString out = Path(QStringLiteral("out.eml"));
    EXPECT_LT(PeakOf({QStringLiteral("show"), Station(), one}, registry), 3 * Size + Base);
    EXPECT_LT(PeakOf({QStringLiteral("show"), Station(), one, QStringLiteral("--json")}, registry), 3 * Size + Base);
    EXPECT_LT(PeakOf({QStringLiteral("export"), Station(), one, out}, registry), 3 * Size + Base);
    EXPECT_EQ(QFileInfo(out).size(), QFileInfo(path).size());
}
#endif
