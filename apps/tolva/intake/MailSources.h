// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "intake/IncomingMessage.h"
#include "intake/Mbox.h"

#include <QFile>
#include <QList>
#include <QStringList>

#include <memory>

/// The messages behind the paths of a command line, one at a time: files of one mail or one text message, mbox
/// archives, maildirs, and folders of .eml and .sms files. Nothing but the message at hand is in memory.
class MailSources
{
public:
    enum class Purpose
    {
        Read, ///< Links are followed.
        /// The files are removed afterwards. What a link leads to is not the folder's to give away; it, and what else
        /// is no file in a maildir, is a message with a Problem.
        Take
    };

    /// Looks at the paths, in their order; "-" is one mail on standard input. Failure (no input) when one of them does
    /// not exist, before any message is read.
    MailSources(const QStringList& paths, Purpose purpose);

    /// The next message, in incoming; one that cannot be read has a Problem. False after the last one.
    bool Next(IncomingMessage& incoming);

    /// Octets of all files, and of those behind the messages delivered so far.
    qint64 Total() const { return Total_; }
    qint64 Done() const { return Done_ + (Mbox_ ? MboxFile_.pos() : 0); }
    /// What stands in the folders and is not filed, in words.
    const QStringList& Skipped() const { return Skipped_; }

private:
    enum class FileKind
    {
        Mail,
        TextMessage,
        Mbox,
        StandardInput
    };
    struct SourceFile
    {
        QString Path;
        FileKind Kind;
        bool IsRead = false;
        qint64 Size = 0;
    };

    void AddPath(const QString& path);
    void AddFolder(const QString& folder);
    void AddMaildir(const QString& folder);
    void Add(const SourceFile& file);
    static FileKind KindOf(const QString& path);

    bool NextOfMbox(IncomingMessage& incoming);
    void OpenMbox(const SourceFile& file, IncomingMessage& incoming);
    void ReadWhole(const SourceFile& file, IncomingMessage& incoming) const;
    QString ReadFile(const QString& name, QByteArray& octets) const;

    Purpose Purpose_;
    QList<SourceFile> Files_;
    qsizetype NextFile_ = 0;
    qint64 Total_ = 0;
    qint64 Done_ = 0;
    QStringList Skipped_;
    QFile MboxFile_;
    std::unique_ptr<MboxReader> Mbox_;
    int MboxNumber_ = 0;
};
