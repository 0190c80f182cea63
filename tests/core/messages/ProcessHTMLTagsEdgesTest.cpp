// SPDX-License-Identifier: Apache-2.0

// The order in which tags are filled, what surrounds them, and what large messages cost.

#include "core/messages/TemplateFilling.h"
#include "messages/HTMLTagsPreview.h"
#include "support/ScriptedUserInterface.h"

#include <QFile>
#include <QRegularExpression>

#include <limits>

namespace
{
const QString SectionBegin = QStringLiteral("<ZRT_MESSAGE_PERSONALSECTION>");
const QString SectionEnd = QStringLiteral("</ZRT_MESSAGE_PERSONALSECTION>");
const QString RepeatBegin = QStringLiteral("<ZRT_MESSAGES_REPEAT>");
const QString RepeatEnd = QStringLiteral("</ZRT_MESSAGES_REPEAT>");
const QString Empty = QStringLiteral("<html><head><title>Message List</title></head><body></body></html>");

QString ShownTag(const QString& name)
{
    return QStringLiteral("&lt;ZRT_MESSAGE_") + name + QStringLiteral("&gt;");
}

cMessagePtr Numbered(const Mail& mail)
{
    const cMessagePtr message = MakeMessage(mail);
    message->SetReference(11);
    message->SetPersonalToContact(22);
    message->SetSourceIndex(33);
    message->SetSent(Date(46347.25));
    message->SetReceived(Date(46347.5));
    message->SetSendAfter(Date(46348.75));
    return message;
}

#ifdef Q_OS_LINUX
/// Of this process, in bytes: "VmHWM" for the most so far, "VmRSS" for now.
qint64 Memory(const QByteArray& kind)
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith(kind + ':'))
            return line.mid(kind.size() + 1).simplified().split(' ').first().toLongLong() * 1024;
    }
    return -1;
}

/// The most counts from now on.
bool ForgetTheMost()
{
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write("5") == 1;
}
#endif
} // namespace

class ProcessHTMLTagsEdgesTest : public TemplateFilling
{
};

TEST_F(ProcessHTMLTagsEdgesTest, EachTagWithinASubjectIsFilledWhenItComesLaterInTheOrderAlone)
{
    for (const QString& name : TagNames()) {
        const bool isLater = TagNames().indexOf(name) > TagNames().indexOf(QStringLiteral("SUBJECT"));
        const cMessagePtr message =
            Numbered({.Subject = u'x' + Tag(name), .Text = QStringLiteral("t"), .HTML = QStringLiteral("<p>h</p>")});
        EXPECT_EQ(message->ProcessHTMLTags(Tag("SUBJECT")),
                  u'x' + (isLater ? message->ProcessHTMLTags(Tag(name)) : ShownTag(name)))
            << qPrintable(name);
    }
}

TEST_F(ProcessHTMLTagsEdgesTest, EachTagWithinASenderIsFilledWhenItComesLaterInTheOrderAlone)
{
    for (const QString& name : TagNames()) {
        const bool isLater = TagNames().indexOf(name) > TagNames().indexOf(QStringLiteral("FROM"));
        const cMessagePtr message = Numbered({.Text = QStringLiteral("t"), .HTML = QStringLiteral("<p>h</p>")});
        message->CDOMessage()->SetFrom(u'"' + Tag(name) + QStringLiteral("\" <ann@example.com>"));
        if (!message->CDOMessage()->From().contains(Tag(name)))
            ADD_FAILURE() << "the sender cannot be named so: " << qPrintable(message->CDOMessage()->From());
        const QString shown = isLater ? message->ProcessHTMLTags(Tag(name)) : ShownTag(name);
        EXPECT_EQ(message->ProcessHTMLTags(Tag("FROM")),
                  QStringLiteral("&quot;") + shown + QStringLiteral("&quot; &lt;ann@example.com&gt;"))
            << qPrintable(name);
    }
}

TEST_F(ProcessHTMLTagsEdgesTest, EachTagWithinATextIsFilledWhenItComesLaterInTheOrderAlone)
{
    for (const QString& name : TagNames()) {
        const bool isLater = TagNames().indexOf(name) > TagNames().indexOf(QStringLiteral("TEXTBODY"));
        const cMessagePtr message = Numbered({.Text = u'x' + Tag(name)});
        EXPECT_EQ(message->ProcessHTMLTags(Tag("TEXTBODY")),
                  u'x' + (isLater ? message->ProcessHTMLTags(Tag(name)) : ShownTag(name)))
            << qPrintable(name);
    }
}

