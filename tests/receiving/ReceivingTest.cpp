// SPDX-License-Identifier: Apache-2.0

// What the page on hooking up says, done as it stands there, with the real programs that it is about: each way by which
// messages come in, and what happens to them when the station cannot take them.

#include "MachineTest.h"
#include "Routes.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

namespace
{
constexpr int SecondsToArrive = 150;
constexpr qsizetype LargeMail = qsizetype{50} * 1024 * 1024;

struct Item
{
    QByteArray Octets;
    QByteArray Body; ///< What is found in the station, line breaks aside.
};

QByteArray HeaderOf(const QByteArray& subject)
{
    return "From: Loveday Tregenza <loveday@example.org>\nTo: studio@harbourfm.example.org\nSubject: " + subject +
           "\nDate: Fri, 20 Nov 2026 08:00:00 +0000\nMessage-ID: <" + subject.toHex() + "@example.org>\n";
}

Item MailOf(const QByteArray& subject, const QByteArray& body)
{
    return {HeaderOf(subject) + "\n" + body, body};
}

Item EightBitMail()
{
    const QByteArray body = "Gr\u00fc\u00dfe \u65e5\u672c, and in another encoding: caf\xE9\n";
    return {HeaderOf("8 bits \u00fc") +
                "MIME-Version: 1.0\nContent-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: 8bit\n\n" +
                body,
            body};
}

Item VeryLargeMail()
{
    QByteArray body;
    body.reserve(LargeMail + 100);
    const QByteArray line = QByteArray(60, 'x') + '\n';
    for (int i = 0; body.size() < LargeMail; ++i)
        body += QByteArray::number(i) + ' ' + line;
    return MailOf("50 MB", body);
}

QByteArray WithoutReturns(QByteArray text)
{
    text.replace("\r\n", "\n");
    while (text.endsWith('\n'))
        text.chop(1);
    return text;
}
} // namespace

/// For the words of a failed test.
static void PrintTo(const Route& route, std::ostream* out)
{
    *out << route.Name.toStdString();
}

class ReceivingTest : public MachineTest, public testing::WithParamInterface<Route>
{
protected:
    void SetUp() override { MakeMachine(GetParam().Tree); }
    /// As somebody does who reads the page.
    void HookUp() const
    {
        ASSERT_NO_FATAL_FAILURE(Must(GetParam().Installation));
        for (const QString& heading : GetParam().Headings)
            ASSERT_NO_FATAL_FAILURE(Must(QStringLiteral("cd /root\n") + InstructionsOf(heading)));
        // Filed by hand, as the page says to try it.
        ASSERT_NO_FATAL_FAILURE(Must(QStringLiteral("tolva delete /srv/station 1 --permanently")));
        FinishHookingUp();
    }
    /// As somebody does who lets tolva write the files; twice, which is to do no harm.
    void HookUpByTheFilesOfSetUp() const
    {
        if (GetParam().SetUpName.isEmpty()) {
            HookUp();
            return;
        }
        ASSERT_NO_FATAL_FAILURE(Must(GetParam().Installation));
        ASSERT_NO_FATAL_FAILURE(
            Must(QStringLiteral("tolva setup mail /srv/station --with %1 --address studio@harbourfm.example.org --host "
                                "imap.harbourfm.example.org --login studio --output /root/out\n"
                                "sh /root/out/install.sh; sh /root/out/install.sh")
                     .arg(GetParam().SetUpName)));
        FinishHookingUp();
    }
    void FinishHookingUp() const
    {
        ASSERT_NO_FATAL_FAILURE(Must(GetParam().Start));
        // What was made since by root.
        Must(QStringLiteral("chmod -R g+w /srv/station; find /srv/station -exec chown tolva:station {} +"));
    }
    bool BringsTexts() const { return GetParam().What == Route::Brings::Texts; }
    QList<Item> Items(int count, const QByteArray& name) const
    {
        QList<Item> items;
        for (int i = 1; i <= count; ++i) {
            const QByteArray words = name + ' ' + QByteArray::number(i);
            items.append(BringsTexts() ? Item{words, words} : MailOf(words, "This is " + words + ".\n"));
        }
        return items;
    }
    void Deliver(const QList<Item>& items) const { Deliver(items, GetParam().Deliver); }
    void Deliver(const QList<Item>& items, const QString& script) const
    {
        QList<std::pair<QString, QByteArray>> files;
        for (int i = 0; i < items.size(); ++i)
            files.append({QStringLiteral("/tmp/mails/%1").arg(i + 1, 4, 10, QLatin1Char('0')), items.at(i).Octets});
        Must(QStringLiteral("rm -rf /tmp/mails; mkdir /tmp/mails"));
        Computer().Write(files);
        ASSERT_NO_FATAL_FAILURE(Must(script));
    }
    static QString AttemptScript()
    {
        const QString script = GetParam().Attempt;
        const qsizetype heading = script.indexOf(u'@');
        return heading < 0 ? script : script.left(heading) + InstructionsOf(script.mid(heading + 1));
    }
    void Attempt() const
    {
        // What it answers is told by what happens to the messages.
        Computer().Run(QStringLiteral("exec >/tmp/attempt.log 2>&1\n") + AttemptScript());
    }
    /// The same, going on beside what follows.
    void AttemptBeside() const
    {
        Must(QStringLiteral("cat >/tmp/attempt.sh <<'END-OF-ATTEMPT'\n%1\nEND-OF-ATTEMPT\n"
                            "setsid bash /tmp/attempt.sh >/tmp/attempt.log 2>&1 </dev/null &")
                 .arg(AttemptScript()));
    }

