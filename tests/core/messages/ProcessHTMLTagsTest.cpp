// SPDX-License-Identifier: Apache-2.0
#include "core/messages/TemplateFilling.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <functional>

namespace
{
constexpr qint32 Bold = mphUnreadBodyBold;
constexpr qint32 Italic = mphSendPendingBodyItalic;

qint64 Milliseconds(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return timer.elapsed();
}
} // namespace

class ProcessHTMLTagsTest : public TemplateFilling
{
};

TEST_F(ProcessHTMLTagsTest, NumbersAreDecimalText)
{
    const cMessagePtr message = MakeMessage({});
    message->SetReference(-12345);
    message->SetPersonalToContact(77);
    message->SetSourceIndex(3);
    EXPECT_EQ(message->ProcessHTMLTags(Tag("REFERENCE") + u' ' + Tag("PERSONALREFERENCE") + u' ' + Tag("SOURCEINDEX")),
              QStringLiteral("-12345 77 3"));
}

TEST_F(ProcessHTMLTagsTest, DatesAreGeneralDatesAndNothingWhenThereIsNone)
{
    const cMessagePtr message = MakeMessage({});
    const QString strTemplate = Tag("SENT") + u'|' + Tag("RECEIVED") + u'|' + Tag("SENDAFTER");
    EXPECT_EQ(message->ProcessHTMLTags(strTemplate), QStringLiteral("||"));
    message->SetSent(Date(46347.25));
    message->SetReceived(Date(46347.5));
    message->SetSendAfter(Date(46348.75));
    EXPECT_EQ(message->ProcessHTMLTags(strTemplate),
              message->SentString() + u'|' + message->ReceivedString() + u'|' + message->SendAfterString());
    EXPECT_FALSE(message->SentString().isEmpty());
    EXPECT_NE(message->SentString(), message->ReceivedString());
}

TEST_F(ProcessHTMLTagsTest, EveryTagIsFilledWhereverItStandsAndAsOftenAsItStands)
{
    EXPECT_EQ(Filled({}, QStringLiteral("<td title=\"%1\">%1</td>%1").arg(Tag("SUBJECT"))),
              QStringLiteral("<td title=\"A request\">A request</td>A request"));
}

TEST_F(ProcessHTMLTagsTest, NoTagOfTheTableSurvivesAMessageWithoutAMail)
{
    const cMessage message;
    QString strTemplate;
    for (const char* name :
         {"SUBJECT", "SUBJECTSHORT", "FROM", "FROMNAME", "FROMEMAIL", "TO", "SENT", "RECEIVED", "SENDAFTER", "BODY",
          "HTMLBODY", "TEXTBODY", "BODYSHORT", "TEXTBODYSHORT", "HTMLBODYSHORT"})
        strTemplate += Tag(name);
    EXPECT_EQ(message.ProcessHTMLTags(strTemplate), QString());
    EXPECT_EQ(message.ProcessHTMLTags(Tag("REFERENCE") + Tag("PERSONALREFERENCE") + Tag("SOURCEINDEX")),
              QStringLiteral("000"));
    EXPECT_EQ(message.ProcessHTMLTags(QString()), QString());
}

TEST_F(ProcessHTMLTagsTest, UnknownBrokenAndLowerCaseTagsStay)
{
    const QString strTemplate = QStringLiteral(
        "<ZRT_MESSAGE_NOSUCH> <ZRT_MESSAGE_SUBJECT <zrt_message_subject> ZRT_MESSAGE_SUBJECT> <ZRT_MESSAGES_COUNT>");
    EXPECT_EQ(Filled({}, strTemplate), strTemplate);
}

