// SPDX-License-Identifier: Apache-2.0
#include "platform/widgets/RichTextFormat.h"

#include <gtest/gtest.h>

#include <random>

using RichTextFormat::Piece;

namespace
{
QString PlainOf(const QString& text)
{
    QString plain;
    for (const Piece& piece : RichTextFormat::Read(text))
        plain += piece.Text;
    return plain;
}
QString Plain(const char* text)
{
    return PlainOf(QString::fromUtf8(text));
}
} // namespace

TEST(RichTextFormatTest, WhatDoesNotSaySoIsPlainText)
{
    EXPECT_EQ(RichTextFormat::Read(QStringLiteral("a\\b {c}\r\nd")),
              QList<Piece>{(Piece{QStringLiteral("a\\b {c}\nd"), false, std::nullopt})});
    EXPECT_TRUE(RichTextFormat::Read(QString()).isEmpty());
}

TEST(RichTextFormatTest, CharactersAreReadHoweverTheyAreWritten)
{
    EXPECT_EQ(Plain("{\\rtf1 a\\\\b\\{c\\}\r\nd}"), QStringLiteral("a\\b{c}d"));
    EXPECT_EQ(Plain("{\\rtf1 caf\\'e9 \\'80\\'93}"), QStringLiteral("café €“"));
    EXPECT_EQ(Plain("{\\rtf1 \\u8364?\\u-10179?\\u-8901?x}"), QStringLiteral("€🔻x"));
    EXPECT_EQ(Plain("{\\rtf1\\uc2 \\u233\\'c3\\'a9x}"), QStringLiteral("éx"));
    EXPECT_EQ(Plain("{\\rtf1 a\\par b\\line c\\tab d\\~e}"), QStringLiteral("a\nb\nc\td\u00a0e"));
    EXPECT_EQ(Plain("{\\rtf1 \\ldblquote x\\rdblquote}"), QStringLiteral("“x”"));
}

TEST(RichTextFormatTest, TablesAndHiddenDestinationsAreNoText)
{
    EXPECT_EQ(Plain("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}{\\colortbl ;\\red1\\green2\\blue3;}{\\*\\generator X;}"
                    "{\\info{\\title T}}\\f0\\fs20 text}trailing"),
              QStringLiteral("text"));
}

TEST(RichTextFormatTest, ProtectionAndColourHoldWithinTheirGroup)
{
    const QList<Piece> pieces = RichTextFormat::Read(QStringLiteral(
        "{\\rtf1{\\colortbl ;\\red0\\green0\\blue192;}a{\\protect\\cf1 b}\\protect c\\protect0 d\\cf9 e}"));
    EXPECT_EQ(pieces, (QList<Piece>{{QStringLiteral("a"), false, std::nullopt},
                                    {QStringLiteral("b"), true, 0xC00000},
                                    {QStringLiteral("c"), true, std::nullopt},
                                    {QStringLiteral("de"), false, std::nullopt}}));
}

TEST(RichTextFormatTest, WhatIsWrittenIsReadAgain)
{
    const QList<Piece> pieces = {{QStringLiteral("a{\\}\t\n"), false, std::nullopt},
                                 {QStringLiteral("\"Zoë 📻 שלום\" <z@b.org>"), true, 0xC00000},
                                 {QStringLiteral("; "), false, 0x0000FF},
                                 {QStringLiteral("e\u0301"), true, std::nullopt}};
    const QString written = RichTextFormat::Write(pieces);
    EXPECT_EQ(RichTextFormat::Read(written), pieces);
    for (const QChar character : written)
        EXPECT_LT(character.unicode(), 0x7F);
}

TEST(RichTextFormatTest, DamagedTextsComeToAnEnd)
{
    const QString whole = QStringLiteral(
        "{\\rtf1\\uc1{\\colortbl ;\\red0\\green0\\blue192;}{\\protect\\cf1 b\\u233?\\'e9}\\par {\\*\\x y}}");
    for (qsizetype length = 0; length <= whole.size(); ++length)
        RichTextFormat::Read(whole.left(length));
    EXPECT_EQ(Plain("{\\rtf1 a\\'zzb\\cf-3 c}}}}d"), QStringLiteral("azzbc"));
    // Neither a sign nor a blank makes an octet.
    EXPECT_EQ(Plain("{\\rtf1 a\\'-1\\'+1\\' 1\\'1}"), QStringLiteral("a-1+1 11"));
    EXPECT_EQ(PlainOf(QStringLiteral("{\\rtf1 ") + QString(100000, u'{') + u'x').size(), 1);
}

TEST(RichTextFormatTest, AnyRandomTextIsRead)
{
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    const QString alphabet = QStringLiteral("{}\\\\\\'*;u0129-par protect cf1 colortbl \n\"é");
    for (int round = 0; round < 2000; ++round) {
        QString text = QStringLiteral("{\\rtf1");
        for (auto length = random() % 60; length > 0; --length)
            text += alphabet.at(static_cast<qsizetype>(random() % static_cast<quint64>(alphabet.size())));
        const QList<Piece> pieces = RichTextFormat::Read(text);
        EXPECT_EQ(RichTextFormat::Read(RichTextFormat::Write(pieces)), pieces) << seed << ' ' << text.toStdString();
    }
}
