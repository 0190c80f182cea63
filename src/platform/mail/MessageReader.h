// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/mail/Message.h"

#include <functional>

namespace cdo
{

/// Reads a message for who shows it, in bounded room and time: no header and no body is bounded, and decoding one whole
/// takes many times its room, and finding a hundred thousand parts takes seconds. Shares the octets that the message
/// had when this was made; parses on first need.
class TOLVA_EXPORT MessageReader
{
public:
    /// mostParts: of how many parts the message is read, about; what comes behind them is not looked at. 0 for all.
    explicit MessageReader(const Message& message, int mostParts = 0);
    ~MessageReader();
    MessageReader(const MessageReader&) = delete;
    MessageReader& operator=(const MessageReader&) = delete;

    /// What is read: the message, or its first parts.
    const QByteArray& Octets() const;
    /// Whether the message goes on behind the parts that are read.
    bool HasMoreParts() const;

    /// The beginning of a header, decoded as Message has it; whole where it has no more characters than that, which
    /// isWhole says.
    QString Header(const QByteArray& name, qsizetype mostCharacters = 10'000, bool* isWhole = nullptr) const;

    /// The plain text body as Message has it, piece by piece; false when there is none.
    bool ReadText(const std::function<void(const QString& piece)>& take);
    /// The same of the web page.
    bool ReadHtml(const std::function<void(const QString& piece)>& take);
    /// The beginnings of the bodies; isWhole says whether there is no more.
    QString TextBeginning(qsizetype mostCharacters, bool* isWhole);
    QString HtmlBeginning(qsizetype mostCharacters, bool* isWhole);
    /// The files as Message has them, in its order. html: the page, or as much of it as is worth the time, that may
    /// refer to them and so make them inline.
    QList<Attachment> Files(const QString& html = QString());

private:
    class Parsed;
    bool Read(int part, const std::function<void(const QString& piece)>& take);
    QString Beginning(int part, qsizetype mostCharacters, bool* isWhole);

    std::unique_ptr<Parsed> Parsed_;
};

/// The beginning of one header.
QString TOLVA_EXPORT HeaderBeginning(const Message& message, const QByteArray& name, qsizetype mostCharacters = 10'000,
                                     bool* isWhole = nullptr);

} // namespace cdo
