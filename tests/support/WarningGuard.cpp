// SPDX-License-Identifier: Apache-2.0
#include "support/WarningGuard.h"

#include <QMutex>
#include <QMutexLocker>

#include <cstdio>
#include <glib.h>

namespace
{
QMutex mutex;
QStringList warnings;
QStringList expected;
QStringList ignored;

void Take(const QString& text)
{
    const QMutexLocker lock(&mutex);
    for (const QString& beginning : std::as_const(ignored)) {
        if (text.startsWith(beginning))
            return;
    }
    for (qsizetype i = 0; i < expected.size(); ++i) {
        if (text.contains(expected.at(i))) {
            expected.removeAt(i);
            return;
        }
    }
    warnings.append(text);
}

void HandleQtMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
    if (type != QtDebugMsg && type != QtInfoMsg)
        Take(text);
}

GLogWriterOutput HandleGlibMessage(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer)
{
    if ((level & (G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_ERROR)) != 0) {
        for (gsize i = 0; i < count; ++i) {
            if (qstrcmp(fields[i].key, "MESSAGE") == 0)
                Take(QString::fromUtf8(static_cast<const char*>(fields[i].value), fields[i].length));
        }
    }
    return g_log_writer_standard_streams(level, fields, count, nullptr);
}
} // namespace

void WarningGuard::Install()
{
    qInstallMessageHandler(HandleQtMessage);
    g_log_set_writer_func(HandleGlibMessage, nullptr, nullptr);
    testing::UnitTest::GetInstance()->listeners().Append(new WarningGuard);
}

void WarningGuard::Expect(const QString& text)
{
    const QMutexLocker lock(&mutex);
    expected.append(text);
}

void WarningGuard::Ignore(const QString& beginning)
{
    const QMutexLocker lock(&mutex);
    ignored.append(beginning);
}

void WarningGuard::OnTestStart(const testing::TestInfo&)
{
    const QMutexLocker lock(&mutex);
    warnings.clear();
    expected.clear();
}

void WarningGuard::OnTestEnd(const testing::TestInfo&)
{
    const QMutexLocker lock(&mutex);
    for (const QString& text : std::as_const(warnings))
        ADD_FAILURE() << "unexpected warning: " << qPrintable(text);
    for (const QString& text : std::as_const(expected))
        ADD_FAILURE() << "the expected warning did not come: " << qPrintable(text);
}
