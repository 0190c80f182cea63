// SPDX-License-Identifier: Apache-2.0
#include "messages/search/SearchText.h"

#include "common/FileHelper.h"
#include "messages/search/SearchWords.h"
#include "platform/html/TagScanner.h"
#include "platform/mail/MessageIdentities.h"
#include "platform/mail/MessageReader.h"

#include <QRegularExpression>

namespace
{
/// Nobody finds a message by what stands behind a few hundred pages.
constexpr qsizetype LongestBody = 4'000'000;
constexpr int MostParts = 1000;
constexpr int MostFiles = 100;
constexpr int MostIdentities = 50;

std::string_view View(const QByteArray& octets)
{
    return {octets.constData(), static_cast<std::size_t>(octets.size())};
}

/// The bare addresses of a header.
QStringList AddressesIn(const QString& header)
{
    static const QRegularExpression address(QStringLiteral("[^\\s<>,;\"()]+@[^\\s<>,;\"()]+"));
    QStringList addresses;
    for (auto it = address.globalMatch(header); it.hasNext() && addresses.size() < MostFiles;)
        addresses.append(it.next().captured());
    return addresses;
}

void AddPeople(const QString& header, WordSet& words)
{
    SearchWords::Add(header, words);
    for (const QString& address : AddressesIn(header))
        words.Add(View(SearchWords::AddressTerm(address)));
}

/// Of the first address of a header, or of its number.
QByteArray PersonTerm(const QString& header)
{
    const QStringList addresses = AddressesIn(header);
    return addresses.isEmpty() ? SearchWords::NumberTerm(header) : SearchWords::AddressTerm(addresses.first());
}

QList<QByteArray> MailTerms(const cdo::MessageReader& reader)
{
    QList<QByteArray> terms;
    for (const char* name : {"Message-ID", "In-Reply-To", "References"}) {
        for (const QString& identity : cdo::MessageIdentities(reader.Header(name)).mid(0, MostIdentities)) {
            const QByteArray term = SearchWords::IdentityTerm(identity);
            if (!terms.contains(term))
                terms.append(term);
        }
    }
    return terms;
}

void AddFile(const cdo::Message& mail, int index, const cdo::Attachment& file, WordSet& words)
{
    SearchWords::Add(file.FileName, words);
    if (!file.ContentType.startsWith(u"text/") || file.Size > LargestSearchedFile)
        return;
    const QString text = FileHelper::DecodeText(mail.AttachmentContent(index));
    SearchWords::Add(file.ContentType == u"text/html" ? TagScanner::ShownText(text) : text, words);
}

void AddFiles(const cdo::Message& mail, cdo::MessageReader& reader, const QString& html, SearchText& text)
{
    const QList<cdo::Attachment> files = reader.Files(html);
    for (int i = 0; i < files.size(); ++i) {
        text.HasFiles = text.HasFiles || !files.at(i).IsInline;
        if (i < MostFiles && !reader.HasMoreParts())
            AddFile(mail, i, files.at(i), text.Body);
    }
}
} // namespace

SearchText ReadSearchText(const QByteArray& octets)
{
    const cdo::Message mail(octets);
    cdo::MessageReader reader(mail, MostParts);
    SearchText text;
    AddPeople(reader.Header("From"), text.Sender);
    AddPeople(reader.Header("Sender"), text.Sender);
    AddPeople(reader.Header("Reply-To"), text.Sender);
    for (const char* name : {"To", "Cc", "Bcc"})
        AddPeople(reader.Header(name), text.Recipients);
    const QString subject = reader.Header("Subject");
    SearchWords::Add(subject, text.Subject);
    if (!subject.trimmed().isEmpty())
        text.Subject.Add(View(SearchWords::SubjectTerm(subject)));
    for (const QByteArray& term : MailTerms(reader))
        text.Body.Add(View(term));
    bool isWhole = false;
    SearchWords::Add(reader.TextBeginning(LongestBody, &isWhole), text.Body);
    const QString html = reader.HtmlBeginning(LongestBody, &isWhole);
    SearchWords::Add(TagScanner::ShownText(html), text.Body);
    AddFiles(mail, reader, html, text);
    return text;
}

Kinship KinshipOf(const QByteArray& octets)
{
    const cdo::Message mail(octets);
    const cdo::MessageReader reader(mail, MostParts);
    Kinship kinship;
    kinship.Sender = PersonTerm(reader.Header("From"));
    kinship.Recipient = PersonTerm(reader.Header("To"));
    const QString subject = reader.Header("Subject");
    if (!subject.trimmed().isEmpty())
        kinship.Subject = SearchWords::SubjectTerm(subject);
    kinship.Mails = MailTerms(reader);
    return kinship;
}