    int Held() const { return NumberOf(GetParam().Held); }
    int PutOff() const { return NumberOf(GetParam().PutOff.isEmpty() ? GetParam().Held : GetParam().PutOff); }
    /// What the station holds: the octets of each message behind its header.
    QList<QByteArray> Bodies() const
    {
        // All in one go: each is said with its length in front.
        const Machine::Outcome all =
            Computer().Run(QStringLiteral(R"(
cd /tmp
%1 list /srv/station --json | sed 's/.*"reference": *\([0-9]*\).*/\1/' | while read -r reference; do
    rm -f one
    %1 show /srv/station "$reference" %2 >one || exit 1
    stat -c %s one
    cat one
done
)")
                               .arg(QStringLiteral(TOLVA_PROGRAM),
                                    BringsTexts() ? QStringLiteral("--json") : QStringLiteral("--raw")));
        EXPECT_EQ(all.Code, 0) << all.Problems.constData();
        QList<QByteArray> bodies;
        for (qsizetype i = 0; i < all.Output.size();) {
            const qsizetype end = all.Output.indexOf('\n', i);
            const qsizetype size = all.Output.mid(i, end - i).toLongLong();
            const QByteArray one = all.Output.mid(end + 1, size);
            bodies.append(BringsTexts() ? TextOf(one) : BodyOf(one));
            i = end + 1 + size;
        }
        return bodies;
    }
    /// Only how many there are, and under which subjects.
    QHash<QByteArray, int> Subjects() const
    {
        QHash<QByteArray, int> subjects;
        const Machine::Outcome list = Computer().Run(QStringLiteral(TOLVA_PROGRAM " list /srv/station --json"));
        EXPECT_EQ(list.Code, 0) << list.Problems.constData();
        for (const QByteArray& line : list.Output.split('\n')) {
            if (!line.isEmpty())
                ++subjects[QJsonDocument::fromJson(line).object().value(QStringLiteral("subject")).toString().toUtf8()];
        }
        return subjects;
    }
    static int CountOf(const QHash<QByteArray, int>& subjects)
    {
        int count = 0;
        for (const int number : subjects)
            count += number;
        return count;
    }
    static QByteArray TextOf(const QByteArray& json)
    {
        return QJsonDocument::fromJson(json).object().value(QStringLiteral("text")).toString().toUtf8();
    }
    static QByteArray BodyOf(const QByteArray& octets)
    {
        const QByteArray text = WithoutReturns(octets);
        const qsizetype end = text.indexOf("\n\n");
        return end < 0 ? text : text.mid(end + 2);
    }

