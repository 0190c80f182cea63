// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/MessageReader.h"

#include "platform/mail/BodyParts.h"
#include "platform/mail/HeaderText.h"

#include <optional>

namespace cdo
{

namespace
{
/// A character in an encoded word of its own, the longest that mailers write.
constexpr qsizetype OctetsOfCharacter = 20;
constexpr qsizetype LongestEncodedWord = 1000;

QString Beginning(const QString& text, qsizetype mostCharacters)
{
    if (text.size() <= mostCharacters)
        return text;
    return text.left(text.at(mostCharacters - 1).isHighSurrogate() ? mostCharacters - 1 : mostCharacters);
}
} // namespace

class MessageReader::Parsed
{
public:
    explicit Parsed(const QByteArray& octets) : Octets(octets), Block(Octets) {}

    const BodyParts& Parts()
    {
        if (!Parts_)
            Parts_.emplace(Octets, Block);
        return *Parts_;
    }

    const QByteArray Octets;
    const HeaderBlock Block;

private:
    std::optional<BodyParts> Parts_;
};

MessageReader::MessageReader(const Message& message) : Parsed_(std::make_unique<Parsed>(message.Octets())) {}

MessageReader::~MessageReader() = default;

QString MessageReader::Header(const QByteArray& name, qsizetype mostCharacters) const
{
    const HeaderField* field = Parsed_->Block.Find(Parsed_->Octets, name);
    if (field == nullptr)
        return QString();
    qsizetype begin = field->ValueBegin;
    while (begin < field->End && g_ascii_isspace(Parsed_->Octets.at(begin)))
        ++begin;
    const qsizetype length = field->End - begin;
    const qsizetype most = mostCharacters * OctetsOfCharacter + LongestEncodedWord;
    QByteArray value = Parsed_->Octets.mid(begin, qMin(length, most));
    // Not within an encoded word.
    if (length > most)
        value.truncate(qMax(value.lastIndexOf(' '), most - LongestEncodedWord));
    return cdo::Beginning(IsAddressField(name) ? DecodeAddresses(value) : DecodeHeader(value), mostCharacters);
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
    *isWhole = true;
    if (part == BodyParts::None)
        return QString();
    QString text;
    ReadBody(Parsed_->Octets, Parsed_->Parts().Leaves().at(part), [&](const QString& piece) {
        text += piece;
        *isWhole = text.size() <= mostCharacters;
        return *isWhole;
    });
    return cdo::Beginning(text, mostCharacters);
}

QString HeaderBeginning(const Message& message, const QByteArray& name, qsizetype mostCharacters)
{
    return MessageReader(message).Header(name, mostCharacters);
}

} // namespace cdo
