// SPDX-License-Identifier: Apache-2.0
#include "ParsingCases.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

namespace
{
QString WithoutEscapes(const QString& text)
{
    static const QRegularExpression escape(QStringLiteral("\\\\(n|r|t|s|0|u([0-9A-F]{4}))"));
    QString plain;
    qsizetype copied = 0;
    for (auto matches = escape.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        plain += text.mid(copied, match.capturedStart() - copied);
        const QString code = match.captured(1);
        plain += code == QLatin1String("n")   ? QChar(u'\n')
                 : code == QLatin1String("r") ? QChar(u'\r')
                 : code == QLatin1String("t") ? QChar(u'\t')
                 : code == QLatin1String("s") ? QChar(u' ')
                 : code == QLatin1String("0") ? QChar(u'\0')
                                              : QChar(match.captured(2).toUShort(nullptr, 16));
        copied = match.capturedEnd();
    }
    return plain + text.mid(copied);
}
} // namespace

std::vector<ParsingCase> ParsingCasesOf(const char* name)
{
    QFile file(QStringLiteral(TOLVA_TEST_DATA "/htmldocument/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    static const QRegularExpression line(QStringLiteral("^(?:\\{([^}]+)\\} )?(.*?) => (.*)$"));
    std::vector<ParsingCase> cases;
    QString group;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QString& text = lines.at(i);
        if (text.isEmpty() || text.startsWith(u'#'))
            continue;
        if (text.startsWith(u'[')) {
            group = text;
            continue;
        }
        const QRegularExpressionMatch match = line.match(text);
        EXPECT_TRUE(match.hasMatch()) << name << " line " << i + 1;
        cases.push_back(
            {group, match.captured(1), WithoutEscapes(match.captured(2)), WithoutEscapes(match.captured(3)), i + 1});
    }
    return cases;
}
