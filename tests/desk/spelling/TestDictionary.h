// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArrayList>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

/// Dictionaries of a test's own: some words each.
namespace TestDictionary
{
inline void WriteFile(const QString& path, const QByteArray& octets)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(octets), octets.size());
}

/// words: in that encoding; "/S" behind one lets it take an s.
inline void Write(const QString& folder, const QString& language, const QByteArrayList& words,
                  const QByteArray& encoding = "UTF-8")
{
    WriteFile(folder + u'/' + language + QStringLiteral(".aff"),
              "SET " + encoding + "\nTRY esianrtolcdugmphbyfvkwz'\nSFX S Y 1\nSFX S 0 s .\n");
    WriteFile(folder + u'/' + language + QStringLiteral(".dic"),
              QByteArray::number(words.size()) + '\n' + words.join('\n') + '\n');
}
} // namespace TestDictionary
