// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/MessageReader.h"

#include "platform/mail/BodyParts.h"
#include "platform/mail/HeaderText.h"
#include "platform/mail/RawHeaders.h"

#include <optional>

namespace cdo
{

namespace
{
/// Where the part behind so many begins; the end of the octets where there are no more. Each line that could be the
/// boundary of a part counts as one: what the boundaries are is known when all is read.
qsizetype EndOfParts(const QByteArray& octets, const HeaderBlock& block, int mostParts)
{
    static const QByteArray boundary("\n--");
    const QByteArray type = block.Value(octets, "Content-Type").trimmed().toLower();
    if (mostParts == 0 || !type.startsWith("multipart/"))
        return octets.size();
    qsizetype place = qMax(block.BodyBegin() - 1, qsizetype{0});
    for (int parts = 0; parts <= mostParts; ++parts, ++place) {
        place = octets.indexOf(boundary, place);
        if (place < 0)
            return octets.size();
    }
    return place;
}

QByteArray FirstParts(const QByteArray& octets, const HeaderBlock& block, int mostParts)
{
    const qsizetype end = EndOfParts(octets, block, mostParts);
    return end < octets.size() ? octets.first(end) : octets;
}
} // namespace

class MessageReader::Parsed
{
public:
    Parsed(const QByteArray& octets, int mostParts)
        : Block(octets), Octets(FirstParts(octets, Block, mostParts)), HasMore(Octets.size() < octets.size())
    {
    }

    const BodyParts& Parts()
    {
        if (!Parts_)
            Parts_.emplace(Octets, Block);
        return *Parts_;
    }

    /// Whether the body has its end within what is read.
    bool HasEnd(int part)
    {
        constexpr qsizetype LineBreak = 2;
        return !HasMore ||
               (part != BodyParts::None && Parts().Leaves().at(part).ContentEnd + LineBreak < Octets.size());
    }

    const HeaderBlock Block;
    const QByteArray Octets;
    const bool HasMore;

private:
    std::optional<BodyParts> Parts_;
};

MessageReader::MessageReader(const Message& message, int mostParts)
    : Parsed_(std::make_unique<Parsed>(message.Octets(), mostParts))
{
}

MessageReader::~MessageReader() = default;

const QByteArray& MessageReader::Octets() const
{
    return Parsed_->Octets;
}

bool MessageReader::HasMoreParts() const
{
    return Parsed_->HasMore;
}

QString MessageReader::Header(const QByteArray& name, qsizetype mostCharacters, bool* isWhole) const
{
    if (isWhole != nullptr)
        *isWhole = true;
    const HeaderField* field = Parsed_->Block.Find(Parsed_->Octets, name);
    if (field == nullptr)
        return QString();
    const QByteArray raw = RawHeader(Parsed_->Octets, *field, mostCharacters, isWhole);
    return DecodedHeader(name, raw, mostCharacters, isWhole);
}

bool MessageReader::ReadText(const std::function<void(const QString& piece)>& take)
{
    return Read(Parsed_->Parts().Text(), take);
}

bool MessageReader::ReadHtml(const std::function<void(const QString& piece)>& take)
{
    return Read(Parsed_->Parts().Html(), take);
}

bool MessageReader::Read(int part, const std::function<void(const QString& piece)>& take)
{
    if (part == BodyParts::None)
        return false;
    ReadBody(Parsed_->Octets, Parsed_->Parts().Leaves().at(part), [&take](const QString& piece) {
        take(piece);
        return true;
    });
    return true;
}

QString MessageReader::TextBeginning(qsizetype mostCharacters, bool* isWhole)
{
    return Beginning(Parsed_->Parts().Text(), mostCharacters, isWhole);
}

QString MessageReader::HtmlBeginning(qsizetype mostCharacters, bool* isWhole)
{
    return Beginning(Parsed_->Parts().Html(), mostCharacters, isWhole);
}

QString MessageReader::Beginning(int part, qsizetype mostCharacters, bool* isWhole)
{
    *isWhole = Parsed_->HasEnd(part);
    if (part == BodyParts::None)
        return QString();
    QString text;
    ReadBody(Parsed_->Octets, Parsed_->Parts().Leaves().at(part), [&](const QString& piece) {
        text += piece;
        return text.size() <= mostCharacters;
    });
    *isWhole = *isWhole && text.size() <= mostCharacters;
    return Cut(text, mostCharacters);
}

QList<Attachment> MessageReader::Files(const QString& html)
{
    QList<Attachment> files;
    for (const int index : Parsed_->Parts().Files()) {
        const BodyPart& part = Parsed_->Parts().Leaves().at(index);
        files.append({part.FileName, QString::fromLatin1(part.ContentType), part.ContentID,
                      DecodedSize(Parsed_->Octets, part), IsInline(part, html)});
    }
    return files;
}

QString HeaderBeginning(const Message& message, const QByteArray& name, qsizetype mostCharacters, bool* isWhole)
{
    return MessageReader(message).Header(name, mostCharacters, isWhole);
}

} // namespace cdo
