// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/jetsql/SyntaxTree.h"

#include <QStringView>

/// The parser of the query dialect. Pure functions; any thread. What is refused is dao::Error 3075, and its description
/// gives the reason, the position counted from 1, and the text there. Trees deeper than MaximumDepth, and
/// parentheses nested twice as deep, are refused; length is not limited.
///
/// The dialect: keywords and names in any case; names in square brackets where they are no plain words; texts in single
/// or double quotes, a quote inside written twice; #dates# with the month before the day unless the year
/// leads; * ? # and [..] in LIKE; NOT binds looser than comparison; a semicolon may end the text.
namespace dao::jetsql
{

/// A SELECT, UPDATE or DELETE.
Statement ParseStatement(QStringView text);

/// A SELECT and nothing else, for what opens a recordset.
SelectStatement ParseSelect(QStringView text);

/// A bare condition, as it would stand after WHERE.
Expression ParseCondition(QStringView text);

} // namespace dao::jetsql
