// SPDX-License-Identifier: Apache-2.0

// tolva contacts: whom the station knows.

#include "DisplayText.h"
#include "FileOutput.h"
#include "Station.h"
#include "StationPlace.h"
#include "Terminal.h"
#include "commands/Commands.h"
#include "commands/CommonOptions.h"
#include "contacts/ContactImport.h"
#include "contacts/ContactOrder.h"
#include "contacts/ContactSearch.h"
#include "contacts/VCard.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonObject>

namespace
{
const QString DuplicatesOption = QStringLiteral("duplicates");
const QString VersionOption = QStringLiteral("vcard");

constexpr int ReferenceWidth = 11;
constexpr int ContactWidth = 26;
constexpr int NumberWidth = 18;

struct Detail
{
    QString Option; ///< Of the command line, and its name in JSON but for its case.
    QString JsonName;
    QString Label;
    QString clsKVContact::*Field;
};

const QList<Detail>& Details()
{
    static const QList<Detail> details = {
        {QStringLiteral("name"), QStringLiteral("name"), QStringLiteral("Name"), &clsKVContact::Name},
        {QStringLiteral("mobile"), QStringLiteral("mobile"), QStringLiteral("Mobile"), &clsKVContact::Mobile},
        {QStringLiteral("telephone"), QStringLiteral("telephone"), QStringLiteral("Telephone"),
         &clsKVContact::Telephone},
        {QStringLiteral("email"), QStringLiteral("email"), QStringLiteral("E-mail"), &clsKVContact::Email},
        {QStringLiteral("second-email"), QStringLiteral("secondEmail"), QStringLiteral("Second e-mail"),
         &clsKVContact::SecondEmail},
        {QStringLiteral("other"), QStringLiteral("other"), QStringLiteral("Other"), &clsKVContact::Other},
    };
    return details;
}

Failure FailureOfContacts(const Station& station, const dao::Error& error)
{
    switch (error.Number()) {
    case dao::errRecordDeleted:
        return Failure(exitData, error.Description());
    case dao::errChangedByAnother:
        return Failure(exitTemporary, error.Description() + QStringLiteral(" Try again."));
    case dao::errFieldTooSmall:
        return Failure(exitUsage, QStringLiteral("A name, number or address has 255 characters at most."));
    default:
        return FailureOf(QStringLiteral("The directory in %1").arg(StationPlace::DirectoryIn(station.Folder())),
                         StationPlace::DirectoryFileIn(station.Folder()), error.Number(), error.Description());
    }
}

template <typename Work>
decltype(auto) InDirectory(const Station& station, Work&& work)
{
    try {
        return std::forward<Work>(work)();
    } catch (const dao::Error& error) {
        throw FailureOfContacts(station, error);
    }
}

qint32 ReferenceIn(const QString& word)
{
    bool isNumber = false;
    const qint32 reference = word.toInt(&isNumber);
    if (!isNumber || reference == 0)
        throw Failure(exitUsage, QStringLiteral("\"%1\" is not the number of a contact.").arg(word));
    return reference;
}

clsKVContactPtr Contact(Station& station, const QString& word)
{
    const qint32 reference = ReferenceIn(word);
    clsKVContactPtr contact = InDirectory(station, [&] { return station.Directory().GetContact(reference); });
    if (!contact)
        throw Failure(exitData, QStringLiteral("There is no contact %1.").arg(reference));
    return contact;
}

void PrintJson(const clsKVContact& contact)
{
    QJsonObject object{{QStringLiteral("reference"), contact.Reference}};
    for (const Detail& detail : Details())
        object.insert(detail.JsonName, contact.*detail.Field);
    Terminal::PrintJson(object);
}

/// A cell that is never cut: what it holds may be needed whole.
QString Column(const QString& text, int width)
{
    const QString line = OneLine(text);
    return DisplayWidth(line) < width ? Cell(line, width) : line + u' ';
}

void PrintContact(const clsKVContact& contact)
{
    const QString& number = contact.Mobile.isEmpty() ? contact.Telephone : contact.Mobile;
    const QString& address = contact.Email.isEmpty() ? contact.SecondEmail : contact.Email;
    const QString row = Column(QString::number(contact.Reference), ReferenceWidth) +
                        Column(contact.Name, ContactWidth) + Column(number, NumberWidth) + OneLine(address);
    Terminal::PrintLine(row.trimmed());
}

void ListContacts(const Arguments& arguments, Station& station)
{
    const QList<clsKVContactPtr> contacts = InDirectory(station, [&] { return station.Directory().Contacts(); });
    for (const clsKVContactPtr& contact :
         ContactSearch(ContactOrder::ByName(contacts)).Find(arguments.Words().value(2))) {
        if (arguments.Has(JsonOption))
            PrintJson(*contact);
        else
            PrintContact(*contact);
    }
}

void Show(const Arguments& arguments, Station& station)
{
    const clsKVContactPtr contact = Contact(station, arguments.Words().at(2));
    if (arguments.Has(JsonOption)) {
        PrintJson(*contact);
        return;
    }
    for (const Detail& detail : Details()) {
        const QString& text = (*contact).*detail.Field;
        if (!text.isEmpty())
            Terminal::Print(detail.Label + QStringLiteral(": ") + text + u'\n');
    }
}

/// Takes the details that were given over into a contact.
void TakeDetails(const Arguments& arguments, clsKVContact& contact)
{
    for (const Detail& detail : Details()) {
        if (arguments.Has(detail.Option))
            contact.*detail.Field = arguments.Value(detail.Option).trimmed();
    }
    contact.Name = contact.Name.simplified();
    if (contact.Name.isEmpty())
        throw Failure(exitUsage, QStringLiteral("A contact needs a name."));
}

void AddContact(const Arguments& arguments, Station& station)
{
    clsKVContact contact;
    contact.Name = arguments.Words().at(2);
    TakeDetails(arguments, contact);
    InDirectory(station, [&] { station.Directory().SaveContact(contact); });
    Terminal::PrintLine(QString::number(contact.Reference));
}

void Edit(const Arguments& arguments, Station& station)
{
    const clsKVContactPtr before = Contact(station, arguments.Words().at(2));
    clsKVContact after = *before;
    TakeDetails(arguments, after);
    InDirectory(station, [&] { station.Directory().ChangeContact(*before, after); });
}

void DeleteContacts(const Arguments& arguments, Station& station)
{
    const clsKVContactPtr contact = Contact(station, arguments.Words().at(2));
    InDirectory(station, [&] { station.Directory().DeleteContact(contact->Reference); });
}

ContactImport::Duplicates DuplicatesIn(const Arguments& arguments)
{
    const QString word = arguments.Value(DuplicatesOption, QStringLiteral("skip")).toLower();
    if (word == u"skip")
        return ContactImport::Duplicates::Skip;
    if (word == u"update")
        return ContactImport::Duplicates::Update;
    if (word == u"add")
        return ContactImport::Duplicates::Add;
    throw Failure(exitUsage, QStringLiteral("Duplicates are skip, update or add, not \"%1\".").arg(word));
}

VCard::Version VersionIn(const Arguments& arguments)
{
    const QString word = arguments.Value(VersionOption, QStringLiteral("3.0"));
    if (word == u"2.1")
        return VCard::Version::V2_1;
    if (word == u"3.0")
        return VCard::Version::V3_0;
    if (word == u"4.0")
        return VCard::Version::V4_0;
    throw Failure(exitUsage, QStringLiteral("Business cards have version 2.1, 3.0 or 4.0, not \"%1\".").arg(word));
}

QByteArray ReadCards(const QString& path)
{
    QByteArray octets;
    if (path == u"-") {
        if (!Terminal::ReadInput(octets))
            throw Failure(exitInputOutput, QStringLiteral("Standard input could not be read."));
        return octets;
    }
    QFile file(path);
    if (!file.exists())
        throw Failure(exitNoInput, QStringLiteral("%1 does not exist.").arg(path));
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(exitNoInput, QStringLiteral("%1 cannot be read: %2").arg(path, file.errorString()));
    octets = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw Failure(exitInputOutput, QStringLiteral("%1 could not be read: %2").arg(path, file.errorString()));
    return octets;
}

/// Data for cards that could not be taken over: the others are.
int Import(const Arguments& arguments, Station& station)
{
    const ContactImport::Duplicates duplicates = DuplicatesIn(arguments);
    const VCard::Reading reading = VCard::Read(ReadCards(arguments.Words().at(2)));
    const ContactImport::Result result = InDirectory(station, [&] {
        const QList<ContactImport::Entry> plan = ContactImport::Plan(station.Directory(), reading.Contacts);
        const ContactImport::Result done = ContactImport::Run(station.Directory(), plan, duplicates);
        for (const ContactImport::Entry& entry : plan) {
            if (entry.Known && !arguments.Has(JsonOption)) {
                Terminal::PrintLine(
                    QStringLiteral("%1: %2 has %3 already.")
                        .arg(OneLine(entry.Contact->Name), OneLine(entry.Known->Name), OneLine(entry.Detail)));
            }
        }
        return done;
    });
    if (arguments.Has(JsonOption)) {
        const QJsonObject object{{QStringLiteral("added"), result.Added},
                                 {QStringLiteral("updated"), result.Updated},
                                 {QStringLiteral("skipped"), result.Skipped},
                                 {QStringLiteral("failed"), static_cast<int>(reading.Problems.size())}};
        Terminal::PrintJson(object);
    } else {
        Terminal::PrintLine(QStringLiteral("%1 added, %2 updated, %3 skipped.")
                                .arg(result.Added)
                                .arg(result.Updated)
                                .arg(result.Skipped));
    }
    for (const QString& problem : reading.Problems)
        Terminal::Complain(problem);
    return reading.Problems.isEmpty() ? exitOK : exitData;
}

void ExportContacts(const Arguments& arguments, Station& station)
{
    const VCard::Version version = VersionIn(arguments);
    QList<clsKVContact> contacts;
    for (const clsKVContactPtr& contact : InDirectory(station, [&] { return station.Directory().Contacts(); }))
        contacts.append(*contact);
    const QByteArray octets = VCard::Write(contacts, version);
    const QString path = arguments.Value(OutputOption, QStringLiteral("-"));
    if (path == u"-") {
        Terminal::PrintOctets(octets);
        return;
    }
    FileOutput::Write(path, octets, arguments.Has(ForceOption) ? IfThere::Replace : IfThere::Refuse);
}

/// Failure (usage) for what is no form of the command, before anything is opened.
void CheckFormOfContacts(const Arguments& arguments)
{
    struct Form
    {
        qsizetype Least;
        qsizetype Most;
    };
    static const QHash<QString, Form> forms = {
        {QStringLiteral("list"), {2, 3}},   {QStringLiteral("show"), {3, 3}},   {QStringLiteral("add"), {3, 3}},
        {QStringLiteral("edit"), {3, 3}},   {QStringLiteral("delete"), {3, 3}}, {QStringLiteral("import"), {3, 3}},
        {QStringLiteral("export"), {2, 2}},
    };
    const QStringList& words = arguments.Words();
    const auto form = forms.constFind(words.value(1, QStringLiteral("list")));
    const bool fits =
        words.size() == 1 || (form != forms.constEnd() && words.size() >= form->Least && words.size() <= form->Most);
    if (!fits) {
        throw Failure(exitUsage, QStringLiteral("Behind the folder comes nothing, \"list TEXT\", \"show NUMBER\", "
                                                "\"add NAME\", \"edit NUMBER\", \"delete NUMBER\", \"import FILE\" or "
                                                "\"export\"."));
    }
    const QString& verb = words.value(1);
    if (verb == u"show" || verb == u"edit" || verb == u"delete")
        ReferenceIn(words.at(2));
    DuplicatesIn(arguments);
    VersionIn(arguments);
}

int RunContacts(const Arguments& arguments)
{
    CheckFormOfContacts(arguments);
    Station station(arguments);
    const QString verb = arguments.Words().value(1, QStringLiteral("list"));
    if (verb == u"import")
        return Import(arguments, station);
    if (verb == u"show")
        Show(arguments, station);
    else if (verb == u"add")
        AddContact(arguments, station);
    else if (verb == u"edit")
        Edit(arguments, station);
    else if (verb == u"delete")
        DeleteContacts(arguments, station);
    else if (verb == u"export")
        ExportContacts(arguments, station);
    else
        ListContacts(arguments, station);
    return exitOK;
}
} // namespace

