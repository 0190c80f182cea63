// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <optional>

class cMessage;

/// A flag beside those of eMsgProcessHTMLTags: tags within a message's own texts are never filled, but shown. For
/// programs that print what strangers wrote.
constexpr qint32 mphTagsInValuesStay = 0x10000;

/// Fills a page template from one message. Made for one message and one set of flags, and used for one template.
class HTMLTags
{
public:
    /// flags: eMsgProcessHTMLTags, added up. The message outlives the object.
    HTMLTags(const cMessage& message, qint32 flags);

    /// A value that holds a tag gets that tag filled when its turn comes later. Where that would make the page larger
    /// by a million characters, no tag within a value is filled: a mail could otherwise fill the memory with its tags.
    QString Fill(const QString& strTemplate);

private:
    enum class ValueTags
    {
        Filled,
        Shown ///< As text.
    };

    bool FillWith(const QString& strTemplate, ValueTags valueTags);
    QString ValueOf(int step);
    QString Encoded(int step, const QString& value) const;
    QString HTMLValue(const QString& html) const;
    QString PreviewValue(int step);
    QString Masked(const QString& address);
    QString Wrapped(const QString& text) const;

    // Worked out when they are first asked for: to decode a large body takes its time, and so does a look at the
    // machine's settings.
    const QString& HTMLBody();
    const QString& TextBody();
    const QString& From();
    QString FromName();
    QString FromEmail();

    const cMessage& Message_;
    qint32 Flags_;
    ValueTags ValueTags_ = ValueTags::Filled;
    QString Text_;
    std::optional<QString> HTMLBody_;
    std::optional<QString> TextBody_;
    std::optional<QString> From_;
    std::optional<bool> MasksNumbers_;
};
