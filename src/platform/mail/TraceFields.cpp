// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/TraceFields.h"

#include "platform/mail/HeaderBlock.h"

#include <algorithm>
#include <array>

namespace cdo
{
namespace
{
constexpr std::array<const char*, 22> TraceNames = {"Received",
                                                    "Return-Path",
                                                    "Delivered-To",
                                                    "X-Original-To",
                                                    "Envelope-To",
                                                    "Delivery-Date",
                                                    "X-Delivered-To",
                                                    "X-Received",
                                                    "Authentication-Results",
                                                    "Received-SPF",
                                                    "X-Envelope-To",
                                                    "X-Envelope-From",
                                                    "X-Forwarded-To",
                                                    "X-Forwarded-For",
                                                    "X-TUID",
                                                    "Status",
                                                    "X-Status",
                                                    "X-UID",
                                                    "X-Keywords",
                                                    "Content-Length",
                                                    "Lines",
                                                    "X-Fetchmail-Warning"};
/// Of families whose names differ by product.
constexpr std::array<const char*, 4> TraceBeginnings = {"ARC-", "X-Spam-", "X-Virus-", "X-Rspamd-"};

/// The next octet of a text whose "\r\n" count as "\n"; false behind the last one.
class Octets
{
public:
    explicit Octets(QByteArrayView text) : Text_(text) {}

    bool Next(char& octet)
    {
        if (Position_ < Text_.size() && Text_.at(Position_) == '\r' && Position_ + 1 < Text_.size() &&
            Text_.at(Position_ + 1) == '\n')
            ++Position_;
        if (Position_ >= Text_.size())
            return false;
        octet = Text_.at(Position_++);
        return true;
    }

private:
    QByteArrayView Text_;
    qsizetype Position_ = 0;
};

bool AreSameLines(QByteArrayView one, QByteArrayView other)
{
    Octets ours(one);
    Octets theirs(other);
    for (;;) {
        char our = 0;
        char their = 0;
        const bool isOurs = ours.Next(our);
        const bool isTheirs = theirs.Next(their);
        if (isOurs != isTheirs || our != their)
            return false;
        if (!isOurs)
            return true;
    }
}

QByteArrayView FieldText(QByteArrayView octets, const HeaderField& field)
{
    return octets.sliced(field.Begin, field.End - field.Begin);
}

/// The fields of a header that are no trace, one after the other.
class OwnFields
{
public:
    OwnFields(QByteArrayView octets, const HeaderBlock& block) : Octets_(octets), Fields_(block.Fields()) {}

    /// Null behind the last one.
    const HeaderField* Next()
    {
        while (Position_ < Fields_.size() && IsTraceField(HeaderBlock::Name(Octets_, Fields_.at(Position_))))
            ++Position_;
        return Position_ < Fields_.size() ? &Fields_.at(Position_++) : nullptr;
    }

private:
    QByteArrayView Octets_;
    const QList<HeaderField>& Fields_;
    qsizetype Position_ = 0;
};

/// The last line has its break on one route and lacks it on the other.
QByteArrayView WithoutLastBreak(QByteArrayView text)
{
    if (text.endsWith("\r\n"))
        return text.chopped(2);
    return text.endsWith('\n') ? text.chopped(1) : text;
}
} // namespace

bool IsTraceField(QByteArrayView name)
{
    const auto isName = [name](const char* other) { return name.compare(other, Qt::CaseInsensitive) == 0; };
    const auto isBeginning = [name](const char* other) {
        const qsizetype length = QByteArrayView(other).size();
        return name.size() >= length && name.first(length).compare(other, Qt::CaseInsensitive) == 0;
    };
    return std::any_of(TraceNames.begin(), TraceNames.end(), isName) ||
           std::any_of(TraceBeginnings.begin(), TraceBeginnings.end(), isBeginning);
}

bool AreSameButForTrace(const QByteArray& one, const QByteArray& other)
{
    const HeaderBlock ourBlock(one);
    const HeaderBlock theirBlock(other);
    OwnFields ours(one, ourBlock);
    OwnFields theirs(other, theirBlock);
    for (;;) {
        const HeaderField* our = ours.Next();
        const HeaderField* their = theirs.Next();
        if ((our == nullptr) != (their == nullptr))
            return false;
        if (our == nullptr)
            break;
        if (!AreSameLines(FieldText(one, *our), FieldText(other, *their)))
            return false;
    }
    return AreSameLines(WithoutLastBreak(QByteArrayView(one).sliced(ourBlock.BodyBegin())),
                        WithoutLastBreak(QByteArrayView(other).sliced(theirBlock.BodyBegin())));
}

} // namespace cdo
