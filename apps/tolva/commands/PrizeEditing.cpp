// SPDX-License-Identifier: Apache-2.0

// tolva prize show, add, edit and delete.

#include "DisplayText.h"
#include "Terminal.h"
#include "commands/FieldLines.h"
#include "commands/PrizeForms.h"
#include "commands/PrizeText.h"
#include "common/ClockHelper.h"

#include <QFile>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace
{
using namespace PrizeOptions;

constexpr int LongestTitle = 255;

void PrintBlock(const QString& name, const QString& text)
{
    if (!text.trimmed().isEmpty())
        Terminal::Print(QStringLiteral("\n%1:\n%2\n").arg(name, text.trimmed()));
}

QString PersonAndDate(const QString& person, Date date)
{
    const QString day = date.Format(FieldLines::DateFormat);
    if (person.isEmpty() || day.isEmpty())
        return person + day;
    return day + QStringLiteral(", ") + person;
}

/// A number of 0 or more that a field holds. Failure (usage) for anything else.
qint32 ToNumber(const QString& option, const QString& typed)
{
    bool isNumber = false;
    const int number = typed.toInt(&isNumber);
    if (!isNumber || number < 0)
        throw Failure(exitUsage, QStringLiteral("--%1 takes a number from 0 to %3, not \"%2\".")
                                     .arg(option, typed, QString::number(std::numeric_limits<qint32>::max())));
    return number;
}

QString TextOfFile(const QString& path)
{
    QByteArray octets;
    if (path == u"-") {
        if (!Terminal::ReadInput(octets))
            throw Failure(exitInputOutput, QStringLiteral("Standard input cannot be read."));
    } else {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            throw Failure(exitNoInput, QStringLiteral("%1 cannot be read: %2").arg(path, file.errorString()));
        octets = file.readAll();
        if (file.error() != QFileDevice::NoError)
            throw Failure(exitInputOutput, QStringLiteral("%1 cannot be read: %2").arg(path, file.errorString()));
    }
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(octets);
    if (decoder.hasError())
        throw Failure(exitData, QStringLiteral("%1 is not text in UTF-8.").arg(path));
    return text;
}

/// The script that the options give, in words or in a file; nothing when they give none.
std::optional<QString> ScriptOf(const Arguments& arguments)
{
    if (arguments.Has(ScriptFile))
        return TextOfFile(arguments.Value(ScriptFile));
    return arguments.Has(Script) ? std::optional(arguments.Value(Script)) : std::nullopt;
}

/// What the options say goes into the prize; the rest of it stays. Waits for nothing.
void TakeFields(cPrize& prize, const Arguments& arguments, const std::optional<QString>& script)
{
    if (arguments.Has(Title))
        prize.SetTitle(arguments.Value(Title).simplified());
    if (script)
        prize.SetScript(*script);
    if (arguments.Has(Notes))
        prize.SetNotes(arguments.Value(Notes));
    if (arguments.Has(SupplierNotes))
        prize.SetNotesToSupplier(arguments.Value(SupplierNotes));
    if (arguments.Has(Supplier))
        prize.SetSupplierReference(ToNumber(Supplier, arguments.Value(Supplier)));
    if (arguments.Has(Supplied))
        prize.SetNumberSupplied(ToNumber(Supplied, arguments.Value(Supplied)));
    if (arguments.Has(Start))
        prize.SetStartDate(ParseStart(arguments.Value(Start)));
    if (arguments.Has(End))
        prize.SetEndDate(ParseEnd(arguments.Value(End)));
    for (qint16 day = 1; arguments.Has(PrizeOptions::Hours) && day <= 7; ++day)
        prize.SetAvailableHours(day, ParseHours(arguments.Value(PrizeOptions::Hours)));
}

/// Failure (usage) for a prize that could never go out.
void RefuseReversedDates(const cPrize& prize)
{
    if (!prize.StartDate().IsNone() && !prize.EndDate().IsNone() && prize.EndDate() < prize.StartDate())
        throw Failure(exitUsage, QStringLiteral("The prize would end before it starts."));
}

void TellOfSupplier(Station& station, const cPrize& prize)
{
    if (prize.SupplierReference() != 0 &&
        !station.Try([&] { return station.Directory().GetContact(prize.SupplierReference()); }))
        Terminal::Complain(
            QStringLiteral("Contact %1, the supplier, is not in the directory.").arg(prize.SupplierReference()));
}

void TellOfStock(const cPrize& prize)
{
    if (prize.NumberWinners() <= prize.NumberSupplied())
        return;
    Terminal::Complain(QStringLiteral("\"%1\" is stored with %2 supplied, but %3 won already.")
                           .arg(OneLine(prize.Title()))
                           .arg(prize.NumberSupplied())
                           .arg(prize.NumberWinners() == 1 ? QStringLiteral("1 is")
                                                           : QStringLiteral("%1 are").arg(prize.NumberWinners())));
}

bool IsConfirmed(const cPrize& prize)
{
    QString question = QStringLiteral("Are you sure you want to delete the prize '%1'?").arg(OneLine(prize.Title()));
    if (prize.NumberWinners() > 0) {
        question += prize.NumberWinners() == 1
                        ? QStringLiteral(" It has a winner, who is deleted with it.")
                        : QStringLiteral(" It has %1 winners, who are deleted with it.").arg(prize.NumberWinners());
    }
    return UserInterface::Confirm(question);
}
} // namespace

