// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/RawHeaders.h"

#include "MailSupport.h"
#include "platform/mail/MessageReader.h"

using cdo::Message;
using cdo::RawHeaders;
using cdo::RawHeadersOfBeginning;
using mailTest::Plain;
using mailTest::Sent;

namespace
{
constexpr qsizetype Most = 1000;
const QList<QByteArray> Names = {"Subject", "From"};

/// Whatever a beginning tells must be what the whole mail tells. The number of octets from which on it does.
qsizetype TellsFrom(const QByteArray& mail)
{
    const QList<QByteArray> whole = RawHeaders(mail, Names, Most);
    qsizetype first = -1;
    for (qsizetype size = 0; size <= mail.size(); ++size) {
        const auto values = RawHeadersOfBeginning(mail.first(size), size == mail.size(), Names, Most);
        if (values) {
            EXPECT_EQ(*values, whole) << size;
            first = first < 0 ? size : first;
        }
    }
    return first;
}
} // namespace

TEST(RawHeaders, DecodedAreWhatTheReaderAnswersForEveryMailFile)
{
    for (const QString& name : mailTest::MailFileNames()) {
        const QByteArray octets = mailTest::MailFile(name.toLatin1().constData());
        const Message message(octets);
        const cdo::MessageReader reader(message);
        const QList<QByteArray> raw = RawHeaders(octets, Names, Most);
        for (qsizetype i = 0; i < Names.size(); ++i)
            EXPECT_EQ(Plain(cdo::DecodedHeader(Names.at(i), raw.at(i), Most)), Plain(reader.Header(Names.at(i), Most)))
                << qPrintable(name);
    }
}

TEST(RawHeaders, OfABeginningAreThoseOfTheMailOrNothingAtAnyLength)
{
    for (const QString& name : mailTest::MailFileNames())
        TellsFrom(mailTest::MailFile(name.toLatin1().constData())
                      .first(qMin<qsizetype>(4000, mailTest::MailFile(name.toLatin1().constData()).size())));
}

TEST(RawHeaders, ABeginningTellsAsSoonAsBothFieldsHaveEnded)
{
    const QByteArray mail =
        Sent("Received: from here\nFrom: Ann\n <ann@example.com>\nSubject: A song\nTo: us\n\nText\n");
    EXPECT_EQ(TellsFrom(mail), mail.indexOf("To:") + 1);
}

TEST(RawHeaders, AFieldThatMayGoOnBehindTheBeginningIsNotTold)
{
    const QByteArray mail = Sent("From: ann@example.com\nSubject: A song\n of the sea\nTo: us\n\n");
    EXPECT_FALSE(RawHeadersOfBeginning(mail.first(mail.indexOf(" of")), false, Names, Most));
    EXPECT_FALSE(RawHeadersOfBeginning(mail.first(mail.indexOf(" of") + 1), false, Names, Most));
}

TEST(RawHeaders, AMissingFieldIsToldOnceTheHeaderHasEnded)
{
    const QByteArray mail = Sent("From: ann@example.com\nTo: us\n\nSubject: no\n\n");
    EXPECT_EQ(TellsFrom(mail), mail.indexOf("\r\n\r\n") + 4);
    EXPECT_TRUE(RawHeaders(mail, Names, Most).first().isNull());
}

TEST(RawHeaders, AHeaderThatIsNotAsciiIsLeftToTheWholeMail)
{
    // As octets in UTF-8, of which nobody knows yet whether they stand for octets or for characters.
    const QByteArray mail = Sent("From: Ann\nSubject: Gr\xC3\x83\xC2\xBC\xC3\x9F\nTo: us\n\n");
    EXPECT_FALSE(RawHeadersOfBeginning(mail, true, Names, Most));
    // A body that is not ASCII says nothing of the header.
    EXPECT_TRUE(RawHeadersOfBeginning(Sent("From: Ann\nSubject: Hello\n\n\xC3\x83"), false, Names, Most));
}

TEST(RawHeaders, LinesThatAreNoFieldsCountWithoutAnEmptyLineOnly)
{
    TellsFrom(Sent("From: Ann\nno field at all\nSubject: Hello\nTo: us\n\nText\n"));
    TellsFrom(Sent("From: Ann\nno field at all\nSubject: Hello\nTo: us\n"));
    TellsFrom(Sent("From Ann Sat Nov 21\nFrom: Ann\nSubject: Hello\nTo: us\n\n"));
    TellsFrom(Sent("Dear station\nFrom: Ann\nSubject: Hello\nTo: us\n\n"));
}
