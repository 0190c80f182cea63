// SPDX-License-Identifier: Apache-2.0
#include "platform/records/jetsql/LikePattern.h"

#include <QElapsedTimer>
#include <QString>

#include <gtest/gtest.h>

using dao::jetsql::LikePattern;

namespace
{
/// Both forms of text give the same answer.
bool Like(const QString& text, const QString& pattern)
{
    const LikePattern compiled(pattern);
    const QByteArray utf8 = text.toUtf8();
    const bool result = compiled.Matches(text);
    EXPECT_EQ(compiled.MatchesUtf8({utf8.constData(), static_cast<std::size_t>(utf8.size())}), result)
        << utf8.constData() << " LIKE " << pattern.toUtf8().constData();
    return result;
}

bool Like(const char* text, const char* pattern)
{
    return Like(QString::fromUtf8(text), QString::fromUtf8(pattern));
}

struct Row
{
    const char* Text;
    const char* Pattern;
    bool Expected;
};

void Check(std::initializer_list<Row> rows)
{
    for (const Row& row : rows)
        EXPECT_EQ(Like(row.Text, row.Pattern), row.Expected) << '"' << row.Text << "\" LIKE \"" << row.Pattern << '"';
}
} // namespace

TEST(LikePattern, ComparesWithoutWildcards)
{
    Check({{"", "", true},
           {"a", "", false},
           {"", "a", false},
           {"abc", "ABC", true},
           {"abc", "ab", false},
           {"ab", "abc", false},
           {"100%", "100%", true},
           {"a_b", "a_b", true},
           {"axb", "a_b", false}});
}

TEST(LikePattern, StarIsAnyRun)
{
    Check({{"", "*", true},
           {"", "**", true},
           {"abc", "*", true},
           {"abc", "a*", true},
           {"abc", "*c", true},
           {"abc", "*b*", true},
           {"abc", "a*c", true},
           {"abc", "a***c", true},
           {"abc", "*d*", false},
           {"abc", "b*", false},
           {"abc", "*b", false},
           {"aab", "a*ab", true},
           {"ab", "ab*b", false},
           {"mississippi", "m*iss*ip*i", true},
           {"mississippi", "m*iss*ip*s", false},
           {"aXbXc", "*X*X*", true},
           {"aXbc", "*X*X*", false}});
}

TEST(LikePattern, QuestionMarkIsOneCharacter)
{
    Check({{"a", "?", true},
           {"", "?", false},
           {"ab", "?", false},
           {"abc", "a?c", true},
           {"é", "?", true},
           {"😀", "?", true},
           {"a😀c", "a?c", true},
           {"abc", "*?", true},
           {"", "*?", false}});
}

TEST(LikePattern, NumberSignIsOneDigit)
{
    Check({{"7", "#", true},
           {"a", "#", false},
           {"", "#", false},
           {"07700 900123", "##### ######", true},
           {"٣", "#", false},
           {"#", "#", false},
           {"#", "[#]", true},
           {"prize 5 of 9", "*#*#*", true}});
}

TEST(LikePattern, BracketsAreSets)
{
    Check({{"b", "[abc]", true},  {"d", "[abc]", false},  {"B", "[a-c]", true}, {"b", "[A-C]", true},
           {"d", "[!a-c]", true}, {"B", "[!a-c]", false}, {"", "[!a]", false},  {"-", "[-a]", true},
           {"-", "[a-]", true},   {"b", "[a-]", false},   {"5", "[0-9]", true}, {"x", "[a-cx-z]", true},
           {"b", "[c-a]", true},  {"!", "[!]", true},     {"a", "[!]", false},  {"!", "[a!]", true},
           {"é", "[É]", true},    {"É", "[à-ï]", true},   {"σ", "[Σ]", true},   {"😀", "[😀-😂]", true},
           {"😁", "[😀-😂]", true},  {"x", "[😀-😂]", false},  {"ab", "a[]b", true}, {"a]b", "a]b", true}});
}

TEST(LikePattern, WildcardsInBracketsAreThemselves)
{
    Check({{"*", "[*]", true},
           {"a", "[*]", false},
           {"?", "[?]", true},
           {"a", "[?]", false},
           {"[", "[[]", true},
           {"a[b", "*[[]*", true},
           {"[x]", "[[]x]", true}});
}

TEST(LikePattern, ABracketThatIsNeverClosedIsItself)
{
    Check({{"say [hello", "*[hello*", true},
           {"say hello", "*[hello*", false},
           {"[", "[", true},
           {"a[", "*[", true},
           {"[[", "[[", true},
           {"[!", "[!", true},
           {"[urgent] x[y", "*[urgent]*x[y", true},
           {"u x[y", "[urgent]*x[y", true}});
}

TEST(LikePattern, IgnoresCaseInAllOfUnicode)
{
    Check({{"É", "é", true},
           {"CAFÉ NOIR", "*café*", true},
           {"ΣΊΣΥΦΟΣ", "σίσυφος", true},
           {"ς", "Σ", true},
           {"ς", "σ", true},
           {"ß", "ß", true},
           {"ẞ", "ß", true},
           {"ss", "ß", false},
           {"ПРИВЕТ", "*ривет", true},
           {"Ⱥ", "ⱥ", true},
           {"İ", "i", false},
           {"𐐀", "𐐨", true},
           {"é", "e", false}});
}

