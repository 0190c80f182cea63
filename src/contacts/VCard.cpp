// SPDX-License-Identifier: Apache-2.0

// Reading: what of a business card goes where in a contact. VCardLines takes the file apart, VCardWrite.cpp writes.

#include "contacts/VCard.h"

#include "contacts/VCardLines.h"

#include <QCoreApplication>

#include <algorithm>

namespace
{
using VCardLines::Card;
using VCardLines::Property;

constexpr qsizetype LongestDetail = 255;

QString Tr(const char* text)
{
    return QCoreApplication::translate("VCard", text);
}

/// The texts of all properties of that name, the preferred first.
QList<const Property*> Named(const Card& card, QStringView name)
{
    QList<const Property*> found;
    for (const Property& property : card.Properties) {
        if (property.Name == name && !property.Value.trimmed().isEmpty())
            found.append(&property);
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Property* one, const Property* other) { return one->Preference < other->Preference; });
    return found;
}

QString FirstText(const Card& card, QStringView name)
{
    const QList<const Property*> found = Named(card, name);
    return found.isEmpty() ? QString() : VCardLines::Text(*found.first()).simplified();
}

/// "tel:+44-1632-960123;ext=5" and "mailto:loveday@example.org" without what is not number or address.
QString WithoutScheme(const QString& text, QLatin1String scheme, QChar end)
{
    if (!text.startsWith(scheme, Qt::CaseInsensitive))
        return text;
    const qsizetype stop = text.indexOf(end);
    return text.mid(scheme.size(), stop < 0 ? -1 : stop - scheme.size());
}

QString NumberOf(const Property& property)
{
    return WithoutScheme(VCardLines::Text(property).simplified(), QLatin1String("tel:"), u';');
}

QString AddressOf(const Property& property)
{
    return WithoutScheme(VCardLines::Text(property).simplified(), QLatin1String("mailto:"), u'?');
}

/// The filled parts of a structured value, in an order of their own; those that are not named come last.
QString Joined(const Property& property, const QList<int>& order, const QString& divider)
{
    const QStringList parts = VCardLines::Parts(property);
    QStringList texts;
    for (const int place : order) {
        const QString text = parts.value(place).simplified();
        if (!text.isEmpty())
            texts.append(text);
    }
    return texts.join(divider);
}

/// Puts one card's properties into a contact, step by step.
class ContactMaker
{
public:
    explicit ContactMaker(const Card& card) : Card_(card) {}

    clsKVContact Make()
    {
        const QString address = TakePostalAddresses();
        TakeNumbers();
        TakeAddresses();
        TakeName();
        AddLines(u"NICKNAME", Tr("Nickname"));
        AddStructured(u"ORG", Tr("Organisation"), {0, 1, 2, 3});
        AddLines(u"TITLE", Tr("Title"));
        AddLines(u"ROLE", Tr("Role"));
        AddLines(u"URL", Tr("Web page"));
        AddLines(u"BDAY", Tr("Birthday"));
        AddLines(u"CATEGORIES", Tr("Categories"));
        AddNotes();
        // Labels are made of the lines above the first two empty ones.
        Contact_.Other = address;
        if (!address.isEmpty() && !Other_.isEmpty())
            Contact_.Other += QStringLiteral("\n\n\n");
        Contact_.Other += Other_.join(u'\n');
        return Contact_;
    }

private:
    /// Takes over a detail, or its whole text as a line where the detail cannot hold it.
    void Put(QString& detail, const QString& kind, const QString& text)
    {
        if (text.size() <= LongestDetail)
            detail = text;
        else
            AddLine(kind, text);
    }
    void AddLine(const QString& kind, const QString& text)
    {
        const QString line = kind + QStringLiteral(": ") + text;
        if (!text.isEmpty() && !Other_.contains(line))
            Other_.append(line);
    }
    void AddLines(QStringView name, const QString& kind)
    {
        for (const Property* property : Named(Card_, name))
            AddLine(kind, VCardLines::Text(*property).simplified());
    }
    void AddStructured(QStringView name, const QString& kind, const QList<int>& order)
    {
        for (const Property* property : Named(Card_, name))
            AddLine(kind, Joined(*property, order, QStringLiteral(", ")));
    }
    /// The first address in lines as they stand on a label; further ones become lines of other.
    QString TakePostalAddresses()
    {
        QString label;
        for (const Property* property : Named(Card_, u"ADR")) {
            if (label.isEmpty()) {
                label = Joined(*property, {0, 1, 2, 3, 4, 5, 6}, QStringLiteral("\n"));
                continue;
            }
            const QString kind = property->Types.contains(u"WORK")   ? Tr("Work address")
                                 : property->Types.contains(u"HOME") ? Tr("Home address")
                                                                     : Tr("Address");
            // Post office box, extension, street, town, region, post code, country.
            AddLine(kind, Joined(*property, {0, 1, 2, 3, 4, 5, 6}, QStringLiteral(", ")));
        }
        return label;
    }
    void AddNotes()
    {
        for (const Property* property : Named(Card_, u"NOTE")) {
            QString note = VCardLines::Text(*property);
            note.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
            Other_.append(note.trimmed());
        }
    }