TEST_F(ProcessHTMLTagsEdgesTest, EachTagWithinAPageIsFilledWhenItComesLaterAndElseStaysForTheBrowserToIgnore)
{
    for (const QString& name : TagNames()) {
        const bool isLater = TagNames().indexOf(name) > TagNames().indexOf(QStringLiteral("BODY"));
        // The tag has been read as an element when the mail gives its page out, so that its case tells nothing here.
        const cMessagePtr message = Numbered({.Text = QStringLiteral("t"), .HTML = QStringLiteral("<p>") + Tag(name)});
        const QString body = message->ProcessHTMLTags(Tag("BODY"));
        EXPECT_EQ(body.contains(Tag(name)), !isLater || name == QStringLiteral("HTMLBODY")) << qPrintable(name);
    }
}

TEST_F(ProcessHTMLTagsEdgesTest, ATagBuiltOfTwoValuesIsFilledWhenItsTurnComesLater)
{
    // What the subject leaves open, the template behind it would close; encoding keeps them apart.
    EXPECT_EQ(Filled({.Subject = QStringLiteral("<ZRT_MESSAGE_")}, Tag("SUBJECT") + QStringLiteral("TO>")),
              QStringLiteral("&lt;ZRT_MESSAGE_TO>"));
    EXPECT_EQ(Filled({.Subject = QStringLiteral("TO")}, QStringLiteral("<ZRT_MESSAGE_") + Tag("SUBJECT") + u'>'),
              QStringLiteral("studio@example.com"));
}

TEST_F(ProcessHTMLTagsEdgesTest, ATagWithinAnotherTagFillsTheInnerOne)
{
    EXPECT_EQ(Filled({}, QStringLiteral("<ZRT_MESSAGE_") + Tag("SUBJECT") + QStringLiteral("SUBJECT>")),
              QStringLiteral("<ZRT_MESSAGE_A requestSUBJECT>"));
    EXPECT_EQ(Filled({}, QStringLiteral("<<ZRT_MESSAGE_SUBJECT>>")), QStringLiteral("<A request>"));
    EXPECT_EQ(Filled({}, QStringLiteral("</ZRT_MESSAGE_SUBJECT> <ZRT_MESSAGE_SUBJECT/> < ZRT_MESSAGE_SUBJECT>")),
              QStringLiteral("</ZRT_MESSAGE_SUBJECT> <ZRT_MESSAGE_SUBJECT/> < ZRT_MESSAGE_SUBJECT>"));
}

TEST_F(ProcessHTMLTagsEdgesTest, NameAndAddressAreCutAtTheFirstBracketWhateverFollows)
{
    const QString both = Tag("FROMNAME") + u'|' + Tag("FROMEMAIL");
    const auto of = [&both](const char* from) {
        const cMessagePtr message = MakeMessage({});
        message->CDOMessage()->SetFrom(QString::fromUtf8(from));
        return message->ProcessHTMLTags(both);
    };
    EXPECT_EQ(of("Ann <ann@example.com>, Bob <bob@example.com>"),
              QStringLiteral("Ann|ann@example.com, Bob bob@example.com"));
    EXPECT_EQ(of("\"Ann \\\"DJ\\\" Lee\" <ann@example.com>"), QStringLiteral("Ann \\DJ\\ Lee|ann@example.com"));
    EXPECT_EQ(of("\"\" <ann@example.com>"), QStringLiteral("ann@example.com|ann@example.com"));
    EXPECT_EQ(of("Ann <"), QStringLiteral("Ann|"));
    EXPECT_EQ(of("<>"), QStringLiteral("|"));
}

TEST_F(ProcessHTMLTagsEdgesTest, TheMaskTakesTheValuesPlaceWhateverTheValueWas)
{
    const QString all = Tag("FROM") + u'|' + Tag("FROMNAME") + u'|' + Tag("FROMEMAIL") + u'|' + Tag("TO");
    const QString masked = QStringLiteral("0XXX-XXXXXX|0XXX-XXXXXX||0XXX-XXXXXX");
    Mask("1");
    EXPECT_EQ(Filled({.From = QStringLiteral("07700 900123"), .To = QStringLiteral("60300")}, all), masked);
    EXPECT_EQ(Filled({.From = QString(), .To = QString()}, all), masked);
    EXPECT_EQ(cMessage().ProcessHTMLTags(all), masked);
    EXPECT_EQ(Filled({.Subject = Tag("FROM")}, Tag("SUBJECT")), QStringLiteral("0XXX-XXXXXX"));
    // Only sender and receiver are.
    EXPECT_EQ(Filled({.Subject = QStringLiteral("Call 07700 900123")}, Tag("SUBJECT")),
              QStringLiteral("Call 07700 900123"));
}

