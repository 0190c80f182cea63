// SPDX-License-Identifier: Apache-2.0

// Any page goes the whole way to paper and to the pane: parsed, made safe and laid out, and nothing on the way ends the
// program. What takes long is the runner's to find (-timeout).

#include "platform/html/SafeHtml.h"
#include "platform/widgets/PrintedPages.h"

#include <QAbstractTextDocumentLayout>
#include <QGuiApplication>
#include <QTextDocument>

#include <cstdlib>

namespace
{
void Require(bool condition)
{
    if (!condition)
        std::abort();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    static int count = 1;
    static char name[] = "pageFuzz";
    static char* arguments[] = {name, nullptr};
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static const QGuiApplication application(count, arguments);

    const QString html = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const PrintedPages printed(MakeDocumentSafe(html), PaperSetup());
    Require(printed.PageCount() >= 1 && !printed.HasPlainText());

    QTextDocument pane;
    pane.setHtml(MakeSafe(html).Html);
    pane.setTextWidth(500);
    // A number of no use where a picture is missing: the pane's own drawer, which measures pictures, is not here.
    static_cast<void>(pane.documentLayout()->documentSize());
    return 0;
}
