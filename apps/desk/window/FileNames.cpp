// SPDX-License-Identifier: Apache-2.0
#include "FileNames.h"

#include "common/FileHelper.h"
#include "platform/files/WholeFile.h"

#include <QLocale>
#include <QRegularExpression>

namespace
{
constexpr int LongestFileName = 120;
constexpr int LongestExtension = 20;
constexpr int MostNumbers = 10000;

bool IsHarmful(char32_t character)
{
    if (character == U'/' || character == U'\\' || character == U':' || character == U'*' || character == U'?' ||
        character == U'"' || character == U'<' || character == U'>' || character == U'|')
        return true;
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        break;
    }
    // Marks, embeddings, overrides and isolates can make "gpj.exe" read like a picture's name.
    return character == 0x061C || character == 0x200E || character == 0x200F ||
           (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069) ||
           character == 0xFEFF;
}

bool IsReserved(const QString& name)
{
    static const QRegularExpression pattern(
        QStringLiteral("^(?:con|prn|aux|nul|conin\\$|conout\\$|com[0-9\u00B9\u00B2\u00B3]|lpt[0-9\u00B9\u00B2\u00B3])"
                       "(?:\\..*)?$"),
        QRegularExpression::CaseInsensitiveOption);
    return pattern.match(name).hasMatch();
}

/// The beginning, never ending within a character.
QString Beginning(const QString& text, qsizetype length)
{
    if (text.size() <= length)
        return text;
    return text.left(text.at(length - 1).isHighSurrogate() ? length - 1 : length);
}

struct NameParts
{
    QString Base;
    QString Extension; ///< With its dot.
};

NameParts Divided(const QString& name)
{
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot <= 0 || name.size() - dot > LongestExtension)
        return {name, QString()};
    return {name.left(dot), name.mid(dot)};
}
} // namespace

QString FileNames::Cleaned(const QString& name)
{
    // What stands before a separator is a path of the sender's machine.
    QString rest = name.mid(qMax(name.lastIndexOf(u'/'), name.lastIndexOf(u'\\')) + 1);
    QString cleaned;
    for (const char32_t character : rest.toUcs4()) {
        if (!IsHarmful(character))
            cleaned.append(QString::fromUcs4(&character, 1));
    }
    cleaned = cleaned.simplified();
    while (cleaned.startsWith(u'.') || cleaned.startsWith(u' '))
        cleaned.remove(0, 1);
    while (cleaned.endsWith(u'.') || cleaned.endsWith(u' '))
        cleaned.chop(1);
    if (cleaned.isEmpty())
        return QStringLiteral("Attachment");
    if (IsReserved(cleaned))
        cleaned.prepend(u'_');
    const NameParts parts = Divided(cleaned);
    return Beginning(parts.Base, LongestFileName - parts.Extension.size()).trimmed() + parts.Extension;
}

QString FileNames::Numbered(const QString& name, int number)
{
    const NameParts parts = Divided(name);
    return QStringLiteral("%1 (%2)%3").arg(parts.Base).arg(number).arg(parts.Extension);
}

QString FileNames::WriteNew(const QString& folder, const QString& name, const QByteArray& content, FileStatus& status)
{
    const QString cleaned = Cleaned(name);
    status = FileStatus(FileError::Exists);
    for (int number = 1; number <= MostNumbers && status.Error() == FileError::Exists; ++number) {
        const QString path = FileHelper::Join(folder, number == 1 ? cleaned : Numbered(cleaned, number));
        status = WholeFile::Write(path, content, IfThere::Refuse);
        if (status.IsDone())
            return path;
    }
    return QString();
}

QString FileNames::SizeInWords(qint64 octets)
{
    return QLocale().formattedDataSize(octets, octets < 1024 ? 0 : 1, QLocale::DataSizeTraditionalFormat);
}
