// SPDX-License-Identifier: Apache-2.0
#include "AnswerTemplates.h"

#include "Addresses.h"
#include "Composition.h"
#include "DisplayText.h"
#include "Failure.h"
#include "common/FileHelper.h"
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
constexpr qint64 LargestAnswer = 256LL << 10;

QString FolderOfTemplates(DeskStation& station)
{
    return station.Database().HTMLTemplatesLocation();
}

QString ReadAnswer(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(exitNoInput, QObject::tr("The template %1 cannot be read: %2").arg(path, file.errorString()));
    if (file.size() > LargestAnswer)
        throw Failure(exitData, QObject::tr("%1 is too large for a template.").arg(path));
    QString text = FileHelper::DecodeText(file.readAll());
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text;
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

/// In one pass, so that a value that looks like a tag stays what it is. Tags that are not known are left out.
QString FillAnswer(const QString& text, const QHash<QString, QString>& values)
{
    static const QRegularExpression tag(QStringLiteral("<ZRT_([A-Z_]+)>"));
    QString result;
    qsizetype done = 0;
    for (auto it = tag.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        result += QStringView(text).sliced(done, match.capturedStart() - done);
        result += values.value(match.captured(1));
        done = match.capturedEnd();
    }
    return result + text.sliced(done);
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
    return FillAnswer(ReadAnswer(path), ValuesOf(station, answer));
}

Composition AnswerTemplates::WithSignature(DeskStation& station, Composition composition, QString& problem)
{
    const QString file = composition.Type == emtSMS ? QString() : SignatureFile(station);
    if (file.isEmpty())
        return composition;
    try {
        const QString signature = FillAnswer(ReadAnswer(file), ValuesOf(station, composition)).trimmed();
        if (!signature.isEmpty())
            composition.Body = QStringLiteral("\n\n-- \n%1\n").arg(signature) + composition.Body;
    } catch (const Failure& failure) {
        problem = failure.Words();
    } catch (const dao::Error& error) {
        problem = station.Words(error.Number(), error.Description());
    }
    return composition;
}
