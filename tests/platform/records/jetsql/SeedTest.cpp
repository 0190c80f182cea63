// SPDX-License-Identifier: Apache-2.0
#include "platform/records/Error.h"
#include "platform/records/jetsql/LikePattern.h"
#include "platform/records/jetsql/Parser.h"
#include "platform/records/jetsql/TreePrinter.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using namespace dao::jetsql;

namespace
{
/// What is read prints to a text that means the same.
template <typename Parse>
void ExpectReadOrRefused(const QString& text, Parse parse)
{
    QString printed;
    try {
        printed = ToText(parse(text));
    } catch (const dao::Error& error) {
        EXPECT_EQ(error.Number(), 3075);
        return;
    }
    EXPECT_EQ(ToText(parse(printed)).toStdString(), printed.toStdString());
}
} // namespace

/// Texts that once made trouble, and the seeds of the fuzz target: none may do more than be refused.
TEST(JetSqlSeeds, AreReadOrRefused)
{
    const QDir folder(QStringLiteral(TOLVA_TEST_DATA "/jetsql"));
    const QStringList names = folder.entryList(QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray octets = file.readAll();
        const QString text = QString::fromUtf8(octets);
        ExpectReadOrRefused(text, ParseStatement);
        ExpectReadOrRefused(text, ParseCondition);
        const LikePattern pattern(text);
        EXPECT_EQ(pattern.Matches(text), pattern.MatchesUtf8(text.toUtf8().toStdString()));
    }
}
