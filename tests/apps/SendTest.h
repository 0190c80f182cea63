// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "CommandLineTest.h"
#include "platform/records/DBEngine.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

/// A station with an address, mails that wait in its Outbox, and a program that takes them: a script that puts what it
/// accepts into a folder, one file a hand-over, and otherwise does what the test has written.
class SendTest : public CommandLineTest
{
protected:
    void SetUp() override
    {
        CommandLineTest::SetUp();
        ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("taken"))));
        Expect("setting", {QStringLiteral("Station.EmailAddress"), QStringLiteral("studio@harbour.example")});
        Answer("");
        Program_ = Write(QStringLiteral("bin/mailer"),
                         "#!/bin/sh\n"
                         "box=$(mktemp \"" +
                             Path(QStringLiteral("taken/")).toUtf8() +
                             "XXXXXX\")\n"
                             "{ printf 'ARGUMENTS'; printf ' %s' \"$@\"; echo; cat; } >\"$box\"\n"
                             "accept() { mv \"$box\" \"$box.taken\"; }\n"
                             ". \"" +
                             Path(QStringLiteral("answer")).toUtf8() +
                             "\"\n"
                             "accept\n");
        ASSERT_TRUE(QFile::setPermissions(Program_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    /// What the program does once it has read a message, in the shell's words; it accepts when they come to their end.
    void Answer(const QByteArray& script) const { Write(QStringLiteral("answer"), script + "\n"); }
    QString Program() const { return Program_; }

    /// Sets columns of a message's row, as a program that writes messages does.
    void Set(const QString& reference, const QString& columns) const
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Tolva.mdb"));
        database->Execute(QStringLiteral("UPDATE [Messages] SET %1 WHERE [Reference]=%2").arg(columns, reference));
        database->Close();
    }
    /// Columns of the ledger's row.
    void SetLedger(const QString& reference, const QString& columns) const
    {
        const auto database = dao::DBEngine::OpenDatabase(Station() + QStringLiteral("/Directory/Directory.mdb"));
        database->Execute(QStringLiteral("UPDATE [Sending] SET %1 WHERE [Message]=%2").arg(columns, reference));
        database->Close();
    }
    /// Lets the time come for what was put off.
    void MakeDue(const QString& reference) const
    {
        constexpr int TheYear2000 = 36526; // in days
        SetLedger(reference, QStringLiteral("[Until]=%1").arg(TheYear2000));
    }
    QString Waiting(const QByteArray& mail) const
    {
        const QString reference = FileMail(mail);
        Set(reference, QStringLiteral("[Category]=2, [Flags]=2, [Sent]=0"));
        return reference;
    }
    /// A mail that waits to be sent; its number.
    QString WaitingMail(const QByteArray& subject = "An answer",
                        const QByteArray& to = "Ann <ann@listeners.example>") const
    {
        return Waiting("From: Harbour FM <studio@harbour.example>\r\nTo: " + to + "\r\nSubject: " + subject +
                       "\r\nDate: Sat, 21 Nov 2026 14:05:09 +0000\r\nMessage-ID: <" + subject.toHex() +
                       "@harbour.example>\r\n\r\nHello.\r\n");
    }
    /// A text message that waits to be sent; its number.
    QString WaitingText(const QString& to, const QByteArray& text) const
    {
        const QString reference = FileMail(text, {QStringLiteral("--sms"), QStringLiteral("--from"),
                                                  QStringLiteral("Harbour"), QStringLiteral("--to"), to});
        Set(reference, QStringLiteral("[Category]=2, [Flags]=2, [Sent]=0"));
        return reference;
    }

    QStringList SendWords(const QStringList& words = {}) const
    {
        return QStringList{QStringLiteral("--sendmail"), Program()} + words;
    }
    Outcome Send(const QStringList& words = {}) const { return OnStation("send", SendWords(words)); }

    /// What the program has accepted, each with its arguments in the first line.
    QList<QByteArray> Taken() const
    {
        QList<QByteArray> all;
        const QDir folder(Path(QStringLiteral("taken")));
        const QStringList names = folder.entryList({QStringLiteral("*.taken")}, QDir::Files, QDir::Time);
        for (const QString& name : names)
            all.append(Read(folder.filePath(name)));
        return all;
    }
    /// How often the program has accepted a mail of that subject.
    int TimesTaken(const QByteArray& subject) const
    {
        int times = 0;
        for (const QByteArray& mail : Taken())
            times += mail.contains("\nSubject: " + subject + "\n") ? 1 : 0;
        return times;
    }
    /// How often it was given anything.
    int TimesCalled() const
    {
        return static_cast<int>(QDir(Path(QStringLiteral("taken"))).entryList(QDir::Files).size());
    }

    QString FolderOf(const QString& reference) const
    {
        for (const QJsonObject& message : Messages()) {
            if (QString::number(message.value(QStringLiteral("reference")).toInt()) == reference)
                return message.value(QStringLiteral("category")).toString();
        }
        return {};
    }
    bool IsMarked(const QString& reference) const
    {
        for (const QJsonObject& message : Messages()) {
            if (QString::number(message.value(QStringLiteral("reference")).toInt()) == reference)
                return message.value(QStringLiteral("flags")).toArray().contains(QStringLiteral("sendPending"));
        }
        return false;
    }
    /// "refused", "unclear" ... of one that waits; empty for one that does not.
    QString StateOf(const QString& reference) const
    {
        const Outcome states = OnStation("send", {QStringLiteral("state"), QStringLiteral("--json")});
        for (const QByteArray& line : states.Lines()) {
            const QJsonObject state = QJsonDocument::fromJson(line).object();
            if (QString::number(state.value(QStringLiteral("reference")).toInt()) == reference)
                return state.value(QStringLiteral("state")).toString();
        }
        return {};
    }
    static bool IsSent(const QString& folder) { return folder == u"Sent"; }

private:
    QString Program_;
};
