// SPDX-License-Identifier: Apache-2.0
#include "messages/HTMLTags.h"

#include "common/GeneralHelper.h"
#include "common/MachineSettings.h"
#include "common/TemplateHelper.h"
#include "messages/HTMLTagsPreview.h"
#include "messages/cMessage.h"

#include <array>

namespace
{
/// In the order in which they are filled.
enum Step
{
    Reference,
    Subject,
    SubjectShort,
    FromWhole,
    FromNameOnly,
    FromEmailOnly,
    To,
    Sent,
    Received,
    SendAfter,
    PersonalReference,
    SourceIndex,
    Body,
    HTMLBodyOnly,
    TextBodyOnly,
    BodyShort,
    TextBodyShort,
    HTMLBodyShort,
    StepCount
};

const std::array<QString, StepCount> Tags = {QStringLiteral("<ZRT_MESSAGE_REFERENCE>"),
                                             QStringLiteral("<ZRT_MESSAGE_SUBJECT>"),
                                             QStringLiteral("<ZRT_MESSAGE_SUBJECTSHORT>"),
                                             QStringLiteral("<ZRT_MESSAGE_FROM>"),
                                             QStringLiteral("<ZRT_MESSAGE_FROMNAME>"),
                                             QStringLiteral("<ZRT_MESSAGE_FROMEMAIL>"),
                                             QStringLiteral("<ZRT_MESSAGE_TO>"),
                                             QStringLiteral("<ZRT_MESSAGE_SENT>"),
                                             QStringLiteral("<ZRT_MESSAGE_RECEIVED>"),
                                             QStringLiteral("<ZRT_MESSAGE_SENDAFTER>"),
                                             QStringLiteral("<ZRT_MESSAGE_PERSONALREFERENCE>"),
                                             QStringLiteral("<ZRT_MESSAGE_SOURCEINDEX>"),
                                             QStringLiteral("<ZRT_MESSAGE_BODY>"),
                                             QStringLiteral("<ZRT_MESSAGE_HTMLBODY>"),
                                             QStringLiteral("<ZRT_MESSAGE_TEXTBODY>"),
                                             QStringLiteral("<ZRT_MESSAGE_BODYSHORT>"),
                                             QStringLiteral("<ZRT_MESSAGE_TEXTBODYSHORT>"),
                                             QStringLiteral("<ZRT_MESSAGE_HTMLBODYSHORT>")};
const QString TagBegin = QStringLiteral("<ZRT_MESSAGE_");
const QString SectionTag = QStringLiteral("<ZRT_MESSAGE_PERSONALSECTION>");
const QString SectionEndTag = QStringLiteral("</ZRT_MESSAGE_PERSONALSECTION>");

constexpr qsizetype ShortSubject = 65;
constexpr qsizetype MostGrowth = 1'000'000;

QString Shortened(const QString& subject)
{
    if (subject.size() <= ShortSubject)
        return subject;
    const qsizetype length = subject.at(ShortSubject - 1).isHighSurrogate() ? ShortSubject - 1 : ShortSubject;
    return subject.first(length) + QStringLiteral("...");
}

/// The tag of a later step that stands at this place; -1 for none.
int LaterTagAt(const QString& text, qsizetype position, int step)
{
    for (int later = step + 1; later < StepCount; ++later) {
        if (QStringView(text).sliced(position).startsWith(Tags[static_cast<std::size_t>(later)]))
            return later;
    }
    return -1;
}

/// How often the tag of each step stands in a text.
using TagCounts = std::array<qsizetype, StepCount>;

TagCounts TagsIn(const QString& text)
{
    TagCounts counts{};
    for (qsizetype i = text.indexOf(TagBegin); i >= 0; i = text.indexOf(TagBegin, i + TagBegin.size())) {
        const int step = LaterTagAt(text, i, -1);
        if (step >= 0)
            ++counts[static_cast<std::size_t>(step)];
    }
    return counts;
}

bool IsBodyStep(int step)
{
    return step == Body || step == HTMLBodyOnly || step == TextBodyOnly || step == TextBodyShort;
}

/// What shows this character; empty for one that shows itself. A body keeps its double quotes, which mean nothing
/// between tags.
QLatin1String EscapeOf(QChar character, bool isBody)
{
    switch (character.unicode()) {
    case u'&':
        return QLatin1String("&amp;");
    case u'<':
        return QLatin1String("&lt;");
    case u'>':
        return QLatin1String("&gt;");
    case u'"':
        return isBody ? QLatin1String() : QLatin1String("&quot;");
    default:
        return {};
    }
}

void AppendEscaped(QStringView text, int step, QString* page)
{
    const bool isBody = IsBodyStep(step);
    qsizetype copied = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QLatin1String escape = EscapeOf(text[i], isBody);
        if (escape.isEmpty())
            continue;
        *page += text.sliced(copied, i - copied);
        *page += escape;
        copied = i + 1;
    }
    *page += text.sliced(copied);
}
} // namespace