TEST_F(ProcessHTMLTagsEdgesTest, TheMaskIsReadForEachFilling)
{
    const cMessagePtr message = MakeMessage({});
    EXPECT_EQ(message->ProcessHTMLTags(Tag("TO")), QStringLiteral("studio@example.com"));
    Mask("1");
    EXPECT_EQ(message->ProcessHTMLTags(Tag("TO")), QStringLiteral("0XXX-XXXXXX"));
}

TEST_F(ProcessHTMLTagsEdgesTest, ASectionGoesFromItsBeginningToTheFirstEnd)
{
    const auto filled = [](const QString& text) { return MakeMessage({})->ProcessHTMLTags(text); };
    EXPECT_EQ(filled(u'a' + SectionBegin + u'b' + SectionBegin + u'c' + SectionEnd + u'd' + SectionEnd + u'e'),
              QStringLiteral("ad") + SectionEnd + u'e');
    EXPECT_EQ(filled(u'a' + SectionEnd + u'b' + SectionBegin + u'c'), u'a' + SectionEnd + u'b' + SectionBegin + u'c');
    EXPECT_EQ(filled(SectionBegin + SectionEnd), QString());
    EXPECT_EQ(filled(SectionBegin + Tag("SUBJECT") + Tag("BODY") + Tag("SOURCEINDEX") + SectionEnd), QString());
}

TEST_F(ProcessHTMLTagsEdgesTest, ASectionStaysForAnyContact)
{
    const cMessagePtr message = MakeMessage({});
    for (const qint32 contact : {1, -1, std::numeric_limits<qint32>::max()}) {
        message->SetPersonalToContact(contact);
        EXPECT_EQ(message->ProcessHTMLTags(SectionBegin + Tag("PERSONALREFERENCE") + SectionEnd),
                  SectionBegin + QString::number(contact) + SectionEnd);
    }
}

TEST_F(ProcessHTMLTagsEdgesTest, EachMessageOfAListDecidesAboutItsSection)
{
    cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b")});
    messages.Message(2)->SetPersonalToContact(7);
    const QString block = Tag("SUBJECT") + SectionBegin + Tag("PERSONALREFERENCE") + SectionEnd;
    EXPECT_EQ(messages.ProcessHTMLTags(RepeatBegin + block + RepeatEnd),
              QStringLiteral("ab") + SectionBegin + u'7' + SectionEnd);
}

TEST_F(ProcessHTMLTagsEdgesTest, ABodyThatIsNotThereIsWrappedAndAPreviewOfNoneIsNot)
{
    const QString bold = QStringLiteral("<b></b>");
    for (const char* name : {"BODY", "HTMLBODY", "TEXTBODY"})
        EXPECT_EQ(Filled({}, Tag(name), mphUnreadBodyBold), bold) << name;
    for (const char* name : {"BODYSHORT", "HTMLBODYSHORT", "TEXTBODYSHORT"})
        EXPECT_EQ(Filled({}, Tag(name), mphUnreadBodyBold), QString()) << name;
    EXPECT_EQ(Filled({.Text = QStringLiteral("\nt")}, Tag("TEXTBODYSHORT"), mphUnreadBodyBold), bold);
    EXPECT_EQ(Filled({.HTML = QStringLiteral("<div>h</div>")}, Tag("HTMLBODYSHORT"), mphUnreadBodyBold), bold);
}

TEST_F(ProcessHTMLTagsEdgesTest, AReadMessageThatWaitsToBeSentIsItalicInItsPreviewsToo)
{
    const cMessagePtr message = MakeMessage({.Text = QStringLiteral("t"), .HTML = QStringLiteral("<p>h</p>")});
    message->SetFlags(mfRead + mfSendPending);
    const qint32 both = mphUnreadBodyBold + mphSendPendingBodyItalic;
    EXPECT_EQ(message->ProcessHTMLTags(Tag("BODYSHORT") + Tag("TEXTBODYSHORT") + Tag("HTMLBODYSHORT"), both),
              QStringLiteral("<i>t</i><i>t</i><i>h</i>"));
    message->SetFlags(mfSendPending);
    EXPECT_EQ(message->ProcessHTMLTags(Tag("HTMLBODYSHORT"), both), QStringLiteral("<i><b>h</b></i>"));
}

