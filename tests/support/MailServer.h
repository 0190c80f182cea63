// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QList>

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>

/// A small SMTP server on a port of its own on loopback (RFC 5321), one client after the other, in a thread of its own.
/// It accepts everything but what the test has it answer otherwise.
class MailServer
{
public:
    struct Mail
    {
        QByteArray Sender; ///< As behind MAIL FROM.
        QList<QByteArray> Recipients;
        QByteArray Octets; ///< Line ends are "\r\n"; dots that were doubled are single again.
    };

    MailServer();
    ~MailServer();
    MailServer(const MailServer&) = delete;
    MailServer& operator=(const MailServer&) = delete;

    int Port() const { return Port_; }
    /// The reply to every command line that begins so, in whatever case, such as "RCPT TO:<bob"; "." is the end of the
    /// mail. An empty reply breaks the connection there. A null one takes it back.
    void AnswerTo(const char* begin, const char* reply);
    /// What was accepted.
    QList<Mail> Accepted() const;

private:
    void Run();
    void Serve(int client);
    std::string ReplyTo(const std::string& line) const;

    int Listener_ = -1;
    int Port_ = 0;
    std::atomic<bool> IsEnding_ = false;
    mutable std::mutex Mutex_;
    std::map<std::string, std::string> Replies_;
    QList<Mail> Accepted_;
    std::thread Thread_;
};