    template <typename Condition>
    bool WaitUntil(Condition&& isMet) const
    {
        const QDeadlineTimer deadline(SecondsToArrive * 1000);
        while (!isMet()) {
            if (deadline.hasExpired())
                return false;
            QThread::msleep(MillisecondsBetweenLooks);
        }
        return true;
    }
    /// Until that many are in the station, and nothing is on its way any more.
    void WaitForAll(int count) const
    {
        EXPECT_TRUE(WaitUntil([&] {
            Attempt();
            return Held() == 0 && CountOf(Subjects()) >= count;
        })) << "held: "
            << Held() << ", filed: " << CountOf(Subjects()) << '\n'
            << Log().constData();
        Attempt();
        EXPECT_EQ(CountOf(Subjects()), count);
    }
    void ExpectEachOnce(int count, const QByteArray& name) const
    {
        const QHash<QByteArray, int> subjects = Subjects();
        for (int i = 1; i <= count; ++i) {
            const QByteArray subject = name + ' ' + QByteArray::number(i);
            EXPECT_EQ(subjects.value(subject), 1) << subject.constData();
        }
    }
    /// The same where beginnings of some may stand beside them, at most as many.
    void ExpectEachWholeOnce(int count, const QByteArray& name, int pieces) const
    {
        EXPECT_TRUE(WaitUntil([&] {
            Attempt();
            return Held() == 0 && CountOf(Subjects()) >= count;
        })) << Log().constData();
        QList<QByteArray> bodies = Bodies();
        const QList<Item> items = Items(count, name);
        for (const Item& item : items)
            EXPECT_EQ(bodies.removeAll(WithoutReturns(item.Body)), 1) << item.Body.constData();
        EXPECT_LE(bodies.size(), pieces);
        for (const QByteArray& piece : std::as_const(bodies)) {
            EXPECT_TRUE(std::any_of(items.begin(), items.end(), [&](const Item& item) {
                // Without its blank line a header has no body behind it, and is one itself here.
                return WithoutReturns(item.Body).startsWith(piece.trimmed()) ||
                       WithoutReturns(item.Octets).startsWith(piece.trimmed());
            })) << piece.constData();
        }
    }
    /// What went back to who sent it.
    int SentBack() const
    {
        return GetParam().SendsBack()
                   ? NumberOf(QStringLiteral("cat /var/mail/listener 2>/dev/null | grep -c '^From '"))
                   : 0;
    }
    QByteArray Log() const
    {
        return Computer()
            .Run(QStringLiteral(
                "tail -n 30 /var/log/mail.log /var/log/exim4/mainlog /var/log/exim4/paniclog "
                "/var/log/dovecot.log /tmp/smsd.log /tmp/attempt.log /var/spool/tolva-sms/.log 2>/dev/null"))
            .Output;
    }

    /// One that cannot be filed now waits, is not sent back, and is filed once when the cause is gone.
    void ExpectToWait(const QByteArray& name, int count, const QString& breakIt, const QString& mendIt)
    {
        SCOPED_TRACE(name.constData());
        const int before = CountOf(Subjects());
        if (GetParam().FillsTheStationsFolder) {
            ASSERT_NO_FATAL_FAILURE(Deliver(Items(count, name)));
        }
        ASSERT_NO_FATAL_FAILURE(Must(breakIt));
        if (!GetParam().FillsTheStationsFolder) {
            ASSERT_NO_FATAL_FAILURE(Deliver(Items(count, name)));
        }
        Attempt();
        if (!GetParam().IsHeldElsewhere) {
            EXPECT_TRUE(WaitUntil([&] { return PutOff() == count; })) << PutOff() << '\n' << Log().constData();
        }
        ASSERT_NO_FATAL_FAILURE(Must(mendIt));
        WaitForAll(before + count);
        ExpectEachOnce(count, name);
        EXPECT_EQ(SentBack(), 0);
    }
};

TEST_P(ReceivingTest, EachMessageComesInOnceAsItWas)
{
    ASSERT_NO_FATAL_FAILURE(HookUp());
    QList<Item> items = {MailOf("plain", "Hello.\n"), EightBitMail(), VeryLargeMail()};
    if (GetParam().TakesHeaderless)
        items.append(Item{"Only words, and no header.\n", "Only words, and no header.\n"});
    if (BringsTexts()) {
        const QByteArray text = "Play the lighthouse song";
        const QByteArray letters = "Gr\u00fc\u00dfe \u65e5\u672c";
        const QByteArray parts = QByteArray("one of many words ").repeated(40) + "and the end";
        items = {{text, text}, {letters, letters}, {parts, parts}};
    }
    Deliver(items);
    WaitForAll(static_cast<int>(items.size()));
    const QList<QByteArray> bodies = Bodies();
    for (const Item& item : std::as_const(items)) {
        const QByteArray body = WithoutReturns(item.Body);
        const auto holds = [&](const QByteArray& stored) {
            return stored == body || stored == WithoutReturns(item.Octets);
        };
        EXPECT_EQ(std::count_if(bodies.begin(), bodies.end(), holds), 1) << body.left(60).constData();
    }
    EXPECT_EQ(SentBack(), 0);
}

