// SPDX-License-Identifier: Apache-2.0
#include "PagePrinting.h"

#include "Failure.h"
#include "common/FileHelper.h"
#include "database/cTolvaDatabase.h"
#include "messages/HTMLTags.h"
#include "platform/html/SafeHtml.h"
#include "platform/html/SafeLink.h"

#include <QFile>
#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

namespace
{
constexpr qsizetype LargestTemplate = qsizetype{4} * 1024 * 1024;
constexpr qsizetype LargestPicture = qsizetype{4} * 1024 * 1024;
constexpr qsizetype AllPictures = qsizetype{24} * 1024 * 1024; ///< Of one message.

const QString MessagePrefix = QStringLiteral("Message");
const QString ListPrefix = QStringLiteral("MessageList");
const QString PrizePrefix = QStringLiteral("Prize");
const QString OnAirPrefix = QStringLiteral("OnAir");

QStringList PrefixesOf(PagePrinting::TemplateKind kind)
{
    switch (kind) {
    case PagePrinting::TemplateKind::Prizes:
        return {PrizePrefix};
    case PagePrinting::TemplateKind::OnAir:
        return {OnAirPrefix};
    case PagePrinting::TemplateKind::Messages:
        break;
    }
    return {MessagePrefix, ListPrefix};
}

Failure NoTemplates(const cTolvaDatabase& database, PagePrinting::TemplateKind kind)
{
    if (kind == PagePrinting::TemplateKind::Prizes) {
        return Failure(exitData, QStringLiteral("The station has no page templates for prizes. They belong into %1; "
                                                "their names begin with \"Prize-\".")
                                     .arg(database.HTMLTemplatesLocation()));
    }
    if (kind == PagePrinting::TemplateKind::OnAir) {
        return Failure(exitData, QStringLiteral("The station has no page template for the running order. It belongs "
                                                "into %1; its name begins with \"OnAir-\".")
                                     .arg(database.HTMLTemplatesLocation()));
    }
    return Failure(exitData, QStringLiteral("The station has no page templates. They belong into %1.")
                                 .arg(database.HTMLTemplatesLocation()));
}

/// What a picture on a safe page of a mail is called: of the message, or within the page.
QByteArray PictureOf(const QString& address, const cdo::Message& mail, const SafePage& page)
{
    static const QString embedded = QStringLiteral("embedded:");
    if (address.startsWith(embedded))
        return page.EmbeddedPictures.value(address.sliced(embedded.size()).toInt());
    const QString id = ContentIDOf(address);
    return id.isEmpty() ? QByteArray() : mail.ContentByID(id);
}

/// The safe page with its pictures within itself, so that it stands alone.
QString WithPictures(const SafePage& page, const cdo::Message& mail)
{
    // The page is our own writing: only an image has such an attribute, and no text holds a quote.
    static const QRegularExpression source(QStringLiteral(" src=\"((?:cid|embedded):[^\"]*)\""));
    QString html;
    qsizetype done = 0;
    qsizetype octetsSoFar = 0;
    for (auto it = source.globalMatch(page.Html); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        html += QStringView(page.Html).sliced(done, match.capturedStart() - done);
        done = match.capturedEnd();
        QByteArray octets = PictureOf(match.captured(1), mail, page);
        if (octets.size() > LargestPicture || octetsSoFar + octets.size() > AllPictures)
            octets.clear();
        octetsSoFar += octets.size();
        html += QStringLiteral(" src=\"") + AddressOfPicture(octets) + u'"';
    }
    return html + page.Html.sliced(done);
}

/// Takes what runs, fetches or hides out of the mail's page, so that it cannot reach out of its place on the template
/// either. Colours go as well: a page is black on white.
bool MakeBodySafe(cdo::Message& mail)
{
    const QString html = mail.HTMLBody();
    if (html.isEmpty())
        return false;
    SafeHtmlOptions options;
    options.KeepsColours = false;
    // A list's short bodies are the first of these.
    options.KeepsParagraphs = true;
    options.HasPicture = [&mail](const QString& id) { return !mail.ContentByID(id).isEmpty(); };
    const SafePage page = MakeSafe(html, options);
    // Templates show the line ends of plain text; those of a page's source are none.
    mail.SetHTMLBody(QStringLiteral("<div style=\"white-space: normal\">") + WithPictures(page, mail) +
                     QStringLiteral("</div>"));
    return page.RemoteContent > 0;
}

PagePrinting::PageTemplate Read(const QString& name, const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(exitNoInput, QStringLiteral("The template %1 cannot be read: %2").arg(path, file.errorString()));
    if (file.size() > LargestTemplate)
        throw Failure(exitData, QStringLiteral("%1 is too large for a template.").arg(path));
    const QString text = FileHelper::DecodeText(file.readAll());
    if (text.trimmed().isEmpty())
        throw Failure(exitData, QStringLiteral("The template %1 is empty.").arg(path));
    return {name, PagePrinting::TitleOf(name), text};
}

bool IsPath(const QString& text)
{
    return (text.endsWith(u".htm", Qt::CaseInsensitive) || text.endsWith(u".html", Qt::CaseInsensitive)) &&
           FileHelper::FileExists(text);
}
} // namespace

