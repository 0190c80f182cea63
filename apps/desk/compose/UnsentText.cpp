// SPDX-License-Identifier: Apache-2.0
#include "UnsentText.h"

#include "platform/files/WholeFile.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QUuid>

namespace
{
const QString TextEnding = QStringLiteral(".unsent");
/// Larger than any text and the files that go with a message.
constexpr qint64 LargestKept = 64LL << 20;

const QString StationKey = QStringLiteral("station");
const QString DraftKey = QStringLiteral("draft");
const QString DigestKey = QStringLiteral("digest");
const QString TypeKey = QStringLiteral("type");
const QString ToKey = QStringLiteral("to");
const QString CCKey = QStringLiteral("cc");
const QString BCCKey = QStringLiteral("bcc");
const QString SubjectKey = QStringLiteral("subject");
const QString BodyKey = QStringLiteral("body");
const QString UrgentKey = QStringLiteral("urgent");
const QString InReplyToKey = QStringLiteral("inReplyTo");
const QString ReferencesKey = QStringLiteral("references");
const QString AnswersKey = QStringLiteral("answers");

QCborMap WordsOf(const Composition& text)
{
    return {{TypeKey, static_cast<int>(text.Type)},
            {ToKey, text.To},
            {CCKey, text.CC},
            {BCCKey, text.BCC},
            {SubjectKey, text.Subject},
            {BodyKey, text.Body},
            {UrgentKey, text.IsUrgent},
            {InReplyToKey, text.InReplyTo},
            {ReferencesKey, text.References}};
}

QByteArray FilesOf(const QList<ComposedFile>& files)
{
    QCborArray all;
    for (const ComposedFile& file : files)
        all.append(QCborArray{file.FileName, file.ContentType, file.Content});
    return QCborValue(all).toCbor();
}

/// The value in a file; an invalid one where it cannot be read.
QCborValue ValueIn(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly) || file.size() > LargestKept)
        return {};
    QCborParserError error;
    const QCborValue value = QCborValue::fromCbor(file.readAll(), &error);
    return error.error == QCborError::NoError ? value : QCborValue();
}

QList<ComposedFile> FilesIn(const QCborArray& all)
{
    QList<ComposedFile> files;
    for (const auto& each : all) {
        const QCborArray file = each.toArray();
        files.append({file.at(0).toString(), file.at(1).toByteArray(), file.at(2).toByteArray()});
    }
    return files;
}
} // namespace

UnsentText::UnsentText(const QString& folder) : Folder_(folder) {}

QString UnsentText::FilesName() const
{
    return Name_ + QStringLiteral("-files");
}

FileStatus UnsentText::Keep(const Content& content)
{
    if (!Claim_) {
        // What people write is for nobody else on this machine.
        if (!QDir().mkpath(Folder_))
            return FileStatus(FileError::NoPermission);
        QFile::setPermissions(Folder_, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        Name_ = QDir(Folder_).filePath(QUuid::createUuid().toString(QUuid::WithoutBraces) + TextEnding);
        auto claim = std::make_unique<WorkClaim>(Name_);
        if (!claim->Status().IsDone())
            return claim->Status();
        Claim_ = std::move(claim);
    }
    if (content.Text.Files != KeptFiles_) {
        const FileStatus status = WholeFile::Write(FilesName(), FilesOf(content.Text.Files), IfThere::Replace);
        if (!status.IsDone())
            return status;
        KeptFiles_ = content.Text.Files;
    }
    QCborMap map = WordsOf(content.Text);
    map.insert(StationKey, content.Station);
    map.insert(DraftKey, content.Draft);
    map.insert(DigestKey, content.DraftDigest);
    map.insert(AnswersKey, content.Text.Answers);
    return WholeFile::Write(Name_, QCborValue(map).toCbor(), IfThere::Replace);
}

void UnsentText::Forget()
{
    if (!Claim_)
        return;
    QFile::remove(FilesName());
    QFile::remove(Name_);
    Claim_.reset();
    Name_.clear();
    KeptFiles_.clear();
}

bool UnsentText::Read(Content& content)
{
    const QCborMap map = ValueIn(Name_).toMap();
    if (!map.contains(BodyKey))
        return false;
    content.Station = map.value(StationKey).toString();
    content.Draft = static_cast<qint32>(map.value(DraftKey).toInteger());
    content.DraftDigest = map.value(DigestKey).toByteArray();
    Composition& text = content.Text;
    text.Type = static_cast<enMsgType>(map.value(TypeKey).toInteger(emtEmail));
    text.To = map.value(ToKey).toString();
    text.CC = map.value(CCKey).toString();
    text.BCC = map.value(BCCKey).toString();
    text.Subject = map.value(SubjectKey).toString();
    text.Body = map.value(BodyKey).toString();
    text.IsUrgent = map.value(UrgentKey).toBool();
    text.InReplyTo = map.value(InReplyToKey).toString();
    text.References = map.value(ReferencesKey).toString();
    text.Answers = static_cast<qint32>(map.value(AnswersKey).toInteger());
    text.Files = FilesIn(ValueIn(FilesName()).toArray());
    KeptFiles_ = text.Files;
    return true;
}

std::vector<UnsentText::Found> UnsentText::Abandoned(const QString& folder, const QString& station)
{
    std::vector<Found> found;
    const QDir dir(folder);
    for (const QString& name : dir.entryList({u'*' + TextEnding}, QDir::Files, QDir::Time | QDir::Reversed)) {
        Found each{UnsentText(folder), {}};
        each.File.Name_ = dir.filePath(name);
        each.File.Claim_ = WorkClaim::TakeOver(each.File.Name_);
        // A living desk has it, or it is of another station: letting go of the claim leaves it abandoned as before.
        if (each.File.Claim_ && each.File.Read(each.Kept) && each.Kept.Station == station)
            found.push_back(std::move(each));
    }
    return found;
}

QByteArray UnsentText::DigestOf(const Composition& composition)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(QCborValue(WordsOf(composition)).toCbor());
    hash.addData(FilesOf(composition.Files));
    return hash.result();
}
