// SPDX-License-Identifier: Apache-2.0

// tolva prize print: a prize as an HTML page or a PDF file.

#include "PagePrinting.h"
#include "PrizeSheet.h"
#include "commands/PageOutput.h"
#include "commands/PrizeForms.h"
#include "commands/PrizeText.h"

void PrizeForms::CheckSheet(const Arguments& arguments)
{
    PageOutput::CheckUsage(arguments, QStringLiteral("prize"));
    PageOutput::CheckFile(arguments);
}

int PrizeForms::PrintSheet(Station& station, const Arguments& arguments)
{
    const PagePrinting::PageTemplate pageTemplate = PagePrinting::FindTemplate(
        station.Database(), arguments.Value(PrizeOptions::Template, PrizeSheet::UsualTemplate),
        PagePrinting::TemplateKind::Prizes);
    const cPrizePtr prize = PrizeOf(station, arguments.Words().at(2));
    const auto sheet =
        station.Try([&] { return PrizeSheet::Read(station.Database(), station.Directory(), prize->Reference()); });
    if (!sheet) // deleted since the look at it
        throw WhyNotStored(station, station.Database());
    PageOutput::Write(arguments, PrizePage::Fill(pageTemplate.Text, {*sheet}));
    return exitOK;
}
