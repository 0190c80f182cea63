// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// What is left of style sheets that were written elsewhere when they can neither fetch nor run anything, nor cover
/// what stands outside their element. Nothing is passed through that is not understood: no address, no function but
/// those of colours, no escapes.
namespace StyleFilter
{
/// The content of a style attribute.
QString Declarations(const QString& declarations);
/// A whole style sheet: rules, "@media" and "@page"; every other rule with an at sign goes.
QString Sheet(const QString& sheet);
} // namespace StyleFilter
