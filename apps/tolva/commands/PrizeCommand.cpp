// SPDX-License-Identifier: Apache-2.0

// tolva prize: one prize, its hours and its winners.

#include "commands/Commands.h"
#include "commands/PageOutput.h"
#include "commands/PrizeForms.h"

#include <algorithm>

namespace
{
using namespace PrizeOptions;

struct Form
{
    QString Name;
    qsizetype Words;
    QStringList Options;
    /// Refuses what can be refused before the station is opened; may be null.
    void (*Check)(const Arguments& arguments);
    int (*Run)(Station& station, const Arguments& arguments);
};

const QList<Form>& Forms()
{
    static const QStringList fields = {Title,    Script,   ScriptFile, Notes, SupplierNotes,
                                       Supplier, Supplied, Start,      End,   PrizeOptions::Hours};
    static const QList<Form> forms = {
        {QStringLiteral("show"), 3, {Json}, nullptr, PrizeForms::Show},
        {QStringLiteral("add"), 2, fields, PrizeForms::CheckFields, PrizeForms::Add},
        {QStringLiteral("edit"), 3, fields, PrizeForms::CheckFields, PrizeForms::Edit},
        {QStringLiteral("delete"), 3, {Yes}, nullptr, PrizeForms::Delete},
        {QStringLiteral("hours"), 3, {Day, Set, Json}, PrizeForms::CheckHours, PrizeForms::Hours},
        {QStringLiteral("award"), 3, {Contact, Name, Number, Notes, Yes}, PrizeForms::CheckAward, PrizeForms::Award},
        {QStringLiteral("winners"), 3, {Json}, nullptr, PrizeForms::Winners},
        {QStringLiteral("remove-winner"), 3, {Yes}, nullptr, PrizeForms::RemoveWinner},
        {QStringLiteral("recount"), 3, {}, nullptr, PrizeForms::Recount},
        {QStringLiteral("print"),
         3,
         {Template, PageOutput::FileOption().Name, PageOutput::PaperOption().Name, PageOutput::ForceOption().Name},
         PrizeForms::CheckSheet,
         PrizeForms::PrintSheet},
    };
    return forms;
}

/// Every option of every form, each once.
const std::vector<OptionDefinition>& Options()
{
    static const std::vector<OptionDefinition> options = {
        {Title, QStringLiteral("TEXT"), QStringLiteral("What the prize is called.")},
        {Script, QStringLiteral("TEXT"), QStringLiteral("What is read on air.")},
        {ScriptFile, QStringLiteral("PATH"), QStringLiteral("The same from a file in UTF-8, - for standard input.")},
        {Notes, QStringLiteral("TEXT"), QStringLiteral("Notes on the prize, or on the award.")},
        {SupplierNotes, QStringLiteral("TEXT"), QStringLiteral("Notes to the supplier.")},
        {Supplier, QStringLiteral("REF"), QStringLiteral("The contact who gave the prize; 0 for none.")},
        {Supplied, QStringLiteral("N"), QStringLiteral("How many of it there are (a new one: 1).")},
        {Start, QStringLiteral("D"), QStringLiteral("The first moment of it; \"\" for any.")},
        {End, QStringLiteral("D"), QStringLiteral("The last day or moment of it; \"\" for any.")},
        {PrizeOptions::Hours, QStringLiteral("H"), QStringLiteral("The hours of every day.")},
        {Day, QStringLiteral("DAY"), QStringLiteral("mon to sun, or all (the default).")},
        {Set, QStringLiteral("H"), QStringLiteral("The hours of that day from now on.")},
        {Contact, QStringLiteral("REF"), QStringLiteral("The winner's number in the directory.")},
        {Name, QStringLiteral("TEXT"), QStringLiteral("The winner by name.")},
        {Number, QStringLiteral("TEXT"), QStringLiteral("The winner by telephone number.")},
        {Template, QStringLiteral("NAME"), QStringLiteral("The page template for print (\"Prize sheet\").")},
        PageOutput::FileOption(),
        PageOutput::PaperOption(),
        PageOutput::ForceOption(),
        {Yes, QString(), QStringLiteral("Does not ask.")},
        {Json, QString(), QStringLiteral("As JSON; winners and hours as one object a line.")},
        Station::UserOption(),
    };
    return options;
}

void RefuseForeignOptions(const Form& form, const Arguments& arguments)
{
    for (const OptionDefinition& option : Options()) {
        const bool isTaken = form.Options.contains(option.Name) || option.Name == Station::UserOption().Name;
        if (arguments.Has(option.Name) && !isTaken)
            throw Failure(
                exitUsage,
                QStringLiteral("\"prize %1\" does not take --%2. See: tolva prize --help").arg(form.Name, option.Name));
    }
}

int RunPrize(const Arguments& arguments)
{
    const auto form = std::find_if(Forms().begin(), Forms().end(), [&](const Form& candidate) {
        return candidate.Name == arguments.Words().at(1) && candidate.Words == arguments.Words().size();
    });
    if (form == Forms().end())
        throw Failure(exitUsage, QStringLiteral("\"%1\" is not understood here. See: tolva prize --help")
                                     .arg(arguments.Words().mid(1).join(u' ')));
    RefuseForeignOptions(*form, arguments);
    if (form->Words == 3)
        ToReference(arguments.Words().at(2),
                    form->Run == PrizeForms::RemoveWinner ? QStringLiteral("winner") : QStringLiteral("prize"));
    if (form->Check)
        form->Check(arguments);
    Station station(arguments);
    return form->Run(station, arguments);
}
} // namespace

CommandDefinition PrizeCommand()
{
    return {
        QStringLiteral("prize"),
        QStringLiteral("Shows, adds, changes, awards, prints and deletes a prize."),
        {QStringLiteral("prize FOLDER show REF [--json]"),
         QStringLiteral("prize FOLDER add --title TEXT [--supplied N] [--start D] [--end D] [--hours H]\n"
                        "        [--script TEXT|--script-file PATH] [--notes TEXT] [--supplier REF] "
                        "[--supplier-notes TEXT]"),
         QStringLiteral("prize FOLDER edit REF [the options of add]"),
         QStringLiteral("prize FOLDER delete REF [--yes]"),
         QStringLiteral("prize FOLDER hours REF [--day DAY] [--set H] [--json]"),
         QStringLiteral("prize FOLDER award REF --contact REF|--name TEXT|--number TEXT [--notes TEXT] [--yes]"),
         QStringLiteral("prize FOLDER winners REF [--json]"),
         QStringLiteral("prize FOLDER remove-winner WINNER [--yes]"), QStringLiteral("prize FOLDER recount REF"),
         QStringLiteral("prize FOLDER print REF [--template NAME] -o FILE [--paper SIZE] [--force]")},
        QStringLiteral(
            "REF is the prize's number in the list, WINNER the number that award prints and winners lists. H are "
            "hours\n"
            "such as 9-17, 6-9,18-24, all or none, D a date such as 2026-12-24 or \"2026-12-24 18:00\". Changing a\n"
            "prize needs the right to manage prizes; awarding needs it where the station says so, and taking back\n"
            "what somebody else awarded always. add prints the prize's number. recount counts a prize's winners anew,\n"
            "where tolva check says that the count is wrong; nobody should be awarding prizes meanwhile. print fills "
            "a\n"
            "page template of the station whose name begins with \"Prize-\", or the template file of that path; FILE "
            "ends in\n"
            ".html or .pdf and appears when it is whole, \"-\" is an HTML page on standard output."),
        Options(),
        QStringLiteral("tolva prize /srv/station award 3 --number \"07700 900123\""),
        2,
        3,
        RunPrize,
    };
}