TEST_P(ReceivingTest, TwoHundredAtOnceComeInOnceEachByTheFilesOfSetUpThoughTheServerIsKilled)
{
    ASSERT_NO_FATAL_FAILURE(HookUpByTheFilesOfSetUp());
    constexpr int Count = 200;
    constexpr int Kills = 3;
    const bool hasServer = !GetParam().KillServer.isEmpty();
    const QString& intoQueue = GetParam().DeliverIntoQueue;
    Deliver(Items(Count, "crowd"), intoQueue.isEmpty() ? GetParam().Deliver : intoQueue);
    int filed = 0;
    int kills = 0;
    while (hasServer && kills < Kills && filed < Count) {
        AttemptBeside();
        // In the middle of its work, which is seen in the station.
        EXPECT_TRUE(WaitUntil([&, before = filed] { return (filed = CountOf(Subjects())) > before; }))
            << Log().constData();
        if (filed == Count || HasFailure())
            break;
        ASSERT_NO_FATAL_FAILURE(Must(GetParam().KillServer));
        ASSERT_NO_FATAL_FAILURE(Must(GetParam().RestartServer));
        ++kills;
    }
    EXPECT_TRUE(!hasServer || kills > 0) << "it was never killed in the middle";
    if (GetParam().LeavesPieces) {
        ExpectEachWholeOnce(Count, "crowd", kills);
    } else {
        WaitForAll(Count);
        ExpectEachOnce(Count, "crowd");
    }
    EXPECT_EQ(SentBack(), 0);
}

TEST_P(ReceivingTest, BeyondTheLifeOfTheQueueTheSenderIsTold)
{
    if (GetParam().ShortenQueue.isEmpty())
        GTEST_SKIP() << "nothing of this way sends back";
    ASSERT_NO_FATAL_FAILURE(HookUp());
    ASSERT_NO_FATAL_FAILURE(Must(GetParam().ShortenQueue));
    ASSERT_NO_FATAL_FAILURE(Must(QStringLiteral("mv /srv/station /srv/station-away")));
    Deliver(Items(1, "late"));
    EXPECT_TRUE(WaitUntil([&] {
        Attempt();
        return SentBack() == 1;
    })) << Log().constData();
    EXPECT_GT(NumberOf(QStringLiteral("grep -c 'Subject: late 1' /var/mail/listener")), 0) << "it says which";
    EXPECT_EQ(Held(), 0);
    ASSERT_NO_FATAL_FAILURE(Must(QStringLiteral("mv /srv/station-away /srv/station")));
    Attempt();
    EXPECT_EQ(CountOf(Subjects()), 0);
}

TEST_P(ReceivingTest, WhatTheStationCannotTakeWaitsAndComesInOnce)
{
    ASSERT_NO_FATAL_FAILURE(HookUp());
    // As another computer's commit holds it.
    ExpectToWait(
        "locked", 1, QStringLiteral(R"(
setsid perl -e 'use Fcntl; open(my $f, "+<", "/srv/station/Tolva.mdb") or die;
    my $lock = pack("s s x4 q q i x4", F_WRLCK, 0, 0x40000000, 512, 0);
    fcntl($f, F_SETLK, $lock) or die "no lock: $!";
    open(my $pid, ">", "/run/holder"); print $pid $$; close $pid; sleep 600' >/dev/null 2>/run/problem </dev/null &
for i in {1..100}; do [ -s /run/holder ] && exit 0; sleep 0.05; done
cat /run/problem; exit 1)"),
        QStringLiteral("kill $(cat /run/holder); while kill -0 $(cat /run/holder) 2>/dev/null; do sleep 0.05; done"));
    ExpectToWait("full", 2, QStringLiteral("cat /dev/zero >/srv/filler 2>/dev/null || true"),
                 QStringLiteral("rm /srv/filler"));
    ExpectToWait("missing", 2, QStringLiteral("mv /srv/station /srv/station-away"),
                 QStringLiteral("mv /srv/station-away /srv/station"));
}

