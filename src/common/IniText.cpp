// SPDX-License-Identifier: Apache-2.0
#include "common/IniText.h"

#include "common/FileHelper.h"

#include <QStringConverter>

#include <algorithm>

namespace
{
constexpr char ByteOrderMark[] = "\xEF\xBB\xBF";

/// The name within the brackets; null when the line opens no section.
QStringView SectionName(QStringView line)
{
    line = line.trimmed();
    if (!line.startsWith(u'['))
        return {};
    const qsizetype end = line.indexOf(u']');
    const QStringView name = (end < 0 ? line.sliced(1) : line.sliced(1, end - 1)).trimmed();
    return name.isNull() ? QStringView(u"") : name;
}

bool IsComment(QStringView line)
{
    line = line.trimmed();
    return line.startsWith(u';') || line.startsWith(u'#');
}

bool IsSectionLine(QStringView line)
{
    return line.trimmed().startsWith(u'[');
}

bool IsQuoted(QStringView value)
{
    return value.size() >= 2 && value.front() == value.back() && (value.front() == u'"' || value.front() == u'\'');
}

QString KeyPath(QStringView name)
{
    QString path = name.toString();
    path.replace(u'/', u'\\');
    while (path.startsWith(u'\\'))
        path.remove(0, 1);
    while (path.endsWith(u'\\'))
        path.chop(1);
    return path;
}

bool HoldsLineEnd(const QString& text)
{
    return text.contains(u'\n') || text.contains(u'\r');
}

bool CanBeSection(const QString& section)
{
    return !section.isEmpty() && section == section.trimmed() && !section.contains(u']') && !HoldsLineEnd(section);
}

bool CanBeKey(const QString& key)
{
    return !key.isEmpty() && key == key.trimmed() && !key.contains(u'=') && !HoldsLineEnd(key) && !IsComment(key) &&
           !IsSectionLine(key);
}

/// The value so that reading takes off exactly what is added here.
QString Written(QString value)
{
    value.replace(QStringLiteral("\r\n"), QStringLiteral(" ")).replace(u'\n', u' ').replace(u'\r', u' ');
    return value != value.trimmed() || IsQuoted(value) ? u'"' + value + u'"' : value;
}
} // namespace

IniText::IniText(const QByteArray& bytes, SectionNames sectionNames) : SectionNames_(sectionNames)
{
    if (QStringConverter::encodingForData(bytes))
        Encoding_ = Encoding::Utf8WithMark;
    else if (!bytes.isValidUtf8())
        Encoding_ = Encoding::Latin1;
    const QString text = FileHelper::DecodeText(bytes);
    if (text.contains(u"\r\n"))
        Carriage_ = QStringLiteral("\r");
    Lines_ = text.split(u'\n');
}

bool IniText::IsSection(QStringView line, const QString& section) const
{
    const QStringView name = SectionName(line);
    if (SectionNames_ == SectionNames::KeyPaths)
        return KeyPath(name).compare(KeyPath(section), Qt::CaseInsensitive) == 0;
    return name.compare(section, Qt::CaseInsensitive) == 0;
}

/// The line of the key, or -1; sectionEnd: the line behind the last entry of the first such section, or -1.
qsizetype IniText::FindEntry(const QString& section, const QString& key, qsizetype& sectionEnd) const
{
    sectionEnd = -1;
    bool inside = false;
    bool first = true;
    for (qsizetype i = 0; i < Lines_.size(); ++i) {
        const QStringView line = Lines_.at(i);
        if (IsSectionLine(line)) {
            first = first && sectionEnd < 0;
            inside = IsSection(line, section);
            if (inside && first)
                sectionEnd = i + 1;
            continue;
        }
        if (!inside || line.trimmed().isEmpty())
            continue;
        if (first)
            sectionEnd = i + 1;
        const qsizetype equals = line.indexOf(u'=');
        if (equals >= 0 && !IsComment(line) && line.first(equals).trimmed().compare(key, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

std::optional<QString> IniText::Value(const QString& section, const QString& key) const
{
    qsizetype sectionEnd = 0;
    const qsizetype line = FindEntry(section.trimmed(), key.trimmed(), sectionEnd);
    if (line < 0)
        return std::nullopt;
    QStringView value = QStringView(Lines_.at(line)).sliced(Lines_.at(line).indexOf(u'=') + 1).trimmed();
    if (IsQuoted(value))
        value = value.sliced(1, value.size() - 2);
    return value.toString();
}

bool IniText::SetValue(const QString& section, const QString& key, const QString& value)
{
    if (!CanBeSection(section) || !CanBeKey(key))
        return false;
    const QString entry = key + u'=' + Written(value);
    qsizetype sectionEnd = 0;
    const qsizetype line = FindEntry(section, key, sectionEnd);
    if (line >= 0) {
        Lines_[line] = entry + (Lines_.at(line).endsWith(u'\r') ? QStringLiteral("\r") : QString());
        return true;
    }
    EndLastLine();
    if (sectionEnd < 0) {
        if (Lines_.size() > 1 && !Lines_.at(Lines_.size() - 2).trimmed().isEmpty())
            Lines_.insert(Lines_.size() - 1, Carriage_);
        Lines_.insert(Lines_.size() - 1, u'[' + section + u']' + Carriage_);
        sectionEnd = Lines_.size() - 1;
    }
    Lines_.insert(sectionEnd, entry + Carriage_);
    return true;
}

/// What is added gets a line of its own.
void IniText::EndLastLine()
{
    if (Lines_.last().isEmpty())
        return;
    Lines_.last() += Carriage_;
    Lines_.append(QString());
}

QByteArray IniText::Bytes() const
{
    const QString text = Lines_.join(u'\n');
    const auto fitsLatin1 = [](QChar character) { return character.unicode() <= 0xFF; };
    if (Encoding_ == Encoding::Latin1 && std::all_of(text.begin(), text.end(), fitsLatin1)) {
        const QByteArray bytes = text.toLatin1();
        if (!bytes.isValidUtf8()) // else it would be read as UTF-8
            return bytes;
    }
    return (Encoding_ == Encoding::Utf8WithMark ? QByteArray(ByteOrderMark) : QByteArray()) + text.toUtf8();
}
