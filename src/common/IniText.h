// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// The text of a profile file: "[section]" lines, "key=value" lines, comments behind ';' or '#' at a line's start. The
/// lines stand as they came, so that a change to one value leaves all others alone. A plain value; it touches no file.
///
/// Sections and keys are compared without regard to case; of two entries for one key the first counts. A value stands
/// without the blanks around it and one pair of quotes, single or double.
class IniText
{
public:
    /// KeyPaths: section names are paths whose parts '\' and '/' separate alike, also at their ends.
    enum class SectionNames
    {
        AsTheyStand,
        KeyPaths
    };

    IniText() = default;
    /// UTF-8, or Latin-1 where it is not valid UTF-8, with or without a byte order mark; any line ends.
    explicit IniText(const QByteArray& bytes, SectionNames sectionNames = SectionNames::AsTheyStand);

    /// Nothing when section or key is absent.
    std::optional<QString> Value(const QString& section, const QString& key) const;
    /// False, and nothing changes, for a section or key that such a text cannot hold. Line ends in the value become
    /// blanks.
    bool SetValue(const QString& section, const QString& key, const QString& value);

    /// In the encoding of the bytes it was made from, or in UTF-8 where that cannot hold a new value. Line ends stand
    /// as they came; new lines end as the others do.
    QByteArray Bytes() const;
    /// In Latin-1, with a question mark for what that does not hold.
    QByteArray AnsiBytes() const { return Lines_.join(u'\n').toLatin1(); }

private:
    enum class Encoding
    {
        Utf8,
        Utf8WithMark,
        Latin1
    };

    bool IsSection(QStringView line, const QString& section) const;
    qsizetype FindEntry(const QString& section, const QString& key, qsizetype& sectionEnd) const;

    void EndLastLine();

    QStringList Lines_ = {
        QString()};    ///< The text parted at its line feeds; a last empty one means that it ends with one.
    QString Carriage_; ///< What stands before a line feed.
    Encoding Encoding_ = Encoding::Utf8;
    SectionNames SectionNames_ = SectionNames::AsTheyStand;
};