HTMLTags::HTMLTags(const cMessage& message, qint32 flags) : Message_(message), Flags_(flags) {}

QString HTMLTags::Fill(const QString& strTemplate)
{
    if ((Flags_ & mphTagsInValuesStay) != 0 || !FillWith(strTemplate, ValueTags::Filled))
        FillWith(strTemplate, ValueTags::Shown);
    return Text_;
}

/// False when tags within values let the page grow too much.
bool HTMLTags::FillWith(const QString& strTemplate, ValueTags valueTags)
{
    ValueTags_ = valueTags;
    Text_ = strTemplate;
    const TagCounts own = TagsIn(strTemplate);
    TagCounts standing = own;
    qsizetype growth = 0;
    for (int step = 0; step < StepCount; ++step) {
        if (step == SourceIndex && Message_.PersonalToContact() == 0) {
            Text_ = TemplateHelper::RemoveSection(Text_, SectionTag, SectionEndTag);
            standing = TagsIn(Text_);
        }
        const auto number = static_cast<std::size_t>(step);
        // What no tag asks for is not worked out; a preview of HTML is a parse.
        if (standing[number] == 0)
            continue;
        const QString value = ValueOf(step);
        const qsizetype within = standing[number] - own[number];
        if (valueTags == ValueTags::Filled && within > 0) {
            growth += within * value.size();
            if (growth > MostGrowth)
                return false;
        }
        Text_ = TemplateHelper::ReplaceTag(Text_, Tags[number], value, TemplateHelper::TagValue::AsItStands);
        standing = TagsIn(Text_);
    }
    return true;
}

/// As it goes into the page.
QString HTMLTags::ValueOf(int step)
{
    const auto& mail = Message_.CDOMessage();
    switch (step) {
    case Reference:
        return QString::number(Message_.Reference());
    case Subject:
        return Encoded(step, mail->Subject());
    case SubjectShort:
        return Encoded(step, Shortened(mail->Subject()));
    case FromWhole:
        return Encoded(step, From());
    case FromNameOnly:
        return Encoded(step, FromName());
    case FromEmailOnly:
        return Encoded(step, FromEmail());
    case To:
        return Encoded(step, Masked(mail->To()));
    case Sent:
        return Encoded(step, Message_.SentString());
    case Received:
        return Encoded(step, Message_.ReceivedString());
    case SendAfter:
        return Encoded(step, Message_.SendAfterString());
    case PersonalReference:
        return QString::number(Message_.PersonalToContact());
    case SourceIndex:
        return QString::number(Message_.SourceIndex());
    case Body:
        return Wrapped(HTMLBody().isEmpty() ? Encoded(step, TextBody()) : HTMLValue(HTMLBody()));
    case HTMLBodyOnly:
        return Wrapped(HTMLValue(HTMLBody()));
    case TextBodyOnly:
        return Wrapped(Encoded(step, TextBody()));
    default:
        return PreviewValue(step);
    }
}

