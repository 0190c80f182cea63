// SPDX-License-Identifier: Apache-2.0
#include "answering/TextTemplate.h"

#include "common/FileHelper.h"

#include <QFile>
#include <QRegularExpression>

namespace
{
constexpr qint64 LargestTemplate = 256LL << 10;
} // namespace

std::optional<QString> TextTemplate::Read(const QString& path, QString& problem)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        problem = QStringLiteral("The template %1 cannot be read: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    if (file.size() > LargestTemplate) {
        problem = QStringLiteral("%1 is too large for a template.").arg(path);
        return std::nullopt;
    }
    QString text = FileHelper::DecodeText(file.readAll());
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return text;
}

QString TextTemplate::Filled(const QString& text, const QHash<QString, QString>& values)
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

bool TextTemplate::Holds(const QString& text, const QString& name)
{
    return text.contains(QStringLiteral("<ZRT_%1>").arg(name));
}