TEST_F(ProcessHTMLTagsTest, HeaderTextsAreEncoded)
{
    const Mail mail{.From = QStringLiteral("\"A & B\" <ab@example.com>"),
                    .To = QStringLiteral("\"C > D\" <cd@example.com>"),
                    .Subject = QStringLiteral("<script>\"x\" & y</script>")};
    EXPECT_EQ(Filled(mail, Tag("SUBJECT")), QStringLiteral("&lt;script&gt;&quot;x&quot; &amp; y&lt;/script&gt;"));
    EXPECT_EQ(Filled(mail, Tag("SUBJECTSHORT")), Filled(mail, Tag("SUBJECT")));
    EXPECT_EQ(Filled(mail, Tag("FROM")), QStringLiteral("&quot;A &amp; B&quot; &lt;ab@example.com&gt;"));
    EXPECT_EQ(Filled(mail, Tag("FROMNAME")), QStringLiteral("A &amp; B"));
    EXPECT_EQ(Filled(mail, Tag("FROMEMAIL")), QStringLiteral("ab@example.com"));
    EXPECT_EQ(Filled(mail, Tag("TO")), QStringLiteral("&quot;C &gt; D&quot; &lt;cd@example.com&gt;"));
}

TEST_F(ProcessHTMLTagsTest, ASubjectIsShortenedBehindSixtyFiveCharacters)
{
    const QString letters = QStringLiteral("x").repeated(65);
    EXPECT_EQ(Filled({.Subject = letters}, Tag("SUBJECTSHORT")), letters);
    EXPECT_EQ(Filled({.Subject = letters + u'y'}, Tag("SUBJECTSHORT")), letters + QStringLiteral("..."));
    // Sixty-five characters of the subject, whatever their encoding takes.
    EXPECT_EQ(Filled({.Subject = QStringLiteral("<").repeated(66)}, Tag("SUBJECTSHORT")),
              QStringLiteral("&lt;").repeated(65) + QStringLiteral("..."));
}

TEST_F(ProcessHTMLTagsTest, ASubjectIsNotCutWithinACharacter)
{
    const QString letters = QStringLiteral("x").repeated(64);
    EXPECT_EQ(Filled({.Subject = letters + QStringLiteral("\U0001F4FByz")}, Tag("SUBJECTSHORT")),
              letters + QStringLiteral("..."));
}

TEST_F(ProcessHTMLTagsTest, NameAndAddressComeFromTheSender)
{
    const QString both = Tag("FROMNAME") + u'|' + Tag("FROMEMAIL");
    EXPECT_EQ(Filled({.From = QStringLiteral("Ann Lee <ann@example.com>")}, both),
              QStringLiteral("Ann Lee|ann@example.com"));
    EXPECT_EQ(Filled({.From = QStringLiteral("\"Lee, Ann\" <ann@example.com>")}, both),
              QStringLiteral("Lee, Ann|ann@example.com"));
    EXPECT_EQ(Filled({.From = QStringLiteral("<ann@example.com>")}, both),
              QStringLiteral("ann@example.com|ann@example.com"));
    EXPECT_EQ(Filled({.From = QStringLiteral("ann@example.com")}, both), QStringLiteral("ann@example.com|"));
    EXPECT_EQ(Filled({.From = QStringLiteral("07700 900123")}, both), QStringLiteral("07700 900123|"));
    EXPECT_EQ(Filled({.From = QString()}, both), QStringLiteral("|"));
}

TEST_F(ProcessHTMLTagsTest, TheMaskHidesSenderAndReceiverOfEMailsToo)
{
    const QString all = Tag("FROM") + u'|' + Tag("FROMNAME") + u'|' + Tag("FROMEMAIL") + u'|' + Tag("TO");
    const QString shown = QStringLiteral("Ann Lee &lt;ann@example.com&gt;|Ann Lee|ann@example.com|studio@example.com");
    EXPECT_EQ(Filled({}, all), shown);
    Mask("1");
    EXPECT_EQ(Filled({}, all), QStringLiteral("0XXX-XXXXXX|0XXX-XXXXXX||0XXX-XXXXXX"));
    Mask("-1");
    EXPECT_EQ(Filled({}, Tag("FROM")), QStringLiteral("0XXX-XXXXXX"));
    Mask("0");
    EXPECT_EQ(Filled({}, all), shown);
    Mask("yes");
    EXPECT_EQ(Filled({}, all), shown);
}

