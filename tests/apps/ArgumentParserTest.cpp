// SPDX-License-Identifier: Apache-2.0
#include "ArgumentParser.h"

#include "Failure.h"
#include "commands/Commands.h"

#include <QSet>

#include <gtest/gtest.h>

namespace
{
int Nothing(const Arguments&)
{
    return 0;
}

CommandDefinition Sample(int leastWords = 1, int mostWords = 2)
{
    return {QStringLiteral("sample"),
            QStringLiteral("Does something."),
            {QStringLiteral("sample FOLDER [NAME]")},
            QStringLiteral("More of it."),
            {{QStringLiteral("json"), QString(), QStringLiteral("Prints JSON.")},
             {QStringLiteral("output"), QStringLiteral("FILE"), QStringLiteral("Where to."), QStringLiteral("o")}},
            QStringLiteral("tolva sample /srv/station"),
            leastWords,
            mostWords,
            Nothing};
}

/// The words of the refusal; empty when the arguments are taken.
QString Refusal(const CommandDefinition& command, const QStringList& arguments)
{
    try {
        ParseArguments(command, arguments);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Code(), exitUsage);
        return failure.Words();
    }
    return QString();
}
} // namespace

TEST(ArgumentParserTest, WordsAndOptionsAreToldApartWhereverTheyStand)
{
    const Arguments arguments = ParseArguments(
        Sample(), {QStringLiteral("--json"), QStringLiteral("st"), QStringLiteral("--output=a"), QStringLiteral("b")});
    EXPECT_EQ(arguments.Folder(), QStringLiteral("st"));
    EXPECT_EQ(arguments.Words(), (QStringList{QStringLiteral("st"), QStringLiteral("b")}));
    EXPECT_TRUE(arguments.Has(QStringLiteral("json")));
    EXPECT_EQ(arguments.Value(QStringLiteral("output")), QStringLiteral("a"));
    EXPECT_EQ(arguments.Value(QStringLiteral("none"), QStringLiteral("otherwise")), QStringLiteral("otherwise"));
}

TEST(ArgumentParserTest, AShortNameMeansItsOptionAndTheLastValueCounts)
{
    const Arguments arguments =
        ParseArguments(Sample(), {QStringLiteral("st"), QStringLiteral("-o"), QStringLiteral("a"),
                                  QStringLiteral("--output"), QStringLiteral("b")});
    EXPECT_EQ(arguments.Value(QStringLiteral("output")), QStringLiteral("b"));
}

TEST(ArgumentParserTest, WhatStandsBehindTwoDashesIsNoOption)
{
    const Arguments arguments =
        ParseArguments(Sample(), {QStringLiteral("st"), QStringLiteral("--"), QStringLiteral("--json")});
    EXPECT_EQ(arguments.Words().value(1), QStringLiteral("--json"));
    EXPECT_FALSE(arguments.Has(QStringLiteral("json")));
}

TEST(ArgumentParserTest, WhatACommandDoesNotTakeIsRefusedInWordsThatNameItsHelp)
{
    const QString see = QStringLiteral(" See: tolva sample --help");
    EXPECT_EQ(Refusal(Sample(), {}), QStringLiteral("The station's folder is missing.") + see);
    EXPECT_EQ(Refusal(Sample(), {QString()}), QStringLiteral("The station's folder is missing.") + see);
    EXPECT_EQ(Refusal(Sample(2, 2), {QStringLiteral("st")}),
              QStringLiteral("Something is missing behind \"st\".") + see);
    EXPECT_EQ(Refusal(Sample(1, 1), {QStringLiteral("st"), QStringLiteral("b"), QStringLiteral("c")}),
              QStringLiteral("\"b\" is too much.") + see);
    EXPECT_TRUE(Refusal(Sample(), {QStringLiteral("st"), QStringLiteral("--odd")}).contains(QStringLiteral("odd")));
    EXPECT_TRUE(
        Refusal(Sample(), {QStringLiteral("st"), QStringLiteral("--output")}).contains(QStringLiteral("output")));
}

TEST(ArgumentParserTest, AnyNumberOfWordsIsTakenWhereThereIsNoLimit)
{
    EXPECT_EQ(Refusal(Sample(1, -1), QStringList(50, QStringLiteral("w"))), QString());
}

TEST(ArgumentParserTest, HelpIsTakenEverywhereAndWantsNoFolder)
{
    for (const CommandDefinition& command : AllCommands()) {
        EXPECT_TRUE(ParseArguments(command, {QStringLiteral("--help")}).Has(QStringLiteral("help")))
            << command.Name.toStdString();
    }
}

TEST(ArgumentParserTest, EachCommandTakesItsOwnOptionsAndNoNameStandsTwice)
{
    QSet<QString> commands;
    for (const CommandDefinition& command : AllCommands()) {
        EXPECT_FALSE(commands.contains(command.Name)) << command.Name.toStdString();
        commands.insert(command.Name);
        QStringList arguments(qMax(1, command.LeastWords), QStringLiteral("w"));
        QSet<QString> options;
        for (const OptionDefinition& option : command.Options) {
            EXPECT_FALSE(options.contains(option.Name)) << command.Name.toStdString() << option.Name.toStdString();
            options.insert(option.Name);
            arguments.append(QStringLiteral("--") + option.Name);
            if (!option.ValueName.isEmpty())
                arguments.append(QStringLiteral("value of ") + option.Name);
        }
        const Arguments parsed = ParseArguments(command, arguments);
        for (const OptionDefinition& option : command.Options) {
            EXPECT_TRUE(parsed.Has(option.Name)) << option.Name.toStdString();
            const QString expected = option.ValueName.isEmpty() ? QString() : QStringLiteral("value of ") + option.Name;
            EXPECT_EQ(parsed.Value(option.Name), expected) << option.Name.toStdString();
        }
        EXPECT_TRUE(HelpOf(command).contains(command.Summary));
    }
}