TEST_F(ProcessHTMLTagsEdgesTest, LinesOfATextPreviewEndInEveryWay)
{
    // As software of other systems leaves them; a mail gives its lines out alike.
    const auto preview = [](const char* text) { return HTMLTagsPreview::OfText(QString::fromLatin1(text)); };
    EXPECT_EQ(preview("one\r\ntwo\r\nthree"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("one\rtwo\r\nthree"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("one\ntwo\rthree"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("one\r\r\ntwo"), QStringLiteral("one"));
    EXPECT_EQ(preview("one\n\rtwo"), QStringLiteral("one"));
    EXPECT_EQ(preview("one\ntwo\n"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("\r\none"), QString());
    EXPECT_EQ(preview("   \none"), QString());
    EXPECT_EQ(preview("one\r"), QStringLiteral("one"));
    EXPECT_EQ(preview(""), QString());
}

TEST_F(ProcessHTMLTagsEdgesTest, ListsWithinListsAndFontsCountByThemselvesInAnHTMLPreview)
{
    const auto preview = [](const char* html) {
        return Filled({.HTML = QString::fromLatin1(html)}, Tag("HTMLBODYSHORT"));
    };
    EXPECT_EQ(preview("<ul><li>one<ul><li>two</ul></ul><p>three"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("<FONT color=red>one</FONT><FONT>two</FONT>"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("<div><p>one</div><blockquote><p>two</blockquote>"), QStringLiteral("one\ntwo"));
    EXPECT_EQ(preview("<p>one<p>   <p>&nbsp;<p>two"), QStringLiteral("one\n\u00A0"));
}

TEST_F(ProcessHTMLTagsEdgesTest, AListShowsTheBusyPointerAndAMessageDoesNot)
{
    ScriptedUserInterface user;
    MakeMessage({})->ProcessHTMLTags(Tag("SUBJECT"));
    EXPECT_EQ(user.BusyCount(), 0);
    const cMessages messages = MessagesWithSubjects({QStringLiteral("a")});
    messages.ProcessHTMLTags(Tag("SUBJECT"));
    messages.ProcessHTMLTags(RepeatBegin + Tag("SUBJECT") + RepeatEnd);
    EXPECT_EQ(user.BusyCount(), 2);
    EXPECT_FALSE(user.IsBusy());
}

TEST_F(ProcessHTMLTagsEdgesTest, BlocksStandRightBehindOneAnother)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b")});
    const QString block = RepeatBegin + Tag("SUBJECT") + RepeatEnd;
    EXPECT_EQ(messages.ProcessHTMLTags(block + block + block), QStringLiteral("ababab"));
    EXPECT_EQ(messages.ProcessHTMLTags(RepeatBegin + RepeatEnd + block), QStringLiteral("ab"));
    EXPECT_EQ(cMessages().ProcessHTMLTags(u'x' + block + block + u'y' + RepeatEnd), QStringLiteral("xy") + RepeatEnd);
}

TEST_F(ProcessHTMLTagsEdgesTest, ABlockThatBeginsWithABlockIsLookedIntoBehindItsFirstBeginning)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("1"), QStringLiteral("2")});
    const QString nested = RepeatBegin + RepeatBegin + u'b' + RepeatEnd + u'c' + RepeatEnd + u'd';
    EXPECT_EQ(messages.ProcessHTMLTags(nested), RepeatBegin + QStringLiteral("bbcbcd"));
    EXPECT_EQ(cMessages().ProcessHTMLTags(nested), u'c' + RepeatEnd + u'd');
}

TEST_F(ProcessHTMLTagsEdgesTest, ABlockInLowerCaseIsNoBlock)
{
    const QString page = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b")})
                             .ProcessHTMLTags(QStringLiteral("<zrt_messages_repeat><ZRT_MESSAGE_SUBJECT>"));
    EXPECT_EQ(page, QStringLiteral("<html><head><title>Message List</title></head><body>"
                                   "<zrt_messages_repeat>a</zrt_messages_repeat>"
                                   "<zrt_messages_repeat>b</zrt_messages_repeat></body></html>"));
}

TEST_F(ProcessHTMLTagsEdgesTest, TheEndOfABlockAloneLeavesThePageToAllMessages)
{
    EXPECT_EQ(cMessages().ProcessHTMLTags(u'x' + RepeatEnd), Empty);
}

TEST_F(ProcessHTMLTagsEdgesTest, PageBreaksAreNotForListsOfTheirOwn)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b")});
    EXPECT_EQ(messages.ProcessHTMLTags(RepeatBegin + Tag("SUBJECT") + RepeatEnd, mphPrintMessagePerPage),
              QStringLiteral("ab"));
}

TEST_F(ProcessHTMLTagsEdgesTest, OneMessageNeedsNoPageBreakAndFlagsOfOthersChangeNothing)
{
    const cMessages one = MessagesWithSubjects({QStringLiteral("a")});
    EXPECT_EQ(one.ProcessHTMLTags(Tag("SUBJECT"), mphPrintMessagePerPage),
              QStringLiteral("<html><head><style type=\"text/css\">\n   P.breakhere {page-break-before: always}\n"
                             "</style>\n<title>Message List</title></head><body>a</body></html>"));
    EXPECT_EQ(one.ProcessHTMLTags(Tag("SUBJECT"), 4 + 8 + 2048 + 8192), one.ProcessHTMLTags(Tag("SUBJECT")));
}

TEST_F(ProcessHTMLTagsEdgesTest, TheTemplatesTitleGivesWayAndATitleInABodyDoesNot)
{
    const cMessages messages = MessagesWithSubjects({QStringLiteral("a"), QStringLiteral("b")});
    EXPECT_EQ(messages.ProcessHTMLTags(QStringLiteral("<title><ZRT_MESSAGE_SUBJECT></title><p>x")),
              QStringLiteral("<html><head><title>Message List</title></head><body><p>x</p><p>x</p></body></html>"));
}

TEST_F(ProcessHTMLTagsEdgesTest, ACarriageReturnOfAReferenceEndsALineOfThePreviewWithItsLineFeed)
{
    EXPECT_EQ(Filled({.HTML = QStringLiteral("<pre><font>a&#13;&#10;b</font></pre>")}, Tag("HTMLBODYSHORT")),
              QStringLiteral("a"));
    EXPECT_EQ(Filled({.HTML = QStringLiteral("<pre><font>&#13;&#10;b</font></pre><p>c</p>")}, Tag("HTMLBODYSHORT")),
              QStringLiteral("c"));
}

TEST_F(ProcessHTMLTagsEdgesTest, ABodyThatClosesThePageStaysInItsPlaceOnAPageOfEachMessage)
{
    for (const char* body : {"</body></html>", "</div></td></tr></table></body></html><html><head><title>x</title>",
                             "</style></script></title></textarea>", "<!-- ", "<frameset>", "<body onload=x>"}) {
        cMessages messages;
        for (const char* subject : {"one", "two", "three"})
            messages.Add(MakeMessage({.Subject = QString::fromLatin1(subject),
                                      .HTML = QString::fromLatin1(body) + QStringLiteral("<p>text")}));
        const QString page = messages.ProcessHTMLTags(
            QStringLiteral("<html><head><style>p {}</style></head><body><h1><ZRT_MESSAGE_SUBJECT></h1>"
                           "<div><ZRT_MESSAGE_BODY></div></body></html>"),
            mphPrintMessagePerPage);
        EXPECT_EQ(page.count(QStringLiteral("<p class=\"breakhere\"></p>")), 2) << body;
        for (const char* subject : {"one", "two", "three"})
            EXPECT_EQ(page.count(QStringLiteral("<h1>%1</h1>").arg(QLatin1String(subject))), 1) << body << subject;
        EXPECT_EQ(page.count(QStringLiteral("<title>Message List</title>")), 1) << body;
        // What a comment swallowed is in it.
        QString shown = page;
        shown.remove(
            QRegularExpression(QStringLiteral("<!--.*-->"), QRegularExpression::InvertedGreedinessOption |
                                                                QRegularExpression::DotMatchesEverythingOption));
        EXPECT_EQ(shown.count(QStringLiteral("</html>")), 1) << body << qPrintable(page);
        EXPECT_TRUE(page.endsWith(QStringLiteral("</body></html>"))) << body;
    }
}

#ifdef Q_OS_LINUX
TEST_F(ProcessHTMLTagsEdgesTest, AListOfLargeMessagesTakesTheRoomOfItsPageAndLittleMore)
{
    cMessages messages;
    const cMessagePtr message =
        MakeMessage({.Text = QStringLiteral("A line of a letter that says nothing.\r\n").repeated(26'000)});
    for (int i = 0; i < 100; ++i)
        messages.Add(message);
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer takes memory of its own";
#endif
    if (!ForgetTheMost())
        GTEST_SKIP() << "this system does not tell how much memory was taken";
    const qint64 before = Memory("VmRSS");
    const QString page = messages.ProcessHTMLTags(RepeatBegin + Tag("BODY") + RepeatEnd + u'.');
    const qint64 most = Memory("VmHWM") - before;
    const qint64 size = page.size() * qint64{sizeof(QChar)};
    EXPECT_GT(page.size(), 98'000'000);
    // A second copy of the page would be as much again.
    EXPECT_LT(most, size + size / 2);
}
#endif