/// A mail without the body has no preview of it; an empty preview of one that is there is wrapped like any other.
QString HTMLTags::PreviewValue(int step)
{
    const QString textPreview = step == HTMLBodyShort ? QString() : HTMLTagsPreview::OfText(TextBody());
    if (!textPreview.isEmpty() || step == TextBodyShort)
        return TextBody().isEmpty() ? QString() : Wrapped(Encoded(step, textPreview));
    return HTMLBody().isEmpty() ? QString() : Wrapped(Encoded(step, HTMLTagsPreview::OfHTML(HTMLBody())));
}

QString HTMLTags::HTMLValue(const QString& html) const
{
    if (ValueTags_ == ValueTags::Filled)
        return html;
    return QString(html).replace(TagBegin, QLatin1String("&lt;ZRT_MESSAGE_"));
}

/// Text as markup that shows it, with the tags of later steps as they stand.
QString HTMLTags::Encoded(int step, const QString& value) const
{
    QString encoded;
    encoded.reserve(value.size());
    qsizetype copied = 0;
    qsizetype position = ValueTags_ == ValueTags::Filled ? value.indexOf(TagBegin) : -1;
    while (position >= 0) {
        const int later = LaterTagAt(value, position, step);
        const qsizetype end = position + (later < 0 ? 1 : Tags[static_cast<std::size_t>(later)].size());
        if (later >= 0) {
            AppendEscaped(QStringView(value).sliced(copied, position - copied), step, &encoded);
            encoded += Tags[static_cast<std::size_t>(later)];
            copied = end;
        }
        position = value.indexOf(TagBegin, end);
    }
    AppendEscaped(QStringView(value).sliced(copied), step, &encoded);
    return encoded;
}

QString HTMLTags::Wrapped(const QString& text) const
{
    const bool isBold = (Flags_ & mphUnreadBodyBold) != 0 && (Message_.Flags() & mfRead) == 0;
    const bool isItalic = (Flags_ & mphSendPendingBodyItalic) != 0 && (Message_.Flags() & mfSendPending) != 0;
    if (!isBold && !isItalic)
        return text;
    const QLatin1String open(!isBold ? "<i>" : isItalic ? "<i><b>" : "<b>");
    const QLatin1String close(!isBold ? "</i>" : isItalic ? "</b></i>" : "</b>");
    QString wrapped;
    wrapped.reserve(open.size() + text.size() + close.size());
    wrapped += open;
    wrapped += text;
    wrapped += close;
    return wrapped;
}

const QString& HTMLTags::HTMLBody()
{
    if (!HTMLBody_)
        HTMLBody_ = Message_.CDOMessage()->HTMLBody();
    return *HTMLBody_;
}

const QString& HTMLTags::TextBody()
{
    if (!TextBody_)
        TextBody_ = Message_.CDOMessage()->TextBody();
    return *TextBody_;
}

/// Every message is masked here, e-mails too: a page leaves the building.
QString HTMLTags::Masked(const QString& address)
{
    if (!MasksNumbers_)
        MasksNumbers_ = MachineSettings::MasksPhoneNumbers();
    return *MasksNumbers_ ? QStringLiteral("0XXX-XXXXXX") : address;
}

const QString& HTMLTags::From()
{
    if (!From_)
        From_ = Masked(Message_.CDOMessage()->From());
    return *From_;
}

QString HTMLTags::FromName()
{
    qsizetype next = -1;
    const QString name = GeneralHelper::NextToken(From(), 0, QStringLiteral("<"), next, true, true).remove(u'"');
    return name.isEmpty() ? FromEmail() : name;
}

QString HTMLTags::FromEmail()
{
    const qsizetype bracket = From().indexOf(u'<');
    return bracket < 0 ? QString() : From().sliced(bracket + 1).remove(u'"').remove(u'<').remove(u'>');
}
