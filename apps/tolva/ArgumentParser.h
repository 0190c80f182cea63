// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

/// One option of a command, without its leading dashes. A flag has no value name.
struct OptionDefinition
{
    QString Name;
    QString ValueName;
    QString Description;
    QString ShortName = {}; ///< Another name of one letter.
};

/// The words and options that a command was started with.
class Arguments
{
public:
    /// The words that are no options, the station's folder first.
    const QStringList& Words() const { return Words_; }
    const QString& Folder() const { return Words_.first(); }
    bool Has(const QString& option) const { return Options_.contains(option); }
    /// The value of an option, the last one when it was given twice.
    QString Value(const QString& option, const QString& whenAbsent = QString()) const
    {
        return Options_.value(option, whenAbsent);
    }

private:
    friend Arguments ParseArguments(const struct CommandDefinition& command, const QStringList& arguments);

    QStringList Words_;
    QHash<QString, QString> Options_;
};

/// What a command is called, takes and does; all that its help says comes from here.
struct CommandDefinition
{
    QString Name;
    QString Summary;
    QStringList Usage; ///< Each form, behind "tolva ".
    QString Details;
    std::vector<OptionDefinition> Options;
    QString Example;
    int LeastWords; ///< With the station's folder.
    int MostWords;  ///< -1 for any number.
    /// The exit code, for what ends without a Failure.
    int (*Run)(const Arguments& arguments);
};

/// Failure (usage) for what the command does not take. --help is taken everywhere.
Arguments ParseArguments(const CommandDefinition& command, const QStringList& arguments);

/// The help page of one command, and the one of the program over all its commands.
QString HelpOf(const CommandDefinition& command);
QString ProgramHelp(const std::vector<CommandDefinition>& commands);
