// SPDX-License-Identifier: Apache-2.0
#include "platform/mail/MessageContent.h"

#include "platform/mail/CharacterSets.h"
#include "platform/mail/HeaderText.h"

#include <QUrl>

#include <algorithm>
#include <array>

namespace cdo
{

namespace
{

/// Text as it comes back from the octets: whole characters, plain line ends, and no NUL.
QString Storable(const QString& text)
{
    QString result = QString::fromUtf8(text.toUtf8());
    result.replace(QChar(u'\0'), QChar(QChar::ReplacementCharacter));
    return WithPlainLineEnds(result);
}

/// Whether two texts are one but for the characters that a replaced body may hold as references.
bool IsSameButForReferences(const QString& left, const QString& right)
{
    const auto referenced = [](const QString& text) {
        return WithReferences(text, QByteArrayLiteral("us-ascii"))
            .replace(QStringLiteral("&#45;"), QStringLiteral("-"));
    };
    return left == right || referenced(left) == referenced(right);
}

bool IsFieldName(const QByteArray& name)
{
    return !name.isEmpty() &&
           std::all_of(name.begin(), name.end(), [](char c) { return c > 0x20 && c < 0x7F && c != ':'; });
}

} // namespace

void Message::Content::SetOctets(const QByteArray& octets)
{
    Header_.reset();
    Parts_.reset();
    Octets_ = octets;
}

const HeaderBlock& Message::Content::Header()
{
    if (!Header_)
        Header_.emplace(Octets_);
    return *Header_;
}

const BodyParts& Message::Content::Parts()
{
    if (!Parts_)
        Parts_.emplace(Octets_, Header());
    return *Parts_;
}

QString Message::Content::Text(const QByteArray& name)
{
    const QByteArray value = Header().Value(Octets_, name);
    return IsAddressField(name) ? DecodeAddresses(value) : DecodeHeader(value);
}

void Message::Content::SetText(const QByteArray& name, const QString& text)
{
    if (!IsFieldName(name))
        return;
    const QByteArray field = EncodeField(name, text, LineBreakOf(Octets_));
    if (field.sliced(name.size() + 1).trimmed().isEmpty())
        SetOctets(WithoutField(Octets_, Header(), name));
    else if (Text(name) != text)
        SetOctets(WithField(Octets_, Header(), name, field));
}

QString Message::Content::Body(BodyKind kind)
{
    const int index = BodyIndex(Parts(), kind);
    return index == BodyParts::None ? QString() : BodyText(Octets_, Parts().Leaves().at(index));
}

void Message::Content::SetBody(BodyKind kind, const QString& text)
{
    const QString storable = Storable(text);
    if (storable == Body(kind))
        return;
    const bool isNew = BodyIndex(Parts(), kind) == BodyParts::None || Octets_.size() == Header().BodyBegin();
    const QString other = Body(Other(kind));
    const qsizetype files = Parts().Files().size();
    const auto isRight = [&] {
        return IsSameButForReferences(Body(kind), storable) && Body(Other(kind)) == other &&
               Parts().Files().size() == files;
    };
    const auto replaced = [&] { return WithBodyReplaced(Octets_, Parts(), kind, storable); };
    const auto beside = [&] { return WithBodyAdded(Octets_, Header(), Parts(), kind, storable); };
    const auto inFront = [&] { return WithBodyInFront(Octets_, Header(), kind, storable); };
    if (isNew)
        Change({beside, inFront}, isRight);
    else
        Change({replaced}, isRight);
}

void Message::Content::AddFile(const QString& fileName, const QByteArray& contentType, const QByteArray& content)
{
    const QString text = Body(BodyKind::Text);
    const QString html = Body(BodyKind::Html);
    const qsizetype files = Parts().Files().size();
    const auto behind = [&] { return WithAttachment(Octets_, Header(), Parts(), fileName, contentType, content); };
    Change({behind}, [&] {
        return Body(BodyKind::Text) == text && Body(BodyKind::Html) == html && Parts().Files().size() == files + 1 &&
               DecodedContent(Octets_, *File(static_cast<int>(files))) == content;
    });
}

void Message::Content::Change(std::initializer_list<Edit> edits, const std::function<bool()>& isRight)
{
    static constexpr auto asItIs = [](const QByteArray& octets, const HeaderBlock&, const BodyParts&) {
        return octets;
    };
    static constexpr std::array<Mending, 3> mendings = {asItIs, WithTypeAsRead, WithWholeEnclosed};
    const QByteArray octets = Octets_;
    for (const Mending mended : mendings) {
        SetOctets(octets);
        const QByteArray start = mended(octets, Header(), Parts());
        for (const Edit& edit : edits) {
            SetOctets(start);
            SetOctets(edit());
            if (isRight())
                return;
        }
    }
}

const BodyPart* Message::Content::File(int index)
{
    const QList<int>& files = Parts().Files();
    return index < 0 || index >= files.size() ? nullptr : &Parts().Leaves().at(files.at(index));
}

const BodyPart* Message::Content::PartByID(const QString& contentID)
{
    QString id = contentID;
    if (id.startsWith(u'<') && id.endsWith(u'>'))
        id = id.mid(1, id.size() - 2);
    // In a cid: address some characters stand percent-encoded.
    for (const QString& wanted : {id, QUrl::fromPercentEncoding(id.toUtf8())}) {
        const QList<BodyPart>& leaves = Parts().Leaves();
        const auto found = std::find_if(leaves.begin(), leaves.end(), [&wanted](const BodyPart& part) {
            return !part.ContentID.isEmpty() && part.ContentID == wanted;
        });
        if (found != leaves.end())
            return &*found;
    }
    return nullptr;
}

int Message::Content::Priority()
{
    const QString importance = Text("Importance").toLower();
    if (importance == QLatin1String("high") || importance == QLatin1String("low"))
        return importance == QLatin1String("high") ? 1 : -1;
    const QString number = Text("X-Priority").left(1);
    if (!number.isEmpty() && number[0] >= u'1' && number[0] <= u'5')
        return number[0] < u'3' ? 1 : number[0] > u'3' ? -1 : 0;
    const QString priority = Text("Priority").toLower();
    if (priority == QLatin1String("urgent"))
        return 1;
    return priority == QLatin1String("non-urgent") ? -1 : 0;
}

} // namespace cdo
