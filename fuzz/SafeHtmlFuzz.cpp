// SPDX-License-Identifier: Apache-2.0

// Any page is made safe without a fault, and what was made safe holds nothing to withhold any more.

#include "platform/html/PlainText.h"
#include "platform/html/SafeHtml.h"

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
    const QString html = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    SafeHtmlOptions options;
    options.MaxCharacters = static_cast<qsizetype>(size % 200);
    MakeSafe(html, options);
    options.KeepsColours = false;
    MakeSafe(html, options);

    const SafePage once = MakeSafe(html);
    Require(!once.Html.contains(QChar(0)));
    const SafePage twice = MakeSafe(once.Html);
    Require(twice.ActiveContent == 0 && twice.UnsafeLinks == 0);
    // "embedded:" addresses have a meaning only beside their pictures.
    Require(twice.RemoteContent <= once.EmbeddedPictures.size());

    const SafePage text = MakeSafe(HtmlOfPlainText(html));
    Require(text.ActiveContent == 0 && text.RemoteContent == 0 && text.UnsafeLinks == 0);
    return 0;
}
