// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// Tags of page templates.
namespace TemplateHelper
{

enum class TagValue
{
    AsItStands,
    EncodedForHTML
};

/// The template with every occurrence of the tag replaced by the value, which is not searched again.
QString ReplaceTag(const QString& text, const QString& tag, const QString& value, TagValue option);

/// The template without its sections: both tags and what lies between them. An opening tag without a closing one behind
/// it stays.
QString RemoveSection(const QString& text, const QString& openTag, const QString& closeTag);

} // namespace TemplateHelper
