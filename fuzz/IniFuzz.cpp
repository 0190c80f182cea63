// SPDX-License-Identifier: Apache-2.0

// Any bytes as a profile file: a value that is set is read back, also from the bytes that would be written, and what
// stood there before for another key stays.

#include "common/IniText.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QList<QByteArray> parts = input.split('\0');
    const QString section = QString::fromUtf8(parts.value(1, "Details"));
    const QString key = QString::fromUtf8(parts.value(2, "By"));
    const QString value = QString::fromUtf8(parts.value(3, "DESK1"));
    const QString other = QStringLiteral("other key");

    IniText text(parts.first());
    const auto before = text.Value(section, other);
    if (!text.SetValue(section, key, value))
        return 0;
    const IniText again(text.Bytes());
    QString expected = value;
    expected.replace(QStringLiteral("\r\n"), QStringLiteral(" ")).replace(u'\n', u' ').replace(u'\r', u' ');
    if (text.Value(section, key) != expected || again.Value(section, key) != expected)
        std::abort();
    if (key.compare(other, Qt::CaseInsensitive) != 0 && again.Value(section, other) != before)
        std::abort();
    return 0;
}
