// SPDX-License-Identifier: Apache-2.0
#include "AttachmentKinds.h"

#include <QHash>
#include <QSet>

bool AttachmentKinds::IsPicture(const QString& contentType)
{
    static const QSet<QString> types = {QStringLiteral("image/png"),  QStringLiteral("image/jpeg"),
                                        QStringLiteral("image/jpg"),  QStringLiteral("image/pjpeg"),
                                        QStringLiteral("image/gif"),  QStringLiteral("image/bmp"),
                                        QStringLiteral("image/webp"), QStringLiteral("image/x-ms-bmp")};
    return types.contains(contentType.toLower());
}

QString AttachmentKinds::SoundEnding(const QString& contentType)
{
    static const QHash<QString, QString> endings = {{QStringLiteral("audio/mpeg"), QStringLiteral("mp3")},
                                                    {QStringLiteral("audio/mp3"), QStringLiteral("mp3")},
                                                    {QStringLiteral("audio/wav"), QStringLiteral("wav")},
                                                    {QStringLiteral("audio/x-wav"), QStringLiteral("wav")},
                                                    {QStringLiteral("audio/vnd.wave"), QStringLiteral("wav")},
                                                    {QStringLiteral("audio/ogg"), QStringLiteral("ogg")},
                                                    {QStringLiteral("audio/opus"), QStringLiteral("opus")},
                                                    {QStringLiteral("audio/flac"), QStringLiteral("flac")},
                                                    {QStringLiteral("audio/x-flac"), QStringLiteral("flac")},
                                                    {QStringLiteral("audio/mp4"), QStringLiteral("m4a")},
                                                    {QStringLiteral("audio/x-m4a"), QStringLiteral("m4a")},
                                                    {QStringLiteral("audio/aac"), QStringLiteral("aac")},
                                                    {QStringLiteral("audio/amr"), QStringLiteral("amr")}};
    return endings.value(contentType.toLower());
}