TEST_F(ProcessHTMLTagsTest, TheSectionGoesFromAMessageThatIsPersonalToNobody)
{
    const QString section = QStringLiteral("a<ZRT_MESSAGE_PERSONALSECTION>b") + Tag("SUBJECT") +
                            QStringLiteral("</ZRT_MESSAGE_PERSONALSECTION>c");
    const cMessagePtr message = MakeMessage({});
    EXPECT_EQ(message->ProcessHTMLTags(section + section), QStringLiteral("acac"));
    message->SetPersonalToContact(5);
    EXPECT_EQ(message->ProcessHTMLTags(section),
              QStringLiteral("a<ZRT_MESSAGE_PERSONALSECTION>bA request</ZRT_MESSAGE_PERSONALSECTION>c"));
    message->SetPersonalToContact(0);
    EXPECT_EQ(message->ProcessHTMLTags(QStringLiteral("a<ZRT_MESSAGE_PERSONALSECTION>b")),
              QStringLiteral("a<ZRT_MESSAGE_PERSONALSECTION>b"));
}

TEST_F(ProcessHTMLTagsTest, AListenerCannotRemoveAPartOfThePage)
{
    EXPECT_EQ(Filled({.Subject = QStringLiteral("<ZRT_MESSAGE_PERSONALSECTION>")},
                     Tag("SUBJECT") + QStringLiteral("a</ZRT_MESSAGE_PERSONALSECTION>b")),
              QStringLiteral("&lt;ZRT_MESSAGE_PERSONALSECTION&gt;a</ZRT_MESSAGE_PERSONALSECTION>b"));
}

TEST_F(ProcessHTMLTagsTest, TheBodyIsTheHTMLBodyOrElseTheText)
{
    const QString all = Tag("BODY") + u'|' + Tag("HTMLBODY") + u'|' + Tag("TEXTBODY");
    EXPECT_EQ(Filled({.Text = QStringLiteral("t"), .HTML = QStringLiteral("<p>h</p>")}, all),
              QStringLiteral("<p>h</p>|<p>h</p>|t"));
    EXPECT_EQ(Filled({.Text = QStringLiteral("t")}, all), QStringLiteral("t||t"));
    EXPECT_EQ(Filled({.HTML = QStringLiteral("<p>h</p>")}, all), QStringLiteral("<p>h</p>|<p>h</p>|"));
    EXPECT_EQ(Filled({}, all), QStringLiteral("||"));
}

TEST_F(ProcessHTMLTagsTest, ATextBodyWritesNoMarkupAndKeepsItsLines)
{
    EXPECT_EQ(Filled({.Text = QStringLiteral("a < b & \"c\"\n</body> <!--")}, Tag("TEXTBODY")),
              QStringLiteral("a &lt; b &amp; \"c\"\n&lt;/body&gt; &lt;!--"));
    EXPECT_EQ(Filled({.Text = QStringLiteral("<b>x</b>")}, Tag("BODY")), QStringLiteral("&lt;b&gt;x&lt;/b&gt;"));
}

TEST_F(ProcessHTMLTagsTest, AnUnreadBodyIsBoldAndAPendingOneItalicOnTheOutside)
{
    const cMessagePtr message = MakeMessage({.Text = QStringLiteral("x")});
    const auto body = [&message](qint32 state, qint32 flags) {
        message->SetFlags(state);
        return message->ProcessHTMLTags(Tag("BODY"), flags);
    };
    EXPECT_EQ(body(0, 0), QStringLiteral("x"));
    EXPECT_EQ(body(0, Bold), QStringLiteral("<b>x</b>"));
    EXPECT_EQ(body(mfRead, Bold), QStringLiteral("x"));
    EXPECT_EQ(body(mfSendPending, Italic), QStringLiteral("<i>x</i>"));
    EXPECT_EQ(body(0, Italic), QStringLiteral("x"));
    EXPECT_EQ(body(mfSendPending, Bold + Italic), QStringLiteral("<i><b>x</b></i>"));
    EXPECT_EQ(body(mfRead + mfSendPending, Bold + Italic), QStringLiteral("<i>x</i>"));
    EXPECT_EQ(body(mfSendPending, 0), QStringLiteral("x"));
}

