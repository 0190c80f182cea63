// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <vector>

/// A piece of markup, and the tree or the text that it stands for.
struct ParsingCase
{
    QString Group;
    QString Context; ///< Empty when the case names none.
    QString Markup;
    QString Result;
    int Line = 0;
};

/// The cases of a file in tests/data/htmldocument.
std::vector<ParsingCase> ParsingCasesOf(const char* name);
