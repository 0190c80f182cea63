// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QTemporaryDir>

#include <atomic>
#include <thread>

/// A unix socket in front of a server's: it passes everything on, and breaks one connection at the moment that the test
/// asks for. Works in a thread of its own.
class CuttingProxy
{
public:
    enum class Cut
    {
        None,
        BeforeCommit, ///< The server never sees the COMMIT.
        BehindCommit  ///< The server has stored it, and its answer is lost.
    };

    /// serverFolder: where the server's socket lies.
    explicit CuttingProxy(const QString& serverFolder);
    ~CuttingProxy();
    CuttingProxy(const CuttingProxy&) = delete;
    CuttingProxy& operator=(const CuttingProxy&) = delete;

    QString Folder() const { return Folder_.path(); }
    /// At the next COMMIT, once.
    void CutAt(Cut cut) { Cut_ = cut; }
    int Cuts() const { return Cuts_; }
    /// How many round trips began since the last call: what a client sends before it hears an answer is one, in however
    /// many pieces it comes.
    int TakeRequests() { return Requests_.exchange(0); }

private:
    struct Passage
    {
        int Client = -1;
        int Server = -1;
        bool IsAnswerLost = false;
        bool IsAnswered = true;
    };

    void Run();
    void Accept(std::vector<Passage>& passages) const;
    /// False when the passage is over.
    bool PassToServer(Passage& passage);
    bool PassToClient(Passage& passage);

    QTemporaryDir Folder_;
    QString ServerFolder_;
    int Listener_ = -1;
    std::atomic<bool> IsEnding_ = false;
    std::atomic<Cut> Cut_ = Cut::None;
    std::atomic<int> Cuts_ = 0;
    std::atomic<int> Requests_ = 0;
    std::thread Thread_;
};
