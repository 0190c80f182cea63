// SPDX-License-Identifier: Apache-2.0

// The templates that come with the programs, and the guide to their tags.

#include "core/messages/TemplateMails.h"
#include "platform/html/SafeDocument.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace
{
QString TextOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return QString::fromUtf8(file.readAll());
}

/// Of messages and lists of them; those of prizes are filled by the programs.
QSet<QString> TagsIn(const QString& text)
{
    static const QRegularExpression tag(QStringLiteral("</?ZRT_MESSAGES?_[A-Za-z]*>"));
    QSet<QString> tags;
    for (auto it = tag.globalMatch(text); it.hasNext();)
        tags.insert(it.next().captured());
    return tags;
}

QSet<QString> AllTags()
{
    QSet<QString> tags{QStringLiteral("<ZRT_MESSAGE_PERSONALSECTION>"),
                       QStringLiteral("</ZRT_MESSAGE_PERSONALSECTION>"), QStringLiteral("<ZRT_MESSAGES_COUNT>"),
                       QStringLiteral("<ZRT_MESSAGES_REPEAT>"), QStringLiteral("</ZRT_MESSAGES_REPEAT>")};
    for (const QString& name : TagNames())
        tags.insert(Tag(name));
    return tags;
}

QStringList ShippedTemplates()
{
    const QDir folder(QCoreApplication::applicationDirPath() + QStringLiteral("/HTMLDocs"));
    QStringList paths;
    for (const QString& name : folder.entryList({QStringLiteral("Message*.htm")}, QDir::Files, QDir::Name))
        paths.append(folder.filePath(name));
    return paths;
}

cMessages Letters()
{
    cMessages messages;
    messages.Add(MakeMessage({.From = QStringLiteral("Ann & Co <ann@example.com>"),
                              .Subject = QStringLiteral("First <letter>"),
                              .Text = QStringLiteral("Line one\nLine two\nLine three")}));
    messages.Add(MakeMessage(
        {.Subject = QStringLiteral("Second letter"), .HTML = QStringLiteral("<p>Part <b>one</b></p><p>Part two</p>")}));
    messages.Message(2)->SetPersonalToContact(7);
    return messages;
}
} // namespace

TEST(ShippedTemplatesTest, TheGuideNamesEveryTagAndNoOther)
{
    EXPECT_EQ(TagsIn(TextOf(QStringLiteral(TOLVA_TEST_DATA "/../../docs/templates.md"))), AllTags());
}

TEST(ShippedTemplatesTest, EveryTagOfTheGuideIsFilled)
{
    // The two of a section stay for the browser to ignore; a section of nobody goes.
    QString block;
    for (const QString& name : TagNames())
        block += Tag(name) + u'|';
    block += QStringLiteral("<ZRT_MESSAGE_PERSONALSECTION>x</ZRT_MESSAGE_PERSONALSECTION><ZRT_MESSAGES_COUNT>");
    cMessages messages;
    messages.Add(MakeMessage({}));
    const QString page = messages.ProcessHTMLTags(QStringLiteral("<ZRT_MESSAGES_REPEAT>") + block +
                                                  QStringLiteral("</ZRT_MESSAGES_REPEAT>"));
    EXPECT_EQ(TagsIn(page), QSet<QString>());
    EXPECT_EQ(page.count(u'|'), TagNames().size());
    EXPECT_TRUE(page.endsWith(QStringLiteral("|1")));
}

TEST(ShippedTemplatesTest, TheyHoldNoTagThatIsNotFilled)
{
    ASSERT_EQ(ShippedTemplates().size(), 5);
    for (const QString& path : ShippedTemplates()) {
        const QString text = TextOf(path);
        EXPECT_FALSE(TagsIn(text).isEmpty()) << qPrintable(path);
        EXPECT_TRUE(AllTags().contains(TagsIn(text))) << qPrintable(path);
        EXPECT_EQ(text.count(QStringLiteral("ZRT_")),
                  text.count(QRegularExpression(QStringLiteral("</?ZRT_MESSAGES?_[A-Z]+>"))))
            << qPrintable(path);
    }
}

TEST(ShippedTemplatesTest, EachShowsEveryLetterAndNothingOfItsTags)
{
    for (const QString& path : ShippedTemplates()) {
        const QString page = Letters().ProcessHTMLTags(TextOf(path), mphPrintMessagePerPage);
        const SafeDocument document = MakeDocumentSafe(page);
        EXPECT_TRUE(TagsIn(page).isEmpty() || page.contains(QStringLiteral("PERSONALSECTION"))) << qPrintable(path);
        EXPECT_FALSE(document.Html.contains(QStringLiteral("ZRT_"), Qt::CaseInsensitive)) << qPrintable(path);
        EXPECT_EQ(document.ActiveContent + document.RemoteContent, 0) << qPrintable(path);
        EXPECT_FALSE(document.IsTextOnly) << qPrintable(path);
        for (const char* words : {"First &lt;letter&gt;", "Second letter", "Line one", "Line two", "Part ", "Part two"})
            EXPECT_TRUE(document.Html.contains(QLatin1String(words))) << qPrintable(path) << words;
    }
}

TEST(ShippedTemplatesTest, TheirLookComesThroughTheFilterWhole)
{
    static const QRegularExpression sheet(QStringLiteral("<style>(.*)</style>"),
                                          QRegularExpression::DotMatchesEverythingOption);
    for (const QString& path : ShippedTemplates()) {
        const QString text = TextOf(path);
        const QString filtered = MakeDocumentSafe(text).Html;
        EXPECT_EQ(sheet.match(filtered).captured(1).count(u':'), sheet.match(text).captured(1).count(u':'))
            << qPrintable(path);
        EXPECT_GT(sheet.match(text).captured(1).count(u':'), 5) << qPrintable(path);
    }
}
