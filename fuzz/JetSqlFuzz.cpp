// SPDX-License-Identifier: Apache-2.0
#include "platform/records/Error.h"
#include "platform/records/jetsql/LikePattern.h"
#include "platform/records/jetsql/Parser.h"
#include "platform/records/jetsql/TreePrinter.h"

#include <QString>

#include <cstdint>
#include <cstdlib>
#include <string>

using namespace dao::jetsql;

namespace
{
/// A text is read or refused; what was read prints to a text that means the same.
void Parse(const QString& text)
{
    QString printed;
    try {
        printed = ToText(ParseStatement(text));
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errSyntax)
            std::abort();
        return;
    }
    if (ToText(ParseStatement(printed)) != printed)
        std::abort();
}

void ParseCriterion(const QString& text)
{
    QString printed;
    try {
        printed = ToText(ParseCondition(text));
    } catch (const dao::Error& error) {
        if (error.Number() != dao::errSyntax)
            std::abort();
        return;
    }
    if (ToText(ParseCondition(printed)) != printed)
        std::abort();
}

/// The first line is a pattern, the rest a text; both forms of the text give one answer.
void Match(const std::string& octets)
{
    const std::size_t end = octets.find('\n');
    const LikePattern pattern(QString::fromStdString(octets.substr(0, end)));
    const std::string rest = end == std::string::npos ? octets : octets.substr(end + 1);
    static_cast<void>(pattern.MatchesUtf8(rest));
    const QString text = QString::fromStdString(rest);
    if (pattern.Matches(text) != pattern.MatchesUtf8(text.toStdString()))
        std::abort();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string octets(reinterpret_cast<const char*>(data), size);
    const QString text = QString::fromStdString(octets);
    Parse(text);
    ParseCriterion(text);
    Match(octets);
    return 0;
}
