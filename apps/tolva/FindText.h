// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

/// What was typed as a piece of a LIKE pattern between double quotes, in which every character stands for itself
/// and for the forms in which typesetters and telephones write it: an apostrophe finds curly ones.
QString LiteralPattern(const QString& typed);
