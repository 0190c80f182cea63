// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/MessageReader.h"

#include "MailSupport.h"

#include <ctime>

using cdo::Message;
using cdo::MessageReader;
using mailTest::MailFile;
using mailTest::MailFileNames;

namespace
{
QString InPieces(const Message& message)
{
    QString text;
    MessageReader(message).ReadText([&text](const QString& piece) { text += piece; });
    return text;
}

/// Of this process, so that a busy machine fails no test.
template <typename Work>
double ProcessorSeconds(Work work)
{
    const std::clock_t begin = std::clock();
    work();
    return double(std::clock() - begin) / CLOCKS_PER_SEC;
}

Message TextIn(const char* characterSet, const QByteArray& octets)
{
    return Message(QByteArray("Content-Type: text/plain; charset=") + characterSet + "\n\n" + octets);
}
} // namespace

TEST(MessageReaderTest, TheTextInPiecesAndTheBeginningsAreThoseOfTheMail)
{
    for (const QString& name : MailFileNames()) {
        const Message message(MailFile(name.toUtf8().constData()));
        EXPECT_EQ(InPieces(message), message.TextBody()) << qPrintable(name);
        MessageReader reader(message);
        for (const qsizetype most : {qsizetype{1}, qsizetype{40}, qsizetype{1} << 30}) {
            bool isWhole = false;
            const QString text = reader.TextBeginning(most, &isWhole);
            EXPECT_TRUE(message.TextBody().startsWith(text) && text.size() <= most) << qPrintable(name);
            EXPECT_EQ(isWhole, message.TextBody().size() <= most) << qPrintable(name);
            const QString html = reader.HtmlBeginning(most, &isWhole);
            EXPECT_TRUE(message.HTMLBody().startsWith(html)) << qPrintable(name);
            EXPECT_EQ(isWhole, message.HTMLBody().size() <= most) << qPrintable(name);
        }
        EXPECT_EQ(reader.Header("Subject"), message.Subject()) << qPrintable(name);
        EXPECT_EQ(reader.Header("From"), message.From()) << qPrintable(name);
    }
}

TEST(MessageReaderTest, PiecesDivideNoCharacterAndNoLineEndInAnySet)
{
    const auto isSame = [](const Message& message) { return InPieces(message) == message.TextBody(); };
    // Of three octets each, so that no piece of a round size ends between two of them.
    EXPECT_TRUE(isSame(TextIn("utf-8", QByteArray("\xE2\x82\xAC").repeated(100'000))));
    EXPECT_TRUE(isSame(TextIn("utf-8", QByteArray("\xE2\x82").repeated(100'000))));
    EXPECT_TRUE(isSame(TextIn("utf-8", QByteArray("\x80").repeated(100'000))));
    for (const int shift : {0, 1, 2}) {
        EXPECT_TRUE(isSame(TextIn("utf-8", QByteArray(shift, 'x') + QByteArray("\r\r\n").repeated(100'000))));
        EXPECT_TRUE(isSame(TextIn("iso-8859-15", QByteArray(shift, 'x') + QByteArray("\xA4\r\n").repeated(100'000))));
    }
    EXPECT_TRUE(isSame(TextIn("iso-8859-15", "x\r\r")));
    EXPECT_TRUE(isSame(TextIn("gb18030", QByteArray("\x81\x30\x81\x30").repeated(50'000))));
    EXPECT_TRUE(isSame(TextIn("iso-2022-jp", QByteArray("\x1B$B$3$s\x1B(B ").repeated(50'000))));
    // What the set cannot read and what is UTF-8 after all.
    EXPECT_TRUE(isSame(TextIn("iso-2022-jp", QByteArray("\xC3\xA9 ").repeated(50'000))));
    EXPECT_TRUE(isSame(TextIn("gb18030", QByteArray("\xFF\xFE ").repeated(50'000))));
    EXPECT_FALSE(MessageReader(Message("Content-Type: text/html\n\n<p>")).ReadText([](const QString&) {}));
}

TEST(MessageReaderTest, AHeaderOfMegabytesIsCutBeforeItIsDecoded)
{
    for (const QByteArray& words :
         {QByteArray("word "), QByteArray("=?utf-8?B?w6k=?= "), QByteArray("x"), QByteArray("a@example.org,\r\n ")}) {
        const QByteArray value = words.repeated(20'000'000 / words.size());
        const Message message("Subject: " + value + "\r\nFrom: " + value + "\r\n\r\nhello");
        QString subject;
        QString from;
        EXPECT_LT(ProcessorSeconds([&] {
                      MessageReader reader(message);
                      subject = reader.Header("Subject", 500);
                      from = reader.Header("From", 500);
                  }),
                  0.5)
            << words.constData();
        EXPECT_EQ(subject.size(), 500) << words.constData();
        EXPECT_EQ(from.size(), 500) << words.constData();
        EXPECT_FALSE(subject.contains(QStringLiteral("=?"))) << words.constData();
    }
}

TEST(MessageReaderTest, ADateHeaderOfMegabytesTakesNoTime)
{
    const Message message("Received: from x " + QByteArray("; y").repeated(2'000'000) +
                          "; Fri, 20 Nov 2026 08:00:00 +0000\r\nDate: " + QByteArray(5'000'000, ';') + "\r\n\r\nhello");
    EXPECT_LT(ProcessorSeconds([&] {
                  EXPECT_TRUE(message.ReceivedTime().isValid());
                  EXPECT_FALSE(message.SentOn().isValid());
              }),
              1.0);
}