TEST(LikePattern, LettersBeyondAsciiThatFoldToAsciiMeetTheirRelatives)
{
    // U+212A is the sign of kelvin, U+017F the long s.
    Check({{"\xE2\x84\xAA", "k", true},
           {"300 \xE2\x84\xAA", "*k*", true},
           {"300 K", "*\xE2\x84\xAA*", true},
           {"me\xC5\xBF\xC5\xBF"
            "age",
            "*message*", true},
           {"me\xC5\xBF\xC5\xBF"
            "age message",
            "*message message*", true},
           {"\xC5\xBFt st", "*st*st", true},
           {"\xC5\xBFt", "*st*st", false},
           {"\xE2\x84\xAB", "*k*", false}});
}

TEST(LikePattern, FindsAnAddressBetweenBars)
{
    Check({{"|x@y|someone@example.com|", "*|SOMEONE@example.com|*", true},
           {"|someone@example.com|", "*|someone@example.com|*", true},
           {"|notsomeone@example.com|", "*|someone@example.com|*", false},
           {"|someone@example.com.au|", "*|someone@example.com|*", false},
           {"", "*||*", false},
           {"|a|b|", "*||*", false}});
}

TEST(LikePattern, FindsAtEveryPlaceOfALongText)
{
    const LikePattern pattern(u"*NeedLe*");
    for (int before = 0; before < 70; ++before) {
        for (int behind : {0, 1, 15, 16, 17, 40}) {
            const std::string around(static_cast<std::size_t>(before), 'n');
            const std::string tail(static_cast<std::size_t>(behind), 'e');
            EXPECT_TRUE(pattern.MatchesUtf8(around + "nEEDlE" + tail)) << before << ' ' << behind;
            EXPECT_FALSE(pattern.MatchesUtf8(around + "nEEDl" + tail.substr(0, 0) + "f" + tail)) << before;
        }
    }
}

TEST(LikePattern, PunctuationHasNoCase)
{
    // These differ in the bit that tells capital letters from small ones.
    Check({{"@", "`", false}, {"[", "{", false}, {"\x0C", ",", false}, {"a@b", "*`*", false}, {"a`b", "*@*", false}});
}

TEST(LikePattern, OctetsThatAreNoUtf8MeetOnlyWildcards)
{
    EXPECT_TRUE(LikePattern(u"a?b").MatchesUtf8("a\xFF"
                                                "b"));
    EXPECT_TRUE(LikePattern(u"a*b").MatchesUtf8("a\xC3"
                                                "b"));
    EXPECT_FALSE(LikePattern(u"a\u00FFb")
                     .MatchesUtf8("a\xFF"
                                  "b"));
    EXPECT_TRUE(LikePattern(u"*needle*").MatchesUtf8("\xE2\x84needle\xC5"));
    EXPECT_TRUE(LikePattern(u"*sk*").MatchesUtf8("\xE2\x84\xC5\xBFK\xC5"));
    EXPECT_FALSE(LikePattern(u"?").MatchesUtf8("\xC0\xAF"));
    EXPECT_TRUE(LikePattern(u"??").MatchesUtf8("\xC0\xAF"));
}

TEST(LikePattern, HalfASurrogatePairIsACharacter)
{
    const QString half(QChar(0xD83D));
    EXPECT_TRUE(LikePattern(u"a?").Matches(QStringLiteral("a") + half));
    EXPECT_TRUE(LikePattern(QStringView(half)).Matches(half));
    EXPECT_TRUE(LikePattern(QStringView(half)).MatchesUtf8("\xED\xA0\xBD"));
    EXPECT_FALSE(LikePattern(u"a").Matches(half));
}

TEST(LikePattern, TextsMayHoldNullCharacters)
{
    const QString text = QStringLiteral("ab") + QChar(0) + QStringLiteral("cd");
    EXPECT_TRUE(Like(text, QStringLiteral("*cd")));
    EXPECT_TRUE(Like(text, QStringLiteral("ab?cd")));
    EXPECT_FALSE(Like(text, QStringLiteral("ab")));
    EXPECT_TRUE(Like(text, QStringLiteral("*b") + QChar(0) + QStringLiteral("c*")));
}

TEST(LikePattern, SeveralPatternsMatchWhatAnyOfThemMatches)
{
    const LikePattern pattern(QStringList{QStringLiteral("*|a@b|*"), QStringLiteral("x?")});
    EXPECT_TRUE(pattern.MatchesUtf8("|c@d|A@B|"));
    EXPECT_TRUE(pattern.Matches(u"xy"));
    EXPECT_FALSE(pattern.Matches(u"x"));
    EXPECT_FALSE(LikePattern(QStringList()).Matches(u""));
}

TEST(LikePattern, ManyStarsTakeNoMoreThanTextTimesPattern)
{
    // A matcher that goes back to every star would need more than the age of the universe.
    const QString text(20000, u'a');
    QElapsedTimer timer;
    timer.start();
    EXPECT_FALSE(Like(text, QStringLiteral("*a").repeated(500) + QStringLiteral("*b")));
    EXPECT_FALSE(Like(text, QStringLiteral("*a?").repeated(500) + QStringLiteral("b*")));
    EXPECT_TRUE(Like(text, QStringLiteral("*a").repeated(500)));
    EXPECT_FALSE(Like(text, QStringLiteral("*aaaaaaaaaaaaaaab*")));
    EXPECT_FALSE(Like(QString(2000, u'['), QStringLiteral("[").repeated(20000)));
    EXPECT_LT(timer.elapsed(), 20000);
}
