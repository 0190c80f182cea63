// SPDX-License-Identifier: Apache-2.0

// Any text, with any value set in it: the value is read back, and setting it again changes nothing.

#include "common/GeneralHelper.h"
#include "common/kvGeneral.h"

#include <QRegularExpression>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString input = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const qsizetype split = input.indexOf(u'\n');
    const QString value = input.first(qMax<qsizetype>(split, 0));
    const QString text = input.sliced(split + 1);
    const QString key = QStringLiteral("Run");
    const QString blank = QStringLiteral(" ");

    const QString stored = GetKeyValue(GeneralHelper::SetKeyValue(QString(), key, value), key, blank);
    const QString changed = GeneralHelper::SetKeyValue(text, key, value);
    if (GetKeyValue(changed, key, blank) != stored || stored.size() != value.size() ||
        GeneralHelper::SetKeyValue(changed, key, value) != changed)
        std::abort();

    const QString lines = GeneralHelper::SetLineKeyValue(text, key, value);
    const QString entry = key + QStringLiteral("=\"") + stored + u'"';
    if (!lines.split(QRegularExpression(QStringLiteral("\r?\n"))).contains(entry) ||
        GetKeyValueCaseInsensitive(entry, key, blank) != stored)
        std::abort();
    GetKeyValue(text, value, blank, false);
    return 0;
}