CommandDefinition ContactsCommand()
{
    return {
        QStringLiteral("contacts"),
        QStringLiteral("Lists the contacts of the station's directory, or changes them."),
        {QStringLiteral("contacts FOLDER [list [TEXT]] [--json]"),
         QStringLiteral("contacts FOLDER show NUMBER [--json]"),
         QStringLiteral("contacts FOLDER add NAME [--mobile ...] [--telephone ...] [--email ...] ..."),
         QStringLiteral("contacts FOLDER edit NUMBER [--name ...] [--mobile ...] ..."),
         QStringLiteral("contacts FOLDER delete NUMBER"),
         QStringLiteral("contacts FOLDER import FILE [--duplicates skip|update|add]"),
         QStringLiteral("contacts FOLDER export [--output FILE] [--vcard 2.1|3.0|4.0]")},
        QStringLiteral(
            "TEXT finds contacts that hold all its words, whatever case, accents and form of numbers. \"add\" prints "
            "the\n"
            "new contact's NUMBER. With \"edit\" an empty value (\"\") takes a detail away; the others stay.\n"
            "FILE holds business cards (vCard 2.1, 3.0 or 4.0), \"-\" is standard input. All of its whole cards are\n"
            "taken over or, when the directory cannot take one, none. Cards that are cut off are named, and the exit "
            "code\n"
            "is 65 then. A card whose number or address a contact has already is skipped, or fills what that contact\n"
            "lacks (update), or becomes a contact of its own (add)."),
        {{QStringLiteral("name"), QStringLiteral("NAME"), QStringLiteral("The name (edit).")},
         {QStringLiteral("mobile"), QStringLiteral("NUMBER"), QStringLiteral("Mobile number.")},
         {QStringLiteral("telephone"), QStringLiteral("NUMBER"), QStringLiteral("Other number.")},
         {QStringLiteral("email"), QStringLiteral("ADDRESS"), QStringLiteral("E-mail address.")},
         {QStringLiteral("second-email"), QStringLiteral("ADDRESS"), QStringLiteral("Second e-mail address.")},
         {QStringLiteral("other"), QStringLiteral("TEXT"), QStringLiteral("All else, of any length.")},
         {DuplicatesOption, QStringLiteral("WHAT"), QStringLiteral("skip (what counts without it), update or add.")},
         {VersionOption, QStringLiteral("VERSION"), QStringLiteral("Of the exported cards; 3.0 without it.")},
         {OutputOption, QStringLiteral("FILE"), QStringLiteral("The file to write; also -o FILE."),
          QStringLiteral("o")},
         {ForceOption, QString(), QStringLiteral("Replaces a file that exists.")},
         {JsonOption, QString(), QStringLiteral("One JSON object a line.")},
         Station::UserOption()},
        QStringLiteral("tolva contacts /srv/station import telephone.vcf --duplicates update"),
        1,
        3,
        RunContacts,
    };
}
