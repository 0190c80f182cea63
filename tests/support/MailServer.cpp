// SPDX-License-Identifier: Apache-2.0
#include "support/MailServer.h"

#include <QElapsedTimer>

#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace
{
constexpr int Tick = 50; // milliseconds

/// The lines that a client sends, until it goes or the server ends.
class LineReader
{
public:
    LineReader(int client, const std::atomic<bool>& isEnding) : Client_(client), IsEnding_(isEnding) {}

    /// False when there is none any more.
    bool Read(QByteArray& line)
    {
        qsizetype end = -1;
        while ((end = Waiting_.indexOf('\n')) < 0) {
            pollfd waiting{Client_, POLLIN, 0};
            if (IsEnding_)
                return false;
            if (poll(&waiting, 1, Tick) <= 0)
                continue;
            char octets[65536];
            const ssize_t count = recv(Client_, octets, sizeof octets, 0);
            if (count <= 0)
                return false;
            Waiting_.append(octets, count);
        }
        line = Waiting_.left(end + 1);
        Waiting_.remove(0, end + 1);
        return true;
    }

private:
    int Client_;
    const std::atomic<bool>& IsEnding_;
    QByteArray Waiting_;
};

bool Say(int client, const std::string& reply)
{
    const std::string line = reply + "\r\n";
    return send(client, line.data(), line.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(line.size());
}

bool BeginsSo(const std::string& line, const char* begin)
{
    return QByteArray::fromStdString(line).toUpper().startsWith(QByteArray(begin).toUpper());
}

QByteArray InBrackets(const QByteArray& line)
{
    const qsizetype begin = line.indexOf('<') + 1;
    return line.mid(begin, line.indexOf('>') - begin);
}
} // namespace

MailServer::MailServer()
{
    Listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(Listener_, reinterpret_cast<const sockaddr*>(&address), size) != 0 || listen(Listener_, 16) != 0 ||
        getsockname(Listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        throw std::runtime_error("no port for the mail server");
    Port_ = ntohs(address.sin_port);
    Thread_ = std::thread([this] { Run(); });
}

MailServer::~MailServer()
{
    IsEnding_ = true;
    Thread_.join();
    close(Listener_);
}

void MailServer::AnswerTo(const char* begin, const char* reply)
{
    const std::lock_guard lock(Mutex_);
    Replies_.erase(begin);
    if (reply != nullptr)
        Replies_[begin] = reply;
}

QList<MailServer::Mail> MailServer::Accepted() const
{
    const std::lock_guard lock(Mutex_);
    return Accepted_;
}

void MailServer::Run()
{
    while (!IsEnding_) {
        pollfd waiting{Listener_, POLLIN, 0};
        if (poll(&waiting, 1, Tick) <= 0)
            continue;
        const int client = accept4(Listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0)
            continue;
        Serve(client);
        close(client);
    }
}

/// What the test wants, or the usual; empty to break the connection.
std::string MailServer::ReplyTo(const std::string& line) const
{
    const std::lock_guard lock(Mutex_);
    for (const auto& [begin, reply] : Replies_) {
        if (BeginsSo(line, begin.c_str()))
            return reply;
    }
    if (line == "CONNECT")
        return "220 ready";
    if (BeginsSo(line, "DATA"))
        return "354 go on";
    return BeginsSo(line, "QUIT") ? "221 goodbye" : "250 ok";
}

void MailServer::Serve(int client)
{
    LineReader lines(client, IsEnding_);
    Mail mail;
    std::string reply = ReplyTo("CONNECT");
    QByteArray line;
    while (!reply.empty() && Say(client, reply) && lines.Read(line)) {
        reply = ReplyTo(line.trimmed().toStdString());
        const bool isAccepted = !reply.empty() && (reply.front() == '2' || reply.front() == '3');
        if (isAccepted && BeginsSo(line.toStdString(), "MAIL"))
            mail = {InBrackets(line), {}, {}};
        if (isAccepted && BeginsSo(line.toStdString(), "RCPT"))
            mail.Recipients.append(InBrackets(line));
        if (!isAccepted || !BeginsSo(line.toStdString(), "DATA"))
            continue;
        if (!Say(client, reply))
            return;
        while (lines.Read(line) && line != ".\r\n")
            mail.Octets.append(line.startsWith('.') ? line.mid(1) : line);
        if (line != ".\r\n")
            return;
        reply = ReplyTo(".");
        if (reply.empty() || reply.front() != '2')
            continue;
        const std::lock_guard lock(Mutex_);
        Accepted_.append(mail);
    }
}
