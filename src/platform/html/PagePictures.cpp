// SPDX-License-Identifier: Apache-2.0
#include "platform/html/PageElements.h"
#include "platform/html/PageWriter.h"
#include "platform/html/SafeLink.h"
#include "platform/html/StartTag.h"

#include <QSet>
#include <QUrl>

#include <gumbo.h>

using namespace PageElements;

namespace
{
constexpr qsizetype LargestEmbedded = qsizetype{512} * 1024;
constexpr qsizetype AllEmbedded = qsizetype{8} * 1024 * 1024;
} // namespace

/// The name of the picture in Html; empty for one that is not shown.
QString PageWriter::EmbeddedPicture(const QString& source)
{
    const qsizetype comma = source.indexOf(u',');
    const QString head = source.left(comma).mid(5).toLower().remove(u' ');
    static const QSet<QString> heads{QStringLiteral("image/png;base64"), QStringLiteral("image/jpeg;base64"),
                                     QStringLiteral("image/jpg;base64"), QStringLiteral("image/gif;base64")};
    if (comma < 0 || !heads.contains(head) || source.size() > LargestEmbedded * 2)
        return {};
    const QByteArray octets =
        QByteArray::fromBase64(QUrl::fromPercentEncoding(source.mid(comma + 1).toUtf8()).toLatin1());
    EmbeddedOctets_ += octets.size();
    if (octets.isEmpty() || octets.size() > LargestEmbedded || EmbeddedOctets_ > AllEmbedded)
        return {};
    Page_->EmbeddedPictures.append(octets);
    return QStringLiteral("embedded:%1").arg(Page_->EmbeddedPictures.size() - 1);
}

void PageWriter::WriteImage(const GumboInternalNode* node)
{
    if (Stack_.last().IsTable || Stack_.last().IsRow)
        return;
    const QString source = Attribute(node, "src").trimmed();
    const PageStyle style = ReadStyle(Attribute(node, "style"));
    Page_->RemoteContent += style.HasRemoteContent ? 1 : 0;
    Page_->ActiveContent += style.HasActiveContent ? 1 : 0;
    if (style.IsHidden)
        return;
    QString shown;
    const QString id = ContentIDOf(source);
    if (!id.isEmpty() && (!Options_.HasPicture || Options_.HasPicture(id)))
        shown = QStringLiteral("cid:") + QString::fromLatin1(QUrl::toPercentEncoding(id));
    else if (source.startsWith(QLatin1String("data:"), Qt::CaseInsensitive))
        shown = EmbeddedPicture(source);
    if (shown.isEmpty())
        return WriteMissingImage(node, source);

    StartTag tag;
    tag.SetName(QStringLiteral("img"));
    tag.Add("src", shown);
    const QString alternative = Attribute(node, "alt").simplified().left(1000);
    if (!alternative.isEmpty())
        tag.Add("title", alternative);
    for (const char* side : {"width", "height"}) {
        const QString value = ReadWidth(Attribute(node, side));
        if (!value.isEmpty() && !value.endsWith(u'%'))
            tag.Add(side, value);
    }
    Page_->Html += tag.Text();
}

/// The text that stands for a picture, or a small mark, with what the picture was as the tool tip.
void PageWriter::WriteMissingImage(const GumboInternalNode* node, const QString& source)
{
    const QString compact = QString(source).remove(u'\t').remove(u'\n').remove(u'\r').toLower();
    const bool isHere = compact.startsWith(QLatin1String("cid:")) || compact.startsWith(QLatin1String("data:"));
    if (compact.startsWith(QLatin1String("javascript:")) || compact.startsWith(QLatin1String("vbscript:")))
        ++Page_->ActiveContent;
    else if (isHere || source.isEmpty())
        Page_->MissingPictures += isHere ? 1 : 0;
    else
        ++Page_->RemoteContent;

    const QString alternative = Attribute(node, "alt").simplified().left(1000);
    const bool isDecoration =
        gumbo_get_attribute(&node->v.element.attributes, "alt") != nullptr && alternative.isEmpty();
    const auto isTiny = [node](const char* side) { return WholeNumber(Attribute(node, side), 0, 100000, 100) <= 4; };
    if (isDecoration || isTiny("width") || isTiny("height") || source.isEmpty())
        return;
    StartTag tag;
    tag.SetName(QStringLiteral("span"));
    const QString host = QUrl(source).host();
    tag.Add("title", host.isEmpty() ? QStringLiteral("Picture not shown")
                                    : QStringLiteral("Picture at %1, not shown").arg(host.left(200)));
    Page_->Html += tag.Text() + EscapedText(alternative.isEmpty() ? QStringLiteral("[picture]") : alternative) +
                   QStringLiteral("</span>");
}