void PrizeForms::CheckFields(const Arguments& arguments)
{
    const bool isNew = arguments.Words().at(1) == u"add";
    const QString title = arguments.Value(Title).simplified();
    if ((isNew || arguments.Has(Title)) && (title.isEmpty() || title.size() > LongestTitle))
        throw Failure(exitUsage, QStringLiteral("A prize needs a --title of 1 to %1 characters.").arg(LongestTitle));
    if (arguments.Has(Script) && arguments.Has(ScriptFile))
        throw Failure(exitUsage, QStringLiteral("--script and --script-file exclude each other."));
    static const std::array fields = {Title,    Script,   ScriptFile, Notes, SupplierNotes,
                                      Supplier, Supplied, Start,      End,   PrizeOptions::Hours};
    if (std::none_of(fields.begin(), fields.end(), [&](const QString& field) { return arguments.Has(field); }))
        throw Failure(exitUsage,
                      QStringLiteral("Say what is to change, such as --supplied 3. See: tolva prize --help"));
    cPrize prize;
    // Standard input is there to be read once.
    TakeFields(prize, arguments, arguments.Value(ScriptFile) == u"-" ? std::nullopt : ScriptOf(arguments));
    RefuseReversedDates(prize);
}

int PrizeForms::Show(Station& station, const Arguments& arguments)
{
    const cPrizePtr prize = PrizeOf(station, arguments.Words().at(2));
    if (arguments.Has(Json)) {
        Terminal::PrintJson(ToJson(*prize));
        return exitOK;
    }
    FieldLines::Print(QStringLiteral("Prize"), QString::number(prize->Reference()));
    FieldLines::Print(QStringLiteral("Title"), prize->Title());
    FieldLines::Print(QStringLiteral("Stock"), StockWords(*prize));
    FieldLines::Print(QStringLiteral("From"), prize->StartDate().Format(FieldLines::DateFormat));
    FieldLines::Print(QStringLiteral("Until"), prize->EndDate().Format(FieldLines::DateFormat));
    FieldLines::Print(QStringLiteral("Hours"), HoursText::InWords(HoursText::HoursOf(*prize)));
    FieldLines::Print(QStringLiteral("Last won"), prize->LastWonDate().Format(FieldLines::DateFormat));
    FieldLines::Print(QStringLiteral("Supplier"), ContactName(station, prize->SupplierReference()));
    FieldLines::Print(QStringLiteral("Added"),
                      PersonAndDate(UserNameOf(station, prize->AddedByReference()), prize->AddedDate()));
    PrintBlock(QStringLiteral("Script"), prize->Script());
    PrintBlock(QStringLiteral("Notes"), prize->Notes());
    PrintBlock(QStringLiteral("Notes to the supplier"), prize->NotesToSupplier());
    return exitOK;
}

int PrizeForms::Add(Station& station, const Arguments& arguments)
{
    station.Require(DirectoryRight::ManagePrizes, PrizeForms::ManageWords);
    const auto prize = std::make_shared<cPrize>();
    prize->SetNumberSupplied(1);
    TakeFields(*prize, arguments, ScriptOf(arguments));
    RefuseReversedDates(*prize);
    TellOfSupplier(station, *prize);
    if (!station.Try([&] { return station.Database().SavePrize(prize); }))
        throw WhyNotStored(station, station.Database());
    TellOfStock(*prize);
    Terminal::PrintLine(QString::number(prize->Reference()));
    return exitOK;
}

int PrizeForms::Edit(Station& station, const Arguments& arguments)
{
    station.Require(DirectoryRight::ManagePrizes, PrizeForms::ManageWords);
    // A script on standard input may take its time, and nobody is to wait for it.
    const std::optional<QString> script = ScriptOf(arguments);
    const cPrizePtr prize = ChangePrize(station, arguments.Words().at(2), [&](cPrize& stored) {
        TakeFields(stored, arguments, script);
        RefuseReversedDates(stored);
    });
    if (arguments.Has(Supplier))
        TellOfSupplier(station, *prize);
    TellOfStock(*prize);
    return exitOK;
}

int PrizeForms::Delete(Station& station, const Arguments& arguments)
{
    station.Require(DirectoryRight::ManagePrizes, PrizeForms::ManageWords);
    const cPrizePtr prize = PrizeOf(station, arguments.Words().at(2));
    if (!arguments.Has(Yes) && Terminal::CanAsk() && !IsConfirmed(*prize)) {
        Terminal::Complain(QStringLiteral("Nothing was deleted."));
        return exitDeclined;
    }
    if (!station.Try([&] { return station.Database().DeletePrize(prize->Reference()); }))
        throw WhyNotStored(station, station.Database());
    if (station.Database().LastErrorNumber() != 0) {
        const Failure reason = WhyNotStored(station, station.Database());
        throw Failure(reason.Code(),
                      QStringLiteral("The prize is deleted, but not all of its winners. ") + reason.Words());
    }
    return exitOK;
}
