// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/TraceFields.h"

#include "MailSupport.h"

using cdo::AreSameButForTrace;
using cdo::IsTraceField;

namespace
{
const QByteArray Mail = "From: a@example.org\r\nSubject: one\r\n two\r\n\r\nHello.\r\nReceived: said the text\r\n";
}

TEST(TraceFieldsTest, OneMailByTwoRoutesIsTheSame)
{
    const QByteArray first =
        "Return-Path: <a@example.org>\r\nReceived: by one\r\n\tfor b\r\nDelivered-To: b\r\n" + Mail;
    const QByteArray second = "received: by two\r\nARC-Seal: i=1\r\nX-Spam-Status: No\r\nX-Original-To: c\r\n" + Mail;
    EXPECT_TRUE(AreSameButForTrace(first, second));
    EXPECT_TRUE(AreSameButForTrace(first, Mail));
    EXPECT_TRUE(AreSameButForTrace(Mail, Mail));
}

TEST(TraceFieldsTest, ARouteMayChangeLineBreaks)
{
    QByteArray lines = Mail;
    lines.replace("\r\n", "\n");
    EXPECT_TRUE(AreSameButForTrace(Mail, lines));
    lines.chop(1);
    EXPECT_TRUE(AreSameButForTrace(Mail, lines));
    EXPECT_FALSE(AreSameButForTrace("From: a\n\nx\ry\n", "From: a\n\nx\ny\n"));
}

TEST(TraceFieldsTest, WhateverTheSenderWroteMakesAnotherMail)
{
    for (const char* part : {"a@example.org", "one", " two", "Hello", "said the text"}) {
        QByteArray other = Mail;
        other.replace(part, "other");
        EXPECT_FALSE(AreSameButForTrace(Mail, other)) << part;
    }
    EXPECT_FALSE(AreSameButForTrace(Mail, "To: b@example.org\r\n" + Mail));
    EXPECT_FALSE(AreSameButForTrace(Mail, Mail + "PS\r\n"));
    EXPECT_FALSE(AreSameButForTrace("DKIM-Signature: v=1\r\n" + Mail, Mail));
    EXPECT_FALSE(AreSameButForTrace("Resent-To: b\r\n" + Mail, Mail));
}

TEST(TraceFieldsTest, MailsWithoutAHeaderOrABodyAreCompared)
{
    EXPECT_TRUE(AreSameButForTrace("", ""));
    EXPECT_FALSE(AreSameButForTrace("", "Only words\n"));
    EXPECT_TRUE(AreSameButForTrace("Received: x\n\nOnly words\n", "Received: y\n\nOnly words\n"));
    EXPECT_TRUE(AreSameButForTrace("Subject: x\n", "Received: y\nSubject: x\n"));
}

TEST(TraceFieldsTest, NamesBeginAndEndAsTheyAreListed)
{
    EXPECT_TRUE(IsTraceField("RECEIVED"));
    EXPECT_TRUE(IsTraceField("x-spam-score"));
    EXPECT_FALSE(IsTraceField("Receive"));
    EXPECT_FALSE(IsTraceField("Received-By-Hand"));
    EXPECT_FALSE(IsTraceField("X-Spa"));
    EXPECT_FALSE(IsTraceField("Subject"));
}
