#pragma once

#include <QString>

/// What was typed as a piece of a LIKE pattern between double quotes, in which every character stands for itself.
QString LiteralPattern(const QString& typed);
