// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace cdo
{

/// Text as it was read, and the character set that it turned out to be in.
struct DecodedText
{
    QString Text;
    QByteArray CharacterSet; ///< A name for Encode(); "us-ascii" when there was nothing to tell by.
};

/// Reads text that claims to be in a character set. Claims are often wrong: where the set is unnamed, unknown, plain
/// ASCII or Latin-1, octets that are valid UTF-8 are UTF-8, and others windows-1252. In any other set, octets that it
/// cannot read but that are valid UTF-8 are UTF-8, and else each unreadable octet becomes U+FFFD. So does U+0000,
/// which would cut the text short elsewhere.
DecodedText Decode(QByteArrayView octets, const QByteArray& declared);

/// The same text, piece by piece, without room for more than a piece. False when take said so, which ends it.
bool DecodeInPieces(QByteArrayView octets, const QByteArray& declared,
                    const std::function<bool(const QString& piece)>& take);

/// Text in a character set; nothing when the set is unknown or lacks a character.
std::optional<QByteArray> Encode(const QString& text, const QByteArray& characterSet);

/// HTML with a numeric character reference for each character that the set lacks.
QString WithReferences(const QString& html, const QByteArray& characterSet);

/// The text with every line end as "\n". A run of carriage returns before a line feed is one line end, so that doing
/// it twice changes nothing.
QString WithPlainLineEnds(QString text);

} // namespace cdo
