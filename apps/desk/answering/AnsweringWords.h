// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "answering/AnswerLedger.h"
#include "answering/AnsweringWatch.h"

#include <QString>

/// What the desk says of answers under way and of those that were filed.
namespace AnsweringWords
{
/// "Petra is answering, for 2 minutes"; of several who do "Petra and 1 other are answering, for 2 minutes". Empty for
/// nobody. all: of one message.
QString OfNow(const QList<Answering>& all);
/// "Answered by Petra, 14:05", with the day in front of the time where it is not today's.
QString OfFiled(const FiledAnswer& answer);
} // namespace AnsweringWords
