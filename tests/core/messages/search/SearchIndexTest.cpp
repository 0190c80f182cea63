// SPDX-License-Identifier: Apache-2.0
#include "IndexedStation.h"

namespace
{
class SearchIndexTest : public IndexedStation
{
};

SearchOptions Best()
{
    SearchOptions options;
    options.Order = SearchOrder::BestFirst;
    return options;
}
} // namespace

TEST_F(SearchIndexTest, AWordOfTheBodyFindsItsMessage)
{
    OpenStation();
    const qint32 wanted = Save(Mail("Hello", "Who remembers the lighthouse?"));
    Save(Mail("Hello", "Nobody."));
    Follow();
    EXPECT_EQ(Found(u"lighthouse"_qs), QList<qint32>{wanted});
    EXPECT_EQ(Find(u"hello"_qs).Count, 2);
    EXPECT_TRUE(Found(u"light"_qs).isEmpty()) << "it is no whole word";
    EXPECT_TRUE(Found(u"lighthouse nobody"_qs).isEmpty()) << "all words have to be there";
}

TEST_F(SearchIndexTest, PagesAreSearchedAsTheyAreShown)
{
    OpenStation();
    const qint32 page = Save(
        "From: a@example.com\r\nSubject: page\r\nMIME-Version: 1.0\r\nContent-Type: text/html; charset=utf-8\r\n\r\n"
        "<html><head><title>tabtitle</title><style>.secretstyle{color:red}</style></head><body class=\"bodyclass\">"
        "<b>light</b>house caf&eacute; r&#233;sum&#xE9;<td>one</td><td>two</td><div style=\"display: none\">"
        "<div>inner</div>unseen</div>seen<!-- commented --><script>var scripted;</script></body></html>\r\n");
    Follow();
    for (const QString& shown : {u"lighthouse"_qs, u"cafe"_qs, u"resume"_qs, u"one"_qs, u"two"_qs, u"seen"_qs})
        EXPECT_EQ(Found(shown), QList<qint32>{page}) << qPrintable(shown);
    for (const QString& hidden : {u"tabtitle"_qs, u"secretstyle"_qs, u"bodyclass"_qs, u"commented"_qs, u"scripted"_qs,
                                  u"unseen"_qs, u"inner"_qs, u"light"_qs, u"onetwo"_qs, u"div"_qs})
        EXPECT_TRUE(Found(hidden).isEmpty()) << qPrintable(hidden);
}

TEST_F(SearchIndexTest, AccentsMakeNoDifferenceWhateverCharacterSetAMailCameIn)
{
    OpenStation();
    const QByteArray head = "From: a@example.com\r\nMIME-Version: 1.0\r\n";
    const QByteArray quoted = "\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n";
    Save(head + "Subject: One\r\nContent-Type: text/plain; charset=iso-8859-1" + quoted + "un probl=E8me\r\n");
    Save(head + "Subject: =?utf-8?Q?le_PROBL=C3=88ME?=\r\nContent-Type: text/plain\r\n\r\nx\r\n");
    Save(head + "Subject: Three\r\nContent-Type: text/plain; charset=utf-8" + quoted + "un proble=CC=80me\r\n");
    Save(head + "Subject: Four\r\nContent-Type: text/html; charset=utf-8\r\n\r\n<p>un probl&egrave;me</p>\r\n");
    Save(Mail("Five", "no probleme"));
    Follow();
    for (const QString& typed : {u"probleme"_qs, u"PROBL\u00C8ME"_qs, u"probl\u00E8me"_qs, u"proble\u0300me"_qs})
        EXPECT_EQ(Find(typed).Count, 5) << qPrintable(typed);
}