TEST_F(ProcessHTMLTagsTest, AllBodiesAndPreviewsAreWrapped)
{
    const Mail mail{.Text = QStringLiteral("t"), .HTML = QStringLiteral("<p>h</p>")};
    for (const char* name : {"TEXTBODY", "TEXTBODYSHORT", "BODYSHORT"})
        EXPECT_EQ(Filled(mail, Tag(name), Bold), QStringLiteral("<b>t</b>")) << name;
    for (const char* name : {"BODY", "HTMLBODY"})
        EXPECT_EQ(Filled(mail, Tag(name), Bold), QStringLiteral("<b><p>h</p></b>")) << name;
    EXPECT_EQ(Filled(mail, Tag("HTMLBODYSHORT"), Bold), QStringLiteral("<b>h</b>"));
    EXPECT_EQ(Filled(mail, Tag("SUBJECT"), Bold), QStringLiteral("A request"));
}

TEST_F(ProcessHTMLTagsTest, TheTextPreviewIsTwoLinesTrimmed)
{
    const auto preview = [](const char* text) {
        return Filled({.Text = QString::fromUtf8(text)}, Tag("TEXTBODYSHORT"));
    };
    EXPECT_EQ(preview("one"), QStringLiteral("one"));
    EXPECT_EQ(preview("one\ntwo"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("  one  \r\n two \r\nthree"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("one\rtwo\rthree"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("one\n\nthree"), QStringLiteral("one"));
    EXPECT_EQ(preview("one\n   \nthree"), QStringLiteral("one"));
    EXPECT_EQ(preview("\ntwo"), QString());
    EXPECT_EQ(preview("one\n"), QStringLiteral("one"));
    EXPECT_EQ(preview("<b>&\ntwo"), QStringLiteral("&lt;b&gt;&amp;\ntwo"));
}

TEST_F(ProcessHTMLTagsTest, TheHTMLPreviewIsTheFirstLineOfTwoBlocks)
{
    const auto preview = [](const char* html) {
        return Filled({.HTML = QString::fromUtf8(html)}, Tag("HTMLBODYSHORT"));
    };
    EXPECT_EQ(preview("<p>one</p><p>two</p><p>three</p>"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("<p> one <b>more</b><br>next</p>"), QStringLiteral("one more"));
    EXPECT_EQ(preview("<p></p><p> </p><p>one</p>"), QStringLiteral("one"));
    EXPECT_EQ(preview("<p><br>one</p><p>two</p>"), QStringLiteral("two"));
    EXPECT_EQ(preview("<ul><li>one<li>two</ul><ol><li>three</ol>"), QStringLiteral("one\nthree"));
    EXPECT_EQ(preview("<p><font>one</font></p><p>two</p>"), QStringLiteral("one\none"));
    EXPECT_EQ(preview("<div>one</div><h1>two</h1>"), QString());
    EXPECT_EQ(preview("one"), QString());
    EXPECT_EQ(preview("<p>1 &lt; 2 &amp; \"3\"</p>"), QStringLiteral("1 &lt; 2 &amp; &quot;3&quot;"));
    EXPECT_EQ(preview("<p><style>a</style><script>b</script>one</p>"), QStringLiteral("one"));
    EXPECT_EQ(preview("<html><head><title>t</title></head><body><p>one</body></html>"), QStringLiteral("one"));
    EXPECT_EQ(preview("<template><p>one</template><p>two"), QStringLiteral("two"));
}

TEST_F(ProcessHTMLTagsTest, TheShortBodyIsTheTextPreviewOrElseTheHTMLPreview)
{
    const QString html = QStringLiteral("<p>h</p>");
    EXPECT_EQ(Filled({.Text = QStringLiteral("t"), .HTML = html}, Tag("BODYSHORT")), QStringLiteral("t"));
    EXPECT_EQ(Filled({.HTML = html}, Tag("BODYSHORT")), QStringLiteral("h"));
    EXPECT_EQ(Filled({.Text = QStringLiteral("\nt"), .HTML = html}, Tag("BODYSHORT")), QStringLiteral("h"));
    EXPECT_EQ(Filled({.Text = QStringLiteral("\nt"), .HTML = html}, Tag("BODYSHORT"), Bold),
              QStringLiteral("<b>h</b>"));
    EXPECT_EQ(Filled({.Text = QStringLiteral("\"a\"")}, Tag("BODYSHORT")), QStringLiteral("&quot;a&quot;"));
    EXPECT_EQ(Filled({}, Tag("BODYSHORT"), Bold), QString());
}

TEST_F(ProcessHTMLTagsTest, ATagWithinAValueIsFilledWhenItsTurnComesLater)
{
    const Mail mail{.Subject = QStringLiteral("From <ZRT_MESSAGE_FROMEMAIL> & others"), .Text = QStringLiteral("t")};
    EXPECT_EQ(Filled(mail, Tag("SUBJECT")), QStringLiteral("From ann@example.com &amp; others"));
    EXPECT_EQ(Filled({.Subject = QStringLiteral("<ZRT_MESSAGE_REFERENCE><ZRT_MESSAGE_SUBJECT>")}, Tag("SUBJECT")),
              QStringLiteral("&lt;ZRT_MESSAGE_REFERENCE&gt;&lt;ZRT_MESSAGE_SUBJECT&gt;"));
    EXPECT_EQ(
        Filled({.Text = QStringLiteral("t & u"), .HTML = QStringLiteral("<p><ZRT_MESSAGE_TEXTBODY></p>")}, Tag("BODY")),
        QStringLiteral("<p>t &amp; u</p>"));
    EXPECT_EQ(Filled({.Text = QStringLiteral("<ZRT_MESSAGE_TEXTBODY>")}, Tag("TEXTBODY")),
              QStringLiteral("&lt;ZRT_MESSAGE_TEXTBODY&gt;"));
}

TEST_F(ProcessHTMLTagsTest, TagsWithinAMailCannotFillTheMemory)
{
    const Mail mail{.Subject = QStringLiteral("<ZRT_MESSAGE_BODY>").repeated(500),
                    .Text = QStringLiteral("0123456789").repeated(1000),
                    .HTML = QStringLiteral("<ZRT_MESSAGE_TEXTBODY>").repeated(5000)};
    const QString page = Filled(mail, Tag("SUBJECT") + u'|' + Tag("BODY") + u'|' + Tag("REFERENCE"));
    EXPECT_LT(page.size(), 400'000);
    EXPECT_TRUE(page.startsWith(QStringLiteral("&lt;ZRT_MESSAGE_BODY&gt;")));
    EXPECT_EQ(page.count(QStringLiteral("&lt;ZRT_MESSAGE_TEXTBODY>")), 5000);
    EXPECT_TRUE(page.endsWith(QStringLiteral("|0")));
}

TEST_F(ProcessHTMLTagsTest, TheCountStandsInBothKindsOfPage)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b")});
    EXPECT_EQ(messages.ProcessHTMLTags(QStringLiteral("<ZRT_MESSAGES_COUNT>:<ZRT_MESSAGES_REPEAT>(<ZRT_MESSAGES_COUNT> "
                                                      "<ZRT_MESSAGE_SUBJECT>)</ZRT_MESSAGES_REPEAT>")),
              QStringLiteral("2:(2 a)(2 b)"));
    EXPECT_EQ(messages.ProcessHTMLTags(QStringLiteral("<ZRT_MESSAGES_COUNT> <ZRT_MESSAGE_SUBJECT>.")),
              QStringLiteral("<html><head><title>Message List</title></head><body>2 a.2 b.</body></html>"));
}

TEST_F(ProcessHTMLTagsTest, EveryRepeatBlockIsExpandedInOrder)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
    EXPECT_EQ(messages.ProcessHTMLTags(
                  QStringLiteral("<h1>x</h1><ZRT_MESSAGES_REPEAT><i><ZRT_MESSAGE_SUBJECT></i></ZRT_MESSAGES_REPEAT>-"
                                 "<ZRT_MESSAGES_REPEAT>[<ZRT_MESSAGE_SUBJECT>]</ZRT_MESSAGES_REPEAT>.")),
              QStringLiteral("<h1>x</h1><i>a</i><i>b</i><i>c</i>-[a][b][c]."));
}

TEST_F(ProcessHTMLTagsTest, TagsOfMessagesOutsideARepeatBlockStay)
{
    EXPECT_EQ(MessagesWithSubjects({QStringLiteral("a")})
                  .ProcessHTMLTags(QStringLiteral("<ZRT_MESSAGE_SUBJECT><ZRT_MESSAGES_REPEAT>x</ZRT_MESSAGES_REPEAT>")),
              QStringLiteral("<ZRT_MESSAGE_SUBJECT>x"));
}

TEST_F(ProcessHTMLTagsTest, ABlockWithoutItsEndStays)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b")});
    const QString open = QStringLiteral("x<ZRT_MESSAGES_REPEAT>y<ZRT_MESSAGE_SUBJECT>");
    EXPECT_EQ(messages.ProcessHTMLTags(open), open);
    const QString turned = QStringLiteral("x</ZRT_MESSAGES_REPEAT>y<ZRT_MESSAGES_REPEAT>z");
    EXPECT_EQ(messages.ProcessHTMLTags(turned), turned);
    EXPECT_EQ(messages.ProcessHTMLTags(QStringLiteral("<ZRT_MESSAGES_REPEAT>a</ZRT_MESSAGES_REPEAT>") + open),
              QStringLiteral("aa") + open);
}

TEST_F(ProcessHTMLTagsTest, ANestedBlockIsExpandedInEveryCopyThatIsFoundLater)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("1"), QStringLiteral("2")});
    // The first end belongs to the first beginning; the copies then hold a beginning each, and the second end is taken
    // by the first of them.
    EXPECT_EQ(messages.ProcessHTMLTags(QStringLiteral(
                  "<ZRT_MESSAGES_REPEAT>a<ZRT_MESSAGES_REPEAT>b</ZRT_MESSAGES_REPEAT>c</ZRT_MESSAGES_REPEAT>d")),
              QStringLiteral("aba<ZRT_MESSAGES_REPEAT>bcba<ZRT_MESSAGES_REPEAT>bcd"));
}

