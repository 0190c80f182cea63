// SPDX-License-Identifier: Apache-2.0

// Rows whose texts are made when somebody asks for them, of as much of the mail as they need.

#include "messageslist/FilledListTest.h"
#include "platform/mail/Message.h"

namespace
{
const QByteArray Way =
    "Received: from mx.example.net ([192.0.2.7]) by mail.example.org; Sat, 21 Nov 2026 10:00:00 +0000\r\n";
const QByteArray Sender = "From: =?utf-8?q?J=C3=BCrgen?= <juergen@example.com>\r\n";

/// Mails that say in as many ways where their subject is, or hide it.
QList<QByteArray> ManyMails()
{
    const QByteArray subject = "Subject: =?utf-8?b?R3LDvMOfZQ==?=\r\n =?utf-8?b?IGF1cyBLw7ZsbiA=?=\r\n";
    const QByteArray body = "\r\n" + QByteArray(40000, 'x') + "\r\n";
    QList<QByteArray> mails;
    for (const int stations : {0, 5, 9, 10, 11, 12, 50, 400})
        mails.append(Way.repeated(stations) + Sender + subject + body);
    mails.append(Sender + Way.repeated(40) + subject + body);
    mails.append(subject + body);
    mails.append(Sender + body);
    mails.append(Way.repeated(30) + "Subject: raw \xC3\xBC and\r\n folded\r\n" + Sender + body);
    mails.append(Sender + "Subject: raw \xFC\r\n" + body);
    mails.append(Sender + subject +
                 "\r\nGr\xC3\xBC\xC3\x9F"
                 "e\r\n");
    mails.append(Sender + "no field at all\r\n" + subject + body);
    mails.append(Sender + "Subject: " + QByteArray("wonderful ").repeated(3000) + body);
    mails.append(Sender + subject.chopped(2));
    mails.append("Subject:\r\nFrom:\r\n" + body);
    mails.append(Sender + "Subject: large\r\n\r\n" + QByteArray(1'500'000, 'y'));
    mails.append("just text");
    return mails;
}
} // namespace

class MessagesListLateRowTest : public FilledListTest
{
};

TEST_F(MessagesListLateRowTest, EachRowShowsWhatItsMailSays)
{
    QHash<QString, QByteArray> mails;
    for (const QByteArray& octets : ManyMails()) {
        const qint32 reference = Save(QString(), [&](cMessage& message) { message.CDOMessage()->SetOctets(octets); });
        mails.insert(QString::number(reference), octets);
    }
    Attach();
    // Wide enough for every subject but one.
    List->resize(3000, 700);
    List->UpdateDisplay();
    ASSERT_EQ(List->NumberItems(), mails.size());
    for (int row = 1; row < Grid->Rows(); ++row) {
        const cdo::Message mail(mails.value(Grid->TextMatrix(row, 0)));
        const QString shown = Grid->TextMatrix(row, 2).section(QLatin1Char('\r'), 0, 0);
        const QString subject = mail.Subject().trimmed();
        if (subject.size() < 1000)
            EXPECT_EQ(shown.toStdString(), subject.toStdString());
        else
            EXPECT_TRUE(subject.startsWith(shown.chopped(1)) && shown.size() > 50) << qPrintable(shown);
        EXPECT_EQ(Grid->TextMatrix(row, 3).toStdString(), mail.From().toStdString());
    }
}

TEST_F(MessagesListLateRowTest, ARowWithoutADateKeepsTheOneBeforeThoughNobodyHasSeenThat)
{
    const Date friday(2026, 11, 20, 9, 5);
    Save(QStringLiteral("dated"), [&](cMessage& message) { message.SetSent(friday); });
    Save(QStringLiteral("older"), [](cMessage& message) { message.SetSent(Date(2026, 11, 19, 9, 5)); });
    Save(QStringLiteral("without"));
    Attach();
    Find(QStringLiteral("older"));
    EXPECT_EQ(Grid->TextMatrix(1, 4), QStringLiteral("Thu 19 Nov 09:05"));
    // A second fill, of which nobody looks at a cell.
    List->hide();
    Find(QStringLiteral("dated"));
    Find(QStringLiteral("without"));
    EXPECT_EQ(Grid->TextMatrix(1, 2), QStringLiteral("without\r"));
    EXPECT_EQ(Grid->TextMatrix(1, 4), QStringLiteral("Fri 20 Nov 09:05"));
    EXPECT_EQ(Grid->TextMatrix(1, 5), friday.GeneralDate());
}

TEST_F(MessagesListLateRowTest, ARowShowsTheMailAsItWasReadThoughItIsSeenLater)
{
    const qint32 reference = Save(QStringLiteral("before"));
    Attach();
    List->hide();
    List->UpdateDisplay();
    const cMessagePtr message = OtherComputer().GetMessage(reference);
    message->CDOMessage()->SetSubject(QStringLiteral("behind"));
    ASSERT_TRUE(OtherComputer().SaveMessage(message));
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("before")});
    Tick();
    EXPECT_EQ(Subjects(), QStringList{QStringLiteral("behind")});
}
