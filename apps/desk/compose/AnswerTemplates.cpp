// SPDX-License-Identifier: Apache-2.0
#include "AnswerTemplates.h"

#include "Addresses.h"
#include "Composition.h"
#include "DisplayText.h"
#include "Failure.h"
#include "answering/TextTemplate.h"
#include "contacts/SenderContact.h"
#include "platform/directory/clsKVUser.h"
#include "station/DeskStation.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QObject>
#include <QRegularExpression>

namespace
{
const QString AnswerPrefix = QStringLiteral("Answer-");
const QString SignaturePrefix = QStringLiteral("Signature");
const QString TextExtension = QStringLiteral(".txt");

QString FolderOfTemplates(DeskStation& station)
{
    return station.Database().HTMLTemplatesLocation();
}

QString ReadAnswer(const QString& path)
{
    QString problem;
    const std::optional<QString> text = TextTemplate::Read(path, problem);
    if (!text)
        throw Failure(exitData, problem);
    return *text;
}

/// The contact's name, or the one that stands beside the address.
QString ListenerOf(DeskStation& station, const Composition& answer)
{
    const QString recipient = Addresses::Split(answer.To).value(0);
    if (recipient.isEmpty())
        return QObject::tr("listener");
    const clsKVContactPtr contact = answer.Type == emtSMS
                                        ? SenderContact::FindByNumber(station.Directory(), recipient)
                                        : SenderContact::FindByAddress(station.Directory(), Addresses::Bare(recipient));
    if (contact && !contact->Name.trimmed().isEmpty())
        return OneLine(contact->Name);
    const QString name = OneLine(Addresses::DisplayName(recipient));
    const bool isAddress = answer.Type == emtSMS || name == Addresses::Bare(recipient) || name.contains(u'@');
    return name.isEmpty() || isAddress ? QObject::tr("listener") : name;
}

QHash<QString, QString> ValuesOf(DeskStation& station, const Composition& answer)
{
    const clsKVUser* user = station.Directory().CurrentUser();
    return {{QStringLiteral("LISTENER_NAME"), ListenerOf(station, answer)},
            {QStringLiteral("SONG"), OneLine(station.Database().CurrentSongFullName()).trimmed()},
            {QStringLiteral("STATION_NAME"), station.Name()},
            {QStringLiteral("USER_NAME"), user ? OneLine(user->Name()) : QString()}};
}

/// Of a user whose name no file can have, the station's.
QString SignatureFile(DeskStation& station)
{
    const QDir folder(FolderOfTemplates(station));
    const clsKVUser* user = station.Directory().CurrentUser();
    const QString name = user ? user->Name() : QString();
    static const QRegularExpression refused(QStringLiteral("[/\\\\:\\x00-\\x1f]"));
    const QString own = folder.filePath(SignaturePrefix + u'-' + name + TextExtension);
    if (!name.isEmpty() && !name.contains(refused) && QFile::exists(own))
        return own;
    const QString all = folder.filePath(SignaturePrefix + TextExtension);
    return QFile::exists(all) ? all : QString();
}
} // namespace

QStringList AnswerTemplates::Names(DeskStation& station)
{
    QStringList names;
    const QStringList files =
        QDir(FolderOfTemplates(station))
            .entryList({AnswerPrefix + u'*' + TextExtension}, QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QString& file : files)
        names.append(file.sliced(AnswerPrefix.size()).chopped(TextExtension.size()));
    return names;
}

QString AnswerTemplates::Filled(DeskStation& station, const QString& name, const Composition& answer)
{
    const QString path = QDir(FolderOfTemplates(station)).filePath(AnswerPrefix + name + TextExtension);
    return TextTemplate::Filled(ReadAnswer(path), ValuesOf(station, answer));
}

Composition AnswerTemplates::WithSignature(DeskStation& station, Composition composition, QString& problem)
{
    const QString file = composition.Type == emtSMS ? QString() : SignatureFile(station);
    if (file.isEmpty())
        return composition;
    try {
        const QString signature = TextTemplate::Filled(ReadAnswer(file), ValuesOf(station, composition)).trimmed();
        if (!signature.isEmpty())
            composition.Body = QStringLiteral("\n\n-- \n%1\n").arg(signature) + composition.Body;
    } catch (const Failure& failure) {
        problem = failure.Words();
    } catch (const dao::Error& error) {
        problem = station.Words(error.Number(), error.Description());
    }
    return composition;
}