TEST_F(ProcessHTMLTagsTest, NestedBlocksOfManyMessagesAreLeftRatherThanFillTheMemory)
{
    cMessages messages;
    const cMessagePtr message = MakeMessage({});
    for (int i = 0; i < 20'000; ++i)
        messages.Add(message);
    const QString page = messages.ProcessHTMLTags(
        QStringLiteral("<ZRT_MESSAGES_REPEAT>a<ZRT_MESSAGES_REPEAT>b</ZRT_MESSAGES_REPEAT>c</ZRT_MESSAGES_REPEAT>d"));
    EXPECT_LT(page.size(), 1'000'000);
    EXPECT_TRUE(page.endsWith(QStringLiteral("c</ZRT_MESSAGES_REPEAT>d")));
}

TEST_F(ProcessHTMLTagsTest, RepeatTagsOfAMailRepeatNothing)
{
    cMessages messages;
    messages.Add(
        MakeMessage({.HTML = QStringLiteral("<ZRT_MESSAGES_REPEAT><ZRT_MESSAGE_HTMLBODY></ZRT_MESSAGES_REPEAT>")}));
    messages.Add(MakeMessage({.HTML = QStringLiteral("<ZRT_MESSAGES_REPEAT>")}));
    messages.Add(MakeMessage({.HTML = QStringLiteral("</ZRT_MESSAGES_REPEAT>")}));
    messages.Add(MakeMessage(
        {.Text = QStringLiteral("REPEAT"), .HTML = QStringLiteral("<ZRT_MESSAGES_<ZRT_MESSAGE_TEXTBODY>>")}));
    const QString page =
        messages.ProcessHTMLTags(QStringLiteral("<ZRT_MESSAGES_REPEAT>[<ZRT_MESSAGE_BODY>]</ZRT_MESSAGES_REPEAT>x"
                                                "<ZRT_MESSAGES_REPEAT>.</ZRT_MESSAGES_REPEAT>"));
    EXPECT_EQ(page.count(u'['), 4);
    EXPECT_TRUE(page.endsWith(QStringLiteral("]x....")));
    EXPECT_FALSE(page.contains(QStringLiteral("ZRT_MESSAGES_REPEAT>")));
}

TEST_F(ProcessHTMLTagsTest, NoMessagesRemoveTheBlocks)
{
    const QString block = QStringLiteral("<ZRT_MESSAGES_REPEAT>x</ZRT_MESSAGES_REPEAT>");
    EXPECT_EQ(cMessages().ProcessHTMLTags(QStringLiteral("a") + block + QStringLiteral("b")), QStringLiteral("ab"));
    EXPECT_EQ(cMessages().ProcessHTMLTags(block + block), QString());
}

TEST_F(ProcessHTMLTagsTest, NoMessagesAndNoBlockGiveAnEmptyPageWithATitle)
{
    const QString empty = QStringLiteral("<html><head><title>Message List</title></head><body></body></html>");
    EXPECT_EQ(cMessages().ProcessHTMLTags(QStringLiteral("<p>x</p>")), empty);
    EXPECT_EQ(cMessages().ProcessHTMLTags(QString()), empty);
    EXPECT_EQ(MessagesWithSubjects({QStringLiteral("a")}).ProcessHTMLTags(QString()), empty);
    EXPECT_EQ(cMessages().ProcessHTMLTags(QString(), mphPrintMessagePerPage),
              QStringLiteral("<html><head><style type=\"text/css\">\n   P.breakhere {page-break-before: always}\n"
                             "</style>\n<title>Message List</title></head><body></body></html>"));
}

TEST_F(ProcessHTMLTagsTest, OnlyTheFirstMessageBringsItsHead)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
    EXPECT_EQ(messages.ProcessHTMLTags(
                  QStringLiteral("<html><head><title>T</title><style>p {}</style></head><body bgcolor=\"white\">"
                                 "<p><ZRT_MESSAGE_SUBJECT></p></body></html>")),
              QStringLiteral("<html><head><title>Message List</title><style>p {}</style></head><body bgcolor=\"white\">"
                             "<p>a</p><p>b</p><p>c</p></body></html>"));
}

