// SPDX-License-Identifier: Apache-2.0
#include "support/CuttingProxy.h"

#include <QFile>

#include <cstring>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace
{

sockaddr_un AddressIn(const QString& folder)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(folder + QStringLiteral("/.s.PGSQL.5432"));
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    return address;
}

bool WriteAll(int to, const char* octets, ssize_t count)
{
    while (count > 0) {
        const ssize_t written = send(to, octets, static_cast<std::size_t>(count), MSG_NOSIGNAL);
        if (written <= 0)
            return false;
        octets += written;
        count -= written;
    }
    return true;
}

} // namespace

CuttingProxy::CuttingProxy(const QString& serverFolder) : ServerFolder_(serverFolder)
{
    Listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = AddressIn(Folder_.path());
    if (bind(Listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || listen(Listener_, 16) != 0)
        throw std::runtime_error("no socket for the proxy");
    Thread_ = std::thread([this] { Run(); });
}

CuttingProxy::~CuttingProxy()
{
    IsEnding_ = true;
    Thread_.join();
    close(Listener_);
}

void CuttingProxy::Accept(std::vector<Passage>& passages) const
{
    Passage passage;
    passage.Client = accept4(Listener_, nullptr, nullptr, SOCK_CLOEXEC);
    passage.Server = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = AddressIn(ServerFolder_);
    if (connect(passage.Server, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        close(passage.Client);
        close(passage.Server);
        return;
    }
    passages.push_back(passage);
}

bool CuttingProxy::PassToServer(Passage& passage)
{
    char octets[65536];
    const ssize_t count = recv(passage.Client, octets, sizeof octets, 0);
    if (count <= 0)
        return false;
    if (std::exchange(passage.IsAnswered, false))
        ++Requests_;
    const bool isCommit =
        std::string_view(octets, static_cast<std::size_t>(count)).find("COMMIT") != std::string_view::npos &&
        std::string_view(octets, static_cast<std::size_t>(count)).find("READ COMMITTED") == std::string_view::npos;
    if (isCommit && Cut_ == Cut::BeforeCommit) {
        Cut_ = Cut::None;
        ++Cuts_;
        return false;
    }
    if (isCommit && Cut_ == Cut::BehindCommit)
        passage.IsAnswerLost = true;
    return WriteAll(passage.Server, octets, count);
}

bool CuttingProxy::PassToClient(Passage& passage)
{
    char octets[65536];
    const ssize_t count = recv(passage.Server, octets, sizeof octets, 0);
    if (count <= 0)
        return false;
    if (passage.IsAnswerLost) {
        // The server answers once it is done.
        Cut_ = Cut::None;
        ++Cuts_;
        return false;
    }
    passage.IsAnswered = true;
    return WriteAll(passage.Client, octets, count);
}

void CuttingProxy::Run()
{
    std::vector<Passage> passages;
    while (!IsEnding_) {
        std::vector<pollfd> sockets{{Listener_, POLLIN, 0}};
        for (const Passage& passage : passages) {
            sockets.push_back({passage.Client, POLLIN, 0});
            sockets.push_back({passage.Server, POLLIN, 0});
        }
        poll(sockets.data(), sockets.size(), 50);
        for (std::size_t i = passages.size(); i-- > 0;) {
            Passage& passage = passages[i];
            const bool goesOn = (sockets[2 * i + 1].revents == 0 || PassToServer(passage)) &&
                                (sockets[2 * i + 2].revents == 0 || PassToClient(passage));
            if (goesOn)
                continue;
            close(passage.Client);
            close(passage.Server);
            passages.erase(passages.begin() + static_cast<std::ptrdiff_t>(i));
        }
        if (sockets.front().revents != 0)
            Accept(passages);
    }
    for (const Passage& passage : passages) {
        close(passage.Client);
        close(passage.Server);
    }
}
