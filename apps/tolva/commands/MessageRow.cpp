// SPDX-License-Identifier: Apache-2.0
#include "commands/MessageRow.h"

#include "commands/JsonDate.h"
#include "platform/records/Recordset.h"

#include <QJsonArray>

namespace
{

/// The bare addresses of a search key, which stand between bars.
QString AddressesOf(const QString& key)
{
    return key.split(u'|', Qt::SkipEmptyParts).join(QStringLiteral(", "));
}
} // namespace

QStringList MessageRowColumns()
{
    return {QStringLiteral("Reference"),
            QStringLiteral("Category"),
            QStringLiteral("FromKey"),
            QStringLiteral("ToKey"),
            QStringLiteral("Subject"),
            QStringLiteral("Sent"),
            QStringLiteral("Received"),
            QStringLiteral("Flags"),
            QStringLiteral("Priority"),
            QStringLiteral("MessageType"),
            QStringLiteral("HasHighlightWords"),
            QStringLiteral("PersonalToContact"),
            MailColumn};
}

MessageRow ReadMessageRow(const dao::Recordset& rows)
{
    const auto column = [&rows](const char16_t* name) { return rows.Collect(QString::fromUtf16(name)); };
    MessageRow row;
    row.Reference = column(u"Reference").toInt();
    row.Category = column(u"Category").toInt();
    row.From = AddressesOf(column(u"FromKey").toString());
    row.To = AddressesOf(column(u"ToKey").toString());
    row.Subject = column(u"Subject").toString();
    row.Sent = Date(column(u"Sent").toDouble());
    row.Received = Date(column(u"Received").toDouble());
    row.Flags = column(u"Flags").toInt();
    row.Priority = column(u"Priority").toInt();
    row.IsSMS = column(u"MessageType").toInt() == emtSMS;
    row.IsHighlighted = column(u"HasHighlightWords").toInt() != 0;
    row.IsPersonal = column(u"PersonalToContact").toInt() != 0;
    if (row.IsSMS) {
        const cdo::Message mail(rows[MailColumn].Octets());
        row.From = mail.From();
        row.To = mail.To();
    }
    return row;
}

QString FlagLetters(const MessageRow& row)
{
    const auto letter = [](bool isSet, char16_t sign) { return QChar(isSet ? sign : u'-'); };
    QString letters;
    letters += letter((row.Flags & mfRead) == 0, u'N');
    letters += letter(row.IsPersonal, u'P');
    letters += letter(row.IsHighlighted, u'H');
    letters += letter(row.Priority > 0, u'!');
    letters += letter(row.IsSMS, u'S');
    return letters;
}

QJsonArray JsonFlags(qint32 flags)
{
    QJsonArray names;
    if (flags & mfRead)
        names.append(QStringLiteral("read"));
    if (flags & mfSendPending)
        names.append(QStringLiteral("sendPending"));
    if (flags & mfAutomatic)
        names.append(QStringLiteral("automatic"));
    return names;
}

QString TypeName(bool isSMS)
{
    return isSMS ? QStringLiteral("sms") : QStringLiteral("email");
}

QJsonObject ToJson(const MessageRow& row, const QString& category)
{
    return {
        {QStringLiteral("reference"), row.Reference},
        {QStringLiteral("category"), category},
        {QStringLiteral("from"), row.From},
        {QStringLiteral("to"), row.To},
        {QStringLiteral("subject"), row.Subject},
        {QStringLiteral("sent"), JsonDate(row.Sent)},
        {QStringLiteral("received"), JsonDate(row.Received)},
        {QStringLiteral("flags"), JsonFlags(row.Flags)},
        {QStringLiteral("type"), TypeName(row.IsSMS)},
        {QStringLiteral("highlighted"), row.IsHighlighted},
    };
}