TEST_F(ProcessHTMLTagsTest, AMessageAPageHasABreakBeforeEachButTheFirst)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
    EXPECT_EQ(
        messages.ProcessHTMLTags(
            QStringLiteral("<html><head><style>p {}</style></head><body><p><ZRT_MESSAGE_SUBJECT></p>"
                           "</body></html>"),
            mphPrintMessagePerPage),
        QStringLiteral("<html><head><style type=\"text/css\">\n   P.breakhere {page-break-before: always}\n</style>\n"
                       "<style>p {}</style><title>Message List</title></head><body><p>a</p><p class=\"breakhere\"></p>"
                       "<p>b</p><p class=\"breakhere\"></p><p>c</p></body></html>"));
}

TEST_F(ProcessHTMLTagsTest, ABodyThatClosesThePageDoesNotReachTheOtherMessages)
{
    for (const char* body : {"</body></html>", "</td></tr></table>", "<!--", "<script>", "<style>", "<textarea>",
                             "<a href=\"", "<table><tr>", "<plaintext>", "</div></div>"}) {
        cMessages messages;
        messages.Add(MakeMessage({.Subject = QStringLiteral("one"), .HTML = QString::fromLatin1(body)}));
        messages.Add(MakeMessage({.Subject = QStringLiteral("two"), .HTML = QStringLiteral("<p>last")}));
        const QString page = messages.ProcessHTMLTags(
            QStringLiteral("<body><table><tr><td><b><ZRT_MESSAGE_SUBJECT></b></td></tr></table>"
                           "<div><ZRT_MESSAGE_BODY></div>"));
        EXPECT_TRUE(page.contains(QStringLiteral("<td><b>two</b></td>"))) << body << "\n" << qPrintable(page);
        EXPECT_TRUE(page.contains(QStringLiteral("<p>last</p>"))) << body;
    }
}

