// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/HeaderBlock.h"

#include <algorithm>

namespace cdo
{

namespace
{

bool IsBlank(char c)
{
    return c == ' ' || c == '\t';
}

qsizetype LineEnd(QByteArrayView octets, qsizetype begin)
{
    const qsizetype lineFeed = octets.indexOf('\n', begin);
    return lineFeed < 0 ? octets.size() : lineFeed + 1;
}

bool IsEmptyLine(QByteArrayView line)
{
    return line == "\n" || line == "\r\n";
}

bool IsMailboxLine(QByteArrayView line)
{
    return line.startsWith("From ") || line.startsWith(">From ");
}

/// The length of the field name at the start of the line, without the blanks before its colon; 0 when there is none.
qsizetype FieldNameLength(QByteArrayView line, qsizetype* colon)
{
    qsizetype length = 0;
    while (length < line.size() && line[length] != ':' && static_cast<uchar>(line[length]) > 0x20 &&
           line[length] != 0x7F)
        ++length;
    *colon = length;
    while (*colon < line.size() && IsBlank(line[*colon]))
        ++*colon;
    return *colon < line.size() && line[*colon] == ':' ? length : 0;
}

} // namespace

HeaderBlock::HeaderBlock(QByteArrayView octets, qsizetype begin)
{
    qsizetype position = begin;
    while (IsMailboxLine(octets.sliced(position)))
        position = LineEnd(octets, position);
    Begin_ = position;

    constexpr qsizetype UsualFields = 16;
    Fields_.reserve(UsualFields);
    qsizetype firstOther = -1;
    qsizetype fieldsBeforeOther = 0;
    bool inField = false;
    while (position < octets.size()) {
        const qsizetype end = LineEnd(octets, position);
        const QByteArrayView line = octets.sliced(position, end - position);
        qsizetype colon = 0;
        if (IsEmptyLine(line)) {
            End_ = position;
            BodyBegin_ = end;
            return;
        }
        if (IsBlank(line.front()) && !Fields_.isEmpty()) {
            if (inField)
                Fields_.last().End = end;
        } else if (const qsizetype length = FieldNameLength(line, &colon); length > 0) {
            Fields_.append({position, position + length, position + colon + 1, end});
            inField = true;
        } else {
            if (firstOther < 0) {
                firstOther = position;
                fieldsBeforeOther = Fields_.size();
            }
            if (Fields_.isEmpty())
                break;
            inField = false;
        }
        position = end;
    }
    if (firstOther >= 0)
        Fields_.resize(fieldsBeforeOther);
    End_ = BodyBegin_ = firstOther >= 0 ? firstOther : octets.size();
}

const HeaderField* HeaderBlock::Find(QByteArrayView octets, QByteArrayView name) const
{
    const auto found = std::find_if(Fields_.begin(), Fields_.end(), [&](const HeaderField& field) {
        return Name(octets, field).compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == Fields_.end() ? nullptr : &*found;
}

QByteArray HeaderBlock::Value(QByteArrayView octets, QByteArrayView name) const
{
    const HeaderField* field = Find(octets, name);
    return field == nullptr ? QByteArray() : Value(octets, *field);
}

QByteArrayView HeaderBlock::Name(QByteArrayView octets, const HeaderField& field)
{
    return octets.sliced(field.Begin, field.NameEnd - field.Begin);
}

QByteArray HeaderBlock::Value(QByteArrayView octets, const HeaderField& field)
{
    return octets.sliced(field.ValueBegin, field.End - field.ValueBegin).toByteArray();
}

QByteArray LineBreakOf(QByteArrayView octets, const QByteArray& fallback)
{
    const qsizetype lineFeed = octets.indexOf('\n');
    if (lineFeed < 0)
        return fallback;
    return lineFeed > 0 && octets[lineFeed - 1] == '\r' ? QByteArrayLiteral("\r\n") : QByteArrayLiteral("\n");
}

QByteArray WithField(const QByteArray& octets, const HeaderBlock& block, QByteArrayView name, const QByteArray& field)
{
    const HeaderField* old = block.Find(octets, name);
    const qsizetype begin = old == nullptr ? block.End() : old->Begin;
    const qsizetype end = old == nullptr ? block.End() : old->End;
    const QByteArray lineBreak = LineBreakOf(octets);
    QByteArray result;
    result.reserve(octets.size() + field.size() + 8);
    result.append(octets.constData(), begin);
    if (!result.isEmpty() && !result.endsWith('\n'))
        result.append(lineBreak);
    result.append(field);
    if (block.IsTerminated())
        return result.append(octets.constData() + end, octets.size() - end);
    result.append(octets.constData() + end, block.End() - end);
    if (!result.endsWith('\n'))
        result.append(lineBreak);
    result.append(lineBreak);
    return result.append(octets.constData() + block.End(), octets.size() - block.End());
}

QByteArray WithoutField(const QByteArray& octets, const HeaderBlock& block, QByteArrayView name)
{
    QByteArray result;
    result.reserve(octets.size());
    qsizetype kept = 0;
    for (const HeaderField& field : block.Fields()) {
        if (HeaderBlock::Name(octets, field).compare(name, Qt::CaseInsensitive) != 0)
            continue;
        result.append(octets.constData() + kept, field.Begin - kept);
        kept = field.End;
    }
    return kept == 0 ? octets : result.append(octets.constData() + kept, octets.size() - kept);
}

} // namespace cdo