    static QString KindOfNumber(const Property& property)
    {
        const QStringList& types = property.Types;
        const bool isWork = types.contains(u"WORK");
        const bool isHome = types.contains(u"HOME");
        if (types.contains(u"FAX"))
            return isWork ? Tr("Work fax") : isHome ? Tr("Home fax") : Tr("Fax");
        if (types.contains(u"PAGER"))
            return Tr("Pager");
        if (types.contains(u"CELL"))
            return Tr("Mobile");
        return isWork ? Tr("Work") : isHome ? Tr("Home") : Tr("Telephone");
    }
    void TakeNumbers()
    {
        for (const Property* property : Named(Card_, u"TEL")) {
            const QString number = NumberOf(*property);
            const bool isMobile = property->Types.contains(u"CELL");
            const bool speaks = !property->Types.contains(u"FAX") && !property->Types.contains(u"PAGER");
            if (number == Contact_.Mobile || number == Contact_.Telephone)
                continue;
            if (isMobile && speaks && Contact_.Mobile.isEmpty())
                Put(Contact_.Mobile, Tr("Mobile"), number);
            else if (!isMobile && speaks && Contact_.Telephone.isEmpty())
                Put(Contact_.Telephone, Tr("Telephone"), number);
            else
                AddLine(KindOfNumber(*property), number);
        }
    }
    void TakeAddresses()
    {
        for (const Property* property : Named(Card_, u"EMAIL")) {
            const QString address = AddressOf(*property);
            if (address.compare(Contact_.Email, Qt::CaseInsensitive) == 0)
                continue;
            if (Contact_.Email.isEmpty())
                Put(Contact_.Email, Tr("E-mail"), address);
            else if (Contact_.SecondEmail.isEmpty())
                Put(Contact_.SecondEmail, Tr("E-mail"), address);
            else
                AddLine(Tr("E-mail"), address);
        }
    }

    /// What the card calls its owner: the formatted name, and failing that whatever comes nearest.
    QString NameOnCard() const
    {
        const QString formatted = FirstText(Card_, u"FN");
        if (!formatted.isEmpty())
            return formatted;
        for (const Property* property : Named(Card_, u"N")) {
            // Family, given, additional, honorific before, honorific behind.
            const QString name = Joined(*property, {3, 1, 2, 0, 4}, QStringLiteral(" "));
            if (!name.isEmpty())
                return name;
        }
        const QString nickname = FirstText(Card_, u"NICKNAME");
        if (!nickname.isEmpty())
            return nickname;
        for (const Property* property : Named(Card_, u"ORG")) {
            const QString name = Joined(*property, {0, 1}, QStringLiteral(", "));
            if (!name.isEmpty())
                return name;
        }
        for (const QString& detail : {Contact_.Email, Contact_.Mobile, Contact_.Telephone}) {
            if (!detail.isEmpty())
                return detail;
        }
        return QString();
    }
    void TakeName()
    {
        const QString name = NameOnCard();
        Contact_.Name = name.left(LongestDetail);
        if (name.size() > LongestDetail) {
            if (Contact_.Name.back().isHighSurrogate())
                Contact_.Name.chop(1);
            AddLine(Tr("Name"), name);
        }
    }

    const Card& Card_;
    clsKVContact Contact_;
    QStringList Other_;
};
} // namespace

VCard::Reading VCard::Read(const QByteArray& octets)
{
    Reading reading;
    const QList<Card> cards = VCardLines::Read(octets);
    if (cards.isEmpty())
        reading.Problems.append(Tr("There is no business card in it."));
    for (qsizetype i = 0; i < cards.size(); ++i) {
        const Card& card = cards.at(i);
        const clsKVContact contact = ContactMaker(card).Make();
        const QString which = Tr("Card %1, line %2").arg(QString::number(i + 1), QString::number(card.Line));
        if (!card.IsWhole && contact.Name.isEmpty())
            reading.Problems.append(Tr("%1: is cut off.").arg(which));
        else if (!card.IsWhole)
            reading.Problems.append(Tr("%1, \"%2\": is cut off.").arg(which, contact.Name));
        else if (contact.Name.isEmpty())
            reading.Problems.append(Tr("%1: has no name, number or address.").arg(which));
        else
            reading.Contacts.append(contact);
    }
    return reading;
}