TEST_F(SearchIndexTest, AttachmentsAreFoundByNameAndTextsByTheirWords)
{
    OpenStation();
    cdo::Message mail(Mail("Files", "see there"));
    mail.AddAttachment(u"Harbour plan.pdf"_qs, "application/pdf", "%PDF binarywords");
    mail.AddAttachment(u"notes.txt"_qs, "text/plain", "the keeper's diary");
    const QByteArray large = QByteArray("biggestword ") + QByteArray(1024 * 1024, 'x');
    mail.AddAttachment(u"large.txt"_qs, "text/plain", large);
    const qint32 wanted = Save(mail.Octets());
    Save(Mail("None", "no files"));
    Follow();
    for (const QString& typed : {u"harbour plan"_qs, u"pdf"_qs, u"diary"_qs, u"large.txt"_qs, u"has:attachment"_qs})
        EXPECT_EQ(Found(typed), QList<qint32>{wanted}) << qPrintable(typed);
    EXPECT_TRUE(Found(u"binarywords"_qs).isEmpty());
    EXPECT_TRUE(Found(u"biggestword"_qs).isEmpty()) << "more than a megabyte";
}

TEST_F(SearchIndexTest, PrefixesNarrowByPeopleFoldersKindsAndDates)
{
    OpenStation();
    const qint32 pete = Save(Mail("One", "ferry"));
    const qint32 ann = Save(Mail("Two", "ferry pete", "Ann <ann@example.com>"), tmcSaved);
    const qint32 text = Save(Mail("Three", "ferry", "+447700900123"), tmcInbox, emtSMS);
    ASSERT_TRUE(Station->ChangeMessageFlags(ann, mfRead, 0));
    Follow();
    EXPECT_EQ(Found(u"ferry from:pete"_qs), QList<qint32>{pete});
    EXPECT_EQ(Found(u"ferry from:ann@example.com"_qs), QList<qint32>{ann});
    EXPECT_EQ(Found(u"from:07700900123"_qs), QList<qint32>{text});
    EXPECT_EQ(Find(u"to:studio ferry"_qs).Count, 3);
    EXPECT_EQ(Found(u"ferry is:sms"_qs), QList<qint32>{text});
    EXPECT_EQ(Found(u"ferry is:read"_qs), QList<qint32>{ann});
    EXPECT_EQ(Find(u"is:unread"_qs).Count, 2);
    EXPECT_EQ(Find(u"ferry after:2026-11-21 before:2026-11-22"_qs).Count, 3);
    EXPECT_EQ(Find(u"ferry before:2026-11-21"_qs).Count, 0);
    SearchOptions saved;
    saved.Folders = QSet<qint32>{qint32{tmcSaved}};
    EXPECT_EQ(Found(u"ferry in:saved"_qs, saved), QList<qint32>{ann});
}

TEST_F(SearchIndexTest, NewestComeFirstOrThoseWithTheWordInTheSubject)
{
    OpenStation();
    const auto dated = [this](const QByteArray& subject, const QByteArray& body, const QByteArray& day) {
        return Save(Mail(subject, body).replace("Sat, 21 Nov 2026", day));
    };
    const qint32 subject = dated("The lighthouse", "x", "Sun, 01 Nov 2026");
    const qint32 newest = dated("Other", "lighthouse", "Fri, 20 Nov 2026");
    const qint32 oldest = dated("Other", "lighthouse", "Thu, 01 Oct 2026");
    Follow();
    EXPECT_EQ(Found(u"lighthouse"_qs), (QList<qint32>{newest, subject, oldest}));
    EXPECT_EQ(Found(u"lighthouse"_qs, Best()), (QList<qint32>{subject, newest, oldest}));
    SearchOptions two;
    two.Most = 2;
    EXPECT_EQ(Found(u"lighthouse"_qs, two), (QList<qint32>{newest, subject}));
    EXPECT_EQ(Find(u"lighthouse"_qs, two).Count, 3) << "all are counted";
}

TEST_F(SearchIndexTest, ResultsAreCountedByFolderAndKindAndNarrowedByThem)
{
    OpenStation();
    Save(Mail("One", "ferry"));
    Save(Mail("Two", "ferry"), tmcSaved);
    const qint32 text = Save(Mail("Three", "ferry", "+447700900123"), tmcSaved, emtSMS);
    Follow();
    SearchOptions options;
    options.OnlyFolder = tmcSaved;
    options.OnlyKind = SearchKind::SMS;
    const SearchResult result = Find(u"ferry"_qs, options);
    EXPECT_EQ(result.Count, 1);
    EXPECT_EQ(result.Hits.front().Reference, text);
    EXPECT_EQ(result.Folders.value(tmcInbox), 1);
    EXPECT_EQ(result.Folders.value(tmcSaved), 2);
    EXPECT_EQ(result.Kinds.value(SearchKind::Email), 2);
    EXPECT_EQ(result.Kinds.value(SearchKind::Unread), 3);
}

