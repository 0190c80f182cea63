// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Export.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// Header fields as they stand in a mail, with their folding and not decoded: a list keeps those of each of its rows,
/// and decodes those of the few that are seen. Of a field as much is kept as the characters that are asked for can
/// take.
namespace cdo
{

struct HeaderField;

/// The first fields of these names, by their places; null arrays for those that are not there.
QList<QByteArray> TOLVA_EXPORT RawHeaders(const QByteArray& octets, const QList<QByteArray>& names,
                                          qsizetype mostCharacters);

/// The same of the beginning of a mail that is stored as text, an octet a character, in UTF-8. Nothing where the
/// beginning does not tell: a field may end behind it, or not all of the header is ASCII.
std::optional<QList<QByteArray>> TOLVA_EXPORT RawHeadersOfBeginning(const QByteArray& utf8, bool isWhole,
                                                                    const QList<QByteArray>& names,
                                                                    qsizetype mostCharacters);

/// One field that was found in the octets. isWhole: made false where the field goes on.
QByteArray RawHeader(const QByteArray& octets, const HeaderField& field, qsizetype mostCharacters,
                     bool* isWhole = nullptr);

/// The beginning of a text, never the half of a character.
QString Cut(const QString& text, qsizetype mostCharacters);

/// What MessageReader::Header answers for such a field. isWhole: made false where the text is cut.
QString TOLVA_EXPORT DecodedHeader(QByteArrayView name, const QByteArray& raw, qsizetype mostCharacters,
                                   bool* isWhole = nullptr);

} // namespace cdo