QStringList PagePrinting::TemplateNames(const cTolvaDatabase& database, TemplateKind kind)
{
    QStringList names;
    for (const QString& prefix : PrefixesOf(kind)) {
        for (const QString& reference : database.GetHTMLTemplateReferences(prefix))
            names.append(prefix + u'-' + reference);
    }
    return names;
}

QString PagePrinting::TitleOf(const QString& name)
{
    for (const QString& prefix : {MessagePrefix, ListPrefix, PrizePrefix, OnAirPrefix}) {
        if (name.startsWith(prefix + u'-', Qt::CaseInsensitive))
            return name.sliced(prefix.size() + 1);
    }
    return name;
}

PagePrinting::PageTemplate PagePrinting::FindTemplate(const cTolvaDatabase& database, const QString& nameOrPath,
                                                      TemplateKind kind)
{
    if (IsPath(nameOrPath))
        return Read(FileHelper::BaseNameOf(nameOrPath), nameOrPath);
    const QStringList names = TemplateNames(database, kind);
    for (const QString& name : names) {
        if (name.compare(nameOrPath, Qt::CaseInsensitive) == 0)
            return Read(name, database.GetHTMLTemplateFileName(QString(), name));
    }
    for (const QString& name : names) {
        if (TitleOf(name).compare(nameOrPath, Qt::CaseInsensitive) == 0)
            return Read(name, database.GetHTMLTemplateFileName(QString(), name));
    }
    if (names.isEmpty())
        throw NoTemplates(database, kind);
    throw Failure(exitData, QStringLiteral("There is no template \"%1\". There are: %2.")
                                .arg(nameOrPath, names.join(QStringLiteral(", "))));
}

bool PagePrinting::PreparedMessages::Add(const cMessagePtr& message)
{
    const cMessagePtr copy = message->Copy();
    copy->SetReference(message->Reference());
    auto mail = std::make_shared<cdo::Message>(message->CDOMessage()->Octets());
    CountWithheld_ += MakeBodySafe(*mail) ? 1 : 0;
    // The mail's header would set these anew.
    copy->SetCDOMessage(mail);
    copy->SetReceived(message->Received());
    copy->SetSent(message->Sent());
    copy->SetPriority(message->Priority());
    return Messages_.Add(copy);
}

SafeDocument PagePrinting::PreparedMessages::Fill(const PageTemplate& pageTemplate, const PageOptions& options)
{
    return MakeDocumentSafe(FilledTemplate(pageTemplate, options));
}

QString PagePrinting::PreparedMessages::FilledTemplate(const PageTemplate& pageTemplate, const PageOptions& options)
{
    qint32 flags = mphTagsInValuesStay;
    flags |= options.UnreadIsBold ? mphUnreadBodyBold : 0;
    flags |= options.PendingIsItalic ? mphSendPendingBodyItalic : 0;
    flags |= options.PageEach ? mphPrintMessagePerPage : 0;
    const bool isList = pageTemplate.Text.contains(QStringLiteral("<ZRT_MESSAGES_"));
    if (Messages_.Count() == 1 && !isList)
        return Messages_.Message(1)->ProcessHTMLTags(pageTemplate.Text, flags);
    return Messages_.ProcessHTMLTags(pageTemplate.Text, flags);
}

QString PagePrinting::WithheldWords(int messages)
{
    if (messages == 0)
        return {};
    return messages == 1
               ? QStringLiteral("Pictures of one message would have been fetched from elsewhere and were left out.")
               : QStringLiteral("Pictures of %1 messages would have been fetched from elsewhere and were left out.")
                     .arg(messages);
}
