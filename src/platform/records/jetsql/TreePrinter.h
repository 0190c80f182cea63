// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/jetsql/SyntaxTree.h"

/// A tree as text in one canonical spelling: every name in brackets, every operation in parentheses, texts in single
/// quotes. Parsing the result gives the same tree again. For diagnostics and tests.
namespace dao::jetsql
{

QString ToText(const Expression& expression);
QString ToText(const Statement& statement);

} // namespace dao::jetsql