TEST_P(ReceivingTest, KillsAtAnyMomentLoseNothingAndFileNothingTwice)
{
    ASSERT_NO_FATAL_FAILURE(HookUp());
    constexpr int Count = 12;
    constexpr int LastCall = 150; // far behind the last one of a run that files one mail
    Must(QStringLiteral("echo 1 >/run/kill-at; chmod 0666 /run/kill-at"));
    Deliver(Items(Count, "killed"));
    EXPECT_TRUE(WaitUntil([&] {
        Attempt();
        return NumberOf(QStringLiteral("cat /run/kill-at")) > LastCall || (Held() == 0 && CountOf(Subjects()) >= Count);
    }));
    EXPECT_GT(NumberOf(QStringLiteral("cat /run/kill-at")), 10) << "too few were killed";
    Must(QStringLiteral("rm /run/kill-at"));
    WaitForAll(Count);
    ExpectEachOnce(Count, "killed");
    EXPECT_EQ(SentBack(), 0);
}

/// Of text messages alone.
class TextRouteTest : public ReceivingTest
{
};

TEST_P(TextRouteTest, PartsThatComeLateOrNeverAreNotWaitedForForEver)
{
    ASSERT_NO_FATAL_FAILURE(HookUp());
    ASSERT_NO_FATAL_FAILURE(Must(QStringLiteral("kill $(cat /tmp/smsd.pid)\n"
                                                "while kill -0 $(cat /tmp/smsd.pid) 2>/dev/null; do sleep 0.1; done")));
    const QByteArray text = "It begins. " + QByteArray("and goes on ").repeated(30) + "and ends.";
    ASSERT_NO_FATAL_FAILURE(Deliver({{text, text}}));
    ASSERT_NO_FATAL_FAILURE(Must(QStringLiteral("[ $(ls /tmp/phone/sms/1 | wc -l) -eq 3 ]\n"
                                                "mv /tmp/phone/sms/1/2 /tmp/late\n") +
                                 GetParam().Start));
    // Each that is there, as a message of its own.
    EXPECT_TRUE(WaitUntil([&] { return CountOf(Subjects()) == 2; })) << Log().constData();
    QByteArrayList there = Bodies();
    std::sort(there.begin(), there.end());
    EXPECT_TRUE(there.value(0).startsWith("It begins.")) << there.value(0).constData();
    EXPECT_TRUE(there.value(1).endsWith("and ends.")) << there.value(1).constData();
    // And the one that was late.
    Must(QStringLiteral("mv /tmp/late /tmp/phone/sms/1/2"));
    EXPECT_TRUE(WaitUntil([&] { return CountOf(Subjects()) == 3; })) << Log().constData();
    qsizetype size = 0;
    for (const QByteArray& part : Bodies())
        size += part.size();
    EXPECT_GE(size, text.size() - 4) << "blanks at the ends of parts aside";
    EXPECT_LE(size, text.size());
}

TEST_P(TextRouteTest, WhoTextsTheKeyWordIsAnsweredWhereTheOptionsSaySo)
{
    ASSERT_NO_FATAL_FAILURE(HookUp());
    Must(QStringLiteral("mkdir -p /etc/tolva; echo TOLVA_SMS_OPTIONS=--answer >/etc/tolva/sms.conf\n"
                        "echo 'CurrentSongFullName=\"The Shanty\"' >/srv/station/Tolva.oar"));
    ASSERT_NO_FATAL_FAILURE(Deliver({{"Song?", "Song?"}}));
    const auto waiting = [&] {
        return Computer().Run(QStringLiteral("tolva list /srv/station --category Outbox --json")).Output;
    };
    EXPECT_TRUE(WaitUntil([&] { return waiting().contains("\"automatic\""); })) << Log().constData();
    EXPECT_TRUE(waiting().contains(": The Shanty\"")) << waiting().constData();
    EXPECT_TRUE(waiting().contains("\"to\":\"+447700900123\"")) << waiting().constData();
    EXPECT_EQ(waiting().count('\n'), 1);
}

INSTANTIATE_TEST_SUITE_P(GammuDaemon, TextRouteTest, testing::Values(AllRoutes().last()));
INSTANTIATE_TEST_SUITE_P(Route, ReceivingTest, testing::ValuesIn(AllRoutes()),
                         [](const testing::TestParamInfo<Route>& route) { return route.param.Name.toStdString(); });
