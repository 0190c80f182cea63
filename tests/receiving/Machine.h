// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A computer of its own for programs that want to be root, have accounts and fixed places: this one seen through a
/// layer that takes all changes (machine.sh), with its own processes and network. All that runs in it dies with this
/// object, and with the test however that ends; nothing of it was ever on this computer's disk. Used by one thread.
class Machine
{
public:
    struct Outcome
    {
        int Code = -1;
        QByteArray Output;
        QByteArray Problems; ///< Standard error.
    };

    /// trees: folders whose files stand over those of this computer. programs: a folder that is to be seen there.
    Machine(const QStringList& trees, const QString& programs);
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    /// Empty when it runs; else why there can be none here, in words.
    const QString& Problem() const { return Problem_; }

    /// Runs a text of bash as root, to its end; a code of -1 when it took longer than that, and it is killed then.
    Outcome Run(const QString& script, const QByteArray& input = {}, int seconds = 120) const;
    /// Files in one step: pairs of a path, whose folder is there, and its octets.
    void Write(const QList<std::pair<QString, QByteArray>>& files) const;

private:
    QTemporaryDir Place_;
    QProcess Leader_; ///< unshare, whose only child is the first process of the machine.
    QString Problem_;
    qint64 First_ = 0;
};