TEST_F(ProcessHTMLTagsTest, TheFlagsReachTheMessagesOfBothKindsOfPage)
{
    cMessages messages;
    messages.Add(MakeMessage({.Text = QStringLiteral("t")}));
    EXPECT_EQ(
        messages.ProcessHTMLTags(QStringLiteral("<ZRT_MESSAGES_REPEAT><ZRT_MESSAGE_BODY></ZRT_MESSAGES_REPEAT>"), Bold),
        QStringLiteral("<b>t</b>"));
    EXPECT_TRUE(messages.ProcessHTMLTags(Tag("BODY"), Bold).contains(QStringLiteral("<body><b>t</b></body>")));
}

TEST_F(ProcessHTMLTagsTest, APlaceWithoutAMessageIsPassedOver)
{
    cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b")});
    messages.SetMessage(1, nullptr);
    EXPECT_EQ(
        messages.ProcessHTMLTags(QStringLiteral("<ZRT_MESSAGES_REPEAT><ZRT_MESSAGE_SUBJECT></ZRT_MESSAGES_REPEAT>")),
        QStringLiteral("b"));
    EXPECT_TRUE(messages.ProcessHTMLTags(Tag("SUBJECT")).contains(QStringLiteral("<body>b</body>")));
}

TEST_F(ProcessHTMLTagsTest, OddMailFillsEveryTagAndReachesThePage)
{
    const QDir folder(QStringLiteral(TOLVA_TEST_DATA "/mail"));
    cMessages messages;
    for (const QString& name : folder.entryList({QStringLiteral("*.eml")}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const auto message = std::make_shared<cMessage>();
        message->SetCDOMessage(std::make_shared<cdo::Message>(file.readAll()));
        messages.Add(message);
        const QString filled = message->ProcessHTMLTags(Tag("SUBJECT") + Tag("FROMNAME") + Tag("FROMEMAIL") +
                                                        Tag("TEXTBODY") + Tag("BODYSHORT") + Tag("HTMLBODYSHORT"));
        EXPECT_FALSE(filled.contains(QStringLiteral("<"))) << qPrintable(name);
        EXPECT_FALSE(message->CDOMessage()->TextBody().trimmed().isEmpty() &&
                     message->CDOMessage()->HTMLBody().isEmpty() && filled.size() < 5)
            << qPrintable(name);
    }
    ASSERT_GT(messages.Count(), 40);
    const QString list = messages.ProcessHTMLTags(
        QStringLiteral("<ZRT_MESSAGES_REPEAT>\n#<ZRT_MESSAGE_SUBJECTSHORT></ZRT_MESSAGES_REPEAT>"));
    EXPECT_GE(list.count(QStringLiteral("\n#")), messages.Count());
    const QString pages = messages.ProcessHTMLTags(QStringLiteral("<h1><ZRT_MESSAGE_SUBJECT></h1><ZRT_MESSAGE_BODY>"),
                                                   mphPrintMessagePerPage);
    EXPECT_EQ(pages.count(QStringLiteral("<p class=\"breakhere\">")), messages.Count() - 1);
    EXPECT_GE(pages.count(QStringLiteral("<h1>")), messages.Count());
}

TEST_F(ProcessHTMLTagsTest, TenThousandMessagesCostTenTimesAThousand)
{
    const auto make = [](int count) {
        cMessages messages;
        for (int i = 0; i < count; ++i)
            messages.Add(MakeMessage({.Text = QStringLiteral("Text %1").arg(i)}));
        return messages;
    };
    const cMessages few = make(1000);
    const cMessages many = make(10'000);
    for (const char* strTemplate :
         {"<ZRT_MESSAGES_REPEAT><p><ZRT_MESSAGE_SUBJECT> <ZRT_MESSAGE_BODY></ZRT_MESSAGES_REPEAT>",
          "<p><ZRT_MESSAGE_SUBJECT> <ZRT_MESSAGE_BODY>"}) {
        few.ProcessHTMLTags(QLatin1String(strTemplate));
        const qint64 fewTime = Milliseconds([&] { few.ProcessHTMLTags(QLatin1String(strTemplate)); });
        QString page;
        const qint64 manyTime = Milliseconds([&] { page = many.ProcessHTMLTags(QLatin1String(strTemplate)); });
        EXPECT_TRUE(page.contains(QStringLiteral("Text 9999")));
        // The square would be a hundred times as much.
        EXPECT_LT(manyTime, 40 * fewTime + 200) << strTemplate;
    }
}