TEST_F(SearchIndexTest, ResultsAreCountedByTimeWhateverNarrowsThem)
{
    OpenStation();
    Save(Mail("One", "ferry").replace("Sat, 21 Nov 2026", "Sun, 01 Nov 2026"));
    Save(Mail("Two", "ferry"));
    Save(Mail("Three", "harbour"));
    Follow();
    const auto dayOf = [](int day) { return QDateTime(QDate(2026, 11, day), QTime(), Qt::UTC).toSecsSinceEpoch(); };
    SearchOptions options;
    options.Since = {dayOf(22), dayOf(20), dayOf(1)};
    options.OnlySince = dayOf(20);
    const SearchResult result = Find(u"ferry"_qs, options);
    EXPECT_EQ(result.Since, (std::vector<qint64>{0, 1, 2}));
    EXPECT_EQ(result.Count, 1);
}

TEST_F(SearchIndexTest, SenderConversationAndSubjectAreFoundByWhatTheMailSaysOfItself)
{
    OpenStation();
    const QByteArray first = Mail("The ferry", "one").replace("Subject", "Message-ID: <a@x>\r\nSubject");
    const QByteArray answer = Mail("Re: The ferry", "two", "Ann <ann@example.com>")
                                  .replace("Subject", "Message-ID: <b@x>\r\nIn-Reply-To: <a@x>\r\nSubject");
    const qint32 asked = Save(first);
    const qint32 answered = Save(answer);
    const qint32 stranger = Save(Mail("the  FERRY", "three", "Pete P <PETE@example.com>"));
    Follow();
    const Kinship kinship = KinshipOf(first);
    const auto any = [this](const QList<QByteArray>& terms) {
        SearchQuestion question;
        question.AnyOf = terms;
        QList<qint32> references;
        for (const SearchHit& hit : Index->Find(question, {}).Hits)
            references.append(hit.Reference);
        std::sort(references.begin(), references.end());
        return references;
    };
    EXPECT_EQ(any({kinship.Sender}), (QList<qint32>{asked, stranger}));
    EXPECT_EQ(kinship.Recipient, SearchWords::AddressTerm(u"studio@harbourfm.example.org"_qs));
    EXPECT_EQ(any(kinship.Mails), (QList<qint32>{asked, answered}));
    EXPECT_EQ(any({kinship.Subject}), (QList<qint32>{asked, answered, stranger}));
}

TEST_F(SearchIndexTest, TheFileIsItsOwnersAlone)
{
    Follow();
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    const QString folder = QFileInfo(IndexFile()).absolutePath();
    for (const QString& name : QDir(folder).entryList(QDir::Files))
        EXPECT_EQ(QFileInfo(folder + u'/' + name).permissions() & others, QFile::Permissions()) << qPrintable(name);
    EXPECT_EQ(QFileInfo(folder).permissions() & (others | QFile::ExeGroup | QFile::ExeOther), QFile::Permissions());
}

TEST_F(SearchIndexTest, HostileQuestionsFindOrDoNotFindButNeverFail)
{
    OpenStation();
    const qint32 wanted = Save(Mail("AND OR NOT", "near(a b) \"quoted\" a* ^b col:x {y} -z"));
    Follow();
    EXPECT_EQ(Found(u"AND OR NOT"_qs), QList<qint32>{wanted});
    EXPECT_EQ(Found(u"NEAR(a b)"_qs), QList<qint32>{wanted});
    EXPECT_EQ(Found(u"\"quoted"_qs), QList<qint32>{wanted});
    for (const QString& typed : {u"a\"b"_qs, u"* * *"_qs, u"'; DROP TABLE messages --"_qs, u"℅ ½ ㏂ ﷺ"_qs,
                                 QString(100'000, u'('), QString(100'000, u'灯'), QString(50'000, u'1')})
        EXPECT_NO_THROW(Find(typed)) << qPrintable(typed.left(30));
}
